#include "views/group_history.h"

#include <map>
#include <utility>

#include "views/value_text.h"

namespace azcoll::views {

Change CompanyHistory::change(std::size_t year) const {
  if (year == 0) {
    return Change::None;
  }
  const std::optional<Variant>& before = types[year - 1];
  const std::optional<Variant>& now = types[year];
  if (before.has_value() != now.has_value()) {
    return now ? Change::Joined : Change::Left;
  }
  return now && accountingTypeText(*before) != accountingTypeText(*now) ? Change::Altered
                                                                        : Change::None;
}

std::vector<GroupHistory> historiesOf(const GroupView& view) {
  // In a group the main company sorts before the companies linked to it.
  std::map<std::int32_t, std::map<std::pair<bool, std::int32_t>, CompanyHistory>> found;
  for (std::size_t i = 0; i < view.years.size(); ++i) {
    for (const Group& group : view.years[i].groups) {
      for (const GroupMember& member : group.members) {
        CompanyHistory& history = found[group.main][{member.company != group.main, member.company}];
        history.main = group.main;
        history.company = member.company;
        history.types.resize(view.years.size());
        history.types[i] = member.accountingType;
      }
    }
  }
  std::vector<GroupHistory> histories;
  for (auto& [main, companies] : found) {
    GroupHistory& group = histories.emplace_back();
    for (auto& [key, history] : companies) {
      group.push_back(std::move(history));
    }
  }
  return histories;
}

std::string accountingTypeText(const Variant& type) {
  return type.isNull() || type.isEmpty() ? "non indicato" : exchangeText(type);
}

}  // namespace azcoll::views
