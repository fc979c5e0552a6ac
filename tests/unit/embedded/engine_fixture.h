#pragma once

#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "data/error.h"
#include "embedded/connection.h"
#include "tsql/script.h"

namespace azcoll::embedded::test {

inline std::shared_ptr<EmbeddedConnection> openMemory(const EngineOptions& options = {}) {
  auto connection = newConnectionWith(options);
  connection->setConnectionString("Provider=embedded;Data Source=:memory:");
  connection->open("", "", CommandOption::Unspecified);
  return connection;
}

inline std::string show(const Variant& value) { return value.isNull() ? "NULL" : value.text(); }

/// All results as text: rows parted by `;`, cells by `|`, results by `#`.
inline std::string show(const ExecutionResult& result) {
  std::string text;
  for (std::size_t r = 0; r < result.results.size(); ++r) {
    const ResultSet& set = result.results[r];
    text += r == 0 ? "" : "#";
    const std::vector<Variant> values = set.allValues();
    for (std::size_t i = 0; i < values.size(); ++i) {
      text += i == 0 ? "" : i % set.columns.size() == 0 ? ";" : "|";
      text += show(values[i]);
    }
  }
  return text;
}

inline std::string rows(EmbeddedConnection& connection, std::string_view sql) {
  return show(connection.run(sql));
}

/// Number and message of the refusal, or "no error".
inline std::string failure(EmbeddedConnection& connection, std::string_view sql) {
  try {
    connection.run(sql);
  } catch (const Error& error) {
    return std::to_string(error.info().nativeNumber) + " " + error.description();
  }
  return "no error";
}

inline int failureNumber(EmbeddedConnection& connection, std::string_view sql) {
  return std::stoi(failure(connection, sql));
}

inline std::string readFile(const std::string& path) {
  std::ifstream file{path, std::ios::binary};
  return {std::istreambuf_iterator<char>{file}, {}};
}

/// Runs the batches of a file of `schema/`.
inline void runSchema(EmbeddedConnection& connection, const std::string& name) {
  const std::string script = readFile(std::string{AZCOLL_SOURCE_DIR} + "/schema/" + name);
  for (const tsql::ScriptBatch& batch : tsql::splitScript(script)) {
    connection.run(batch.text);
  }
}

/// The example database in memory.
inline std::shared_ptr<EmbeddedConnection> openExample(const EngineOptions& options = {}) {
  auto connection = openMemory(options);
  for (const char* name : {"tabelle.sql", "procedure.sql", "esempio.sql"}) {
    runSchema(*connection, name);
  }
  return connection;
}

}  // namespace azcoll::embedded::test
