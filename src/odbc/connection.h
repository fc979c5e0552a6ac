#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cursor/client_command.h"
#include "cursor/client_cursor.h"
#include "data/connection.h"
#include "data/error_list.h"
#include "odbc/catalogue.h"
#include "odbc/connection_string.h"
#include "odbc/diagnostics.h"
#include "odbc/parameters.h"
#include "odbc/session.h"
#include "odbc/transaction.h"

namespace azcoll::odbc {

/// A procedure by the name that it is called by, with what the server says of its parameters.
struct Procedure {
  std::string name;
  std::vector<DeclaredParameter> parameters;
};

/// The connection that callers hold: a session of the driver manager behind the contract of the
/// data layer. Every failure of the driver is recorded in `errors()`, without passwords.
class OdbcConnection final : public Connection,
                             public StatementRunner,
                             public std::enable_shared_from_this<OdbcConnection> {
 public:
  void setConnectionString(std::string text) override { connectionString_ = std::move(text); }
  [[nodiscard]] std::string connectionString() const override { return connectionString_; }
  void setCommandTimeout(int seconds) override { timeoutSeconds_ = seconds < 0 ? 0 : seconds; }
  void setCursorLocation(CursorLocation /*location*/) override {}
  void open(std::string_view user, std::string_view password, CommandOption options) override;
  void close() override;
  [[nodiscard]] bool isOpen() const override { return session_ != nullptr; }
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

  /// Completes the columns of a result for a change: number `index` of `count` of `batch`.
  [[nodiscard]] std::vector<ColumnInfo> settle(std::vector<ColumnInfo> columns,
                                               std::string_view batch, std::size_t index,
                                               std::size_t count);

  // For the commands of this connection.
  [[nodiscard]] std::shared_ptr<const Procedure> findProcedure(std::string_view name);
  [[nodiscard]] static std::vector<cursor::ProcedureParameter> parametersOf(
      const Procedure& procedure);
  std::shared_ptr<Recordset> callProcedure(const Procedure& procedure, std::vector<Variant>& values,
                                           std::int64_t& recordsAffected, int timeoutSeconds);

 private:
  template <typename Action>
  auto recorded(std::string_view statement, Action action);
  [[noreturn]] void fail(const DriverFailure& failure, std::string_view statement);
  void explain(ErrorInfo& entry) const;
  void settleTransaction(std::vector<ErrorInfo>& entries);
  [[nodiscard]] Session& session() const;
  ExecutionResult runOn(std::string_view text, std::vector<BoundParameter>& parameters,
                        int timeoutSeconds, bool escapes, Reading reading);
  ExecutionResult call(const Procedure& procedure, std::vector<Variant>& values,
                       int timeoutSeconds);
  ExecutionResult callInABatch(const Procedure& procedure, std::vector<Variant>& values,
                               int timeoutSeconds);
  [[nodiscard]] std::shared_ptr<Recordset> handOut(ExecutionResult result);

  std::string connectionString_;
  int timeoutSeconds_ = 30;
  Secrets secrets_;
  ErrorList errors_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<Transaction> transaction_;  // of the session
  Catalogue catalogue_;
};

}  // namespace azcoll::odbc
