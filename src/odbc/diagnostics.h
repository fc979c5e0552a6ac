#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "data/error.h"
#include "odbc/odbc_api.h"

namespace azcoll::odbc {

/// A failure inside the room: everything that the driver reported of it, at least one entry. The
/// connection turns it into an `Error` and its `Errors`.
class DriverFailure {
 public:
  explicit DriverFailure(std::vector<ErrorInfo> entries) : entries_{std::move(entries)} {}
  /// A failure that this provider finds itself, e.g. a value that it cannot hold.
  DriverFailure(std::string_view sqlState, std::string description)
      : DriverFailure{sqlState, 0, std::move(description)} {}
  DriverFailure(std::string_view sqlState, int nativeNumber, std::string description);

  [[nodiscard]] const std::vector<ErrorInfo>& entries() const { return entries_; }

 private:
  std::vector<ErrorInfo> entries_;
};

/// All diagnostic records of a handle, whole messages, in the driver's order. The makers' marks in
/// brackets before a message are left out.
[[nodiscard]] std::vector<ErrorInfo> recordsOf(SQLSMALLINT kind, SQLHANDLE handle);

/// The same of a handle whose operation has failed: one entry that names `operation` when there are
/// none.
[[nodiscard]] std::vector<ErrorInfo> diagnosticsOf(SQLSMALLINT kind, SQLHANDLE handle,
                                                   std::string_view operation);

/// Throws `DriverFailure` with the handle's diagnostics unless the call succeeded.
void require(SQLRETURN result, SQLSMALLINT kind, SQLHANDLE handle, std::string_view operation);

}  // namespace azcoll::odbc
