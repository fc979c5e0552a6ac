#include "odbc/pieces.h"

#include <algorithm>
#include <array>
#include <span>

#include "odbc/diagnostics.h"

namespace azcoll::odbc {
namespace {

constexpr std::size_t kFirstPiece = std::size_t{8} * 1024;
constexpr std::size_t kLargestPiece = std::size_t{1024} * 1024;
constexpr std::size_t kLongestValue = std::size_t{1024} * 1024 * 1024;

[[noreturn]] void failLength() {
  throw DriverFailure{"HY000", "Il driver ODBC ha dato una lunghezza impossibile"};
}

Variant readFixed(const Handle& statement, SQLUSMALLINT number, Carrier carrier) {
  std::array<std::byte, 32> buffer{};
  SQLLEN length = 0;
  statement.require(SQLGetData(statement.get(), number, cTypeOf(carrier), buffer.data(),
                               static_cast<SQLLEN>(buffer.size()), &length),
                    "SQLGetData");
  if (length == SQL_NULL_DATA) {
    return kNull;
  }
  return decode(carrier, std::span{buffer}.first(fixedWidth(carrier)));
}

}  // namespace

Variant readInPieces(const Handle& statement, SQLUSMALLINT number, Carrier carrier) {
  if (fixedWidth(carrier) != 0) {
    return readFixed(statement, number, carrier);
  }
  const std::size_t terminator = terminatorWidth(carrier);
  Bytes value;
  std::size_t used = 0;
  for (std::size_t piece = kFirstPiece;; piece = std::min(piece * 2, kLargestPiece)) {
    if (used > kLongestValue) {
      failLength();
    }
    value.resize(used + piece);
    SQLLEN length = 0;
    const SQLRETURN result = SQLGetData(statement.get(), number, cTypeOf(carrier),
                                        value.data() + used, static_cast<SQLLEN>(piece), &length);
    if (result == SQL_NO_DATA) {  // the piece before was the last one
      break;
    }
    statement.require(result, "SQLGetData");
    if (length == SQL_NULL_DATA) {
      return kNull;
    }
    const bool fits = length >= 0 && static_cast<std::size_t>(length) <= piece - terminator;
    if (fits) {
      used += static_cast<std::size_t>(length);
      break;
    }
    if (length < 0 && length != SQL_NO_TOTAL) {
      failLength();
    }
    if (result == SQL_SUCCESS) {  // whole, it says, and longer than what it wrote
      failLength();
    }
    used += piece - terminator;
  }
  return decode(carrier, std::span<const std::byte>{value}.first(used));
}

}  // namespace azcoll::odbc
