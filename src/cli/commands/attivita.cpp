#include "cli/commands/attivita.h"

#include <CLI/App.hpp>
#include <cstdint>
#include <memory>

#include "cli/commands/look_up.h"
#include "cli/reports/activities_report.h"
#include "data/connection.h"
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
  const auto read = [company, year](const std::shared_ptr<Connection>& connection) {
    return views::readActivities(connection, company, year);
  };
  const auto print = [&](const views::ActivityView& view) {
    if (json) {
      printActivitiesJson(console.out, view);
    } else {
      printActivities(console.out, view);
    }
  };
  return lookUp(database, console, read, print);
}

}  // namespace azcoll::cli
