#include "embedded/run/late_keys.h"

#include <string>
#include <utility>

#include "embedded/catalogue/stored_names.h"
#include "embedded/compile/table_definition.h"
#include "embedded/run/constraint_errors.h"
#include "embedded/sqlite/handle.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/sql_error.h"

namespace azcoll::embedded {

namespace {

constexpr std::string_view kCopy = "temp.late_keys";

/// All columns as SQLite knows them, the one that only counts rows included.
std::string allColumns(const Table& table) {
  std::string list;
  for (const Column& column : table.columns) {
    list += (list.empty() ? "" : ",") + quoteName(column.name);
  }
  if (table.key.empty() && !table.identity) {
    list += "," + quoteName(table.rowColumn);
  }
  return list;
}

std::string copyDefinition(const Table& table) {
  std::string list;
  for (const Column& column : table.columns) {
    list += (list.empty() ? "" : ",") + storedColumn(column);
  }
  if (table.key.empty() && !table.identity) {
    list += "," + quoteName(table.rowColumn) + " INTEGER PRIMARY KEY";
  }
  return "CREATE TABLE " + std::string(kCopy) + " (" + list + ") STRICT";
}

}  // namespace

std::optional<std::int64_t> updateWithLateKeys(Session& session, const ChangeNode& update,
                                               const std::function<void(const Piece&)>& bind) {
  const SqliteDatabase& database = session.database;
  const Table& table = *update.table;
  const std::string columns = allColumns(table);
  const std::string start = "UPDATE " + table.sqlName;
  std::optional<std::int64_t> changed;
  std::optional<SqlError> broken;
  database.execute("SAVEPOINT late_keys");
  try {
    database.execute(copyDefinition(table));
    database.execute("INSERT INTO " + std::string(kCopy) + " (" + columns + ") SELECT " + columns +
                     " FROM " + table.sqlName);
    {
      Piece piece;
      piece.sql = "UPDATE " + std::string(kCopy) + update.piece.sql.substr(start.size());
      piece.slots = update.piece.slots;
      piece.statement = database.prepare(piece.sql);
      bind(piece);
      piece.statement.run();
    }
    const std::int64_t rows = sqlite3_changes64(database.get());
    // Every row leaves before the first one returns: what refers to them is looked at afterwards.
    database.execute("PRAGMA defer_foreign_keys = ON");
    database.execute("DELETE FROM " + table.sqlName);
    database.execute("INSERT INTO " + table.sqlName + " (" + columns + ") SELECT " + columns +
                     " FROM " + std::string(kCopy));
    broken = ConstraintReporter(session, update).brokenForeignKey();
    if (!broken) {
      changed = rows;
    }
    database.execute("DROP TABLE " + std::string(kCopy));
  } catch (const SqliteFailure&) {
    changed.reset();
  }
  database.execute(std::string(changed ? "" : "ROLLBACK TO late_keys;") + "RELEASE late_keys");
  database.execute("PRAGMA defer_foreign_keys = OFF");
  if (broken) {
    throw SqlError(*broken);
  }
  return changed;
}

}  // namespace azcoll::embedded
