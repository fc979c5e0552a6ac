#pragma once

#include <string_view>

#include "cursor/result_set.h"
#include "odbc/fetch.h"
#include "odbc/handles.h"

namespace azcoll::odbc {

/// Runs a text on a fresh statement, its parameters bound, and takes everything that it gives: all
/// results with columns, and the sum of the row counts. Never prepared: what a prepared batch
/// creates for itself (`#tables`) ends with it. Nothing is open on the connection afterwards.
/// Throws `DriverFailure`. With `Reading::Repeatable` the text may run a second time, for a driver
/// that has cut a value and cannot give it again.
///
/// The column descriptions are the driver's own; base tables and keys are for the caller to add.
[[nodiscard]] ExecutionResult runToEnd(const Handle& statement, std::string_view text,
                                       RereadAbilities reread, Reading reading);

/// The result that a catalogue function left open on the statement, in `values`.
[[nodiscard]] ResultSet takeResult(const Handle& statement, RereadAbilities reread);

}  // namespace azcoll::odbc
