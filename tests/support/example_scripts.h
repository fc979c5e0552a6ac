#pragma once

#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "data/connection.h"
#include "data/error.h"
#include "tsql/ast.h"
#include "tsql/parser.h"
#include "tsql/script.h"

/// The scripts of `schema/` with their example data, and a table of the tests' own, for any
/// database.
namespace azcoll::test {

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

}  // namespace detail

/// The tables of an example database for tests, in the order in which they are made. The scripts
/// are read once: a picture of the database is taken after every fault.
inline const std::vector<std::string>& testTables() {
  static const std::vector<std::string> names = detail::readTableNames();
  return names;
}

namespace detail {

// Routines and tables that a broken run did not reach are not there to be dropped.
inline void dropIfThere(Connection& connection, const std::string& text) {
  try {
    std::int64_t affected = 0;
    connection.execute(text, affected, CommandOption::Text);
  } catch (const Error&) {
    return;
  }
}

}  // namespace detail

/// Drops what `fillExample` makes, as far as it is there.
inline void dropExample(Connection& connection) {
  const std::vector<std::string>& tables = testTables();
  detail::dropIfThere(connection, "DROP PROCEDURE PC_GetDitteCollegate");
  detail::dropIfThere(connection, "DROP FUNCTION DBO.FNCG28_TABCODIVA");
  for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
    detail::dropIfThere(connection, "DROP TABLE " + *table);
  }
  connection.errors().clear();
}

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

}  // namespace azcoll::test
