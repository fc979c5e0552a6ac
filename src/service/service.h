#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "component/input.h"
#include "component/output.h"
#include "component/platform.h"
#include "component/session.h"
#include "data/variant.h"

namespace azcoll {

/// The linked companies of a VAT year and what is kept common to them.
///
/// A caller fills `CPInput`, calls one method, reads `Stato` and `Errore`, then `CPOutput`. No
/// method throws. `Stato` is 0 after a success, 1 when the call was refused for missing or invalid
/// input, 99 after a failure; `Errore` holds the message of the last failure and is not cleared by
/// a success. One caller at a time. Between calls the object keeps the connection that it opened
/// and what `Session` names.
class CLSCO_AZIENDECOLL {
 public:
  /// A service on the default platform of this build.
  CLSCO_AZIENDECOLL();
  explicit CLSCO_AZIENDECOLL(std::shared_ptr<Platform> platform);
  CLSCO_AZIENDECOLL(const CLSCO_AZIENDECOLL&) = delete;
  CLSCO_AZIENDECOLL(CLSCO_AZIENDECOLL&&) = delete;
  CLSCO_AZIENDECOLL& operator=(const CLSCO_AZIENDECOLL&) = delete;
  CLSCO_AZIENDECOLL& operator=(CLSCO_AZIENDECOLL&&) = delete;
  /// Closes the connection only if the service opened it; drops the input's reference in any case.
  ~CLSCO_AZIENDECOLL();

  /// Parameters of the next call; a caller may put an object of its own here.
  std::shared_ptr<CLSCO_INPUTAZCOLL> CPInput;
  /// Results of the last call; a caller may put an object of its own here.
  std::shared_ptr<CLSCO_OUTPUTAZCOLL> CPOutput;
  /// Outcome of the last call, a 16-bit integer.
  Variant Stato{std::int16_t{0}};
  /// Message of the last failure; Empty until the first one.
  Variant Errore;

  /// Spreads a customer/supplier just saved in `Pvar_Ditta` over the group: moves it to a code that
  /// is free in every company (`Pvar_CliFor` then holds the new code), writes a full copy into the
  /// main company and a reduced, inactive one into every linked company, and records the code in
  /// the document numbering. One transaction. Failures: " in DuplicaClifor".
  void DuplicaCliFor() noexcept;

  /// Deletes the customer/supplier from every other company of the group, with all its rows, in one
  /// transaction; the current company's own deletion is the caller's. Without a transaction of the
  /// caller (`Pbol_InTransaction`) the deletion is first tried in the current company and undone.
  /// `Stato` 1: the current company refuses, the message ends with " in EliminaCliFor"; 2: another
  /// company refuses, the message names it; other failures: " in EliminaCliFor".
  void EliminaCliFor() noexcept;

  /// Sets `Gbol_DittaPrincipale`: whether the company is the main company of its group.
  void ControllaDittaPrincipale() noexcept;

  /// Sets `Gbol_DittaPrincipale`: whether the company takes part in a link of the year; if so, also
  /// `IndTipoCont` and `Gvar_DittaPrincipale` from the first link found.
  void ControllaDittaCollegata() noexcept;

  /// Sets `DitteCollegate`: the companies linked to this main company, then the company itself,
  /// separated by ", "; "" when there are none. Sets `IndTipoCont` from the first link.
  void DitteCollegate() noexcept;

  /// Sets `Grst_DitteCollegate`: the companies linked to this main company, in no order; an open
  /// recordset without rows when there are none. Like every method that sets the recordset, it sets
  /// `IndTipoCont` from the first row. Failures: " in RecordsetDitteCollegate".
  void RecordsetDitteCollegate() noexcept;

  /// Sets `Grst_DitteCollegate`: the group without the current company, the main company first;
  /// null when there is nobody else. Failures: " in RecordsetDitteCollegateOPrincipale".
  void RecordsetDitteCollegateOPrincipale() noexcept;

  /// Sets `DitteCollegate`: the other companies of the group, whether the company is the main one
  /// or linked, then the company itself, separated by ", "; "" when it takes part in no link. Sets
  /// `IndTipoCont` from the first row. Failures: " in DitteCollegatePiuPrincipale".
  void DitteCollegatePiuPrincipale() noexcept;

  /// `RecordsetDitteCollegateOPrincipale` for the companies that have the branch `CodiceSede`; does
  /// nothing without one. Failures: " in RecordsetDitteCollegateOPrincipalePerSedi".
  void RecordsetDitteCollegateOPrincipalePerSedi() noexcept;

  /// `RecordsetDitteCollegateOPrincipale` for the companies that have the intermediary
  /// `CodiceIntermedio` of the kind `Pint_TipoCF`; does nothing without one. Failures:
  /// " in RecordsetDitteCollegateOPrincipalePerIntermedi".
  void RecordsetDitteCollegateOPrincipalePerIntermedi() noexcept;

  /// `RecordsetDitteCollegate` with the main company first, then the others by code. Failures:
  /// " in RecordsetDitteCollegatePiuPrincipale".
  void RecordsetDitteCollegatePiuPrincipale() noexcept;

  /// Sets `Grst_DitteCollegate`: the whole group, from its main company or from a linked one, in no
  /// order. Failures: " in RecordsetDitteCollegatePiuPrincipaleNoPrinc".
  void RecordsetDitteCollegatePiuPrincipaleNoPrinc() noexcept;

  /// `RecordsetDitteCollegatePiuPrincipale` with the companies' data for the VAT return, without
  /// the companies that have none. Failures: " in RecordsetDitteCollegatePiuPrincipale".
  void RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva() noexcept;

  /// `RecordsetDitteCollegatePiuPrincipale` with the main company last. Failures:
  /// " in RecordsetDitteCollegatePiuPrincipale".
  void RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio() noexcept;

  /// Carries the intermediary that the customer/supplier has in the current company to the other
  /// companies of the group, in one transaction. `Stato` 99 when one of them lacks the
  /// customer/supplier or the intermediary, or refuses the change: the message names it, and no
  /// company keeps a change. Failures: " in ModificaCliFor".
  void ModificaCliFor() noexcept;

  /// Code of the main company of the group, as text; "" when there is none or it cannot be found
  /// out. Sets `IndTipoCont` when there is one. A database failure is swallowed.
  std::string GetDittaPrincipale() noexcept;

  /// Whether nothing is missing: a company that runs several activities over several companies is
  /// linked in the reference year. Asks, while it is not, whether to configure the links, and shows
  /// the screen on a yes; false on a no, and at once when `AnnoSolareDaDuplicare` names a year
  /// without a link of the company. Failures: " in ControllaDittaNonCollegata".
  bool ControllaDittaNonCollegata() noexcept;

  /// The same for a company that runs several activities within itself: whether the activity
  /// `CodiceAttività`, or any one, is there in the reference year. Failures:
  /// " in ControllaAttivitaNonCollegata".
  bool ControllaAttivitaNonCollegata() noexcept;

  /// Whether a financial year of the company opens or closes in the reference year, or spans it.
  /// Failures: " in VerificaAnnoIvaEsercizioContabile".
  bool VerificaAnnoIvaEsercizioContabile() noexcept;

  /// Sets `Grst_AttivitaCollegate`: the activities of the reference year (and of
  /// `AnnoSolareDaDuplicare`), after seeding a year without rows from the one before. Sets
  /// `IndTipoCont`, `CodiceAttività`, `DescrAttività` and `IdAttività` from the first row. With
  /// `Pbol_ValorizzaRecordsetSezionali` the sectional registers are the next result. Failures:
  /// " in RecordsetAttivitaCollegate"; a failure of the seeding keeps its own name.
  void RecordsetAttivitaCollegate() noexcept;

  /// Sets `GstrSQL_AttivitaCollegate`: the statement that reads the activities. Opens no
  /// connection. Failures: " in StringaSQLAttivitaCollegate".
  void StringaSQLAttivitaCollegate() noexcept;

  /// Copies the company's activities of `AnnoSolareDaDuplicare` onto the reference year, replacing
  /// what that year held; refused when the year holds the other kind of configuration than
  /// `IndProvenienzaMultiAziende` says. One transaction. Failures: " in DuplicaAttività".
  void DuplicaAttività() noexcept;

  /// Makes sure that the company has an activity in the reference year: the default one from the
  /// company's data, or a copy of its latest one. Sets `CodiceAttività` when it found or copied
  /// one. With `PopolaRecordsetInserimentoAttivitàMultiAzienda` the row is not inserted but handed
  /// out in `Grst_AttivitaCollegate`. Failures: " in InserisciAttività".
  void InserisciAttività() noexcept;

  /// Copies the company's VAT data onto its activities and their registry entries (regime 2
  /// excepted); a company without activities gets them. Failures: " in AggiornaAttività".
  void AggiornaAttività() noexcept;

  /// Copies the VAT settings of the selected activities onto the company's data. In regime 2 only
  /// the main activity of the latest year writes. Failures: " in
  /// AggiornaDatiGestionaliPerAttività".
  void AggiornaDatiGestionaliPerAttività() noexcept;

  /// Sets `GstrSQL_AttivitaCollegate`: the DELETE of the selected activity rows. Opens no
  /// connection. Failures: " in EliminaAttività".
  void StringaSQLEliminazioneAttività() noexcept;

  /// Deletes the company's own activity rows of a year in which the company is linked under another
  /// one as well. Failures: " in EliminaAttivitàSingolaCollegamentoMultiAzienda".
  void EliminaAttivitàSingolaCollegamentoMultiAzienda() noexcept;

  /// Sets `CodiceAttività`, `DescrAttività` and `IdAttività`: the activity of the register
  /// `Sezionale` of the company in `AnnoSolare`; Null when it has none. `Stato` 1 when one of these
  /// inputs or the connection is missing. Failures: " in GetCodiceAttivitàDaSezionale".
  void GetCodiceAttivitàDaSezionale() noexcept;

  /// Copies the registry entry of `CodiceAttività` and its register dates onto the company, when it
  /// is the company's main activity of the latest year that has one. Failures: " in
  /// AggiornaDatiGestionaliPerAnagraficaAttività".
  void AggiornaDatiGestionaliPerAnagraficaAttività() noexcept;

  /// Seeds the activities of the whole group in the reference year from the latest year before it,
  /// when the input field of the same name asks for it or the company is in regime 0, and a
  /// financial year touches the reference year. Failures: " in InserisciAttività"; a row that fails
  /// does not keep the others from their turn, and its values stay in the input fields
  /// `Pvar_Ditta`, `AnnoSolareDaDuplicare` and `CodiceAttività`.
  void InserisciAttivitàDaPeriodoPrecedente() noexcept;

  /// Sets `CodiceAttività`, `DescrAttività` and `IdAttività`: the company's activity that the input
  /// selects; Null when there is none. Failures: " in GetCodiceAttività".
  void GetCodiceAttività() noexcept;

  /// Whether the activity `CodiceAttività` exists; when it does not, the company's regime decides
  /// whether it is seeded or its configuration asked for. True without an activity code. Failures:
  /// " in VerificaEsistenzaAttivita".
  bool VerificaEsistenzaAttivita() noexcept;

  /// Copies the company's register dates onto its registry entries (regime 2 excepted); a company
  /// without entry gets one. Failures: " in AggiornaDateRegistriAnagraficaAttività".
  void AggiornaDateRegistriAnagraficaAttività() noexcept;

  /// Sets `GstrSQL_AttivitaCollegate`: the WHERE clause of
  /// `EliminaAttivitàSingolaCollegamentoMultiAzienda`, for a statement of the caller. Opens no
  /// connection. Failures: " in EliminaAttività".
  void StringaSQLAttivitàSingolaCollegamentoMultiAzienda() noexcept;

 private:
  /// Runs a method of a family on a call of this object.
  template <auto Method>
  auto run() noexcept;

  Session session_;
};

}  // namespace azcoll
