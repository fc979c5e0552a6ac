#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "cursor/packed_rows.h"
#include "data/variant.h"
#include "odbc/odbc_api.h"

namespace azcoll::odbc {

/// The form in which a value crosses the driver manager. Decimals cross as text, so that no digit
/// is lost.
enum class Carrier : std::uint8_t {
  Bit,
  Int16,
  Int32,
  Int64,
  Double,
  Timestamp,
  Decimal,
  Text,
  Binary
};

/// Bytes of one value, as the driver reads or writes them.
using Bytes = std::vector<std::byte>;

/// The form for a column or parameter of an SQL type; types without a form of their own cross as
/// text.
[[nodiscard]] Carrier carrierOf(SQLSMALLINT sqlType);

/// The C type (SQL_C_…) of a form.
[[nodiscard]] SQLSMALLINT cTypeOf(Carrier carrier);

/// Bytes of a value of a form that has always the same; 0 for decimals, texts and binary data.
[[nodiscard]] std::size_t fixedWidth(Carrier carrier);

/// Room for a decimal as text: sign, point and 38 digits fit well.
inline constexpr std::size_t kDecimalBytes = 64;

/// Bytes of the zero that ends a value of the form in a buffer; 0 when there is none.
[[nodiscard]] std::size_t terminatorWidth(Carrier carrier);

/// The value that the driver gave. Binary data become the text `0x…`, in capitals; of a moment,
/// what is finer than a millisecond is left out. Throws `DriverFailure` for malformed text, a
/// decimal that has no exact value of 38 digits, and a date outside the calendar.
[[nodiscard]] Variant decode(Carrier carrier, std::span<const std::byte> bytes);

/// The same, added to a row.
void decodeInto(cursor::PackedRows& rows, Carrier carrier, std::span<const std::byte> bytes);

/// A value in the form of a parameter. Throws `Error` when the value does not convert.
[[nodiscard]] Bytes encode(Carrier carrier, const Variant& value);

}  // namespace azcoll::odbc
