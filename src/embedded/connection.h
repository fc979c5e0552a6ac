#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cursor/provider_connection.h"
#include "embedded/engine.h"

namespace azcoll::embedded {

/// The connection that callers hold: the engine behind the contract of the data layer. Every
/// failure of the engine is recorded in `errors()`.
class EmbeddedConnection final : public cursor::ProviderConnection {
 public:
  explicit EmbeddedConnection(const EngineOptions& options) : options_(options) {}

  [[nodiscard]] std::string_view provider() const override { return "embedded"; }
  void setCommandTimeout(int seconds) override;
  void open(std::string_view user, std::string_view password, CommandOption options) override;
  void close() override;
  [[nodiscard]] bool isOpen() const override { return engine_ != nullptr; }
  void beginTrans() override;
  void commitTrans() override;
  void rollbackTrans() override;

  ExecutionResult run(std::string_view text) override;
  std::int64_t runChange(std::string_view text, const std::vector<Variant>& parameters) override;
  [[nodiscard]] std::shared_ptr<NativeProcedure> findProcedure(std::string_view name) override;
  [[nodiscard]] std::optional<std::vector<std::string>> storedDefinitions() override;

  /// The engine of an open connection; for tests. Throws `Error` when it is closed.
  [[nodiscard]] Engine& engine() const;

 private:
  class Procedure;

  template <typename Action>
  auto recorded(std::string_view statement, Action action);
  [[noreturn]] void fail(int number, const std::string& message, std::string_view statement,
                         bool terminated, bool transactionLost);
  ExecutionResult call(const Routine& routine, std::vector<Variant>& values, int timeoutSeconds);

  EngineOptions options_;
  std::unique_ptr<Engine> engine_;
};

/// A closed connection whose engine works with `options`.
[[nodiscard]] std::shared_ptr<EmbeddedConnection> newConnectionWith(const EngineOptions& options);

}  // namespace azcoll::embedded
