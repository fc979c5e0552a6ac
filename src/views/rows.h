#pragma once

#include <memory>
#include <string>
#include <vector>

#include "data/recordset.h"
#include "data/variant.h"

namespace azcoll::views {

/// Columns and rows of a result.
struct Rows {
  std::vector<std::string> columns;
  std::vector<std::vector<Variant>> rows;
};

/// All rows that an open recordset shows, from its first one. Throws `Error` for one that is
/// closed.
[[nodiscard]] Rows readRows(Recordset& recordset);

/// The rows of a recordset and of the results after it; empty when it is null or closed.
[[nodiscard]] std::vector<Rows> readResults(std::shared_ptr<Recordset> recordset);

}  // namespace azcoll::views
