#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "data/decimal.h"

namespace azcoll::embedded {

/// A value of the engine. The `Type` that goes with it says what it stands for: an integer is
/// a number, a bit or the digits of a decimal of up to 18 digits (without its point); `Wide` the
/// digits of a longer decimal; a text is a text, or a date as `yyyy-mm-dd[ hh:mm:ss.fff]`.
struct Value {
  enum class Tag : std::uint8_t { Null, Integer, Real, Text, Wide };

  Tag tag = Tag::Null;
  std::int64_t integer = 0;
  double real = 0;
  Int128 wide = 0;
  std::string text;

  static Value ofInteger(std::int64_t number) {
    Value value;
    value.tag = Tag::Integer;
    value.integer = number;
    return value;
  }
  static Value ofReal(double number) {
    Value value;
    value.tag = Tag::Real;
    value.real = number;
    return value;
  }
  static Value ofText(std::string text) {
    Value value;
    value.tag = Tag::Text;
    value.text = std::move(text);
    return value;
  }
  /// The digits of a decimal, in the form that `precision` digits have.
  static Value ofDigits(Int128 digits, int precision) {
    Value value;
    value.tag = precision > 18 ? Tag::Wide : Tag::Integer;
    if (value.tag == Tag::Wide) {
      value.wide = digits;
    } else {
      value.integer = static_cast<std::int64_t>(digits);
    }
    return value;
  }

  [[nodiscard]] bool isNull() const { return tag == Tag::Null; }
  /// The digits of a whole number or a decimal.
  [[nodiscard]] Int128 digits() const { return tag == Tag::Wide ? wide : Int128{integer}; }
};

/// Bytes of a wide decimal in the database: they sort as the numbers do.
inline constexpr int kWideBytes = 16;

}  // namespace azcoll::embedded
