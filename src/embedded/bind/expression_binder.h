#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/bind/constants.h"
#include "embedded/bind/names.h"
#include "embedded/bind/scope.h"
#include "embedded/bind/translation.h"
#include "embedded/values/types.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

class QueryBinder;

/// What becomes of a condition that is unknown, where it stands.
enum class Unknown : std::uint8_t {
  Kept,    ///< it makes a difference: under NOT, in a CHECK
  AsFalse  ///< the row is left out, as for false
};

/// Values and conditions. What T-SQL and SQLite evaluate alike is written as it is; the rest
/// becomes a call of a function `ts_*`.
class ExpressionBinder {
 public:
  /// `queries` binds the queries inside.
  ExpressionBinder(const BindContext& context, Constants& constants, Names& names,
                   QueryBinder& queries)
      : context_(context), constants_(constants), names_(names), queries_(queries) {}

  /// A value.
  [[nodiscard]] BoundExpression bind(const tsql::Expression& expression, const Clause& clause);
  /// A condition.
  [[nodiscard]] BoundCondition bindCondition(const tsql::Expression& expression,
                                             const Clause& clause, Unknown unknown);

 private:
  // ---- bind_expression.cpp
  [[nodiscard]] BoundExpression bindNode(const tsql::Expression& expression, const Clause& clause);
  [[nodiscard]] BoundExpression bindUnary(const tsql::Unary& node, const tsql::Position& position,
                                          const Clause& clause);
  [[nodiscard]] BoundExpression bindArithmetic(const tsql::Binary& node,
                                               const tsql::Position& position,
                                               const Clause& clause);
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
                                         const Clause& clause);
  [[nodiscard]] std::vector<std::string> bindTests(const tsql::Case& node,
                                                   const tsql::Position& position,
                                                   const Clause& clause, std::string& sql,
                                                   Reach& reach);
  [[nodiscard]] BoundExpression bindScalarQuery(const tsql::ScalarQuery& node,
                                                const Clause& clause);

  // ---- bind_function.cpp, bind_date_function.cpp, bind_aggregate.cpp
  [[nodiscard]] BoundExpression bindCall(const tsql::FunctionCall& call,
                                         const tsql::Position& position, const Clause& clause);
  [[nodiscard]] BoundExpression bindAggregate(const tsql::FunctionCall& call,
                                              const tsql::Position& position, const Clause& clause);
  [[nodiscard]] BoundExpression bindAggregated(const tsql::Expression& argument,
                                               const tsql::Position& position,
                                               const Clause& clause);
  [[nodiscard]] BoundExpression bindTotal(bool sum, const std::string& list,
                                          const BoundExpression& operand,
                                          const tsql::Position& position) const;
  [[nodiscard]] BoundExpression bindTextCall(std::string_view name, const tsql::FunctionCall& call,
                                             const tsql::Position& position, const Clause& clause);
  [[nodiscard]] std::optional<BoundExpression> bindDateCall(std::string_view name,
                                                            const tsql::FunctionCall& call,
                                                            const tsql::Position& position,
                                                            const Clause& clause);
  [[nodiscard]] BoundExpression bindIsNull(const tsql::FunctionCall& call, const Clause& clause);
  [[nodiscard]] BoundExpression bindNullIf(const tsql::FunctionCall& call,
                                           const tsql::Position& position, const Clause& clause);
  [[nodiscard]] BoundExpression bindAbs(const tsql::FunctionCall& call,
                                        const tsql::Position& position, const Clause& clause);
  [[nodiscard]] BoundExpression bindCoalesce(const tsql::FunctionCall& call,
                                             const tsql::Position& position, const Clause& clause);
  [[nodiscard]] BoundExpression bindCast(const tsql::Cast& node, const tsql::Position& position,
                                         const Clause& clause);
  [[nodiscard]] int bindStyle(const tsql::Expression& expression, const Type& from, const Type& to);
  [[nodiscard]] BoundExpression bindText(const tsql::Expression& expression, const Clause& clause);
  static void requireArguments(const tsql::FunctionCall& call, std::size_t least, std::size_t most);

  // ---- bind_condition.cpp
  [[nodiscard]] BoundCondition bindComparison(const tsql::Binary& node,
                                              const tsql::Position& position, const Clause& clause);
  [[nodiscard]] BoundCondition compare(std::string_view op, BoundExpression& left,
                                       BoundExpression& right, const tsql::Position& position);
  [[nodiscard]] std::optional<bool> foldConstants(const tsql::Binary& node);
  [[nodiscard]] BoundCondition bindBetween(const tsql::Between& node,
                                           const tsql::Position& position, const Clause& clause);
  [[nodiscard]] BoundCondition bindLike(const tsql::Like& node, const tsql::Position& position,
                                        const Clause& clause);
  [[nodiscard]] BoundCondition bindInList(const tsql::InList& node, const tsql::Position& position,
                                          const Clause& clause);
  [[nodiscard]] BoundCondition bindInQuery(const tsql::InQuery& node,
                                           const tsql::Position& position, const Clause& clause,
                                           Unknown unknown);
  [[nodiscard]] BoundCondition bindExists(const tsql::Exists& node, const Clause& clause);

  const BindContext& context_;
  Constants& constants_;
  Names& names_;
  QueryBinder& queries_;
};

}  // namespace azcoll::embedded
