#include "data/variant.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "data/error.h"
#include "data/messages.h"
#include "data/text.h"
#include "text/letter_case.h"

namespace azcoll {
namespace {

[[noreturn]] void fail(std::string_view message) { throw Error(std::string{message}); }

/// One function object out of several, to visit a variant with.
template <typename... Functions>
struct Visitor : Functions... {
  using Functions::operator()...;
};
template <typename... Functions>
Visitor(Functions...) -> Visitor<Functions...>;

// Outside these bounds the digits in full would hide the number.
constexpr double kLeastInDigits = 1e-7;
constexpr double kMostInDigits = 1e21;

enum class Form : std::uint8_t { Digits, Shortest };

void appendDouble(std::string& target, double value, Form form) {
  std::array<char, 384> buffer{};  // the longest double in digits has 309 before or 326 after
  const double size = std::fabs(value);
  if (size == 0) {
    target += '0';
    return;
  }
  const bool inDigits = form == Form::Digits || (size >= kLeastInDigits && size < kMostInDigits);
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                    inDigits ? std::chars_format::fixed : std::chars_format::scientific);
  target.append(buffer.data(), end.ptr);
}

Decimal decimalOf(double value) {
  std::string digits;
  appendDouble(digits, value, Form::Digits);
  const std::optional<Decimal> number = Decimal::parse(digits);
  if (!number) {
    fail(messages::kOverflow);
  }
  return *number;
}

Decimal decimalOf(std::string_view text) {
  const std::optional<Decimal> number = Decimal::parse(text);
  if (!number) {
    fail(messages::kTypeMismatch);
  }
  return *number;
}

std::int64_t nearestInteger(const Decimal& number) {
  const std::optional<std::int64_t> whole = number.toNearestInteger();
  if (!whole) {
    fail(messages::kOverflow);
  }
  return *whole;
}

std::int64_t nearestInteger(double value) {
  constexpr double kBound = 9223372036854775808.0;  // 2 to the 63rd, the first that does not fit
  const double rounded = std::nearbyint(value);
  if (!(rounded >= -kBound && rounded < kBound)) {
    fail(messages::kOverflow);
  }
  return static_cast<std::int64_t>(rounded);
}

template <typename Integer>
Integer narrowed(std::int64_t value) {
  if (value < std::numeric_limits<Integer>::min() || value > std::numeric_limits<Integer>::max()) {
    fail(messages::kOverflow);
  }
  return static_cast<Integer>(value);
}

/// The narrowest usual kind for a whole number that was a text.
Variant wholeNumber(std::int64_t value) {
  const auto narrow = static_cast<std::int32_t>(value);
  return narrow == value ? Variant{narrow} : Variant{value};
}

Variant nextDecimal(const Decimal& value) {
  const std::optional<Decimal> next = value.plus(Decimal::fromInteger(1));
  if (!next) {
    fail(messages::kOverflow);
  }
  return *next;
}

Variant nextOfText(const std::string& text) {
  const Decimal number = decimalOf(text);
  const std::optional<std::int64_t> whole = number.toInteger();
  if (!whole || *whole == std::numeric_limits<std::int64_t>::max()) {
    return nextDecimal(number);
  }
  return wholeNumber(*whole + 1);
}

bool isNumber(const Variant& value) {
  return value.kind() >= Variant::Kind::Int16 && value.kind() <= Variant::Kind::Decimal;
}

/// A number of another kind than a double as a decimal; every one of them fits.
Decimal exactNumber(const Variant& value) {
  const Decimal* const decimal = value.get<Decimal>();
  return decimal != nullptr ? *decimal : Decimal::fromInteger(value.toInt64());
}

bool sameAsDouble(double left, const Decimal& right) {
  std::string digits;
  appendDouble(digits, left, Form::Digits);
  const std::optional<Decimal> number = Decimal::parse(digits);
  return number && *number == right;
}

}  // namespace

std::string Variant::text() const {
  if (isNull()) {
    fail(messages::kInvalidNull);
  }
  if (const std::string* const own = get<std::string>()) {
    return *own;
  }
  std::string result;
  appendTo(result);
  return result;
}

void Variant::appendTo(std::string& target) const {
  std::visit(Visitor{[](std::monostate) {}, [](NullValue) {},
                     [&](bool value) { target += value ? "True" : "False"; },
                     [&](double value) { appendDouble(target, value, Form::Shortest); },
                     [&](const azcoll::Decimal& value) { value.appendTo(target); },
                     [&](const azcoll::Date& value) { value.appendTo(target); },
                     [&](const std::string& value) { target += value; },
                     [](const std::shared_ptr<azcoll::Object>&) { fail(messages::kTypeMismatch); },
                     [&](std::integral auto value) { detail::appendText(target, value); }},
             value_);
}

std::int64_t Variant::toInt64() const {
  return std::visit(
      Visitor{[](std::monostate) -> std::int64_t { return 0; },
              [](NullValue) -> std::int64_t { fail(messages::kInvalidNull); },
              [](bool value) -> std::int64_t { return value ? -1 : 0; },
              [](double value) { return nearestInteger(value); },
              [](const azcoll::Decimal& value) { return nearestInteger(value); },
              [](const azcoll::Date&) -> std::int64_t { fail(messages::kTypeMismatch); },
              [](const std::string& value) { return nearestInteger(decimalOf(value)); },
              [](const std::shared_ptr<azcoll::Object>&) -> std::int64_t {
                fail(messages::kTypeMismatch);
              },
              [](std::integral auto value) -> std::int64_t { return value; }},
      value_);
}

std::int16_t Variant::toInt16() const { return narrowed<std::int16_t>(toInt64()); }

std::int32_t Variant::toInt32() const { return narrowed<std::int32_t>(toInt64()); }

azcoll::Decimal Variant::toDecimal() const {
  if (const auto* const value = get<azcoll::Decimal>()) {
    return *value;
  }
  if (const auto* const value = get<double>()) {
    return decimalOf(*value);
  }
  if (const auto* const value = get<std::string>()) {
    return decimalOf(*value);
  }
  return azcoll::Decimal::fromInteger(toInt64());
}

bool Variant::toBool() const {
  if (const auto* const value = get<bool>()) {
    return *value;
  }
  if (const auto* const value = get<double>()) {
    return *value != 0;
  }
  if (const auto* const value = get<std::string>()) {
    if (ascii::equalsIgnoringCase(*value, "true")) {
      return true;
    }
    if (ascii::equalsIgnoringCase(*value, "false")) {
      return false;
    }
  }
  return !toDecimal().isZero();
}

azcoll::Date Variant::toDate() const {
  if (const auto* const value = get<azcoll::Date>()) {
    return *value;
  }
  if (isNull()) {
    fail(messages::kInvalidNull);
  }
  const std::string* const text = get<std::string>();
  const std::optional<azcoll::Date> date =
      text != nullptr ? azcoll::Date::parse(*text) : std::nullopt;
  if (!date) {
    fail(messages::kTypeMismatch);
  }
  return *date;
}

Variant Variant::plusOne() const {
  const auto next = [](auto value, auto wider) -> Variant {
    using Integer = decltype(value);
    if (value == std::numeric_limits<Integer>::max()) {
      return decltype(wider){value} + 1;
    }
    return static_cast<Integer>(value + 1);
  };
  switch (kind()) {
    case Kind::Int16:
      return next(*get<std::int16_t>(), std::int32_t{});
    case Kind::Int32:
      return next(*get<std::int32_t>(), std::int64_t{});
    case Kind::Int64:
      return *get<std::int64_t>() == std::numeric_limits<std::int64_t>::max()
                 ? nextDecimal(toDecimal())
                 : Variant{*get<std::int64_t>() + 1};
    case Kind::Double:
      return *get<double>() + 1;
    case Kind::Decimal:
      return nextDecimal(*get<azcoll::Decimal>());
    case Kind::Text:
      return nextOfText(*get<std::string>());
    default:
      return narrowed<std::int16_t>(toInt64() + 1);
  }
}

std::shared_ptr<azcoll::Object> Variant::object() const noexcept {
  const auto* const reference = get<std::shared_ptr<azcoll::Object>>();
  return reference != nullptr ? *reference : nullptr;
}

bool operator==(const Variant& left, const Variant& right) { return left.value_ == right.value_; }

bool sameValue(const Variant& left, const Variant& right) {
  if (left.kind() == right.kind()) {
    return left == right;
  }
  if (!isNumber(left) || !isNumber(right)) {
    return false;
  }
  if (const double* const value = left.get<double>()) {
    return sameAsDouble(*value, exactNumber(right));
  }
  if (const double* const value = right.get<double>()) {
    return sameAsDouble(*value, exactNumber(left));
  }
  return exactNumber(left) == exactNumber(right);
}

}  // namespace azcoll
