#pragma once

#include <compare>
#include <concepts>
#include <cstdint>
#include <optional>

namespace azcoll {

/// 128-bit integers for compilers without them (32-bit targets).
namespace portable {

/// Unsigned 128-bit integer; wraps around as built-in unsigned integers do. Division by zero is
/// undefined, as it is for them.
class UInt128 {
 public:
  constexpr UInt128() = default;
  // NOLINTBEGIN(google-explicit-constructor): stands in for a built-in type
  template <std::integral T>
  constexpr UInt128(T value)
      : low_{static_cast<std::uint64_t>(value)}, high_{value < T{} ? ~std::uint64_t{0} : 0} {}
  // NOLINTEND(google-explicit-constructor)
  constexpr UInt128(std::uint64_t high, std::uint64_t low) : low_{low}, high_{high} {}

  template <std::integral T>
  explicit constexpr operator T() const {
    if constexpr (std::same_as<T, bool>) {
      return (low_ | high_) != 0;
    } else {
      return static_cast<T>(low_);
    }
  }
  explicit constexpr operator double() const {
    return static_cast<double>(high_) * 18446744073709551616.0 + static_cast<double>(low_);
  }

  friend constexpr bool operator==(const UInt128&, const UInt128&) = default;
  friend constexpr std::strong_ordering operator<=>(const UInt128& a, const UInt128& b) {
    return a.high_ != b.high_ ? a.high_ <=> b.high_ : a.low_ <=> b.low_;
  }

  friend constexpr UInt128 operator+(UInt128 a, UInt128 b) {
    const std::uint64_t low = a.low_ + b.low_;
    return {a.high_ + b.high_ + (low < a.low_ ? 1U : 0U), low};
  }
  friend constexpr UInt128 operator-(UInt128 a, UInt128 b) {
    return {a.high_ - b.high_ - (a.low_ < b.low_ ? 1U : 0U), a.low_ - b.low_};
  }
  friend constexpr UInt128 operator*(UInt128 a, UInt128 b) {
    UInt128 product = multiply64(a.low_, b.low_);
    product.high_ += a.high_ * b.low_ + a.low_ * b.high_;
    return product;
  }
  friend constexpr UInt128 operator/(UInt128 a, UInt128 b) {
    UInt128 rest;
    return divide(a, b, rest);
  }
  friend constexpr UInt128 operator%(UInt128 a, UInt128 b) {
    UInt128 rest;
    divide(a, b, rest);
    return rest;
  }
  friend constexpr UInt128 operator^(UInt128 a, UInt128 b) {
    return {a.high_ ^ b.high_, a.low_ ^ b.low_};
  }
  friend constexpr UInt128 operator|(UInt128 a, UInt128 b) {
    return {a.high_ | b.high_, a.low_ | b.low_};
  }
  friend constexpr UInt128 operator&(UInt128 a, UInt128 b) {
    return {a.high_ & b.high_, a.low_ & b.low_};
  }
  friend constexpr UInt128 operator<<(UInt128 a, int count) {
    if (count == 0) {
      return a;
    }
    return count >= 64 ? UInt128{a.low_ << (count - 64), 0}
                       : UInt128{(a.high_ << count) | (a.low_ >> (64 - count)), a.low_ << count};
  }
  friend constexpr UInt128 operator>>(UInt128 a, int count) {
    if (count == 0) {
      return a;
    }
    return count >= 64 ? UInt128{0, a.high_ >> (count - 64)}
                       : UInt128{a.high_ >> count, (a.low_ >> count) | (a.high_ << (64 - count))};
  }
  friend constexpr UInt128 operator-(UInt128 a) { return UInt128{} - a; }
  friend constexpr UInt128 operator~(UInt128 a) { return {~a.high_, ~a.low_}; }

  constexpr UInt128& operator+=(UInt128 b) { return *this = *this + b; }
  constexpr UInt128& operator-=(UInt128 b) { return *this = *this - b; }
  constexpr UInt128& operator*=(UInt128 b) { return *this = *this * b; }
  constexpr UInt128& operator/=(UInt128 b) { return *this = *this / b; }
  constexpr UInt128& operator%=(UInt128 b) { return *this = *this % b; }
  constexpr UInt128& operator|=(UInt128 b) { return *this = *this | b; }
  constexpr UInt128& operator<<=(int count) { return *this = *this << count; }
  constexpr UInt128& operator>>=(int count) { return *this = *this >> count; }
  constexpr UInt128& operator++() { return *this += UInt128{1}; }

 private:
  static constexpr UInt128 multiply64(std::uint64_t a, std::uint64_t b) {
    constexpr std::uint64_t kHalf = 0xFFFFFFFFU;
    const std::uint64_t low = (a & kHalf) * (b & kHalf);
    const std::uint64_t first = (a >> 32U) * (b & kHalf) + (low >> 32U);
    const std::uint64_t second = (a & kHalf) * (b >> 32U) + (first & kHalf);
    return {(a >> 32U) * (b >> 32U) + (first >> 32U) + (second >> 32U),
            (second << 32U) | (low & kHalf)};
  }
  static constexpr UInt128 divide(UInt128 a, UInt128 b, UInt128& rest) {
    if (a.high_ == 0 && b.high_ == 0) {
      rest = UInt128{a.low_ % b.low_};
      return UInt128{a.low_ / b.low_};
    }
    UInt128 quotient;
    rest = UInt128{};
    for (int bit = 127; bit >= 0; --bit) {
      const bool carry = (rest.high_ >> 63U) != 0;
      rest = (rest << 1) | ((a >> bit) & UInt128{1});
      quotient <<= 1;
      if (carry || rest >= b) {
        rest -= b;
        quotient |= UInt128{1};
      }
    }
    return quotient;
  }

  std::uint64_t low_ = 0;
  std::uint64_t high_ = 0;
};

/// Signed 128-bit integer in two's complement.
class Int128 {
 public:
  constexpr Int128() = default;
  // NOLINTBEGIN(google-explicit-constructor): stands in for a built-in type
  template <std::integral T>
  constexpr Int128(T value) : bits_{value} {}
  // NOLINTEND(google-explicit-constructor)
  explicit constexpr Int128(UInt128 bits) : bits_{bits} {}

  explicit constexpr operator UInt128() const { return bits_; }
  template <std::integral T>
  explicit constexpr operator T() const {
    return static_cast<T>(bits_);
  }
  explicit constexpr operator double() const {
    return negative() ? -static_cast<double>(-bits_) : static_cast<double>(bits_);
  }

  friend constexpr bool operator==(const Int128&, const Int128&) = default;
  friend constexpr std::strong_ordering operator<=>(const Int128& a, const Int128& b) {
    return a.negative() != b.negative() ? b.negative() <=> a.negative() : a.bits_ <=> b.bits_;
  }

  friend constexpr Int128 operator+(Int128 a, Int128 b) { return Int128{a.bits_ + b.bits_}; }
  friend constexpr Int128 operator-(Int128 a, Int128 b) { return Int128{a.bits_ - b.bits_}; }
  friend constexpr Int128 operator*(Int128 a, Int128 b) { return Int128{a.bits_ * b.bits_}; }
  friend constexpr Int128 operator/(Int128 a, Int128 b) {
    const Int128 quotient{a.size() / b.size()};
    return a.negative() != b.negative() ? -quotient : quotient;
  }
  friend constexpr Int128 operator%(Int128 a, Int128 b) {
    const Int128 rest{a.size() % b.size()};
    return a.negative() ? -rest : rest;
  }
  friend constexpr Int128 operator-(Int128 a) { return Int128{-a.bits_}; }

  constexpr Int128& operator+=(Int128 b) { return *this = *this + b; }
  constexpr Int128& operator-=(Int128 b) { return *this = *this - b; }
  constexpr Int128& operator*=(Int128 b) { return *this = *this * b; }
  constexpr Int128& operator/=(Int128 b) { return *this = *this / b; }
  constexpr Int128& operator%=(Int128 b) { return *this = *this % b; }

 private:
  [[nodiscard]] constexpr bool negative() const { return static_cast<bool>(bits_ >> 127); }
  [[nodiscard]] constexpr UInt128 size() const { return negative() ? -bits_ : bits_; }

  UInt128 bits_;
};

/// The sum; nothing when it needs more than 128 bits.
[[nodiscard]] constexpr std::optional<Int128> sumWithin(Int128 a, Int128 b) {
  const Int128 sum = a + b;
  const bool overflow = (a < Int128{}) == (b < Int128{}) && (sum < Int128{}) != (a < Int128{});
  return overflow ? std::nullopt : std::optional{sum};
}

/// The product; nothing when it needs more than 128 bits.
[[nodiscard]] constexpr std::optional<Int128> productWithin(Int128 a, Int128 b) {
  const Int128 zero;
  const bool negative = (a < zero) != (b < zero);
  const auto first = static_cast<UInt128>(a < zero ? -a : a);
  const auto second = static_cast<UInt128>(b < zero ? -b : b);
  const UInt128 largest = (~UInt128{} >> 1) + UInt128{negative ? 1 : 0};
  if (second != UInt128{} && first > largest / second) {
    return std::nullopt;
  }
  const Int128 product{first * second};
  return negative ? -product : product;
}

}  // namespace portable

// Signed and unsigned 128-bit integers: wide enough for the 38 digits of a database decimal.
#ifdef __SIZEOF_INT128__
__extension__ using Int128 = __int128;
__extension__ using UInt128 = unsigned __int128;

/// The sum or the product; nothing when it needs more than 128 bits.
[[nodiscard]] constexpr std::optional<Int128> sumWithin(Int128 a, Int128 b) {
  Int128 sum = 0;
  return __builtin_add_overflow(a, b, &sum) ? std::nullopt : std::optional{sum};
}
[[nodiscard]] constexpr std::optional<Int128> productWithin(Int128 a, Int128 b) {
  Int128 product = 0;
  return __builtin_mul_overflow(a, b, &product) ? std::nullopt : std::optional{product};
}
#else
using Int128 = portable::Int128;
using UInt128 = portable::UInt128;
using portable::productWithin;
using portable::sumWithin;
#endif

}  // namespace azcoll
