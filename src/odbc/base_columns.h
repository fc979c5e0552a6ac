#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "cursor/result_set.h"
#include "odbc/catalogue.h"
#include "odbc/session.h"

namespace azcoll::odbc {

/// Settles for every column of a result where a change of it would be written to: base table, base
/// column, primary key, numbered columns. `columns` say what the driver reported; the result was
/// number `index` of `count` that `batch` gave.
///
/// What the driver reported is kept where the query names the table once. Where the driver reported
/// nothing, the query's own select list says it, if the catalogue's columns agree with the
/// result's. In doubt a column has no base table, and a change of it is refused.
[[nodiscard]] std::vector<ColumnInfo> completedColumns(std::vector<ColumnInfo> columns,
                                                       std::string_view batch, std::size_t index,
                                                       std::size_t count, const Session& session,
                                                       Catalogue& catalogue, int timeoutSeconds);

}  // namespace azcoll::odbc
