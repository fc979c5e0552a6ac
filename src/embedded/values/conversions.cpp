#include "embedded/values/conversions.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "data/decimal.h"
#include "data/powers_of_ten.h"
#include "embedded/values/collation.h"
#include "embedded/values/date_values.h"
#include "embedded/values/number_values.h"
#include "embedded/values/sql_error.h"
#include "text/trimming.h"
#include "text/utf8.h"

namespace azcoll::embedded {

namespace {

std::string named(const Type& type) { return std::string(typeName(type)); }

[[noreturn]] void failText(std::string_view text, const Type& from, const Type& to) {
  throw SqlError(245, "Conversion failed when converting the " + named(from) + " value '" +
                          std::string(text) + "' to data type " + named(to) + ".");
}

[[noreturn]] void failType(const Type& from, const Type& to) {
  throw SqlError(8114, "Error converting data type " + named(from) + " to " + named(to) + ".");
}

[[noreturn]] void failOverflow(const std::string& from, const Type& to) {
  throw SqlError(
      8115, "Arithmetic overflow error converting " + from + " to data type " + named(to) + ".");
}

// ---------------------------------------------------------------- to whole numbers

/// The number of a text that is too large for its type: the message depends on the type's width.
[[noreturn]] void failTextOverflow(std::string_view text, const Type& from, const Type& to) {
  const std::string start =
      "The conversion of the " + named(from) + " value '" + std::string(text) + "' overflowed an ";
  switch (to.kind) {
    case TypeKind::TinyInt:
      throw SqlError(244, start + "INT1 column. Use a larger integer column.");
    case TypeKind::SmallInt:
      throw SqlError(244, start + "INT2 column. Use a larger integer column.");
    case TypeKind::BigInt:
      failOverflow(named(from), to);
    default:
      throw SqlError(248, start + "int column.");
  }
}

std::int64_t integerFromText(std::string_view text, const Type& from, const Type& to) {
  const std::string_view trimmed = trim(text);
  // T-SQL reads '' as 0.
  if (trimmed.empty()) {
    return 0;
  }
  std::string_view digits = trimmed;
  if (digits.front() == '-' || digits.front() == '+') {
    digits.remove_prefix(1);
  }
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos) {
    // BIGINT has the message of the decimals.
    if (to.kind == TypeKind::BigInt) {
      failType(from, to);
    }
    failText(text, from, to);
  }
  // std::from_chars takes no plus sign.
  const std::size_t start = trimmed.front() == '+' ? 1 : 0;
  std::int64_t number = 0;
  const auto [stop, error] =
      std::from_chars(trimmed.data() + start, trimmed.data() + trimmed.size(), number);
  const IntegerRange range = rangeOf(to);
  if (error != std::errc() || number < range.low || number > range.high) {
    failTextOverflow(text, from, to);
  }
  return number;
}

Value bitFromText(std::string_view text, const Type& from, const Type& to) {
  // BIT takes the two words, and any number: what is not 0 is 1.
  const std::string word = upperText(trim(text));
  if (word == "TRUE" || word == "FALSE") {
    return Value::ofInteger(word == "TRUE" ? 1 : 0);
  }
  const std::string_view digits = trim(text);
  if (digits.find_first_not_of("0123456789+-") != std::string_view::npos) {
    failText(text, from, to);
  }
  return Value::ofInteger(digits.find_first_of("123456789") != std::string_view::npos ? 1 : 0);
}

Value toInteger(const Value& value, const Type& from, const Type& to) {
  if (from.isText()) {
    return to.kind == TypeKind::Bit ? bitFromText(value.text, from, to)
                                    : Value::ofInteger(integerFromText(value.text, from, to));
  }
  if (to.kind == TypeKind::Bit) {
    return Value::ofInteger(from.isFloat() ? (value.real != 0 ? 1 : 0)
                                           : (value.digits() != 0 ? 1 : 0));
  }
  if (from.isFloat()) {
    // A float is cut to a whole number, as a decimal is, and not rounded.
    const double whole = std::trunc(value.real);
    const IntegerRange range = rangeOf(to);
    // Doubles of the size of 64 bits lie 1024 apart: the limit itself is none of them.
    const double low = static_cast<double>(range.low);
    const double high = static_cast<double>(range.high);
    if (!(whole >= low && whole <= high && whole < 9.2233720368547758e18)) {
      throw SqlError(232, "Arithmetic overflow error for type " + named(to) +
                              ", value = " + fixedText(value.real) + ".");
    }
    return Value::ofInteger(static_cast<std::int64_t>(whole));
  }
  const Int128 whole = value.digits() / powerOfTen(from.scale);
  if (whole < std::numeric_limits<std::int64_t>::min() ||
      whole > std::numeric_limits<std::int64_t>::max()) {
    failOverflow(from.isDecimal() ? named(from) : "expression", to);
  }
  const auto number = static_cast<std::int64_t>(whole);
  const IntegerRange range = rangeOf(to);
  if (from.isDecimal() && (number < range.low || number > range.high)) {
    failOverflow(named(from), to);
  }
  return Value::ofInteger(checkedInteger(number, to));
}

// ---------------------------------------------------------------- to decimals and floats

Value fitDecimal(Int128 digits, int scale, const std::string& from, const Type& to,
                 Conversion conversion) {
  std::optional<Int128> scaled = rescaledDigits(digits, scale, to.scale);
  if (!scaled || *scaled >= powerOfTen(to.precision) || *scaled <= -powerOfTen(to.precision)) {
    if (conversion == Conversion::Compare) {
      // Beyond every value of the other side: the comparison only needs to know on which side.
      const Int128 beyond = powerOfTen(to.precision);
      return Value::ofDigits(digits < 0 ? -beyond : beyond, to.precision);
    }
    failOverflow(from, to);
  }
  // Compared with the digits left away, the value could equal one that it does not.
  if (conversion == Conversion::Compare && scale > to.scale &&
      rescaledDigits(*scaled, to.scale, scale) != digits) {
    throw SqlError(8115, "Arithmetic overflow error converting numeric to data type numeric.");
  }
  return Value::ofDigits(*scaled, to.precision);
}

Value toDecimal(const Value& value, const Type& from, const Type& to, Conversion conversion) {
  if (from.isText()) {
    const auto decimal = Decimal::parse(trim(value.text));
    // An empty text is an error here, unlike for whole numbers.
    if (!decimal) {
      failType(from, to);
    }
    return fitDecimal(decimal->unscaled(), decimal->scale(), named(from), to, Conversion::Cut);
  }
  if (from.isFloat()) {
    const auto digits = digitsOfDouble(value.real, to.scale);
    if (!digits) {
      failOverflow(named(from), to);
    }
    return fitDecimal(*digits, to.scale, named(from), to, conversion);
  }
  return fitDecimal(value.digits(), from.scale, named(from), to, conversion);
}

Value toFloat(const Value& value, const Type& from, const Type& to) {
  double number = value.real;
  if (from.isText()) {
    const std::string_view trimmed = trim(value.text);
    const std::size_t start = trimmed.starts_with('+') ? 1 : 0;
    number = 0;
    if (!trimmed.empty()) {
      const auto [stop, error] =
          std::from_chars(trimmed.data() + start, trimmed.data() + trimmed.size(), number);
      // Behind a plus sign std::from_chars would take a minus.
      if (error != std::errc() || trimmed.starts_with("+-") ||
          stop != trimmed.data() + trimmed.size() || !std::isfinite(number)) {
        failType(from, to);
      }
    }
  } else if (!from.isFloat()) {
    number = Decimal::fromUnscaled(value.digits(), from.scale).value_or(Decimal{}).toDouble();
  }
  if (to.kind == TypeKind::Real) {
    if (std::fabs(number) > static_cast<double>(std::numeric_limits<float>::max())) {
      failOverflow("expression", to);
    }
    // SQLite stores doubles: a REAL is rounded to its own precision before.
    number = static_cast<double>(static_cast<float>(number));
  }
  return Value::ofReal(number);
}

// ---------------------------------------------------------------- to dates and texts

/// The moment `digits` (`scale` of them fractional) days after 1 January 1900, to the nearest 1/300
/// second; nothing outside the calendar.
std::optional<Date> momentOfDays(Int128 digits, int scale) {
  constexpr Int128 kTicks = 25'920'000;  // of a day
  constexpr int kTickZeros = 4;          // that a number of ticks ends in
  const Int128 one = powerOfTen(scale);
  Int128 day = digits / one;
  Int128 rest = digits % one;
  if (rest < 0) {  // the time of the day counts forward on both sides of 1900
    rest += one;
    --day;
  }
  // rest * kTicks / one, in two steps, because the product of 38 digits would not fit.
  const Int128 part = powerOfTen(std::max(scale - kTickZeros, 0));
  const Int128 perPart = kTicks / powerOfTen(std::min(scale, kTickZeros));
  Int128 ticks = rest / part * perPart + (rest % part * perPart + part / 2) / part;
  if (ticks == kTicks) {
    ticks = 0;
    ++day;
  }
  constexpr Int128 kBeyondCalendar = 10'000'000;
  if (day > kBeyondCalendar || day < -kBeyondCalendar) {
    return std::nullopt;
  }
  const std::optional<Date> date = Date::ofDayNumber(static_cast<std::int64_t>(day));
  return date ? std::optional(withTime(*date, (static_cast<std::int64_t>(ticks) * 10 + 1) / 3))
              : std::nullopt;
}

/// Days since 1 January 1900 as a moment of `to`, which reaches from 1753 or from 1900.
Date dateFromNumber(const Value& value, const Type& from, const Type& to) {
  constexpr int kDoubleScale = 20;  // more places than a double of the calendar's size has
  std::optional<Date> date;
  if (from.isFloat()) {
    if (const auto digits = digitsOfDouble(value.real, kDoubleScale)) {
      date = momentOfDays(*digits, kDoubleScale);
    }
  } else {
    date = momentOfDays(value.digits(), from.scale);
  }
  date = date ? fitDate(*date, to) : std::nullopt;
  if (!date) {
    failOverflow("expression", to);
  }
  return *date;
}

Value toDate(const Value& value, const Type& from, const Type& to) {
  std::optional<Date> date;
  if (from.isText()) {
    const ParsedDate parsed = parseDateText(value.text);
    if (parsed.outcome == DateOutcome::TooFine &&
        (to.kind == TypeKind::DateTime2 || to.kind == TypeKind::Date)) {
      throw SqlError(0, "Outside the supported T-SQL: parts of a second beyond milliseconds.");
    }
    // DATETIME and SMALLDATETIME distinguish a text that is not a date (241) from a date that they
    // do not have (242); the newer types report 241 for both.
    if (parsed.outcome == DateOutcome::Malformed || parsed.outcome == DateOutcome::TooFine ||
        (parsed.outcome == DateOutcome::OutOfRange && to.kind != TypeKind::DateTime &&
         to.kind != TypeKind::SmallDateTime)) {
      throw SqlError(241,
                     "Conversion failed when converting date and/or time from character string.");
    }
    if (parsed.outcome == DateOutcome::Good) {
      date = fitDate(parsed.date, to);
    }
  } else if (from.isNumber()) {
    date = dateFromNumber(value, from, to);
  } else {
    date = fitDate(dateFromStored(value.text), to);
  }
  if (!date) {
    throw SqlError(242, "The conversion of a " + named(from) + " data type to a " + named(to) +
                            " data type resulted in an out-of-range value.");
  }
  return Value::ofText(storedDate(*date, to));
}

/// Cuts to `length` characters; false when more than blanks would be lost.
bool cutText(std::string& text, std::int32_t length) {
  std::size_t units = 0;
  std::size_t at = 0;
  while (at < text.size()) {
    const DecodedCharacter character = characterAt(text, at);
    units += character.codePoint > 0xFFFF ? 2 : 1;
    if (units > static_cast<std::size_t>(length)) {
      break;
    }
    at += character.length;
  }
  const bool blanksOnly = text.find_first_not_of(' ', at) == std::string::npos;
  text.resize(at);
  return blanksOnly;
}

void fitText(std::string& text, const Type& from, const Type& to, Conversion conversion) {
  const auto length = static_cast<std::size_t>(to.length);
  if (text.size() > length && utf16Length(text) > length) {
    if (!from.isText() && !from.isDate()) {
      // A number that is cut would be another number.
      if (to.isUnicode() || from.isDecimal() || from.isFloat()) {
        failOverflow(from.isDecimal() ? named(from) : "expression", to);
      }
      // So SQL Server writes a whole number that a VARCHAR does not hold.
      text = "*";
    } else if (!cutText(text, to.length) && conversion == Conversion::Assign) {
      throw SqlError(8152, "String or binary data would be truncated.");
    }
  }
  // CHAR values are stored as long as their type: they show their blanks.
  if (to.isPadded()) {
    const std::size_t units = utf16Length(text);
    if (units < length) {
      text.append(length - units, ' ');
    }
  }
}

Value toText(Value value, const Type& from, const Type& to, Conversion conversion) {
  if (!from.isText()) {
    value = Value::ofText(valueText(value, from));
  }
  // A text that is compared is not cut: it could equal a value then that it does not equal.
  if (conversion != Conversion::Compare && to.length != kUnlimited) {
    fitText(value.text, from, to, conversion);
  }
  return value;
}

}  // namespace

Value convert(Value value, const Type& from, const Type& to, Conversion conversion) {
  if (value.isNull() || from.kind == TypeKind::Null || to.kind == TypeKind::Null) {
    return value;
  }
  if (!isConvertible(from, to)) {
    throw SqlError(206,
                   "Operand type clash: " + named(from) + " is incompatible with " + named(to));
  }
  if (to.isText()) {
    return toText(std::move(value), from, to, conversion);
  }
  if (to.isInteger()) {
    return toInteger(value, from, to);
  }
  if (to.isDecimal()) {
    return toDecimal(value, from, to, conversion);
  }
  if (to.isFloat()) {
    return toFloat(value, from, to);
  }
  return toDate(value, from, to);
}

bool isConvertible(const Type& from, const Type& to) {
  if (from.kind == TypeKind::Null || to.kind == TypeKind::Null || from.isText()) {
    return true;
  }
  if (to.isText()) {
    return !from.isFloat();  // FLOAT as text keeps six digits: refused rather than lost
  }
  if (from.isDate() || to.isDate()) {
    // A number is days since 1900 for the two older types only.
    const bool days =
        from.isNumber() && (to.kind == TypeKind::DateTime || to.kind == TypeKind::SmallDateTime);
    return (from.isDate() && to.isDate()) || days;
  }
  return true;
}

Value negated(Value value) {
  value.integer = -value.integer;
  value.wide = -value.wide;
  value.real = -value.real;
  return value;
}

Value valueFromVariant(const Variant& variant, const Type& type, Conversion conversion) {
  switch (variant.kind()) {
    case Variant::Kind::Empty:
    case Variant::Kind::Null:
      return {};
    case Variant::Kind::Boolean:
      // The caller's True is -1 wherever it is not a bit.
      return convert(Value::ofInteger(type.kind == TypeKind::Bit ? (variant.toBool() ? 1 : 0)
                                                                 : variant.toInt64()),
                     kInt, type, conversion);
    case Variant::Kind::Int16:
    case Variant::Kind::Int32:
    case Variant::Kind::Int64:
      return convert(Value::ofInteger(variant.toInt64()), kBigInt, type, conversion);
    case Variant::Kind::Double:
      return convert(Value::ofReal(*variant.get<double>()), kFloat, type, conversion);
    case Variant::Kind::Decimal: {
      const Decimal& decimal = *variant.get<Decimal>();
      const Type from = decimalType(Decimal::kMaxDigits, decimal.scale());
      return convert(Value::ofDigits(decimal.unscaled(), from.precision), from, type, conversion);
    }
    case Variant::Kind::Date: {
      constexpr Type kExact{TypeKind::DateTime2, 0, 0, 3};
      return convert(Value::ofText(storedDate(*variant.get<Date>(), kExact)), kExact, type,
                     conversion);
    }
    case Variant::Kind::Text:
      if (findMalformedUtf8(*variant.get<std::string>()) != std::string_view::npos) {
        throw SqlError(0, "Il testo di un parametro non è in UTF-8.");
      }
      return convert(Value::ofText(*variant.get<std::string>()), kNVarChar, type, conversion);
    case Variant::Kind::Object:
      break;
  }
  throw SqlError(0, "Un oggetto non può essere il valore di un parametro.");
}

Variant variantFromValue(const Value& value, const Type& type) {
  if (value.isNull()) {
    return kNull;
  }
  switch (type.kind) {
    case TypeKind::Bit:
      return value.integer != 0;
    case TypeKind::TinyInt:
    case TypeKind::SmallInt:
      return static_cast<std::int16_t>(value.integer);
    case TypeKind::Int:
    case TypeKind::Null:
      return static_cast<std::int32_t>(value.integer);
    case TypeKind::BigInt:
      return value.integer;
    case TypeKind::Decimal:
      return Decimal::fromUnscaled(value.digits(), type.scale).value_or(Decimal{});
    case TypeKind::Real:
    case TypeKind::Float:
      return value.real;
    default:
      return type.isDate() ? Variant{dateFromStored(value.text)} : Variant{value.text};
  }
}

std::string valueText(const Value& value, const Type& type) {
  if (type.isInteger() || type.kind == TypeKind::Null) {
    return std::to_string(value.integer);
  }
  if (type.isDecimal()) {
    return Decimal::fromUnscaled(value.digits(), type.scale).value_or(Decimal{}).text();
  }
  if (type.isFloat()) {
    return Variant{value.real}.text();
  }
  if (type.isDate()) {
    return styledDate(dateFromStored(value.text), type,
                      type.kind == TypeKind::Date || type.kind == TypeKind::DateTime2 ? 121 : 0);
  }
  return value.text;
}

}  // namespace azcoll::embedded
