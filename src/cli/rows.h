#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "data/recordset.h"
#include "data/variant.h"

namespace azcoll::cli {

/// Columns and rows to be printed.
struct Rows {
  std::vector<std::string> columns;
  std::vector<std::vector<Variant>> rows;
};

/// All rows that an open recordset shows, from its first one.
[[nodiscard]] Rows readRows(Recordset& recordset);

/// The rows of a recordset and of the results after it; empty when it is null or closed.
[[nodiscard]] std::vector<Rows> readResults(std::shared_ptr<Recordset> recordset);

/// Prints an aligned table with a header; columns of numbers stand to the right.
void printTable(std::ostream& out, const Rows& rows);

/// Prints RFC 4180 lines with a header. Null is an empty field, an empty text a quoted one.
void printCsv(std::ostream& out, const Rows& rows);

}  // namespace azcoll::cli
