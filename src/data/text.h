#pragma once

#include <concepts>
#include <string>
#include <string_view>

#include "data/variant.h"

namespace azcoll {

namespace detail {
inline void appendText(std::string& target, std::string_view part) { target += part; }
// Only a variant itself: a text must not become one on the way.
template <std::same_as<Variant> T>
void appendText(std::string& target, const T& part) {
  part.appendTo(target);
}
template <std::integral T>
requires(!std::same_as<T, bool> && !std::same_as<T, char>) void appendText(std::string& target,
                                                                           T part) {
  target += std::to_string(part);
}
}  // namespace detail

/// Joins texts, whole numbers and variants into one text. Null and Empty join as nothing; every
/// other variant joins in its locale-free text form. This is how every statement is composed.
template <typename... Parts>
[[nodiscard]] std::string join(const Parts&... parts) {
  std::string result;
  (detail::appendText(result, parts), ...);
  return result;
}

/// `text` with every apostrophe written twice, for use inside a quoted SQL literal.
[[nodiscard]] std::string doubleApostrophes(std::string_view text);

/// `text` without the blanks at its start and end.
[[nodiscard]] std::string_view trim(std::string_view text);

/// Number of UTF-8 code points of `text` (a malformed byte counts as one).
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// The first `count` characters (code points) of `text`.
[[nodiscard]] std::string_view leftCharacters(std::string_view text, std::size_t count);

}  // namespace azcoll
