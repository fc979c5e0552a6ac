// A customer/supplier's intermediary, changed in one company, carried to its group.

#include <utility>

#include "component/service.h"
#include "component/values.h"
#include "data/text.h"

namespace azcoll {
namespace {

/// Both the marker of a missing intermediary and what a statement writes for it.
constexpr const char* kNoIntermediary = "Null";

std::string_view customerOrSupplier(EnumTipoCF kind) {
  return kind == Cliente ? "cliente" : "fornitore";
}

}  // namespace

/// The intermediary of the customer/supplier in the current company; "Null" when it has none.
/// Callers rely on it: a row that is missing or cannot be read counts as one without.
Variant CLSCO_AZIENDECOLL::IntermedioCliFor() noexcept {
  Variant intermediary;
  ignoreErrors([&] {
    intermediary = kNoIntermediary;
    const CLSCO_INPUTAZCOLL& in = input();
    const std::shared_ptr<Recordset> row =
        leggi(join("SELECT CG44_INTERMEDIO_CG40",                            //
                   " FROM CG44_CLIFOR",                                      //
                   " WHERE CG44_DITTA_CG18 = ", in.Pvar_Ditta,               //
                   " AND CG44_TIPOCF = ", static_cast<int>(in.Pint_TipoCF),  //
                   " AND CG44_CLIFOR = ", in.Pvar_CliFor));
    if (!row->atEnd()) {
      intermediary =
          ValoreDefault(row->fields().item("CG44_INTERMEDIO_CG40").value(), kNoIntermediary);
    }
  });
  return intermediary;
}

/// Whether the count of a statement is above 0; a failure counts as no.
bool CLSCO_AZIENDECOLL::contaAlmenoUno(const std::string& conteggio) noexcept {
  bool found = false;
  ignoreErrors([&] {
    const std::shared_ptr<Recordset> count = leggi(conteggio);
    found = isPositive(ValoreDefault(count->fields().item(std::size_t{0}).value(), 0));
  });
  return found;
}

/// Whether the customer/supplier exists in a company.
bool CLSCO_AZIENDECOLL::EsisteCliFor(const Variant& ditta) noexcept {
  bool exists = false;
  ignoreErrors([&] {
    const CLSCO_INPUTAZCOLL& in = input();
    exists = contaAlmenoUno(join("SELECT COUNT(1)",                                        //
                                 " FROM CG44_CLIFOR",                                      //
                                 " WHERE CG44_DITTA_CG18 = ", ditta,                       //
                                 " AND CG44_TIPOCF = ", static_cast<int>(in.Pint_TipoCF),  //
                                 " AND CG44_CLIFOR = ", in.Pvar_CliFor));
  });
  return exists;
}

/// Whether the intermediary exists in a company; none needs no check.
bool CLSCO_AZIENDECOLL::EsisteIntermedio(const Variant& ditta, const Variant& intermedio) noexcept {
  bool exists = false;
  ignoreErrors([&] {
    exists = join(intermedio) == kNoIntermediary ||
             contaAlmenoUno(join("SELECT COUNT(1)",                                             //
                                 " FROM CG40_ANADITTAINTER",                                    //
                                 " WHERE CG40_DITTA_CG18 = ", ditta,                            //
                                 " AND CG40_TIPOCF = ", static_cast<int>(input().Pint_TipoCF),  //
                                 " AND CG40_INTERMEDIO = ", intermedio));
  });
  return exists;
}

/// Writes the intermediary in a company; false when the database refuses it.
bool CLSCO_AZIENDECOLL::AggiornaIntermedioCliFor(const Variant& ditta,
                                                 const Variant& intermedio) noexcept {
  bool written = false;
  ignoreErrors([&] {
    const CLSCO_INPUTAZCOLL& in = input();
    esegui(join("UPDATE CG44_CLIFOR",                                     //
                " SET CG44_INTERMEDIO_CG40 = ", intermedio,               //
                " WHERE CG44_DITTA_CG18 = ", ditta,                       //
                " AND CG44_TIPOCF = ", static_cast<int>(in.Pint_TipoCF),  //
                " AND CG44_CLIFOR = ", in.Pvar_CliFor));
    written = true;
  });
  return written;
}

/// Checks and writes one company. Returns the message of what stands against it, or "".
std::string CLSCO_AZIENDECOLL::portaIntermedio(const Variant& ditta, const Variant& intermedio) {
  const CLSCO_INPUTAZCOLL& in = input();
  const std::string_view kind = customerOrSupplier(in.Pint_TipoCF);
  if (!EsisteCliFor(ditta)) {
    return join("Il codice ", kind, " ", in.Pvar_CliFor, " non è presente nell'azienda ", ditta,
                ".");
  }
  if (!EsisteIntermedio(ditta, intermedio)) {
    return join("Il codice intermedio ", intermedio, " non è presente nell'azienda ", ditta, ".");
  }
  if (!AggiornaIntermedioCliFor(ditta, intermedio)) {
    return join("Errore durante la modifica dell'intermedio relativo al codice ", kind, " ",
                in.Pvar_CliFor, " dell'azienda ", ditta, ".");
  }
  return {};
}

void CLSCO_AZIENDECOLL::ModificaCliFor() noexcept {
  metodo(
      " in ModificaCliFor", [this] { modifica(); }, [this] { annullaDopoErrore(); });
}

void CLSCO_AZIENDECOLL::modifica() {
  Mbol_GestioneDuplicazioneCliFor = true;
  RecordsetDitteCollegateOPrincipale();
  // After a failure the recordset there may be that of another call.
  const std::shared_ptr<Recordset> ditte = riuscito() ? output().Grst_DitteCollegate : nullptr;
  if (RecordsetVuoto(ditte)) {
    Mbol_GestioneDuplicazioneCliFor = false;
    return;
  }
  const Variant intermedio = IntermedioCliFor();
  // Callers rely on it: the transaction is the method's own even when the caller tells of one.
  iniziaTransazione();
  std::string refusal;
  while (!ditte->atEnd()) {
    refusal = portaIntermedio(ditte->fields().item("DITTA").value(), intermedio);
    if (!refusal.empty()) {
      break;
    }
    ditte->moveNext();
  }
  if (refusal.empty()) {
    connessione().commitTrans();
  } else {
    connessione().rollbackTrans();
    Stato = kTrapped;
    Errore = std::move(refusal);
  }
  Mbol_TransazioneAperta = false;
  Mbol_GestioneDuplicazioneCliFor = false;
}

}  // namespace azcoll
