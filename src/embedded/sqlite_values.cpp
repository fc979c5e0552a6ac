// Values on their way into and out of SQLite statements.

#include <array>
#include <charconv>

#include "embedded/batch_runner.h"
#include "embedded/collation.h"
#include "embedded/conversions.h"
#include "embedded/date_values.h"
#include "embedded/functions.h"
#include "embedded/number_values.h"
#include "embedded/sql_error.h"

namespace azcoll::embedded {

namespace {

std::string_view columnText(sqlite3_stmt* statement, int column) {
  const unsigned char* const text = sqlite3_column_text(statement, column);
  return text == nullptr
             ? std::string_view{}
             : std::string_view{reinterpret_cast<const char*>(text),
                                static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

Variant readDecimal(sqlite3_stmt* statement, int column, const Type& type) {
  Int128 digits = 0;
  if (type.isWide()) {
    const void* const bytes = sqlite3_column_blob(statement, column);
    if (bytes == nullptr || sqlite3_column_bytes(statement, column) != kWideBytes) {
      throw SqlError(824, "Il database contiene un numero decimale danneggiato.");
    }
    digits = loadWide(static_cast<const unsigned char*>(bytes));
  } else {
    digits = sqlite3_column_int64(statement, column);
  }
  return Decimal::fromUnscaled(digits, type.scale).value_or(Decimal{});
}

/// Whether the text fits a column of the type as it stands.
bool fitsAsItIs(std::string_view text, const Slot& slot) {
  const Type& type = slot.target;
  if (slot.conversion == Conversion::Compare || type.length == kUnlimited) {
    return true;
  }
  const auto length = static_cast<std::size_t>(type.length);
  return !type.isPadded() && (text.size() <= length || utf16Length(text) <= length);
}

}  // namespace

Variant readColumn(sqlite3_stmt* statement, int column, const Type& type) {
  if (sqlite3_column_type(statement, column) == SQLITE_NULL) {
    return kNull;
  }
  switch (type.kind) {
    case TypeKind::Bit:
      return sqlite3_column_int64(statement, column) != 0;
    case TypeKind::TinyInt:
    case TypeKind::SmallInt:
      return static_cast<std::int16_t>(sqlite3_column_int64(statement, column));
    case TypeKind::Int:
    case TypeKind::Null:
      return static_cast<std::int32_t>(sqlite3_column_int64(statement, column));
    case TypeKind::BigInt:
      return std::int64_t{sqlite3_column_int64(statement, column)};
    case TypeKind::Decimal:
      return readDecimal(statement, column, type);
    case TypeKind::Real:
    case TypeKind::Float:
      return sqlite3_column_double(statement, column);
    default:
      break;
  }
  const std::string_view text = columnText(statement, column);
  return type.isDate() ? Variant{dateFromStored(text)} : Variant{text};
}

Value readValue(sqlite3_stmt* statement, int column) {
  return valueOf(sqlite3_column_value(statement, column));
}

void bindValue(sqlite3_stmt* statement, int position, const Value& value) {
  switch (value.tag) {
    case Value::Tag::Null:
      sqlite3_bind_null(statement, position);
      break;
    case Value::Tag::Integer:
      sqlite3_bind_int64(statement, position, value.integer);
      break;
    case Value::Tag::Real:
      sqlite3_bind_double(statement, position, value.real);
      break;
    case Value::Tag::Text:
      sqlite3_bind_text64(statement, position, value.text.data(), value.text.size(),
                          SQLITE_TRANSIENT, SQLITE_UTF8);
      break;
    case Value::Tag::Wide: {
      std::array<unsigned char, kWideBytes> bytes{};
      storeWide(value.wide, bytes.data());
      sqlite3_bind_blob(statement, position, bytes.data(), kWideBytes, SQLITE_TRANSIENT);
      break;
    }
  }
}

void BatchRunner::bindLiteral(sqlite3_stmt* statement, int position, const Slot& slot) {
  const tsql::LiteralToken& token = shape_->literals[slot.index];
  const Type& target = slot.target;
  if (token.kind == tsql::LiteralKind::Null) {
    sqlite3_bind_null(statement, position);
    return;
  }
  // The two kinds that nearly all constants are of take no detour.
  const std::size_t safeDigits = target.kind == TypeKind::BigInt ? 18 : 9;
  if (token.kind == tsql::LiteralKind::Integer && target.isInteger() &&
      target.kind != TypeKind::Bit && token.raw.size() <= safeDigits) {
    std::int64_t number = 0;
    std::from_chars(token.raw.data(), token.raw.data() + token.raw.size(), number);
    number = slot.negate ? -number : number;
    if (target.kind != TypeKind::BigInt) {
      number = checkedInteger(number, target);
    }
    sqlite3_bind_int64(statement, position, number);
    return;
  }
  const bool isText =
      token.kind == tsql::LiteralKind::Text || token.kind == tsql::LiteralKind::NationalText;
  if (isText && target.isText() && !token.hasDoubledQuotes && fitsAsItIs(token.raw, slot)) {
    // The text of the statement outlives its execution: no copy.
    sqlite3_bind_text64(statement, position, token.raw.empty() ? "" : token.raw.data(),
                        token.raw.size(), SQLITE_STATIC, SQLITE_UTF8);
    return;
  }
  const std::string text = literalText(token);
  const Type type = literalType(token.kind, text);
  Value value = literalValue(token.kind, text, type);
  if (slot.negate) {
    value = negated(std::move(value));
  }
  bindValue(statement, position, convert(std::move(value), type, target, slot.conversion));
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
