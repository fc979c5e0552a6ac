// Decimals and conversions of variants. Input: a text on each line, taken as a number, a text or a
// double; the decimals among them are computed with and compared with a computation on paper.

#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "data/decimal.h"
#include "data/error.h"
#include "data/variant.h"
#include "fuzz/check.h"
#include "fuzz/exact_number.h"
#include "fuzz/targets.h"
#include "fuzz/typed_values.h"
#include "text/trimming.h"

namespace azcoll::fuzz {
namespace {

ExactNumber exact(const Decimal& number) { return ExactNumber(number.text()); }

/// The value that an operation gives, or nothing when it is refused.
template <typename Operation>
auto valueOf(Operation operation) -> std::optional<decltype(operation())> {
  try {
    return operation();
  } catch (const Error& error) {
    require(!error.description().empty() && !error.fromProvider(), "a refusal says why");
    return std::nullopt;
  }
}

// ---- decimals

/// Whether a text is a number by the rules that `Decimal::parse` promises.
bool isNumber(std::string_view text) {
  text = trim(text);
  if (text.starts_with('-') || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  const std::size_t point = text.find('.');
  std::string digits(text.substr(0, point));
  const std::string behind(point == std::string_view::npos ? "" : text.substr(point + 1));
  digits += behind;
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos) {
    return false;
  }
  const std::size_t zeros = std::min(digits.find_first_not_of('0'), digits.size());
  return digits.size() - zeros <= 38 && behind.size() <= 38;
}

void checkText(const Decimal& number, const std::string& text) {
  const std::string written = number.text();
  const std::optional<Decimal> again = Decimal::parse(written);
  require(again && again->unscaled() == number.unscaled() && again->scale() == number.scale(),
          "a number reads back as it is written", written);
  require(exact(number) == ExactNumber(trim(text)), "a number is the one that was read", text);
  require(number.toDouble() == std::strtod(written.c_str(), nullptr), "the nearest double", text);
}

void checkRounding(const Decimal& number) {
  const ExactNumber value = exact(number);
  const std::string text = number.text();
  for (int scale = -1; scale <= 39; ++scale) {
    const std::optional<Decimal> rounded = number.rescaled(scale);
    if (scale < 0 || scale > 38) {
      require(!rounded, "a scale has limits", text);
      continue;
    }
    const auto digits = value.digitCount() + static_cast<std::size_t>(scale);
    if (!rounded) {
      require(!value.isZero() && digits > 38U + static_cast<unsigned>(value.scale()),
              "rounding is refused for too many digits only", text);
      continue;
    }
    require(rounded->scale() == scale, "the scale is the one wanted", text);
    const ExactNumber unit(scale == 0 ? "1"
                                      : "0." + std::string(std::size_t(scale) - 1, '0') + "1");
    const ExactNumber error = (exact(*rounded) - value).magnitude();
    const auto twice = error + error <=> unit;
    const bool away = exact(*rounded).magnitude() > value.magnitude();
    require(twice < 0 || (twice == 0 && away), "half away from zero", text);
  }
}

void checkWhole(const Decimal& number) {
  const ExactNumber value = exact(number);
  const std::string text = number.text();
  const ExactNumber half("0.5");
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  if (const auto nearest = number.toNearestInteger()) {
    const auto distance = (ExactNumber(std::to_string(*nearest)) - value).magnitude() <=> half;
    require(distance < 0 || (distance == 0 && *nearest % 2 == 0), "half to even", text);
  } else {
    require(value >= ExactNumber(std::to_string(kMost)) + half ||
                value < ExactNumber(std::to_string(kLeast)) - half,
            "a whole number in range is given", text);
  }
  const bool whole = value.scale() == 0 && value >= ExactNumber(std::to_string(kLeast)) &&
                     value <= ExactNumber(std::to_string(kMost));
  const auto integer = number.toInteger();
  require(integer.has_value() == whole, "whole numbers in range are integers", text);
  require(!integer || ExactNumber(std::to_string(*integer)) == value, "the same integer", text);
}

void checkResult(const std::optional<Decimal>& result, const ExactNumber& expected,
                 const std::string& about) {
  require(result.has_value() == expected.fits(), "a result is given when it fits", about);
  require(!result || exact(*result) == expected, "a result is exact", about);
}

void checkReckoning(const Decimal& left, const Decimal& right) {
  const ExactNumber a = exact(left);
  const ExactNumber b = exact(right);
  const std::string about = left.text() + " and " + right.text();
  checkResult(left.plus(right), a + b, "sum of " + about);
  checkResult(left.minus(right), a - b, "difference of " + about);
  checkResult(left.times(right), a * b, "product of " + about);
  require((left <=> right) == (a <=> b), "order", about);
  require((left == right) == (a == b), "equality", about);
}

// ---- variants

void checkTextValue(const std::string& text, const std::optional<Decimal>& number) {
  const Variant value(text);
  require(value.text() == text && sameValue(value, value), "a text is itself", text);
  require(valueOf([&] { return value.toDecimal(); }).has_value() == number.has_value(),
          "a text that is a number converts to it", text);
  const auto nearest = number ? number->toNearestInteger() : std::nullopt;
  const std::int64_t whole = nearest.value_or(0);
  const auto fits = [&](auto limit) {
    using Limits = std::numeric_limits<decltype(limit)>;
    return nearest.has_value() && whole >= Limits::min() && whole <= Limits::max();
  };
  require(valueOf([&] { return value.toInt64(); }) == nearest, "64 bits", text);
  const auto medium = valueOf([&] { return value.toInt32(); });
  require(medium.has_value() == fits(std::int32_t{}) && (!medium || *medium == whole), "32 bits",
          text);
  const auto small = valueOf([&] { return value.toInt16(); });
  require(small.has_value() == fits(std::int16_t{}) && (!small || *small == whole), "16 bits",
          text);
  const auto truth = valueOf([&] { return value.toBool(); });
  require(!number || truth == !number->isZero(), "a number is true when it is not 0", text);
  require(valueOf([&] { return value.toDate(); }) == Date::parse(text), "a date", text);
  const auto next = valueOf([&] { return value.plusOne(); });
  const auto expected = number ? number->plus(Decimal::fromInteger(1)) : std::nullopt;
  require(next.has_value() == expected.has_value(), "one more than a number", text);
  require(!next || next->toDecimal() == *expected, "exactly one more", text);
}

/// The same number in every kind that holds it exactly.
std::vector<Variant> kindsOf(const Decimal& number) {
  std::vector<Variant> kinds{Variant(number)};
  if (const auto whole = number.toInteger()) {
    kinds.emplace_back(*whole);
    if (static_cast<std::int32_t>(*whole) == *whole) {
      kinds.emplace_back(static_cast<std::int32_t>(*whole));
    }
    if (static_cast<std::int16_t>(*whole) == *whole) {
      kinds.emplace_back(static_cast<std::int16_t>(*whole));
    }
  }
  const Variant asDouble(number.toDouble());
  if (const auto back = valueOf([&] { return asDouble.toDecimal(); }); back && *back == number) {
    kinds.push_back(asDouble);
  }
  return kinds;
}

void checkSameNumber(const Decimal& left, const Decimal& right) {
  for (const Variant& a : kindsOf(left)) {
    for (const Variant& b : kindsOf(right)) {
      const std::string about = a.text() + " and " + b.text();
      require(sameValue(a, b) == sameValue(b, a), "sameness goes both ways", about);
      require(sameValue(a, b) == (left == right), "the same number in any kind", about);
    }
    const auto next = valueOf([&] { return a.plusOne(); });
    const auto expected = left.plus(Decimal::fromInteger(1));
    require(a.kind() == Variant::Kind::Double || next.has_value() == expected.has_value(),
            "one more", a.text());
    require(a.kind() == Variant::Kind::Double || !next || next->toDecimal() == *expected,
            "exactly one more", a.text());
  }
}

void checkDouble(double number) {
  const Variant value(number);
  const std::string text = value.text();
  const auto decimal = valueOf([&] { return value.toDecimal(); });
  const auto whole = valueOf([&] { return value.toInt64(); });
  static_cast<void>(value.toBool());
  static_cast<void>(valueOf([&] { return value.plusOne(); }));
  if (!std::isfinite(number)) {
    require(!decimal && !whole, "what is not a number does not convert", text);
    return;
  }
  require(std::strtod(text.c_str(), nullptr) == number, "a double reads back", text);
  require(!decimal || decimal->toDouble() == number, "a double's digits are its own", text);
  require(!whole || static_cast<double>(*whole) == std::nearbyint(number), "nearest whole", text);
  require(
      whole.has_value() == (std::nearbyint(number) >= -0x1p63 && std::nearbyint(number) < 0x1p63),
      "a whole number in range is given", text);
}

std::vector<std::string> firstLines(std::string_view input, std::size_t most) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at <= input.size() && lines.size() < most;) {
    const std::size_t end = std::min(input.find('\n', at), input.size());
    lines.emplace_back(input.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

}  // namespace

void variants(std::string_view input) {
  constexpr std::size_t kMostLines = 4;
  std::vector<Decimal> numbers;
  for (const std::string& line : firstLines(input, kMostLines)) {
    const std::optional<Decimal> number = Decimal::parse(line);
    require(number.has_value() == isNumber(line), "a number is what is written as one", line);
    checkTextValue(line, number);
    checkDouble(std::strtod(line.c_str(), nullptr));
    checkTypedText(line);
    if (number) {
      checkText(*number, line);
      checkRounding(*number);
      checkWhole(*number);
      numbers.push_back(*number);
    }
  }
  if (std::uint64_t bits = 0; input.size() >= sizeof bits) {
    std::memcpy(&bits, input.data(), sizeof bits);
    checkDouble(std::bit_cast<double>(bits));
  }
  for (const Decimal& left : numbers) {
    for (const Decimal& right : numbers) {
      checkReckoning(left, right);
      checkSameNumber(left, right);
    }
  }
}

}  // namespace azcoll::fuzz
