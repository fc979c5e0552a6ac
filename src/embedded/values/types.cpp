#include "embedded/values/types.h"

#include <algorithm>
#include <array>
#include <utility>

#include "embedded/values/sql_error.h"

namespace azcoll::embedded {

namespace {

constexpr int kMaxPrecision = 38;
// Dates of the data layer carry milliseconds: more digits could not be handed to a caller.
constexpr int kMaxDateTime2Scale = 3;

[[noreturn]] void refuseLength(const tsql::TypeName& name, int length) {
  throw SqlError(1001, "Line " + std::to_string(name.position.line) +
                           ": Length or precision specification " + std::to_string(length) +
                           " is invalid.");
}

Type textType(TypeKind kind, const tsql::TypeName& name, std::int32_t defaultLength) {
  const bool unicode = kind == TypeKind::NChar || kind == TypeKind::NVarChar;
  const bool padded = kind == TypeKind::Char || kind == TypeKind::NChar;
  const std::int32_t longest = unicode ? 4000 : 8000;
  const std::int32_t length = name.length.value_or(defaultLength);
  // CHAR(MAX) does not exist.
  if (length == kUnlimited && !padded) {
    return {kind, kUnlimited, 0, 0};
  }
  if (length == 0 || length == kUnlimited) {
    refuseLength(name, length);
  }
  if (length > longest) {
    throw SqlError(131, "The size (" + std::to_string(length) + ") given to the type '" +
                            std::string(typeName({kind, 0, 0, 0})) +
                            "' exceeds the maximum allowed for any data type (" +
                            std::to_string(longest) + ").");
  }
  return {kind, length, 0, 0};
}

Type decimalFromName(const tsql::TypeName& name) {
  const int precision = name.length.value_or(18);
  const int scale = name.scale.value_or(0);
  if (precision < 1) {
    refuseLength(name, precision);
  }
  if (precision > kMaxPrecision) {
    throw SqlError(2750, "Column or parameter: Specified column precision " +
                             std::to_string(precision) +
                             " is greater than the maximum precision of 38.");
  }
  if (scale < 0 || scale > precision) {
    throw SqlError(183, "The scale must be less than or equal to the precision.");
  }
  return decimalType(precision, scale);
}

Type commonDecimal(const Type& left, const Type& right, bool& fits) {
  const auto asDecimal = [](const Type& type) {
    return type.isDecimal() ? type : decimalType(integerDigits(type), 0);
  };
  const Type a = asDecimal(left);
  const Type b = asDecimal(right);
  const int scale = std::max(a.scale, b.scale);
  const int whole = std::max(a.precision - a.scale, b.precision - b.scale);
  // SQL Server would take fractional digits away; the caller refuses instead.
  fits = scale + whole <= kMaxPrecision;
  return decimalType(std::min(scale + whole, kMaxPrecision), scale);
}

Type commonText(const Type& left, const Type& right) {
  // Kinds are declared in the order of SQL Server's precedence.
  Type common = left.kind > right.kind ? left : right;
  if (left.kind != right.kind && common.kind == TypeKind::NChar) {
    common.kind = TypeKind::NVarChar;  // NCHAR with VARCHAR
  }
  common.length = left.length == kUnlimited || right.length == kUnlimited
                      ? kUnlimited
                      : std::max(left.length, right.length);
  // No type is both padded and without a limit.
  if (common.isPadded() && common.length == kUnlimited) {
    common.kind = common.isUnicode() ? TypeKind::NVarChar : TypeKind::VarChar;
  }
  return common;
}

}  // namespace

bool sameForm(const Type& left, const Type& right) {
  if (left.kind == TypeKind::Null || right.kind == TypeKind::Null) {
    return true;
  }
  if (left.isText() || right.isText()) {
    return left.isText() && right.isText();
  }
  if (left.isFloat() || right.isFloat()) {
    return left.isFloat() && right.isFloat();
  }
  if (left.isDate() || right.isDate()) {
    // A DATE is stored without a time of day, the other types with one.
    return left.isDate() && right.isDate() &&
           (left.kind == TypeKind::Date) == (right.kind == TypeKind::Date);
  }
  return left.isWide() == right.isWide() && left.scale == right.scale;
}

std::optional<Type> typeFromName(const tsql::TypeName& name, std::int32_t defaultLength) {
  constexpr std::array<std::pair<std::string_view, TypeKind>, 12> kSimple{{
      {"INT", TypeKind::Int},
      {"INTEGER", TypeKind::Int},
      {"SMALLINT", TypeKind::SmallInt},
      {"BIGINT", TypeKind::BigInt},
      {"TINYINT", TypeKind::TinyInt},
      {"BIT", TypeKind::Bit},
      {"REAL", TypeKind::Real},
      {"DATE", TypeKind::Date},
      {"DATETIME", TypeKind::DateTime},
      {"SMALLDATETIME", TypeKind::SmallDateTime},
      {"MONEY", TypeKind::Decimal},
      {"SMALLMONEY", TypeKind::Decimal},
  }};
  for (const auto& [known, kind] : kSimple) {
    if (name.name == known) {
      if (name.length) {
        throw SqlError(2716, "Column or parameter: Cannot specify a column width on data type " +
                                 std::string(typeName({kind, 0, 0, 0})) + ".");
      }
      return kind == TypeKind::Decimal ? decimalType(known == "MONEY" ? 19 : 10, 4)
                                       : Type{kind, 0, 0, 0};
    }
  }
  constexpr std::array<std::pair<std::string_view, TypeKind>, 4> kTexts{{
      {"CHAR", TypeKind::Char},
      {"VARCHAR", TypeKind::VarChar},
      {"NCHAR", TypeKind::NChar},
      {"NVARCHAR", TypeKind::NVarChar},
  }};
  for (const auto& [known, kind] : kTexts) {
    if (name.name == known) {
      return textType(kind, name, defaultLength);
    }
  }
  if (name.name == "DECIMAL" || name.name == "NUMERIC" || name.name == "DEC") {
    return decimalFromName(name);
  }
  if (name.name == "FLOAT") {
    const int bits = name.length.value_or(53);
    if (bits < 1 || bits > 53) {
      refuseLength(name, bits);
    }
    // FLOAT(n) counts bits: up to 24 it is a REAL.
    return bits <= 24 ? Type{TypeKind::Real, 0, 0, 0} : kFloat;
  }
  if (name.name == "DATETIME2" && name.length.value_or(7) <= kMaxDateTime2Scale) {
    return Type{TypeKind::DateTime2, 0, 0, static_cast<std::uint8_t>(*name.length)};
  }
  return std::nullopt;
}

bool isSystemType(std::string_view name) {
  constexpr std::array<std::string_view, 35> kTypes{
      "BIGINT",   "BINARY",        "BIT",        "CHAR",        "CURSOR",
      "DATE",     "DATETIME",      "DATETIME2",  "DEC",         "DATETIMEOFFSET",
      "DECIMAL",  "FLOAT",         "GEOGRAPHY",  "GEOMETRY",    "HIERARCHYID",
      "IMAGE",    "INT",           "INTEGER",    "MONEY",       "NCHAR",
      "NTEXT",    "NUMERIC",       "NVARCHAR",   "REAL",        "ROWVERSION",
      "SMALLINT", "SMALLDATETIME", "SMALLMONEY", "SQL_VARIANT", "SYSNAME",
      "TEXT",     "TIME",          "TIMESTAMP",  "TINYINT",     "UNIQUEIDENTIFIER"};
  return std::find(kTypes.begin(), kTypes.end(), name) != kTypes.end() || name == "VARBINARY" ||
         name == "VARCHAR" || name == "XML";
}

std::string_view typeName(const Type& type) {
  constexpr std::array<std::string_view, 17> kNames{
      "null",    "char",     "varchar",       "nchar",    "nvarchar", "bit",
      "tinyint", "smallint", "int",           "bigint",   "numeric",  "real",
      "float",   "date",     "smalldatetime", "datetime", "datetime2"};
  return kNames[static_cast<std::size_t>(type.kind)];
}

int integerDigits(const Type& type) {
  switch (type.kind) {
    case TypeKind::Bit:
      return 1;
    case TypeKind::TinyInt:
      return 3;
    case TypeKind::SmallInt:
      return 5;
    case TypeKind::BigInt:
      return 19;
    default:
      return 10;
  }
}

std::optional<Type> commonType(const Type& left, const Type& right) {
  if (left.kind == TypeKind::Null || left == right) {
    return right;
  }
  if (right.kind == TypeKind::Null) {
    return left;
  }
  if (left.isText() && right.isText()) {
    return commonText(left, right);
  }
  const Type& higher = left.kind > right.kind ? left : right;
  const Type& lower = left.kind > right.kind ? right : left;
  if (higher.isDecimal() && (lower.isDecimal() || lower.isInteger())) {
    bool fits = true;
    const Type common = commonDecimal(left, right, fits);
    return fits ? std::optional(common) : std::nullopt;
  }
  if (higher.kind == TypeKind::DateTime2 && lower.kind == TypeKind::DateTime2) {
    return left.scale > right.scale ? left : right;
  }
  if (higher.kind == TypeKind::DateTime2 && lower.isDate()) {
    // The finest that there is, so that both keep their milliseconds.
    return Type{TypeKind::DateTime2, 0, 0, 3};
  }
  return higher;
}

std::int64_t encodeType(const Type& type) {
  return (static_cast<std::int64_t>(type.length) << 24) |
         (static_cast<std::int64_t>(type.kind) << 16) |
         (static_cast<std::int64_t>(type.precision) << 8) | static_cast<std::int64_t>(type.scale);
}

Type decodeType(std::int64_t code) {
  constexpr std::int64_t kByte = 0xFF;
  return {static_cast<TypeKind>((code >> 16) & kByte), static_cast<std::int32_t>(code >> 24),
          static_cast<std::uint8_t>((code >> 8) & kByte), static_cast<std::uint8_t>(code & kByte)};
}

}  // namespace azcoll::embedded
