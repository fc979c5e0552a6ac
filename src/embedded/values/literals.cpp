#include "embedded/values/literals.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <utility>

#include "data/decimal.h"
#include "embedded/values/conversions.h"
#include "embedded/values/sql_error.h"

namespace azcoll::embedded {

namespace {

std::size_t significantDigits(std::string_view digits) {
  const std::size_t first = digits.find_first_not_of('0');
  return first == std::string_view::npos ? 1 : digits.size() - first;
}

}  // namespace

Type literalType(tsql::LiteralKind kind, std::string_view text) {
  switch (kind) {
    case tsql::LiteralKind::Integer: {
      const std::size_t digits = significantDigits(text);
      // Up to the largest INT; beyond it a constant is a decimal of its own digits, never a BIGINT.
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
      // Zeros in front do not count: 0.5 is a DECIMAL(1, 1).
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

std::optional<Value> constantValue(const tsql::Expression& expression, const Type& type) {
  const tsql::Expression* inner = &expression;
  bool negative = false;
  while (const auto* const unary = std::get_if<tsql::Unary>(&inner->node)) {
    negative = negative != (unary->op == tsql::UnaryOperator::Minus);
    inner = unary->operand.get();
  }
  const auto* const literal = std::get_if<tsql::Literal>(&inner->node);
  if (literal == nullptr) {
    return std::nullopt;
  }
  const Type own = literalType(literal->kind, literal->text);
  Value value = literalValue(literal->kind, literal->text, own);
  if (negative) {
    value = negated(std::move(value));
  }
  return convert(std::move(value), own, type, Conversion::Cut);
}

}  // namespace azcoll::embedded
