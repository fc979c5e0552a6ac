#include "cli/database.h"

#include <CLI/App.hpp>
#include <algorithm>
#include <fmt/format.h>

#include "cli/console.h"
#include "platform/provider_factory.h"
#include "tsql/parser.h"

namespace azcoll::cli {
namespace {

std::uint32_t linesBefore(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  return static_cast<std::uint32_t>(std::count(before.begin(), before.end(), '\n'));
}

/// The place of a syntax error when the batch has one with the number that was reported.
std::optional<tsql::Position> syntaxErrorPosition(const std::string& text, int number) {
  try {
    static_cast<void>(tsql::parse(text));
  } catch (const tsql::SyntaxError& error) {
    if (error.number() == number) {
      return error.position();
    }
  }
  return std::nullopt;
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
  try {
    std::shared_ptr<Connection> connection = newConnectionFor(connectionString);
    connection->setCursorLocation(CursorLocation::Client);
    connection->open("", "", CommandOption::Unspecified);
    return connection;
  } catch (const Error& error) {
    throw OpenError(error.description());
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

std::uint32_t failureLine(const tsql::ScriptBatch& batch, const Error& error) {
  const ErrorInfo& info = error.info();
  if (const auto position = syntaxErrorPosition(batch.text, info.nativeNumber)) {
    return batch.firstLine + position->line - 1;
  }
  const std::size_t statement =
      info.statement.empty() ? std::string::npos : batch.text.find(info.statement);
  const std::size_t start =
      batch.text.find_first_not_of(" \t\r\n", statement == std::string::npos ? 0 : statement);
  return batch.firstLine + (start == std::string::npos ? 0U : linesBefore(batch.text, start));
}

std::string describeFailure(const Error& error, std::optional<std::uint32_t> line) {
  const ErrorInfo& info = error.info();
  std::string text = "Errore";
  if (info.nativeNumber != 0) {
    text += fmt::format(" {}", info.nativeNumber);
  }
  if (!info.sqlState.empty()) {
    text += fmt::format(" ({})", info.sqlState);
  }
  if (line) {
    text += fmt::format(", riga {}", *line);
  }
  return fmt::format("{}: {}", text, info.description);
}

}  // namespace azcoll::cli
