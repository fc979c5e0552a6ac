#include "deployment/installation.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fmt/format.h>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

#include "deployment/failure.h"
#include "deployment/rights.h"
#include "deployment/schema.h"
#include "deployment/server_catalogue.h"
#include "platform/provider_factory.h"
#include "text/joining.h"
#include "text/trimming.h"
#include "text/utf8.h"
#include "tsql/script.h"

namespace azcoll::deployment {
namespace {

/// The statement on one line, shortened to what a message can carry; control characters count as
/// blanks.
std::string excerpt(std::string_view statement) {
  constexpr std::size_t longest = 200;
  std::string text;
  for (const char c : trim(statement)) {
    constexpr char del = 0x7F;
    const bool blank = static_cast<unsigned char>(c) <= ' ' || c == del;
    if (!blank) {
      text += c;
    } else if (!text.ends_with(' ')) {
      text += ' ';
    }
  }
  const std::string_view shown = leftCharacters(text, longest);
  return std::string{shown} + (shown.size() < text.size() ? "…" : "");
}

/// The same failure in other words.
[[noreturn]] void rethrow(const Error& error, std::string description) {
  if (!error.fromProvider()) {
    throw Error(description);
  }
  ErrorInfo info = error.info();
  info.description = std::move(description);
  throw Error::provider(std::move(info));
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
    rethrow(error, fmt::format("Il database non dice che cosa contiene, e non viene toccato: {}",
                               describeFailure(error)));
  }
  if (names.empty()) {
    return;
  }
  const std::string more =
      names.size() == 1 ? "" : fmt::format(" e altri {} oggetti aziendali", names.size() - 1);
  throw AlreadyThere(
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
  return scripts.empty()
             ? "nessuno"
             : joinAll(scripts, ", ", [](const Script* script) { return script->name; });
}

void execute(Connection& connection, std::string_view statement) {
  std::int64_t affected = 0;
  connection.execute(statement, affected, CommandOption::Text);
}

void runBatch(Connection& connection, const Script& script, const tsql::ScriptBatch& batch) {
  try {
    execute(connection, batch.text);
  } catch (const Error& error) {
    const std::string& statement = error.info().statement;
    rethrow(error, fmt::format("{}, riga {}: {}\n  {}", script.name, failureLine(batch, error),
                               describeFailure(error),
                               excerpt(statement.empty() ? batch.text : statement)));
  }
}

/// Ends the installation at a script.
class Stop {
 public:
  Stop(std::span<const Script* const> scripts, std::size_t current)
      : scripts_{scripts}, current_{current} {}

  /// `end` says what became of the script.
  [[noreturn]] void operator()(const Error& error, const std::string& message,
                               const std::string& end) const {
    const std::string text =
        fmt::format("{}\n{}\nInstallati: {}. Non installati: {}.", message, end,
                    namesOf(scripts_.first(current_)), namesOf(scripts_.subspan(current_)));
    if (error.info().connectionLost) {
      throw InstallationCutShort(text);
    }
    throw Error(text);
  }

 private:
  std::span<const Script* const> scripts_;
  std::size_t current_;
};

/// Runs `work` in a transaction.
void inTransaction(Connection& connection, const Script& script, const Stop& stop,
                   const std::function<void()>& work) {
  connection.beginTrans();
  try {
    work();
  } catch (const Error& error) {
    stop(error, error.description(), undo(connection, script));
  }
  try {
    connection.commitTrans();
  } catch (const Error& error) {
    const std::string message =
        fmt::format("{}: la conferma non è riuscita: {}", script.name, describeFailure(error));
    stop(error, message,
         error.info().connectionLost
             ? fmt::format("Se {} è stato installato lo dice: azcoll diagnosi", script.name)
             : undo(connection, script));
  }
}

/// The role is made first; then every right is granted by itself.
std::vector<RefusedGrant> installRights(Connection& connection, const Script& script,
                                        const Stop& stop) {
  std::vector<RefusedGrant> refused;
  for (const tsql::ScriptBatch& batch : tsql::splitScript(script.text)) {
    const RoleRights rights = readGrants(batch.text);
    if (rights.grants.empty()) {
      inTransaction(connection, script, stop, [&] { runBatch(connection, script, batch); });
    }
    for (const Grant& grant : rights.grants) {
      const std::string object = fmt::format("{}.{}", grant.owner, grant.object);
      try {
        execute(connection, fmt::format("GRANT {} ON {} TO {}", grant.right, object, rights.role));
      } catch (const Error& error) {
        refused.push_back({fmt::format("{} su {}", grant.right, object), describeFailure(error)});
        if (error.info().connectionLost) {
          stop(error,
               fmt::format("{}: {}: {}", script.name, refused.back().right, refused.back().reason),
               "I diritti che vengono prima nello script sono concessi.");
        }
      }
    }
  }
  return refused;
}

}  // namespace

void runScript(Connection& connection, const Script& script) {
  for (const tsql::ScriptBatch& batch : tsql::splitScript(script.text)) {
    runBatch(connection, script, batch);
  }
}

std::vector<RefusedGrant> install(Connection& connection, std::span<const Script* const> scripts) {
  refuseExisting(connection);
  std::vector<RefusedGrant> refused;
  for (std::size_t i = 0; i < scripts.size(); ++i) {
    const Script& script = *scripts[i];
    const Stop stop{scripts, i};
    if (&script == &kPermessi) {
      refused = installRights(connection, script, stop);
    } else {
      inTransaction(connection, script, stop, [&] { runScript(connection, script); });
    }
  }
  return refused;
}

}  // namespace azcoll::deployment
