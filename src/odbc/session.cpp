#include "odbc/session.h"

#include <array>

#include "odbc/diagnostics.h"
#include "odbc/strings.h"

namespace azcoll::odbc {

Session::Session(std::string_view connectionString, int timeoutSeconds)
    : environment_{SQL_HANDLE_ENV, nullptr} {
  environment_.require(
      SQLSetEnvAttr(environment_.get(), SQL_ATTR_ODBC_VERSION, attributeValue(SQL_OV_ODBC3), 0),
      "SQLSetEnvAttr");
  connection_ = std::make_unique<Handle>(SQL_HANDLE_DBC, &environment_);
  if (timeoutSeconds > 0) {
    // Not every driver can limit the time.
    SQLSetConnectAttrW(connection_->get(), SQL_ATTR_LOGIN_TIMEOUT,
                       attributeValue(static_cast<SQLULEN>(timeoutSeconds)), SQL_IS_UINTEGER);
  }
  std::u16string wide = wideOf(connectionString);
  connection_->require(SQLDriverConnectW(connection_->get(), nullptr, units(wide),
                                         static_cast<SQLSMALLINT>(wide.size()), nullptr, 0, nullptr,
                                         SQL_DRIVER_NOPROMPT),
                       "SQLDriverConnect");
  connected_ = true;
  askAbilities();
}

Session::~Session() {
  if (!connected_) {
    return;
  }
  if (!autocommit_) {  // disconnecting is refused while a transaction is open
    SQLEndTran(SQL_HANDLE_DBC, connection_->get(), SQL_ROLLBACK);
  }
  SQLDisconnect(connection_->get());
}

void Session::askAbilities() {
  SQLUINTEGER extensions = 0;
  if (succeeded(SQLGetInfoW(connection_->get(), SQL_GETDATA_EXTENSIONS, &extensions,
                            sizeof extensions, nullptr))) {
    reread_.bound = (extensions & SQL_GD_BOUND) != 0;
    reread_.inBlock = reread_.bound && (extensions & SQL_GD_BLOCK) != 0;
  }
  std::array<char16_t, 128> name{};
  if (succeeded(SQLGetInfoW(connection_->get(), SQL_DBMS_NAME, name.data(),
                            static_cast<SQLSMALLINT>(sizeof name), nullptr))) {
    const std::u16string_view text{name.data(), name.size() - 1};
    speaksTSql_ = text.find(u"SQL Server") != std::u16string_view::npos;
  }
}

std::unique_ptr<Handle> Session::newStatement(int timeoutSeconds, Escapes escapes) const {
  auto statement = std::make_unique<Handle>(SQL_HANDLE_STMT, connection_.get());
  const auto set = [&](SQLINTEGER attribute, SQLULEN value) {
    SQLSetStmtAttrW(statement->get(), attribute, attributeValue(value), SQL_IS_UINTEGER);
  };
  // Wishes that a driver may not know: it then scans, or waits, as it always does.
  if (timeoutSeconds > 0) {
    set(SQL_ATTR_QUERY_TIMEOUT, static_cast<SQLULEN>(timeoutSeconds));
  }
  if (escapes == Escapes::LeftAlone) {
    set(SQL_ATTR_NOSCAN, SQL_NOSCAN_ON);
  }
  return statement;
}

void Session::setAutocommit(bool on) {
  connection_->require(
      SQLSetConnectAttrW(connection_->get(), SQL_ATTR_AUTOCOMMIT,
                         attributeValue(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF),
                         SQL_IS_UINTEGER),
      "SQLSetConnectAttr");
  autocommit_ = on;
}

void Session::endTransaction(SQLSMALLINT completion) {
  connection_->require(SQLEndTran(SQL_HANDLE_DBC, connection_->get(), completion), "SQLEndTran");
}

bool Session::isDead() const {
  SQLUINTEGER dead = SQL_CD_FALSE;
  return succeeded(SQLGetConnectAttrW(connection_->get(), SQL_ATTR_CONNECTION_DEAD, &dead,
                                      SQL_IS_UINTEGER, nullptr)) &&
         dead == SQL_CD_TRUE;
}

}  // namespace azcoll::odbc
