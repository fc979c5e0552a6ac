#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace azcoll::fuzz {

/// A number that depends on the bytes of `text` alone, so that an input always means the same.
[[nodiscard]] std::uint64_t hashOf(std::string_view text);

/// `text` with its constants replaced by others of the same class, so that the shape stays; those
/// with an ordinal in `kept` stay as they are. `text` itself when its shape tells nothing.
[[nodiscard]] std::string withOtherConstants(std::string_view text, std::uint64_t seed,
                                             const std::vector<std::size_t>& kept = {});

}  // namespace azcoll::fuzz
