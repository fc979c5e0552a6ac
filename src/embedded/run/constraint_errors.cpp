#include "embedded/run/constraint_errors.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "embedded/catalogue/stored_names.h"
#include "embedded/compile/table_definition.h"
#include "embedded/functions/functions.h"
#include "embedded/sqlite/column_values.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/conversions.h"
#include "embedded/values/types.h"
#include "embedded/values/value.h"
#include "text/joining.h"
#include "text/letter_case.h"

namespace azcoll::embedded {

namespace {

/// A savepoint that is taken back on every way out.
class TrialRun {
 public:
  explicit TrialRun(const SqliteDatabase& database) : database_(database) {
    database_.execute("SAVEPOINT trial");
  }
  TrialRun(const TrialRun&) = delete;
  TrialRun(TrialRun&&) = delete;
  TrialRun& operator=(const TrialRun&) = delete;
  TrialRun& operator=(TrialRun&&) = delete;
  // SQLite takes defer_foreign_keys back at the end of a transaction only, not with a savepoint.
  // execute() would throw, which a destructor must not.
  ~TrialRun() {
    sqlite3_exec(database_.get(),
                 "ROLLBACK TO trial; RELEASE trial; PRAGMA defer_foreign_keys = OFF", nullptr,
                 nullptr, nullptr);
  }

 private:
  const SqliteDatabase& database_;
};

using Trace = std::vector<Value>;

void traceKey(sqlite3_context* context, int count, sqlite3_value** arguments) {
  auto& trace = *static_cast<Trace*>(sqlite3_user_data(context));
  try {
    trace.clear();
    for (int i = 0; i < count; ++i) {
      trace.push_back(valueOf(arguments[i]));
    }
  } catch (const std::bad_alloc&) {
    // Nothing may be thrown through SQLite.
    sqlite3_result_error_nomem(context);
  }
}

/// The part of SQLite's message that names columns, an index or a constraint.
std::string_view detailOf(std::string_view message) {
  constexpr std::string_view kMark = "failed: ";
  const std::size_t at = message.find(kMark);
  return at == std::string_view::npos ? std::string_view{} : message.substr(at + kMark.size());
}

/// How SQLite lists the columns of a broken key.
std::string listed(const Table& table, const std::vector<std::size_t>& columns) {
  return joinAll(columns, ", ", [&](std::size_t column) {
    return table.storeName + "." + table.columns[column].name;
  });
}

/// What SQLite calls the index `name` when it cannot list columns.
bool isIndexMessage(std::string_view detail, const Table& table, std::string_view name) {
  return detail == "index '" + indexStoreName(table, name) + std::string(kNullIndexSuffix) + "'";
}

bool isKey(const Constraint& constraint) {
  return constraint.kind == tsql::ConstraintKind::PrimaryKey ||
         constraint.kind == tsql::ConstraintKind::Unique;
}

std::string ownName(const Table& table) {
  return table.isVariable ? table.name : "dbo." + table.name;
}

}  // namespace

std::string shownKey(const Table& table, const std::vector<std::size_t>& columns,
                     const std::vector<Value>& values) {
  std::size_t position = 0;
  return joinAll(values, ", ", [&](const Value& value) {
    const Type& type = table.columns[columns[position++]].type;
    return value.isNull() ? "<NULL>" : valueText(value, type);
  });
}

SqlError ConstraintReporter::explain(const SqliteFailure& failure) const {
  const std::string_view detail = detailOf(failure.message);
  switch (failure.code) {
    case SQLITE_CONSTRAINT_NOTNULL:
      return explainNull(detail);
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_UNIQUE:
    case SQLITE_CONSTRAINT_ROWID:
      return explainDuplicate(detail);
    case SQLITE_CONSTRAINT_CHECK:
      return explainCheck(detail);
    case SQLITE_CONSTRAINT_FOREIGNKEY:
      return explainForeignKey();
    default:
      return {0, "Errore interno del motore: " + failure.message};
  }
}

std::string_view ConstraintReporter::verb() const {
  constexpr std::array<std::string_view, 3> kVerbs{"INSERT", "UPDATE", "DELETE"};
  return kVerbs[static_cast<std::size_t>(node_.kind)];
}

SqlError ConstraintReporter::explainNull(std::string_view detail) const {
  // SQLite names the column TABLE.COLUMN.
  const std::size_t prefix = node_.table->storeName.size() + 1;
  const std::string column(detail.substr(std::min(prefix, detail.size())));
  const std::string table = node_.table->isVariable
                                ? node_.table->name
                                : session_.databaseName + ".dbo." + node_.table->name;
  return {515, "Cannot insert the value NULL into column '" + column + "', table '" + table +
                   "'; column does not allow nulls. " + std::string(verb()) + " fails."};
}

// ---------------------------------------------------------------- keys

/// Runs the change again, inside a trial: to fail as before, or to see what it leaves.
void ConstraintReporter::rerun() const {
  node_.prepared.statement.reset();
  try {
    node_.prepared.statement.run();
  } catch (const SqliteFailure&) {
    // As it did before.
  }
}

/// The values of the row that failed: a trigger watches the rows as they are written, and the last
/// one seen is it.
std::vector<Value> ConstraintReporter::failedRow(const std::vector<std::size_t>& columns) const {
  const Table& table = *node_.table;
  Trace trace;
  const SqliteDatabase& database = session_.database;
  sqlite3_create_function_v2(database.get(), "ts_trace", -1, SQLITE_UTF8 | SQLITE_INNOCUOUS, &trace,
                             traceKey, nullptr, nullptr, nullptr);
  const std::string arguments = joinAll(columns, ",", [&](std::size_t column) {
    return "NEW." + quoteName(table.columns[column].name);
  });
  {
    const TrialRun trial(database);
    // BEFORE: a row is seen before its keys are compared. The trigger goes with the trial.
    database.execute("CREATE TEMP TRIGGER ts_watch BEFORE " + std::string(verb()) + " ON " +
                     table.sqlName + " BEGIN SELECT ts_trace(" + arguments + "); END");
    rerun();
  }
  // Taken back before `trace` goes: the function holds its address.
  sqlite3_create_function_v2(database.get(), "ts_trace", -1, SQLITE_UTF8, nullptr, nullptr, nullptr,
                             nullptr, nullptr);
  return trace;
}

/// Whether a row of the table has the values of the row that failed in `columns` already.
bool ConstraintReporter::isTaken(const std::vector<std::size_t>& columns) const {
  const std::vector<Value> values = failedRow(columns);
  if (values.size() != columns.size()) {
    return false;
  }
  std::string match;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    // IS finds a missing value, too: in a unique key it is one like any other.
    match += (i == 0 ? "" : " AND ") + quoteName(node_.table->columns[columns[i]].name) + " IS ?" +
             std::to_string(i + 1);
  }
  const SqliteStatement rows =
      session_.database.prepare("SELECT 1 FROM " + node_.table->sqlName + " WHERE " + match);
  int position = 0;
  for (const Value& value : values) {
    bindValue(rows.get(), ++position, value);
  }
  return rows.step();
}

/// The key to report. SQLite looks at the indexes first, SQL Server at the constraints: a new row
/// that breaks both is refused for the constraint.
std::optional<ConstraintReporter::BrokenKey> ConstraintReporter::brokenKey(
    std::string_view detail) const {
  const Table& table = *node_.table;
  const auto isMeant = [&](const std::vector<std::size_t>& columns, const std::string& name) {
    return detail == listed(table, columns) || isIndexMessage(detail, table, name);
  };
  const auto index = std::find_if(
      table.indexes.begin(), table.indexes.end(),
      [&](const Index& each) { return each.unique && isMeant(each.columns, each.name); });
  const bool isIndex = index != table.indexes.end() || detail.starts_with("index '");
  const Constraint* broken = nullptr;
  for (const Constraint& constraint : table.constraints) {
    if (!isKey(constraint)) {
      continue;
    }
    if (isMeant(constraint.columns, constraint.name)) {
      broken = broken == nullptr ? &constraint : broken;
    } else if (isIndex && node_.kind == ChangeKind::Insert && isTaken(constraint.columns)) {
      broken = &constraint;
      break;
    }
  }
  if (broken != nullptr) {
    const bool primary = broken->kind == tsql::ConstraintKind::PrimaryKey;
    return BrokenKey{broken->name, primary ? "PRIMARY KEY" : "UNIQUE KEY", broken->columns};
  }
  if (index != table.indexes.end()) {
    return BrokenKey{index->name, "", index->columns};
  }
  return std::nullopt;
}

/// Whether an UPDATE computes the key from the rows that it changes. SQLite compares keys row by
/// row, SQL Server when all rows are written (`SET K = K + 1`): what SQLite refuses need not be a
/// duplicate then. A key that is given constants alone has met a duplicate that stays one.
bool ConstraintReporter::computesKey(const BrokenKey& key) const {
  return std::any_of(node_.computed.begin(), node_.computed.end(), [&key](std::size_t column) {
    return std::find(key.columns.begin(), key.columns.end(), column) != key.columns.end();
  });
}

SqlError ConstraintReporter::explainDuplicate(std::string_view detail) const {
  const std::optional<BrokenKey> key = brokenKey(detail);
  if (!key) {
    return {2627, "Violation of a key constraint. Cannot insert duplicate key in object '" +
                      ownName(*node_.table) + "'."};
  }
  if (computesKey(*key)) {
    return {0,
            "Outside the supported T-SQL: several keys changed at once; a value that the UPDATE "
            "computes for '" +
                key->name + "' is in use while its rows are written."};
  }
  const std::string values = "The duplicate key value is (" +
                             shownKey(*node_.table, key->columns, failedRow(key->columns)) + ").";
  if (key->kind.empty()) {
    return {2601, "Cannot insert duplicate key row in object '" + ownName(*node_.table) +
                      "' with unique index '" + key->name + "'. " + values};
  }
  return {2627, "Violation of " + std::string(key->kind) + " constraint '" + key->name +
                    "'. Cannot insert duplicate key in object '" + ownName(*node_.table) + "'. " +
                    values};
}

// ---------------------------------------------------------------- conflicts

std::string ConstraintReporter::conflict(std::string_view kind, const Constraint& constraint,
                                         const Table& table,
                                         const std::vector<std::size_t>& columns) const {
  std::string text = "The " + std::string(verb()) + " statement conflicted with the " +
                     std::string(kind) + " constraint \"" + constraint.name +
                     "\". The conflict occurred in database \"" + session_.databaseName +
                     "\", table \"" + ownName(table) + "\"";
  // A key of several columns is reported without them.
  if (columns.size() == 1) {
    text += ", column '" + table.columns[columns.front()].name + "'";
  }
  return text + ".";
}

SqlError ConstraintReporter::explainCheck(std::string_view detail) const {
  for (const Constraint& constraint : node_.table->constraints) {
    if (constraint.kind == tsql::ConstraintKind::Check && constraint.name == detail) {
      return {547, conflict("CHECK", constraint, *node_.table, constraint.columns)};
    }
  }
  return {547, "The " + std::string(verb()) + " statement conflicted with a CHECK constraint."};
}

/// The foreign key of `child` that has rows without a partner right now, or null.
const Constraint* ConstraintReporter::findViolated(const Table& child) const {
  const SqliteDatabase& database = session_.database;
  const SqliteStatement rows = database.prepare("SELECT fkid FROM pragma_foreign_key_check(" +
                                                quoteText(child.storeName) + ")");
  if (!rows.step()) {
    return nullptr;
  }
  const std::int64_t id = rows.integer(0);
  rows.reset();
  // SQLite numbers the keys by itself: they are distinguished by their columns.
  const SqliteStatement parts =
      database.prepare("SELECT \"table\", \"from\" FROM pragma_foreign_key_list(" +
                       quoteText(child.storeName) + ") WHERE id = ?1 ORDER BY seq");
  parts.bind(1, id);
  std::string parent;
  std::vector<std::size_t> columns;
  while (parts.step()) {
    parent = foldCase(parts.text(0));
    columns.push_back(child.find(parts.text(1)).value_or(0));
  }
  for (const Constraint& constraint : child.constraints) {
    if (constraint.kind != tsql::ConstraintKind::ForeignKey) {
      continue;
    }
    const Catalogue::TablePtr table = session_.catalogue.findTable(constraint.referencedTable);
    const std::string parentName = table ? foldCase(table->storeName) : "";
    if (constraint.columns == columns && parentName == parent) {
      return &constraint;
    }
  }
  return nullptr;
}

SqlError ConstraintReporter::violated(const Table& child, const Constraint& constraint) const {
  const bool self = foldCase(constraint.referencedTable) == foldCase(child.name);
  const bool changedIsChild = &child == node_.table.get();
  if (changedIsChild && node_.kind != ChangeKind::Delete) {
    // It is there: a table that others refer to cannot be dropped (3726).
    const Catalogue::TablePtr parent = session_.catalogue.findTable(constraint.referencedTable);
    return {547, conflict(self ? "FOREIGN KEY SAME TABLE" : "FOREIGN KEY", constraint, *parent,
                          referencedColumns(constraint, *parent))};
  }
  return {547, conflict(self ? "SAME TABLE REFERENCE" : "REFERENCE", constraint, child,
                        constraint.columns)};
}

/// The foreign key of the changed table, or to it, that has rows without a partner right now.
std::optional<SqlError> ConstraintReporter::brokenForeignKey() const {
  if (node_.table->isVariable) {
    return std::nullopt;
  }
  if (const Constraint* const constraint = findViolated(*node_.table)) {
    return violated(*node_.table, *constraint);
  }
  for (const auto& [key, child] : session_.catalogue.tables()) {
    const bool refers = std::any_of(
        child->constraints.begin(), child->constraints.end(), [this](const Constraint& each) {
          return each.kind == tsql::ConstraintKind::ForeignKey &&
                 foldCase(each.referencedTable) == foldCase(node_.table->name);
        });
    if (refers && child != node_.table) {
      if (const Constraint* const constraint = findViolated(*child)) {
        return violated(*child, *constraint);
      }
    }
  }
  return std::nullopt;
}

SqlError ConstraintReporter::explainForeignKey() const {
  const TrialRun trial(session_.database);
  // Deferred, the change leaves the rows in place that lack a partner, and they can be asked for.
  session_.database.execute("PRAGMA defer_foreign_keys = ON");
  rerun();
  return brokenForeignKey().value_or(
      SqlError{547, "The " + std::string(verb()) +
                        " statement conflicted with a FOREIGN KEY or REFERENCE constraint."});
}

}  // namespace azcoll::embedded
