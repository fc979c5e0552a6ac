#include "data/tables.h"

#include <algorithm>

namespace azcoll::tables {
namespace {

template <typename Names>
bool contains(const Names& names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

bool isSubTableKey(std::string_view name) {
  if (name.size() < 4) {
    return false;
  }
  const std::string_view start = name.substr(0, 4);
  const bool subTable = start == "CG4E" || std::ranges::any_of(kSubTables, [&](auto table) {
                          return prefix(table) == start;
                        });
  return subTable && contains(kSubTableKeyEndings, name.substr(4));
}

bool isSharedColumn(std::string_view name) {
  if (name.size() < 5) {
    return false;
  }
  const std::string_view start = name.substr(0, 5);
  const std::string_view rest = name.substr(5);
  return ((start == "CG86_" || start == "CG25_") && contains(kVatSettings, rest)) ||
         ((start == "CG96_" || start == "CG30_") && contains(kRegisterDates, rest));
}

}  // namespace

bool isKnownName(std::string_view name) {
  return contains(kTables, name) || contains(kSubTables, name) || contains(kMasterColumns, name) ||
         contains(kActivityColumns, name) || contains(kRegistryColumns, name) ||
         contains(kOtherColumns, name) || isSubTableKey(name) || isSharedColumn(name) ||
         std::ranges::any_of(kSalesColumns,
                             [&](const auto& column) { return column.name == name; });
}

}  // namespace azcoll::tables
