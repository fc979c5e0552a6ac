#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "odbc/odbc_api.h"

namespace azcoll::odbc {

// Text is UTF-8 inside and UTF-16 in every call of the driver manager; this is the one place that
// converts.

/// UTF-8 as UTF-16. Throws `Error` when the bytes are not UTF-8.
[[nodiscard]] std::u16string wideOf(std::string_view text);

/// UTF-16 as UTF-8; empty when a surrogate stands alone.
[[nodiscard]] std::optional<std::string> narrowOf(std::u16string_view text);

/// Bytes that `narrowTo` may need for a text of so many units.
[[nodiscard]] constexpr std::size_t mostNarrowBytes(std::size_t units) { return 3 * units; }

/// Writes UTF-16 (`units` of it, at any address) as UTF-8 to `target`, which has room for
/// `mostNarrowBytes(units)`. The bytes written; empty when a surrogate stands alone.
[[nodiscard]] std::optional<std::size_t> narrowTo(char* target, const std::byte* text,
                                                  std::size_t units);

/// UTF-16 as UTF-8, U+FFFD for a surrogate that stands alone: for texts that only people read.
[[nodiscard]] std::string readableOf(std::u16string_view text);

/// The units of a text as the driver manager takes them.
[[nodiscard]] inline SQLWCHAR* units(char16_t* text) { return reinterpret_cast<SQLWCHAR*>(text); }
[[nodiscard]] inline SQLWCHAR* units(std::u16string& text) { return units(text.data()); }

}  // namespace azcoll::odbc
