#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace azcoll::tsql {

/// The line of `text` around the `length` bytes at `offset`, these between `»` and `«`. Long lines
/// are cut on both sides (`…`), so that the result stays near 120 characters; what cannot be shown
/// (control characters, bytes that are not UTF-8) is replaced.
[[nodiscard]] std::string markedFragment(std::string_view text, std::size_t offset,
                                         std::size_t length);

}  // namespace azcoll::tsql
