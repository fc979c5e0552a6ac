#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace azcoll::cli {

/// `name` in lower case and without accents: what remains when it is typed carelessly. Knows the
/// Latin letters of Italian, composed or with combining accents.
[[nodiscard]] std::string foldName(std::string_view name);

/// Number of single-letter changes (insert, drop, replace, swap two neighbours) between two names.
[[nodiscard]] std::size_t editDistance(std::u32string_view left, std::u32string_view right);

/// Index of the name that `typed` means: the very same one, else the only one that is the same but
/// for letter case and accents.
[[nodiscard]] std::optional<std::size_t> findName(std::string_view typed,
                                                  std::span<const std::string_view> names);

/// The name nearest to `typed`; nothing when none is near enough to have been meant.
[[nodiscard]] std::optional<std::string_view> nearestName(std::string_view typed,
                                                          std::span<const std::string_view> names);

/// ` Forse intendevi «NOME»?` for the nearest name, or "" when there is none.
[[nodiscard]] std::string suggestion(std::string_view typed,
                                     std::span<const std::string_view> names);

}  // namespace azcoll::cli
