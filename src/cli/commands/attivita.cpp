#include "cli/commands/attivita.h"

#include <CLI/App.hpp>
#include <cstdint>
#include <ostream>

#include "cli/commands/connection_watch.h"
#include "cli/commands/failure_advice.h"
#include "cli/reports/activities_report.h"
#include "data/error.h"
#include "views/activities.h"

namespace azcoll::cli {

CLI::App* CommandAttivita::setup(CLI::App& parent) {
  CLI::App* command = parent.add_subcommand(
      "attivita", "Mostra le attività IVA di un'azienda e le differenze dall'anno prima");
  what.setup(*command);
  database.setup(*command);
  command->add_flag("--json", json, "stampa le attività come oggetto JSON");
  command->footer(
      "Solo lettura: un anno senza attività non viene preparato da quello prima.\n"
      "Esce con 0 anche quando l'anno non ha attività, 1 se l'azienda non esiste o se il\n"
      "database rifiuta un'istruzione, 2 per un uso errato, 3 se il database non si apre.");
  return command;
}

ExitCode CommandAttivita::run(Console& console) const {
  const std::int32_t company = what.company();
  const std::int32_t year = what.years().first;
  const ConnectionWatch watch{openDatabase(database)};
  try {
    const views::ActivityView view = views::readActivities(watch.connection(), company, year);
    watch.requireAlive();
    if (json) {
      printActivitiesJson(console.out, view);
    } else {
      printActivities(console.out, view);
    }
  } catch (const Error& error) {
    watch.requireAlive();
    console.err << withDiagnosisHint(error.info()) << '\n';
    return ExitCode::Failed;
  }
  return ExitCode::Ok;
}

}  // namespace azcoll::cli
