#include "cli/installation.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>
#include <string>
#include <vector>

#include "cli/console.h"
#include "cli/database.h"
#include "cli/schema.h"
#include "cli/scripts.h"
#include "cli/server_catalogue.h"
#include "cli/utf8.h"
#include "data/error.h"
#include "data/text.h"
#include "platform/provider_factory.h"
#include "tsql/parser.h"

namespace azcoll::cli {
namespace {

/// The statement on one line, shortened to what a message can carry.
std::string excerpt(std::string_view statement) {
  constexpr std::size_t longest = 200;
  std::string text;
  for (const char c : trim(statement)) {
    const bool blank = c == '\n' || c == '\r' || c == '\t' || c == ' ';
    if (!blank) {
      text += c;
    } else if (!text.ends_with(' ')) {
      text += ' ';
    }
  }
  const std::string_view shown = leftCharacters(text, longest);
  return visible(shown) + (shown.size() < text.size() ? "…" : "");
}

/// Names of the company's tables and routines that the database has already.
std::vector<std::string> namesThere(Connection& connection) {
  const auto definitions = storedDefinitions(connection);
  if (!definitions) {
    return readServerNames(connection, expectedSchema());
  }
  Schema found;
  for (const std::string& definition : *definitions) {
    addDefinitions(found, definition);
  }
  std::vector<std::string> names;
  const auto take = [&](const std::string& name) {
    if (expectedSchema().table(name) != nullptr || expectedSchema().routine(name) != nullptr) {
      names.push_back(name);
    }
  };
  for (const SchemaTable& table : found.tables) {
    take(table.name);
  }
  for (const SchemaRoutine& routine : found.routines) {
    take(routine.name);
  }
  return names;
}

void refuseExisting(Connection& connection) {
  std::vector<std::string> names;
  try {
    names = namesThere(connection);
  } catch (const Error& error) {
    throw Error(fmt::format("Il database non dice che cosa contiene, e non viene toccato: {}",
                            describeFailure(error)));
  }
  if (names.empty()) {
    return;
  }
  const std::string more =
      names.size() == 1 ? "" : fmt::format(" e altri {} oggetti aziendali", names.size() - 1);
  throw UsageError(
      fmt::format("Il database contiene già {}{}: non viene toccato.\n"
                  "Per sapere che cosa gli manca: azcoll diagnosi",
                  names.front(), more));
}

/// Undoes the open transaction; returns what is to be added to the message of the failure.
std::string undo(Connection& connection, const Script& script) {
  try {
    connection.rollbackTrans();
  } catch (const Error& error) {
    return fmt::format(
        "L'annullamento di {} non è riuscito ({}): il server annulla da sé quando "
        "la connessione finisce.",
        script.name, error.description());
  }
  return fmt::format("{} è stato annullato per intero.", script.name);
}

std::string namesOf(std::span<const Script* const> scripts) {
  std::string names;
  for (const Script* script : scripts) {
    names += fmt::format("{}{}", names.empty() ? "" : ", ", script->name);
  }
  return names.empty() ? "nessuno" : names;
}

}  // namespace

void runScript(Connection& connection, const Script& script) {
  for (const tsql::ScriptBatch& batch : tsql::splitScript(script.text)) {
    try {
      std::int64_t affected = 0;
      connection.execute(batch.text, affected, CommandOption::Text);
    } catch (const Error& error) {
      const std::string& statement = error.info().statement;
      throw Error(fmt::format("{}, riga {}: {}\n  {}", script.name, failureLine(batch, error),
                              describeFailure(error),
                              excerpt(statement.empty() ? batch.text : statement)));
    }
  }
}

void install(Connection& connection, std::span<const Script* const> scripts) {
  refuseExisting(connection);
  for (std::size_t i = 0; i < scripts.size(); ++i) {
    const Script& script = *scripts[i];
    const auto fail = [&](const std::string& message, const std::string& end) {
      throw Error(fmt::format("{}\n{}\nInstallati: {}. Non installati: {}.", message, end,
                              namesOf(scripts.first(i)), namesOf(scripts.subspan(i))));
    };
    connection.beginTrans();
    try {
      runScript(connection, script);
    } catch (const Error& error) {
      fail(error.description(), undo(connection, script));
    }
    try {
      connection.commitTrans();
    } catch (const Error& error) {
      fail(fmt::format("{}: la conferma non è riuscita: {}", script.name, describeFailure(error)),
           undo(connection, script));
    }
  }
}

}  // namespace azcoll::cli
