#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "data/date.h"
#include "data/variant.h"

namespace azcoll {

/// `Stato` of a call refused for missing or invalid input, and of a trapped failure.
inline constexpr std::int16_t kRefused = 1;
inline constexpr std::int16_t kTrapped = 99;

/// What parts the lines of a statement or of a message.
inline constexpr std::string_view kLineBreak = "\r\n";

/// VAT regimes of a company, `CG25_FLGIVAQUATER`.
namespace regimes {
inline constexpr std::int16_t kOneActivity = 0;
inline constexpr std::int16_t kOverSeveralCompanies = 1;
inline constexpr std::int16_t kWithinOneCompany = 2;
}  // namespace regimes

/// Runs `step` and continues whatever happens in it: for the routines in which a failing statement
/// is skipped and the next one runs.
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
/// and everything else never equal a number.
[[nodiscard]] bool equalsNumber(const Variant& value, std::int64_t number) noexcept;

/// Whether `value` is a number above 0. Throws `Error` for Null and for what is not a number.
[[nodiscard]] bool isPositive(const Variant& value);

/// A day of `year`, a value that stands for a year; nothing when the calendar has no such year.
/// Throws `Error` for what is not a number.
[[nodiscard]] std::optional<Date> dayOf(const Variant& year, int month, int day);

/// Puts a value into a field of the input object for as long as it lives, then puts the old one
/// back, failures included.
class Borrowed {
 public:
  Borrowed(Variant& field, Variant value) : field_{field}, kept_{std::move(value)} {
    std::swap(field_, kept_);
  }
  Borrowed(const Borrowed&) = delete;
  Borrowed(Borrowed&&) = delete;
  Borrowed& operator=(const Borrowed&) = delete;
  Borrowed& operator=(Borrowed&&) = delete;
  ~Borrowed() { std::swap(field_, kept_); }

 private:
  Variant& field_;
  Variant kept_;
};

}  // namespace azcoll
