#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "gtest/gtest.h"

#include "data/connection.h"
#include "data/error.h"
#include "embedded/embedded_connection.h"

namespace azcoll::test {

inline std::shared_ptr<Connection> openConnection(const std::string& connectionString) {
  std::shared_ptr<Connection> connection = embedded::newConnection();
  connection->setConnectionString(connectionString);
  connection->setCursorLocation(CursorLocation::Client);
  connection->open("", "", CommandOption::Unspecified);
  return connection;
}

/// An open connection to an empty database in memory.
inline std::shared_ptr<Connection> openMemory() {
  return openConnection("Provider=embedded;Data Source=:memory:");
}

inline std::shared_ptr<Recordset> run(Connection& connection, std::string_view text) {
  std::int64_t affected = 0;
  return connection.execute(text, affected, CommandOption::Text);
}

/// Rows that a statement reports as changed.
inline std::int64_t affectedBy(Connection& connection, std::string_view text) {
  std::int64_t affected = 0;
  connection.execute(text, affected, CommandOption::Text);
  return affected;
}

/// The first column of the first row; fails the test (and gives Empty) when there is none.
inline Variant value(Connection& connection, std::string_view text) {
  const std::shared_ptr<Recordset> rows = run(connection, text);
  if (rows == nullptr || rows->atEnd()) {
    ADD_FAILURE() << "no row: " << text;
    return {};
  }
  return rows->fields().item(std::size_t{0}).value();
}

/// The rows of a result from its current one on, cells joined with `|`, `NULL` for Null.
inline std::vector<std::string> lines(Recordset& rows) {
  std::vector<std::string> result;
  for (; !rows.atEnd(); rows.moveNext()) {
    std::string line;
    for (std::size_t column = 0; column < rows.fields().count(); ++column) {
      const Variant cell = rows.fields().item(column).value();
      line += column == 0 ? "" : "|";
      line += cell.isNull() ? "NULL" : cell.text();
    }
    result.push_back(line);
  }
  return result;
}

inline std::vector<std::string> lines(Connection& connection, std::string_view text) {
  const std::shared_ptr<Recordset> rows = run(connection, text);
  if (rows == nullptr) {
    ADD_FAILURE() << "no result: " << text;
    return {};
  }
  return lines(*rows);
}

using Lines = std::vector<std::string>;

/// The error of an operation; fails the test when it succeeds.
template <typename Work>
Error failureOf(const Work& work) {
  try {
    work();
  } catch (const Error& error) {
    return error;
  }
  ADD_FAILURE() << "no error";
  return Error{"no error"};
}

/// Number of the error that a statement fails with; -1 (and a failed test) when it succeeds.
inline int failureNumber(Connection& connection, std::string_view text) {
  const Error error = failureOf([&] { run(connection, text); });
  return error.fromProvider() ? error.info().nativeNumber : -1;
}

}  // namespace azcoll::test
