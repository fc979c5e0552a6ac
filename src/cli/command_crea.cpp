#include "cli/command_crea.h"

#include <CLI/App.hpp>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fmt/format.h>
#include <ostream>
#include <system_error>

#include "cli/database.h"
#include "cli/scripts.h"
#include "cli/unfinished_file.h"
#include "cli/utf8.h"
#include "data/text.h"
#include "tsql/parser.h"

namespace azcoll::cli {
namespace {

namespace fs = std::filesystem;

/// Gives the finished database its name.
void publish(const UnfinishedFile& file, const fs::path& target) {
  const std::error_code failure = file.publishNew();
  if (failure == std::errc::file_exists) {
    throw UsageError(fmt::format("Il file {} esiste già.", target.string()));
  }
  if (failure) {
    throw OpenError(fmt::format("Impossibile creare {}: {}", target.string(), failure.message()));
  }
}

void fill(const std::string& path, bool example) {
  const std::shared_ptr<Connection> connection =
      openConnection(embeddedConnectionString(path) + ";Create=True");
  connection->beginTrans();
  runScript(*connection, kTabelle);
  runScript(*connection, kProcedure);
  if (example) {
    runScript(*connection, kEsempio);
  }
  connection->commitTrans();
  connection->close();
}

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

CLI::App* CommandCrea::setup(CLI::App& parent) {
  CLI::App* command =
      parent.add_subcommand("crea", "Crea un database nuovo con tabelle e procedure");
  command->add_option("--db", file, "file da creare; non deve esistere")
      ->type_name("FILE")
      ->required();
  command->add_flag("--esempio", esempio, "aggiunge un gruppo di aziende di esempio");
  return command;
}

ExitCode CommandCrea::run(Console& console) const {
  static_cast<void>(embeddedConnectionString(file));  // refuses names that are no file's
  if (file == ":memory:") {
    throw UsageError("Un database in memoria finisce con il comando: indicare un file.");
  }
  const fs::path target{file};
  if (isTaken(target)) {
    throw UsageError(fmt::format("Il file {} esiste già: non viene sovrascritto.", file));
  }
  try {
    const UnfinishedFile unfinished{target};
    fill(unfinished.path(), esempio);
    publish(unfinished, target);
  } catch (const OpenError& error) {
    throw OpenError(fmt::format("Impossibile creare il database {}: {}", file, error.what()));
  }
  console.err << fmt::format("Creato il database {}.\n", file);
  return ExitCode::Ok;
}

}  // namespace azcoll::cli
