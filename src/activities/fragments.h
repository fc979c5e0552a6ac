#pragma once

#include <string>
#include <string_view>

#include "component/values.h"
#include "data/tables.h"

/// Pieces that several statements about activities have in common.
namespace azcoll::activities {

/// Lines of a statement, separated by line breaks (none after the last one).
template <typename... Lines>
[[nodiscard]] std::string lines(std::string_view first, const Lines&... others) {
  std::string text{first};
  ((text += kLineBreak, text += others), ...);
  return text;
}

/// Expression that is 1 on the main activity of the activity's company and year and 0 on every
/// other row, written against the table or alias `row`: the flagged activity first, then the lowest
/// code, and only where the company is a main company of the year.
[[nodiscard]] std::string mainActivity(std::string_view row);

/// Condition that keeps the rows of every group in which `company` is main or linked company in the
/// row's year, written against the table or alias `row`.
[[nodiscard]] std::string groupFilter(std::string_view row, std::string_view company);

/// Assignments of an UPDATE, one a line: every column of `names` with the prefix `target` takes the
/// value of its namesake with the prefix `source`. Each line but the first begins with `indent`,
/// each ends with `ending`.
[[nodiscard]] std::string assignments(std::string_view target, std::string_view source,
                                      tables::Names names, std::string_view indent = "        ",
                                      std::string_view ending = "");

}  // namespace azcoll::activities
