#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "data/decimal.h"
#include "embedded/values/types.h"

namespace azcoll::embedded {

/// Least and greatest value of an integer type.
struct IntegerRange {
  std::int64_t low = 0;
  std::int64_t high = 0;
};
[[nodiscard]] IntegerRange rangeOf(const Type& type);

/// `number` itself when the type holds it; throws `SqlError` 220 (small types) or 8115.
[[nodiscard]] std::int64_t checkedInteger(std::int64_t number, const Type& type);

/// The same for the result of an operation: always 8115.
[[nodiscard]] std::int64_t checkedResult(std::int64_t number, const Type& type);

/// The digits of a decimal at another scale, rounded half away from zero; nothing beyond 38 digits.
[[nodiscard]] std::optional<Int128> rescaledDigits(Int128 digits, int from, int to);

/// The digits at `scale` of a double, by its 17 significant digits; nothing beyond 38 digits.
[[nodiscard]] std::optional<Int128> digitsOfDouble(double number, int scale);

/// A double with six fractional digits, as messages show it.
[[nodiscard]] std::string fixedText(double number);

/// A wide decimal as the 16 bytes that sort as the numbers do, and back.
void storeWide(Int128 digits, unsigned char* bytes);
[[nodiscard]] Int128 loadWide(const unsigned char* bytes);

}  // namespace azcoll::embedded
