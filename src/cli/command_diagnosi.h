#pragma once

#include <iosfwd>

#include "cli/console.h"
#include "cli/database.h"

namespace CLI {
class App;
}

namespace azcoll::deployment {
struct Diagnosis;
}

namespace azcoll::cli {

/// `azcoll diagnosi`: says what a company database lacks for the service, and what fixes it.
struct CommandDiagnosi {
  DatabaseOptions database;
  bool json = false;

  CLI::App* setup(CLI::App& parent);
  ExitCode run(Console& console) const;
};

/// Prints a diagnosis for people.
void printDiagnosis(std::ostream& out, const deployment::Diagnosis& diagnosis);

/// `{"a_posto", "esaminati": {…}, "problemi": [{"tipo", "oggetto", "messaggio", "rimedio"}],
/// "non_controllato", "note"}`.
void printDiagnosisJson(std::ostream& out, const deployment::Diagnosis& diagnosis);

}  // namespace azcoll::cli
