#pragma once

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "data/connection.h"
#include "data/error.h"
#include "embedded/embedded_connection.h"
#ifdef AZCOLL_TEST_ADO
#include "ado/connection.h"
#endif
#include "platform/provider_factory.h"
#include "tsql/ast.h"
#include "tsql/parser.h"

/// Databases for tests: the schema of `schema/` with its example data, on the embedded engine in
/// memory, or on the server that the environment variable AZCOLL_TEST_CONNESSIONE names.
namespace azcoll::test {

/// Connection string of the server under test; empty when the tests run on the embedded engine.
inline std::string serverConnectionString() {
  const char* const value = std::getenv("AZCOLL_TEST_CONNESSIONE");
  return value == nullptr ? std::string{} : std::string{value};
}

/// Whole content of a file; throws `std::runtime_error` when it cannot be read.
inline std::string readFile(const std::string& path) {
  std::ifstream file{path, std::ios::binary};
  if (!file) {
    throw std::runtime_error{"cannot read " + path};
  }
  return std::string{std::istreambuf_iterator<char>{file}, std::istreambuf_iterator<char>{}};
}

inline std::string schemaPath(std::string_view fileName) {
  return std::string{AZCOLL_SOURCE_DIR} + "/schema/" + std::string{fileName};
}

/// A table of the suite that refers to customers and suppliers, with rows for the example data.
inline std::string documentsPath() {
  return std::string{AZCOLL_SOURCE_DIR} + "/tests/support/documenti.sql";
}

/// Runs every batch of a script; a failure names the line on which its batch starts.
inline void runScript(Connection& connection, const std::string& path) {
  for (const tsql::ScriptBatch& batch : tsql::splitScript(readFile(path))) {
    try {
      std::int64_t affected = 0;
      connection.execute(batch.text, affected, CommandOption::Text);
    } catch (const Error& error) {
      throw std::runtime_error{path + ", batch of line " + std::to_string(batch.firstLine) + ": " +
                               error.description()};
    }
  }
}

namespace detail {

// A server's database is emptied before every test program that asks for a fresh one. Only a
// database that was filled from here carries this table; any other is refused, whatever it holds.
inline constexpr std::string_view kMarkerTable = "AZCOLL_DATABASE_DI_PROVA";

// Routines and tables that a broken run did not reach are not there to be dropped.
inline void dropIfThere(Connection& connection, const std::string& text) {
  try {
    std::int64_t affected = 0;
    connection.execute(text, affected, CommandOption::Text);
  } catch (const Error&) {
    return;
  }
}

// Only "invalid object name" means that the table is missing; not being allowed to look is an
// error.
inline bool hasTable(Connection& connection, std::string_view name) {
  constexpr int kInvalidObjectName = 208;
  try {
    std::int64_t affected = 0;
    connection.execute("SELECT COUNT(1) FROM " + std::string{name}, affected, CommandOption::Text);
    return true;
  } catch (const Error& error) {
    if (error.info().nativeNumber != kInvalidObjectName) {
      throw;
    }
    return false;
  }
}

inline std::vector<std::string> readTableNames() {
  std::vector<std::string> names;
  for (const std::string& path : {schemaPath("tabelle.sql"), documentsPath()}) {
    for (const tsql::ScriptBatch& batch : tsql::splitScript(readFile(path))) {
      const tsql::Batch parsed = tsql::parse(batch.text);
      for (const tsql::StatementPtr& statement : parsed.statements) {
        if (const auto* table = std::get_if<tsql::CreateTableStatement>(&statement->node)) {
          names.push_back(table->name.parts.back());
        }
      }
    }
  }
  return names;
}

/// The tables of an example database for tests, in the order in which they are made. The scripts
/// are read once: a picture of the database is taken after every fault.
inline const std::vector<std::string>& testTables() {
  static const std::vector<std::string> names = readTableNames();
  return names;
}

inline void emptyTestDatabase(Connection& connection) {
  const std::vector<std::string>& tables = testTables();
  if (hasTable(connection, kMarkerTable)) {
    dropIfThere(connection, "DROP PROCEDURE PC_GetDitteCollegate");
    dropIfThere(connection, "DROP FUNCTION DBO.FNCG28_TABCODIVA");
    for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
      dropIfThere(connection, "DROP TABLE " + *table);
    }
    return;
  }
  for (const std::string& table : tables) {
    if (hasTable(connection, table)) {
      throw std::runtime_error{"AZCOLL_TEST_CONNESSIONE names a database that holds " + table +
                               " and was not made by these tests: it is left alone"};
    }
  }
  std::int64_t affected = 0;
  connection.execute("CREATE TABLE " + std::string{kMarkerTable} + " (ID INT NOT NULL PRIMARY KEY)",
                     affected, CommandOption::Text);
}

/// The embedded engine; in the Windows tests behind automation objects, as callers hand them over.
inline std::shared_ptr<Connection> newEmbedded() {
#ifdef AZCOLL_TEST_ADO
  return ado::newConnection();
#else
  return embedded::newConnection();
#endif
}

inline std::shared_ptr<Connection> openConnection() {
  const std::string server = serverConnectionString();
  std::shared_ptr<Connection> connection;
  if (server.empty()) {
    connection = newEmbedded();
    connection->setConnectionString("Provider=embedded;Data Source=:memory:");
  } else {
    std::cout << "running on the database of AZCOLL_TEST_CONNESSIONE\n";
    connection = newConnectionFor(server);
  }
  connection->setCommandTimeout(100);
  connection->setCursorLocation(CursorLocation::Client);
  connection->open("", "", CommandOption::Unspecified);
  if (!server.empty()) {
    emptyTestDatabase(*connection);
  }
  return connection;
}

}  // namespace detail

using detail::testTables;

/// Fills an empty database: tables, procedure and function.
inline void fillSchema(Connection& connection) {
  runScript(connection, schemaPath("tabelle.sql"));
  runScript(connection, schemaPath("procedure.sql"));
}

/// Like `fillSchema`, with the example data and the documents that refer to its customers.
inline void fillExample(Connection& connection) {
  fillSchema(connection);
  runScript(connection, schemaPath("esempio.sql"));
  runScript(connection, documentsPath());
}

/// An open connection to a fresh database with the tables, the procedure and the function, but
/// without rows. On a server the database is emptied first; one that was not made by these tests is
/// refused with `std::runtime_error`.
inline std::shared_ptr<Connection> openSchema() {
  std::shared_ptr<Connection> connection = detail::openConnection();
  fillSchema(*connection);
  return connection;
}

/// The same with the example data and the documents.
inline std::shared_ptr<Connection> openExample() {
  std::shared_ptr<Connection> connection = detail::openConnection();
  fillExample(*connection);
  return connection;
}

}  // namespace azcoll::test
