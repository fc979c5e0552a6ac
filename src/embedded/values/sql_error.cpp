#include "embedded/values/sql_error.h"

#include <algorithm>
#include <array>
#include <utility>

#include "tsql/characters.h"
#include "tsql/syntax_error.h"

namespace azcoll::embedded {

/// These are followed by 3621 on SQL Server; others end the statement without saying so.
bool SqlError::terminatesStatement() const {
  constexpr std::array<int, 7> kTerminating{220, 512, 515, 547, 2601, 2627, 8152};
  return std::find(kTerminating.begin(), kTerminating.end(), number_) != kTerminating.end();
}

std::string_view sqlStateOf(int number) {
  constexpr std::array<std::pair<int, std::string_view>, 23> kStates{{
      {207, "42S22"},  {208, "42S02"},  {3701, "42S02"}, {2714, "42S01"}, {515, "23000"},
      {547, "23000"},  {2601, "23000"}, {2627, "23000"}, {8152, "22001"}, {220, "22003"},
      {232, "22003"},  {244, "22003"},  {248, "22003"},  {8115, "22003"}, {241, "22007"},
      {242, "22007"},  {245, "22018"},  {8114, "22018"}, {8134, "22012"}, {512, "21000"},
      {1222, "HYT00"}, {109, "21S01"},  {110, "21S01"},
  }};
  for (const auto& [known, state] : kStates) {
    if (known == number) {
      return state;
    }
  }
  // 42000 is what drivers give for SQL Server's other errors; 0 is this engine's own.
  return number == 0 ? "HY000" : "42000";
}

void failRepeatedColumn(const std::string& column) {
  throw SqlError(264, "The column name '" + column +
                          "' is specified more than once in the SET clause or column list of an "
                          "INSERT. A column cannot be assigned more than one value in the same "
                          "clause. Modify the clause to make sure that a column is updated only "
                          "once. If this statement updates or inserts columns into a view, column "
                          "aliasing can conceal the duplication in your code.");
}

void refuse(std::string_view text, const tsql::Position& position, std::string_view construct) {
  std::size_t end = std::min(position.offset, text.size());
  if (end < text.size()) {
    end = std::max(tsql::wordEnd(text, end), end + 1);
  }
  throw tsql::SyntaxError(0, "Outside the supported T-SQL: " + std::string(construct) + ".",
                          position,
                          tsql::markedFragment(text, position.offset, end - position.offset));
}

}  // namespace azcoll::embedded
