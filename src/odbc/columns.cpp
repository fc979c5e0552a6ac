#include "odbc/columns.h"

#include <utility>

#include "odbc/diagnostics.h"
#include "odbc/strings.h"

namespace azcoll::odbc {
namespace {

constexpr std::size_t kFirstNameUnits = 256;

/// A text attribute of a column; empty when the driver does not have it.
std::string textAttribute(const Handle& statement, SQLUSMALLINT column, SQLUSMALLINT attribute) {
  std::u16string text(kFirstNameUnits, u'\0');
  SQLSMALLINT bytes = 0;
  const auto read = [&] {
    return SQLColAttributeW(statement.get(), column, attribute, text.data(),
                            static_cast<SQLSMALLINT>(text.size() * sizeof(char16_t)), &bytes,
                            nullptr);
  };
  SQLRETURN result = read();
  if (succeeded(result) && bytes > 0 &&
      static_cast<std::size_t>(bytes) >= text.size() * sizeof(char16_t)) {
    text.assign(static_cast<std::size_t>(bytes) / sizeof(char16_t) + 1, u'\0');
    result = read();
  }
  if (!succeeded(result)) {
    return {};
  }
  return readableOf(std::u16string_view{text}.substr(0, text.find(u'\0')));
}

Column describe(const Handle& statement, SQLUSMALLINT number) {
  std::u16string name(kFirstNameUnits, u'\0');
  SQLSMALLINT nameLength = 0;
  SQLSMALLINT type = 0;
  SQLULEN size = 0;
  SQLSMALLINT digits = 0;
  SQLSMALLINT nullable = 0;
  statement.require(
      SQLDescribeColW(statement.get(), number, units(name), static_cast<SQLSMALLINT>(name.size()),
                      &nameLength, &type, &size, &digits, &nullable),
      "SQLDescribeCol");
  Column column;
  column.name = nameLength > 0 && static_cast<std::size_t>(nameLength) >= name.size()
                    ? textAttribute(statement, number, SQL_DESC_NAME)
                    : readableOf(std::u16string_view{name}.substr(0, name.find(u'\0')));
  column.carrier = carrierOf(type);
  column.size = size;
  column.baseTable = textAttribute(statement, number, SQL_DESC_BASE_TABLE_NAME);
  if (!column.baseTable.empty()) {
    column.baseColumn = textAttribute(statement, number, SQL_DESC_BASE_COLUMN_NAME);
  }
  SQLLEN numbered = SQL_FALSE;
  if (succeeded(SQLColAttributeW(statement.get(), number, SQL_DESC_AUTO_UNIQUE_VALUE, nullptr, 0,
                                 nullptr, &numbered))) {
    column.isIdentity = numbered == SQL_TRUE;
  }
  return column;
}

}  // namespace

std::vector<Column> describeColumns(const Handle& statement) {
  SQLSMALLINT count = 0;
  statement.require(SQLNumResultCols(statement.get(), &count), "SQLNumResultCols");
  std::vector<Column> columns;
  for (SQLSMALLINT number = 1; number <= count; ++number) {
    columns.push_back(describe(statement, static_cast<SQLUSMALLINT>(number)));
  }
  return columns;
}

}  // namespace azcoll::odbc
