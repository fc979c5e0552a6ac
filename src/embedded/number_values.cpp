#include "embedded/number_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

#include "embedded/conversions.h"
#include "embedded/sql_error.h"
#include "embedded/sqlite_handle.h"

namespace azcoll::embedded {

namespace {

constexpr UInt128 kSignBit = UInt128{1} << 127U;

constexpr std::array<Int128, 39> makePowers() {
  std::array<Int128, 39> powers{};
  powers[0] = 1;
  for (std::size_t i = 1; i < powers.size(); ++i) {
    powers[i] = powers[i - 1] * 10;
  }
  return powers;
}

constexpr std::array<Int128, 39> kPowers = makePowers();

std::size_t significantDigits(std::string_view digits) {
  const std::size_t first = digits.find_first_not_of('0');
  return first == std::string_view::npos ? 1 : digits.size() - first;
}

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

Int128 powerOfTen(int exponent) { return kPowers[static_cast<std::size_t>(exponent)]; }

std::optional<Int128> rescaledDigits(Int128 digits, int from, int to) {
  if (from == to) {
    return digits;
  }
  if (from > to) {
    const Int128 divisor = powerOfTen(from - to);
    const Int128 half = divisor / 2;
    return (digits + (digits < 0 ? -half : half)) / divisor;
  }
  const Int128 factor = powerOfTen(to - from);
  const Int128 limit = (kPowers.back() - 1) / factor;
  if (digits > limit || digits < -limit) {
    return std::nullopt;
  }
  return digits * factor;
}

std::optional<Int128> digitsOfDouble(double number, int scale) {
  if (!std::isfinite(number) || std::fabs(number) >= 1e38) {
    return std::nullopt;
  }
  // 17 significant digits tell a double apart from every other; what the decimal keeps of them is
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

Type literalType(tsql::LiteralKind kind, std::string_view text) {
  switch (kind) {
    case tsql::LiteralKind::Integer: {
      const std::size_t digits = significantDigits(text);
      if (digits < 10 || (digits == 10 && text.substr(text.size() - 10) <= "2147483647")) {
        return kInt;
      }
      if (digits <= Decimal::kMaxDigits) {
        return decimalType(static_cast<int>(digits), 0);
      }
      break;
    }
    case tsql::LiteralKind::Decimal: {
      const std::size_t point = text.find('.');
      const std::size_t scale = text.size() - point - 1;
      const std::string_view whole = text.substr(0, point);
      const std::size_t first = whole.find_first_not_of('0');
      const std::size_t wholeDigits = first == std::string_view::npos ? 0 : whole.size() - first;
      const std::size_t precision = std::max<std::size_t>(wholeDigits + scale, 1);
      if (precision <= Decimal::kMaxDigits) {
        return decimalType(static_cast<int>(precision), static_cast<int>(scale));
      }
      break;
    }
    case tsql::LiteralKind::Float:
      return kFloat;
    case tsql::LiteralKind::Text:
      return kVarChar;
    case tsql::LiteralKind::NationalText:
      return kNVarChar;
    case tsql::LiteralKind::Null:
      return kNullType;
    case tsql::LiteralKind::Binary:
      throw SqlError(0, "Outside the supported T-SQL: binary constants.");
  }
  throw SqlError(1007, "The number '" + std::string(text) +
                           "' is out of the range for numeric representation (maximum precision "
                           "38).");
}

Value literalValue(tsql::LiteralKind kind, std::string_view text, const Type& type) {
  switch (kind) {
    case tsql::LiteralKind::Integer:
    case tsql::LiteralKind::Decimal: {
      const Decimal decimal = Decimal::parse(text).value_or(Decimal{});
      return type.isInteger() ? Value::ofInteger(static_cast<std::int64_t>(decimal.unscaled()))
                              : Value::ofDigits(decimal.unscaled(), type.precision);
    }
    case tsql::LiteralKind::Float: {
      // `1E` and `1E+` are floats too: the exponent is then 0.
      std::string number(text);
      if (number.find_first_of("0123456789", number.find_first_of("eE")) == std::string::npos) {
        number.resize(number.find_first_of("eE"));
      }
      double parsed = 0;
      const auto read = std::from_chars(number.data(), number.data() + number.size(), parsed);
      // Too small a number is 0; too large a one has no value.
      if (read.ec != std::errc() && number.find('-') == std::string::npos) {
        throw SqlError(168, "The floating point value '" + std::string(text) +
                                "' is out of the range of computer representation (8 bytes).");
      }
      return Value::ofReal(parsed);
    }
    case tsql::LiteralKind::Null:
      return {};
    default:
      return Value::ofText(std::string(text));
  }
}

namespace {

template <typename Bytes>
std::string blobConstant(const Bytes& bytes) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string text = "x'";
  for (const auto byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    text += kHex[code >> 4U];
    text += kHex[code & 0xFU];
  }
  return text + "'";
}

}  // namespace

std::string sqliteConstant(const Value& value) {
  switch (value.tag) {
    case Value::Tag::Null:
      return "NULL";
    case Value::Tag::Integer:
      // The least 64-bit number has no constant of its own.
      return value.integer == std::numeric_limits<std::int64_t>::min()
                 ? "(-9223372036854775807 - 1)"
                 : std::to_string(value.integer);
    case Value::Tag::Real: {
      std::array<char, 40> buffer{};
      const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value.real,
                                         std::chars_format::scientific, 17);
      return {buffer.data(), written.ptr};
    }
    case Value::Tag::Wide: {
      std::array<unsigned char, kWideBytes> bytes{};
      storeWide(value.wide, bytes.data());
      return blobConstant(bytes);
    }
    case Value::Tag::Text:
      break;
  }
  // SQLite reads a statement up to its first zero byte.
  return value.text.find('\0') == std::string::npos
             ? quoteText(value.text)
             : "CAST(" + blobConstant(value.text) + " AS TEXT)";
}

}  // namespace azcoll::embedded
