#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "data/error.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// A refusal of the engine on its way to the connection, which records it and hands it to the
/// caller. `number` is SQL Server's message number, 0 for what has none (a construct outside the
/// supported language, a damaged file).
class SqlError : public std::runtime_error {
 public:
  SqlError(int number, const std::string& message) : std::runtime_error(message), number_(number) {}

  [[nodiscard]] int number() const { return number_; }
  /// Whether SQL Server also reports that the statement was terminated (message 3621).
  [[nodiscard]] bool terminatesStatement() const;

 private:
  int number_;
};

/// SQLSTATE that belongs to a message number.
[[nodiscard]] std::string_view sqlStateOf(int number);

/// The message of SQL Server's number 3621, the second entry after a terminated statement.
inline constexpr std::string_view kStatementTerminated = "The statement has been terminated.";

/// The refusal of a column that one statement gives several values (264).
[[noreturn]] void failRepeatedColumn(const std::string& column);

/// Refuses what the system does not run: names the construct, line and column, and marks the
/// `length` bytes at `position` of `text`.
[[noreturn]] void refuse(std::string_view text, const tsql::Position& position,
                         std::string_view construct);

}  // namespace azcoll::embedded
