#include "platform/provider_factory.h"

#include <string>

#include "data/error.h"
#include "embedded/embedded_connection.h"

namespace azcoll {

std::shared_ptr<Connection> newConnectionFor(std::string_view connectionString) {
  if (!embedded::isEmbeddedConnectionString(connectionString)) {
    // The string itself is not repeated: it may hold a password.
    throw Error(
        "Nessun provider di questa versione accetta la stringa di connessione: "
        "serve Provider=embedded;Data Source=FILE");
  }
  std::shared_ptr<Connection> connection = embedded::newConnection();
  connection->setConnectionString(std::string{connectionString});
  return connection;
}

}  // namespace azcoll
