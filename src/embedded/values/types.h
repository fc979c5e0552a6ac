#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tsql/ast.h"

namespace azcoll::embedded {

/// The data types of T-SQL that the engine knows, in rising order of SQL Server's precedence: of
/// two types that meet in an operation, the later one is the common type.
enum class TypeKind : std::uint8_t {
  Null,  ///< of the bare word NULL: takes the type of whatever it meets
  Char,
  VarChar,
  NChar,
  NVarChar,
  Bit,
  TinyInt,
  SmallInt,
  Int,
  BigInt,
  Decimal,
  Real,
  Float,
  Date,
  SmallDateTime,
  DateTime,
  DateTime2
};

/// Length of VARCHAR(MAX), and of texts whose length does not matter.
inline constexpr std::int32_t kUnlimited = -1;

/// A data type. `length` counts characters of a text type; `precision` and `scale` are of a
/// DECIMAL; `scale` alone of a DATETIME2.
struct Type {
  TypeKind kind = TypeKind::Null;
  std::int32_t length = 0;
  std::uint8_t precision = 0;
  std::uint8_t scale = 0;

  friend constexpr bool operator==(const Type&, const Type&) = default;

  [[nodiscard]] constexpr bool isText() const {
    return kind >= TypeKind::Char && kind <= TypeKind::NVarChar;
  }
  [[nodiscard]] constexpr bool isUnicode() const {
    return kind == TypeKind::NChar || kind == TypeKind::NVarChar;
  }
  [[nodiscard]] constexpr bool isPadded() const {
    return kind == TypeKind::Char || kind == TypeKind::NChar;
  }
  [[nodiscard]] constexpr bool isInteger() const {
    return kind >= TypeKind::Bit && kind <= TypeKind::BigInt;
  }
  [[nodiscard]] constexpr bool isDecimal() const { return kind == TypeKind::Decimal; }
  [[nodiscard]] constexpr bool isFloat() const {
    return kind == TypeKind::Real || kind == TypeKind::Float;
  }
  [[nodiscard]] constexpr bool isNumber() const { return isInteger() || isDecimal() || isFloat(); }
  [[nodiscard]] constexpr bool isDate() const { return kind >= TypeKind::Date; }

  /// How values are stored and bound in SQLite.
  [[nodiscard]] constexpr bool isWide() const { return isDecimal() && precision > 18; }
};

inline constexpr Type kNullType{TypeKind::Null, 0, 0, 0};
inline constexpr Type kBit{TypeKind::Bit, 0, 0, 0};
inline constexpr Type kSmallInt{TypeKind::SmallInt, 0, 0, 0};
inline constexpr Type kInt{TypeKind::Int, 0, 0, 0};
inline constexpr Type kBigInt{TypeKind::BigInt, 0, 0, 0};
inline constexpr Type kFloat{TypeKind::Float, 0, 0, 0};
inline constexpr Type kDateTime{TypeKind::DateTime, 0, 0, 0};
inline constexpr Type kVarChar{TypeKind::VarChar, kUnlimited, 0, 0};
inline constexpr Type kNVarChar{TypeKind::NVarChar, kUnlimited, 0, 0};

constexpr Type decimalType(int precision, int scale) {
  return {TypeKind::Decimal, 0, static_cast<std::uint8_t>(precision),
          static_cast<std::uint8_t>(scale)};
}

/// Whether values of both types have the same form in SQLite, so that they compare as they are.
[[nodiscard]] bool sameForm(const Type& left, const Type& right);

/// The type that a type name stands for; nothing for a type outside the engine. Throws `SqlError`
/// for a length, precision or scale that the type cannot have. `defaultLength` is what a text type
/// without a length means at this place (1 in a declaration, 30 in CAST).
[[nodiscard]] std::optional<Type> typeFromName(const tsql::TypeName& name,
                                               std::int32_t defaultLength);

/// Whether it is a type of T-SQL at all, inside the engine or not. `name` is upper case.
[[nodiscard]] bool isSystemType(std::string_view name);

/// The name that SQL Server's messages use: "int", "numeric", "varchar" …
[[nodiscard]] std::string_view typeName(const Type& type);

/// The digits that a whole number of this integer type can have.
[[nodiscard]] int integerDigits(const Type& type);

/// The type to which both operands of a comparison, a CASE or a UNION are converted; nothing when
/// none holds both exactly (decimals whose digits together exceed 38).
[[nodiscard]] std::optional<Type> commonType(const Type& left, const Type& right);

/// A type as one number, for the arguments of the conversion function.
[[nodiscard]] std::int64_t encodeType(const Type& type);
[[nodiscard]] Type decodeType(std::int64_t code);

}  // namespace azcoll::embedded
