#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cursor/result_set.h"
#include "data/connection.h"

namespace azcoll {

/// What the client-side cursor needs of a native provider's connection. The native connections
/// implement it beside `Connection`.
class StatementRunner {
 public:
  StatementRunner() = default;
  StatementRunner(const StatementRunner&) = delete;
  StatementRunner(StatementRunner&&) = delete;
  StatementRunner& operator=(const StatementRunner&) = delete;
  StatementRunner& operator=(StatementRunner&&) = delete;
  virtual ~StatementRunner() = default;

  /// Runs `text` and fetches everything. Records a failure in the connection's `Errors`.
  virtual ExecutionResult run(std::string_view text) = 0;

  /// Runs one INSERT, UPDATE or DELETE whose values are `?` markers; returns the rows changed.
  virtual std::int64_t runChange(std::string_view text, const std::vector<Variant>& parameters) = 0;
};

/// A closed recordset, to be configured and opened. `setActiveConnection` accepts a connection that
/// is also a `StatementRunner`. Read-only unless opened with batch-optimistic locking, the one
/// locking with changes that a client-side cursor has. A source that gives no result leaves the
/// recordset closed.
[[nodiscard]] std::shared_ptr<Recordset> newClientCursor();

/// An open recordset over the results of an execution, positioned on the first row of the first
/// one; null when there is none. `connection` (also a `StatementRunner`) receives batch updates;
/// null gives a detached recordset.
[[nodiscard]] std::shared_ptr<Recordset> openClientCursor(ExecutionResult result,
                                                          std::shared_ptr<Connection> connection);

}  // namespace azcoll
