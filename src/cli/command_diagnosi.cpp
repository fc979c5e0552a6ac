#include "cli/command_diagnosi.h"

#include <CLI/App.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string_view>

#include "cli/json.h"
#include "cli/utf8.h"
#include "data/error.h"
#include "deployment/diagnosis.h"
#include "deployment/failure.h"

namespace azcoll::cli {

using deployment::Diagnosis;
using deployment::Finding;

namespace {

/// The lines of a text, each behind a margin and ready for a terminal.
void printIndented(std::ostream& out, std::string_view text, std::string_view margin) {
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) {
      line.remove_suffix(1);
    }
    out << (line.empty() ? "" : margin) << visible(line) << '\n';
    text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
  }
}

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string rightsText(const Diagnosis& diagnosis) {
  if (!diagnosis.hasUsers) {
    return diagnosis.rights == 0 ? "" : ", il file si può scrivere";
  }
  return fmt::format(", {} dell'utente {}", counted(diagnosis.rights, "diritto", "diritti"),
                     diagnosis.user.empty() ? "della connessione" : visible(diagnosis.user));
}

}  // namespace

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

void printDiagnosis(std::ostream& out, const Diagnosis& diagnosis) {
  out << fmt::format("Trovati: {}, {}, {}{}.\n", counted(diagnosis.tables, "tabella", "tabelle"),
                     counted(diagnosis.columns, "colonna", "colonne"),
                     counted(diagnosis.routines, "procedura o funzione", "procedure e funzioni"),
                     rightsText(diagnosis));
  for (const std::string& sentence : diagnosis.unchecked) {
    out << "Non controllato: " << visible(sentence) << '\n';
  }
  for (const std::string& note : diagnosis.notes) {
    out << "Nota: " << visible(note) << '\n';
  }
  if (diagnosis.findings.empty()) {
    out << (diagnosis.unchecked.empty()
                ? "\nTutto a posto: il servizio può lavorare su questo database.\n"
                : "\nQuello che si è potuto controllare è a posto.\n");
    return;
  }
  out << fmt::format("\nDa sistemare: {}\n", diagnosis.findings.size());
  std::size_t number = 0;
  for (const Finding& finding : diagnosis.findings) {
    out << fmt::format("\n{}. {}\n   Rimedio:\n", ++number, visible(finding.message));
    printIndented(out, finding.remedy, "     ");
  }
}

void printDiagnosisJson(std::ostream& out, const Diagnosis& diagnosis) {
  Json result;
  result["a_posto"] = diagnosis.findings.empty();
  result["trovati"] = {{"tabelle", diagnosis.tables},
                       {"colonne", diagnosis.columns},
                       {"procedure_e_funzioni", diagnosis.routines},
                       {"diritti", diagnosis.rights}};
  result["utente"] = diagnosis.user.empty() ? Json(nullptr) : Json(diagnosis.user);
  result["problemi"] = Json::array();
  for (const Finding& finding : diagnosis.findings) {
    result["problemi"].push_back({{"tipo", finding.kind},
                                  {"oggetto", finding.object},
                                  {"messaggio", finding.message},
                                  {"rimedio", finding.remedy}});
  }
  result["non_controllato"] = diagnosis.unchecked;
  result["note"] = diagnosis.notes;
  out << dump(result) << '\n';
}

ExitCode CommandDiagnosi::run(Console& console) const {
  const std::shared_ptr<Connection> connection = openDatabase(database);
  Diagnosis diagnosis;
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
