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
#include "embedded/values/collation.h"
#include "embedded/values/conversions.h"
#include "embedded/values/types.h"
#include "embedded/values/value.h"

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
  std::string list;
  for (const std::size_t column : columns) {
    list += (list.empty() ? "" : ", ") + table.storeName + "." + table.columns[column].name;
  }
  return list;
}

/// What SQLite calls the index `name` when it cannot list columns.
bool isIndexMessage(std::string_view detail, const Table& table, std::string_view name) {
  return detail == "index '" + indexStoreName(table, name) + std::string(kNullIndexSuffix) + "'";
}

struct BrokenKey {
  std::string name;
  std::string_view kind;  ///< "PRIMARY KEY", "UNIQUE KEY", or empty for an index
  std::vector<std::size_t> columns;
};

std::optional<BrokenKey> findKey(const Table& table, std::string_view detail) {
  for (const Constraint& constraint : table.constraints) {
    const bool primary = constraint.kind == tsql::ConstraintKind::PrimaryKey;
    const bool key = primary || constraint.kind == tsql::ConstraintKind::Unique;
    if (key && (detail == listed(table, constraint.columns) ||
                isIndexMessage(detail, table, constraint.name))) {
      return BrokenKey{constraint.name, primary ? "PRIMARY KEY" : "UNIQUE KEY", constraint.columns};
    }
  }
  for (const Index& index : table.indexes) {
    if (index.unique &&
        (detail == listed(table, index.columns) || isIndexMessage(detail, table, index.name))) {
      return BrokenKey{index.name, "", index.columns};
    }
  }
  return std::nullopt;
}

std::string ownName(const Table& table) {
  return table.isVariable ? table.name : "dbo." + table.name;
}

}  // namespace

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
  const std::size_t prefix = node_.table->storeName.size() + 1;
  const std::string column(detail.substr(std::min(prefix, detail.size())));
  const std::string table = node_.table->isVariable
                                ? node_.table->name
                                : session_.databaseName + ".dbo." + node_.table->name;
  return {515, "Cannot insert the value NULL into column '" + column + "', table '" + table +
                   "'; column does not allow nulls. " + std::string(verb()) + " fails."};
}

// ---------------------------------------------------------------- keys

std::optional<SqliteFailure> ConstraintReporter::rerun() const {
  node_.piece.statement.reset();
  try {
    node_.piece.statement.run();
  } catch (const SqliteFailure& failure) {
    return failure;
  }
  return std::nullopt;
}

/// SQLite looks at the indexes first, SQL Server at the primary key: when a row breaks several, the
/// key is told. Without the table's indexes the run shows whether it is broken too.
std::string ConstraintReporter::firstBrokenKey(std::string_view detail) const {
  const SqliteDatabase& database = session_.database;
  const TrialRun trial(database);
  std::vector<std::string> indexes;
  {
    const SqliteStatement names = database.prepare(
        std::string("SELECT name FROM ") + (node_.table->isVariable ? "temp." : "main.") +
        "sqlite_schema WHERE type = 'index' AND sql IS NOT NULL AND tbl_name = ?1");
    names.bind(1, node_.table->storeName);
    while (names.step()) {
      indexes.emplace_back(names.text(0));
    }
  }
  for (const std::string& index : indexes) {
    database.execute("DROP INDEX " + quoteName(index));
  }
  const auto failure = indexes.empty() ? std::nullopt : rerun();
  return std::string(failure && findKey(*node_.table, detailOf(failure->message))
                         ? detailOf(failure->message)
                         : detail);
}

/// The key of the row that failed: a trigger watches the rows as they are written, and the last one
/// seen is it.
std::string ConstraintReporter::duplicateValues(const std::vector<std::size_t>& columns) const {
  const Table& table = *node_.table;
  Trace trace;
  const SqliteDatabase& database = session_.database;
  sqlite3_create_function_v2(database.get(), "ts_trace", -1, SQLITE_UTF8 | SQLITE_INNOCUOUS, &trace,
                             traceKey, nullptr, nullptr, nullptr);
  std::string arguments;
  for (const std::size_t column : columns) {
    arguments += (arguments.empty() ? "NEW." : ",NEW.") + quoteName(table.columns[column].name);
  }
  {
    const TrialRun trial(database);
    database.execute("CREATE TEMP TRIGGER ts_watch BEFORE " + std::string(verb()) + " ON " +
                     table.sqlName + " BEGIN SELECT ts_trace(" + arguments + "); END");
    static_cast<void>(rerun());
  }
  sqlite3_create_function_v2(database.get(), "ts_trace", -1, SQLITE_UTF8, nullptr, nullptr, nullptr,
                             nullptr, nullptr);
  std::string values;
  for (std::size_t i = 0; i < trace.size(); ++i) {
    const Type& type = table.columns[columns[i]].type;
    values += (i == 0 ? "" : ", ") +
              (trace[i].isNull() ? std::string("<NULL>") : valueText(trace[i], type));
  }
  return values;
}

SqlError ConstraintReporter::explainDuplicate(std::string_view detail) const {
  const std::optional<BrokenKey> key = findKey(*node_.table, firstBrokenKey(detail));
  if (!key) {
    return {2627, "Violation of a key constraint. Cannot insert duplicate key in object '" +
                      ownName(*node_.table) + "'."};
  }
  const std::string values = "The duplicate key value is (" + duplicateValues(key->columns) + ").";
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
  // A key of several columns is told without them.
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
  // SQLite numbers the keys by itself: they are told apart by their columns.
  const SqliteStatement parts =
      database.prepare("SELECT \"table\", \"from\" FROM pragma_foreign_key_list(" +
                       quoteText(child.storeName) + ") WHERE id = ?1 ORDER BY seq");
  parts.bind(1, id);
  std::string parent;
  std::vector<std::size_t> columns;
  while (parts.step()) {
    parent = foldText(parts.text(0));
    columns.push_back(child.find(parts.text(1)).value_or(0));
  }
  for (const Constraint& constraint : child.constraints) {
    if (constraint.kind != tsql::ConstraintKind::ForeignKey) {
      continue;
    }
    const Catalogue::TablePtr table = session_.catalogue.findTable(constraint.referencedTable);
    const std::string parentName = table ? foldText(table->storeName) : "";
    if (constraint.columns == columns && parentName == parent) {
      return &constraint;
    }
  }
  return nullptr;
}

SqlError ConstraintReporter::violated(const Table& child, const Constraint& constraint) const {
  const bool self = foldText(constraint.referencedTable) == foldText(child.name);
  const bool changedIsChild = &child == node_.table.get();
  if (changedIsChild && node_.kind != ChangeKind::Delete) {
    const Catalogue::TablePtr parent = session_.catalogue.findTable(constraint.referencedTable);
    return {547, conflict(self ? "FOREIGN KEY SAME TABLE" : "FOREIGN KEY", constraint, *parent,
                          referencedColumns(constraint, *parent))};
  }
  return {547, conflict(self ? "SAME TABLE REFERENCE" : "REFERENCE", constraint, child,
                        constraint.columns)};
}

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
                 foldText(each.referencedTable) == foldText(node_.table->name);
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
  session_.database.execute("PRAGMA defer_foreign_keys = ON");
  static_cast<void>(rerun());
  return brokenForeignKey().value_or(
      SqlError{547, "The " + std::string(verb()) +
                        " statement conflicted with a FOREIGN KEY or REFERENCE constraint."});
}

}  // namespace azcoll::embedded
