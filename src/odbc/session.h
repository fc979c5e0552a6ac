#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "odbc/fetch.h"
#include "odbc/handles.h"

namespace azcoll::odbc {

/// Whether the driver looks for its `{…}` escapes in a text.
enum class Escapes : std::uint8_t { LeftAlone, Translated };

/// A live connection of the driver manager. Destroying it undoes an open transaction and
/// disconnects. Every operation throws `DriverFailure`.
class Session {
 public:
  /// Connects; waits at most `timeoutSeconds` (0: as long as the driver does).
  Session(std::string_view connectionString, int timeoutSeconds);
  Session(const Session&) = delete;
  Session(Session&&) = delete;
  Session& operator=(const Session&) = delete;
  Session& operator=(Session&&) = delete;
  ~Session();

  /// A fresh statement that waits at most `timeoutSeconds` (0: without limit).
  [[nodiscard]] std::unique_ptr<Handle> newStatement(int timeoutSeconds, Escapes escapes) const;

  /// Whether every statement counts at once.
  [[nodiscard]] bool isAutocommit() const { return autocommit_; }
  void setAutocommit(bool on);
  /// SQL_COMMIT or SQL_ROLLBACK.
  void endTransaction(SQLSMALLINT completion);

  /// Whether the driver knows that the server is gone.
  [[nodiscard]] bool isDead() const;

  [[nodiscard]] RereadAbilities reread() const { return reread_; }
  /// Whether the server is one that speaks T-SQL.
  [[nodiscard]] bool speaksTSql() const { return speaksTSql_; }

 private:
  void askAbilities();

  Handle environment_;
  std::unique_ptr<Handle> connection_;  // after the environment was given its version
  bool connected_ = false;
  bool autocommit_ = true;
  RereadAbilities reread_;
  bool speaksTSql_ = false;
};

}  // namespace azcoll::odbc
