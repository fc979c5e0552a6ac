#include "odbc/catalogue.h"

#include <cstddef>
#include <utility>

#include "data/error.h"
#include "odbc/diagnostics.h"
#include "odbc/execution.h"
#include "odbc/spellings.h"
#include "odbc/strings.h"
#include "text/letter_case.h"

namespace azcoll::odbc {
namespace {

// Columns of the results of SQLColumns and SQLPrimaryKeys.
constexpr std::size_t kSchema = 1;
constexpr std::size_t kTable = 2;
constexpr std::size_t kColumn = 3;
constexpr std::size_t kTypeName = 5;

std::string cell(const ResultSet& set, std::size_t row, std::size_t column) {
  const Variant& value = set.values[row * set.columns.size() + column];
  return value.isNull() ? std::string{} : value.text();
}

SQLWCHAR* argument(std::u16string& text) { return text.empty() ? nullptr : units(text); }

SQLSMALLINT lengthOf(const std::u16string& text) { return static_cast<SQLSMALLINT>(text.size()); }

ResultSet columnsOf(const Session& session, std::string_view table, int timeoutSeconds) {
  const auto statement = session.newStatement(timeoutSeconds, Escapes::LeftAlone);
  std::u16string name = wideOf(table);
  statement->require(SQLColumnsW(statement->get(), nullptr, 0, nullptr, 0, units(name),
                                 lengthOf(name), nullptr, 0),
                     "SQLColumns");
  return takeResult(*statement, session.reread());
}

ResultSet keysOf(const Session& session, std::string_view schema, std::string_view table,
                 int timeoutSeconds) {
  const auto statement = session.newStatement(timeoutSeconds, Escapes::LeftAlone);
  std::u16string owner = wideOf(schema);
  std::u16string name = wideOf(table);
  statement->require(SQLPrimaryKeysW(statement->get(), nullptr, 0, argument(owner), lengthOf(owner),
                                     units(name), lengthOf(name)),
                     "SQLPrimaryKeys");
  return takeResult(*statement, session.reread());
}

/// `int identity` and its like.
bool isNumbered(std::string_view typeName) {
  constexpr std::string_view kMark = "identity";
  return typeName.size() >= kMark.size() &&
         equalsIgnoringCase(typeName.substr(typeName.size() - kMark.size()), kMark);
}

/// The table under exactly this spelling (wildcards of the catalogue's patterns are sorted out).
std::optional<TableInfo> ask(const Session& session, std::string_view table, int timeoutSeconds) {
  const ResultSet found = columnsOf(session, table, timeoutSeconds);
  if (found.columns.size() <= kTypeName) {
    return std::nullopt;
  }
  TableInfo info;
  std::string schema;
  std::string name;
  for (std::size_t row = 0; row < found.rowCount(); ++row) {
    if (!equalsIgnoringCase(cell(found, row, kTable), table)) {
      continue;
    }
    if (info.columns.empty()) {
      schema = cell(found, row, kSchema);
      name = cell(found, row, kTable);
    } else if (schema != cell(found, row, kSchema) || name != cell(found, row, kTable)) {
      return TableInfo{};  // several tables of that name
    }
    info.columns.push_back(cell(found, row, kColumn));
    info.identity.push_back(isNumbered(cell(found, row, kTypeName)));
  }
  if (info.columns.empty()) {
    return std::nullopt;
  }
  const ResultSet keys = keysOf(session, schema, name, timeoutSeconds);
  for (std::size_t row = 0; row < keys.rowCount() && keys.columns.size() > kColumn; ++row) {
    info.keys.push_back(cell(keys, row, kColumn));
  }
  return info;
}

}  // namespace

const TableInfo* Catalogue::find(const Session& session, std::string_view table,
                                 int timeoutSeconds) {
  const std::string folded = foldCase(table);
  auto known = tables_.find(folded);
  if (known == tables_.end()) {
    std::optional<TableInfo> info;
    try {
      for (const std::string& spelling : spellingsOf(table)) {
        info = ask(session, spelling, timeoutSeconds);
        if (info) {
          break;
        }
      }
    } catch (const DriverFailure&) {
      if (session.isDead()) {
        throw;  // that says nothing of the table, and is reported as what it is
      }
      info.reset();  // then nothing is known of it, and its rows cannot be changed
    } catch (const Error&) {
      info.reset();
    }
    known = tables_.emplace(folded, std::move(info)).first;
  }
  return known->second && !known->second->columns.empty() ? &*known->second : nullptr;
}

}  // namespace azcoll::odbc
