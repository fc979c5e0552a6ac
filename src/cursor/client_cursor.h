#pragma once

#include <memory>

#include "cursor/result_set.h"
#include "data/connection.h"

namespace azcoll {

/// A closed recordset, to be configured and opened. `setActiveConnection` accepts a connection that
/// has a native one behind it. Read-only unless opened with batch-optimistic locking, the one
/// locking with changes that a client-side cursor has. A source that gives no result leaves the
/// recordset closed.
[[nodiscard]] std::shared_ptr<Recordset> newClientCursor();

/// An open recordset over the results of an execution, positioned on the first row of the first
/// one; null when there is none. `connection` receives batch updates; null gives a detached
/// recordset. Throws `Error` when no native connection is behind it.
[[nodiscard]] std::shared_ptr<Recordset> openClientCursor(
    ExecutionResult result, const std::shared_ptr<Connection>& connection);

}  // namespace azcoll
