#include <compare>
#include <span>

#include "data/decimal.h"
#include "embedded/bind/bound_query.h"
#include "embedded/bind/expression_binder.h"
#include "embedded/bind/query_binder.h"
#include "embedded/bind/scope.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/conversions.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "text/joining.h"

namespace azcoll::embedded {

namespace {

std::string_view comparisonSymbol(tsql::BinaryOperator op) {
  switch (op) {
    case tsql::BinaryOperator::Equal:
      return " = ";
    case tsql::BinaryOperator::NotEqual:
      return " <> ";
    case tsql::BinaryOperator::Less:
      return " < ";
    case tsql::BinaryOperator::Greater:
      return " > ";
    case tsql::BinaryOperator::LessEqual:
      return " <= ";
    default:
      return " >= ";
  }
}

bool holds(tsql::BinaryOperator op, std::strong_ordering order) {
  switch (op) {
    case tsql::BinaryOperator::Equal:
      return std::is_eq(order);
    case tsql::BinaryOperator::NotEqual:
      return std::is_neq(order);
    case tsql::BinaryOperator::Less:
      return std::is_lt(order);
    case tsql::BinaryOperator::Greater:
      return std::is_gt(order);
    case tsql::BinaryOperator::LessEqual:
      return std::is_lteq(order);
    default:
      return std::is_gteq(order);
  }
}

}  // namespace

BoundCondition ExpressionBinder::bindCondition(const tsql::Expression& expression,
                                               const Clause& clause, Unknown unknown) {
  const tsql::Position& position = expression.position;
  if (const auto* const unary = std::get_if<tsql::Unary>(&expression.node)) {
    if (unary->op == tsql::UnaryOperator::Not) {
      // Under NOT unknown stays unknown, while false becomes true.
      const BoundCondition operand = bindCondition(*unary->operand, clause, Unknown::Kept);
      return {"NOT (" + operand.sql + ")", operand.reach};
    }
  }
  if (const auto* const binary = std::get_if<tsql::Binary>(&expression.node)) {
    if (binary->op == tsql::BinaryOperator::And || binary->op == tsql::BinaryOperator::Or) {
      const BoundCondition left = bindCondition(*binary->left, clause, unknown);
      const BoundCondition right = bindCondition(*binary->right, clause, unknown);
      const Reach reach = left.reach | right.reach;
      // AND needs no parentheses: an OR inside it has its own.
      return {binary->op == tsql::BinaryOperator::And ? left.sql + " AND " + right.sql
                                                      : "(" + left.sql + " OR " + right.sql + ")",
              reach};
    }
    return bindComparison(*binary, position, clause);
  }
  if (const auto* const between = std::get_if<tsql::Between>(&expression.node)) {
    return bindBetween(*between, position, clause);
  }
  if (const auto* const like = std::get_if<tsql::Like>(&expression.node)) {
    return bindLike(*like, position, clause);
  }
  if (const auto* const list = std::get_if<tsql::InList>(&expression.node)) {
    return bindInList(*list, position, clause);
  }
  if (const auto* const query = std::get_if<tsql::InQuery>(&expression.node)) {
    return bindInQuery(*query, position, clause, unknown);
  }
  if (const auto* const isNull = std::get_if<tsql::IsNull>(&expression.node)) {
    BoundExpression operand = bind(*isNull->operand, clause);
    const std::string sql = constants_.inOwnType(operand);
    return {"(" + sql + (isNull->negated ? " IS NOT NULL)" : " IS NULL)"), operand.reach};
  }
  if (const auto* const exists = std::get_if<tsql::Exists>(&expression.node)) {
    return bindExists(*exists, clause);
  }
  refuse(context_.text, position, "this expression as a condition");
}

BoundCondition ExpressionBinder::bindComparison(const tsql::Binary& node,
                                                const tsql::Position& position,
                                                const Clause& clause) {
  if (const auto folded = foldConstants(node)) {
    return {*folded ? "1" : "0", {}, folded};
  }
  BoundExpression left = bind(*node.left, clause);
  BoundExpression right = bind(*node.right, clause);
  return compare(comparisonSymbol(node.op), left, right, position);
}

/// `0 = 1` and the like, of whole numbers: decided here, so that SQLite sees a condition that never
/// (or always) holds and does not read the table.
std::optional<bool> ExpressionBinder::foldConstants(const tsql::Binary& node) {
  const auto* const left = std::get_if<tsql::Literal>(&node.left->node);
  const auto* const right = std::get_if<tsql::Literal>(&node.right->node);
  if (left == nullptr || right == nullptr || left->kind != tsql::LiteralKind::Integer ||
      right->kind != tsql::LiteralKind::Integer) {
    return std::nullopt;
  }
  const auto a = Decimal::parse(left->text);
  const auto b = Decimal::parse(right->text);
  if (!a || !b) {
    return std::nullopt;
  }
  // The outcome, not the numbers, is in the plan.
  constants_.guardText(*left);
  constants_.guardText(*right);
  return holds(node.op, *a <=> *b);
}

BoundCondition ExpressionBinder::compare(std::string_view op, BoundExpression& left,
                                         BoundExpression& right, const tsql::Position& position) {
  const Type common = constants_.unify({&left, &right}, position);
  // A column brings its collation along; two computed texts would be compared byte by byte.
  const bool plain = left.isColumn || right.isColumn;
  const std::string a = constants_.coerceToCompare(left, common);
  const std::string b = constants_.coerceToCompare(right, common);
  std::string test;
  if (common.isText() && !plain) {
    test += kCollateClause;
  }
  test += std::string(op) + b;
  BoundCondition bound{"(" + a + test + ")", left.reach | right.reach};
  // For InRewrite, which may apply the test to another column.
  if (left.isColumn && a == left.sql) {
    bound.column = a;
    bound.test = test;
  }
  return bound;
}

BoundCondition ExpressionBinder::bindBetween(const tsql::Between& node,
                                             const tsql::Position& position, const Clause& clause) {
  BoundExpression operand = bind(*node.operand, clause);
  BoundExpression low = bind(*node.low, clause);
  BoundExpression high = bind(*node.high, clause);
  // T-SQL compares with each limit in a type of its own; here all three share one.
  if (operand.type.isText() && low.type.isText() != high.type.isText()) {
    refuse(context_.text, position, "BETWEEN a text and a number");
  }
  const Type common = constants_.unify({&operand, &low, &high}, position);
  std::string sql = "(" + constants_.coerceToCompare(operand, common);
  // SQLite compares with both limits by the collation of what stands on the left.
  if (common.isText() && !operand.isColumn) {
    sql += kCollateClause;
  }
  const std::string from = constants_.coerceToCompare(low, common);
  const std::string to = constants_.coerceToCompare(high, common);
  sql += (node.negated ? " NOT BETWEEN " : " BETWEEN ") + from + " AND " + to + ")";
  return {sql, operand.reach | low.reach | high.reach};
}

BoundCondition ExpressionBinder::bindLike(const tsql::Like& node, const tsql::Position& position,
                                          const Clause& clause) {
  const BoundExpression operand = bindText(*node.operand, clause);
  const BoundExpression pattern = bindText(*node.pattern, clause);
  if (operand.type.isFloat()) {
    refuse(context_.text, position, "LIKE on a floating-point number");
  }
  // SQLite's own LIKE has no sets of characters and folds ASCII letters only.
  std::string sql = node.negated ? "(NOT ts_like(" : "(ts_like(";
  sql += operand.sql + "," + pattern.sql + ",";
  Reach reach = operand.reach | pattern.reach;
  if (node.escape) {
    const BoundExpression escape = bindText(*node.escape, clause);
    sql += escape.sql;
    reach |= escape.reach;
  } else {
    sql += "NULL";
  }
  sql += operand.type.isUnicode() || pattern.type.isUnicode() ? ",1))" : ",0))";
  return {sql, reach};
}

BoundCondition ExpressionBinder::bindInList(const tsql::InList& node,
                                            const tsql::Position& position, const Clause& clause) {
  BoundExpression operand = bind(*node.operand, clause);
  std::vector<BoundExpression> items;
  items.reserve(node.items.size());
  std::vector<BoundExpression*> all{&operand};
  for (const tsql::ExpressionPtr& item : node.items) {
    items.push_back(bind(*item, clause));
    all.push_back(&items.back());
  }
  const Type common = constants_.unify(all, position);
  const std::string left = constants_.coerceToCompare(operand, common);
  std::string test;
  // SQLite compares with a list by the collation of what stands on the left.
  if (common.isText() && !operand.isColumn) {
    test += kCollateClause;
  }
  test += node.negated ? " NOT IN (" : " IN (";
  test += joinAll(std::span(all).subspan(1), ",",
                  [&](BoundExpression* item) { return constants_.coerceToCompare(*item, common); });
  test += ")";
  BoundCondition bound{"(" + left + test + ")", {}};
  for (const BoundExpression* const compared : all) {
    bound.reach |= compared->reach;
  }
  if (operand.isColumn && left == operand.sql) {
    bound.column = left;
    bound.test = test;
  }
  return bound;
}

BoundCondition ExpressionBinder::bindInQuery(const tsql::InQuery& node,
                                             const tsql::Position& position, const Clause& clause,
                                             Unknown unknown) {
  BoundExpression operand = bind(*node.operand, clause);
  QueryUse use;
  // A row value that is NULL somewhere makes IN unknown where the plain form would be false: only
  // where both come to the same may the correlation become part of the row value.
  if (unknown == Unknown::AsFalse && !node.negated && context_.rewriteIn) {
    use.in = &node;
  }
  BoundQuery query = queries_.bindQuery(*node.query, &clause, use);
  if (query.columns().size() != 1) {
    throw SqlError(116,
                   "Only one expression can be specified in the select list when the subquery "
                   "is not introduced with EXISTS.");
  }
  queries_.fixTypes(query);
  OutputColumn& column = query.columns().front();
  // The query's column is settled already: only its type matters here.
  BoundExpression inner;
  inner.type = column.type;
  inner.sql = column.sql;
  const Type common = constants_.unify({&operand, &inner}, position);
  const bool plain = operand.isColumn;
  std::string left = constants_.coerceToCompare(operand, common);
  if (common.isText() && !plain) {
    left += kCollateClause;
  }
  const bool same = sameForm(column.type, common);
  const Reach reach = operand.reach | query.reach();
  std::string negation = node.negated ? " NOT IN (" : " IN (";
  if (query.select && !query.select->correlations.empty()) {
    BoundSelect& select = *query.select;
    // A plain SELECT: its column can be converted in place.
    column.sql = constants_.coerce(inner, common, Conversion::Compare);
    std::string outer = "(" + left;
    for (const Correlation& correlation : select.correlations) {
      outer += "," + correlation.outer;
      OutputColumn extra;
      extra.sql = correlation.inner;
      select.columns.push_back(std::move(extra));
    }
    return {"(" + outer + ")" + negation + render(query) + "))", reach};
  }
  if (same) {
    return {"(" + left + negation + render(query) + "))", reach};
  }
  // Converted around the query: DISTINCT and UNION inside it work on the values as they are.
  inner.sql = "c1";
  return {"(" + left + negation + "SELECT " +
              constants_.coerce(inner, common, Conversion::Compare) + " FROM (" + render(query) +
              ")))",
          reach};
}

BoundCondition ExpressionBinder::bindExists(const tsql::Exists& node, const Clause& clause) {
  BoundQuery query = queries_.bindQuery(*node.query, &clause, {});
  // The list of an EXISTS is bound for its errors and never evaluated. Groups and TOP decide
  // whether there is a row, so they stay.
  if (query.select && !query.select->grouped && query.select->limit.empty()) {
    return {"EXISTS (SELECT 1" + renderTail(*query.select) + ")", query.reach()};
  }
  queries_.fixTypes(query);
  return {"EXISTS (" + render(query) + ")", query.reach()};
}

}  // namespace azcoll::embedded
