#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "embedded/bind/bound_query.h"
#include "embedded/bind/scope.h"
#include "embedded/catalogue/catalogue.h"
#include "embedded/plan/result_column.h"
#include "embedded/plan/slots.h"
#include "embedded/values/conversions.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// What one statement takes with it while it is bound: shared by the binders of the statement and
/// of the functions that are written out in it.
struct Emission {
  std::vector<Slot> slots;
  std::vector<Guard>* guards = nullptr;
  std::size_t nextAlias = 1;
  std::uint64_t touchedLevels = 0;  ///< scopes that a column was found in, a bit each
  bool touchedArgument = false;     ///< a parameter of a function that stands for a column was used
  std::size_t functionDepth = 0;
  std::size_t queries = 0;  ///< SELECTs bound so far
  /// A constant that does not convert: told when the statement runs, not when it is compiled.
  std::optional<SqlError> failure{};
};

/// Everything a binder looks things up in.
struct BindContext {
  const Catalogue* catalogue = nullptr;
  const VariableTable* variables = nullptr;
  std::string_view text;         ///< the batch, for messages
  bool constantsInside = false;  ///< write constants into the SQLite text instead of binding them
  bool rewriteIn = true;         ///< turn correlated IN into uncorrelated row values where allowed
};

/// A change: its text, and what reporting its failure needs to know of it.
struct BoundChange {
  std::string sql;
  Catalogue::TablePtr table;
  std::vector<std::size_t> computed;  ///< columns that an UPDATE computes from the row
};

/// Refuses the hints that a table which is to be changed cannot have (1065).
void refuseReadingHints(const tsql::NamedTable& target);

/// Turns one statement of T-SQL into a statement of SQLite of the same meaning. What it cannot keep
/// the meaning of it refuses (`tsql::SyntaxError` with number 0); what is wrong it refuses as SQL
/// Server does (`SqlError`).
class Binder {
 public:
  Binder(const BindContext& context, Emission& emission) : context_(context), emission_(emission) {}

  /// Statements. The slots are left in the emission.
  [[nodiscard]] std::string bindSelect(const tsql::Query& query,
                                       std::vector<ResultColumn>& columns);
  [[nodiscard]] std::string bindAssignments(const tsql::Query& query,
                                            std::vector<AssignTarget>& targets);
  [[nodiscard]] std::string bindValue(const tsql::Expression& expression, const Type& type);
  [[nodiscard]] std::string bindTest(const tsql::Expression& condition);
  [[nodiscard]] BoundChange bindInsert(const tsql::InsertStatement& statement);
  [[nodiscard]] BoundChange bindUpdate(const tsql::UpdateStatement& statement);
  [[nodiscard]] BoundChange bindDelete(const tsql::DeleteStatement& statement);
  /// Binds the body of a function for its errors alone (208, 207, 4514, 4506 …).
  void checkFunction(const Routine& routine);
  /// The condition of a CHECK over the columns of `table`, for its definition.
  [[nodiscard]] std::string bindCheck(const tsql::Expression& condition, const Table& table);

 private:
  // ---- names (bind_names.cpp)
  [[nodiscard]] BoundExpression resolve(const tsql::ColumnReference& reference, const Scope& scope);
  [[nodiscard]] BoundExpression resolveBare(const std::string& name, const Scope& scope);
  [[nodiscard]] BoundExpression resolveQualified(const tsql::ObjectName& name, const Scope& scope);
  [[nodiscard]] BoundExpression take(const Source& source, std::size_t column, const Scope& scope);
  [[nodiscard]] BoundExpression bindVariable(const tsql::Variable& variable);
  [[nodiscard]] std::shared_ptr<const Table> findTable(const tsql::ObjectName& name) const;
  [[nodiscard]] std::size_t variableIndex(const std::string& name) const;
  [[nodiscard]] std::string newAlias();

  // ---- constants and types (bind_types.cpp)
  [[nodiscard]] BoundExpression bindLiteral(const tsql::Literal& literal) const;
  [[nodiscard]] std::string natural(BoundExpression& expression);
  [[nodiscard]] std::string coerce(BoundExpression& expression, const Type& type,
                                   Conversion conversion);
  [[nodiscard]] std::string coerceToCompare(BoundExpression& expression, const Type& common);
  [[nodiscard]] Type unify(const std::vector<BoundExpression*>& operands,
                           const tsql::Position& position);
  [[nodiscard]] Type unifyPending(const BoundExpression& pending, const Type& known,
                                  const tsql::Position& position);
  [[nodiscard]] Type common(const Type& left, const Type& right, const tsql::Position& position);
  [[nodiscard]] std::string emitSlot(const BoundExpression& expression, const Type& target,
                                     Conversion conversion);
  [[nodiscard]] std::string emitConstant(const BoundExpression& expression, const Type& target,
                                         Conversion conversion) const;
  void guard(const BoundExpression& expression, Guard::Kind kind, const Type& type);
  void guardText(const tsql::Literal& literal);
  void requireConvertible(const Type& from, const Type& to, const tsql::Position& position) const;

  // ---- expressions (bind_expression.cpp)
  [[nodiscard]] BoundExpression bind(const tsql::Expression& expression, const Scope& scope);
  [[nodiscard]] BoundExpression bindNode(const tsql::Expression& expression, const Scope& scope);
  [[nodiscard]] BoundExpression bindUnary(const tsql::Unary& node, const tsql::Position& position,
                                          const Scope& scope);
  [[nodiscard]] BoundExpression bindArithmetic(const tsql::Binary& node,
                                               const tsql::Position& position, const Scope& scope);
  [[nodiscard]] BoundExpression joinTexts(BoundExpression& left, BoundExpression& right);
  [[nodiscard]] BoundExpression reckonIntegers(tsql::BinaryOperator op, BoundExpression& left,
                                               BoundExpression& right, const Type& type);
  [[nodiscard]] BoundExpression reckonDecimals(tsql::BinaryOperator op, BoundExpression& left,
                                               BoundExpression& right,
                                               const tsql::Position& position);
  [[nodiscard]] BoundExpression reckonFloats(tsql::BinaryOperator op, BoundExpression& left,
                                             BoundExpression& right,
                                             const tsql::Position& position);
  [[nodiscard]] BoundExpression bindCase(const tsql::Case& node, const tsql::Position& position,
                                         const Scope& scope);
  [[nodiscard]] BoundExpression bindScalarQuery(const tsql::ScalarQuery& node, const Scope& scope);

  // ---- functions (bind_function.cpp, bind_date_function.cpp)
  [[nodiscard]] BoundExpression bindCall(const tsql::FunctionCall& call,
                                         const tsql::Position& position, const Scope& scope);
  [[nodiscard]] BoundExpression bindAggregate(const tsql::FunctionCall& call,
                                              const tsql::Position& position, const Scope& scope);
  [[nodiscard]] BoundExpression bindAggregated(const tsql::Expression& argument,
                                               const tsql::Position& position, const Scope& scope);
  [[nodiscard]] BoundExpression bindTextCall(std::string_view name, const tsql::FunctionCall& call,
                                             const tsql::Position& position, const Scope& scope);
  [[nodiscard]] std::optional<BoundExpression> bindDateCall(std::string_view name,
                                                            const tsql::FunctionCall& call,
                                                            const tsql::Position& position,
                                                            const Scope& scope);
  [[nodiscard]] BoundExpression bindCoalesce(const tsql::FunctionCall& call,
                                             const tsql::Position& position, const Scope& scope);
  [[nodiscard]] BoundExpression bindCast(const tsql::Cast& node, const tsql::Position& position,
                                         const Scope& scope);
  [[nodiscard]] int bindStyle(const tsql::Expression& expression, const Type& from, const Type& to);
  [[nodiscard]] std::string bindText(const tsql::Expression& expression, const Scope& scope,
                                     Type* type = nullptr);
  void requireArguments(const tsql::FunctionCall& call, std::size_t least, std::size_t most) const;

  // ---- conditions (bind_condition.cpp)
  [[nodiscard]] BoundCondition bindCondition(const tsql::Expression& expression, const Scope& scope,
                                             bool nullIsFalse);
  [[nodiscard]] BoundCondition bindComparison(const tsql::Binary& node,
                                              const tsql::Position& position, const Scope& scope);
  [[nodiscard]] BoundCondition compare(std::string_view op, BoundExpression& left,
                                       BoundExpression& right, const tsql::Position& position);
  [[nodiscard]] std::optional<bool> foldConstants(const tsql::Binary& node);
  [[nodiscard]] std::string bindBetween(const tsql::Between& node, const tsql::Position& position,
                                        const Scope& scope);
  [[nodiscard]] std::string bindLike(const tsql::Like& node, const tsql::Position& position,
                                     const Scope& scope);
  [[nodiscard]] BoundCondition bindInList(const tsql::InList& node, const tsql::Position& position,
                                          const Scope& scope);
  [[nodiscard]] std::string bindInQuery(const tsql::InQuery& node, const tsql::Position& position,
                                        const Scope& scope, bool nullIsFalse);
  [[nodiscard]] std::string bindExists(const tsql::Exists& node, const Scope& scope);

  // ---- sources (bind_source.cpp)
  [[nodiscard]] std::string bindSource(const tsql::TableSource& source, Scope& scope);
  [[nodiscard]] std::string bindSources(const std::vector<tsql::TableSourcePtr>& sources,
                                        Scope& scope);
  [[nodiscard]] std::string bindTable(const tsql::NamedTable& table, const std::string& alias,
                                      Scope& scope);
  [[nodiscard]] std::string bindDerived(const tsql::DerivedTable& derived, const std::string& alias,
                                        Scope& scope);
  [[nodiscard]] std::string bindJoin(const tsql::Join& join, Scope& scope);
  [[nodiscard]] std::string bindApply(const tsql::Join& join, Scope& scope);
  [[nodiscard]] std::string bindFunctionTable(const tsql::FunctionTable& function,
                                              const std::string& alias, Scope& scope);
  [[nodiscard]] std::string inlineApplied(const tsql::FunctionTable& function,
                                          const std::string& alias, bool outer, Scope& scope);
  [[nodiscard]] std::shared_ptr<const Routine> findFunction(
      const tsql::FunctionTable& function) const;
  void bindArguments(const Routine& routine, const tsql::FunctionTable& function,
                     const Scope& scope, Binder& body);
  void expose(Scope& scope, Source source);
  void describeDerived(BoundQuery& query, Source& source);

  // ---- queries (bind_query.cpp, render_query.cpp)
  struct QueryUse {
    bool orderNeedsTop = true;          ///< a subquery or derived table
    bool assigns = false;               ///< SELECT @v = …
    const tsql::InQuery* in = nullptr;  ///< the IN whose correlation is to be taken out
  };
  [[nodiscard]] BoundQuery bindQuery(const tsql::Query& query, const Scope* outer,
                                     const QueryUse& use);
  [[nodiscard]] BoundQuery bindSetOperation(const tsql::SetOperation& operation,
                                            const tsql::Query& query, const Scope* outer);
  void bindSpecification(const tsql::QuerySpecification& specification, const tsql::Query& query,
                         const Scope* outer, const QueryUse& use, BoundSelect& select);
  void bindItems(const tsql::QuerySpecification& specification, const Scope& scope,
                 const QueryUse& use, BoundSelect& select);
  void expandStar(const tsql::Star& star, const Scope& scope, BoundSelect& select);
  void bindWhere(const tsql::Expression& condition, const Scope& scope, const QueryUse& use,
                 BoundSelect& select);
  void noteConstantFilter(const tsql::Expression& conjunct, const BoundCondition& condition,
                          const Scope& scope);
  static void addConstantFilters(const Scope* outer, BoundSelect& select);
  bool bindCorrelation(const tsql::Expression& conjunct, const Scope& scope, BoundSelect& select);
  bool bindAlternatives(const tsql::Expression& conjunct, const Scope& scope, BoundSelect& select);
  void bindGroupBy(const tsql::QuerySpecification& specification, Scope& scope,
                   BoundSelect& select);
  [[nodiscard]] BoundExpression bindKey(const tsql::Expression& key, const Scope& scope,
                                        bool groups);
  void bindTop(const tsql::Top& top, BoundSelect& select);
  void bindOrderBy(const tsql::Query& query, const Scope& scope, BoundSelect& select);
  [[nodiscard]] std::string bindOrderItem(const tsql::OrderItem& item, const Scope& scope,
                                          BoundSelect& select);
  [[nodiscard]] std::optional<std::size_t> outputPosition(const tsql::Expression& expression,
                                                          const std::vector<OutputColumn>& columns);
  void orderSetOperation(const tsql::Query& query, BoundQuery& bound);
  void settle(BoundQuery& query);
  void collectTypes(BoundQuery& query, std::vector<Type>& types, bool& first);
  void applyTypes(BoundQuery& query, const std::vector<Type>& types);
  void settleForInsert(BoundQuery& query, const std::vector<Type>& targets);
  [[nodiscard]] std::string columnText(OutputColumn& column, const Type* type,
                                       Conversion conversion);

  // ---- changes (bind_insert.cpp, bind_change.cpp)
  [[nodiscard]] std::string insertRows(const tsql::InsertStatement& statement, const Table& table,
                                       const std::vector<std::size_t>& columns,
                                       std::vector<std::size_t>& defaults);
  [[nodiscard]] std::string insertQuery(const tsql::InsertStatement& statement, const Table& table,
                                        const std::vector<std::size_t>& columns,
                                        const std::vector<std::size_t>& defaults);
  [[nodiscard]] std::vector<std::size_t> insertColumns(const tsql::InsertStatement& statement,
                                                       const Table& table) const;
  [[nodiscard]] std::string defaultOf(const Table& table, std::size_t column);
  struct Change {
    std::shared_ptr<const Table> table;
    std::string from;          ///< sources, when there are any besides the target
    std::string targetSource;  ///< SQLite name of the target among the sources
  };
  [[nodiscard]] Change bindTarget(const tsql::NamedTable& target,
                                  const std::vector<tsql::TableSourcePtr>& from, Scope& scope);
  [[nodiscard]] std::size_t findTarget(const tsql::NamedTable& target, Scope& scope,
                                       std::string& from);
  [[nodiscard]] static std::vector<std::string> keyColumns(const Table& table);
  [[nodiscard]] std::string updateByKey(
      const Change& change, const std::vector<std::pair<std::size_t, std::string>>& assigned,
      const std::string& filter) const;
  [[nodiscard]] std::vector<std::pair<std::size_t, std::string>> bindAssigned(
      const tsql::UpdateStatement& statement, const Table& table, const Scope& scope);

  const BindContext& context_;
  Emission& emission_;
  struct Argument {
    BoundExpression value;  ///< already of the parameter's type
    bool isOfRow = false;   ///< differs from row to row of the query around the function
  };
  std::unordered_map<std::string, Argument> arguments_;  ///< of the body of an inlined function
  bool hasArguments_ = false;
  /// Variables that the statement changes from row to row: read when a row is reckoned.
  std::unordered_set<std::size_t> liveVariables_;
};

}  // namespace azcoll::embedded
