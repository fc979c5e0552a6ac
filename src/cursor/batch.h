#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cursor/row_store.h"

namespace azcoll::cursor {

/// One statement of a batch update: T-SQL text with a `?` for every parameter.
struct ChangeStatement {
  std::size_t row = 0;    ///< the pending row that it sends
  bool isUpdate = false;  ///< it must change exactly one row
  std::string table{};    ///< as the provider names it
  std::string text{};
  std::vector<Variant> parameters{};
};

/// The statement that sends a pending row.
///
/// Added row: an INSERT of the columns that received a value, without those that the database
/// numbers. Changed row: an UPDATE of the changed columns, addressed by the table's key and by the
/// changed columns' original values.
///
/// Throws `Error` when the columns concerned do not belong to exactly one table, when one of them
/// belongs to none or is numbered by the database, when the result does not hold the table's key,
/// or when nothing was given for an added row.
[[nodiscard]] ChangeStatement changeStatement(const RowStore& rows, std::size_t row);

}  // namespace azcoll::cursor
