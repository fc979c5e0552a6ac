#include "embedded/sqlite/column_values.h"

#include <array>
#include <string_view>

#include "data/decimal.h"
#include "embedded/values/date_values.h"
#include "embedded/values/number_values.h"
#include "embedded/values/sql_error.h"

namespace azcoll::embedded {

namespace {

/// The length is asked for after the text: fetching it may convert the value, and so change its
/// length.
std::string_view columnText(sqlite3_stmt* statement, int column) {
  const unsigned char* const text = sqlite3_column_text(statement, column);
  return text == nullptr
             ? std::string_view{}
             : std::string_view{reinterpret_cast<const char*>(text),
                                static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

Decimal readDecimal(sqlite3_stmt* statement, int column, const Type& type) {
  Int128 digits = 0;
  if (type.isWide()) {
    const void* const bytes = sqlite3_column_blob(statement, column);
    // The engine writes 16 bytes always. Another length comes from a file that something else has
    // written; 824 is SQL Server's number for a page that cannot be right.
    if (bytes == nullptr || sqlite3_column_bytes(statement, column) != kWideBytes) {
      throw SqlError(824, "Il database contiene un numero decimale danneggiato.");
    }
    digits = loadWide(static_cast<const unsigned char*>(bytes));
  } else {
    digits = sqlite3_column_int64(statement, column);
  }
  return Decimal::fromUnscaled(digits, type.scale).value_or(Decimal{});
}

}  // namespace

Value valueOf(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return Value::ofInteger(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
      return Value::ofReal(sqlite3_value_double(value));
    case SQLITE_TEXT:
      return Value::ofText({reinterpret_cast<const char*>(sqlite3_value_text(value)),
                            static_cast<std::size_t>(sqlite3_value_bytes(value))});
    case SQLITE_BLOB:
      // A wide decimal is the only blob that the engine writes; its type says where the point is.
      if (sqlite3_value_bytes(value) == kWideBytes) {
        return Value::ofDigits(
            loadWide(static_cast<const unsigned char*>(sqlite3_value_blob(value))),
            Decimal::kMaxDigits);
      }
      break;
    default:
      break;
  }
  return {};
}

void appendColumn(cursor::PackedRows& rows, sqlite3_stmt* statement, int column, const Type& type) {
  // Asked first: the calls below give 0 for NULL, and once a value has been converted SQLite's
  // answer about its kind is undefined.
  if (sqlite3_column_type(statement, column) == SQLITE_NULL) {
    return rows.appendNull();
  }
  switch (type.kind) {
    case TypeKind::Bit:
      return rows.append(sqlite3_column_int64(statement, column) != 0);
    // Callers' values have no kind of eight bits.
    case TypeKind::TinyInt:
    case TypeKind::SmallInt:
      return rows.append(static_cast<std::int16_t>(sqlite3_column_int64(statement, column)));
    case TypeKind::Int:
    case TypeKind::Null:
      return rows.append(static_cast<std::int32_t>(sqlite3_column_int64(statement, column)));
    case TypeKind::BigInt:
      return rows.append(std::int64_t{sqlite3_column_int64(statement, column)});
    case TypeKind::Decimal:
      return rows.append(readDecimal(statement, column, type));
    case TypeKind::Real:
    case TypeKind::Float:
      return rows.append(sqlite3_column_double(statement, column));
    default:
      break;
  }
  const std::string_view text = columnText(statement, column);
  if (type.isDate()) {
    rows.append(dateFromStored(text));
  } else {
    rows.append(text);
  }
}

Value readValue(sqlite3_stmt* statement, int column) {
  // SQLite calls this value unprotected: other threads could change it. A connection has one.
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
      // Copied by SQLite: the value is often a temporary of the caller.
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

}  // namespace azcoll::embedded
