#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "data/date.h"
#include "data/decimal.h"
#include "data/object.h"

namespace azcoll {

/// Marker of the database's missing value; `Variant{}` without it is Empty (never set).
struct NullValue {
  friend constexpr bool operator==(NullValue, NullValue) = default;
};
inline constexpr NullValue kNull{};

/// A value of any kind that a field, a column or a parameter can hold. Text is UTF-8.
class Variant {
 public:
  /// The kinds, in the order of `Storage`.
  enum class Kind : std::uint8_t {
    Empty,
    Null,
    Boolean,
    Int16,
    Int32,
    Int64,
    Double,
    Decimal,
    Date,
    Text,
    Object
  };

  Variant() = default;
  // NOLINTBEGIN(google-explicit-constructor): a value converts to its variant without ceremony
  Variant(NullValue) : value_{kNull} {}
  Variant(bool value) : value_{value} {}
  Variant(std::int16_t value) : value_{value} {}
  Variant(std::int32_t value) : value_{value} {}
  Variant(std::int64_t value) : value_{value} {}
  Variant(double value) : value_{value} {}
  Variant(const azcoll::Decimal& value) : value_{value} {}
  Variant(const azcoll::Date& value) : value_{value} {}
  Variant(std::string value) : value_{std::move(value)} {}
  Variant(std::string_view value) : value_{std::string{value}} {}
  Variant(const char* value) : value_{std::string{value}} {}
  Variant(std::shared_ptr<azcoll::Object> value) : value_{std::move(value)} {}
  // NOLINTEND(google-explicit-constructor)

  [[nodiscard]] Kind kind() const noexcept { return static_cast<Kind>(value_.index()); }
  [[nodiscard]] bool isEmpty() const noexcept { return kind() == Kind::Empty; }
  [[nodiscard]] bool isNull() const noexcept { return kind() == Kind::Null; }

  /// The stored value when it is of exactly this type, else null.
  template <typename T>
  [[nodiscard]] const T* get() const noexcept {
    return std::get_if<T>(&value_);
  }

  /// Locale-free text: decimal point, no grouping, `dd/mm/yyyy` with ` hh:mm:ss` only when there is
  /// a time, True/False. Empty gives "". Throws `Error` for Null and for an object.
  [[nodiscard]] std::string text() const;

  /// Appends the text form to `target`; Null and Empty append nothing. Throws `Error` for an
  /// object.
  void appendTo(std::string& target) const;

  /// The value as a 64-bit integer. True is -1; numbers are rounded half to even; a text must hold
  /// a whole or decimal number; Empty is 0. Throws `Error` for Null, a date, an object, a text that
  /// is not a number, or a number that does not fit.
  [[nodiscard]] std::int64_t toInt64() const;

  /// Like `toInt64`, limited to the range of 16 and 32 bits (throws `Error` on overflow).
  [[nodiscard]] std::int16_t toInt16() const;
  [[nodiscard]] std::int32_t toInt32() const;

  /// The exact decimal value, by the rules of `toInt64` without the rounding. A double converts
  /// through its shortest text form.
  [[nodiscard]] azcoll::Decimal toDecimal() const;

  /// Truth: a number is true when not 0, a text when it reads True/False (any case) or is a number
  /// that is not 0; Empty is false.
  /// Throws `Error` for anything else.
  [[nodiscard]] bool toBool() const;

  /// The date itself, or a text that `Date::parse` reads. Throws `Error` for anything else.
  [[nodiscard]] azcoll::Date toDate() const;

  /// The value plus one, keeping an integer kind while it fits (then the next wider one); a text
  /// that holds a number becomes a number. Throws `Error` when it does not hold a number.
  [[nodiscard]] Variant plusOne() const;

  /// The object referred to, or null when the variant holds none.
  [[nodiscard]] std::shared_ptr<azcoll::Object> object() const noexcept;

  /// Same kind and same value (numbers of different kinds are different; see `sameValue`).
  friend bool operator==(const Variant& left, const Variant& right);

 private:
  using Storage = std::variant<std::monostate, NullValue, bool, std::int16_t, std::int32_t,
                               std::int64_t, double, azcoll::Decimal, azcoll::Date, std::string,
                               std::shared_ptr<azcoll::Object>>;
  Storage value_;
};

/// Equality of what two variants stand for: 5 as 16 bits equals 5 as 64 bits and 5.00 as a decimal;
/// Null equals Null and Empty equals Empty (it is used to detect changes, not to answer SQL).
[[nodiscard]] bool sameValue(const Variant& left, const Variant& right);

}  // namespace azcoll
