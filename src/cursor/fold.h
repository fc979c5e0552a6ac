#pragma once

#include <compare>
#include <string>
#include <string_view>

namespace azcoll::cursor {

/// `text` (UTF-8) with its Latin capital letters made small: those of ASCII, Latin-1 and, but for
/// the four without a partner of the same length, Latin Extended-A. Other bytes stay, malformed
/// ones included.
[[nodiscard]] std::string folded(std::string_view text);

/// Order of two texts without regard to letter case.
[[nodiscard]] std::strong_ordering compareFolded(std::string_view left, std::string_view right);

/// Whether two names are the same without regard to letter case.
[[nodiscard]] bool sameName(std::string_view left, std::string_view right);

}  // namespace azcoll::cursor
