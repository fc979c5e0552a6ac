#include "odbc/values.h"

#include <bit>
#include <cstring>
#include <optional>
#include <string>

#include "data/error.h"
#include "data/messages.h"
#include "data/text.h"
#include "odbc/diagnostics.h"
#include "odbc/strings.h"

namespace azcoll::odbc {
namespace {

constexpr SQLUINTEGER kNanosecondsPerMillisecond = 1'000'000;

template <typename T>
T load(std::span<const std::byte> bytes) {
  T value{};
  if (bytes.size() < sizeof value) {
    throw DriverFailure{"HY000", "Il driver ODBC ha dato un valore più corto del suo tipo"};
  }
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

template <typename T>
Bytes store(const T& value) {
  Bytes bytes(sizeof value);
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

Bytes storeText(std::string_view text) {
  Bytes bytes(text.size());
  if (!text.empty()) {
    std::memcpy(bytes.data(), text.data(), text.size());
  }
  return bytes;
}

Bytes storeWide(std::string_view text) {
  const std::u16string wide = wideOf(text);
  Bytes bytes(wide.size() * sizeof(char16_t));
  if (!wide.empty()) {
    std::memcpy(bytes.data(), wide.data(), bytes.size());
  }
  return bytes;
}

/// Writes a text to `target`, which has room for it; the bytes written.
std::size_t decodeWideTo(char* target, std::span<const std::byte> bytes) {
  const std::optional<std::size_t> size =
      bytes.size() % sizeof(char16_t) == 0
          ? narrowTo(target, bytes.data(), bytes.size() / sizeof(char16_t))
          : std::nullopt;
  if (!size) {
    throw DriverFailure{"22021", "Il driver ODBC ha dato un testo che non è UTF-16"};
  }
  return *size;
}

Variant decodeWide(std::span<const std::byte> bytes) {
  std::string text(mostNarrowBytes(bytes.size() / sizeof(char16_t)), '\0');
  text.resize(decodeWideTo(text.data(), bytes));
  text.shrink_to_fit();
  return text;
}

Decimal decodeDecimal(std::span<const std::byte> bytes) {
  const std::string_view text{reinterpret_cast<const char*>(bytes.data()), bytes.size()};
  const std::optional<Decimal> number = Decimal::parse(text);
  if (!number) {
    throw DriverFailure{"22003", join("Numero decimale non rappresentabile: ", text)};
  }
  return *number;
}

Date decodeTimestamp(std::span<const std::byte> bytes) {
  const auto moment = load<SQL_TIMESTAMP_STRUCT>(bytes);
  const std::optional<Date> date =
      Date::of(moment.year, moment.month, moment.day, moment.hour, moment.minute, moment.second,
               static_cast<int>(moment.fraction / kNanosecondsPerMillisecond));
  if (!date) {
    throw DriverFailure{"22008", "Data fuori dal calendario"};
  }
  return *date;
}

Variant decodeBinary(std::span<const std::byte> bytes) {
  constexpr std::string_view kHexDigits = "0123456789ABCDEF";
  std::string text = "0x";
  text.reserve(text.size() + bytes.size() * 2);
  for (const std::byte byte : bytes) {
    text += kHexDigits[std::to_integer<std::size_t>(byte >> 4U)];
    text += kHexDigits[std::to_integer<std::size_t>(byte & std::byte{0x0F})];
  }
  return text;
}

int digitValue(char digit) {
  if (digit >= '0' && digit <= '9') {
    return digit - '0';
  }
  const char small = static_cast<char>(digit | 0x20);
  return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

Bytes encodeBinary(const std::string& text) {
  if (text.size() % 2 != 0 || !(text.starts_with("0x") || text.starts_with("0X"))) {
    throw Error(messages::kTypeMismatch);
  }
  Bytes bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t at = 2; at < text.size(); at += 2) {
    const int high = digitValue(text[at]);
    const int low = digitValue(text[at + 1]);
    if (high < 0 || low < 0) {
      throw Error(messages::kTypeMismatch);
    }
    bytes.push_back(static_cast<std::byte>(high * 16 + low));
  }
  return bytes;
}

double doubleOf(const Variant& value) {
  const double* const number = value.get<double>();
  return number != nullptr ? *number : value.toDecimal().toDouble();
}

Bytes encodeTimestamp(const Date& date) {
  SQL_TIMESTAMP_STRUCT moment{};
  moment.year = date.year;
  moment.month = static_cast<SQLUSMALLINT>(date.month);
  moment.day = static_cast<SQLUSMALLINT>(date.day);
  moment.hour = static_cast<SQLUSMALLINT>(date.hour);
  moment.minute = static_cast<SQLUSMALLINT>(date.minute);
  moment.second = static_cast<SQLUSMALLINT>(date.second);
  moment.fraction = static_cast<SQLUINTEGER>(date.millisecond) * kNanosecondsPerMillisecond;
  return store(moment);
}

}  // namespace

Carrier carrierOf(SQLSMALLINT sqlType) {
  switch (sqlType) {
    case SQL_BIT:
      return Carrier::Bit;
    case SQL_TINYINT:
    case SQL_SMALLINT:
      return Carrier::Int16;
    case SQL_INTEGER:
      return Carrier::Int32;
    case SQL_BIGINT:
      return Carrier::Int64;
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return Carrier::Double;
    case SQL_DECIMAL:
    case SQL_NUMERIC:
      return Carrier::Decimal;
    case SQL_DATE:  // the two of ODBC 2, which catalogue functions still give
    case SQL_TIMESTAMP:
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
      return Carrier::Timestamp;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      return Carrier::Binary;
    default:
      return Carrier::Text;
  }
}

SQLSMALLINT cTypeOf(Carrier carrier) {
  switch (carrier) {
    case Carrier::Bit:
      return SQL_C_BIT;
    case Carrier::Int16:
      return SQL_C_SSHORT;
    case Carrier::Int32:
      return SQL_C_SLONG;
    case Carrier::Int64:
      return SQL_C_SBIGINT;
    case Carrier::Double:
      return SQL_C_DOUBLE;
    case Carrier::Timestamp:
      return SQL_C_TYPE_TIMESTAMP;
    case Carrier::Decimal:
      return SQL_C_CHAR;
    case Carrier::Text:
      return SQL_C_WCHAR;
    default:
      return SQL_C_BINARY;
  }
}

std::size_t fixedWidth(Carrier carrier) {
  switch (carrier) {
    case Carrier::Bit:
      return sizeof(SQLCHAR);
    case Carrier::Int16:
      return sizeof(std::int16_t);
    case Carrier::Int32:
      return sizeof(std::int32_t);
    case Carrier::Int64:
      return sizeof(std::int64_t);
    case Carrier::Double:
      return sizeof(double);
    case Carrier::Timestamp:
      return sizeof(SQL_TIMESTAMP_STRUCT);
    default:
      return 0;
  }
}

std::size_t terminatorWidth(Carrier carrier) {
  if (carrier == Carrier::Text) {
    return sizeof(char16_t);
  }
  return carrier == Carrier::Decimal ? 1 : 0;
}

Variant decode(Carrier carrier, std::span<const std::byte> bytes) {
  switch (carrier) {
    case Carrier::Bit:
      return load<SQLCHAR>(bytes) != 0;
    case Carrier::Int16:
      return load<std::int16_t>(bytes);
    case Carrier::Int32:
      return load<std::int32_t>(bytes);
    case Carrier::Int64:
      return load<std::int64_t>(bytes);
    case Carrier::Double:
      return load<double>(bytes);
    case Carrier::Timestamp:
      return decodeTimestamp(bytes);
    case Carrier::Decimal:
      return decodeDecimal(bytes);
    case Carrier::Text:
      return decodeWide(bytes);
    default:
      return decodeBinary(bytes);
  }
}

void decodeInto(cursor::PackedRows& rows, Carrier carrier, std::span<const std::byte> bytes) {
  switch (carrier) {
    case Carrier::Bit:
      return rows.append(load<SQLCHAR>(bytes) != 0);
    case Carrier::Int16:
      return rows.append(load<std::int16_t>(bytes));
    case Carrier::Int32:
      return rows.append(load<std::int32_t>(bytes));
    case Carrier::Int64:
      return rows.append(load<std::int64_t>(bytes));
    case Carrier::Double:
      return rows.append(load<double>(bytes));
    case Carrier::Timestamp:
      return rows.append(decodeTimestamp(bytes));
    case Carrier::Decimal:
      return rows.append(decodeDecimal(bytes));
    case Carrier::Text:
      return rows.appendWritten(mostNarrowBytes(bytes.size() / sizeof(char16_t)),
                                [&](char* room) { return decodeWideTo(room, bytes); });
    default:
      return rows.append(decodeBinary(bytes));
  }
}

Bytes encode(Carrier carrier, const Variant& value) {
  switch (carrier) {
    case Carrier::Bit:
      return store(static_cast<SQLCHAR>(value.toBool() ? 1 : 0));
    case Carrier::Int16:
      return store(value.toInt16());
    case Carrier::Int32:
      return store(value.toInt32());
    case Carrier::Int64:
      return store(value.toInt64());
    case Carrier::Double:
      return store(doubleOf(value));
    case Carrier::Timestamp:
      return encodeTimestamp(value.toDate());
    case Carrier::Decimal:
      return storeText(value.toDecimal().text());
    case Carrier::Text:
      return storeWide(value.text());
    default:
      return encodeBinary(value.text());
  }
}

}  // namespace azcoll::odbc
