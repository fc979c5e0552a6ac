#pragma once

#include <string>

#include "data/variant.h"
#include "embedded/values/types.h"
#include "embedded/values/value.h"

namespace azcoll::embedded {

/// Why a value is converted; it decides what becomes of a text that is too long.
enum class Conversion : std::uint8_t {
  Compare,  ///< to meet another value: texts keep their length, decimals may gain digits only
  Assign,   ///< into a column: too long is an error (8152), CHAR is padded
  Cut       ///< CAST, variables, parameters: too long is cut, CHAR is padded
};

/// Converts a value, by SQL Server's rules and with its errors (`SqlError` 220, 232, 241, 242, 244,
/// 245, 248, 8114, 8115, 8152). NULL stays NULL.
[[nodiscard]] Value convert(Value value, const Type& from, const Type& to, Conversion conversion);

/// Whether there is a conversion at all. A number is days since 1900 to a DATETIME and a
/// SMALLDATETIME; otherwise numbers and dates do not turn into one another.
[[nodiscard]] bool isConvertible(const Type& from, const Type& to);

/// `value` with its sign turned; of numbers only.
[[nodiscard]] Value negated(Value value);

/// A value from outside, converted to `type`. Empty counts as NULL; throws `SqlError` for what does
/// not fit the type.
[[nodiscard]] Value valueFromVariant(const Variant& variant, const Type& type,
                                     Conversion conversion);

/// The value as callers see it.
[[nodiscard]] Variant variantFromValue(const Value& value, const Type& type);

/// Text form as in messages about keys and in CAST to a text.
[[nodiscard]] std::string valueText(const Value& value, const Type& type);

}  // namespace azcoll::embedded
