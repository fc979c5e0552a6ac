#include "cli/commands/database_options.h"

#include <CLI/App.hpp>
#include <cstddef>
#include <fmt/format.h>
#include <vector>

#include "cli/commands/failure_advice.h"
#include "cli/console.h"
#include "data/error.h"
#include "deployment/failure.h"
#include "platform/provider_factory.h"
#include "text/quoting.h"

namespace azcoll::cli {

void DatabaseOptions::setup(CLI::App& command) {
  command.add_option("--db", file, "file del database (motore incorporato)")->type_name("FILE");
  command
      .add_option("--connessione", connectionString,
                  "stringa di connessione, al posto di --db\n(Provider=embedded;Data Source=…)")
      ->type_name("STRINGA");
}

std::string embeddedConnectionString(std::string_view file) {
  if (file.empty()) {
    throw UsageError("--db vuole il nome di un file.");
  }
  if (file.find('\0') != std::string_view::npos) {
    throw UsageError("Il nome di un file non può contenere un carattere nullo.");
  }
  // Quoted, so that a semicolon or a blank at the end stays part of the name.
  return fmt::format("Provider=embedded;Data Source={}", inQuotes(file, '"'));
}

std::shared_ptr<Connection> openConnection(const std::string& connectionString) {
  std::shared_ptr<Connection> connection;
  try {
    connection = newConnectionFor(connectionString);
    connection->setCursorLocation(CursorLocation::Client);
    connection->open("", "", CommandOption::Unspecified);
    return connection;
  } catch (const Error& error) {
    std::vector<ErrorInfo> failures{error.info()};
    for (std::size_t i = 0; connection && i < connection->errors().count(); ++i) {
      failures.push_back(connection->errors().item(i));
    }
    const std::string check = whatToCheck(failures);
    throw OpenError(check.empty()
                        ? error.description()
                        : fmt::format("{}\n{}", deployment::describeFailure(error), check));
  }
}

std::shared_ptr<Connection> openDatabase(const DatabaseOptions& options) {
  if (options.file.empty() == options.connectionString.empty()) {
    throw UsageError("Indicare il database: --db FILE oppure --connessione STRINGA.");
  }
  if (!options.connectionString.empty()) {
    try {
      return openConnection(options.connectionString);
    } catch (const OpenError& error) {
      throw OpenError(fmt::format("Impossibile aprire il database: {}", error.what()));
    }
  }
  try {
    return openConnection(embeddedConnectionString(options.file));
  } catch (const OpenError& error) {
    throw OpenError(
        fmt::format("Impossibile aprire il database {}: {}", options.file, error.what()));
  }
}

}  // namespace azcoll::cli
