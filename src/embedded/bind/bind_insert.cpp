#include <algorithm>
#include <string>
#include <vector>

#include "embedded/bind/bound_query.h"
#include "embedded/bind/change_binder.h"
#include "embedded/bind/scope.h"
#include "embedded/bind/translation.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/conversions.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "text/joining.h"

namespace azcoll::embedded {

namespace {

std::string columnList(const Table& table, const std::vector<std::size_t>& columns) {
  return joinAll(columns, ",",
                 [&](std::size_t column) { return quoteName(table.columns[column].name); });
}

[[noreturn]] void failCount(bool more) {
  if (more) {
    throw SqlError(110,
                   "There are fewer columns in the INSERT statement than values specified in "
                   "the VALUES clause. The number of values in the VALUES clause must match "
                   "the number of columns specified in the INSERT statement.");
  }
  throw SqlError(109,
                 "There are more columns in the INSERT statement than values specified in the "
                 "VALUES clause. The number of values in the VALUES clause must match the "
                 "number of columns specified in the INSERT statement.");
}

[[noreturn]] void failQueryCount(bool more) {
  if (more) {
    throw SqlError(121,
                   "The select list for the INSERT statement contains more items than the "
                   "insert list. The number of SELECT values must match the number of INSERT "
                   "columns.");
  }
  throw SqlError(120,
                 "The select list for the INSERT statement contains fewer items than the "
                 "insert list. The number of SELECT values must match the number of INSERT "
                 "columns.");
}

/// The count of values of a statement without a column list.
void checkPositional(const Table& table, std::size_t values, std::size_t columns) {
  if (values == columns) {
    return;
  }
  // A value for every column, the identity included.
  if (table.identity && values == table.columns.size()) {
    throw SqlError(8101, "An explicit value for the identity column in table '" + table.name +
                             "' can only be specified when a column list is used and "
                             "IDENTITY_INSERT is ON.");
  }
  throw SqlError(213, "Column name or number of supplied values does not match table definition.");
}

}  // namespace

void refuseReadingHints(const tsql::NamedTable& target) {
  for (const std::string& hint : target.hints) {
    if (hint == "NOLOCK" || hint == "READUNCOMMITTED") {
      throw SqlError(1065,
                     "The NOLOCK and READUNCOMMITTED lock hints are not allowed for target "
                     "tables of INSERT, UPDATE, DELETE or MERGE statements.");
    }
  }
}

std::vector<std::size_t> ChangeBinder::insertColumns(const tsql::InsertStatement& statement,
                                                     const Table& table) {
  std::vector<std::size_t> columns;
  if (statement.columns.empty()) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      if (!table.columns[i].identity) {
        columns.push_back(i);
      }
    }
    return columns;
  }
  for (const std::string& name : statement.columns) {
    const auto column = table.find(name);
    if (!column) {
      throw SqlError(207, "Invalid column name '" + name + "'.");
    }
    if (std::find(columns.begin(), columns.end(), *column) != columns.end()) {
      failRepeatedColumn(name);
    }
    if (table.columns[*column].identity) {
      throw SqlError(544, "Cannot insert explicit value for identity column in table '" +
                              table.name + "' when IDENTITY_INSERT is set to OFF.");
    }
    columns.push_back(*column);
  }
  return columns;
}

std::string ChangeBinder::defaultOf(const Table& table, std::size_t column) {
  const Column& info = table.columns[column];
  if (info.defaultValue == nullptr) {
    return "NULL";
  }
  // The default stands in the table's definition: its constants have no ordinals in this text, and
  // it sees none of its variables.
  BindContext context = context_;
  context.constantsInside = true;
  context.variables = nullptr;
  context.text = {};
  QueryBinder binder(context, translation_);
  const Scope nothing(nullptr);
  BoundExpression bound = binder.expressions().bind(*info.defaultValue, Clause{nothing});
  return binder.constants().coerce(bound, info.type, Conversion::Assign);
}

std::string ChangeBinder::insertRows(const tsql::InsertStatement& statement, const Table& table,
                                     const std::vector<std::size_t>& columns,
                                     std::vector<std::size_t>& defaults) {
  const Scope nothing(nullptr);
  const auto valuesOf = [&](const auto& row) {
    if (row.size() != statement.rows.front().size()) {
      throw SqlError(10709,
                     "The number of columns for each row in a table value constructor must be the "
                     "same.");
    }
    if (statement.columns.empty()) {
      checkPositional(table, row.size(), columns.size());
    } else if (row.size() != columns.size()) {
      failCount(row.size() > columns.size());
    }
    std::vector<std::string> values;
    values.reserve(row.size() + defaults.size());
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (!row[i]) {
        // The word DEFAULT.
        values.push_back(defaultOf(table, columns[i]));
        continue;
      }
      BoundExpression value = expressions_.bind(*row[i], Clause{nothing});
      values.push_back(
          constants_.coerce(value, table.columns[columns[i]].type, Conversion::Assign));
    }
    // SQLite's tables have no defaults of their own: they are part of each statement.
    for (const std::size_t column : defaults) {
      values.push_back(defaultOf(table, column));
    }
    return "(" + joinAll(values, ",") + ")";
  };
  return " VALUES " + joinAll(statement.rows, ",", valuesOf);
}

std::string ChangeBinder::insertQuery(const tsql::InsertStatement& statement, const Table& table,
                                      const std::vector<std::size_t>& columns,
                                      const std::vector<std::size_t>& defaults) {
  QueryUse use;
  // The query of an INSERT may be ordered.
  use.orderNeedsTop = false;
  BoundQuery query = queries_.bindQuery(*statement.query, nullptr, use);
  const std::size_t count = query.columns().size();
  if (statement.columns.empty()) {
    checkPositional(table, count, columns.size());
  } else if (count != columns.size()) {
    failQueryCount(count > columns.size());
  }
  std::vector<Type> targets;
  targets.reserve(columns.size());
  for (const std::size_t column : columns) {
    targets.push_back(table.columns[column].type);
  }
  queries_.fixTypesForInsert(query, targets);
  // fixTypesForInsert() has put a DISTINCT or UNION into a query inside: constants in the list
  // outside do not touch it.
  for (const std::size_t column : defaults) {
    OutputColumn value;
    value.sql = defaultOf(table, column);
    query.select->columns.push_back(std::move(value));
  }
  return " " + render(query);
}

BoundChange ChangeBinder::bindInsert(const tsql::InsertStatement& statement) {
  refuseReadingHints(statement.target);
  BoundChange bound;
  bound.table = names_.findTable(statement.target.name);
  const Table& table = *bound.table;
  std::vector<std::size_t> columns = insertColumns(statement, table);
  std::vector<std::size_t> defaults;
  if (statement.defaultValues) {
    columns.clear();
  }
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    if (table.columns[i].defaultValue != nullptr &&
        std::find(columns.begin(), columns.end(), i) == columns.end()) {
      defaults.push_back(i);
    }
  }
  if (statement.defaultValues) {
    bound.sql = "INSERT INTO " + table.sqlName;
    // An identity counts, everything else is NULL.
    if (defaults.empty()) {
      bound.sql += " DEFAULT VALUES";
      return bound;
    }
    const std::string values =
        joinAll(defaults, ",", [&](std::size_t column) { return defaultOf(table, column); });
    bound.sql += " (" + columnList(table, defaults) + ") VALUES (" + values + ")";
    return bound;
  }
  const std::string source = statement.query ? insertQuery(statement, table, columns, defaults)
                                             : insertRows(statement, table, columns, defaults);
  columns.insert(columns.end(), defaults.begin(), defaults.end());
  bound.sql = "INSERT INTO " + table.sqlName + " (" + columnList(table, columns) + ")" + source;
  return bound;
}

}  // namespace azcoll::embedded
