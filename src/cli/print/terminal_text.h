#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace azcoll::cli {

/// The code points of a UTF-8 text; every malformed byte becomes U+FFFD.
[[nodiscard]] std::u32string decodeUtf8(std::string_view text);

[[nodiscard]] std::string encodeUtf8(std::u32string_view text);

/// Whether `c` is a combining accent, which takes no column of its own.
[[nodiscard]] constexpr bool isCombining(char32_t c) { return c >= 0x300 && c <= 0x36F; }

/// Columns that the text takes on a terminal: one for each character, accents of their own none.
[[nodiscard]] std::size_t columnWidth(std::string_view text);

/// The text with every control character replaced by its visible sign (␊ for a line feed), so that
/// a value can neither break a table nor steer the terminal.
[[nodiscard]] std::string visible(std::string_view text);

}  // namespace azcoll::cli
