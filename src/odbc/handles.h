#pragma once

#include <string_view>

#include "odbc/odbc_api.h"

namespace azcoll::odbc {

/// One handle of the driver manager, freed with its owner.
class Handle {
 public:
  /// Allocates a handle of `kind` under `parent` (SQL_NULL_HANDLE for an environment). Throws
  /// `DriverFailure`.
  Handle(SQLSMALLINT kind, const Handle* parent);
  Handle(const Handle&) = delete;
  Handle(Handle&&) = delete;
  Handle& operator=(const Handle&) = delete;
  Handle& operator=(Handle&&) = delete;
  ~Handle();

  [[nodiscard]] SQLHANDLE get() const { return handle_; }
  [[nodiscard]] SQLSMALLINT kind() const { return kind_; }

  /// Throws `DriverFailure` with this handle's diagnostics unless `result` is a success.
  void require(SQLRETURN result, std::string_view operation) const;

 private:
  SQLSMALLINT kind_;
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

}  // namespace azcoll::odbc
