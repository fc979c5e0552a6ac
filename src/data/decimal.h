#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "data/int128.h"

namespace azcoll {

/// Exact decimal number: an integer of at most 38 digits and a scale (digits after the point).
///
/// Money and numeric columns travel in this type from the database to the caller, never through
/// floating point. The scale is kept as given ("12.50" stays "12.50"); comparison ignores it.
class Decimal {
 public:
  static constexpr int kMaxDigits = 38;

  constexpr Decimal() = default;

  /// The whole number `value`, scale 0.
  static constexpr Decimal fromInteger(std::int64_t value) { return Decimal{value, 0}; }

  /// `unscaled` divided by 10^`scale`.
  /// Empty when the digits exceed 38 or the scale is outside 0…38.
  static std::optional<Decimal> fromUnscaled(Int128 unscaled, int scale);

  /// Reads an optional sign, digits and an optional point with digits (".5" and "5." included).
  /// Blanks around the number are allowed; an exponent, a comma or more than 38 digits are not:
  /// the result is then empty.
  static std::optional<Decimal> parse(std::string_view text);

  [[nodiscard]] constexpr Int128 unscaled() const { return unscaled_; }
  [[nodiscard]] constexpr int scale() const { return scale_; }
  [[nodiscard]] constexpr bool isZero() const { return unscaled_ == 0; }
  [[nodiscard]] constexpr bool isNegative() const { return unscaled_ < 0; }

  /// The number with exactly `scale` digits after the point, rounded half away from zero.
  /// Empty when the result would exceed 38 digits.
  [[nodiscard]] std::optional<Decimal> rescaled(int scale) const;

  /// The number as a 64-bit integer; empty when it has a fraction or does not fit.
  [[nodiscard]] std::optional<std::int64_t> toInteger() const;

  /// The nearest 64-bit integer, a half going to the even neighbour; empty when it does not fit.
  [[nodiscard]] std::optional<std::int64_t> toNearestInteger() const;

  /// Nearest double; for display and conversions that the caller asked for by name.
  [[nodiscard]] double toDouble() const;

  /// Decimal point whatever the locale, no grouping, scale kept: "-12.50".
  [[nodiscard]] std::string text() const;

  /// Appends what `text` gives to `target`.
  void appendTo(std::string& target) const;

  /// Exact sum, difference and product; empty when the exact result exceeds 38 digits.
  [[nodiscard]] std::optional<Decimal> plus(const Decimal& other) const;
  [[nodiscard]] std::optional<Decimal> minus(const Decimal& other) const;
  [[nodiscard]] std::optional<Decimal> times(const Decimal& other) const;

  /// Numeric comparison: 1.5 equals 1.50.
  friend std::strong_ordering operator<=>(const Decimal& left, const Decimal& right);
  friend bool operator==(const Decimal& left, const Decimal& right) {
    return (left <=> right) == std::strong_ordering::equal;
  }

 private:
  constexpr Decimal(Int128 unscaled, int scale) : unscaled_{unscaled}, scale_{scale} {}

  Int128 unscaled_ = 0;
  int scale_ = 0;
};

}  // namespace azcoll
