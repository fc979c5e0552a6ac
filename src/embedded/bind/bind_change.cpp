// UPDATE and DELETE. A FROM clause with more than the target is turned into a query that gives the
// keys of the rows to change: SQLite's own FROM of UPDATE means something else when the target is
// repeated there.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "embedded/bind/ast_walk.h"
#include "embedded/bind/change_binder.h"
#include "embedded/bind/scope.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/conversions.h"
#include "embedded/values/sql_error.h"
#include "text/joining.h"
#include "text/letter_case.h"

namespace azcoll::embedded {

namespace {

std::vector<std::string> keyColumns(const Table& table) {
  if (table.key.empty()) {
    return {quoteName(table.rowColumn)};
  }
  std::vector<std::string> names;
  for (const std::size_t column : table.key) {
    names.push_back(quoteName(table.columns[column].name));
  }
  return names;
}

/// Keys and new values are gathered first, then written. A subquery would otherwise see rows that
/// the statement has changed already, and a source with several rows for one of the target would
/// write it several times: min() over a constant makes the first of them give the values.
std::string updateByKey(const Table& table, const std::string& source, const std::string& sources,
                        const std::vector<std::pair<std::size_t, std::string>>& assigned,
                        const std::string& filter) {
  const bool joins = !sources.empty();
  std::string rows = joins ? "SELECT min(0)" : "SELECT 0";
  std::vector<std::string> groups;
  std::vector<std::string> matches;
  std::vector<std::string> changes;
  for (const std::string& column : keyColumns(table)) {
    std::string key = source;
    key.append(".").append(column);
    const std::string name = "k" + std::to_string(groups.size() + 1);
    rows.append(",").append(key).append(" AS ").append(name);
    groups.push_back(std::move(key));
    std::string match = "u.";
    match.append(column).append("=s.").append(name);
    matches.push_back(std::move(match));
  }
  for (const auto& [column, value] : assigned) {
    const std::string name = "v" + std::to_string(changes.size() + 1);
    rows.append(",").append(value).append(" AS ").append(name);
    changes.push_back(quoteName(table.columns[column].name) + "=s." + name);
  }
  const std::string from = joins ? sources : table.sqlName + " AS " + source;
  return "UPDATE " + table.sqlName + " AS u SET " + joinAll(changes, ",") + " FROM (" + rows +
         " FROM " + from + filter + (joins ? " GROUP BY " + joinAll(groups, ",") : "") +
         ") AS s WHERE " + joinAll(matches, " AND ");
}

}  // namespace

/// Which source the target's name means; it is added when the clause does not hold it.
std::size_t ChangeBinder::findTarget(const tsql::NamedTable& target, Scope& scope,
                                     std::string& from) {
  const std::string& name = target.name.parts.back();
  const std::string folded = foldCase(name);
  // A bare name may be an alias of the clause, which goes before a table of that name.
  if (target.name.parts.size() == 1) {
    for (std::size_t i = 0; i < scope.sources.size(); ++i) {
      if (scope.sources[i].folded == folded) {
        return i;
      }
    }
  }
  const auto table = names_.findTable(target.name);
  std::optional<std::size_t> found;
  for (std::size_t i = 0; i < scope.sources.size(); ++i) {
    if (scope.sources[i].table == table) {
      if (found) {
        throw SqlError(8154, "The table '" + name + "' is ambiguous.");
      }
      found = i;
    }
  }
  if (found) {
    return *found;
  }
  from += " JOIN " + queries_.bindTable(target, "", scope);
  return scope.sources.size() - 1;
}

ChangeBinder::Target ChangeBinder::bindTarget(const tsql::NamedTable& target,
                                              const std::vector<tsql::TableSourcePtr>& from,
                                              Scope& scope) {
  Target change;
  if (from.empty()) {
    static_cast<void>(queries_.bindTable(target, "", scope));
    change.table = scope.sources.front().table;
    change.source = scope.sources.front().sqlName;
    return change;
  }
  change.from = queries_.bindSources(from, scope).sql;
  const std::size_t index = findTarget(target, scope, change.from);
  change.table = scope.sources[index].table;
  if (!change.table) {
    refuse(context_.text, target.name.position, "changing something that is not a table");
  }
  change.source = scope.sources[index].sqlName;
  // FROM repeats the target alone: the same as none.
  if (scope.sources.size() == 1) {
    change.from.clear();
  }
  return change;
}

std::vector<std::pair<std::size_t, std::string>> ChangeBinder::bindAssigned(
    const tsql::UpdateStatement& statement, const Table& table, const Scope& scope) {
  std::vector<std::pair<std::size_t, std::string>> assigned;
  for (const tsql::Assignment& assignment : statement.assignments) {
    const std::string& name = assignment.column.parts.back();
    const auto column = table.find(name);
    if (!column) {
      throw SqlError(207, "Invalid column name '" + name + "'.");
    }
    const auto same = [&column](const auto& each) { return each.first == *column; };
    if (std::any_of(assigned.begin(), assigned.end(), same)) {
      failRepeatedColumn(name);
    }
    if (table.columns[*column].identity) {
      throw SqlError(8102, "Cannot update identity column '" + name + "'.");
    }
    if (!assignment.value) {
      assigned.emplace_back(*column, defaultOf(table, *column));
      continue;
    }
    if (containsAggregate(*assignment.value)) {
      throw SqlError(157, "An aggregate may not appear in the set list of an UPDATE statement.");
    }
    BoundExpression value = expressions_.bind(*assignment.value, Clause{scope});
    constants_.requireConvertible(value.type, table.columns[*column].type,
                                  assignment.value->position);
    assigned.emplace_back(
        *column, constants_.coerce(value, table.columns[*column].type, Conversion::Assign));
  }
  return assigned;
}

BoundChange ChangeBinder::bindUpdate(const tsql::UpdateStatement& statement) {
  refuseReadingHints(statement.target);
  Scope scope(nullptr);
  const Target change = bindTarget(statement.target, statement.from, scope);
  BoundChange bound;
  bound.table = change.table;
  const Table& table = *bound.table;
  for (const tsql::Assignment& assignment : statement.assignments) {
    const auto column = table.find(assignment.column.parts.back());
    // For the report of a broken key: SQL Server compares keys when all rows are written.
    if (column && assignment.value && dependsOnRow(*assignment.value)) {
      bound.computed.push_back(*column);
    }
  }
  const auto assigned = bindAssigned(statement, table, scope);
  const std::string where =
      statement.where
          ? expressions_.bindCondition(*statement.where, Clause{scope}, Unknown::AsFalse).sql
          : "";
  const std::string filter = where.empty() ? "" : " WHERE " + where;
  // Without another table and without a query nothing reads what the statement writes.
  if (change.from.empty() && translation_.queries == 0) {
    const std::string set = joinAll(assigned, ",", [&](const auto& assignment) {
      return quoteName(table.columns[assignment.first].name) + "=" + assignment.second;
    });
    bound.sql = "UPDATE " + table.sqlName + " AS " + change.source + " SET " + set + filter;
  } else {
    bound.sql = updateByKey(table, change.source, change.from, assigned, filter);
  }
  return bound;
}

BoundChange ChangeBinder::bindDelete(const tsql::DeleteStatement& statement) {
  refuseReadingHints(statement.target);
  Scope scope(nullptr);
  const Target change = bindTarget(statement.target, statement.from, scope);
  BoundChange bound;
  bound.table = change.table;
  const std::string where =
      statement.where
          ? expressions_.bindCondition(*statement.where, Clause{scope}, Unknown::AsFalse).sql
          : "";
  const std::string condition = where.empty() ? "" : " WHERE " + where;
  bound.sql = "DELETE FROM " + bound.table->sqlName + " AS ";
  if (change.from.empty()) {
    bound.sql += change.source + condition;
    return bound;
  }
  const std::vector<std::string> keys = keyColumns(*bound.table);
  const auto keysOf = [&keys](const std::string& source) {
    return joinAll(keys, ",", [&](const std::string& key) { return source + "." + key; });
  };
  bound.sql += "u WHERE (" + keysOf("u") + ") IN (SELECT " + keysOf(change.source) + " FROM " +
               change.from + condition + ")";
  return bound;
}

}  // namespace azcoll::embedded
