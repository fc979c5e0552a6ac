#include "cli/commands/crea.h"

#include <CLI/App.hpp>
#include <filesystem>
#include <fmt/format.h>
#include <memory>
#include <ostream>
#include <string_view>
#include <system_error>
#include <vector>

#include "cli/commands/database_options.h"
#include "cli/print/terminal_text.h"
#include "cli/print/unfinished_file.h"
#include "deployment/installation.h"
#include "deployment/rights.h"
#include "deployment/scripts.h"
#include "platform/provider_factory.h"

namespace azcoll::cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kNoRoles =
    "--permessi vuole un server: il motore incorporato non conosce utenti né ruoli, e chi può "
    "scrivere il file può tutto.";

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
  deployment::runScript(*connection, deployment::kTabelle);
  deployment::runScript(*connection, deployment::kProcedure);
  if (example) {
    deployment::runScript(*connection, deployment::kEsempio);
  }
  connection->commitTrans();
  connection->close();
}

/// Installs the scripts; what stops the installation becomes what the command says of itself.
std::vector<deployment::RefusedGrant> installed(
    Connection& connection, const std::vector<const deployment::Script*>& scripts) {
  try {
    return deployment::install(connection, scripts);
  } catch (const deployment::AlreadyThere& error) {
    throw UsageError(error.description());
  } catch (const deployment::InstallationCutShort& error) {
    throw OpenError(error.description());
  }
}

/// Reports which rights the role has not got.
ExitCode reportRefused(const std::vector<deployment::RefusedGrant>& refused, std::ostream& err) {
  if (refused.empty()) {
    return ExitCode::Ok;
  }
  err << fmt::format("Diritti rifiutati dal server: {} di {}. Gli altri sono concessi.\n",
                     refused.size(), deployment::expectedRights().grants.size());
  for (const deployment::RefusedGrant& grant : refused) {
    err << fmt::format("  {}: {}\n", grant.right, visible(grant.reason));
  }
  err << "Se al servizio mancano davvero lo dice, con il suo utente: azcoll diagnosi\n";
  return ExitCode::Failed;
}

}  // namespace

CLI::App* CommandCrea::setup(CLI::App& parent) {
  CLI::App* command =
      parent.add_subcommand("crea", "Crea un database nuovo con tabelle e procedure");
  command->add_option("--db", file, "file da creare; non deve esistere")->type_name("FILE");
  command
      ->add_option("--connessione", connectionString,
                   "stringa di connessione di un database esistente, al posto di --db;\n"
                   "non deve contenere tabelle aziendali")
      ->type_name("STRINGA");
  command->add_flag("--esempio", esempio, "aggiunge un gruppo di aziende di esempio");
  command->add_flag("--permessi", permessi,
                    "aggiunge il ruolo con i diritti che servono al servizio\n"
                    "(solo con --connessione, su un server)");
  command->footer(
      "Con --connessione ogni script viene installato per intero o per niente; un database che\n"
      "contiene già tabelle aziendali non viene toccato. Con --permessi ogni diritto è dato da "
      "sé:\n"
      "quelli che il server rifiuta sono elencati, gli altri restano, e il comando esce con 1.");
  return command;
}

ExitCode CommandCrea::run(Console& console) const {
  if (file.empty() == connectionString.empty()) {
    throw UsageError("Indicare che cosa creare: --db FILE oppure --connessione STRINGA.");
  }
  if (permessi && connectionString.empty()) {
    throw UsageError(kNoRoles);
  }
  return connectionString.empty() ? createFile(console) : installOn(console);
}

ExitCode CommandCrea::createFile(Console& console) const {
  static_cast<void>(embeddedConnectionString(file));  // refuses names that no file can have
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

ExitCode CommandCrea::installOn(Console& console) const {
  DatabaseOptions database;
  database.connectionString = connectionString;
  const std::shared_ptr<Connection> connection = openDatabase(database);
  if (permessi && storedDefinitions(*connection)) {
    throw UsageError(kNoRoles);
  }
  std::vector<const deployment::Script*> scripts{&deployment::kTabelle, &deployment::kProcedure};
  if (esempio) {
    scripts.push_back(&deployment::kEsempio);
  }
  if (permessi) {
    scripts.push_back(&deployment::kPermessi);
  }
  const std::vector<deployment::RefusedGrant> refused = installed(*connection, scripts);
  connection->close();
  std::vector<std::string_view> names;
  names.reserve(scripts.size());
  for (const deployment::Script* script : scripts) {
    names.push_back(script->name);
  }
  console.err << fmt::format("Installati nel database: {}.\n", fmt::join(names, ", "));
  return reportRefused(refused, console.err);
}

}  // namespace azcoll::cli
