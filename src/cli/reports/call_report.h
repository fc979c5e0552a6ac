#pragma once

#include <iosfwd>

#include "data/variant.h"
#include "service/members.h"

namespace azcoll::cli {

/// What came out of one call of a method. Refers to its parts, which must outlive it.
struct CallReport {
  const MethodEntry& method;
  const Variant& result;            ///< Empty for a method without result
  const CLSCO_INPUTAZCOLL& before;  ///< the input as it was before the call
  const CLSCO_AZIENDECOLL& service;

  /// For people: state, message, result, the input fields that the call changed, the output fields
  /// that are set, recordsets as tables.
  void print(std::ostream& out) const;

  /// For programs: one object with `metodo`, `stato`, `errore`, `risultato`, `input` (the fields
  /// that are not empty) and `output` (all fields, recordsets as `{"colonne", "righe"}`).
  void printJson(std::ostream& out) const;
};

}  // namespace azcoll::cli
