// The group seen from the current company: what the stored procedure gives.

#include "component/service.h"
#include "data/error.h"

namespace azcoll {

/// Asks the stored procedure for the group, then lets go of the command. The recordset stands in
/// `ditte` before that; it stays connected, on its first row.
void CLSCO_AZIENDECOLL::leggiGruppo(const FiltriGruppo& filtri, std::shared_ptr<Recordset>& ditte) {
  const std::shared_ptr<Command> command = comandoDitteCollegate(filtri);
  std::int64_t affected = 0;
  ditte = command->execute(affected, CommandOption::StoredProcedure);
  command->setActiveConnection(nullptr);
  if (!ditte) {
    throw Error("PC_GetDitteCollegate non ha restituito righe");
  }
}

/// Hands out the group without the current company; null and false when nobody is left of it.
bool CLSCO_AZIENDECOLL::consegnaGruppo(const FiltriGruppo& filtri) {
  CLSCO_OUTPUTAZCOLL& out = output();
  leggiGruppo(filtri, out.Grst_DitteCollegate);
  if (out.Grst_DitteCollegate->atEnd()) {
    out.Grst_DitteCollegate = nullptr;
    return false;
  }
  out.IndTipoCont = out.Grst_DitteCollegate->fields().item("CG86_INDTIPOCONT").value();
  return true;
}

/// The same for the methods with a filter, which ask as the duplication does.
void CLSCO_AZIENDECOLL::consegnaGruppoFiltrato(const FiltriGruppo& filtri) {
  Mbol_GestioneDuplicazioneCliFor = true;
  if (!consegnaGruppo(filtri)) {
    // Callers rely on it: the flag stays set for the next calls when companies were found.
    Mbol_GestioneDuplicazioneCliFor = false;
  }
}

void CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipale() noexcept {
  metodo(" in RecordsetDitteCollegateOPrincipale",
         [this] { consegnaGruppo({.escludiCorrente = true}); });
}

void CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerSedi() noexcept {
  metodo(" in RecordsetDitteCollegateOPrincipalePerSedi", [this] {
    const CLSCO_INPUTAZCOLL& in = input();
    if (!mancante(in.CodiceSede)) {
      consegnaGruppoFiltrato({.escludiCorrente = true, .codSede = in.CodiceSede});
    }
  });
}

void CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerIntermedi() noexcept {
  metodo(" in RecordsetDitteCollegateOPrincipalePerIntermedi", [this] {
    const CLSCO_INPUTAZCOLL& in = input();
    const Variant tipoCF = static_cast<std::int32_t>(in.Pint_TipoCF);
    if (!mancante(in.CodiceIntermedio) && !mancante(tipoCF)) {
      consegnaGruppoFiltrato(
          {.escludiCorrente = true, .tipoCF = tipoCF, .codIntermedio = in.CodiceIntermedio});
    }
  });
}

}  // namespace azcoll
