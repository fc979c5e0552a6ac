#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "data/variant.h"
#include "views/group.h"

namespace azcoll::views {

/// What became of a company in a group since the year before.
enum class Change { None, Joined, Left, Altered };

/// A company in a group over the years of a view.
struct CompanyHistory {
  std::int32_t main = 0;
  std::int32_t company = 0;
  /// Its accounting type in each year; nothing in a year in which it is not in the group.
  std::vector<std::optional<Variant>> types;

  /// The change of the year at this place; the first year has none, there is nothing before it.
  [[nodiscard]] Change change(std::size_t year) const;
};

/// The companies of one group over the years of a view: the main company, then the linked ones by
/// code.
using GroupHistory = std::vector<CompanyHistory>;

/// Every group of the view by its main company.
[[nodiscard]] std::vector<GroupHistory> historiesOf(const GroupView& view);

/// The accounting type as it is shown: `0`, or `non indicato`, which counts as 0.
[[nodiscard]] std::string accountingTypeText(const Variant& type);

}  // namespace azcoll::views
