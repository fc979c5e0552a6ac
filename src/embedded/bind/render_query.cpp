#include "embedded/bind/bound_query.h"
#include "embedded/values/collation.h"

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

/// An operand of a set operation: what would bind to the whole is put into a query of its own.
std::string renderOperand(const BoundQuery& query, bool isRight) {
  const bool limited =
      query.select && (!query.select->limit.empty() || !query.select->orderBy.empty());
  // SQLite groups set operations to the left and takes no parentheses around them; LIMIT would
  // count for the whole.
  if (limited || (!query.select && isRight)) {
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
  for (std::size_t i = 0; i < select.columns.size(); ++i) {
    const OutputColumn& column = select.columns[i];
    columns += i == 0 ? "" : ",";
    columns += i == 0 && select.oneGroup ? asOneGroup(column) : column.sql;
    columns += " AS c" + std::to_string(i + 1);
  }
  if (select.alternatives.empty()) {
    return columns + renderTail(select);
  }
  // For an IN, to which a row given twice is the same. In a query of its own: SQLite takes the
  // columns of a row value apart, and looks them up by index, for a simple SELECT only.
  std::string sql;
  for (const std::string& alternative : select.alternatives) {
    sql += (sql.empty() ? "SELECT * FROM (" : " UNION ALL ") + columns +
           renderTail(select, alternative);
  }
  return sql + ")";
}

std::string render(const BoundQuery& query) {
  if (query.select) {
    return render(*query.select);
  }
  std::string sql = renderOperand(*query.left, false);
  sql += operatorText(query.op);
  sql += renderOperand(*query.right, true);
  if (!query.orderBy.empty()) {
    sql += " ORDER BY " + query.orderBy;
  }
  return sql;
}

}  // namespace azcoll::embedded
