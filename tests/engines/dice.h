#pragma once

#include <cstdint>
#include <iterator>
#include <random>
#include <string>

namespace azcoll::test {

/// Draws that are the same for a seed everywhere.
class Dice {
 public:
  explicit Dice(std::uint32_t seed) : random_{seed} {}

  [[nodiscard]] int below(int limit) {
    return static_cast<int>(random_() % static_cast<std::uint32_t>(limit));
  }
  /// True in `percent` of a hundred cases.
  [[nodiscard]] bool in(int percent) { return below(100) < percent; }
  template <typename Values>
  [[nodiscard]] const auto& anyOf(const Values& values) {
    return values[static_cast<std::size_t>(below(static_cast<int>(std::size(values))))];
  }
  [[nodiscard]] std::string orNull(std::string value, int percent) {
    return in(percent) ? "NULL" : std::move(value);
  }

 private:
  std::minstd_rand random_;
};

}  // namespace azcoll::test
