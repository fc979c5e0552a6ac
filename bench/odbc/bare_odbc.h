#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "data/date.h"
#include "data/decimal.h"

/// The floor: ODBC as a program uses it that was written for one query, with the same calls and
/// types as the provider (wide text, decimals as characters) and nothing around them.
namespace azcoll::bench {

inline void need(SQLRETURN result, SQLSMALLINT kind, SQLHANDLE handle) {
  if (result != SQL_SUCCESS && result != SQL_SUCCESS_WITH_INFO && result != SQL_NO_DATA) {
    std::array<SQLCHAR, 6> state{};
    std::array<SQLCHAR, 512> message{};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    SQLGetDiagRec(kind, handle, 1, state.data(), &native, message.data(), message.size(), &length);
    throw std::runtime_error(reinterpret_cast<const char*>(message.data()));
  }
}

class BareConnection {
 public:
  explicit BareConnection(std::string text) {
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
    SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3),
                  0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment_, &handle_);
    need(SQLDriverConnect(handle_, nullptr, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS,
                          nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT),
         SQL_HANDLE_DBC, handle_);
  }
  BareConnection(const BareConnection&) = delete;
  BareConnection(BareConnection&&) = delete;
  BareConnection& operator=(const BareConnection&) = delete;
  BareConnection& operator=(BareConnection&&) = delete;
  ~BareConnection() {
    SQLDisconnect(handle_);
    SQLFreeHandle(SQL_HANDLE_DBC, handle_);
    SQLFreeHandle(SQL_HANDLE_ENV, environment_);
  }

  void begin() { autocommit(false); }
  void commit() {
    need(SQLEndTran(SQL_HANDLE_DBC, handle_, SQL_COMMIT), SQL_HANDLE_DBC, handle_);
    autocommit(true);
  }
  [[nodiscard]] SQLHDBC get() const { return handle_; }

 private:
  void autocommit(bool on) {
    SQLSetConnectAttr(handle_, SQL_ATTR_AUTOCOMMIT,
                      reinterpret_cast<SQLPOINTER>(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF), 0);
  }

  SQLHENV environment_ = nullptr;
  SQLHDBC handle_ = nullptr;
};

class BareStatement {
 public:
  explicit BareStatement(const BareConnection& connection) {
    need(SQLAllocHandle(SQL_HANDLE_STMT, connection.get(), &handle_), SQL_HANDLE_DBC,
         connection.get());
  }
  BareStatement(const BareStatement&) = delete;
  BareStatement(BareStatement&&) = delete;
  BareStatement& operator=(const BareStatement&) = delete;
  BareStatement& operator=(BareStatement&&) = delete;
  ~BareStatement() { SQLFreeHandle(SQL_HANDLE_STMT, handle_); }

  [[nodiscard]] SQLHSTMT get() const { return handle_; }
  void check(SQLRETURN result) const { need(result, SQL_HANDLE_STMT, handle_); }

  /// The texts of a program's own are ASCII.
  void execute(std::string_view text) const {
    std::u16string wide(text.begin(), text.end());
    check(SQLExecDirectW(handle_, reinterpret_cast<SQLWCHAR*>(wide.data()),
                         static_cast<SQLINTEGER>(wide.size())));
  }
  [[nodiscard]] bool fetch() const {
    const SQLRETURN result = SQLFetch(handle_);
    check(result);
    return result != SQL_NO_DATA;
  }

 private:
  SQLHSTMT handle_ = nullptr;
};

}  // namespace azcoll::bench
