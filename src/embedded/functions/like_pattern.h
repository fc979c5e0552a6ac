#pragma once

#include <optional>
#include <string_view>

namespace azcoll::embedded {

/// Whether `text` matches a pattern of LIKE: `%`, `_`, `[abc]`, `[a-z]`, `[^…]`, and `escape` in
/// front of a character that stands for itself. Letter case does not count. Bounded by the product
/// of the lengths.
[[nodiscard]] bool matchesLike(std::string_view text, std::string_view pattern,
                               std::optional<char32_t> escape);

}  // namespace azcoll::embedded
