#include "cli/commands/gruppo.h"

#include <CLI/App.hpp>
#include <cstdint>
#include <fmt/format.h>
#include <memory>
#include <ostream>

#include "cli/commands/look_up.h"
#include "cli/reports/drawing_file.h"
#include "cli/reports/group_drawing.h"
#include "cli/reports/group_report.h"
#include "data/connection.h"
#include "views/group.h"

namespace azcoll::cli {

CLI::App* CommandGruppo::setup(CLI::App& parent) {
  CLI::App* command =
      parent.add_subcommand("gruppo", "Mostra il gruppo di aziende collegate di un'azienda");
  what.setup(*command);
  what.setupYears(*command);
  database.setup(*command);
  command->add_flag("--json", json, "stampa il gruppo come oggetto JSON");
  command->add_flag("--dot", dot, "stampa il disegno come testo DOT (Graphviz)");
  command
      ->add_option("--svg", svg,
                   "scrive il disegno in un file SVG con il programma dot\n"
                   "(pacchetto graphviz)")
      ->type_name("FILE");
  command->footer(
      "Solo lettura. Esce con 0 anche quando l'anno non ha collegamenti, 1 se l'azienda\n"
      "non esiste, se il database rifiuta un'istruzione o se manca dot, 2 per un uso\n"
      "errato, 3 se il database non si apre.");
  return command;
}

ExitCode CommandGruppo::run(Console& console) const {
  const std::int32_t company = what.company();
  const views::YearRange years = what.years();
  const bool drawn = svg.has_value();
  if (int{json} + int{dot} + int{drawn} > 1) {
    throw UsageError("Le opzioni --json, --dot e --svg si escludono.");
  }
  if (drawn) {
    requireSvgName(*svg);
  }
  const auto read = [company, &years](const std::shared_ptr<Connection>& connection) {
    return views::readGroups(connection, company, years);
  };
  const auto print = [&](const views::GroupView& view) {
    if (drawn) {
      writeSvg(groupsAsDot(view), *svg);
      console.err << fmt::format("Scritto il disegno {}.\n", *svg);
    } else if (dot) {
      console.out << groupsAsDot(view);
    } else if (json) {
      printGroupsJson(console.out, view);
    } else {
      printGroups(console.out, view);
    }
  };
  return lookUp(database, console, read, print);
}

}  // namespace azcoll::cli
