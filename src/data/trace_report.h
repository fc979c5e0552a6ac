#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include "data/error.h"
#include "data/recordset.h"
#include "data/tracing.h"

namespace azcoll::detail {

using SharedHooks = std::shared_ptr<const TraceHooks>;

/// An operation being traced: takes the time from its construction on.
class TracedOperation {
 public:
  TracedOperation(const TraceHooks& hooks, TraceEntry entry)
      : hooks_{hooks}, entry_{std::move(entry)} {}

  /// Asks whether the operation may start.
  void starting() {
    if (hooks_.before) {
      hooks_.before(entry_);
    }
  }

  [[nodiscard]] TraceEntry& entry() { return entry_; }

  /// Reports to the listener that the operation ended well.
  void succeeded() {
    stopClock();
    if (hooks_.after) {
      hooks_.after(entry_);
    }
  }

  /// Reports to the listener that the operation failed. What the listener itself may throw is
  /// dropped, so that the operation's own failure goes on.
  void failed(ErrorInfo error) noexcept {
    stopClock();
    entry_.error = std::move(error);
    try {
      if (hooks_.after) {
        hooks_.after(entry_);
      }
    } catch (...) {  // NOLINT(bugprone-empty-catch): the operation's own failure matters more
    }
  }

 private:
  void stopClock() {
    entry_.milliseconds =
        std::chrono::duration<double, std::milli>{std::chrono::steady_clock::now() - start_}
            .count();
  }

  const TraceHooks& hooks_;
  TraceEntry entry_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// Runs `work`, which may complete the entry it is given, and reports the operation whatever its
/// end. A failure passes on unchanged.
template <typename Work>
void traced(const SharedHooks& hooks, TraceEntry entry, const Work& work) {
  TracedOperation operation{*hooks, std::move(entry)};
  try {
    operation.starting();
    work(operation.entry());
  } catch (const Error& error) {
    operation.failed(error.info());
    throw;
  } catch (const std::exception& error) {
    operation.failed(ErrorInfo{.description = error.what()});
    throw;
  }
  operation.succeeded();
}

/// Rows to report for an execution: those returned, else those changed, where known.
[[nodiscard]] std::optional<std::int64_t> rowsOf(const Recordset* result, std::int64_t affected);

/// The connection that the traced objects underneath work on: the inner one of a traced connection,
/// any other as it is.
[[nodiscard]] std::shared_ptr<Connection> innermost(const std::shared_ptr<Connection>& connection);

/// The same recordset or command, traced; null stays null.
[[nodiscard]] std::shared_ptr<Recordset> tracedRecordset(std::shared_ptr<Recordset> inner,
                                                         SharedHooks hooks);
[[nodiscard]] std::shared_ptr<Command> tracedCommand(std::shared_ptr<Command> inner,
                                                     SharedHooks hooks);

}  // namespace azcoll::detail
