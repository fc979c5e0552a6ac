#include <algorithm>

#include "embedded/bind/ast_walk.h"
#include "embedded/bind/expression_binder.h"
#include "embedded/bind/scope.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/collation.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "text/letter_case.h"

namespace azcoll::embedded {

namespace {

std::string inType(const std::string& sql, const Type& type) {
  return "ts_integer(" + sql + "," + std::to_string(encodeType(type)) + ")";
}

}  // namespace

/// The argument. Over columns of an outer query alone, the aggregate would be one of that query.
BoundExpression ExpressionBinder::bindAggregated(const tsql::Expression& argument,
                                                 const tsql::Position& position,
                                                 const Clause& clause) {
  BoundExpression operand = bind(argument, clause);
  const std::uint64_t own = levelBit(clause.scope.level);
  const bool outer = (operand.reach.levels & ~own) != 0;
  if (outer && (operand.reach.levels & own) != 0) {
    throw SqlError(8124,
                   "Multiple columns are specified in an aggregated expression containing an outer "
                   "reference. If an expression being aggregated contains an outer reference, then "
                   "that outer reference must be the only column referenced in the expression.");
  }
  if (outer) {
    refuse(context_.text, position, "an aggregate of an outer query inside a subquery");
  }
  return operand;
}

BoundExpression ExpressionBinder::bindAggregate(const tsql::FunctionCall& call,
                                                const tsql::Position& position,
                                                const Clause& clause) {
  requireArguments(call, 1, 1);
  const tsql::Expression& argument = *call.arguments.front();
  if (containsAggregate(argument)) {
    throw SqlError(130,
                   "Cannot perform an aggregate function on an expression containing an "
                   "aggregate or a subquery.");
  }
  if (!clause.aggregates) {
    throw SqlError(147,
                   "An aggregate may not appear in the WHERE clause unless it is in a "
                   "subquery contained in a HAVING clause or a select list, and the column "
                   "being aggregated is an outer reference.");
  }
  const std::string name = upperText(call.name.parts.front());
  const bool counts = name == "COUNT" || name == "COUNT_BIG";
  const Type countType = name == "COUNT" ? kInt : kBigInt;
  // Inside, columns need not be keys of the groups, and there are no further aggregates.
  Clause inside = clause;
  inside.grouping = nullptr;
  inside.aggregates = false;
  const auto* const literal = std::get_if<tsql::Literal>(&argument.node);
  const bool constant = literal != nullptr && literal->kind != tsql::LiteralKind::Null;
  // COUNT(1) counts rows: its constant needs no slot.
  if (counts && !call.distinct && (constant || std::holds_alternative<tsql::Star>(argument.node))) {
    return computed("count(*)", countType, {});
  }
  BoundExpression operand = bindAggregated(argument, position, inside);
  std::string sql = constants_.inOwnType(operand);
  if (operand.type.isText() && !operand.isColumn) {
    sql += kCollateClause;
  }
  const std::string list = (call.distinct ? "(DISTINCT " : "(") + sql + ")";
  const Type& type = operand.type;
  if (counts) {
    return computed("count" + list, countType, operand.reach);
  }
  if (name == "MIN" || name == "MAX") {
    if (type.kind == TypeKind::Bit) {
      throw SqlError(8117, "Operand data type bit is invalid for " + foldCase(name) + " operator.");
    }
    return computed((name == "MIN" ? "min" : "max") + list, type, operand.reach);
  }
  return bindTotal(name == "SUM", list, operand, position);
}

/// SUM or AVG; `list` is the argument in brackets.
BoundExpression ExpressionBinder::bindTotal(bool sum, const std::string& list,
                                            const BoundExpression& operand,
                                            const tsql::Position& position) const {
  const Type& type = operand.type;
  if (!type.isNumber() || type.kind == TypeKind::Bit) {
    throw SqlError(8117, "Operand data type " + std::string(typeName(type)) + " is invalid for " +
                             (sum ? "sum" : "avg") + " operator.");
  }
  // Small integers are summed as INT.
  const Type sumType = type.kind == TypeKind::BigInt ? kBigInt : kInt;
  if (sum) {
    if (type.isDecimal()) {
      return computed("ts_sum_decimal" + list, decimalType(38, type.scale), operand.reach);
    }
    return type.isFloat() ? computed("ts_float(sum" + list + ")", kFloat, operand.reach)
                          : computed(inType("ts_sum" + list, sumType), sumType, operand.reach);
  }
  if (type.isDecimal()) {
    refuse(context_.text, position, "AVG of decimals");
  }
  if (type.isFloat()) {
    return computed("ts_float(avg" + list + ")", kFloat, operand.reach);
  }
  return computed(inType("ts_average" + list, sumType), sumType, operand.reach);
}

}  // namespace azcoll::embedded
