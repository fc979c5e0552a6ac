#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace azcoll::embedded {

/// Name of the collation of every text column: letter case does not count, accents do, blanks at
/// the end do not. Order: punctuation, digits, letters; an accented letter after its plain one.
inline constexpr const char* kCollationName = "TSQL";

/// Compares as the collation does: negative, 0, positive.
[[nodiscard]] int compareText(std::string_view left, std::string_view right);

/// `text` in capitals, as UPPER gives it: the letters that `foldCase` knows; every other character
/// stays. A malformed byte becomes the character of Latin-1 that it is taken for.
[[nodiscard]] std::string upperText(std::string_view text);

/// The code point at `at`, and its bytes; a malformed byte is taken for one of Latin-1.
struct DecodedCharacter {
  std::uint32_t codePoint = 0;
  std::size_t length = 1;
};
[[nodiscard]] DecodedCharacter characterAt(std::string_view text, std::size_t at);

/// Characters as SQL Server counts them (UTF-16 units).
[[nodiscard]] std::size_t utf16Length(std::string_view text);

}  // namespace azcoll::embedded
