#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace azcoll::tsql {

/// One code point of a text. `length` is 0 where the bytes are no UTF-8.
struct CodePoint {
  std::uint32_t value = 0;
  std::size_t length = 0;
};

/// The code point at `at`. Overlong forms, surrogates and values beyond U+10FFFF are no UTF-8.
[[nodiscard]] CodePoint decodeUtf8(std::string_view text, std::size_t at);

/// Offset of the first byte that is no UTF-8, or npos.
[[nodiscard]] std::size_t findMalformedUtf8(std::string_view text);

/// Whether a code point beyond ASCII may stand in a name: a letter, not punctuation, a symbol or a
/// kind of blank.
[[nodiscard]] bool isLetterBeyondAscii(std::uint32_t codePoint);

/// Whether the byte continues a character that began before it.
constexpr bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// `text` cut to at most `characters` characters, never inside one.
[[nodiscard]] std::string_view firstCharacters(std::string_view text, std::size_t characters);

}  // namespace azcoll::tsql
