#include <cstddef>
#include <cstdint>
#include <string>

#include "embedded/bind/bound_query.h"
#include "embedded/sqlite/sql_text.h"
#include "text/joining.h"

namespace azcoll::embedded {

namespace {

std::string_view operatorText(tsql::SetOperator op) {
  switch (op) {
    case tsql::SetOperator::Union:
      return " UNION ";
    case tsql::SetOperator::UnionAll:
      return " UNION ALL ";
    case tsql::SetOperator::Except:
      return " EXCEPT ";
    default:
      return " INTERSECT ";
  }
}

enum class Side : std::uint8_t { Left, Right };

/// An operand of a set operation: what would bind to the whole is put into a query of its own.
std::string renderOperand(const BoundQuery& query, Side side) {
  const bool limited =
      query.select && (!query.select->limit.empty() || !query.select->orderBy.empty());
  // SQLite groups set operations to the left and takes no parentheses around them; LIMIT would
  // count for the whole.
  if (limited || (!query.select && side == Side::Right)) {
    return "SELECT * FROM (" + render(query) + ")";
  }
  return render(query);
}

/// From FROM on; `more` is one more condition, or "".
std::string renderTail(const BoundSelect& select, const std::string& more) {
  std::string sql;
  if (!select.from.empty()) {
    sql += " FROM " + select.from;
  }
  if (!select.where.empty() || !more.empty()) {
    sql += " WHERE " + select.where;
    sql += (select.where.empty() || more.empty() ? "" : " AND ") + more;
  }
  if (!select.groupBy.empty()) {
    sql += " GROUP BY " + select.groupBy;
  }
  if (!select.having.empty()) {
    sql += " HAVING " + select.having;
  }
  if (!select.orderBy.empty()) {
    sql += " ORDER BY " + select.orderBy;
  }
  if (!select.limit.empty()) {
    sql += " LIMIT " + select.limit;
  }
  return sql;
}

/// SQLite takes a query for one over all rows only where the list of its columns says so.
std::string asOneGroup(const OutputColumn& column) {
  return "iif(count(*) < 0,NULL," + column.sql + ")" +
         (column.type.isText() ? std::string(kCollateClause) : "");
}

}  // namespace

std::string renderTail(const BoundSelect& select) { return renderTail(select, ""); }

std::string render(const BoundSelect& select) {
  std::string columns = select.distinct ? "SELECT DISTINCT " : "SELECT ";
  std::size_t number = 0;
  columns += joinAll(select.columns, ",", [&](const OutputColumn& column) {
    const bool saysOneGroup = ++number == 1 && select.oneGroup;
    return (saysOneGroup ? asOneGroup(column) : column.sql) + " AS c" + std::to_string(number);
  });
  if (select.alternatives.empty()) {
    return columns + renderTail(select);
  }
  // For an IN, to which a row given twice is the same. In a query of its own: SQLite takes the
  // columns of a row value apart, and looks them up by index, for a simple SELECT only.
  const std::string rows = joinAll(
      select.alternatives, " UNION ALL ",
      [&](const std::string& alternative) { return columns + renderTail(select, alternative); });
  return "SELECT * FROM (" + rows + ")";
}

std::string render(const BoundQuery& query) {
  if (query.select) {
    return render(*query.select);
  }
  std::string sql = renderOperand(*query.left, Side::Left);
  sql += operatorText(query.op);
  sql += renderOperand(*query.right, Side::Right);
  if (!query.orderBy.empty()) {
    sql += " ORDER BY " + query.orderBy;
  }
  return sql;
}

}  // namespace azcoll::embedded
