// A customer/supplier deleted from the companies of its group.

#include "clifor/deletion.h"

#include <memory>
#include <string>
#include <string_view>

#include "clifor/transaction.h"
#include "component/values.h"
#include "data/tables.h"
#include "data/text.h"
#include "linked/resolution.h"

namespace azcoll::clifor {
namespace {

// Phases of the deletion, as `Stato` holds them while they run. Callers rely on it: they stay there
// when the phase fails.
constexpr std::int16_t kTrial = 1;
constexpr std::int16_t kInGroup = 2;
constexpr std::int16_t kNoPhase = 0;

/// Deletes the customer/supplier with all its rows from one company.
void EliminaRigheCliFor(Call& call, const Variant& company) {
  const CLSCO_INPUTAZCOLL& in = call.input();
  const int kind = static_cast<int>(in.Pint_TipoCF);
  const auto deleteFrom = [&](std::string_view table) {
    const std::string_view prefix = tables::prefix(table);
    call.run(join("DELETE FROM ", table,                         //
                  " WHERE ", prefix, "_DITTA_CG18 = ", company,  //
                  " AND ", prefix, "_TIPOCF_CG44 = ", kind,      //
                  " AND ", prefix, "_CLIFOR_CG44 = ", in.Pvar_CliFor));
  };
  for (const std::string_view table : tables::kSubTables) {
    deleteFrom(table);
  }
  deleteFrom("CG4E_CFCOINTESTATI");
  call.run(join("DELETE FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = ", company,  //
                " AND CG44_TIPOCF = ", kind,                                  //
                " AND CG44_CLIFOR = ", in.Pvar_CliFor));
}

/// The work of `EliminaCliFor`; `companies` stands on the company that is being worked on.
void deleteFromGroup(Call& call, std::shared_ptr<Recordset>& companies) {
  const CLSCO_INPUTAZCOLL& in = call.input();
  const bool ownTransaction = !in.Pbol_InTransaction;
  call.session().Mbol_GestioneDuplicazioneCliFor = true;
  linked::readGroup(call, {.withoutCurrent = true}, companies);
  const auto sharesNothing = [&] {
    const Variant indTipoCont = companies->fields().item("CG86_INDTIPOCONT").value();
    return equalsNumber(call.ValoreDefault(indTipoCont, std::int16_t{0}), 1);
  };
  if (companies->atEnd() || sharesNothing()) {
    call.session().Mbol_GestioneDuplicazioneCliFor = false;
    return;
  }

  if (ownTransaction) {
    // Callers rely on it: a customer that the current company keeps is refused before any change.
    beginTransaction(call);
    call.Stato = kTrial;
    EliminaRigheCliFor(call, in.Pvar_Ditta);
    call.Stato = kNoPhase;
    rollbackTransaction(call);  // only a trial: the caller deletes these rows
    beginTransaction(call);
  }
  call.Stato = kInGroup;
  for (; !companies->atEnd(); companies->moveNext()) {
    EliminaRigheCliFor(call, companies->fields().item("DITTA").value());
  }
  call.Stato = kNoPhase;
  if (ownTransaction) {
    commitTransaction(call);
  }
  call.session().Mbol_GestioneDuplicazioneCliFor = false;
}

/// The trap of `EliminaCliFor`: the phase that failed decides on state and message.
void trapDeletion(Call& call, const std::shared_ptr<Recordset>& companies) noexcept {
  std::string description;
  ignoreErrors([&] { description = currentDescription(); });
  // In a transaction of the caller the flag is not set, and there is nothing to undo.
  ignoreErrors([&] { undoAfterError(call); });
  if (call.succeeded()) {
    call.Stato = kTrapped;
  }
  ignoreErrors([&] {
    if (!equalsNumber(call.Stato, kInGroup)) {
      call.Errore = join(description, " in EliminaCliFor");
      return;
    }
    Variant company;
    ignoreErrors([&] { company = companies->fields().item("DITTA").value(); });
    call.Errore = join(call.input().Pint_TipoCF == Cliente
                           ? "Il cliente non può essere eliminato nella ditta "
                           : "Il fornitore non può essere eliminato nella ditta ",
                       company, "!");
  });
}

}  // namespace

void EliminaCliFor(Call& call) noexcept {
  std::shared_ptr<Recordset> companies;
  try {
    if (call.InizializzaMetodo(Connect::Yes)) {
      deleteFromGroup(call, companies);
    }
  } catch (...) {
    trapDeletion(call, companies);
  }
}

}  // namespace azcoll::clifor
