#include "embedded/compile/table_definition.h"

#include <algorithm>
#include <string>
#include <vector>

#include "embedded/bind/binder.h"
#include "embedded/bind/translation.h"
#include "embedded/catalogue/stored_names.h"
#include "embedded/plan/slots.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "text/joining.h"
#include "text/letter_case.h"

namespace azcoll::embedded {

namespace {

/// `descending` says of each column whether its order is turned; empty for none.
std::string keyList(const Table& table, const std::vector<std::size_t>& columns,
                    const std::vector<bool>& descending = {}) {
  auto turned = descending.begin();
  const std::string list = joinAll(columns, ",", [&](std::size_t column) {
    const bool isTurned = turned != descending.end() && *turned++;
    return quoteName(table.columns[column].name) + (isTurned ? " DESC" : "");
  });
  return "(" + list + ")";
}

std::string columnDefinition(const Column& column) {
  if (column.identity) {
    // Without AUTOINCREMENT SQLite gives the number of a deleted last row out again.
    return quoteName(column.name) + " INTEGER PRIMARY KEY AUTOINCREMENT";
  }
  return storedColumn(column) + (column.nullable ? "" : " NOT NULL");
}

/// Rows with missing values in a unique key: SQL Server takes NULL for a value like any other.
std::vector<std::string> nullIndex(const Table& table, const std::vector<std::size_t>& columns,
                                   std::string_view name) {
  std::vector<std::string> conditions;
  const std::string parts = joinAll(columns, ",", [&](std::size_t index) {
    const Column& column = table.columns[index];
    const std::string quoted = quoteName(column.name);
    if (column.nullable) {
      conditions.push_back(quoted + " IS NULL");
    }
    // SQLite takes NULLs for different from each other, so the index holds other values: whether
    // the column is missing, which distinguishes a missing value from a 0, and what is there.
    std::string part = quoted + " IS NULL,ifnull(" + quoted + ",0)";
    if (column.type.isText()) {
      // ifnull() loses the column's collation.
      part += kCollateClause;
    }
    return part;
  });
  if (conditions.empty()) {
    return {};
  }
  // A temporary index is named with its schema, its table without.
  std::string schema;
  if (table.isVariable) {
    schema = "temp.";
  }
  return {"CREATE UNIQUE INDEX " + schema +
          quoteName(indexStoreName(table, name) + std::string(kNullIndexSuffix)) + " ON " +
          quoteName(table.storeName) + " (" + parts + ") WHERE " + joinAll(conditions, " OR ")};
}

bool sameColumns(const std::vector<std::size_t>& left, const std::vector<std::size_t>& right) {
  return left.size() == right.size() &&
         std::is_permutation(left.begin(), left.end(), right.begin());
}

/// Whether the columns are a key that a foreign key may refer to.
bool isCandidateKey(const Table& table, const std::vector<std::size_t>& columns) {
  if (sameColumns(table.key, columns)) {
    return true;
  }
  for (const Constraint& constraint : table.constraints) {
    if (constraint.kind == tsql::ConstraintKind::Unique &&
        sameColumns(constraint.columns, columns)) {
      return true;
    }
  }
  return std::any_of(table.indexes.begin(), table.indexes.end(), [&](const Index& index) {
    return index.unique && sameColumns(index.columns, columns);
  });
}

void checkForeignKey(const Table& table, const Constraint& constraint, const Table& referenced) {
  const std::vector<std::size_t> columns = referencedColumns(constraint, referenced);
  if (columns.size() != constraint.columns.size()) {
    throw SqlError(8139,
                   "Number of referencing columns in foreign key differs from number of "
                   "referenced columns, table '" +
                       table.name + "'.");
  }
  if (!isCandidateKey(referenced, columns)) {
    throw SqlError(1776, "There are no primary or candidate keys in the referenced table '" +
                             referenced.name +
                             "' that match the referencing column list in the foreign key '" +
                             constraint.name + "'.");
  }
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const Type& own = table.columns[constraint.columns[i]].type;
    const Type& other = referenced.columns[columns[i]].type;
    if (!sameForm(own, other)) {
      throw SqlError(1778, "Column '" + referenced.name + "." +
                               referenced.columns[columns[i]].name +
                               "' is not the same data type as referencing column '" + table.name +
                               "." + table.columns[constraint.columns[i]].name +
                               "' in foreign key '" + constraint.name + "'.");
    }
  }
}

std::string foreignKey(const Table& table, const Constraint& constraint,
                       const Catalogue& catalogue) {
  // A table that refers to itself is not in the catalogue yet.
  const bool self = foldCase(constraint.referencedTable) == foldCase(table.name);
  const Catalogue::TablePtr found =
      self ? nullptr : catalogue.findTable(constraint.referencedTable);
  if (!self && !found) {
    throw SqlError(1767, "Foreign key '" + constraint.name + "' references invalid table '" +
                             constraint.referencedTable + "'.");
  }
  const Table& referenced = self ? table : *found;
  checkForeignKey(table, constraint, referenced);
  return "FOREIGN KEY " + keyList(table, constraint.columns) + " REFERENCES " +
         quoteName(referenced.storeName) +
         keyList(referenced, referencedColumns(constraint, referenced));
}

}  // namespace

/// STRICT: a value that conversions let through in a wrong form is refused instead of stored.
/// WITHOUT ROWID: the rows lie in the order of their key. An identity is SQLite's primary key; the
/// table's own becomes a unique key beside it, unless it is that column.
std::vector<std::string> tableDefinition(const Table& table, const Catalogue& catalogue,
                                         std::string_view text) {
  std::string sql = table.isVariable ? "CREATE TEMP TABLE " : "CREATE TABLE ";
  sql += quoteName(table.storeName) + " (" + joinAll(table.columns, ",", columnDefinition);
  if (table.key.empty() && !table.identity) {
    // Changes that gather their rows first find them by this column where there is no key.
    sql += "," + quoteName(table.rowColumn) + " INTEGER PRIMARY KEY";
  }
  std::vector<std::string> statements{""};
  const bool keyIsRowid = table.key.size() == 1 && table.identity == table.key.front();
  for (std::size_t i = 0; i < table.constraints.size(); ++i) {
    const Constraint& constraint = table.constraints[i];
    // SQLite's message about a broken CHECK gives this name.
    const std::string name = ",CONSTRAINT " + quoteName(constraint.name) + " ";
    switch (constraint.kind) {
      case tsql::ConstraintKind::PrimaryKey:
        if (!keyIsRowid) {
          sql += name + (table.hasRowid ? "UNIQUE " : "PRIMARY KEY ") +
                 keyList(table, constraint.columns);
        }
        break;
      case tsql::ConstraintKind::Unique: {
        sql += name + "UNIQUE " + keyList(table, constraint.columns);
        const auto more = nullIndex(table, constraint.columns, constraint.name);
        statements.insert(statements.end(), more.begin(), more.end());
        break;
      }
      case tsql::ConstraintKind::ForeignKey:
        sql += name + foreignKey(table, constraint, catalogue);
        break;
      case tsql::ConstraintKind::Check: {
        std::vector<Guard> guards;
        Translation translation;
        translation.guards = &guards;
        const BindContext context{&catalogue, nullptr, text, true, false};
        Binder binder(context, translation);
        sql += name + "CHECK (" + binder.bindCheck(*table.definition->constraints[i].check, table) +
               ")";
        // There is no statement whose run could report it later.
        if (translation.failure) {
          throw *translation.failure;
        }
        break;
      }
    }
  }
  statements.front() = sql + (table.hasRowid ? ") STRICT" : ") STRICT, WITHOUT ROWID");
  if (table.identity && table.definition->columns[*table.identity].identitySeed != 1) {
    // AUTOINCREMENT counts on from the number that this table of SQLite's holds.
    const std::int64_t seed = table.definition->columns[*table.identity].identitySeed;
    if (table.isVariable) {
      refuse(text, table.definition->name.position,
             "an identity of a table variable that does not "
             "start at 1");
    }
    statements.push_back("INSERT INTO sqlite_sequence (name, seq) VALUES (" +
                         quoteText(table.storeName) + "," + std::to_string(seed - 1) + ")");
  }
  return statements;
}

std::vector<std::string> indexDefinition(const Table& table, const Index& index) {
  std::vector<std::string> statements{(index.unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") +
                                      quoteName(indexStoreName(table, index.name)) + " ON " +
                                      quoteName(table.storeName) + " " +
                                      keyList(table, index.columns, index.descending)};
  if (index.unique) {
    const auto more = nullIndex(table, index.columns, index.name);
    statements.insert(statements.end(), more.begin(), more.end());
  }
  return statements;
}

}  // namespace azcoll::embedded
