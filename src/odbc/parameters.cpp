#include "odbc/parameters.h"

#include <algorithm>
#include <array>
#include <span>

#include "data/text.h"
#include "odbc/diagnostics.h"

namespace azcoll::odbc {
namespace {

constexpr SQLULEN kLongestNVarChar = 4000;  // beyond it a text parameter is a long one
constexpr SQLULEN kMillisecondPrecision = 23;
constexpr SQLSMALLINT kMillisecondDigits = 3;
constexpr std::size_t kOutputUnits = 8000;        // where the declared length is shorter, or wrong
constexpr std::size_t kLongOutputUnits = 131072;  // for outputs without a limit

std::size_t unitsOf(const Bytes& bytes) { return bytes.size() / sizeof(char16_t); }

/// Room for what an output may hold, its ending zero included. Declared lengths are hints, so they
/// count only when they are longer than the usual.
std::size_t outputRoom(Carrier carrier, const DeclaredParameter& declared) {
  if (const std::size_t fixed = fixedWidth(carrier); fixed != 0) {
    return fixed;
  }
  if (carrier == Carrier::Decimal) {
    return kDecimalBytes;
  }
  const bool limited = declared.size > 0 && declared.size <= kOutputUnits;
  const std::size_t length = limited ? kOutputUnits : kLongOutputUnits;
  return carrier == Carrier::Text ? (length + 1) * sizeof(char16_t) : length;
}

struct Typing {
  Carrier carrier;
  SQLSMALLINT sqlType;
};

Typing typingOf(const Variant& value, bool datesAsText) {
  switch (value.kind()) {
    case Variant::Kind::Boolean:
      return {Carrier::Bit, SQL_BIT};
    case Variant::Kind::Int16:
      return {Carrier::Int16, SQL_SMALLINT};
    case Variant::Kind::Int32:
      return {Carrier::Int32, SQL_INTEGER};
    case Variant::Kind::Int64:
      return {Carrier::Int64, SQL_BIGINT};
    case Variant::Kind::Double:
      return {Carrier::Double, SQL_DOUBLE};
    case Variant::Kind::Decimal:
      return {Carrier::Decimal, SQL_DECIMAL};
    case Variant::Kind::Date:
      return datesAsText ? Typing{Carrier::Text, SQL_VARCHAR}
                         : Typing{Carrier::Timestamp, SQL_TYPE_TIMESTAMP};
    default:
      return {Carrier::Text, SQL_WVARCHAR};
  }
}

/// `yyyymmdd[ hh:mm:ss[.fff]]`, which a T-SQL server reads the same under every language setting.
std::string serverText(const Date& date) {
  std::string text = date.databaseText();
  if (date.millisecond != 0) {
    const std::string iso = date.isoText();
    text = text.substr(0, 8) + " " + iso.substr(iso.find(' ') + 1);
  }
  return text;
}

}  // namespace

BoundParameter BoundParameter::ofValue(const Variant& value, bool datesAsText) {
  BoundParameter parameter;
  const Typing typing = typingOf(value, datesAsText);
  parameter.carrier_ = typing.carrier;
  parameter.sqlType_ = typing.sqlType;
  if (value.isNull() || value.isEmpty()) {
    return parameter;
  }
  const Date* const date = value.get<Date>();
  parameter.buffer_ = encode(typing.carrier, date != nullptr && typing.carrier == Carrier::Text
                                                 ? Variant{serverText(*date)}
                                                 : value);
  parameter.indicator_ = static_cast<SQLLEN>(parameter.buffer_.size());
  if (typing.carrier == Carrier::Text) {
    parameter.size_ = std::max<SQLULEN>(unitsOf(parameter.buffer_), 1);
    if (typing.sqlType == SQL_WVARCHAR && parameter.size_ > kLongestNVarChar) {
      parameter.sqlType_ = SQL_WLONGVARCHAR;
    }
  } else if (const Decimal* const number = value.get<Decimal>()) {
    parameter.size_ = Decimal::kMaxDigits;
    parameter.digits_ = static_cast<SQLSMALLINT>(number->scale());
  } else if (typing.carrier == Carrier::Timestamp) {
    parameter.size_ = kMillisecondPrecision;
    parameter.digits_ = kMillisecondDigits;
  }
  return parameter;
}

void requireKnownDigits(const DeclaredParameter& declared) {
  if (declared.direction != ParameterDirection::Input &&
      carrierOf(declared.sqlType) == Carrier::Decimal &&
      declared.size == SQLULEN{Decimal::kMaxDigits} && declared.digits == Decimal::kMaxDigits) {
    throw DriverFailure{
        "HYC00", join("Il server non dice quante cifre ha ", declared.name,
                      ": un'uscita DECIMAL non si può ricevere; restituirla in una riga (SELECT)")};
  }
}

BoundParameter BoundParameter::ofDeclared(const DeclaredParameter& declared, const Variant& value) {
  BoundParameter parameter;
  const bool output = declared.direction != ParameterDirection::Input;
  parameter.direction_ = output ? SQL_PARAM_INPUT_OUTPUT : SQL_PARAM_INPUT;
  parameter.carrier_ = carrierOf(declared.sqlType);
  parameter.sqlType_ = declared.sqlType;
  parameter.size_ = declared.size;
  parameter.digits_ = declared.digits;
  if (value.isEmpty() && !output) {
    parameter.indicator_ = SQL_DEFAULT_PARAM;
  } else if (!value.isEmpty() && !value.isNull()) {
    parameter.buffer_ = encode(parameter.carrier_, value);
    parameter.indicator_ = static_cast<SQLLEN>(parameter.buffer_.size());
  }
  if (output) {
    parameter.buffer_.resize(
        std::max(parameter.buffer_.size(), outputRoom(parameter.carrier_, declared)));
  } else if (const Decimal* const number = value.get<Decimal>();
             number != nullptr && parameter.carrier_ == Carrier::Decimal) {
    // Some servers report 38 digits, all of them fractional, of every decimal: no room for a whole
    // one.
    parameter.size_ = Decimal::kMaxDigits;
    parameter.digits_ = static_cast<SQLSMALLINT>(number->scale());
  } else if (parameter.carrier_ == Carrier::Text) {
    // A text longer than declared is the server's to judge.
    parameter.size_ = std::max<SQLULEN>({parameter.size_, unitsOf(parameter.buffer_), 1});
  }
  return parameter;
}

void BoundParameter::bind(const Handle& statement, SQLUSMALLINT number) {
  if (buffer_.empty()) {
    buffer_.resize(sizeof(SQL_TIMESTAMP_STRUCT));  // some drivers look at the place of a Null too
  }
  statement.require(
      SQLBindParameter(statement.get(), number, direction_, cTypeOf(carrier_), sqlType_, size_,
                       digits_, buffer_.data(), static_cast<SQLLEN>(buffer_.size()), &indicator_),
      "SQLBindParameter");
}

Variant BoundParameter::output() const {
  if (indicator_ == SQL_NULL_DATA) {
    return kNull;
  }
  if (const std::size_t fixed = fixedWidth(carrier_); fixed != 0) {
    return decode(carrier_, std::span{buffer_}.first(fixed));
  }
  const std::size_t room = buffer_.size() - terminatorWidth(carrier_);
  if (indicator_ < 0 || static_cast<std::size_t>(indicator_) > room) {
    throw DriverFailure{"01004", "Il valore di un parametro di uscita è più lungo dello spazio"};
  }
  return decode(carrier_, std::span{buffer_}.first(static_cast<std::size_t>(indicator_)));
}

}  // namespace azcoll::odbc
