#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>

#include "data/variant.h"

namespace azcoll {

namespace detail {

/// Whole numbers that join as digits: not a truth value and not a character.
template <typename T>
concept WholeNumber = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char>;

inline constexpr std::size_t kLongestWholeNumber = 20;  // 64 bits: 19 digits and a sign, or 20

inline void appendText(std::string& target, std::string_view part) { target += part; }
// Only a variant itself: a text must not become one on the way.
template <std::same_as<Variant> T>
void appendText(std::string& target, const T& part) {
  part.appendTo(target);
}
template <WholeNumber T>
void appendText(std::string& target, T part) {
  std::array<char, kLongestWholeNumber> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), part);
  target.append(digits.data(), end.ptr);
}

// Room for a part, so that a statement of many parts is written into one block of memory.
inline std::size_t roomFor(std::string_view part) { return part.size(); }
template <std::same_as<Variant> T>
std::size_t roomFor(const T& part) {
  const std::string* const text = part.template get<std::string>();
  return text != nullptr ? text->size() : kLongestWholeNumber;
}
template <WholeNumber T>
constexpr std::size_t roomFor(T) {
  return kLongestWholeNumber;
}

}  // namespace detail

/// Joins texts, whole numbers and variants into one text. Null and Empty join as nothing; every
/// other variant joins in its locale-free text form. This is how every statement is composed.
template <typename... Parts>
[[nodiscard]] std::string join(const Parts&... parts) {
  std::string result;
  result.reserve((std::size_t{0} + ... + detail::roomFor(parts)));
  (detail::appendText(result, parts), ...);
  return result;
}

}  // namespace azcoll
