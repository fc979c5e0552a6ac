#include "odbc/execution.h"

#include <algorithm>
#include <utility>

#include "odbc/columns.h"
#include "odbc/strings.h"

namespace azcoll::odbc {
namespace {

ResultSet fetched(const Handle& statement, const std::vector<Column>& columns,
                  RereadAbilities reread, Reading reading) {
  ResultSet set;
  set.packed = fetchAll(statement, columns, reread, reading);
  std::vector<ColumnInfo> infos;
  infos.reserve(columns.size());
  for (const Column& column : columns) {
    ColumnInfo info;
    info.name = column.name;
    info.baseTable = column.baseTable;
    info.baseColumn = column.baseColumn;
    info.isIdentity = column.isIdentity;
    infos.push_back(std::move(info));
  }
  set.columns = std::move(infos);
  return set;
}

ExecutionResult runOnce(const Handle& statement, std::u16string& wide, RereadAbilities reread,
                        Reading reading) {
  ExecutionResult execution;
  SQLRETURN result =
      SQLExecDirectW(statement.get(), units(wide), static_cast<SQLINTEGER>(wide.size()));
  // "No data" is a change that met no row; further results may follow it.
  if (result != SQL_NO_DATA) {
    statement.require(result, "SQLExecDirect");
  }
  do {
    const std::vector<Column> columns = describeColumns(statement);
    if (!columns.empty()) {
      execution.results.push_back(fetched(statement, columns, reread, reading));
    } else {
      SQLLEN count = -1;
      if (succeeded(SQLRowCount(statement.get(), &count)) && count >= 0) {
        execution.recordsAffected = std::max<std::int64_t>(execution.recordsAffected, 0) + count;
      }
    }
    result = SQLMoreResults(statement.get());
    if (result != SQL_NO_DATA) {
      statement.require(result, "SQLMoreResults");
    }
  } while (result != SQL_NO_DATA);
  return execution;
}

}  // namespace

ExecutionResult runToEnd(const Handle& statement, std::string_view text, RereadAbilities reread,
                         Reading reading) {
  std::u16string wide = wideOf(text);
  if (reading == Reading::Repeatable) {
    try {
      return runOnce(statement, wide, reread, reading);
    } catch (const CutValue&) {
      SQLFreeStmt(statement.get(), SQL_CLOSE);
    }
  }
  return runOnce(statement, wide, reread, Reading::Once);
}

ResultSet takeResult(const Handle& statement, RereadAbilities reread) {
  ResultSet set = fetched(statement, describeColumns(statement), reread, Reading::Once);
  set.values = set.allValues();
  set.packed.reset();
  return set;
}

}  // namespace azcoll::odbc
