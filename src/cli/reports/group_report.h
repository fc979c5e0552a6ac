#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "views/group_history.h"

namespace azcoll::cli {

/// For people: one year as a table of its companies with notes; several years side by side, with
/// the differences from each year to the next.
void printGroups(std::ostream& out, const views::GroupView& view);

/// For programs: one object with `ditta`, `nome`, `anni` (each with its `gruppi` and their
/// `aziende`), `differenze` between neighbouring years and `anni_con_collegamenti`.
void printGroupsJson(std::ostream& out, const views::GroupView& view);

/// What a company is in a year, in words: `principale di 3 aziende collegate`.
[[nodiscard]] std::string roleText(const views::GroupView& view, const views::GroupYear& year);

/// What becomes of customers and suppliers saved in a member of a group, in words.
[[nodiscard]] std::string sharingText(const views::Group& group, const views::GroupMember& member);

/// How a change is marked: `+` joined, `-` left, `~` altered; "" for none.
[[nodiscard]] std::string_view changeMark(views::Change change);

}  // namespace azcoll::cli
