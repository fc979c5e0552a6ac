#include "embedded/bind/in_rewrite.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

namespace azcoll::embedded {

namespace {

bool isConstant(const tsql::Expression& expression) {
  return std::holds_alternative<tsql::Literal>(expression.node) ||
         std::holds_alternative<tsql::Variable>(expression.node);
}

/// `column = constant`.
bool namesOneValue(const tsql::Expression& condition) {
  const auto* const binary = std::get_if<tsql::Binary>(&condition.node);
  return binary != nullptr && binary->op == tsql::BinaryOperator::Equal &&
         std::holds_alternative<tsql::ColumnReference>(binary->left->node) &&
         isConstant(*binary->right);
}

}  // namespace

/// Records what the condition demands of a column of the query by constants alone.
void InRewrite::noteConstantFilter(const tsql::Expression& conjunct,
                                   const BoundCondition& condition, Scope& scope) {
  const tsql::Expression* operand = nullptr;
  if (const auto* const binary = std::get_if<tsql::Binary>(&conjunct.node)) {
    if (binary->op == tsql::BinaryOperator::Equal && isConstant(*binary->right)) {
      operand = binary->left.get();
    }
  } else if (const auto* const list = std::get_if<tsql::InList>(&conjunct.node)) {
    if (!list->negated &&
        std::all_of(list->items.begin(), list->items.end(),
                    [](const tsql::ExpressionPtr& item) { return isConstant(*item); })) {
      operand = list->operand.get();
    }
  }
  if (operand != nullptr && std::holds_alternative<tsql::ColumnReference>(operand->node) &&
      !condition.column.empty()) {
    scope.constantFilters.emplace(condition.column, condition.test);
  }
}

/// What the queries around demand of a column holds for the column that must equal it as well. With
/// that condition the subquery need not gather rows that are not asked for.
void InRewrite::addConstantFilters(const Clause* outer, BoundSelect& select) {
  for (const Clause* at = outer; at != nullptr; at = at->scope.parent) {
    for (const Correlation& correlation : select.correlations) {
      const auto [from, to] = at->scope.constantFilters.equal_range(correlation.outer);
      for (auto filter = from; filter != to; ++filter) {
        select.where +=
            (select.where.empty() ? "(" : " AND (") + correlation.inner + filter->second + ")";
      }
    }
  }
}

/// Takes `inner = outer` out of a condition. False when the part is not such an equality of two
/// columns that compare as they are; nothing is bound then.
bool InRewrite::takeCorrelation(const tsql::Expression& conjunct, const Clause& clause,
                                BoundSelect& select) {
  const auto* const binary = std::get_if<tsql::Binary>(&conjunct.node);
  if (binary == nullptr || binary->op != tsql::BinaryOperator::Equal) {
    return false;
  }
  const auto* const left = std::get_if<tsql::ColumnReference>(&binary->left->node);
  const auto* const right = std::get_if<tsql::ColumnReference>(&binary->right->node);
  if (left == nullptr || right == nullptr) {
    return false;
  }
  const BoundExpression a = names_.resolve(*left, clause);
  const BoundExpression b = names_.resolve(*right, clause);
  const std::uint64_t outside = outerLevels(clause.scope.level);
  const bool innerLeft = (a.reach.levels & outside) == 0;
  const bool innerRight = (b.reach.levels & outside) == 0;
  if (innerLeft == innerRight || !sameForm(a.type, b.type) || !a.isColumn || !b.isColumn) {
    return false;
  }
  // Not part of the reach yet: a query counts as correlated by what else it takes from outside.
  select.correlationLevels |= (a.reach.levels | b.reach.levels) & outside;
  select.correlations.push_back(innerLeft ? Correlation{a.sql, b.sql} : Correlation{b.sql, a.sql});
  return true;
}

/// Takes `column = constant OR column = constant` out of a condition. False when the part is none;
/// nothing is bound then. SQLite would rather read all rows of the conditions around it.
bool InRewrite::takeAlternatives(const tsql::Expression& conjunct, const Clause& clause,
                                 BoundSelect& select) {
  const auto* const either = std::get_if<tsql::Binary>(&conjunct.node);
  if (either == nullptr || either->op != tsql::BinaryOperator::Or || !select.alternatives.empty() ||
      !namesOneValue(*either->left) || !namesOneValue(*either->right)) {
    return false;
  }
  for (const tsql::ExpressionPtr* const part : {&either->left, &either->right}) {
    BoundCondition bound = expressions_.bindCondition(**part, clause, Unknown::AsFalse);
    select.reach |= bound.reach;
    select.alternatives.push_back(std::move(bound.sql));
  }
  return true;
}

/// What was taken out and cannot stay out goes back into the condition: equalities of a query that
/// is correlated by other parts as well, and alternatives of a query that is asked anew for every
/// row, which is better off in one piece.
void InRewrite::putBack(BoundSelect& select) {
  if (select.correlated) {
    for (const Correlation& correlation : select.correlations) {
      select.where += (select.where.empty() ? "" : " AND ");
      select.where += "(" + correlation.inner + " = " + correlation.outer + ")";
    }
    select.correlations.clear();
  }
  if (select.correlations.empty() && !select.alternatives.empty()) {
    select.where += (select.where.empty() ? "(" : " AND (") + select.alternatives.front() + " OR " +
                    select.alternatives.back() + ")";
    select.alternatives.clear();
  }
}

}  // namespace azcoll::embedded
