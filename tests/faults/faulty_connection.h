#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "data/connection.h"
#include "data/tracing.h"

namespace azcoll::test {

/// How an operation fails.
enum class Way {
  Provider,    ///< the database refuses it: an entry in `Errors`
  Foreign,     ///< something else goes wrong: no entry
  LostBefore,  ///< the connection breaks before the database has seen it
  LostAfter,   ///< the connection breaks after the database has done it
};
inline constexpr Way kAllWays[]{Way::Provider, Way::Foreign, Way::LostBefore, Way::LostAfter};

[[nodiscard]] std::string nameOf(Way way);

/// Wraps a connection so that one of its operations fails. An operation is what a traced connection
/// reports. A lost connection takes its open transaction with it, as a server undoes what a client
/// that is gone has left, and refuses every later operation.
class FaultyConnection {
 public:
  explicit FaultyConnection(std::shared_ptr<Connection> inner);

  /// Lets operation `number` (from 0) fail in `way`, from here on counted anew.
  void failAt(std::size_t number, Way way);
  /// Lets nothing fail, and counts anew.
  void failNowhere();
  /// Calls `listener` before every operation.
  void listen(std::function<void()> listener) { listener_ = std::move(listener); }

  /// The connection to be handed to the service.
  [[nodiscard]] const std::shared_ptr<Connection>& connection() const { return outer_; }
  /// What was tried since the last `failAt` or `failNowhere`, the failed operation included.
  [[nodiscard]] const std::vector<TraceEntry>& operations() const { return operations_; }
  /// Whether the operation to fail was reached.
  [[nodiscard]] bool failed() const { return failed_; }

  /// Description of every simulated failure.
  static constexpr const char* kDescription = "Guasto simulato";

 private:
  void before(const TraceEntry& entry);
  void after(const TraceEntry& entry);
  [[noreturn]] void fail();
  void lose();

  static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

  std::shared_ptr<Connection> inner_;
  std::shared_ptr<Connection> outer_;
  std::vector<TraceEntry> operations_;
  std::function<void()> listener_;
  std::size_t number_ = kNowhere;
  Way way_ = Way::Provider;
  bool failed_ = false;
  bool lost_ = false;
};

}  // namespace azcoll::test
