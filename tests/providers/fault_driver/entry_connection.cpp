// Entry points for environments and connections, and for diagnostics.
#include <algorithm>
#include <cstring>

#include "providers/fault_driver/driver.h"

namespace azcoll::fault {

std::u16string textOf(const SQLWCHAR* text, SQLINTEGER length) {
  std::u16string result;
  if (text == nullptr) {
    return result;
  }
  for (SQLINTEGER at = 0; length == SQL_NTS ? text[at] != 0 : at < length; ++at) {
    result += static_cast<char16_t>(text[at]);
  }
  return result;
}

namespace {

Connection& connectionOf(SQLHANDLE handle) { return *static_cast<Connection*>(handle); }

Handle& partOf(SQLSMALLINT kind, SQLHANDLE handle) {
  if (kind == SQL_HANDLE_STMT) {
    return *static_cast<Statement*>(handle);
  }
  if (kind == SQL_HANDLE_DBC) {
    return connectionOf(handle);
  }
  return *static_cast<Environment*>(handle);
}

/// Copies a text into a buffer of `room` units; warns when it was cut.
SQLRETURN giveText(const std::u16string& text, SQLWCHAR* target, std::size_t room) {
  if (target == nullptr || room == 0) {
    return SQL_SUCCESS;
  }
  const std::size_t taken = std::min(text.size(), room - 1);
  std::memcpy(target, text.data(), taken * sizeof(char16_t));
  target[taken] = 0;
  return taken < text.size() ? SQL_SUCCESS_WITH_INFO : SQL_SUCCESS;
}

std::map<std::u16string, std::u16string> settingsOf(const std::u16string& text) {
  std::map<std::u16string, std::u16string> settings;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find(u';', at), text.size());
    const std::u16string pair = text.substr(at, end - at);
    const std::size_t equals = pair.find(u'=');
    if (equals != std::u16string::npos) {
      settings[pair.substr(0, equals)] = pair.substr(equals + 1);
    }
    at = end + 1;
  }
  return settings;
}

SQLRETURN lost(Connection& connection) {
  connection.dead = true;
  return connection.fail("08S01", u"[Maker]Communication link failure", 10054);
}

}  // namespace
}  // namespace azcoll::fault

using namespace azcoll::fault;  // NOLINT(google-build-using-namespace): the entry points are in C

extern "C" {

SQLRETURN SQLAllocHandle(SQLSMALLINT kind, SQLHANDLE parent, SQLHANDLE* result) {
  if (kind == SQL_HANDLE_ENV) {
    *result = new Environment;
  } else if (kind == SQL_HANDLE_DBC) {
    *result = new Connection;
  } else {
    *result = new Statement{connectionOf(parent)};
  }
  return SQL_SUCCESS;
}

SQLRETURN SQLFreeHandle(SQLSMALLINT kind, SQLHANDLE handle) {
  if (kind == SQL_HANDLE_ENV) {
    delete static_cast<Environment*>(handle);
  } else if (kind == SQL_HANDLE_DBC) {
    delete static_cast<Connection*>(handle);
  } else {
    static_cast<Statement*>(handle)->close();
    delete static_cast<Statement*>(handle);
  }
  return SQL_SUCCESS;
}

SQLRETURN SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) { return SQL_SUCCESS; }

SQLRETURN SQLDriverConnectW(SQLHDBC handle, SQLHWND, SQLWCHAR* text, SQLSMALLINT length, SQLWCHAR*,
                            SQLSMALLINT, SQLSMALLINT*, SQLUSMALLINT) {
  Connection& connection = connectionOf(handle);
  connection.connectionString = textOf(text, length);
  connection.settings = settingsOf(connection.connectionString);
  if (connection.has(u"Connect", u"refused")) {
    return connection.fail("28000", u"[Maker]Login failed: " + connection.connectionString, 18456);
  }
  return SQL_SUCCESS;
}

SQLRETURN SQLDisconnect(SQLHDBC handle) {
  Connection& connection = connectionOf(handle);
  return connection.autocommit || connection.dead || connection.rollbacks > 0
             ? SQL_SUCCESS
             : connection.fail("25000", u"Invalid transaction state");
}

SQLRETURN SQLSetConnectAttrW(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
  Connection& connection = connectionOf(handle);
  if (attribute == SQL_ATTR_AUTOCOMMIT) {
    const bool on = reinterpret_cast<SQLULEN>(value) == SQL_AUTOCOMMIT_ON;
    if (connection.dead) {
      return lost(connection);
    }
    if (!on && connection.has(u"Begin", u"fails")) {
      return connection.fail("HY000", u"no transactions today");
    }
    if (on && connection.has(u"Autocommit", u"lost")) {
      return lost(connection);
    }
    if (on && connection.startsAtOnce() && connection.transactions == 0) {
      return connection.fail("HY000", u"[Maker]Could not change transaction status");
    }
    connection.autocommit = on;
    connection.transactions = !on && connection.startsAtOnce() ? 1 : 0;
  } else if (attribute == SQL_ATTR_LOGIN_TIMEOUT) {
    connection.loginTimeout = reinterpret_cast<SQLULEN>(value);
  }
  return SQL_SUCCESS;
}

SQLRETURN SQLGetConnectAttrW(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER,
                             SQLINTEGER*) {
  if (attribute != SQL_ATTR_CONNECTION_DEAD) {
    return connectionOf(handle).fail("HYC00", u"not known");
  }
  *static_cast<SQLUINTEGER*>(value) = connectionOf(handle).dead ? SQL_CD_TRUE : SQL_CD_FALSE;
  return SQL_SUCCESS;
}

SQLRETURN SQLGetInfoW(SQLHDBC handle, SQLUSMALLINT info, SQLPOINTER value, SQLSMALLINT room,
                      SQLSMALLINT* length) {
  Connection& connection = connectionOf(handle);
  const auto text = [&](const std::u16string& answer) {
    if (length != nullptr) {
      *length = static_cast<SQLSMALLINT>(answer.size() * sizeof(char16_t));
    }
    return giveText(answer, static_cast<SQLWCHAR*>(value),
                    static_cast<std::size_t>(room) / sizeof(char16_t));
  };
  switch (info) {
    case SQL_DRIVER_ODBC_VER:
      return text(u"03.80");
    case SQL_DBMS_NAME:
      return text(connection.speaksTSql() ? u"SQL Server" : u"Fault");
    case SQL_GETDATA_EXTENSIONS: {
      SQLUINTEGER answer =
          connection.has(u"Reread", u"none") ? 0U : static_cast<SQLUINTEGER>(SQL_GD_BOUND);
      answer |= connection.has(u"Reread", u"block") ? static_cast<SQLUINTEGER>(SQL_GD_BLOCK) : 0U;
      *static_cast<SQLUINTEGER*>(value) = answer;
      return SQL_SUCCESS;
    }
    default:
      return connection.fail("HYC00", u"not known");
  }
}

SQLRETURN SQLEndTran(SQLSMALLINT, SQLHANDLE handle, SQLSMALLINT completion) {
  Connection& connection = connectionOf(handle);
  const bool commit = completion == SQL_COMMIT;
  if (connection.dead || (commit && connection.has(u"Commit", u"lost"))) {
    return lost(connection);
  }
  if (commit && connection.has(u"Commit", u"fails")) {
    return connection.fail("HY000", u"[Maker]The log is full", 9002);
  }
  if (!commit && connection.has(u"Rollback", u"fails")) {
    connection.settings[u"Rollback"] = u"";  // the next one works
    return connection.fail("HY000", u"[Maker]Not now", 1);
  }
  if (connection.startsAtOnce()) {
    const bool undone = connection.transactions == 0;
    connection.transactions = undone && connection.has(u"Xact_abort", u"on") ? 0 : 1;
    if (undone) {
      return connection.fail("25000", u"[Maker]no corresponding BEGIN TRANSACTION.",
                             commit ? 3902 : 3903);
    }
  } else {
    connection.transactions = 0;
  }
  ++(commit ? connection.commits : connection.rollbacks);
  return SQL_SUCCESS;
}

SQLRETURN SQLGetDiagRecW(SQLSMALLINT kind, SQLHANDLE handle, SQLSMALLINT number, SQLWCHAR* state,
                         SQLINTEGER* native, SQLWCHAR* message, SQLSMALLINT room,
                         SQLSMALLINT* length) {
  const std::vector<Diagnostic>& diagnostics = partOf(kind, handle).diagnostics;
  const auto index = static_cast<std::size_t>(number - 1);
  if (number < 1 || index >= diagnostics.size() || diagnostics[index].state.empty()) {
    return SQL_NO_DATA;
  }
  const Diagnostic& diagnostic = diagnostics[index];
  giveText({diagnostic.state.begin(), diagnostic.state.end()}, state, 6);
  if (native != nullptr) {
    *native = diagnostic.native;
  }
  if (length != nullptr) {
    *length = static_cast<SQLSMALLINT>(diagnostic.message.size());
  }
  return giveText(diagnostic.message, message, static_cast<std::size_t>(room));
}

SQLRETURN SQLGetDiagFieldW(SQLSMALLINT kind, SQLHANDLE handle, SQLSMALLINT number,
                           SQLSMALLINT field, SQLPOINTER value, SQLSMALLINT room,
                           SQLSMALLINT* length) {
  const std::vector<Diagnostic>& diagnostics = partOf(kind, handle).diagnostics;
  if (field == SQL_DIAG_NUMBER) {
    *static_cast<SQLINTEGER*>(value) = static_cast<SQLINTEGER>(diagnostics.size());
    return SQL_SUCCESS;
  }
  const auto index = static_cast<std::size_t>(number - 1);
  if (number < 1 || index >= diagnostics.size() || field != SQL_DIAG_MESSAGE_TEXT) {
    return SQL_NO_DATA;
  }
  if (length != nullptr) {
    *length = static_cast<SQLSMALLINT>(diagnostics[index].message.size() * sizeof(char16_t));
  }
  return giveText(diagnostics[index].message, static_cast<SQLWCHAR*>(value),
                  static_cast<std::size_t>(room) / sizeof(char16_t));
}

}  // extern "C"
