#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cursor/client_cursor.h"
#include "cursor/native_connection.h"

namespace azcoll::test {

/// A native connection that tells every text sent to the database: statements, the changes that a
/// batch update writes, and the names of procedures called.
///
/// Tracing (`ConnessioneTracciata`) stands above the recordsets and sees that an update was sent,
/// but not the statements that it consists of; this one stands below them.
class RecordingConnection final : public NativeConnection {
 public:
  struct Listener {
    std::function<void(std::string_view)> statement;
    std::function<void(std::string_view)> procedure;
  };

  /// `inner` must be a native connection.
  RecordingConnection(const std::shared_ptr<Connection>& inner, Listener listener)
      : inner_{nativeOf(inner)}, listener_{std::move(listener)} {}

  [[nodiscard]] std::string_view provider() const override { return inner_->provider(); }
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
    return openClientCursor(std::move(result), shared_from_this());
  }
  void beginTrans() override { inner_->beginTrans(); }
  void commitTrans() override { inner_->commitTrans(); }
  void rollbackTrans() override { inner_->rollbackTrans(); }
  [[nodiscard]] Errors& errors() override { return inner_->errors(); }

  ExecutionResult run(std::string_view text) override {
    listener_.statement(text);
    return inner_->run(text);
  }
  std::int64_t runChange(std::string_view text, const std::vector<Variant>& parameters) override {
    listener_.statement(text);
    return inner_->runChange(text, parameters);
  }

  [[nodiscard]] std::shared_ptr<NativeProcedure> findProcedure(std::string_view name) override {
    return std::make_shared<RecordedProcedure>(inner_->findProcedure(name), std::string{name},
                                               listener_.procedure);
  }
  [[nodiscard]] std::vector<ColumnInfo> completeColumns(const std::vector<ColumnInfo>& columns,
                                                        const ResultOrigin& origin) override {
    return inner_->completeColumns(columns, origin);
  }
  [[nodiscard]] std::optional<std::vector<std::string>> storedDefinitions() override {
    return inner_->storedDefinitions();
  }
  void record(std::vector<ErrorInfo> entries) override { inner_->record(std::move(entries)); }

 private:
  class RecordedProcedure final : public NativeProcedure {
   public:
    RecordedProcedure(std::shared_ptr<NativeProcedure> inner, std::string name,
                      std::function<void(std::string_view)> listener)
        : NativeProcedure{inner->parameters()},
          inner_{std::move(inner)},
          name_{std::move(name)},
          listener_{std::move(listener)} {}

    ExecutionResult call(std::vector<Variant>& values, int timeoutSeconds) override {
      listener_(name_);
      return inner_->call(values, timeoutSeconds);
    }

   private:
    std::shared_ptr<NativeProcedure> inner_;
    std::string name_;
    std::function<void(std::string_view)> listener_;
  };

  std::shared_ptr<NativeConnection> inner_;
  Listener listener_;
};

}  // namespace azcoll::test
