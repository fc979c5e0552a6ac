#include "cli/database.h"

#include <CLI/App.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <initializer_list>
#include <vector>

#include "cli/console.h"
#include "deployment/failure.h"
#include "platform/provider_factory.h"

namespace azcoll::cli {

using deployment::describeFailure;

namespace {

constexpr std::string_view kCheckServer =
    "Controllare il nome del server e la porta (Server, Port), e che il server sia acceso e la "
    "rete "
    "lo raggiunga.";

/// What to check when a server cannot be reached or refuses the login; empty when the failure says
/// enough by itself. Drivers differ in numbers and states, so all that they told is looked at.
std::string whatToCheck(const std::vector<ErrorInfo>& failures) {
  const auto any = [&](auto matches) { return std::ranges::any_of(failures, matches); };
  const auto hasState = [&](std::string_view start) {
    return any([&](const ErrorInfo& each) { return each.sqlState.starts_with(start); });
  };
  const auto hasNumber = [&](std::initializer_list<int> numbers) {
    return any([&](const ErrorInfo& each) {
      return std::ranges::find(numbers, each.nativeNumber) != numbers.end();
    });
  };
  // Not every server gives a refused database the number 4060.
  const bool noDatabase = any([](const ErrorInfo& each) {
    return each.description.find("Cannot open database") != std::string::npos;
  });
  if (noDatabase || hasNumber({911, 916, 4060}) || hasState("08004")) {
    return "Controllare il nome del database (Database), e che l'utente vi abbia accesso. Un "
           "database nuovo si fa con CREATE DATABASE, poi: azcoll crea --connessione";
  }
  if (hasNumber({18456}) || hasState("28")) {
    return "Controllare l'utente e la password (UID, PWD), e che l'utente possa connettersi al "
           "server.";
  }
  // As the first of the failures a 01000 is the driver manager's: no such driver.
  if (hasState("IM00") || failures.front().sqlState == "01000") {
    return "Controllare il driver (Driver, oppure DSN): quelli installati li elenca odbcinst -q -d";
  }
  if (hasState("08") || hasState("HYT")) {
    return std::string{kCheckServer} +
           "\nAlcuni driver rispondono così anche quando mancano l'utente o la password (UID, "
           "PWD).";
  }
  return {};
}

}  // namespace

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
  std::string source = "\"";
  for (const char c : file) {
    source += c == '"' ? "\"\"" : std::string_view{&c, 1};
  }
  return fmt::format("Provider=embedded;Data Source={}\"", source);
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
    throw OpenError(check.empty() ? error.description()
                                  : fmt::format("{}\n{}", describeFailure(error), check));
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

std::string describeLoss(const ErrorInfo& info) {
  return fmt::format(
      "La connessione al database è caduta: {}\n{} Quello che non era confermato il server lo "
      "annulla da sé.",
      describeFailure(info), kCheckServer);
}

bool isMissingObject(const ErrorInfo& info) {
  constexpr int kNoTable = 208;
  constexpr int kNoProcedure = 2812;
  return info.nativeNumber == kNoTable || info.nativeNumber == kNoProcedure ||
         info.sqlState == "42S02";
}

std::string withDiagnosisHint(const ErrorInfo& info) {
  // Class 42: something is not there, or not allowed.
  return describeFailure(info) +
         (info.sqlState.starts_with("42") ? fmt::format("\n{}", kAskDiagnosis) : "");
}

}  // namespace azcoll::cli
