#pragma once

#include <memory>
#include <sqlite3.h>
#include <string>

#include "embedded/functions/functions.h"
#include "support/picture.h"
#include "support/scratch_folder.h"
#include "support/test_database.h"

/// Databases of the embedded engine in files, for the tests that need more than one process.
namespace azcoll::test {

/// An open connection to a database file; `more` is added to the connection string.
inline std::shared_ptr<Connection> openFile(const std::string& path, const std::string& more = "") {
  std::shared_ptr<Connection> connection = embedded::newConnection();
  connection->setConnectionString(join("Provider=embedded;Data Source=", path, ";", more));
  connection->open("", "", CommandOption::Unspecified);
  return connection;
}

inline void runSql(Connection& connection, const std::string& sql) {
  std::int64_t affected = 0;
  connection.execute(sql, affected, CommandOption::Text);
}

/// Writes the example database, with the documents of the tests, into a new file.
inline void makeExampleFile(const std::string& path) {
  const std::shared_ptr<Connection> connection = openFile(path, "Create=True");
  fillExample(*connection);
}

/// What the file says when it is asked for damage: "ok" for a whole one, without rows that refer to
/// nothing.
inline std::string integrityOf(const std::string& path) {
  sqlite3* database = nullptr;
  std::string found;
  const auto note = [](void* text, int columns, char** values, char** /*names*/) {
    for (int i = 0; i < columns; ++i) {
      static_cast<std::string*>(text)
          ->append(values[i] == nullptr ? "NULL" : values[i])
          .append(" ");
    }
    return 0;
  };
  sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr);
  embedded::RuntimeState state;
  embedded::registerFunctions(database, state);  // the indexes are sorted by the engine's rules
  for (const char* const question : {"PRAGMA integrity_check", "PRAGMA foreign_key_check"}) {
    if (sqlite3_exec(database, question, note, &found, nullptr) != SQLITE_OK) {
      found += sqlite3_errmsg(database);
    }
  }
  sqlite3_close(database);
  return found == "ok " ? "ok" : found;
}

}  // namespace azcoll::test
