#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cursor/provider_connection.h"
#include "odbc/catalogue.h"
#include "odbc/connection_string.h"
#include "odbc/diagnostics.h"
#include "odbc/parameters.h"
#include "odbc/session.h"
#include "odbc/transaction.h"

namespace azcoll::odbc {

/// The connection that callers hold: a session of the driver manager behind the contract of the
/// data layer. Every failure of the driver is recorded in `errors()`, without passwords.
class OdbcConnection final : public cursor::ProviderConnection {
 public:
  [[nodiscard]] std::string_view provider() const override { return "odbc"; }
  void open(std::string_view user, std::string_view password, CommandOption options) override;
  void close() override;
  [[nodiscard]] bool isOpen() const override { return session_ != nullptr; }
  void beginTrans() override;
  void commitTrans() override;
  void rollbackTrans() override;

  ExecutionResult run(std::string_view text) override;
  std::int64_t runChange(std::string_view text, const std::vector<Variant>& parameters) override;
  [[nodiscard]] std::shared_ptr<NativeProcedure> findProcedure(std::string_view name) override;
  [[nodiscard]] std::vector<ColumnInfo> completeColumns(const std::vector<ColumnInfo>& columns,
                                                        const ResultOrigin& origin) override;

 private:
  class Procedure;

  template <typename Action>
  auto recorded(std::string_view statement, Action action);
  [[noreturn]] void fail(const DriverFailure& failure, std::string_view statement);
  void explain(ErrorInfo& entry) const;
  void noteTransaction(std::vector<ErrorInfo>& entries);
  [[nodiscard]] Session& session() const;
  ExecutionResult runOn(std::string_view text, std::vector<BoundParameter>& parameters,
                        int timeoutSeconds, Escapes escapes, Reading reading);
  ExecutionResult callByName(std::string_view name) override;
  ExecutionResult call(const Procedure& procedure, std::vector<Variant>& values,
                       int timeoutSeconds);
  ExecutionResult callInOneStatement(const Procedure& procedure, std::vector<Variant>& values,
                                     int timeoutSeconds);
  ExecutionResult callInABatch(const Procedure& procedure, std::vector<Variant>& values,
                               int timeoutSeconds);

  Secrets secrets_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<Transaction> transaction_;  // of the session
  Catalogue catalogue_;
};

}  // namespace azcoll::odbc
