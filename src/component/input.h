#pragma once

#include <memory>
#include <string>

#include "component/enums.h"
#include "data/connection.h"
#include "data/variant.h"

namespace azcoll {

/// The parameters of a call. A caller fills the fields that its method reads, then calls the
/// method.
///
/// Every field starts empty: objects null, texts "", variants Empty, Booleans false, enumerations
/// 0. In a variant field Null, Empty and "" all mean "not given".
struct CLSCO_INPUTAZCOLL {
  /// Connection to work on. When null, the service opens one from `StringaConnessione` and keeps
  /// it.
  std::shared_ptr<Connection> Connessione;
  /// Connection string, used when `Connessione` is null.
  std::string StringaConnessione;
  /// Code of the current company; every method with the common preamble requires it.
  Variant Pvar_Ditta;
  /// Customer or supplier.
  EnumTipoCF Pint_TipoCF = Cliente;
  /// Customer/supplier code. Duplication writes the new code here when it had to change it.
  Variant Pvar_CliFor;
  /// Processing start date; its year is the reference year when `AnnoSolare` is not given.
  Variant DataInizioElaborazione;
  /// Branch code: filter of `RecordsetDitteCollegateOPrincipalePerSedi`.
  Variant CodiceSede;
  /// Intermediary code: filter of `RecordsetDitteCollegateOPrincipalePerIntermedi`.
  Variant CodiceIntermedio;
  /// Calendar (VAT) year of the call; first source of the reference year.
  Variant AnnoSolare;
  /// Whether the caller already holds a transaction on `Connessione`; read by the deletion only.
  bool Pbol_InTransaction = false;
  /// The caller's framework object, through which the configuration screens are shown.
  std::shared_ptr<Object> ActiveInterface;
  /// Year whose rows are to be duplicated or verified.
  Variant AnnoSolareDaDuplicare;
  /// Caller's select list for the activity queries.
  std::string StrSelectSQLAttività;
  /// Add the description columns to the activity query.
  bool Pbol_AggiungiCampiDecodificheAttività = false;
  /// Activity code.
  Variant CodiceAttività;
  /// Identity of an activity row.
  Variant IdAttività;
  /// The call comes from the multi-company activity management.
  bool IndProvenienzaMultiAziende = false;
  /// Restrict the activity query to the single company.
  bool SelezionaAttivitàSingolaAzienda = false;
  /// Insert activities by copying the previous period.
  bool InserisciAttivitàDaPeriodoPrecedente = false;
  /// Activity query over the activity registry only.
  bool SelezionaSoloAnagraficheAttività = false;
  /// Hand out the row that would be inserted instead of inserting it.
  bool PopolaRecordsetInserimentoAttivitàMultiAzienda = false;
  /// Select the main activity only.
  bool SelezionaAttivitàPrincipale = false;
  /// Wording of the configuration prompts.
  EnumTipoMsgAziendeColl TipoMsgAziendeColl = MsgProvenienzaEserciziAzienda;
  /// Code of a VAT sectional register.
  Variant Sezionale;
  /// Also give a second result with the sectional registers.
  bool Pbol_ValorizzaRecordsetSezionali = false;
  /// Customer/supplier duplication management on (True, 1) or off (False, 0).
  Variant AttivaGestioneDuplicazioneCliFor;
  /// Leave the linked companies out of multi-company activity work.
  bool MultiAziendaEscludiCollegate = false;
};

}  // namespace azcoll
