#include "odbc/handles.h"

#include "odbc/diagnostics.h"

namespace azcoll::odbc {

Handle::Handle(SQLSMALLINT kind, const Handle* parent) : kind_{kind} {
  const SQLHANDLE above = parent == nullptr ? SQL_NULL_HANDLE : parent->get();
  if (!succeeded(SQLAllocHandle(kind, above, &handle_))) {
    if (parent == nullptr) {
      throw DriverFailure{"HY001", "Il gestore dei driver ODBC non è utilizzabile"};
    }
    throw DriverFailure{diagnosticsOf(parent->kind(), above, "SQLAllocHandle")};
  }
}

Handle::~Handle() { SQLFreeHandle(kind_, handle_); }

void Handle::require(SQLRETURN result, std::string_view operation) const {
  odbc::require(result, kind_, handle_, operation);
}

}  // namespace azcoll::odbc
