#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "embedded/bind/constants.h"
#include "embedded/bind/names.h"
#include "embedded/bind/scope.h"
#include "embedded/bind/translation.h"
#include "embedded/values/types.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

class QueryBinder;

/// Values and conditions. What T-SQL and SQLite evaluate alike is written as it is; the rest
/// becomes a call of a function `ts_*`.
class ExpressionBinder {
 public:
  /// `queries` binds the queries inside.
  ExpressionBinder(const BindContext& context, Translation& translation, Constants& constants,
                   Names& names, QueryBinder& queries)
      : context_(context),
        translation_(translation),
        constants_(constants),
        names_(names),
        queries_(queries) {}

  /// A value.
  [[nodiscard]] BoundExpression bind(const tsql::Expression& expression, const Scope& scope);
  /// A condition. `nullIsFalse`: where it stands, unknown and false come to the same.
  [[nodiscard]] BoundCondition bindCondition(const tsql::Expression& expression, const Scope& scope,
                                             bool nullIsFalse);

 private:
  // ---- bind_expression.cpp
  [[nodiscard]] BoundExpression bindNode(const tsql::Expression& expression, const Scope& scope);
  [[nodiscard]] BoundExpression bindUnary(const tsql::Unary& node, const tsql::Position& position,
                                          const Scope& scope);
  [[nodiscard]] BoundExpression bindArithmetic(const tsql::Binary& node,
                                               const tsql::Position& position, const Scope& scope);
  [[nodiscard]] BoundExpression joinTexts(BoundExpression& left, BoundExpression& right);
  [[nodiscard]] BoundExpression evaluateIntegers(tsql::BinaryOperator op, BoundExpression& left,
                                                 BoundExpression& right, const Type& type);
  [[nodiscard]] BoundExpression evaluateDecimals(tsql::BinaryOperator op, BoundExpression& left,
                                                 BoundExpression& right,
                                                 const tsql::Position& position);
  [[nodiscard]] BoundExpression evaluateFloats(tsql::BinaryOperator op, BoundExpression& left,
                                               BoundExpression& right,
                                               const tsql::Position& position);
  [[nodiscard]] BoundExpression bindCase(const tsql::Case& node, const tsql::Position& position,
                                         const Scope& scope);
  [[nodiscard]] BoundExpression bindScalarQuery(const tsql::ScalarQuery& node, const Scope& scope);

  // ---- bind_function.cpp, bind_date_function.cpp, bind_aggregate.cpp
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
  static void requireArguments(const tsql::FunctionCall& call, std::size_t least, std::size_t most);

  // ---- bind_condition.cpp
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

  const BindContext& context_;
  Translation& translation_;
  Constants& constants_;
  Names& names_;
  QueryBinder& queries_;
};

}  // namespace azcoll::embedded
