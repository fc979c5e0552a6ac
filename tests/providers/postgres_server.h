#pragma once

#include <string>

namespace azcoll::test {

/// A PostgreSQL server of this process's own; it ends with the process, whatever ends that.
class PostgresServer {
 public:
  /// Starts it, which takes a few seconds.
  PostgresServer();
  PostgresServer(const PostgresServer&) = delete;
  PostgresServer(PostgresServer&&) = delete;
  PostgresServer& operator=(const PostgresServer&) = delete;
  PostgresServer& operator=(PostgresServer&&) = delete;
  ~PostgresServer();

  /// Empty when it could not be started.
  [[nodiscard]] const std::string& connectionString() const { return connectionString_; }
  [[nodiscard]] const std::string& failure() const { return failure_; }

 private:
  int lifeline_ = -1;  // the script serves until this end is closed
  int output_ = -1;    // and closes its own when it is done
  std::string connectionString_;
  std::string failure_;
};

}  // namespace azcoll::test
