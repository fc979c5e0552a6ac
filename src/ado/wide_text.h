#pragma once

#include <string>
#include <string_view>

#include "ado/win.h"

namespace azcoll::ado {

/// UTF-8 to UTF-16 and back. A malformed sequence, and half of a surrogate pair, become U+FFFD.
[[nodiscard]] std::wstring wideText(std::string_view text);
[[nodiscard]] std::string narrowText(std::wstring_view text);

/// The characters of a BSTR, zeros among them included; a null BSTR is the empty text.
[[nodiscard]] std::string textOf(BSTR text);

/// A new BSTR, owned by the caller. Throws `std::bad_alloc`.
[[nodiscard]] BSTR newBstr(std::string_view text);

}  // namespace azcoll::ado
