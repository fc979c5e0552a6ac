#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "cursor/packed_rows.h"
#include "odbc/columns.h"
#include "odbc/handles.h"

namespace azcoll::odbc {

/// What a driver can do with SQLGetData beyond the minimum.
struct RereadAbilities {
  bool bound = false;    ///< read a column that is also bound
  bool inBlock = false;  ///< read a row of a block of several
};

/// How a result may be read.
enum class Reading : std::uint8_t {
  Once,        ///< this is the only time: no value may get lost
  Repeatable,  ///< the statement can be run again: `CutValue` may say that it has to be
};

/// A value did not fit its column and cannot be read again; the statement has to be run once more.
struct CutValue {};

/// Every row of the open result, and the result is read to its end. Throws `DriverFailure`: a value
/// is whole or the fetch fails.
///
/// Columns of known size are bound and come in blocks of rows. A value that is longer than its
/// column was said to be is read again in pieces; where the driver cannot do that in a block,
/// blocks have one row. Where it cannot do it at all, blocks are read only from a repeatable
/// statement, and such a value throws `CutValue`; otherwise, and when a column has no limit, all
/// columns are read in pieces, in their order.
[[nodiscard]] std::shared_ptr<const cursor::PackedRows> fetchAll(const Handle& statement,
                                                                 const std::vector<Column>& columns,
                                                                 RereadAbilities reread,
                                                                 Reading reading);

}  // namespace azcoll::odbc
