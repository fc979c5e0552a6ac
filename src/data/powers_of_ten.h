#pragma once

#include <array>
#include <cstddef>

#include "data/int128.h"

namespace azcoll {

namespace detail {

/// 10 to the power of 0…38, the most that 128 bits with a sign hold.
inline constexpr std::array<Int128, 39> kPowersOfTen = [] {
  std::array<Int128, 39> powers{};
  powers[0] = 1;
  for (std::size_t i = 1; i < powers.size(); ++i) {
    powers[i] = powers[i - 1] * 10;
  }
  return powers;
}();

}  // namespace detail

/// 10 to the power of `exponent`, which is 0…38.
[[nodiscard]] constexpr Int128 powerOfTen(int exponent) {
  return detail::kPowersOfTen[static_cast<std::size_t>(exponent)];
}

}  // namespace azcoll
