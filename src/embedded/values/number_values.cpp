#include "embedded/values/number_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

#include "data/powers_of_ten.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/value.h"

namespace azcoll::embedded {

namespace {

constexpr UInt128 kSignBit = UInt128{1} << 127U;

}  // namespace

IntegerRange rangeOf(const Type& type) {
  switch (type.kind) {
    case TypeKind::Bit:
      return {0, 1};
    case TypeKind::TinyInt:
      return {0, 255};
    case TypeKind::SmallInt:
      return {std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()};
    case TypeKind::Int:
      return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
    default:
      return {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
  }
}

std::int64_t checkedInteger(std::int64_t number, const Type& type) {
  const IntegerRange range = rangeOf(type);
  if (number >= range.low && number <= range.high) {
    return number;
  }
  if (type.kind == TypeKind::Int) {
    throw SqlError(8115, "Arithmetic overflow error converting expression to data type int.");
  }
  throw SqlError(220, "Arithmetic overflow error for data type " + std::string(typeName(type)) +
                          ", value = " + std::to_string(number) + ".");
}

std::int64_t checkedResult(std::int64_t number, const Type& type) {
  const IntegerRange range = rangeOf(type);
  if (number >= range.low && number <= range.high) {
    return number;
  }
  throw SqlError(8115, "Arithmetic overflow error converting expression to data type " +
                           std::string(typeName(type)) + ".");
}

std::optional<Int128> rescaledDigits(Int128 digits, int from, int to) {
  if (from == to) {
    return digits;
  }
  if (from > to) {
    const Int128 divisor = powerOfTen(from - to);
    // Rounded half away from zero, as T-SQL rounds decimals.
    const Int128 half = divisor / 2;
    return (digits + (digits < 0 ? -half : half)) / divisor;
  }
  const Int128 factor = powerOfTen(to - from);
  // 38 digits are the most, although 128 bits would hold some more numbers.
  const Int128 limit = (powerOfTen(Decimal::kMaxDigits) - 1) / factor;
  if (digits > limit || digits < -limit) {
    return std::nullopt;
  }
  return digits * factor;
}

std::optional<Int128> digitsOfDouble(double number, int scale) {
  if (!std::isfinite(number) || std::fabs(number) >= 1e38) {
    return std::nullopt;
  }
  // 17 significant digits distinguish a double from every other; what the decimal keeps of them is
  // rounded once, by the decimal's own rule.
  std::array<char, 64> buffer{};
  const int exponent =
      number == 0 ? 0 : static_cast<int>(std::floor(std::log10(std::fabs(number))));
  const int places = std::min(std::max(16 - exponent, 0), 37 - std::max(exponent, 0));
  const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                     std::chars_format::fixed, std::max(places, 0));
  const auto decimal = Decimal::parse({buffer.data(), written.ptr});
  if (!decimal) {
    return std::nullopt;
  }
  return rescaledDigits(decimal->unscaled(), decimal->scale(), scale);
}

std::string fixedText(double number) {
  std::array<char, 400> buffer{};  // the largest double has 309 digits
  const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                     std::chars_format::fixed, 6);
  return {buffer.data(), written.ptr};
}

/// The highest byte first and the sign turned over: SQLite compares blobs byte by byte, and so
/// negative numbers come before positive ones.
void storeWide(Int128 digits, unsigned char* bytes) {
  UInt128 ordered = static_cast<UInt128>(digits) ^ kSignBit;
  for (int i = kWideBytes - 1; i >= 0; --i) {
    bytes[i] = static_cast<unsigned char>(ordered & 0xFFU);
    ordered >>= 8U;
  }
}

Int128 loadWide(const unsigned char* bytes) {
  UInt128 ordered = 0;
  for (int i = 0; i < kWideBytes; ++i) {
    ordered = (ordered << 8U) | bytes[i];
  }
  return static_cast<Int128>(ordered ^ kSignBit);
}

}  // namespace azcoll::embedded
