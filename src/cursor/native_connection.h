#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cursor/result_set.h"
#include "data/command.h"
#include "data/connection.h"
#include "data/error.h"
#include "data/recordset.h"

namespace azcoll {

/// A parameter as a procedure declares it.
struct ProcedureParameter {
  std::string name;  ///< with its leading `@`, where the server has one
  ParameterDirection direction = ParameterDirection::Input;
};

/// A stored procedure as its connection found it. Whoever holds it keeps the connection.
class NativeProcedure {
 public:
  explicit NativeProcedure(std::vector<ProcedureParameter> parameters)
      : parameters_{std::move(parameters)} {}
  NativeProcedure(const NativeProcedure&) = delete;
  NativeProcedure(NativeProcedure&&) = delete;
  NativeProcedure& operator=(const NativeProcedure&) = delete;
  NativeProcedure& operator=(NativeProcedure&&) = delete;
  virtual ~NativeProcedure() = default;

  [[nodiscard]] const std::vector<ProcedureParameter>& parameters() const { return parameters_; }

  /// Runs it and fetches everything. `values` holds one value for each parameter and receives those
  /// of the outputs; a parameter whose value is Empty is not passed: its default counts.
  /// `timeoutSeconds`: 0 waits without limit. Throws `Error`; a failure of the provider is
  /// recorded.
  virtual ExecutionResult call(std::vector<Variant>& values, int timeoutSeconds) = 0;

 private:
  std::vector<ProcedureParameter> parameters_;
};

/// A connection of one of this system's own providers; recordsets and commands of the client-side
/// cursor work on it.
///
/// Every operation throws `Error`; a failure of the provider is recorded in `errors()` first.
class NativeConnection : public Connection, public std::enable_shared_from_this<NativeConnection> {
 public:
  /// Name of the provider. A command works on the connections of the provider that it comes from.
  [[nodiscard]] virtual std::string_view provider() const = 0;

  /// Runs `text` and fetches everything.
  virtual ExecutionResult run(std::string_view text) = 0;
  /// Runs one INSERT, UPDATE or DELETE whose values are `?` markers; returns the rows changed.
  virtual std::int64_t runChange(std::string_view text, const std::vector<Variant>& parameters) = 0;

  /// The procedure of that name, with the parameters that it declares.
  [[nodiscard]] virtual std::shared_ptr<NativeProcedure> findProcedure(std::string_view name) = 0;

  /// Completes the columns of a result that has an origin, for a change on this connection. Where
  /// results come complete, one to be completed is another provider's: throws `Error`.
  [[nodiscard]] virtual std::vector<ColumnInfo> completeColumns(
      const std::vector<ColumnInfo>& columns, const ResultOrigin& origin);

  /// The CREATE statements, as T-SQL, of everything that the open database holds, in the order of
  /// creation; nothing when the provider does not keep them.
  [[nodiscard]] virtual std::optional<std::vector<std::string>> storedDefinitions() {
    return std::nullopt;
  }

  /// Puts the entries of a failure, the most informative one first, in the place of those in
  /// `errors()`.
  virtual void record(std::vector<ErrorInfo> entries) = 0;
  /// Records the entries, of which there is at least one, and throws the first. Every failure that
  /// says that it comes from a native provider is thrown here, and so is never without its entry.
  [[noreturn]] void failWith(std::vector<ErrorInfo> entries);

  /// Those of the client-side cursor.
  [[nodiscard]] std::shared_ptr<Recordset> newRecordset() override;
  [[nodiscard]] std::shared_ptr<Command> newCommand() override;

  [[nodiscard]] NativeConnection* native() override { return this; }
};

/// The native connection behind `connection`, which it keeps; null for null. Throws `Error` when
/// there is none.
[[nodiscard]] std::shared_ptr<NativeConnection> nativeOf(
    const std::shared_ptr<Connection>& connection);

}  // namespace azcoll
