#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "data/connection.h"

namespace CLI {
class App;
}

namespace azcoll::cli {

/// The database that a subcommand works on.
struct DatabaseOptions {
  std::string file;              ///< `--db`
  std::string connectionString;  ///< `--connessione`

  /// Declares the two options.
  void setup(CLI::App& command);
};

/// Connection string of the embedded engine for a file. Throws `UsageError` for a name that no
/// file can have.
[[nodiscard]] std::string embeddedConnectionString(std::string_view file);

/// Opens a connection with a client-side cursor. Throws `OpenError`; its message says what to check
/// and does not repeat the string, which may hold a password.
[[nodiscard]] std::shared_ptr<Connection> openConnection(const std::string& connectionString);

/// Opens the database that the options name. Throws `UsageError` unless exactly one is given, and
/// `OpenError`.
[[nodiscard]] std::shared_ptr<Connection> openDatabase(const DatabaseOptions& options);

}  // namespace azcoll::cli
