#include "fuzz/typed_values.h"

#include <array>
#include <compare>
#include <cstdlib>
#include <optional>

#include "data/variant.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/conversions.h"
#include "embedded/values/number_values.h"
#include "embedded/values/sql_error.h"
#include "fuzz/check.h"
#include "fuzz/constants.h"
#include "text/trimming.h"
#include "text/utf8.h"

namespace azcoll::fuzz {
namespace {

using embedded::Conversion;
using embedded::SqlError;
using embedded::Type;
using embedded::TypeKind;
using embedded::Value;

constexpr std::array<Type, 21> kTypes{{
    {TypeKind::Char, 5, 0, 0},          {TypeKind::VarChar, 5, 0, 0},
    {TypeKind::NChar, 3, 0, 0},         {TypeKind::NVarChar, embedded::kUnlimited, 0, 0},
    {TypeKind::Bit, 0, 0, 0},           {TypeKind::TinyInt, 0, 0, 0},
    {TypeKind::SmallInt, 0, 0, 0},      {TypeKind::Int, 0, 0, 0},
    {TypeKind::BigInt, 0, 0, 0},        {TypeKind::Decimal, 0, 5, 2},
    {TypeKind::Decimal, 0, 18, 6},      {TypeKind::Decimal, 0, 19, 4},
    {TypeKind::Decimal, 0, 38, 0},      {TypeKind::Decimal, 0, 38, 20},
    {TypeKind::Decimal, 0, 38, 38},     {TypeKind::Real, 0, 0, 0},
    {TypeKind::Float, 0, 0, 0},         {TypeKind::Date, 0, 0, 0},
    {TypeKind::SmallDateTime, 0, 0, 0}, {TypeKind::DateTime, 0, 0, 0},
    {TypeKind::DateTime2, 0, 0, 3},
}};

std::optional<Value> converted(const Value& value, const Type& from, const Type& to,
                               Conversion conversion) {
  try {
    return embedded::convert(value, from, to, conversion);
  } catch (const SqlError&) {
    return std::nullopt;
  }
}

bool same(const Value& left, const Value& right) {
  return left.tag == right.tag && left.integer == right.integer && left.real == right.real &&
         left.wide == right.wide && left.text == right.text;
}

/// A value of a type goes out to a caller and back unchanged.
void checkOutAndBack(const Value& value, const Type& type, const std::string& about) {
  const Variant outside = embedded::variantFromValue(value, type);
  const Value back = embedded::valueFromVariant(outside, type, Conversion::Assign);
  require(same(back, value), "a value that is read can be written back", about);
  const Value again = embedded::convert(value, type, type, Conversion::Assign);
  require(same(again, value), "a value of a type stays as it is in it", about);
  static_cast<void>(embedded::sqliteConstant(value));
}

/// Numbers but for floats read back from their own text.
void checkTextForm(const Value& value, const Type& type, const std::string& about) {
  if (!embedded::isConvertible(type, embedded::kNVarChar)) {
    return;
  }
  const std::optional<Value> text = converted(value, type, embedded::kNVarChar, Conversion::Cut);
  require(text.has_value(), "every value has a text", about);
  requireSame(text->text, embedded::valueText(value, type), "the text form is one");
  if (type.isInteger() || type.isDecimal()) {
    const std::optional<Value> back = converted(*text, embedded::kNVarChar, type, Conversion::Cut);
    require(back && same(*back, value), "a number reads back from its text", about);
  }
}

void checkWide(Int128 left, Int128 right, const std::string& about) {
  std::array<unsigned char, embedded::kWideBytes> a{};
  std::array<unsigned char, embedded::kWideBytes> b{};
  embedded::storeWide(left, a.data());
  embedded::storeWide(right, b.data());
  require(embedded::loadWide(a.data()) == left, "a wide decimal reads back", about);
  require((a <=> b) == (left <=> right), "wide decimals sort as their bytes do", about);
}

void checkDigits(const Decimal& number, const std::string& about) {
  for (int scale = 0; scale <= Decimal::kMaxDigits; ++scale) {
    const auto digits = embedded::rescaledDigits(number.unscaled(), number.scale(), scale);
    const auto expected = number.rescaled(scale);
    require(digits.has_value() == expected.has_value(), "both roundings are refused", about);
    require(!digits || *digits == expected->unscaled(), "both roundings agree", about);
    checkWide(number.unscaled(), digits.value_or(0), about);
  }
}

/// A text is a floating-point number when the C library reads all of it as one.
void checkFloat(const std::string& text) {
  const auto typed =
      converted(Value::ofText(text), embedded::kNVarChar, embedded::kFloat, Conversion::Cut);
  const std::string digits(trim(text));
  if (digits.empty() || digits.find_first_not_of("0123456789+-.eE") != std::string::npos) {
    require(typed.has_value() == digits.empty(), "no floating-point number", text);
    return;
  }
  char* end = nullptr;
  const double number = std::strtod(digits.c_str(), &end);
  const bool isNumber = *end == '\0' && end != digits.c_str();
  require(isNumber || !typed, "no floating-point number", text);
  require(!typed || typed->real == number, "the nearest double", text);
}

}  // namespace

void checkTypedText(const std::string& text) {
  const Value value = Value::ofText(text);
  if (const auto number = Decimal::parse(text)) {
    checkDigits(*number, text);
  }
  checkFloat(text);
  if (findMalformedUtf8(text) != std::string_view::npos) {
    return;  // no such text is let into the engine
  }
  for (const Type& type : kTypes) {
    for (const Conversion conversion : {Conversion::Assign, Conversion::Cut}) {
      const auto typed = converted(value, embedded::kNVarChar, type, conversion);
      if (typed) {
        checkOutAndBack(*typed, type, text);
        checkTextForm(*typed, type, text);
      }
    }
    // Not every pair of types for every text: the texts are many.
    for (std::size_t i = hashOf(text) % 7; i < kTypes.size(); i += 7) {
      const Type& other = kTypes[i];
      const auto typed = converted(value, embedded::kNVarChar, type, Conversion::Cut);
      if (!typed || !embedded::isConvertible(type, other)) {
        continue;
      }
      if (const auto next = converted(*typed, type, other, Conversion::Cut)) {
        checkOutAndBack(*next, other, text);
      }
    }
  }
}

}  // namespace azcoll::fuzz
