#include "service/service.h"

#include <utility>

#include "activities/deletion.h"
#include "activities/insertion.h"
#include "activities/lookups.h"
#include "activities/previous_period.h"
#include "activities/query.h"
#include "activities/synchronisation.h"
#include "activities/year_duplication.h"
#include "clifor/deletion.h"
#include "clifor/duplication.h"
#include "clifor/modification.h"
#include "component/values.h"
#include "linked/accounting_year.h"
#include "linked/configuration_checks.h"
#include "linked/procedure_recordsets.h"
#include "linked/recordsets.h"
#include "linked/resolution.h"

namespace azcoll {

CLSCO_AZIENDECOLL::CLSCO_AZIENDECOLL(std::shared_ptr<Platform> platform)
    : CPInput{std::make_shared<CLSCO_INPUTAZCOLL>()},
      CPOutput{std::make_shared<CLSCO_OUTPUTAZCOLL>()} {
  session_.platform = std::move(platform);
}

CLSCO_AZIENDECOLL::~CLSCO_AZIENDECOLL() {
  if (CPInput && CPInput->Connessione) {
    // A caller may have put a connection of its own in the place of the one opened here.
    if (session_.Mbol_ConnessioneAperta && CPInput->Connessione == session_.opened.lock()) {
      ignoreErrors([this] { CPInput->Connessione->close(); });
    }
    CPInput->Connessione = nullptr;
  }
}

template <auto Method>
auto CLSCO_AZIENDECOLL::run() noexcept {
  Call call{CPInput, CPOutput, Stato, Errore, session_};
  return Method(call);
}

// Who is linked to whom, and what is missing.

void CLSCO_AZIENDECOLL::ControllaDittaPrincipale() noexcept {
  run<linked::ControllaDittaPrincipale>();
}
void CLSCO_AZIENDECOLL::ControllaDittaCollegata() noexcept {
  run<linked::ControllaDittaCollegata>();
}
void CLSCO_AZIENDECOLL::DitteCollegate() noexcept { run<linked::DitteCollegate>(); }
void CLSCO_AZIENDECOLL::RecordsetDitteCollegate() noexcept {
  run<linked::RecordsetDitteCollegate>();
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipale() noexcept {
  run<linked::RecordsetDitteCollegateOPrincipale>();
}
void CLSCO_AZIENDECOLL::DitteCollegatePiuPrincipale() noexcept {
  run<linked::DitteCollegatePiuPrincipale>();
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerSedi() noexcept {
  run<linked::RecordsetDitteCollegateOPrincipalePerSedi>();
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerIntermedi() noexcept {
  run<linked::RecordsetDitteCollegateOPrincipalePerIntermedi>();
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipale() noexcept {
  run<linked::RecordsetDitteCollegatePiuPrincipale>();
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipaleNoPrinc() noexcept {
  run<linked::RecordsetDitteCollegatePiuPrincipaleNoPrinc>();
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva() noexcept {
  run<linked::RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva>();
}
void CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio() noexcept {
  run<linked::RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio>();
}
std::string CLSCO_AZIENDECOLL::GetDittaPrincipale() noexcept {
  return run<linked::GetDittaPrincipale>();
}
bool CLSCO_AZIENDECOLL::ControllaDittaNonCollegata() noexcept {
  return run<linked::ControllaDittaNonCollegata>();
}
bool CLSCO_AZIENDECOLL::ControllaAttivitaNonCollegata() noexcept {
  return run<linked::ControllaAttivitaNonCollegata>();
}
bool CLSCO_AZIENDECOLL::VerificaAnnoIvaEsercizioContabile() noexcept {
  return run<linked::VerificaAnnoIvaEsercizioContabile>();
}

// Customers and suppliers common to the group.

void CLSCO_AZIENDECOLL::DuplicaCliFor() noexcept { run<clifor::DuplicaCliFor>(); }
void CLSCO_AZIENDECOLL::EliminaCliFor() noexcept { run<clifor::EliminaCliFor>(); }
void CLSCO_AZIENDECOLL::ModificaCliFor() noexcept { run<clifor::ModificaCliFor>(); }

// Activities.

void CLSCO_AZIENDECOLL::RecordsetAttivitaCollegate() noexcept {
  run<activities::RecordsetAttivitaCollegate>();
}
void CLSCO_AZIENDECOLL::StringaSQLAttivitaCollegate() noexcept {
  run<activities::StringaSQLAttivitaCollegate>();
}
void CLSCO_AZIENDECOLL::DuplicaAttività() noexcept { run<activities::DuplicaAttività>(); }
void CLSCO_AZIENDECOLL::InserisciAttività() noexcept { run<activities::InserisciAttività>(); }
void CLSCO_AZIENDECOLL::AggiornaAttività() noexcept { run<activities::AggiornaAttività>(); }
void CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAttività() noexcept {
  run<activities::AggiornaDatiGestionaliPerAttività>();
}
void CLSCO_AZIENDECOLL::StringaSQLEliminazioneAttività() noexcept {
  run<activities::StringaSQLEliminazioneAttività>();
}
void CLSCO_AZIENDECOLL::EliminaAttivitàSingolaCollegamentoMultiAzienda() noexcept {
  run<activities::EliminaAttivitàSingolaCollegamentoMultiAzienda>();
}
void CLSCO_AZIENDECOLL::GetCodiceAttivitàDaSezionale() noexcept {
  run<activities::GetCodiceAttivitàDaSezionale>();
}
void CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAnagraficaAttività() noexcept {
  run<activities::AggiornaDatiGestionaliPerAnagraficaAttività>();
}
void CLSCO_AZIENDECOLL::InserisciAttivitàDaPeriodoPrecedente() noexcept {
  run<activities::InserisciAttivitàDaPeriodoPrecedente>();
}
void CLSCO_AZIENDECOLL::GetCodiceAttività() noexcept { run<activities::GetCodiceAttività>(); }
bool CLSCO_AZIENDECOLL::VerificaEsistenzaAttivita() noexcept {
  return run<activities::VerificaEsistenzaAttivita>();
}
void CLSCO_AZIENDECOLL::AggiornaDateRegistriAnagraficaAttività() noexcept {
  run<activities::AggiornaDateRegistriAnagraficaAttività>();
}
void CLSCO_AZIENDECOLL::StringaSQLAttivitàSingolaCollegamentoMultiAzienda() noexcept {
  run<activities::StringaSQLAttivitàSingolaCollegamentoMultiAzienda>();
}

}  // namespace azcoll
