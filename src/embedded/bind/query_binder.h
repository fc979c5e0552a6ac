#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "embedded/bind/bound_query.h"
#include "embedded/bind/constants.h"
#include "embedded/bind/expression_binder.h"
#include "embedded/bind/names.h"
#include "embedded/bind/scope.h"
#include "embedded/bind/translation.h"
#include "embedded/catalogue/catalogue.h"
#include "embedded/values/conversions.h"
#include "embedded/values/types.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// What a query is for.
struct QueryUse {
  bool orderNeedsTop = true;          ///< a subquery or derived table
  bool assigns = false;               ///< SELECT @v = …
  const tsql::InQuery* in = nullptr;  ///< the IN whose correlation is to be taken out
};

/// Queries and their sources. Holds the binders of names, constants and expressions, which the
/// queries of one statement, or of the body of one function, share.
class QueryBinder {
 public:
  QueryBinder(const BindContext& context, Translation& translation)
      : context_(context),
        translation_(translation),
        constants_(context, translation),
        names_(context, translation),
        expressions_(context, constants_, names_, *this) {}
  QueryBinder(const QueryBinder&) = delete;
  QueryBinder(QueryBinder&&) = delete;
  QueryBinder& operator=(const QueryBinder&) = delete;
  QueryBinder& operator=(QueryBinder&&) = delete;
  ~QueryBinder() = default;

  [[nodiscard]] Constants& constants() { return constants_; }
  [[nodiscard]] Names& names() { return names_; }
  [[nodiscard]] ExpressionBinder& expressions() { return expressions_; }

  /// A query that stands at `outer` (null: inside no other). Its columns have no final types yet.
  [[nodiscard]] BoundQuery bindQuery(const tsql::Query& query, const Clause* outer,
                                     const QueryUse& use);
  /// Gives the columns their types, those of a set operation in common, and their texts.
  void fixTypes(BoundQuery& query);
  /// The same for the query of an INSERT into columns of the types `targets`.
  void fixTypesForInsert(BoundQuery& query, const std::vector<Type>& targets);

  /// The text of a FROM clause; its sources are added to `scope`.
  [[nodiscard]] BoundSources bindSources(const std::vector<tsql::TableSourcePtr>& sources,
                                         Scope& scope);
  [[nodiscard]] std::string bindTable(const tsql::NamedTable& table, const std::string& alias,
                                      Scope& scope);

 private:
  // ---- bind_query.cpp
  [[nodiscard]] BoundQuery bindSetOperation(const tsql::SetOperation& operation,
                                            const tsql::Query& query, const Clause* outer);
  void bindSpecification(const tsql::QuerySpecification& specification, const tsql::Query& query,
                         const Clause* outer, const QueryUse& use, BoundSelect& select);
  void bindItems(const tsql::QuerySpecification& specification, const Clause& clause,
                 const QueryUse& use, BoundSelect& select);
  void expandStar(const tsql::Star& star, const Clause& clause, BoundSelect& select);
  void bindWhere(const tsql::Expression& condition, Scope& scope, const QueryUse& use,
                 BoundSelect& select);
  void bindGroupBy(const tsql::QuerySpecification& specification, const Clause& clause,
                   Grouping& grouping, BoundSelect& select);
  enum class KeyOf : std::uint8_t { GroupBy, OrderBy };
  [[nodiscard]] BoundExpression bindKey(const tsql::Expression& key, const Clause& clause,
                                        KeyOf use);
  void bindTop(const tsql::Top& top, BoundSelect& select);
  void bindOrderBy(const tsql::Query& query, const Clause& clause, BoundSelect& select);
  [[nodiscard]] std::string bindOrderItem(const tsql::OrderItem& item, const Clause& clause,
                                          BoundSelect& select);
  [[nodiscard]] std::optional<std::size_t> outputPosition(const tsql::Expression& expression,
                                                          const std::vector<OutputColumn>& columns);
  void orderSetOperation(const tsql::Query& query, BoundQuery& bound);

  // ---- query_types.cpp
  void collectTypes(BoundQuery& query, std::vector<Type>& types, bool& first);
  void applyTypes(BoundQuery& query, const std::vector<Type>& types);
  [[nodiscard]] std::string columnText(OutputColumn& column, const Type* type,
                                       Conversion conversion);

  // ---- bind_source.cpp, bind_applied.cpp
  [[nodiscard]] BoundSources bindSource(const tsql::TableSource& source, Scope& scope);
  [[nodiscard]] BoundSources bindDerived(const tsql::DerivedTable& derived,
                                         const std::string& alias, Scope& scope);
  [[nodiscard]] BoundSources bindJoin(const tsql::Join& join, Scope& scope);
  [[nodiscard]] BoundSources bindApply(const tsql::Join& join, Scope& scope);
  [[nodiscard]] BoundSources bindFunctionTable(const tsql::FunctionTable& function,
                                               const std::string& alias, Scope& scope);
  [[nodiscard]] BoundSources inlineApplied(const tsql::FunctionTable& function,
                                           const std::string& alias, bool outer, Scope& scope);
  [[nodiscard]] std::shared_ptr<const Routine> findFunction(
      const tsql::FunctionTable& function) const;
  Reach bindArguments(const Routine& routine, const tsql::FunctionTable& function,
                      const Clause& clause, QueryBinder& body);

  const BindContext& context_;
  Translation& translation_;
  Constants constants_;
  Names names_;
  ExpressionBinder expressions_;
};

}  // namespace azcoll::embedded
