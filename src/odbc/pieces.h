#pragma once

#include "data/variant.h"
#include "odbc/handles.h"
#include "odbc/values.h"

namespace azcoll::odbc {

/// One value of the current row, whatever its length, read in pieces with SQLGetData; `number`
/// counts columns from 1. What the driver says about the length is used, but never believed. Throws
/// `DriverFailure`, also for a value without an end (more than 1 GiB).
[[nodiscard]] Variant readInPieces(const Handle& statement, SQLUSMALLINT number, Carrier carrier);

}  // namespace azcoll::odbc
