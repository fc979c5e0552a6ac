#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cursor/client_cursor.h"
#include "data/connection.h"
#include "support/inner_command.h"

namespace azcoll::test {

/// A native connection that tells every text sent to the database: statements, the changes that a
/// batch update writes, and the names of procedures called.
///
/// Tracing (`ConnessioneTracciata`) stands above the recordsets and sees that an update was sent,
/// but not the statements that it consists of; this one stands below them.
class RecordingConnection final : public Connection,
                                  public StatementRunner,
                                  public std::enable_shared_from_this<RecordingConnection> {
 public:
  struct Listener {
    std::function<void(std::string_view)> statement;
    std::function<void(std::string_view)> procedure;
  };

  /// `inner` must be a native connection (one that is also a `StatementRunner`).
  RecordingConnection(std::shared_ptr<Connection> inner, Listener listener)
      : inner_{std::move(inner)},
        runner_{dynamic_cast<StatementRunner&>(*inner_)},
        listener_{std::move(listener)} {}

  void setConnectionString(std::string text) override { inner_->setConnectionString(text); }
  [[nodiscard]] std::string connectionString() const override { return inner_->connectionString(); }
  void setCommandTimeout(int seconds) override { inner_->setCommandTimeout(seconds); }
  void setCursorLocation(CursorLocation location) override { inner_->setCursorLocation(location); }
  void open(std::string_view user, std::string_view password, CommandOption options) override {
    inner_->open(user, password, options);
  }
  void close() override { inner_->close(); }
  [[nodiscard]] bool isOpen() const override { return inner_->isOpen(); }
  std::shared_ptr<Recordset> execute(std::string_view commandText, std::int64_t& recordsAffected,
                                     CommandOption /*options*/) override {
    ExecutionResult result = run(commandText);
    recordsAffected = result.recordsAffected;
    return result.results.empty() ? nullptr
                                  : openClientCursor(std::move(result), shared_from_this());
  }
  void beginTrans() override { inner_->beginTrans(); }
  void commitTrans() override { inner_->commitTrans(); }
  void rollbackTrans() override { inner_->rollbackTrans(); }
  [[nodiscard]] Errors& errors() override { return inner_->errors(); }
  [[nodiscard]] std::shared_ptr<Recordset> newRecordset() override { return newClientCursor(); }
  [[nodiscard]] std::shared_ptr<Command> newCommand() override {
    return std::make_shared<InnerCommand>(inner_, listener_.procedure);
  }

  ExecutionResult run(std::string_view text) override {
    listener_.statement(text);
    return runner_.run(text);
  }
  std::int64_t runChange(std::string_view text, const std::vector<Variant>& parameters) override {
    listener_.statement(text);
    return runner_.runChange(text, parameters);
  }

 private:
  std::shared_ptr<Connection> inner_;
  StatementRunner& runner_;
  Listener listener_;
};

}  // namespace azcoll::test
