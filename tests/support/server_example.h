#pragma once

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "data/connection.h"
#include "data/text.h"
#include "support/example_scripts.h"
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
  /// The connection string of the server under test; empty when there is none.
  [[nodiscard]] static std::string server();

  ServerExample(const ServerExample&) = delete;
  ServerExample(ServerExample&&) = delete;
  ServerExample& operator=(const ServerExample&) = delete;
  ServerExample& operator=(ServerExample&&) = delete;
  ~ServerExample() = default;

  [[nodiscard]] const std::string& connectionString() const { return database_.connectionString(); }

  /// A new open connection; `more` is added to the connection string.
  [[nodiscard]] std::shared_ptr<Connection> connect(const std::string& more = "") const;

  /// A connection to the database as it is; the one that the test before has let go of, where there
  /// is one, because a session costs more than most tests.
  [[nodiscard]] std::shared_ptr<Connection> reuse();

  /// Puts every row back to what the scripts make, then runs `prepare` unless it is empty. The next
  /// identities are those that follow the example's, whatever a call that was undone has used up.
  void restore(const std::string& prepare = "");
  /// Takes every row away.
  void empty();
  /// The next identities are those that follow the largest ones that `restore` made.
  void resetIdentities();

  /// Every row of the database. An identity that was given after `restore` shows as `new`: in which
  /// order the rows of one statement get theirs is the server's affair.
  [[nodiscard]] Lines picture();

  /// Writes every row of the database at once, and undoes it. Returns when no other connection
  /// holds a lock on any of them, as soon as the server has noticed that a client is gone; throws
  /// `Error` when that takes longer than the time-out of a command. Begins again when it was the
  /// victim of a deadlock.
  void writeEveryRow();

  /// Runs `text` on the test's own connection; throws `Error`.
  void run(const std::string& text);
  [[nodiscard]] Lines rows(const std::string& text);

 private:
  /// A table with an identity.
  struct Identity {
    std::string table;
    std::string column;
    std::size_t position = 0;  ///< of the column among the table's
    std::int64_t largest = 0;  ///< of the rows that `restore` made
  };

  explicit ServerExample(std::string server);
  void markNewIdentities(const std::string& table, Lines& lines) const;
  void copyTables();

  ServerDatabase database_;
  std::shared_ptr<Connection> own_;
  std::shared_ptr<Connection> kept_;  ///< handed out by `reuse`
  std::string empty_;                 ///< the batch that empties
  std::string restore_;               ///< the batch that empties and refills
  std::string touch_;                 ///< the batch that writes every row
  std::string read_;                  ///< the batch that reads every row
  std::vector<Identity> identities_;
};

namespace detail {

inline constexpr int kTimeoutSeconds = 30;

inline std::string lower(std::string text) {
  std::ranges::transform(text, text.begin(),
                         [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
  return text;
}

/// The columns of a table, as it declares them.
inline std::vector<std::string> columnsOf(Connection& connection, const std::string& table) {
  std::int64_t affected = 0;
  const std::shared_ptr<Recordset> found = connection.execute(
      join("SELECT * FROM ", table, " WHERE 1 = 0"), affected, CommandOption::Text);
  std::vector<std::string> names;
  for (std::size_t column = 0; column < found->fields().count(); ++column) {
    names.push_back(found->fields().item(column).name());
  }
  return names;
}

inline std::string listed(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) {
    list += list.empty() ? name : ", " + name;
  }
  return list;
}

}  // namespace detail

inline std::string ServerExample::server() {
  const char* const server = std::getenv("AZCOLL_TEST_CONNESSIONE");
  return server == nullptr ? std::string{} : std::string{server};
}

inline ServerExample* ServerExample::find() {
  static const std::unique_ptr<ServerExample> only{server().empty() ? nullptr
                                                                    : new ServerExample{server()}};
  return only.get();
}

inline ServerExample::ServerExample(std::string server)
    : database_{std::move(server)}, own_{connect()} {
  fillExample(*own_);
  copyTables();
}

inline std::shared_ptr<Connection> ServerExample::connect(const std::string& more) const {
  std::shared_ptr<Connection> connection = newConnectionFor(connectionString() + more);
  connection->setCommandTimeout(detail::kTimeoutSeconds);
  connection->setCursorLocation(CursorLocation::Client);
  connection->open("", "", CommandOption::Unspecified);
  return connection;
}

inline std::shared_ptr<Connection> ServerExample::reuse() {
  const bool isFree = kept_ && kept_.use_count() == 1 && kept_->isOpen();
  if (isFree) {
    endOpenTransaction(*kept_);
    kept_->errors().clear();
  } else {
    kept_ = connect();
  }
  return kept_;
}

/// Keeps a copy of every table, and makes the batches that work on all of them.
inline void ServerExample::copyTables() {
  std::map<std::string, std::string> identityOf;
  for (const std::string& line :
       rows("SELECT OBJECT_NAME(object_id) AS T, name FROM sys.columns WHERE is_identity = 1")) {
    const std::size_t bar = line.find('|');
    identityOf[detail::lower(line.substr(0, bar))] = line.substr(bar + 1);
  }
  std::string empty;
  std::string fill;
  for (const std::string& table : testTables()) {
    const std::string copy = "COPIA_" + table;
    const std::vector<std::string> columns = detail::columnsOf(*own_, table);
    const std::string list = detail::listed(columns);
    run(join("SELECT ", list, " INTO ", copy, " FROM ", table));
    empty.insert(0, join("DELETE FROM ", table, " "));
    const std::string refill =
        join("INSERT INTO ", table, " (", list, ") SELECT ", list, " FROM ", copy, " ");
    if (const auto found = identityOf.find(detail::lower(table)); found != identityOf.end()) {
      fill += join("SET IDENTITY_INSERT ", table, " ON ", refill, "SET IDENTITY_INSERT ", table,
                   " OFF ");
      const auto column = std::ranges::find(columns, detail::lower(found->second), detail::lower);
      identities_.push_back({.table = table,
                             .column = found->second,
                             .position = static_cast<std::size_t>(column - columns.begin())});
    } else {
      fill += refill;
    }
    touch_ += join("UPDATE ", table, " SET ", columns.back(), " = ", columns.back(), " ");
    read_ += join("SELECT * FROM ", table, " ");
  }
  empty_ = join("BEGIN TRANSACTION ", empty, "COMMIT TRANSACTION");
  restore_ = join("BEGIN TRANSACTION ", empty, fill, "COMMIT TRANSACTION");
}

inline void ServerExample::restore(const std::string& prepare) {
  run(restore_);
  for (Identity& each : identities_) {
    const Lines found = rows(join("SELECT MAX(", each.column, ") AS N FROM ", each.table));
    each.largest = std::stoll(found.at(0));
  }
  resetIdentities();
  if (!prepare.empty()) {
    run(prepare);
  }
}

inline void ServerExample::empty() { run(empty_); }

inline void ServerExample::resetIdentities() {
  for (const Identity& each : identities_) {
    run(join("DBCC CHECKIDENT ('", each.table, "', RESEED, ", each.largest, ")"));
  }
}

inline void ServerExample::markNewIdentities(const std::string& table, Lines& lines) const {
  const auto found = std::ranges::find(identities_, table, &Identity::table);
  if (found == identities_.end()) {
    return;
  }
  for (std::string& line : lines) {
    std::size_t start = 0;
    for (std::size_t column = 0; column < found->position; ++column) {
      start = line.find('|', start) + 1;
    }
    const std::size_t length = line.find('|', start) - start;
    if (std::stoll(line.substr(start, length)) > found->largest) {
      line.replace(start, length, "new");
    }
  }
}

inline Lines ServerExample::picture() {
  std::int64_t affected = 0;
  std::shared_ptr<Recordset> found = own_->execute(read_, affected, CommandOption::Text);
  Lines all;
  for (const std::string& table : testTables()) {
    Lines lines = linesOf(*found);
    markNewIdentities(table, lines);
    for (const std::string& line : lines) {
      all.push_back(join(table, "|", line));
    }
    found = found->nextRecordset();
  }
  std::ranges::sort(all);
  return all;
}

inline void ServerExample::writeEveryRow() {
  constexpr int kDeadlock = 1205;
  constexpr int kMostTimes = 20;
  for (int time = 1;; ++time) {
    try {
      run(join("BEGIN TRANSACTION ", touch_, "ROLLBACK TRANSACTION"));
      return;
    } catch (const Error& error) {
      run("IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION");
      // A client that is gone may have left a statement that the server still works on.
      if (error.info().nativeNumber != kDeadlock || time == kMostTimes) {
        throw;
      }
    }
  }
}

inline void ServerExample::run(const std::string& text) {
  std::int64_t affected = 0;
  own_->execute(text, affected, CommandOption::Text);
}

inline Lines ServerExample::rows(const std::string& text) { return rowsOf(*own_, text); }

}  // namespace azcoll::test
