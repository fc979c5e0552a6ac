#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "data/connection.h"
#include "data/error.h"
#include "platform/provider_factory.h"

namespace azcoll::test {

namespace detail {

/// The name of a pair of a connection string, in small letters and without blanks around it.
inline std::string keyOf(std::string_view pair) {
  std::string key;
  for (const char byte : pair.substr(0, pair.find('='))) {
    key += byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
  }
  key.erase(0, key.find_first_not_of(' '));
  key.erase(key.find_last_not_of(' ') + 1);
  return key;
}

/// The pairs of a connection string, without the empty ones.
inline std::vector<std::string_view> pairsOf(std::string_view text) {
  std::vector<std::string_view> pairs;
  while (!text.empty()) {
    std::size_t end = 0;  // of this pair: a semicolon that stands in no braces
    for (bool inBraces = false; end < text.size() && (inBraces || text[end] != ';'); ++end) {
      inBraces = text[end] == '{' || (inBraces && text[end] != '}');
    }
    if (end > 0) {
      pairs.push_back(text.substr(0, end));
    }
    text.remove_prefix(end < text.size() ? end + 1 : end);
  }
  return pairs;
}

/// A name that no other test process gives to what it makes on a server.
inline std::string ownName() {
  std::random_device random;
  std::array<char, 64> name{};
  std::snprintf(name.data(), name.size(), "azcoll_prova_%d_%08x", static_cast<int>(::getpid()),
                static_cast<unsigned>(random()));
  return name.data();
}

}  // namespace detail

/// The connection string with `key` set to `value`, whatever it was. `otherNames` are the names in
/// small letters, `key` among them, that mean the same.
inline std::string withKey(std::string_view text, std::string_view key, std::string_view value,
                           std::initializer_list<std::string_view> otherNames) {
  std::string result;
  for (const std::string_view pair : detail::pairsOf(text)) {
    if (std::find(otherNames.begin(), otherNames.end(), detail::keyOf(pair)) == otherNames.end()) {
      result += std::string{pair} + ";";
    }
  }
  return result + std::string{key} + "=" + std::string{value} + ";";
}

/// The value that a connection string gives under one of `names`, in small letters; empty when it
/// gives none.
inline std::string valueOf(std::string_view text, std::initializer_list<std::string_view> names) {
  for (const std::string_view pair : detail::pairsOf(text)) {
    const std::size_t sign = pair.find('=');
    if (sign != std::string_view::npos &&
        std::find(names.begin(), names.end(), detail::keyOf(pair)) != names.end()) {
      return std::string{pair.substr(sign + 1)};
    }
  }
  return {};
}

/// The connection string with another database in it.
inline std::string withDatabase(std::string_view text, std::string_view database) {
  return withKey(text, "Database", database, {"database", "initial catalog"});
}

/// The connection string with another user in it.
inline std::string withUser(std::string_view text, std::string_view user,
                            std::string_view password) {
  return withKey(withKey(text, "UID", user, {"uid", "user id", "user"}), "PWD", password,
                 {"pwd", "password"});
}

/// The turn of one test process on a server, as long as it lives: databases and logins are made and
/// dropped one after the other, because not every T-SQL server bears two at once. Others have
/// neither this lock nor a need of it.
class ServerTurn {
 public:
  /// `server` is a connection string of it.
  explicit ServerTurn(std::string_view server)
      : connection_{newConnectionFor(withDatabase(server, "master"))} {
    connection_->setCommandTimeout(100);
    try {
      connection_->open("", "", CommandOption::Unspecified);
      std::int64_t affected = 0;
      connection_->execute(
          "EXEC sp_getapplock @Resource = N'azcoll_prova', @LockMode = N'Exclusive', @LockOwner = "
          "N'Session', @LockTimeout = 90000",
          affected, CommandOption::Text);
    } catch (const Error&) {  // a server that cannot be reached is told by what needs it
      connection_->errors().clear();
    }
  }
  ServerTurn(const ServerTurn&) = delete;
  ServerTurn(ServerTurn&&) = delete;
  ServerTurn& operator=(const ServerTurn&) = delete;
  ServerTurn& operator=(ServerTurn&&) = delete;
  ~ServerTurn() = default;  // the lock ends with the session

 private:
  std::shared_ptr<Connection> connection_;
};

/// A database of this process's own on a server: created with the object, dropped with it. What a
/// killed process left behind is dropped by a later one.
class ServerDatabase {
 public:
  /// `server` is a connection string whose user may create databases. Throws `Error`.
  explicit ServerDatabase(std::string server) : server_{std::move(server)} {
    name_ = detail::ownName();
    const ServerTurn turn{server_};
    const std::shared_ptr<Connection> connection = open();
    dropForgotten(*connection);
    run(*connection, "CREATE DATABASE " + name_);
    connectionString_ = withDatabase(server_, name_);
  }
  ServerDatabase(const ServerDatabase&) = delete;
  ServerDatabase(ServerDatabase&&) = delete;
  ServerDatabase& operator=(const ServerDatabase&) = delete;
  ServerDatabase& operator=(ServerDatabase&&) = delete;
  ~ServerDatabase() {
    try {
      const ServerTurn turn{server_};
      drop(*open(), name_);
    } catch (const Error& error) {
      std::fprintf(stderr, "%s was not dropped: %s\n", name_.c_str(), error.what());
    }
  }

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] const std::string& connectionString() const { return connectionString_; }

 private:
  [[nodiscard]] std::shared_ptr<Connection> open() const {
    std::shared_ptr<Connection> connection = newConnectionFor(server_);
    connection->setCommandTimeout(100);
    connection->open("", "", CommandOption::Unspecified);
    return connection;
  }
  static std::shared_ptr<Recordset> run(Connection& connection, const std::string& text) {
    std::int64_t affected = 0;
    return connection.execute(text, affected, CommandOption::Text);
  }
  static void drop(Connection& connection, const std::string& name) {
    try {  // connections that a failed test left open
      run(connection, "ALTER DATABASE " + name + " SET SINGLE_USER WITH ROLLBACK IMMEDIATE");
    } catch (const Error&) {
      connection.errors().clear();
    }
    run(connection, "DROP DATABASE " + name);
  }
  static void dropForgotten(Connection& connection) {
    try {
      const std::shared_ptr<Recordset> names =
          run(connection,
              "SELECT name FROM sys.databases WHERE name LIKE 'azcoll[_]prova[_]%' AND create_date"
              " < DATEADD(HOUR, -12, GETDATE())");
      for (; names && !names->atEnd(); names->moveNext()) {
        drop(connection, names->fields().item(std::size_t{0}).value().text());
      }
    } catch (const Error&) {  // one that tidies up is no reason for a test to fail
      connection.errors().clear();
    }
  }

  std::string server_;
  std::string name_;
  std::string connectionString_;
};

}  // namespace azcoll::test
