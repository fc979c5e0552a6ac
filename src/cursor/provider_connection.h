#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cursor/native_connection.h"
#include "data/error_list.h"

namespace azcoll::cursor {

/// What the native providers have in common: settings, the list of errors, and results handed out
/// as client-side recordsets. What is left to a provider is the way to its database.
class ProviderConnection : public NativeConnection {
 public:
  void setConnectionString(std::string text) override { connectionString_ = std::move(text); }
  [[nodiscard]] std::string connectionString() const override { return connectionString_; }
  void setCommandTimeout(int seconds) override { timeoutSeconds_ = std::max(seconds, 0); }
  void setCursorLocation(CursorLocation /*location*/) override {}  // rows are always in memory
  std::shared_ptr<Recordset> execute(std::string_view commandText, std::int64_t& recordsAffected,
                                     CommandOption options) override;
  [[nodiscard]] Errors& errors() override { return errors_; }
  void record(std::vector<ErrorInfo> entries) override { errors_.record(std::move(entries)); }

 protected:
  /// Calls a procedure, giving it no values: every parameter takes its default. Returns its result
  /// sets, fetched whole, and the rows changed. Throws `Error` when there is no such procedure,
  /// when a parameter has no default, or when it fails; the failure is recorded in `errors()`.
  virtual ExecutionResult callByName(std::string_view name);

  /// Seconds for a statement; 0 waits without limit.
  [[nodiscard]] int timeoutSeconds() const { return timeoutSeconds_; }
  /// Throw `Error` when the connection is not open, or is open.
  void requireOpen() const;
  void requireClosed() const;

 private:
  std::string connectionString_;
  int timeoutSeconds_ = 30;
  ErrorList errors_;
};

}  // namespace azcoll::cursor
