#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "data/connection.h"
#include "support/picture.h"
#include "support/server_database.h"

namespace azcoll::test {

/// The example database on the server under test, for tests that change it hundreds of times: it is
/// made once and put back by emptying and refilling its tables, in a tenth of the time that making
/// it takes.
///
/// What a client did is looked at from a connection of the test's own, so that it is the database
/// that speaks and not the client.
class ServerExample {
 public:
  /// The one database of this process; null when no server is under test. Children of this process
  /// must open connections of their own (`connect`), and leave through `_Exit`, as `ChildProcess`
  /// does.
  static ServerExample* find();

  ServerExample(const ServerExample&) = delete;
  ServerExample(ServerExample&&) = delete;
  ServerExample& operator=(const ServerExample&) = delete;
  ServerExample& operator=(ServerExample&&) = delete;
  ~ServerExample() = default;

  [[nodiscard]] const std::string& connectionString() const { return database_.connectionString(); }

  /// A new open connection; `more` is added to the connection string.
  [[nodiscard]] std::shared_ptr<Connection> connect(const std::string& more = "") const;

  /// Puts every row back to what the scripts make, then runs `prepare` unless it is empty. The next
  /// identities are those that follow the example's, whatever a call that was undone has used up.
  void restore(const std::string& prepare = "");
  /// The next identities are those that follow the largest ones there.
  void resetIdentities();

  /// Every row of the database.
  [[nodiscard]] Lines picture();

  /// Writes every row of the database at once, and undoes it. Returns when no other connection holds
  /// a lock on any of them, as soon as the server has noticed that a client is gone; throws `Error`
  /// when that takes longer than the time-out of a command.
  void writeEveryRow();

  /// Runs `text` on the test's own connection; throws `Error`.
  void run(const std::string& text);
  [[nodiscard]] Lines rows(const std::string& text);

 private:
  explicit ServerExample(std::string server);
  void copyTables();

  ServerDatabase database_;
  std::shared_ptr<Connection> own_;
  std::string restore_;  ///< the batch that empties and refills
  std::string touch_;    ///< the batch that writes every row
  std::string read_;     ///< the batch that reads every row
  /// Tables with an identity, and the question for the largest one.
  std::vector<std::pair<std::string, std::string>> identities_;
};

}  // namespace azcoll::test
