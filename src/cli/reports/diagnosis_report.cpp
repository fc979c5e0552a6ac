#include "cli/reports/diagnosis_report.h"

#include <cstddef>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/print/json.h"
#include "cli/print/terminal_text.h"

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

}  // namespace azcoll::cli
