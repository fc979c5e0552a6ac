// The final types of a query's columns, and the texts that give them.

#include "embedded/bind/bound_query.h"
#include "embedded/bind/query_binder.h"
#include "embedded/bind/scope.h"
#include "embedded/plan/slots.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/conversions.h"
#include "embedded/values/types.h"

namespace azcoll::embedded {

std::string QueryBinder::columnText(OutputColumn& column, const Type* type, Conversion conversion) {
  BoundExpression& expression = column.expression;
  std::string sql = type == nullptr ? constants_.inOwnType(expression)
                                    : constants_.coerce(expression, *type, conversion);
  column.type = type == nullptr ? expression.type : *type;
  // DISTINCT, UNION and whoever reads the column compare by its collation.
  if (column.type.isText() && !expression.isColumn) {
    sql += kCollateClause;
  }
  return sql;
}

void QueryBinder::collectTypes(BoundQuery& query, std::vector<Type>& types, bool& first) {
  if (!query.select) {
    collectTypes(*query.left, types, first);
    collectTypes(*query.right, types, first);
    return;
  }
  std::vector<OutputColumn>& columns = query.select->columns;
  types.resize(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const BoundExpression& expression = columns[i].expression;
    // The result's type is read off the constant: one of another type needs a plan of its own. All
    // floats have one type.
    if (expression.pending && expression.type.isNumber() && !expression.type.isFloat()) {
      constants_.guard(expression, Guard::Kind::SameType, expression.type);
    }
    types[i] = first ? expression.type
                     : constants_.requireCommonType(types[i], expression.type, columns[i].position);
  }
  first = false;
}

void QueryBinder::applyTypes(BoundQuery& query, const std::vector<Type>& types) {
  if (!query.select) {
    applyTypes(*query.left, types);
    applyTypes(*query.right, types);
    return;
  }
  std::vector<OutputColumn>& columns = query.select->columns;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    columns[i].sql = columnText(columns[i], &types[i], Conversion::Compare);
  }
}

void QueryBinder::fixTypes(BoundQuery& query) {
  if (query.select) {
    for (OutputColumn& column : query.select->columns) {
      column.sql = columnText(column, nullptr, Conversion::Compare);
    }
    return;
  }
  std::vector<Type> types;
  bool first = true;
  collectTypes(query, types, first);
  for (Type& type : types) {
    // NULL in every operand: SQL Server calls the column an INT.
    if (type.kind == TypeKind::Null) {
      type = kInt;
    }
  }
  applyTypes(query, types);
}

void QueryBinder::fixTypesForInsert(BoundQuery& query, const std::vector<Type>& targets) {
  std::vector<OutputColumn>& columns = query.columns();
  // Nothing compares the rows of such a query, so each value is converted where it is computed.
  if (query.select && !query.select->distinct) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      columns[i].sql = columnText(columns[i], &targets[i], Conversion::Assign);
    }
    return;
  }
  // Rows are made distinct by what the query gives, not by what the columns make of it.
  fixTypes(query);
  auto outer = std::make_unique<BoundSelect>();
  for (std::size_t i = 0; i < columns.size(); ++i) {
    OutputColumn column;
    column.expression.sql = "c" + std::to_string(i + 1);
    column.expression.type = columns[i].type;
    // The column of the query inside keeps the collation that it was given there.
    column.expression.isColumn = true;
    column.sql = columnText(column, &targets[i], Conversion::Assign);
    outer->columns.push_back(std::move(column));
  }
  outer->from = "(" + render(query) + ")";
  query = BoundQuery{};
  query.select = std::move(outer);
}

}  // namespace azcoll::embedded
