#pragma once

#include <iosfwd>

#include "deployment/diagnosis.h"

namespace azcoll::cli {

/// For people: what is there, what could not be checked, and every finding with its remedy.
void printDiagnosis(std::ostream& out, const deployment::Diagnosis& diagnosis);

/// For programs: `{"a_posto", "trovati": {…}, "utente", "problemi": [{"tipo", "oggetto",
/// "messaggio", "rimedio"}], "non_controllato", "note"}`.
void printDiagnosisJson(std::ostream& out, const deployment::Diagnosis& diagnosis);

}  // namespace azcoll::cli
