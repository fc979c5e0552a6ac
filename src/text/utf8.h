#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Text as UTF-8. Positions and lengths are in bytes unless they are said to be characters, which
/// are code points.
namespace azcoll {

/// One code point of a text. `length` is 0 where the bytes are not UTF-8.
struct CodePoint {
  std::uint32_t value = 0;
  std::size_t length = 0;
};

/// Whether the byte continues a character that began before it.
constexpr bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// The code point at `at`, inside the text. Overlong forms, surrogates and values beyond U+10FFFF
/// are not UTF-8.
[[nodiscard]] CodePoint decodeUtf8(std::string_view text, std::size_t at);

/// Offset of the first byte that is not UTF-8, or npos.
[[nodiscard]] std::size_t findMalformedUtf8(std::string_view text);

/// Room that `writeUtf8` may need.
inline constexpr std::size_t kLongestUtf8 = 4;

/// Writes a code point to `target`; returns the place after it.
char* writeUtf8(char* target, std::uint32_t codePoint);

/// Appends a code point to `text`.
void appendUtf8(std::string& text, std::uint32_t codePoint);

/// Number of characters of `text`; a malformed byte counts as one.
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// The first `count` characters of `text`, or all of it; a malformed byte counts as one.
[[nodiscard]] std::string_view leftCharacters(std::string_view text, std::size_t count);

}  // namespace azcoll
