#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "text/letter_case.h"
#include "text/utf8.h"

namespace azcoll::embedded {

/// Name of the collation of every text column: letter case does not count, accents do, blanks at
/// the end do not. Order: punctuation, digits, letters; an accented letter after its plain one.
inline constexpr const char* kCollationName = "TSQL";
/// Gives an expression of SQLite that collation.
inline constexpr std::string_view kCollateClause = " COLLATE TSQL";

/// Compares as the collation does: negative, 0, positive.
[[nodiscard]] int compareText(std::string_view left, std::string_view right);

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
