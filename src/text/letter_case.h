#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

#include "text/utf8.h"

/// Letter case: of the words of a language, which are ASCII, and of the names and texts of people.
namespace azcoll {

/// The letters A to Z and no others.
namespace ascii {

constexpr char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}
constexpr char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

/// `text` with the letters a to z made capitals.
[[nodiscard]] std::string upper(std::string_view text);

/// Whether two texts are the same but for the case of their letters.
constexpr bool equalsIgnoringCase(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) {
    return false;
  }
  for (std::size_t at = 0; at < left.size(); ++at) {
    if (upper(left[at]) != upper(right[at])) {
      return false;
    }
  }
  return true;
}

}  // namespace ascii

/// The small letter of a capital one: Latin with its accents, Greek, Cyrillic. Every other code
/// point itself; among them the dotted and dotless i of Turkish, which are not each other's case.
/// The small letter has as many bytes as the capital one.
[[nodiscard]] std::uint32_t foldCase(std::uint32_t codePoint);

/// `text` with its capital letters made small. Malformed bytes stay.
[[nodiscard]] std::string foldCase(std::string_view text);

/// Order of two texts by code points, without regard to letter case.
[[nodiscard]] std::strong_ordering compareIgnoringCase(std::string_view left,
                                                       std::string_view right);

/// Whether two texts are the same but for letter case.
[[nodiscard]] bool equalsIgnoringCase(std::string_view left, std::string_view right);

}  // namespace azcoll
