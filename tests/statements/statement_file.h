#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Reader of the statement files; the format is told in README.md beside them.
namespace azcoll::statements {

enum class StepKind : std::uint8_t { Ok, Count, Error, Query, Call };

/// Rows of one result set. Cells are kept as written.
struct ExpectedResult {
  std::vector<std::string> columns;  ///< empty: names are not compared
  std::vector<std::vector<std::string>> rows;
};

struct Step {
  StepKind kind = StepKind::Ok;
  std::size_t line = 0;               ///< of the directive, from 1
  std::vector<std::int64_t> numbers;  ///< rows changed, or the message numbers allowed
  bool rowSort = false;
  bool someColumns = false;
  std::size_t fieldCount = 0;  ///< 0: not compared
  std::string text;            ///< statement, or name of the procedure
  std::vector<std::pair<std::string, std::string>> parameters;
  std::vector<std::pair<std::string, std::string>> outputs;
  std::vector<std::string> messageParts;
  std::vector<ExpectedResult> results;
};

struct Case {
  std::string title;
  std::vector<Step> steps;
};

struct StatementFile {
  std::string path;
  std::vector<Case> cases;
};

/// Reads a file; throws `std::runtime_error` that names path and line when it is malformed.
[[nodiscard]] StatementFile readStatementFile(const std::string& path);

/// The files of `cases/`, sorted by name.
[[nodiscard]] std::vector<std::string> statementFilePaths();

}  // namespace azcoll::statements
