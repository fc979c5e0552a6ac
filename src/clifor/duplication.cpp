#include "component/service.h"
#include "component/values.h"
#include "data/text.h"

namespace azcoll {

void CLSCO_AZIENDECOLL::DuplicaCliFor() noexcept {
  // Callers rely on it: the message names the method with a lower-case "f".
  metodo(
      " in DuplicaClifor", [this] { duplica(); }, [this] { annullaDopoErrore(); });
}

void CLSCO_AZIENDECOLL::duplica() {
  CLSCO_INPUTAZCOLL& in = input();
  static_cast<void>(annoDellaChiamata(true));  // the look-ups would only find no group
  Mbol_GestioneDuplicazioneCliFor = true;
  const std::string ditta = testo(in.Pvar_Ditta);
  const std::string principale = GetDittaPrincipale();
  std::shared_ptr<Recordset> ditte;
  const std::string elenco = LeggiDitteCollegate(ditte);
  const bool sharesNothing = isNumber(ValoreDefault(output().IndTipoCont, ""), 1);
  if ((principale.empty() && elenco.empty()) || sharesNothing) {
    Mbol_GestioneDuplicazioneCliFor = false;
    return;
  }

  Variant codice = in.Pvar_CliFor;
  iniziaTransazione();
  if (!CodiceCliForLibero(ditta, principale, elenco, codice, true)) {
    AggiornaCodiceCliFor(codice);
    in.Pvar_CliFor = codice;
  }

  const std::shared_ptr<Recordset> sorgente =
      leggi(join("SELECT *",                                               //
                 " FROM CG44_CLIFOR",                                      //
                 " WHERE CG44_DITTA_CG18 = ", in.Pvar_Ditta,               //
                 " AND CG44_TIPOCF = ", static_cast<int>(in.Pint_TipoCF),  //
                 " AND CG44_CLIFOR = ", in.Pvar_CliFor));
  if (sorgente->recordCount() == 0) {
    // Callers rely on it: the transaction stays open and belongs to the owner of the connection,
    // and there is no message.
    Mbol_GestioneDuplicazioneCliFor = false;
    Stato = kTrapped;
    return;
  }

  if (ditta != principale) {
    copiaCompleta(principale, sorgente->fields());
  }
  if (ditte && ditte->recordCount() != 0) {
    copieRidotte(*ditte, sorgente->fields());
  }
  NumeraCliFor(ditta, principale, elenco, codice);
  // Callers rely on it: a numbering that failed is reported, and the copies are committed all the
  // same.
  connessione().commitTrans();
  Mbol_TransazioneAperta = false;
  Mbol_GestioneDuplicazioneCliFor = false;
}

/// Begins a transaction and notes that it is this object's to end.
void CLSCO_AZIENDECOLL::iniziaTransazione() {
  connessione().beginTrans();
  Mbol_TransazioneAperta = true;
}

/// What the trap of a method with a transaction of its own does first. Callers rely on it: only a
/// failure that the provider recorded is rolled back.
void CLSCO_AZIENDECOLL::annullaDopoErrore() {
  if (Mbol_TransazioneAperta && connessione().errors().count() > 0) {
    connessione().errors().clear();
    connessione().rollbackTrans();
  }
}

/// Makes the customer/supplier whole in the main company: intermediary and branch, master row with
/// its agent, sales data when there are any.
void CLSCO_AZIENDECOLL::copiaCompleta(const Variant& principale, Fields& sorgente) {
  const CLSCO_INPUTAZCOLL& in = input();
  const std::shared_ptr<Recordset> vendite =
      leggi(join("SELECT *",                                                    //
                 " FROM MG19_CLIFORVA",                                         //
                 " WHERE MG19_DITTA_CG18 = ", in.Pvar_Ditta,                    //
                 " AND MG19_TIPOCF_CG44 = ", static_cast<int>(in.Pint_TipoCF),  //
                 " AND MG19_CLIFOR_CG44 = ", in.Pvar_CliFor));
  ControllaIntermedio(principale, static_cast<std::int32_t>(in.Pint_TipoCF),
                      sorgente.item("CG44_INTERMEDIO_CG40").value());
  ControllaSedi(principale, sorgente.item("CG44_CODSEDE_CG31").value());
  const Variant agente =
      AgenteCollegato(ValoreDefault(sorgente.item("CG44_IDAGENTE_MG17").value(), ""), principale);
  esegui(inserimentoCompleto(principale, sorgente, agente));
  if (vendite->recordCount() != 0) {
    esegui(inserimentoDatiVendita(principale, vendite->fields()));
  }
}

/// Writes the reduced, inactive copy into every company of `ditte`.
void CLSCO_AZIENDECOLL::copieRidotte(Recordset& ditte, Fields& sorgente) {
  const auto tipoCF = static_cast<std::int32_t>(input().Pint_TipoCF);
  const Variant intermedio = sorgente.item("CG44_INTERMEDIO_CG40").value();
  const Variant sede = sorgente.item("CG44_CODSEDE_CG31").value();
  const std::string testa = inizioInserimentoMaestro();
  const std::string coda = codaInserimentoRidotto(sorgente);
  for (ditte.moveFirst(); !ditte.atEnd(); ditte.moveNext()) {
    const Variant ditta = ditte.fields().item("DITTA").value();
    ControllaIntermedio(ditta, tipoCF, intermedio);
    ControllaSedi(ditta, sede);
    esegui(join(testa, ditta, coda));
  }
}

}  // namespace azcoll
