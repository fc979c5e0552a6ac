// Entry points for statements.
#include <algorithm>
#include <cstring>

#include "providers/fault_driver/driver.h"

namespace azcoll::fault {

void Statement::close() {
  if (isOpen) {
    isOpen = false;
    --connection.openResults;
  }
}

namespace {

Statement& statementOf(SQLHANDLE handle) { return *static_cast<Statement*>(handle); }

void enter(Statement& statement) {
  statement.row = 0;
  statement.blockRows = 0;
  statement.column = 0;
  if (statement.result < statement.scenario.results.size() && !statement.now().columns.empty()) {
    statement.isOpen = true;
    ++statement.connection.openResults;
  }
}

SQLRETURN linkFailure(Statement& statement) {
  statement.connection.dead = true;
  return statement.fail("08S01", u"[Maker]Communication link failure", 10054);
}

/// What the driver tells about the length of a value.
SQLLEN told(const FaultColumn& column, const Written& written) {
  if (column.impossibleLength && written.indicator != SQL_NULL_DATA) {
    return *column.impossibleLength;
  }
  return column.noTotal && written.truncated ? SQL_NO_TOTAL : written.indicator;
}

void giveName(const std::u16string& name, SQLWCHAR* target, std::size_t room) {
  const std::size_t taken = std::min(name.size(), room == 0 ? 0 : room - 1);
  if (target != nullptr && room > 0) {
    std::memcpy(target, name.data(), taken * sizeof(char16_t));
    target[taken] = 0;
  }
}

}  // namespace

SQLRETURN begin(Statement& statement, Scenario scenario) {
  Connection& connection = statement.connection;
  if (connection.dead) {
    return linkFailure(statement);
  }
  if (connection.openResults > 0) {
    return statement.fail("HY000", u"Connection is busy with results for another hstmt");
  }
  if (!scenario.failure.empty()) {
    statement.diagnostics = scenario.failure;
    return SQL_ERROR;
  }
  statement.scenario = std::move(scenario);
  statement.result = 0;
  enter(statement);
  return SQL_SUCCESS;
}

}  // namespace azcoll::fault

using namespace azcoll::fault;  // NOLINT(google-build-using-namespace): the entry points are in C

extern "C" {

SQLRETURN SQLSetStmtAttrW(SQLHSTMT handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
  Statement& statement = statementOf(handle);
  switch (attribute) {
    case SQL_ATTR_ROW_ARRAY_SIZE:
      statement.arraySize = reinterpret_cast<SQLULEN>(value);
      return SQL_SUCCESS;
    case SQL_ATTR_ROWS_FETCHED_PTR:
      statement.fetched = static_cast<SQLULEN*>(value);
      return SQL_SUCCESS;
    case SQL_ATTR_QUERY_TIMEOUT:
      statement.queryTimeout = reinterpret_cast<SQLULEN>(value);
      return SQL_SUCCESS;
    case SQL_ATTR_ROW_STATUS_PTR:
      statement.status = static_cast<SQLUSMALLINT*>(value);
      return SQL_SUCCESS;
    default:
      return statement.fail("HYC00", u"not known");
  }
}

SQLRETURN SQLPrepareW(SQLHSTMT handle, SQLWCHAR*, SQLINTEGER) {
  return statementOf(handle).fail("HYC00", u"a prepared batch would lose its #tables");
}

SQLRETURN SQLExecDirectW(SQLHSTMT handle, SQLWCHAR* text, SQLINTEGER length) {
  Statement& statement = statementOf(handle);
  const std::u16string wanted = textOf(text, length);
  if (wanted.starts_with(u"UPDATE") || wanted.starts_with(u"INSERT")) {
    statement.connection.lastChange = wanted + u" <-" + shownParameters(statement);
  }
  ++statement.connection.executions;
  return begin(statement, scenarioFor(wanted, statement));
}

SQLRETURN SQLProcedureColumnsW(SQLHSTMT handle, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT,
                               SQLWCHAR* name, SQLSMALLINT length, SQLWCHAR*, SQLSMALLINT) {
  return begin(statementOf(handle), procedureColumns(textOf(name, length)));
}

SQLRETURN SQLColumnsW(SQLHSTMT handle, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT,
                      SQLWCHAR* name, SQLSMALLINT length, SQLWCHAR*, SQLSMALLINT) {
  return begin(statementOf(handle), tableColumns(textOf(name, length)));
}

SQLRETURN SQLPrimaryKeysW(SQLHSTMT handle, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT,
                          SQLWCHAR* name, SQLSMALLINT length) {
  return begin(statementOf(handle), primaryKeys(textOf(name, length)));
}

SQLRETURN SQLNumResultCols(SQLHSTMT handle, SQLSMALLINT* count) {
  Statement& statement = statementOf(handle);
  *count = statement.result < statement.scenario.results.size()
               ? static_cast<SQLSMALLINT>(statement.now().columns.size())
               : SQLSMALLINT{0};
  return SQL_SUCCESS;
}

SQLRETURN SQLDescribeColW(SQLHSTMT handle, SQLUSMALLINT number, SQLWCHAR* name, SQLSMALLINT room,
                          SQLSMALLINT* length, SQLSMALLINT* type, SQLULEN* size,
                          SQLSMALLINT* digits, SQLSMALLINT* nullable) {
  const FaultColumn& column = statementOf(handle).now().columns.at(number - 1U);
  giveName(column.name, name, static_cast<std::size_t>(room));
  *length = static_cast<SQLSMALLINT>(column.name.size());
  *type = column.type;
  *size = column.size;
  *digits = 0;
  *nullable = SQL_NULLABLE;
  return SQL_SUCCESS;
}

SQLRETURN SQLColAttributeW(SQLHSTMT handle, SQLUSMALLINT number, SQLUSMALLINT attribute,
                           SQLPOINTER text, SQLSMALLINT room, SQLSMALLINT* length, SQLLEN* value) {
  Statement& statement = statementOf(handle);
  if (attribute == SQL_DESC_NAME) {
    const std::u16string& name = statement.now().columns.at(number - 1U).name;
    giveName(name, static_cast<SQLWCHAR*>(text), static_cast<std::size_t>(room) / 2);
    *length = static_cast<SQLSMALLINT>(name.size() * 2);
    return SQL_SUCCESS;
  }
  if (attribute == SQL_DESC_AUTO_UNIQUE_VALUE) {
    *value = SQL_FALSE;
    return SQL_SUCCESS;
  }
  return statement.fail("HYC00", u"base tables are not told");
}

SQLRETURN SQLBindCol(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT type, SQLPOINTER target,
                     SQLLEN room, SQLLEN* indicator) {
  Statement& statement = statementOf(handle);
  statement.columns[number] = {type, target, room, indicator, SQL_PARAM_INPUT};
  return SQL_SUCCESS;
}

SQLRETURN SQLBindParameter(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT direction,
                           SQLSMALLINT type, SQLSMALLINT sqlType, SQLULEN, SQLSMALLINT,
                           SQLPOINTER target, SQLLEN room, SQLLEN* indicator) {
  Statement& statement = statementOf(handle);
  if (*indicator == SQL_DEFAULT_PARAM && statement.connection.has(u"Defaults", u"none")) {
    return statement.fail("07S01", u"Invalid use of default parameter");
  }
  statement.parameters[number] = {type, target, room, indicator, direction, sqlType};
  return SQL_SUCCESS;
}

SQLRETURN SQLFreeStmt(SQLHSTMT handle, SQLUSMALLINT option) {
  Statement& statement = statementOf(handle);
  if (option == SQL_UNBIND) {
    statement.columns.clear();
  } else if (option == SQL_RESET_PARAMS) {
    statement.parameters.clear();
  } else {
    statement.close();
  }
  return SQL_SUCCESS;
}

SQLRETURN SQLFetch(SQLHSTMT handle) {
  Statement& statement = statementOf(handle);
  ++statement.connection.fetches;
  const FaultResult& result = statement.now();
  statement.row += statement.blockRows;
  statement.column = 0;
  statement.current = 0;
  const std::size_t left = result.rows.size() - std::min(statement.row, result.rows.size());
  statement.blockRows = std::min<std::size_t>(statement.arraySize, left);
  if (result.linkFailsAfter && statement.row + statement.blockRows > *result.linkFailsAfter) {
    return linkFailure(statement);
  }
  if (statement.fetched != nullptr) {
    *statement.fetched = statement.blockRows;
  }
  if (statement.blockRows == 0) {
    return SQL_NO_DATA;
  }
  bool cut = false;
  for (std::size_t index = 0; index < statement.blockRows; ++index) {
    for (const auto& [number, target] : statement.columns) {
      const Written written =
          writeValue(result.rows[statement.row + index].at(number - 1U), target, index, 0);
      target.indicator[index] = told(result.columns[number - 1U], written);
      cut = cut || written.truncated;
    }
    if (statement.status != nullptr) {
      statement.status[index] = SQL_ROW_SUCCESS;
    }
  }
  if (result.failsBehindItsRows && statement.row + statement.blockRows == result.rows.size()) {
    statement.diagnostics = {{"01000", u"a remark", 0}, {"22012", u"Divide by zero", 8134}};
    return SQL_SUCCESS_WITH_INFO;
  }
  statement.diagnostics = {{"01004", u"String data, right truncated", 0}};
  return cut ? SQL_SUCCESS_WITH_INFO : SQL_SUCCESS;
}

SQLRETURN SQLSetPos(SQLHSTMT handle, SQLSETPOSIROW row, SQLUSMALLINT, SQLUSMALLINT) {
  Statement& statement = statementOf(handle);
  if (row < 1 || row > statement.blockRows) {
    return statement.fail("HY107", u"Row value out of range");
  }
  statement.current = row - 1;
  statement.column = 0;
  return SQL_SUCCESS;
}

SQLRETURN SQLGetData(SQLHSTMT handle, SQLUSMALLINT number, SQLSMALLINT type, SQLPOINTER target,
                     SQLLEN room, SQLLEN* indicator) {
  Statement& statement = statementOf(handle);
  const bool bound = statement.columns.contains(number);
  if ((bound && statement.connection.has(u"Reread", u"none")) ||
      (statement.blockRows > 1 && !statement.connection.has(u"Reread", u"block")) ||
      (!bound && number < statement.column)) {
    return statement.fail("07009", u"Invalid descriptor index");
  }
  if (statement.column != number) {
    statement.column = number;
    statement.offset = 0;
  } else if (statement.offset == SIZE_MAX) {
    return SQL_NO_DATA;
  }
  const Cell& cell = statement.now().rows[statement.row + statement.current].at(number - 1U);
  const Binding binding{type, target, room, indicator, SQL_PARAM_INPUT};
  const Written written = writeValue(cell, binding, 0, statement.offset);
  *indicator = told(statement.now().columns[number - 1U], written);
  statement.offset = written.truncated ? statement.offset + written.bytes : SIZE_MAX;
  statement.diagnostics = {{"01004", u"String data, right truncated", 0}};
  return written.truncated ? SQL_SUCCESS_WITH_INFO : SQL_SUCCESS;
}

SQLRETURN SQLRowCount(SQLHSTMT handle, SQLLEN* count) {
  Statement& statement = statementOf(handle);
  *count = statement.result < statement.scenario.results.size() ? statement.now().rowCount : -1;
  return SQL_SUCCESS;
}

SQLRETURN SQLMoreResults(SQLHSTMT handle) {
  Statement& statement = statementOf(handle);
  statement.close();
  if (statement.result + 1 < statement.scenario.results.size()) {
    ++statement.result;
    enter(statement);
    return SQL_SUCCESS;
  }
  statement.result = statement.scenario.results.size();
  fillOutputs(statement);
  return SQL_NO_DATA;
}

}  // extern "C"
