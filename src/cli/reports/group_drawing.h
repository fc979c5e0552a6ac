#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "views/group.h"

namespace azcoll::cli {

/// The groups as Graphviz DOT text, meant for the program `dot`: for every year the main company
/// above frames of its linked companies, one frame for each accounting type and one node for each
/// company, in columns so that a large group keeps the shape of a page. Changes since the year
/// before are marked.
[[nodiscard]] std::string groupsAsDot(const views::GroupView& view);

/// `text` as text of an HTML-like label: nothing in it can be taken for markup, and characters that
/// XML does not allow are replaced.
[[nodiscard]] std::string labelText(std::string_view text);

/// `text` in lines of at most `width` characters, broken at blanks; a longer word is cut.
[[nodiscard]] std::vector<std::string> wrapped(std::string_view text, std::size_t width);

}  // namespace azcoll::cli
