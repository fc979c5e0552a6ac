#include "cursor/batch.h"

#include <algorithm>
#include <string_view>

#include "data/error.h"
#include "data/messages.h"
#include "data/text.h"
#include "text/letter_case.h"
#include "text/quoting.h"

namespace azcoll::cursor {
namespace {

using Columns = std::vector<std::size_t>;

constexpr bool isDigit(char character) { return character >= '0' && character <= '9'; }

constexpr bool isLetter(char character) {
  return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

/// Whether a name can stand in a statement as it is. No reserved word is a single letter or holds a
/// digit, so that such names need no list of reserved words; all others are quoted.
bool standsBare(std::string_view name) {
  const bool regular = !name.empty() && !isDigit(name.front()) &&
                       std::all_of(name.begin(), name.end(), [](char character) {
                         return isLetter(character) || isDigit(character) || character == '_';
                       });
  return regular && ((name.size() == 1 && isLetter(name.front())) ||
                     std::any_of(name.begin(), name.end(), isDigit));
}

void appendName(std::string& text, std::string_view name) {
  if (standsBare(name)) {
    text += name;
    return;
  }
  text += inQuotes(name, '[');
}

/// The one table that the columns (at least one) belong to.
const std::string& tableOf(const RowStore& rows, const Columns& columns) {
  const std::string& table = rows.columns()[columns.front()].baseTable;
  for (const std::size_t column : columns) {
    const ColumnInfo& info = rows.columns()[column];
    if (info.baseTable.empty() || info.baseColumn.empty()) {
      throw Error(join(messages::kColumnNotUpdatable, info.name));
    }
    // One statement changes one table.
    if (!equalsIgnoringCase(table, info.baseTable)) {
      throw Error(join(messages::kSeveralTables, table, ", ", info.baseTable));
    }
  }
  return table;
}

/// The key columns of a table, each once.
Columns keyColumns(const RowStore& rows, std::size_t row, std::string_view table) {
  const std::vector<ColumnInfo>& infos = rows.columns();
  Columns keys;
  for (std::size_t column = 0; column < infos.size(); ++column) {
    if (!infos[column].isKey || !equalsIgnoringCase(infos[column].baseTable, table)) {
      continue;
    }
    const auto twin = std::find_if(keys.begin(), keys.end(), [&](std::size_t key) {
      return equalsIgnoringCase(infos[key].baseColumn, infos[column].baseColumn);
    });
    if (twin == keys.end()) {
      keys.push_back(column);
    } else if (!sameValue(rows.original(row, *twin), rows.original(row, column))) {
      // Two rows of one table side by side: no telling which of them is meant.
      throw Error(join(messages::kAmbiguousTable, table));
    }
  }
  if (keys.empty()) {
    throw Error(join(messages::kNoKey, table));
  }
  return keys;
}

void appendCondition(ChangeStatement& statement, std::string_view column, const Variant& original) {
  appendName(statement.text, column);
  // `= ?` never holds for a missing value.
  if (original.isNull() || original.isEmpty()) {
    statement.text += " IS NULL";
    return;
  }
  statement.text += " = ?";
  statement.parameters.push_back(original);
}

ChangeStatement insertStatement(const RowStore& rows, std::size_t row,
                                const std::vector<bool>& given) {
  const std::vector<ColumnInfo>& infos = rows.columns();
  Columns columns;
  for (std::size_t column = 0; column < infos.size(); ++column) {
    // Columns without a value are left to their defaults, the identity to the database.
    if (given[column] && !infos[column].isIdentity) {
      columns.push_back(column);
    }
  }
  if (columns.empty()) {
    throw Error(messages::kNoValueToInsert);
  }
  ChangeStatement statement{.row = row, .table = tableOf(rows, columns)};
  statement.text = "INSERT INTO ";
  appendName(statement.text, statement.table);
  statement.parameters.reserve(columns.size());
  std::string markers;
  for (const std::size_t column : columns) {
    statement.text += markers.empty() ? " (" : ", ";
    appendName(statement.text, infos[column].baseColumn);
    markers += markers.empty() ? "?" : ", ?";
    statement.parameters.push_back(rows.row(row)[column]);
  }
  statement.text += join(") VALUES (", markers, ")");
  return statement;
}

ChangeStatement updateStatement(const RowStore& rows, std::size_t row,
                                const RowStore::Originals& originals) {
  const std::vector<ColumnInfo>& infos = rows.columns();
  Columns changed;
  for (const auto& [column, before] : originals) {
    if (infos[column].isIdentity) {
      throw Error(join(messages::kColumnNotUpdatable, infos[column].name));
    }
    changed.push_back(column);
  }
  // The result's order, not that of the edits: the same change gives the same text.
  std::sort(changed.begin(), changed.end());
  ChangeStatement statement{.row = row, .isUpdate = true, .table = tableOf(rows, changed)};
  const Columns keys = keyColumns(rows, row, statement.table);

  statement.text = "UPDATE ";
  appendName(statement.text, statement.table);
  std::string_view separator = " SET ";
  for (const std::size_t column : changed) {
    statement.text += separator;
    appendName(statement.text, infos[column].baseColumn);
    statement.text += " = ?";
    statement.parameters.push_back(rows.row(row)[column]);
    separator = ", ";
  }
  // The key finds the row; the changed columns must still hold what was read, or somebody else has
  // changed them in between.
  separator = " WHERE ";
  const auto addCondition = [&](std::size_t column) {
    statement.text += separator;
    appendCondition(statement, infos[column].baseColumn, rows.original(row, column));
    separator = " AND ";
  };
  std::for_each(keys.begin(), keys.end(), addCondition);
  for (const std::size_t column : changed) {
    if (!infos[column].isKey) {  // a key column is there already
      addCondition(column);
    }
  }
  return statement;
}

}  // namespace

ChangeStatement changeStatement(const RowStore& rows, std::size_t row) {
  const RowStore::Pending& pending = rows.pending().at(row);
  return pending.added ? insertStatement(rows, row, pending.given)
                       : updateStatement(rows, row, pending.originals);
}

}  // namespace azcoll::cursor
