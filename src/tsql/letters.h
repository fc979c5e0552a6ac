#pragma once

#include <cstdint>

namespace azcoll::tsql {

/// Whether a code point beyond ASCII may stand in a name: a letter, not punctuation, a symbol or a
/// kind of blank.
[[nodiscard]] bool isLetterBeyondAscii(std::uint32_t codePoint);

}  // namespace azcoll::tsql
