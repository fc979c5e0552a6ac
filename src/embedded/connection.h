#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cursor/client_command.h"
#include "cursor/client_cursor.h"
#include "data/connection.h"
#include "data/error_list.h"
#include "embedded/engine.h"

namespace azcoll::embedded {

/// The connection that callers hold: the engine behind the contract of the data layer. Every
/// failure of the engine is recorded in `errors()`.
class EmbeddedConnection final : public Connection,
                                 public StatementRunner,
                                 public std::enable_shared_from_this<EmbeddedConnection> {
 public:
  explicit EmbeddedConnection(const EngineOptions& options) : options_(options) {}

  void setConnectionString(std::string text) override { connectionString_ = std::move(text); }
  [[nodiscard]] std::string connectionString() const override { return connectionString_; }
  void setCommandTimeout(int seconds) override;
  void setCursorLocation(CursorLocation /*location*/) override {}
  void open(std::string_view user, std::string_view password, CommandOption options) override;
  void close() override;
  [[nodiscard]] bool isOpen() const override { return engine_ != nullptr; }
  std::shared_ptr<Recordset> execute(std::string_view commandText, std::int64_t& recordsAffected,
                                     CommandOption options) override;
  void beginTrans() override;
  void commitTrans() override;
  void rollbackTrans() override;
  [[nodiscard]] Errors& errors() override { return errors_; }
  [[nodiscard]] std::shared_ptr<Recordset> newRecordset() override;
  [[nodiscard]] std::shared_ptr<Command> newCommand() override;

  ExecutionResult run(std::string_view text) override;
  std::int64_t runChange(std::string_view text, const std::vector<Variant>& parameters) override;

  // For the commands of this connection.
  [[nodiscard]] std::shared_ptr<const Routine> findProcedure(std::string_view name);
  [[nodiscard]] static std::vector<cursor::ProcedureParameter> parametersOf(const Routine& routine);
  /// A parameter whose value is Empty is not passed: its default counts.
  [[nodiscard]] std::shared_ptr<Recordset> callProcedure(const Routine& routine,
                                                         std::vector<Variant>& values,
                                                         std::int64_t& recordsAffected,
                                                         int timeoutSeconds);

  /// See `storedDefinitions`.
  [[nodiscard]] std::vector<std::string> definitions();

  /// The engine of an open connection; for tests. Throws `Error` when it is closed.
  [[nodiscard]] Engine& engine();

 private:
  template <typename Action>
  auto recorded(std::string_view statement, Action action);
  [[noreturn]] void fail(int number, const std::string& message, std::string_view statement,
                         bool terminated, bool transactionLost);
  [[nodiscard]] std::shared_ptr<Recordset> handOut(ExecutionResult result);

  EngineOptions options_;
  std::string connectionString_;
  int timeoutSeconds_ = 30;
  ErrorList errors_;
  std::unique_ptr<Engine> engine_;
};

/// A closed connection whose engine works with `options`.
[[nodiscard]] std::shared_ptr<EmbeddedConnection> newConnectionWith(const EngineOptions& options);

}  // namespace azcoll::embedded
