#include "embedded/run/definer.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "embedded/catalogue/store.h"
#include "embedded/catalogue/stored_names.h"
#include "embedded/compile/table_definition.h"
#include "embedded/run/batch_runner.h"
#include "embedded/run/constraint_errors.h"
#include "embedded/sqlite/column_values.h"
#include "embedded/sqlite/handle.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/conversions.h"
#include "embedded/values/literals.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/value.h"
#include "text/joining.h"
#include "text/letter_case.h"
#include "tsql/parser.h"
#include "tsql/printer.h"

namespace azcoll::embedded {

namespace {

[[noreturn]] void failDrop(const std::string& kind, const std::string& name) {
  throw SqlError(3701, "Cannot drop the " + kind + " '" + name +
                           "', because it does not exist or you do not have permission.");
}

}  // namespace

/// Inside a transaction a savepoint is a part of it, outside it is one itself. The change is
/// counted in it, so that others notice it when it is committed and not before. The catalogue in
/// memory follows when all has succeeded.
template <typename Action>
void Definer::atomically(Action action) {
  const SqliteDatabase& database = session_.database;
  database.execute("SAVEPOINT definition");
  try {
    action();
    CatalogueStore(database).countChange();
    database.execute("RELEASE definition");
  } catch (...) {
    database.execute("ROLLBACK TO definition; RELEASE definition");
    throw;
  }
  surroundings_.plans.definitionsChanged();
}

bool Definer::define(const tsql::Statement& statement, std::string_view text) {
  if (const auto* const table = std::get_if<tsql::CreateTableStatement>(&statement.node)) {
    // Tables and indexes may stand among other statements, so their texts are printed from the
    // tree; a routine is a whole batch and is kept as it was written.
    createTable(table->name, tsql::print(statement), text);
  } else if (const auto* const index = std::get_if<tsql::CreateIndexStatement>(&statement.node)) {
    createIndex(*index, tsql::print(statement), text);
  } else if (const auto* const dropped = std::get_if<tsql::DropStatement>(&statement.node)) {
    drop(*dropped, text);
  } else if (const auto* const procedure =
                 std::get_if<tsql::CreateProcedureStatement>(&statement.node)) {
    createRoutine(procedure->source);
  } else if (const auto* const function =
                 std::get_if<tsql::CreateFunctionStatement>(&statement.node)) {
    createRoutine(function->source);
  } else {
    return false;
  }
  return true;
}

void Definer::requireFreeName(const std::string& name) const {
  const std::string folded = foldCase(name);
  bool taken = session_.catalogue.findTable(name) || session_.catalogue.findRoutine(name);
  for (const auto& [key, table] : session_.catalogue.tables()) {
    // Constraints are objects of the database; indexes belong to their table.
    for (const Constraint& constraint : table->constraints) {
      taken = taken || foldCase(constraint.name) == folded;
    }
  }
  if (taken) {
    throw SqlError(2714, "There is already an object named '" + name + "' in the database.");
  }
}

void Definer::createTable(const tsql::ObjectName& name, const std::string& definition,
                          std::string_view text) {
  const std::string ownName = objectName(name, text);
  // The object would outlive the connection.
  if (ownName.starts_with('#')) {
    refuse(text, name.position, "a temporary table");
  }
  requireFreeName(ownName);
  // Read from the text that the catalogue keeps: the table is the same when the file is opened
  // again.
  const tsql::Batch batch = tsql::parse(definition);
  auto own = std::make_shared<const tsql::CreateTableStatement>(
      std::move(std::get<tsql::CreateTableStatement>(batch.statements.front()->node)));
  const std::shared_ptr<Table> table = describeTable(std::move(own), definition);
  for (const Constraint& constraint : table->constraints) {
    requireFreeName(constraint.name);
  }
  atomically([&] {
    for (const std::string& sql : tableDefinition(*table, session_.catalogue, definition)) {
      session_.database.execute(sql);
    }
    CatalogueStore(session_.database).add("TABLE", table->name, "", definition);
  });
  session_.catalogue.add(table);
}

void Definer::createIndex(const tsql::CreateIndexStatement& statement,
                          const std::string& definition, std::string_view text) {
  const Catalogue::TablePtr table = session_.catalogue.findTable(objectName(statement.table, text));
  if (!table) {
    throw SqlError(1088, "Cannot find the object \"" + statement.table.parts.back() +
                             "\" because it does not exist or you do not have permissions.");
  }
  const Index index = describeIndex(statement, *table);
  for (const Index& other : table->indexes) {
    if (foldCase(other.name) == foldCase(index.name)) {
      throw SqlError(1913, "The operation failed because an index or statistics with name '" +
                               index.name + "' already exists on table '" + table->name + "'.");
    }
  }
  try {
    atomically([&] {
      for (const std::string& sql : indexDefinition(*table, index)) {
        session_.database.execute(sql);
      }
      CatalogueStore(session_.database).add("INDEX", index.name, table->name, definition);
    });
  } catch (const SqliteFailure& failure) {
    // SQLite notices equal keys while it fills the index.
    constexpr int kPrimaryCode = 0xFF;
    if ((failure.code & kPrimaryCode) != SQLITE_CONSTRAINT) {
      throw;
    }
    throw SqlError(1505,
                   "The CREATE UNIQUE INDEX statement terminated because a duplicate key was "
                   "found for the object name 'dbo." +
                       table->name + "' and the index name '" + index.name +
                       "'. The duplicate key value is (" + repeatedKey(*table, index) + ").");
  }
  session_.catalogue.addIndex(table->name, index);
}

/// The values of the first key that occurs twice, as messages show them.
std::string Definer::repeatedKey(const Table& table, const Index& index) const {
  const std::string list = joinAll(index.columns, ",", [&](std::size_t column) {
    return quoteName(table.columns[column].name);
  });
  const SqliteStatement rows =
      session_.database.prepare("SELECT " + list + " FROM " + table.sqlName + " GROUP BY " + list +
                                " HAVING count(*) > 1 ORDER BY " + list + " LIMIT 1");
  std::vector<Value> values;
  if (rows.step()) {
    for (std::size_t position = 0; position < index.columns.size(); ++position) {
      values.push_back(readValue(rows.get(), static_cast<int>(position)));
    }
  }
  return shownKey(table, index.columns, values);
}

void Definer::createRoutine(const std::string& source) {
  const std::shared_ptr<const Routine> routine = describeRoutine(source);
  requireFreeName(routine->name);
  for (const RoutineParameter& parameter : routine->parameters) {
    if (parameter.defaultValue != nullptr &&
        !constantValue(*parameter.defaultValue, parameter.type)) {
      refuse(source, parameter.defaultValue->position, "a default that is not a constant");
    }
  }
  atomically([&] {
    // What is wrong inside is reported now, except for objects that may be made until the first
    // call.
    surroundings_.plans.checkRoutine(*routine);
    CatalogueStore(session_.database)
        .add(routine->isFunction ? "FUNCTION" : "PROCEDURE", routine->name, "", source);
  });
  session_.catalogue.add(routine);
}

void Definer::drop(const tsql::DropStatement& statement, std::string_view text) {
  if (statement.kind == "INDEX") {
    dropIndex(statement);
    return;
  }
  const std::string& name = objectName(statement.name, text);
  if (statement.kind == "TABLE") {
    dropTable(name, statement.ifExists);
  } else {
    dropRoutine(statement, name);
  }
}

void Definer::dropTable(const std::string& name, bool ifExists) {
  const Catalogue::TablePtr table = session_.catalogue.findTable(name);
  if (!table) {
    if (!ifExists) {
      failDrop("table", name);
    }
    return;
  }
  for (const auto& [key, other] : session_.catalogue.tables()) {
    for (const Constraint& constraint : other->constraints) {
      if (other != table && constraint.kind == tsql::ConstraintKind::ForeignKey &&
          foldCase(constraint.referencedTable) == foldCase(table->name)) {
        throw SqlError(3726, "Could not drop object '" + name +
                                 "' because it is referenced by a FOREIGN KEY constraint.");
      }
    }
  }
  atomically([&] {
    const CatalogueStore store(session_.database);
    // A statement that is still prepared would keep the table in use.
    surroundings_.plans.forgetPlans();
    session_.database.execute("DROP TABLE " + table->sqlName);
    store.remove("TABLE", table->name, "");
    store.removeIndexesOf(table->name);
  });
  session_.catalogue.removeTable(name);
}

void Definer::dropIndex(const tsql::DropStatement& statement) {
  const std::string& index = statement.name.parts.back();
  const std::string& tableName = statement.name.parts[statement.name.parts.size() - 2];
  const Catalogue::TablePtr table = session_.catalogue.findTable(tableName);
  const Index* found = nullptr;
  if (table) {
    for (const Index& each : table->indexes) {
      if (foldCase(each.name) == foldCase(index)) {
        found = &each;
      }
    }
  }
  if (found == nullptr) {
    if (!statement.ifExists) {
      failDrop("index", tableName + "." + index);
    }
    return;
  }
  const std::string storeName = indexStoreName(*table, found->name);
  atomically([&] {
    // The second one is there only for a unique index over nullable columns.
    session_.database.execute("DROP INDEX " + quoteName(storeName));
    session_.database.execute("DROP INDEX IF EXISTS " +
                              quoteName(storeName + std::string(kNullIndexSuffix)));
    CatalogueStore(session_.database).remove("INDEX", index, table->name);
  });
  session_.catalogue.removeIndex(tableName, index);
}

void Definer::dropRoutine(const tsql::DropStatement& statement, const std::string& name) {
  const auto routine = session_.catalogue.findRoutine(name);
  const bool function = statement.kind == "FUNCTION";
  if (!routine || routine->isFunction != function) {
    if (!statement.ifExists) {
      failDrop(function ? "function" : "procedure", name);
    }
    return;
  }
  atomically([&] { CatalogueStore(session_.database).remove(statement.kind, name, ""); });
  session_.catalogue.removeRoutine(name);
}

}  // namespace azcoll::embedded
