// A customer/supplier deleted from the companies of its group.

#include "component/service.h"
#include "component/values.h"
#include "data/tables.h"
#include "data/text.h"

namespace azcoll {
namespace {

// Phases of the deletion, as `Stato` holds them while they run. Callers rely on it: they stay there
// when the phase fails.
constexpr std::int16_t kTrial = 1;
constexpr std::int16_t kInGroup = 2;
constexpr std::int16_t kNoPhase = 0;

}  // namespace

/// Deletes the customer/supplier with all its rows from one company.
void CLSCO_AZIENDECOLL::EliminaRigheCliFor(const Variant& ditta) {
  const CLSCO_INPUTAZCOLL& in = input();
  const int tipoCF = static_cast<int>(in.Pint_TipoCF);
  const auto deleteFrom = [&](std::string_view table) {
    const std::string_view prefix = tables::prefix(table);
    esegui(join("DELETE FROM ", table,                       //
                " WHERE ", prefix, "_DITTA_CG18 = ", ditta,  //
                " AND ", prefix, "_TIPOCF_CG44 = ", tipoCF,  //
                " AND ", prefix, "_CLIFOR_CG44 = ", in.Pvar_CliFor));
  };
  for (const std::string_view table : tables::kSubTables) {
    deleteFrom(table);
  }
  deleteFrom("CG4E_CFCOINTESTATI");
  esegui(join("DELETE FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = ", ditta,  //
              " AND CG44_TIPOCF = ", tipoCF,                              //
              " AND CG44_CLIFOR = ", in.Pvar_CliFor));
}

void CLSCO_AZIENDECOLL::EliminaCliFor() noexcept {
  std::shared_ptr<Recordset> ditte;
  try {
    if (InizializzaMetodo(Connect::Yes)) {
      elimina(ditte);
    }
  } catch (...) {
    intrappolaEliminazione(ditte);
  }
}

/// The work of `EliminaCliFor`; `ditte` stands on the company that is being worked on.
void CLSCO_AZIENDECOLL::elimina(std::shared_ptr<Recordset>& ditte) {
  const CLSCO_INPUTAZCOLL& in = input();
  const bool ownTransaction = !in.Pbol_InTransaction;
  Mbol_GestioneDuplicazioneCliFor = true;
  leggiGruppo({.escludiCorrente = true}, ditte);
  const auto sharesNothing = [&] {
    const Variant indTipoCont = ditte->fields().item("CG86_INDTIPOCONT").value();
    return isNumber(ValoreDefault(indTipoCont, std::int16_t{0}), 1);
  };
  if (ditte->atEnd() || sharesNothing()) {
    Mbol_GestioneDuplicazioneCliFor = false;
    return;
  }

  if (ownTransaction) {
    // Callers rely on it: a customer that the current company keeps is refused before any change.
    iniziaTransazione();
    Stato = kTrial;
    EliminaRigheCliFor(in.Pvar_Ditta);
    Stato = kNoPhase;
    connessione().rollbackTrans();  // only a trial: the caller deletes these rows
    Mbol_TransazioneAperta = false;
    iniziaTransazione();
  }
  Stato = kInGroup;
  for (; !ditte->atEnd(); ditte->moveNext()) {
    EliminaRigheCliFor(ditte->fields().item("DITTA").value());
  }
  Stato = kNoPhase;
  if (ownTransaction) {
    connessione().commitTrans();
    Mbol_TransazioneAperta = false;
  }
  Mbol_GestioneDuplicazioneCliFor = false;
}

/// The trap of `EliminaCliFor`: the phase that failed decides on state and message.
void CLSCO_AZIENDECOLL::intrappolaEliminazione(const std::shared_ptr<Recordset>& ditte) noexcept {
  std::string description;
  ignoreErrors([&] { description = currentDescription(); });
  // In a transaction of the caller the flag is not set, and there is nothing to undo.
  ignoreErrors([this] { annullaDopoErrore(); });
  if (riuscito()) {
    Stato = kTrapped;
  }
  ignoreErrors([&] {
    if (!isNumber(Stato, kInGroup)) {
      Errore = join(description, " in EliminaCliFor");
      return;
    }
    Variant ditta;
    ignoreErrors([&] { ditta = ditte->fields().item("DITTA").value(); });
    Errore =
        join(input().Pint_TipoCF == Cliente ? "Il cliente non può essere eliminato nella ditta "
                                            : "Il fornitore non può essere eliminato nella ditta ",
             ditta, "!");
  });
}

}  // namespace azcoll
