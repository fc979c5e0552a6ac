#include "ado/variants.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>

#include "ado/automated.h"
#include "ado/wide_text.h"
#include "data/error.h"
#include "data/messages.h"

namespace azcoll::ado {
namespace {

constexpr std::int64_t kMillisecondsPerDay = 86'400'000;
constexpr std::int64_t kDaysFromZeroDateTo1900 = 2;  // the zero of an automation date is 1899-12-30
constexpr int kMostDecimalPlaces = 28;
constexpr int kCurrencyPlaces = 4;

[[noreturn]] void fail(std::string_view message) { throw Error(std::string{message}); }

/// The whole part counts days and carries the sign; the fraction is the time of day, always
/// onwards.
azcoll::Date fromAutomationDate(DATE value) {
  constexpr double kFirst = -657'434;  // 0100-01-01
  constexpr double kBehindLast = 2'958'466;
  if (!(value > kFirst - 1 && value < kBehindLast)) {
    fail(messages::kOverflow);
  }
  const double whole = std::trunc(value);
  auto days = static_cast<std::int64_t>(whole);
  std::int64_t milliseconds =
      std::llround(std::fabs(value - whole) * static_cast<double>(kMillisecondsPerDay));
  if (milliseconds == kMillisecondsPerDay) {
    milliseconds = 0;
    ++days;
  }
  std::optional<azcoll::Date> date = azcoll::Date::ofDayNumber(days - kDaysFromZeroDateTo1900);
  if (!date) {
    fail(messages::kOverflow);
  }
  date->hour = static_cast<std::int8_t>(milliseconds / 3'600'000);
  date->minute = static_cast<std::int8_t>(milliseconds / 60'000 % 60);
  date->second = static_cast<std::int8_t>(milliseconds / 1000 % 60);
  date->millisecond = static_cast<std::int16_t>(milliseconds % 1000);
  return *date;
}

DATE toAutomationDate(const azcoll::Date& date) {
  constexpr int kFirstYear = 100;
  if (date.year < kFirstYear) {
    fail(messages::kOverflow);
  }
  const std::int64_t days = date.dayNumber() + kDaysFromZeroDateTo1900;
  const std::int64_t milliseconds =
      ((std::int64_t{date.hour} * 60 + date.minute) * 60 + date.second) * 1000 + date.millisecond;
  const double fraction =
      static_cast<double>(milliseconds) / static_cast<double>(kMillisecondsPerDay);
  return static_cast<double>(days) + (days < 0 ? -fraction : fraction);
}

/// A number of single precision says what its shortest text says, not its binary tail.
double fromSingle(float value) {
  std::array<char, 64> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  double result = value;
  std::from_chars(digits.data(), end.ptr, result);
  return result;
}

Decimal decimal(Int128 digits, int scale) {
  const std::optional<Decimal> number = Decimal::fromUnscaled(digits, scale);
  if (!number) {
    fail(messages::kOverflow);
  }
  return *number;
}

/// Currency always has four places; the zeros after the number are not the caller's.
Decimal fromCurrency(CY value) {
  std::int64_t digits = value.int64;
  int scale = kCurrencyPlaces;
  for (; scale > 0 && digits % 10 == 0; --scale) {
    digits /= 10;
  }
  return decimal(digits, scale);
}

Decimal fromAutomationDecimal(const DECIMAL& value) {
  const UInt128 digits = UInt128{value.Hi32} << 64 | UInt128{value.Lo64};
  const auto whole = static_cast<Int128>(digits);
  return decimal(value.sign == 0 ? whole : -whole, value.scale);
}

/// Nothing when the number needs more than automation's 96 bits and 28 places.
std::optional<DECIMAL> toAutomationDecimal(const Decimal& value) {
  const bool negative = value.isNegative();
  auto digits = static_cast<UInt128>(negative ? -value.unscaled() : value.unscaled());
  int scale = value.scale();
  const auto tooLarge = [&] { return (digits >> 96) != UInt128{0} || scale > kMostDecimalPlaces; };
  while (tooLarge() && scale > 0 && digits % 10U == 0U) {
    digits /= 10U;
    --scale;
  }
  if (tooLarge()) {
    return std::nullopt;
  }
  DECIMAL result{};
  result.scale = static_cast<BYTE>(scale);
  result.sign = negative ? DECIMAL_NEG : 0;
  result.Hi32 = static_cast<ULONG>(digits >> 64);
  result.Lo64 = static_cast<ULONGLONG>(digits);
  return result;
}

void writeDecimal(const Decimal& value, VARIANT& target) {
  if (const std::optional<DECIMAL> number = toAutomationDecimal(value)) {
    target.decVal = *number;
    target.vt = VT_DECIMAL;  // after the number: they share their first bytes
  } else {
    target.bstrVal = newBstr(value.text());
    target.vt = VT_BSTR;
  }
}

Variant fromUnsigned64(std::uint64_t value) {
  if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
    return static_cast<std::int64_t>(value);
  }
  return decimal(Int128{value}, 0);
}

Variant fromObject(IUnknown* object) {
  if (object == nullptr) {
    return std::shared_ptr<Object>{};
  }
  const ComPtr<IUnknown> unknown = ComPtr<IUnknown>::share(object);
  ComPtr<IDispatch> dispatch = unknown.as<IDispatch>(IID_IDispatch);
  if (!dispatch) {
    fail(messages::kTypeMismatch);
  }
  return std::shared_ptr<Object>{std::make_shared<HostObject>(std::move(dispatch))};
}

}  // namespace

IDispatch* dispatchOf(const Object* object) {
  if (object == nullptr) {
    return nullptr;
  }
  const auto* const automated = dynamic_cast<const Automated*>(object);
  if (automated == nullptr) {
    fail(messages::kTypeMismatch);
  }
  return automated->dispatch().get();
}

Variant fromVariant(const VARIANT& given) {
  ScopedVariant followed;
  const VARIANT* source = &given;
  if ((given.vt & VT_BYREF) != 0) {
    if (FAILED(VariantCopyInd(&followed.raw(), const_cast<VARIANT*>(&given)))) {
      fail(messages::kTypeMismatch);
    }
    source = &followed.value();
  }
  const VARIANT& value = *source;
  switch (value.vt) {
    case VT_EMPTY:
      return {};
    case VT_NULL:
      return kNull;
    case VT_BOOL:
      return value.boolVal != VARIANT_FALSE;
    case VT_I1:
      return std::int16_t{static_cast<signed char>(value.cVal)};
    case VT_UI1:
      return std::int16_t{value.bVal};
    case VT_I2:
      return std::int16_t{value.iVal};
    case VT_UI2:
      return std::int32_t{value.uiVal};
    case VT_I4:
    case VT_INT:
      return static_cast<std::int32_t>(value.lVal);
    case VT_UI4:
    case VT_UINT:
      return std::int64_t{value.ulVal};
    case VT_I8:
      return std::int64_t{value.llVal};
    case VT_UI8:
      return fromUnsigned64(value.ullVal);
    case VT_R4:
      return fromSingle(value.fltVal);
    case VT_R8:
      return value.dblVal;
    case VT_CY:
      return fromCurrency(value.cyVal);
    case VT_DECIMAL:
      return fromAutomationDecimal(value.decVal);
    case VT_DATE:
      return fromAutomationDate(value.date);
    case VT_BSTR:
      return textOf(value.bstrVal);
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return fromObject(value.punkVal);
    default:
      fail(messages::kTypeMismatch);
  }
}

ScopedVariant toVariant(const Variant& value) {
  ScopedVariant result;
  VARIANT& target = result.raw();
  switch (value.kind()) {
    case Variant::Kind::Empty:
      break;
    case Variant::Kind::Null:
      target.vt = VT_NULL;
      break;
    case Variant::Kind::Boolean:
      target.boolVal = *value.get<bool>() ? VARIANT_TRUE : VARIANT_FALSE;
      target.vt = VT_BOOL;
      break;
    case Variant::Kind::Int16:
      target.iVal = *value.get<std::int16_t>();
      target.vt = VT_I2;
      break;
    case Variant::Kind::Int32:
      target.lVal = *value.get<std::int32_t>();
      target.vt = VT_I4;
      break;
    case Variant::Kind::Int64:
      target.llVal = *value.get<std::int64_t>();
      target.vt = VT_I8;
      break;
    case Variant::Kind::Double:
      target.dblVal = *value.get<double>();
      target.vt = VT_R8;
      break;
    case Variant::Kind::Decimal:
      writeDecimal(*value.get<Decimal>(), target);
      break;
    case Variant::Kind::Date:
      target.date = toAutomationDate(*value.get<azcoll::Date>());
      target.vt = VT_DATE;
      break;
    case Variant::Kind::Text:
      target.bstrVal = newBstr(*value.get<std::string>());
      target.vt = VT_BSTR;
      break;
    case Variant::Kind::Object: {
      IDispatch* const dispatch = dispatchOf(value.object());
      if (dispatch != nullptr) {
        dispatch->AddRef();
      }
      target.pdispVal = dispatch;
      target.vt = VT_DISPATCH;
      break;
    }
  }
  return result;
}

}  // namespace azcoll::ado
