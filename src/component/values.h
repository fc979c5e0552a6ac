#pragma once

#include <cstdint>
#include <string>

#include "data/variant.h"

namespace azcoll {

/// `Stato` of a call refused for missing or invalid input, and of a trapped failure.
inline constexpr std::int16_t kRefused = 1;
inline constexpr std::int16_t kTrapped = 99;

/// Runs `step` and goes on whatever happens in it: for the routines in which a failing statement is
/// skipped and the next one runs.
template <typename Step>
void ignoreErrors(const Step& step) noexcept {
  try {
    step();
  } catch (...) {  // NOLINT(bugprone-empty-catch): skipping the failure is this routine's purpose
  }
}

/// Description of the exception being handled.
[[nodiscard]] std::string currentDescription();

/// Whether `value` stands for `number`: a number of any kind, or a text that holds it. Null, Empty
/// and everything else stand for no number.
[[nodiscard]] bool isNumber(const Variant& value, std::int64_t number) noexcept;

}  // namespace azcoll
