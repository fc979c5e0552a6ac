// A customer/supplier's intermediary, changed in one company, carried to its group.

#include "clifor/modification.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "clifor/transaction.h"
#include "component/frame.h"
#include "component/values.h"
#include "data/text.h"
#include "linked/procedure_recordsets.h"

namespace azcoll::clifor {
namespace {

/// Both the marker of a missing intermediary and what a statement writes for it.
constexpr const char* kNoIntermediary = "Null";

std::string_view customerOrSupplier(EnumTipoCF kind) {
  return kind == Cliente ? "cliente" : "fornitore";
}

/// The intermediary of the customer/supplier in the current company; "Null" when it has none.
/// Callers rely on it: a row that is missing or cannot be read counts as one without.
Variant IntermedioCliFor(Call& call) noexcept {
  Variant intermediary;
  ignoreErrors([&] {
    intermediary = kNoIntermediary;
    const CLSCO_INPUTAZCOLL& in = call.input();
    const std::shared_ptr<Recordset> row =
        call.read(join("SELECT CG44_INTERMEDIO_CG40",                            //
                       " FROM CG44_CLIFOR",                                      //
                       " WHERE CG44_DITTA_CG18 = ", in.Pvar_Ditta,               //
                       " AND CG44_TIPOCF = ", static_cast<int>(in.Pint_TipoCF),  //
                       " AND CG44_CLIFOR = ", in.Pvar_CliFor));
    if (!row->atEnd()) {
      intermediary =
          call.ValoreDefault(row->fields().item("CG44_INTERMEDIO_CG40").value(), kNoIntermediary);
    }
  });
  return intermediary;
}

/// Whether the count of a statement is above 0; a failure counts as no.
bool countsAny(Call& call, const std::string& statement) noexcept {
  bool found = false;
  ignoreErrors([&] {
    const std::shared_ptr<Recordset> count = call.read(statement);
    found = isPositive(call.ValoreDefault(count->fields().item(std::size_t{0}).value(), 0));
  });
  return found;
}

/// Whether the customer/supplier exists in a company.
bool EsisteCliFor(Call& call, const Variant& company) noexcept {
  bool exists = false;
  ignoreErrors([&] {
    const CLSCO_INPUTAZCOLL& in = call.input();
    exists = countsAny(call, join("SELECT COUNT(1)",                                        //
                                  " FROM CG44_CLIFOR",                                      //
                                  " WHERE CG44_DITTA_CG18 = ", company,                     //
                                  " AND CG44_TIPOCF = ", static_cast<int>(in.Pint_TipoCF),  //
                                  " AND CG44_CLIFOR = ", in.Pvar_CliFor));
  });
  return exists;
}

/// Whether the intermediary exists in a company; none needs no check.
bool EsisteIntermedio(Call& call, const Variant& company, const Variant& intermediary) noexcept {
  bool exists = false;
  ignoreErrors([&] {
    exists =
        join(intermediary) == kNoIntermediary ||
        countsAny(call, join("SELECT COUNT(1)",                                                  //
                             " FROM CG40_ANADITTAINTER",                                         //
                             " WHERE CG40_DITTA_CG18 = ", company,                               //
                             " AND CG40_TIPOCF = ", static_cast<int>(call.input().Pint_TipoCF),  //
                             " AND CG40_INTERMEDIO = ", intermediary));
  });
  return exists;
}

/// Writes the intermediary in a company; false when the database refuses it.
bool AggiornaIntermedioCliFor(Call& call, const Variant& company,
                              const Variant& intermediary) noexcept {
  bool written = false;
  ignoreErrors([&] {
    const CLSCO_INPUTAZCOLL& in = call.input();
    call.run(join("UPDATE CG44_CLIFOR",                                     //
                  " SET CG44_INTERMEDIO_CG40 = ", intermediary,             //
                  " WHERE CG44_DITTA_CG18 = ", company,                     //
                  " AND CG44_TIPOCF = ", static_cast<int>(in.Pint_TipoCF),  //
                  " AND CG44_CLIFOR = ", in.Pvar_CliFor));
    written = true;
  });
  return written;
}

/// Checks and writes one company. Returns the message of what stands against it, or "".
std::string carryIntermediary(Call& call, const Variant& company, const Variant& intermediary) {
  const CLSCO_INPUTAZCOLL& in = call.input();
  const std::string_view kind = customerOrSupplier(in.Pint_TipoCF);
  if (!EsisteCliFor(call, company)) {
    return join("Il codice ", kind, " ", in.Pvar_CliFor, " non è presente nell'azienda ", company,
                ".");
  }
  if (!EsisteIntermedio(call, company, intermediary)) {
    return join("Il codice intermedio ", intermediary, " non è presente nell'azienda ", company,
                ".");
  }
  if (!AggiornaIntermedioCliFor(call, company, intermediary)) {
    return join("Errore durante la modifica dell'intermedio relativo al codice ", kind, " ",
                in.Pvar_CliFor, " dell'azienda ", company, ".");
  }
  return {};
}

/// The work of `ModificaCliFor`.
void carryToGroup(Call& call) {
  call.session().Mbol_GestioneDuplicazioneCliFor = true;
  linked::RecordsetDitteCollegateOPrincipale(call);
  // After a failure the recordset there may be that of another call.
  const std::shared_ptr<Recordset> companies =
      call.succeeded() ? call.output().Grst_DitteCollegate : nullptr;
  if (RecordsetVuoto(companies)) {
    call.session().Mbol_GestioneDuplicazioneCliFor = false;
    return;
  }
  const Variant intermediary = IntermedioCliFor(call);
  // Callers rely on it: the transaction is the method's own even when the caller reports an open
  // one.
  beginTransaction(call);
  std::string refusal;
  while (!companies->atEnd()) {
    refusal = carryIntermediary(call, companies->fields().item("DITTA").value(), intermediary);
    if (!refusal.empty()) {
      break;
    }
    companies->moveNext();
  }
  if (refusal.empty()) {
    commitTransaction(call);
  } else {
    rollbackTransaction(call);
    call.Stato = kTrapped;
    call.Errore = std::move(refusal);
  }
  call.session().Mbol_GestioneDuplicazioneCliFor = false;
}

}  // namespace

void ModificaCliFor(Call& call) noexcept {
  method(
      call, " in ModificaCliFor", [&] { carryToGroup(call); }, [&] { undoAfterError(call); });
}

}  // namespace azcoll::clifor
