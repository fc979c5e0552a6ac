#pragma once

#include <string_view>

#include "cursor/result_set.h"
#include "odbc/catalogue.h"
#include "odbc/session.h"

namespace azcoll::odbc {

/// Settles for every result column where a change of it would be written to: base table, base
/// column, primary key, numbered columns.
///
/// What the driver told is kept where the query names the table once. Where the driver told
/// nothing, the query's own select list says it, if the catalogue's columns agree with the
/// result's. In doubt a column has no base table, and a change of it is refused.
void settleBaseColumns(ExecutionResult& execution, std::string_view batch, const Session& session,
                       Catalogue& catalogue, int timeoutSeconds);

}  // namespace azcoll::odbc
