#pragma once

#include <vector>

#include "data/variant.h"
#include "odbc/columns.h"
#include "odbc/handles.h"

namespace azcoll::odbc {

/// What a driver can do with SQLGetData beyond the minimum.
struct RereadAbilities {
  bool bound = false;    ///< read a column that is also bound
  bool inBlock = false;  ///< read a row of a block of several
};

/// Every row of the open result, row after row, and the result is read to its end. Throws
/// `DriverFailure`: a value is whole or the fetch fails.
///
/// Columns of known size are bound and come in blocks of rows. A value that is longer than its
/// column was said to be is read again in pieces; where the driver cannot do that in a block,
/// blocks have one row, and where it cannot do it at all, or a column has no limit, all columns are
/// read in pieces, in their order.
[[nodiscard]] std::vector<Variant> fetchAll(const Handle& statement,
                                            const std::vector<Column>& columns,
                                            RereadAbilities reread);

}  // namespace azcoll::odbc
