#include "data/decimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <limits>

#include "data/powers_of_ten.h"
#include "text/trimming.h"

namespace azcoll {
namespace {

/// Magnitudes are unsigned.
constexpr UInt128 power(int exponent) { return static_cast<UInt128>(powerOfTen(exponent)); }

constexpr UInt128 kLimit = power(Decimal::kMaxDigits);  // the first magnitude with 39 digits

constexpr UInt128 magnitude(Int128 value) {
  return value < 0 ? UInt128{0} - static_cast<UInt128>(value) : static_cast<UInt128>(value);
}

/// The decimal of these parts; empty when the magnitude has more than 38 digits.
std::optional<Decimal> make(bool negative, UInt128 value, int scale) {
  if (value >= kLimit) {
    return std::nullopt;
  }
  const auto magnitudeValue = static_cast<Int128>(value);
  return Decimal::fromUnscaled(negative ? -magnitudeValue : magnitudeValue, scale);
}

/// Magnitude and scale taken apart, to be shifted.
struct Parts {
  UInt128 value;
  int scale;

  explicit Parts(const Decimal& number)
      : value{magnitude(number.unscaled())}, scale{number.scale()} {}

  void dropTrailingZeros() {
    while (scale > 0 && value % 10 == 0) {
      value /= 10;
      --scale;
    }
  }

  /// Writes the same number with a larger scale; false when it would pass twice the limit, beyond
  /// which no sum or difference can come back inside.
  bool raiseScale(int wanted) {
    while (scale < wanted) {
      if (value > kLimit / 5) {
        return false;
      }
      value *= 10;
      ++scale;
    }
    return true;
  }
};

std::optional<Decimal> sum(bool leftNegative, Parts left, bool rightNegative, Parts right) {
  const int scale = std::max(left.scale, right.scale);
  if (!left.raiseScale(scale) || !right.raiseScale(scale)) {
    return std::nullopt;
  }
  if (leftNegative != rightNegative) {
    const bool leftWins = left.value >= right.value;
    return leftWins ? make(leftNegative, left.value - right.value, scale)
                    : make(rightNegative, right.value - left.value, scale);
  }
  // Each is at most twice the limit, and only one of them was raised: the sum fits 128 bits.
  Parts total{left};
  total.value += right.value;
  while (total.value >= kLimit && total.scale > 0 && total.value % 10 == 0) {
    total.value /= 10;
    --total.scale;
  }
  return make(leftNegative, total.value, total.scale);
}

std::optional<Decimal> addSigned(const Decimal& left, const Decimal& right, bool negateRight) {
  const bool rightNegative = right.isNegative() != negateRight;
  if (const auto result = sum(left.isNegative(), Parts{left}, rightNegative, Parts{right})) {
    return result;
  }
  // Trailing zeros after the point may be all that did not fit.
  Parts leftParts{left};
  Parts rightParts{right};
  leftParts.dropTrailingZeros();
  rightParts.dropTrailingZeros();
  return sum(left.isNegative(), leftParts, rightNegative, rightParts);
}

/// Divides the first of the two that is divisible by `factor`; false when neither is.
bool divideEither(UInt128& left, UInt128& right, unsigned factor) {
  if (left % factor == 0) {
    left /= factor;
    return true;
  }
  if (right % factor == 0) {
    right /= factor;
    return true;
  }
  return false;
}

/// Takes one trailing zero out of the product of the two; false when it has none.
bool dropZeroOfProduct(UInt128& left, UInt128& right) {
  UInt128 reducedLeft = left;
  UInt128 reducedRight = right;
  if (!divideEither(reducedLeft, reducedRight, 2) || !divideEither(reducedLeft, reducedRight, 5)) {
    return false;
  }
  left = reducedLeft;
  right = reducedRight;
  return true;
}

constexpr bool productFits(UInt128 left, UInt128 right) {
  return left == 0 || right <= (kLimit - 1) / left;
}

/// Whole parts and fractions apart: bringing both numbers to one scale could overflow.
std::strong_ordering compareMagnitudes(const Parts& left, const Parts& right) {
  const UInt128 leftPower = power(left.scale);
  const UInt128 rightPower = power(right.scale);
  const std::strong_ordering whole = left.value / leftPower <=> right.value / rightPower;
  if (whole != std::strong_ordering::equal) {
    return whole;
  }
  const int scale = std::max(left.scale, right.scale);
  return (left.value % leftPower) * power(scale - left.scale) <=>
         (right.value % rightPower) * power(scale - right.scale);
}

constexpr bool isDigit(char character) { return character >= '0' && character <= '9'; }

}  // namespace

std::optional<Decimal> Decimal::fromUnscaled(Int128 unscaled, int scale) {
  if (scale < 0 || scale > kMaxDigits || magnitude(unscaled) >= kLimit) {
    return std::nullopt;
  }
  return Decimal{unscaled, scale};
}

std::optional<Decimal> Decimal::parse(std::string_view text) {
  text = trim(text);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  UInt128 value = 0;
  int scale = 0;
  bool anyDigit = false;
  bool afterPoint = false;
  for (const char character : text) {
    if (character == '.' && !afterPoint) {
      afterPoint = true;
      continue;
    }
    if (!isDigit(character)) {
      return std::nullopt;
    }
    anyDigit = true;
    scale += afterPoint ? 1 : 0;
    if (value >= kLimit / 10 || scale > kMaxDigits) {
      return std::nullopt;  // before it is multiplied: 39 digits may not fit
    }
    value = value * 10 + static_cast<unsigned>(character - '0');
  }
  return anyDigit ? make(negative, value, scale) : std::nullopt;
}

std::optional<Decimal> Decimal::rescaled(int scale) const {
  if (scale < 0 || scale > kMaxDigits) {
    return std::nullopt;
  }
  Parts parts{*this};
  if (scale >= scale_) {
    return parts.raiseScale(scale) ? make(isNegative(), parts.value, scale) : std::nullopt;
  }
  const UInt128 divisor = power(scale_ - scale);
  const UInt128 rest = parts.value % divisor;
  const UInt128 roundUp = rest >= divisor - rest ? 1 : 0;
  return make(isNegative(), parts.value / divisor + roundUp, scale);
}

std::optional<std::int64_t> Decimal::toInteger() const {
  if (magnitude(unscaled_) % power(scale_) != 0) {
    return std::nullopt;
  }
  return toNearestInteger();
}

std::optional<std::int64_t> Decimal::toNearestInteger() const {
  const UInt128 divisor = power(scale_);
  UInt128 whole = magnitude(unscaled_) / divisor;
  const UInt128 rest = magnitude(unscaled_) % divisor;
  if (rest > divisor - rest || (rest == divisor - rest && whole % 2 == 1)) {
    ++whole;
  }
  const auto signedWhole = isNegative() ? -static_cast<Int128>(whole) : static_cast<Int128>(whole);
  if (signedWhole < std::numeric_limits<std::int64_t>::min() ||
      signedWhole > std::numeric_limits<std::int64_t>::max()) {
    return std::nullopt;
  }
  return static_cast<std::int64_t>(signedWhole);
}

double Decimal::toDouble() const {
  // The text conversion rounds once; dividing two doubles would round three times.
  const std::string digits = text();
  double value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return value;
}

std::string Decimal::text() const {
  std::string result;
  appendTo(result);
  return result;
}

void Decimal::appendTo(std::string& target) const {
  // 38 digits, or a zero before the point and 38 after it, with the point and the sign.
  std::array<char, kMaxDigits + 3> buffer{};
  std::size_t first = buffer.size();
  UInt128 value = magnitude(unscaled_);
  for (int digit = 0; value != 0 || digit <= scale_; ++digit) {
    if (digit == scale_ && scale_ > 0) {
      buffer[--first] = '.';
    }
    buffer[--first] = static_cast<char>('0' + static_cast<int>(value % 10));
    value /= 10;
  }
  if (isNegative()) {
    buffer[--first] = '-';
  }
  target.append(buffer.data() + first, buffer.size() - first);
}

std::optional<Decimal> Decimal::plus(const Decimal& other) const {
  return addSigned(*this, other, false);
}

std::optional<Decimal> Decimal::minus(const Decimal& other) const {
  return addSigned(*this, other, true);
}

std::optional<Decimal> Decimal::times(const Decimal& other) const {
  UInt128 left = magnitude(unscaled_);
  UInt128 right = magnitude(other.unscaled_);
  if (left == 0 || right == 0) {
    return Decimal{0, std::min(scale_ + other.scale_, kMaxDigits)};
  }
  int scale = scale_ + other.scale_;
  while (scale > kMaxDigits || !productFits(left, right)) {
    if (scale == 0 || !dropZeroOfProduct(left, right)) {
      return std::nullopt;
    }
    --scale;
  }
  return make(isNegative() != other.isNegative(), left * right, scale);
}

std::strong_ordering operator<=>(const Decimal& left, const Decimal& right) {
  if (left.isNegative() != right.isNegative()) {
    return left.isNegative() ? std::strong_ordering::less : std::strong_ordering::greater;
  }
  // Below zero the larger magnitude is the smaller number.
  return left.isNegative() ? compareMagnitudes(Parts{right}, Parts{left})
                           : compareMagnitudes(Parts{left}, Parts{right});
}

}  // namespace azcoll
