#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "data/connection.h"
#include "data/text.h"

/// A database as lines of text, so that two states of it can be compared row by row.
namespace azcoll::test {

using Lines = std::vector<std::string>;

/// Rows that stand in one picture of the database and not in the other, as "TABLE|value|value…".
struct Difference {
  Lines gone;
  Lines come;
};

/// Every row from the current one on, its values parted by `|`; Null shows as NULL.
inline Lines linesOf(Recordset& found) {
  Lines lines;
  for (; !found.atEnd(); found.moveNext()) {
    std::string line;
    for (std::size_t column = 0; column < found.fields().count(); ++column) {
      const Variant value = found.fields().item(column).value();
      line += column == 0 ? "" : "|";
      line += value.isNull() ? "NULL" : value.text();
    }
    lines.push_back(line);
  }
  return lines;
}

/// Every row of a query.
inline Lines rowsOf(Connection& connection, const std::string& sql) {
  std::int64_t affected = 0;
  return linesOf(*connection.execute(sql, affected, CommandOption::Text));
}

/// Every row of `tables`, in order.
template <typename Tables>
Lines pictureOf(Connection& connection, const Tables& tables) {
  Lines all;
  for (const auto& table : tables) {
    for (const std::string& line : rowsOf(connection, join("SELECT * FROM ", table))) {
      all.push_back(join(table, "|", line));
    }
  }
  std::ranges::sort(all);
  return all;
}

inline Difference difference(const Lines& before, const Lines& after) {
  Difference result;
  std::ranges::set_difference(before, after, std::back_inserter(result.gone));
  std::ranges::set_difference(after, before, std::back_inserter(result.come));
  return result;
}

/// `lines` of one table, without the table's name.
inline Lines ofTable(const Lines& lines, std::string_view table) {
  Lines result;
  for (const std::string& line : lines) {
    if (line.starts_with(join(table, "|"))) {
      result.push_back(line.substr(table.size() + 1));
    }
  }
  return result;
}

/// Whether the connection holds an open transaction; it is rolled back if so.
inline bool endOpenTransaction(Connection& connection) {
  try {
    connection.rollbackTrans();
    return true;
  } catch (const Error&) {
    return false;
  }
}

}  // namespace azcoll::test
