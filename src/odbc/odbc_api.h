#pragma once

// The driver manager's own headers, in the one order in which they can be included. SQLWCHAR is one
// UTF-16 code unit in the usual build of unixODBC; another build would need another edge.
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

namespace azcoll::odbc {

static_assert(sizeof(SQLWCHAR) == 2, "unixODBC built with 16-bit SQLWCHAR is needed");

/// Whether a call did its work, with or without a warning.
[[nodiscard]] constexpr bool succeeded(SQLRETURN result) {
  return result == SQL_SUCCESS || result == SQL_SUCCESS_WITH_INFO;
}

/// A number in the place of a pointer, as the attribute calls take it.
[[nodiscard]] inline SQLPOINTER attributeValue(SQLULEN value) {
  return reinterpret_cast<SQLPOINTER>(value);  // NOLINT(performance-no-int-to-ptr): ODBC's way
}

}  // namespace azcoll::odbc
