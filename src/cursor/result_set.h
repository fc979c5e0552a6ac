#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "data/variant.h"

namespace azcoll {

/// What a provider knows of one result column.
///
/// Changes are written back with it, so a provider says nothing rather than something uncertain:
/// `baseTable` stays empty when the query names the table more than once, and `isKey` is only set
/// when the result holds the table's whole primary key.
struct ColumnInfo {
  std::string name{};       ///< empty for an unnamed column
  std::string baseTable{};  ///< table the value comes from unchanged, or empty (computed, constant)
  std::string baseColumn{};  ///< column of that table, or empty
  bool isKey = false;        ///< part of the primary key of `baseTable`
  bool isIdentity = false;   ///< numbered by the database: left out of inserts
};

/// One result of an execution, all rows in memory. `rows` is row after row, `columns.size()` values
/// each.
struct ResultSet {
  std::vector<ColumnInfo> columns;
  std::vector<Variant> values;

  [[nodiscard]] std::size_t rowCount() const {
    return columns.empty() ? 0 : values.size() / columns.size();
  }
};

/// Everything one execution gave: its results in order and the rows changed by its statements (-1
/// when no statement reports a count).
struct ExecutionResult {
  std::vector<ResultSet> results;
  std::int64_t recordsAffected = -1;
};

}  // namespace azcoll
