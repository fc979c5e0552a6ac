#include <algorithm>

#include "embedded/bind/bound_query.h"
#include "embedded/bind/expression_binder.h"
#include "embedded/bind/query_binder.h"
#include "embedded/bind/scope.h"
#include "embedded/plan/slots.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/conversions.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "text/letter_case.h"
#include "tsql/printer.h"

namespace azcoll::embedded {

namespace {

std::string_view arithmeticSymbol(tsql::BinaryOperator op) {
  switch (op) {
    case tsql::BinaryOperator::Add:
      return " + ";
    case tsql::BinaryOperator::Subtract:
      return " - ";
    case tsql::BinaryOperator::Multiply:
      return " * ";
    case tsql::BinaryOperator::Divide:
      return " / ";
    default:
      return " % ";
  }
}

std::string typeCode(const Type& type) { return std::to_string(encodeType(type)); }

/// The type of a sum, difference or product of decimals; nothing where SQL Server would take
/// fractional digits away.
std::optional<Type> decimalResult(tsql::BinaryOperator op, const Type& left, const Type& right) {
  constexpr int kMost = 38;
  if (op == tsql::BinaryOperator::Multiply) {
    const int scale = left.scale + right.scale;
    const int precision = left.precision + right.precision + 1;
    const bool keeps = precision <= kMost || (scale <= kMost && precision - scale <= kMost - scale);
    return keeps ? std::optional(decimalType(std::min(precision, kMost), scale)) : std::nullopt;
  }
  const int scale = std::max(left.scale, right.scale);
  const int whole = std::max(left.precision - left.scale, right.precision - right.scale);
  if (whole + scale > kMost) {
    return std::nullopt;
  }
  return decimalType(std::min(whole + scale + 1, kMost), scale);
}

}  // namespace

BoundExpression ExpressionBinder::bind(const tsql::Expression& expression, const Clause& clause) {
  if (clause.grouping != nullptr && !clause.grouping->printed.empty() &&
      clause.grouping->printed.contains(foldCase(tsql::print(expression)))) {
    // The same as a key of GROUP BY: it has one value in every group.
    Clause key = clause;
    key.grouping = nullptr;
    return bindNode(expression, key);
  }
  return bindNode(expression, clause);
}

BoundExpression ExpressionBinder::bindNode(const tsql::Expression& expression,
                                           const Clause& clause) {
  const tsql::Position& position = expression.position;
  if (const auto* const literal = std::get_if<tsql::Literal>(&expression.node)) {
    return constants_.bindLiteral(*literal);
  }
  if (const auto* const column = std::get_if<tsql::ColumnReference>(&expression.node)) {
    return names_.resolve(*column, clause);
  }
  if (const auto* const variable = std::get_if<tsql::Variable>(&expression.node)) {
    return names_.bindVariable(*variable);
  }
  if (const auto* const marker = std::get_if<tsql::Marker>(&expression.node)) {
    BoundExpression bound;
    bound.pending.emplace();
    bound.pending->source = SlotSource::Marker;
    bound.pending->index = static_cast<std::uint32_t>(marker->ordinal);
    return bound;
  }
  if (const auto* const unary = std::get_if<tsql::Unary>(&expression.node)) {
    return bindUnary(*unary, position, clause);
  }
  if (const auto* const binary = std::get_if<tsql::Binary>(&expression.node)) {
    if (binary->op <= tsql::BinaryOperator::Modulo) {
      return bindArithmetic(*binary, position, clause);
    }
  }
  if (const auto* const node = std::get_if<tsql::Case>(&expression.node)) {
    return bindCase(*node, position, clause);
  }
  if (const auto* const call = std::get_if<tsql::FunctionCall>(&expression.node)) {
    return bindCall(*call, position, clause);
  }
  if (const auto* const cast = std::get_if<tsql::Cast>(&expression.node)) {
    return bindCast(*cast, position, clause);
  }
  if (const auto* const query = std::get_if<tsql::ScalarQuery>(&expression.node)) {
    return bindScalarQuery(*query, clause);
  }
  refuse(context_.text, position, "this expression as a value");
}

BoundExpression ExpressionBinder::bindUnary(const tsql::Unary& node, const tsql::Position& position,
                                            const Clause& clause) {
  BoundExpression operand = bind(*node.operand, clause);
  if (operand.type.isText() || operand.type.isDate()) {
    // A plus leaves a text as it is.
    const bool minus = node.op == tsql::UnaryOperator::Minus;
    if (!minus && operand.type.isText()) {
      return operand;
    }
    throw SqlError(8117, "Operand data type " + std::string(typeName(operand.type)) +
                             " is invalid for " + (minus ? "minus" : "plus") + " operator.");
  }
  if (node.op == tsql::UnaryOperator::Plus || operand.type.kind == TypeKind::Null) {
    if (operand.pending && operand.pending->source == SlotSource::Marker) {
      refuse(context_.text, position, "a sign in front of a ? marker");
    }
    return operand;
  }
  if (operand.literal != nullptr && operand.pending) {
    // Part of the constant: the slot turns its sign, and the number still waits for what it meets.
    operand.pending->negate = !operand.pending->negate;
    return operand;
  }
  const std::string sql = constants_.inOwnType(operand);
  if (operand.type.isWide()) {
    return computed("ts_wide_negate(" + sql + ")", operand.type, operand.reach);
  }
  if (operand.type.isInteger()) {
    // The least number of a type has no positive counterpart in it.
    return computed("ts_integer(-(" + sql + ")," + typeCode(operand.type) + ")", operand.type,
                    operand.reach);
  }
  return computed("(-(" + sql + "))", operand.type, operand.reach);
}

BoundExpression ExpressionBinder::bindArithmetic(const tsql::Binary& node,
                                                 const tsql::Position& position,
                                                 const Clause& clause) {
  BoundExpression left = bind(*node.left, clause);
  BoundExpression right = bind(*node.right, clause);
  const auto isMarker = [](const BoundExpression& operand) {
    return operand.pending && operand.pending->source == SlotSource::Marker;
  };
  if (isMarker(left) || isMarker(right)) {
    refuse(context_.text, position, "arithmetic with a ? marker");
  }
  const auto textual = [](const BoundExpression& operand) {
    return operand.type.isText() || operand.type.kind == TypeKind::Null;
  };
  if (node.op == tsql::BinaryOperator::Add && textual(left) && textual(right) &&
      (left.type.isText() || right.type.isText())) {
    return joinTexts(left, right);
  }
  if (left.type.isDate() || right.type.isDate()) {
    refuse(context_.text, position, "arithmetic with dates (use DATEADD and DATEDIFF)");
  }
  if (left.type.isText() && right.type.isText()) {
    // In the order of BinaryOperator.
    constexpr std::string_view kVerbs[]{"add", "subtract", "multiply", "divide", "modulo"};
    throw SqlError(8117, "Operand data type " + std::string(typeName(left.type)) +
                             " is invalid for " +
                             std::string(kVerbs[static_cast<std::size_t>(node.op)]) + " operator.");
  }
  // A text takes the type of the number, a missing value that of the other side.
  const Type common = constants_.requireCommonType(left.type, right.type, position);
  const Type type = common.kind == TypeKind::Null ? kInt : common;
  if (type.isInteger()) {
    return evaluateIntegers(node.op, left, right, type);
  }
  return type.isFloat() ? evaluateFloats(node.op, left, right, position)
                        : evaluateDecimals(node.op, left, right, position);
}

BoundExpression ExpressionBinder::joinTexts(BoundExpression& left, BoundExpression& right) {
  const Type common = commonType(left.type, right.type).value_or(kNVarChar);
  const bool known = left.type.length != kUnlimited && right.type.length != kUnlimited &&
                     left.type.isText() && right.type.isText();
  const Type type{common.isUnicode() ? TypeKind::NVarChar : TypeKind::VarChar,
                  known ? left.type.length + right.type.length : kUnlimited, 0, 0};
  // By itself: C++ does not say which operand of + is evaluated first, and parameters are numbered
  // as they come.
  const std::string a = constants_.inOwnType(left);
  return computed("(" + a + "||" + constants_.inOwnType(right) + ")", type,
                  left.reach | right.reach);
}

BoundExpression ExpressionBinder::evaluateIntegers(tsql::BinaryOperator op, BoundExpression& left,
                                                   BoundExpression& right, const Type& type) {
  const auto operand = [this, &type](BoundExpression& expression) {
    return expression.type.isText() ? constants_.coerce(expression, type, Conversion::Compare)
                                    : constants_.inOwnType(expression);
  };
  const std::string a = operand(left);
  const std::string b = operand(right);
  if (op == tsql::BinaryOperator::Divide || op == tsql::BinaryOperator::Modulo) {
    return computed((op == tsql::BinaryOperator::Divide ? "ts_divide(" : "ts_modulo(") + a + "," +
                        b + "," + typeCode(type) + ")",
                    type, left.reach | right.reach);
  }
  return computed(
      "ts_integer(" + a + std::string(arithmeticSymbol(op)) + b + "," + typeCode(type) + ")", type,
      left.reach | right.reach);
}

BoundExpression ExpressionBinder::evaluateDecimals(tsql::BinaryOperator op, BoundExpression& left,
                                                   BoundExpression& right,
                                                   const tsql::Position& position) {
  if (op == tsql::BinaryOperator::Divide || op == tsql::BinaryOperator::Modulo) {
    refuse(context_.text, position, "division of decimals");
  }
  // An integer counts as a decimal of all the digits that its type can have.
  const auto asDecimal = [&](BoundExpression& operand) {
    if (operand.type.isText()) {  // takes the type of the decimal that it meets
      return left.type.isText() ? right.type : left.type;
    }
    return operand.type.isDecimal() ? operand.type : decimalType(integerDigits(operand.type), 0);
  };
  const Type a = asDecimal(left);
  const Type b = asDecimal(right);
  const std::optional<Type> result = decimalResult(op, a, b);
  if (!result) {
    refuse(context_.text, position, "decimals of more than 38 digits");
  }
  const bool product = op == tsql::BinaryOperator::Multiply;
  // A sum has operands of its own scale; a product takes them as they are.
  const auto operand = [&](BoundExpression& expression, const Type& own) {
    const Type target = product ? own : decimalType(result->isWide() ? 38 : 18, result->scale);
    if (expression.pending && expression.type.isNumber()) {
      constants_.guard(expression, Guard::Kind::SameType, expression.type);
    }
    return constants_.coerce(expression, target, Conversion::Compare);
  };
  const std::string x = operand(left, a);
  const std::string y = operand(right, b);
  if (!result->isWide()) {
    return computed("(" + x + std::string(arithmeticSymbol(op)) + y + ")", *result,
                    left.reach | right.reach);
  }
  constexpr std::string_view kNames[]{"ts_wide_add(", "ts_wide_subtract(", "ts_wide_multiply("};
  return computed(std::string(kNames[static_cast<std::size_t>(op)]) + x + "," + y + ")", *result,
                  left.reach | right.reach);
}

BoundExpression ExpressionBinder::evaluateFloats(tsql::BinaryOperator op, BoundExpression& left,
                                                 BoundExpression& right,
                                                 const tsql::Position& position) {
  if (op == tsql::BinaryOperator::Modulo) {
    refuse(context_.text, position, "the remainder of floating-point numbers");
  }
  const std::string a = constants_.coerce(left, kFloat, Conversion::Compare);
  const std::string b = constants_.coerce(right, kFloat, Conversion::Compare);
  if (op == tsql::BinaryOperator::Divide) {
    return computed("ts_float_divide(" + a + "," + b + ")", kFloat, left.reach | right.reach);
  }
  return computed("ts_float(" + a + std::string(arithmeticSymbol(op)) + b + ")", kFloat,
                  left.reach | right.reach);
}

/// What stands between WHEN and THEN; what stands before the first WHEN is added to `sql`.
std::vector<std::string> ExpressionBinder::bindTests(const tsql::Case& node,
                                                     const tsql::Position& position,
                                                     const Clause& clause, std::string& sql,
                                                     Reach& reach) {
  std::vector<std::string> tests;
  if (node.operand) {
    BoundExpression operand = bind(*node.operand, clause);
    std::vector<BoundExpression> values;
    std::vector<BoundExpression*> all{&operand};
    values.reserve(node.branches.size());
    for (const tsql::CaseBranch& branch : node.branches) {
      values.push_back(bind(*branch.when, clause));
      all.push_back(&values.back());
    }
    for (const BoundExpression* const compared : all) {
      reach |= compared->reach;
    }
    const Type common = constants_.unify(all, position);
    sql += " " + constants_.coerceToCompare(operand, common);
    if (common.isText() && !operand.isColumn) {
      sql += kCollateClause;
    }
    for (BoundExpression& value : values) {
      tests.push_back(constants_.coerceToCompare(value, common));
    }
  } else {
    for (const tsql::CaseBranch& branch : node.branches) {
      BoundCondition test = bindCondition(*branch.when, clause, Unknown::AsFalse);
      reach |= test.reach;
      tests.push_back(std::move(test.sql));
    }
  }
  return tests;
}

BoundExpression ExpressionBinder::bindCase(const tsql::Case& node, const tsql::Position& position,
                                           const Clause& clause) {
  std::string sql = "CASE";
  Reach reach;
  std::vector<BoundExpression> results;
  const std::vector<std::string> tests = bindTests(node, position, clause, sql, reach);
  for (const tsql::CaseBranch& branch : node.branches) {
    results.push_back(bind(*branch.then, clause));
  }
  if (node.otherwise) {
    results.push_back(bind(*node.otherwise, clause));
  }
  Type type;
  for (BoundExpression& result : results) {
    reach |= result.reach;
    // The type of a CASE is that of its results as they stand: constants included.
    if (result.pending && result.type.isNumber() && !result.type.isFloat()) {
      constants_.guard(result, Guard::Kind::SameType, result.type);
    }
    type = constants_.requireCommonType(type, result.type, position);
  }
  if (type.kind == TypeKind::Null) {
    throw SqlError(8133,
                   "At least one of the result expressions in a CASE specification must be "
                   "an expression other than the NULL constant.");
  }
  for (std::size_t i = 0; i < node.branches.size(); ++i) {
    sql +=
        " WHEN " + tests[i] + " THEN " + constants_.coerce(results[i], type, Conversion::Compare);
  }
  if (node.otherwise) {
    sql += " ELSE " + constants_.coerce(results.back(), type, Conversion::Compare);
  }
  return computed(sql + " END", type, reach);
}

BoundExpression ExpressionBinder::bindScalarQuery(const tsql::ScalarQuery& node,
                                                  const Clause& clause) {
  BoundQuery query = queries_.bindQuery(*node.query, &clause, {});
  if (query.columns().size() != 1) {
    throw SqlError(116,
                   "Only one expression can be specified in the select list when the subquery "
                   "is not introduced with EXISTS.");
  }
  queries_.fixTypes(query);
  const Type type = query.columns().front().type;
  const std::string text = render(query);
  if (query.atMostOneRow()) {
    return computed("(" + text + ")", type, query.reach());
  }
  // The second row is asked for, to be refused.
  return computed("(SELECT ts_single(count(*),c1) FROM (SELECT c1 FROM (" + text + ") LIMIT 2))",
                  type, query.reach());
}

}  // namespace azcoll::embedded
