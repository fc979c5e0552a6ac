#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "data/options.h"
#include "data/variant.h"
#include "odbc/handles.h"
#include "odbc/values.h"

namespace azcoll::odbc {

/// A parameter as the database declares it. Sizes are hints.
struct DeclaredParameter {
  std::string name{};  ///< with its leading `@`, where the server has one
  ParameterDirection direction = ParameterDirection::Input;
  SQLSMALLINT sqlType = SQL_WVARCHAR;
  SQLULEN size = 0;
  SQLSMALLINT digits = 0;
};

/// Throws `DriverFailure` for an output whose value would not come back: a decimal of which the
/// server reports 38 digits, all of them fractional, as some do of every decimal. It would be cut,
/// or cost the connection.
void requireKnownDigits(const DeclaredParameter& declared);

/// A value on its way to (and from) a `?` marker. Must outlive the statement's execution.
class BoundParameter {
 public:
  /// A value whose column is not known: typed by its own kind. `datesAsText`: T-SQL compares a text
  /// with a DATETIME column exactly, but not a moment of finer type.
  static BoundParameter ofValue(const Variant& value, bool datesAsText);

  /// A value for a declared parameter; Empty lets the declared default count, and is Null for an
  /// output. Throws `Error` when the value does not convert.
  static BoundParameter ofDeclared(const DeclaredParameter& declared, const Variant& value);

  /// Binds it to the marker `number` (from 1). Throws `DriverFailure`.
  void bind(const Handle& statement, SQLUSMALLINT number);

  /// What the database put into an output. Throws `DriverFailure` when it was cut.
  [[nodiscard]] Variant output() const;

 private:
  SQLSMALLINT direction_ = SQL_PARAM_INPUT;
  Carrier carrier_ = Carrier::Text;
  SQLSMALLINT sqlType_ = SQL_WVARCHAR;
  SQLULEN size_ = 1;
  SQLSMALLINT digits_ = 0;
  Bytes buffer_;
  SQLLEN indicator_ = SQL_NULL_DATA;
};

}  // namespace azcoll::odbc
