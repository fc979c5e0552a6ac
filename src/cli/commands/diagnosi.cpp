#include "cli/commands/diagnosi.h"

#include <CLI/App.hpp>
#include <fmt/format.h>
#include <memory>
#include <ostream>

#include "cli/reports/diagnosis_report.h"
#include "data/connection.h"
#include "data/error.h"
#include "deployment/diagnosis.h"
#include "deployment/failure.h"

namespace azcoll::cli {

CLI::App* CommandDiagnosi::setup(CLI::App& parent) {
  CLI::App* command = parent.add_subcommand(
      "diagnosi", "Controlla che un database abbia tutto quello che serve al servizio");
  database.setup(*command);
  command->add_flag("--json", json, "stampa il risultato come oggetto JSON");
  command->footer(
      "Guarda tabelle, colonne, tipi, la procedura, la funzione e i diritti dell'utente, e per\n"
      "ogni cosa che manca dice come rimediare. Quello che il database non dice è elencato,\n"
      "e il resto è controllato. Non cambia niente.\n"
      "Esce con 0 quando c'è tutto, 1 se manca qualcosa o se il database non dice che cosa\n"
      "contiene, 2 per un uso errato, 3 se il database non si apre.");
  return command;
}

ExitCode CommandDiagnosi::run(Console& console) const {
  const std::shared_ptr<Connection> connection = openDatabase(database);
  deployment::Diagnosis diagnosis;
  try {
    diagnosis = deployment::diagnose(*connection);
  } catch (const Error& error) {
    if (error.info().connectionLost) {
      throw;
    }
    console.err << fmt::format(
        "Il database non dice che cosa contiene: {}\n"
        "Servono il diritto di connettersi (GRANT CONNECT) e di leggere le viste di sistema\n"
        "sys.all_objects, sys.all_columns e sys.all_parameters.\n",
        deployment::describeFailure(error));
    return ExitCode::Failed;
  }
  if (json) {
    printDiagnosisJson(console.out, diagnosis);
  } else {
    printDiagnosis(console.out, diagnosis);
  }
  return diagnosis.findings.empty() ? ExitCode::Ok : ExitCode::Failed;
}

}  // namespace azcoll::cli
