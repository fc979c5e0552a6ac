#include "platform/provider_factory.h"

#include <string>

#include "cursor/native_connection.h"
#include "data/error.h"
#include "embedded/embedded_connection.h"
#ifdef AZCOLL_WITH_ODBC
#include "odbc/odbc_connection.h"
#endif

namespace azcoll {
namespace {

std::shared_ptr<Connection> newServerConnection() {
#ifdef AZCOLL_WITH_ODBC
  return odbc::newConnection();
#else
  // The string itself is not repeated: it may hold a password.
  throw Error(
      "Nessun provider di questa versione accetta la stringa di connessione: il provider ODBC non "
      "è stato compilato (manca unixodbc-dev); senza, serve Provider=embedded;Data Source=FILE");
#endif
}

}  // namespace

std::shared_ptr<Connection> newConnectionFor(std::string_view connectionString) {
  std::shared_ptr<Connection> connection = embedded::isEmbeddedConnectionString(connectionString)
                                               ? embedded::newConnection()
                                               : newServerConnection();
  connection->setConnectionString(std::string{connectionString});
  return connection;
}

std::optional<std::vector<std::string>> storedDefinitions(Connection& connection) {
  NativeConnection* const native = connection.native();
  return native == nullptr ? std::nullopt : native->storedDefinitions();
}

}  // namespace azcoll
