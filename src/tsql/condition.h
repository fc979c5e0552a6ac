#pragma once

#include <variant>

#include "tsql/ast.h"

namespace azcoll::tsql {

/// Whether an expression is true or false instead of a value: T-SQL never takes one for the other.
inline bool isCondition(const Expression& expression) {
  if (const auto* const unary = std::get_if<Unary>(&expression.node)) {
    return unary->op == UnaryOperator::Not;
  }
  if (const auto* const binary = std::get_if<Binary>(&expression.node)) {
    return binary->op >= BinaryOperator::Equal;
  }
  return std::holds_alternative<Between>(expression.node) ||
         std::holds_alternative<Like>(expression.node) ||
         std::holds_alternative<InList>(expression.node) ||
         std::holds_alternative<InQuery>(expression.node) ||
         std::holds_alternative<IsNull>(expression.node) ||
         std::holds_alternative<Exists>(expression.node);
}

}  // namespace azcoll::tsql
