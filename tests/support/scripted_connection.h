#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cursor/native_connection.h"
#include "data/connection.h"

namespace azcoll::test {

/// One operation seen by a scripted connection, in the order in which they came.
struct Operation {
  std::string name{};  ///< `Execute`, `BeginTrans`, `Open`, `UpdateBatch`, `CommandExecute`, …
  std::string sql{};   ///< text of the statement, of the recordset's source, of the criteria
  std::vector<int> options{};                                 ///< option values as passed
  std::vector<std::pair<std::string, Variant>> parameters{};  ///< of a command or a batch change
};

/// How a scripted statement fails.
enum class Failure : std::uint8_t {
  Provider,  ///< the database refuses it: the connection's `Errors` get an entry
  Lost,      ///< the same, because the connection is gone
  Own,       ///< an `Error` that does not come from the database
  Foreign    ///< any other exception
};

/// A row set from column names and values, row after row. Every column belongs to `table`, so that
/// changes can be sent back.
[[nodiscard]] ResultSet rowSet(const std::vector<std::string>& names, std::vector<Variant> values,
                               const std::string& table = {});

/// Input and output of one call of a stored procedure.
struct ProcedureAnswer {
  ResultSet rows{};
  std::map<std::string, Variant> outputs{};  ///< by parameter name, with its `@`
};

/// `Errors` that a scripted failure fills.
class ScriptedErrors final : public Errors {
 public:
  [[nodiscard]] std::size_t count() const override { return entries_.size(); }
  [[nodiscard]] ErrorInfo item(std::size_t index) const override;
  void clear() override;
  void record(std::vector<ErrorInfo> entries) { entries_ = std::move(entries); }
  [[nodiscard]] int clears() const { return clears_; }

 private:
  std::vector<ErrorInfo> entries_;
  int clears_ = 0;
};

/// A connection whose answers a test writes down beforehand. It reports every operation.
///
/// A statement is answered by the last rule for its exact text, else by the last rule for a prefix
/// of it. Without a rule a SELECT gives no rows and the columns scripted for its table, anything
/// else is accepted. `CommandExecute` has the options type, time-out, prepared, execute option, and
/// 1 when the command works on this connection. The steps of a transaction have the number of
/// errors that the connection holds when they come.
class ScriptedConnection final : public NativeConnection {
 public:
  /// What a statement gives, or how it fails.
  struct Rule {
    ResultSet rows{};
    std::optional<Failure> failure{};
    std::string description{};
  };

  // Script.
  void answer(std::string text, ResultSet rows) { exact_[std::move(text)] = Rule{std::move(rows)}; }
  void answerPrefix(std::string prefix, ResultSet rows) {
    prefixes_.emplace_back(std::move(prefix), Rule{std::move(rows)});
  }
  /// Makes every statement that begins with `prefix` fail; also an operation by name, as
  /// `BeginTrans` or `CommandRelease`, and a batch update as `UpdateBatch` and the recordset's
  /// source.
  void fail(std::string prefix, Failure failure, std::string description) {
    prefixes_.emplace_back(std::move(prefix), Rule{{}, failure, std::move(description)});
  }
  /// Columns that `SELECT *` gives for a table when no rows are scripted.
  void columns(const std::string& table, const std::vector<std::string>& names);
  /// Answers every call of a procedure; reads the call's parameters, may throw by `raise`.
  std::function<ProcedureAnswer(Parameters&)> onProcedure = [](Parameters&) {
    return ProcedureAnswer{};
  };

  /// A database without the procedure: nobody can say what its parameters are.
  bool procedureIsUnknown = false;
  /// Is given the recordset of every procedure call before the caller is.
  std::function<void(Recordset&)> onProcedureRows = [](Recordset&) {};
  /// Sees every operation when it comes, before it is carried out.
  std::function<void(const Operation&)> onOperation = [](const Operation&) {};

  // Record.
  std::vector<Operation> operations;
  [[nodiscard]] const ScriptedErrors& recordedErrors() const { return errors_; }

  [[noreturn]] void raise(Failure failure, const std::string& description,
                          const std::string& statement);
  void report(Operation operation);

  /// The rule for `text`, or null; a rule that fails throws.
  const Rule* obey(std::string_view text);

  // Connection.
  void setConnectionString(std::string text) override;
  [[nodiscard]] std::string connectionString() const override { return text_; }
  void setCommandTimeout(int seconds) override;
  void setCursorLocation(CursorLocation location) override;
  void open(std::string_view user, std::string_view password, CommandOption options) override;
  void close() override;
  [[nodiscard]] bool isOpen() const override { return open_; }
  std::shared_ptr<Recordset> execute(std::string_view commandText, std::int64_t& recordsAffected,
                                     CommandOption options) override;
  void beginTrans() override { transaction("BeginTrans"); }
  void commitTrans() override { transaction("CommitTrans"); }
  void rollbackTrans() override { transaction("RollbackTrans"); }
  [[nodiscard]] Errors& errors() override { return errors_; }
  [[nodiscard]] std::shared_ptr<Recordset> newRecordset() override;
  [[nodiscard]] std::shared_ptr<Command> newCommand() override;

  // NativeConnection.
  [[nodiscard]] std::string_view provider() const override { return "scripted"; }
  ExecutionResult run(std::string_view text) override;
  std::int64_t runChange(std::string_view text, const std::vector<Variant>& parameters) override;
  /// Commands are the script's own and ask for none.
  [[nodiscard]] std::shared_ptr<NativeProcedure> findProcedure(std::string_view name) override;
  void record(std::vector<ErrorInfo> entries) override { errors_.record(std::move(entries)); }

 private:
  [[nodiscard]] std::shared_ptr<ScriptedConnection> self();
  void transaction(const char* name);

  [[nodiscard]] ResultSet noRows(std::string_view text) const;

  std::map<std::string, Rule> exact_;
  std::vector<std::pair<std::string, Rule>> prefixes_;
  std::map<std::string, std::vector<ColumnInfo>> columns_;
  ScriptedErrors errors_;
  std::string text_;
  bool open_ = true;
};

}  // namespace azcoll::test
