#pragma once

#include <memory>
#include <string>

#include "data/connection.h"
#include "embedded/embedded_connection.h"
#ifdef AZCOLL_TEST_ADO
#include "ado/connection.h"
#endif
#include "platform/provider_factory.h"
#include "support/example_scripts.h"
#include "support/server_database.h"
#include "support/server_example.h"

/// Databases for tests: the schema of `schema/` with its example data, on the embedded engine in
/// memory, or on the server that the environment variable AZCOLL_TEST_CONNESSIONE names.
namespace azcoll::test {

/// Connection string of a database of this process's own on the server under test, which is created
/// at the first question and dropped at the end; empty when the tests run on the embedded engine.
inline const std::string& serverConnectionString() {
  static const std::string none;
  const ServerExample* const server = ServerExample::find();
  return server == nullptr ? none : server->connectionString();
}

namespace detail {

/// The embedded engine; in the Windows tests behind automation objects, as callers hand them over.
inline std::shared_ptr<Connection> newEmbedded() {
#ifdef AZCOLL_TEST_ADO
  return ado::newConnection();
#else
  return embedded::newConnection();
#endif
}

inline std::shared_ptr<Connection> openMemory() {
  std::shared_ptr<Connection> connection = newEmbedded();
  connection->setConnectionString("Provider=embedded;Data Source=:memory:");
  connection->setCommandTimeout(100);
  connection->setCursorLocation(CursorLocation::Client);
  connection->open("", "", CommandOption::Unspecified);
  return connection;
}

}  // namespace detail

/// Connection string of a second database of this process's own on the server under test, with none
/// of the company's tables and routines, for tests that make them by other ways; empty as above.
inline std::string emptyServerDatabase() {
  if (ServerExample::server().empty()) {
    return {};
  }
  static const ServerDatabase own{ServerExample::server()};
  const std::shared_ptr<Connection> connection = newConnectionFor(own.connectionString());
  connection->setCommandTimeout(100);
  connection->open("", "", CommandOption::Unspecified);
  dropExample(*connection);
  connection->close();
  return own.connectionString();
}

/// An open connection to a fresh database with the tables, the procedure and the function, but
/// without rows. On a server it is this process's own database, emptied first.
inline std::shared_ptr<Connection> openSchema() {
  if (ServerExample* const server = ServerExample::find()) {
    const std::shared_ptr<Connection> connection = server->reuse();
    server->empty();
    return connection;
  }
  std::shared_ptr<Connection> connection = detail::openMemory();
  fillSchema(*connection);
  return connection;
}

/// The same with the example data and the documents.
inline std::shared_ptr<Connection> openExample() {
  if (ServerExample* const server = ServerExample::find()) {
    const std::shared_ptr<Connection> connection = server->reuse();  // ends what is open on it
    server->restore();
    return connection;
  }
  std::shared_ptr<Connection> connection = detail::openMemory();
  fillExample(*connection);
  return connection;
}

}  // namespace azcoll::test
