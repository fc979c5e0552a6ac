#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "data/connection.h"

namespace azcoll {

/// One operation seen by a traced connection.
struct TraceEntry {
  std::string operation{};     ///< `Open`, `Execute`, `CommandExecute`, `BeginTrans`, `AddNew`, …
  std::string sql{};           ///< text as passed; empty when the operation has none
  std::vector<int> options{};  ///< option values as passed, in order
  std::vector<std::pair<std::string, Variant>> parameters{};  ///< of a command, before it runs
  std::optional<std::int64_t> rows{};  ///< rows returned, or changed; nothing when not known
  double milliseconds = 0;
  std::optional<ErrorInfo> error{};  ///< set when the operation failed
};

/// Receives every operation, in order: after it ended, or before it starts.
using TraceSink = std::function<void(const TraceEntry&)>;

/// Who hears of the operations; either may be empty.
struct TraceHooks {
  TraceSink after{};
  /// What this one throws is the failure of the operation, which then does not run.
  TraceSink before{};
};

/// A connection that passes everything on to another one and reports every operation.
///
/// The recordsets and commands that it makes are traced too; one that a caller made otherwise and
/// puts on this connection works on the connection behind it, unseen. Operations reported:
/// connection `Open`, `Close`, `Execute`, `BeginTrans`, `CommitTrans`, `RollbackTrans`; recordset
/// `Open`, `Close`, `AddNew`, `Update`, `CancelUpdate`, `UpdateBatch`, `Filter`, `Find`,
/// `NextRecordset`; command `CommandExecute`. Reading and moving are not reported: they touch no
/// database. A connection's `Open` reports no text, so that a password never reaches a trace.
///
/// `options` holds: connection `Open` and `Execute`, command `CommandExecute`: the command option;
/// recordset `Open`: cursor type, lock type, command option; `UpdateBatch`: which rows; `Find`:
/// rows to skip, direction, start. `sql` of `Filter` and `Find` is the criteria. A command's
/// parameters are listed when its owner has asked for them: tracing adds no work to the database. A
/// failure passes on unchanged after it was reported, even when the sink fails; a sink that fails
/// after a success makes the operation fail with its own exception.
class ConnessioneTracciata final : public Connection {
 public:
  /// `inner` must be set (throws `Error` otherwise); an empty `sink` reports to nobody.
  ConnessioneTracciata(std::shared_ptr<Connection> inner, TraceSink sink);
  ConnessioneTracciata(std::shared_ptr<Connection> inner, TraceHooks hooks);

  void setConnectionString(std::string text) override;
  [[nodiscard]] std::string connectionString() const override;
  void setCommandTimeout(int seconds) override;
  void setCursorLocation(CursorLocation location) override;
  void open(std::string_view user, std::string_view password, CommandOption options) override;
  void close() override;
  [[nodiscard]] bool isOpen() const override;
  std::shared_ptr<Recordset> execute(std::string_view commandText, std::int64_t& recordsAffected,
                                     CommandOption options) override;
  void beginTrans() override;
  void commitTrans() override;
  void rollbackTrans() override;
  [[nodiscard]] Errors& errors() override;
  [[nodiscard]] std::shared_ptr<Recordset> newRecordset() override;
  [[nodiscard]] std::shared_ptr<Command> newCommand() override;

  /// The connection underneath.
  [[nodiscard]] std::shared_ptr<Connection> decorated() const override { return inner_; }
  [[nodiscard]] NativeConnection* native() override { return inner_->native(); }

 private:
  std::shared_ptr<Connection> inner_;
  std::shared_ptr<const TraceHooks> hooks_;
};

}  // namespace azcoll
