#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "data/connection.h"
#include "data/error.h"
#include "platform/provider_factory.h"
#include "support/server_database.h"

namespace azcoll::test {

/// A login of a test's own, and the user of the same name in the test's database: without any right
/// but to connect, until it is given some. Made with the object, gone with it.
class ServerLogin {
 public:
  /// `database` is the connection string of a database as somebody who may make logins and users.
  /// Throws `Error`.
  explicit ServerLogin(std::string database)
      : owner_{std::move(database)}, name_{detail::ownName()} {
    const ServerTurn turn{owner_};
    const std::shared_ptr<Connection> connection = open();
    dropForgotten(*connection);
    run(*connection, "CREATE LOGIN " + name_ + " WITH PASSWORD = N'" + kPassword + "'");
    run(*connection, "CREATE USER " + name_ + " FOR LOGIN " + name_);
    connectionString_ = withUser(owner_, name_, kPassword);
  }
  ServerLogin(const ServerLogin&) = delete;
  ServerLogin(ServerLogin&&) = delete;
  ServerLogin& operator=(const ServerLogin&) = delete;
  ServerLogin& operator=(ServerLogin&&) = delete;
  ~ServerLogin() {
    try {
      const ServerTurn turn{owner_};
      const std::shared_ptr<Connection> connection = open();
      run(*connection, "DROP USER " + name_);
      run(*connection, "DROP LOGIN " + name_);
    } catch (const Error& error) {
      std::fprintf(stderr, "%s was not dropped: %s\n", name_.c_str(), error.what());
    }
  }

  static constexpr const char* kPassword = "Segretissima_9x";

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] const std::string& connectionString() const { return connectionString_; }

  /// Puts the user into a role of the database.
  void join(const std::string& role) const {
    run(*open(), "ALTER ROLE " + role + " ADD MEMBER " + name_);
  }

 private:
  [[nodiscard]] std::shared_ptr<Connection> open() const {
    std::shared_ptr<Connection> connection = newConnectionFor(owner_);
    connection->open("", "", CommandOption::Unspecified);
    return connection;
  }
  static std::shared_ptr<Recordset> run(Connection& connection, const std::string& text) {
    std::int64_t affected = 0;
    return connection.execute(text, affected, CommandOption::Text);
  }
  /// What a killed process left behind. Its user went with the database.
  static void dropForgotten(Connection& connection) {
    try {
      const std::shared_ptr<Recordset> names =
          run(connection,
              "SELECT name FROM sys.server_principals WHERE name LIKE 'azcoll[_]prova[_]%'"
              " AND create_date < DATEADD(HOUR, -12, GETDATE())");
      for (; names && !names->atEnd(); names->moveNext()) {
        run(connection, "DROP LOGIN " + names->fields().item(std::size_t{0}).value().text());
      }
    } catch (const Error&) {  // one that tidies up is no reason for a test to fail
      connection.errors().clear();
    }
  }

  std::string owner_;
  std::string name_;
  std::string connectionString_;
};

}  // namespace azcoll::test
