#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "service/service.h"

namespace azcoll {

// The one table of members: fields and methods in interface order. The command line, the JSON
// output, the automation interface and the tests read it; nothing lists the members a second time.

/// Kind of a field; the order is that of the alternatives of `FieldMember`.
enum class FieldKind : std::size_t {
  Variant,
  Text,
  Boolean,
  TipoCF,
  TipoMsg,
  Connection,
  Recordset,
  Object
};

/// Pointer to the data member behind a field.
template <typename Class>
using FieldMember =
    std::variant<Variant Class::*, std::string Class::*, bool Class::*, EnumTipoCF Class::*,
                 EnumTipoMsgAziendeColl Class::*, std::shared_ptr<Connection> Class::*,
                 std::shared_ptr<Recordset> Class::*, std::shared_ptr<Object> Class::*>;

/// What a caller passes in a variant field, beyond its being a variant.
enum class FieldUse { Any, Date };

template <typename Class>
struct FieldEntry {
  std::string_view name;
  FieldMember<Class> member;
  std::string_view meaning;  ///< one line in Italian
  FieldUse use = FieldUse::Any;

  [[nodiscard]] constexpr FieldKind kind() const { return static_cast<FieldKind>(member.index()); }
};

/// Type name of a field kind, as the interface publishes it.
[[nodiscard]] constexpr std::string_view typeName(FieldKind kind) {
  constexpr std::array<std::string_view, 8> names{
      "Variant",    "String",    "Boolean", "EnumTipoCF", "EnumTipoMsgAziendeColl",
      "Connection", "Recordset", "Object"};
  return names[static_cast<std::size_t>(kind)];
}

using InputField = FieldEntry<CLSCO_INPUTAZCOLL>;
using OutputField = FieldEntry<CLSCO_OUTPUTAZCOLL>;

inline constexpr std::array kInputFields{
    InputField{"Connessione", &CLSCO_INPUTAZCOLL::Connessione, "connessione al database"},
    InputField{"StringaConnessione", &CLSCO_INPUTAZCOLL::StringaConnessione,
               "stringa di connessione, usata senza Connessione"},
    InputField{"Pvar_Ditta", &CLSCO_INPUTAZCOLL::Pvar_Ditta, "codice dell'azienda corrente"},
    InputField{"Pint_TipoCF", &CLSCO_INPUTAZCOLL::Pint_TipoCF, "cliente o fornitore"},
    InputField{"Pvar_CliFor", &CLSCO_INPUTAZCOLL::Pvar_CliFor, "codice del cliente/fornitore"},
    InputField{"DataInizioElaborazione", &CLSCO_INPUTAZCOLL::DataInizioElaborazione,
               "data di inizio elaborazione: dà l'anno quando manca AnnoSolare", FieldUse::Date},
    InputField{"CodiceSede", &CLSCO_INPUTAZCOLL::CodiceSede, "codice della sede"},
    InputField{"CodiceIntermedio", &CLSCO_INPUTAZCOLL::CodiceIntermedio, "codice dell'intermedio"},
    InputField{"AnnoSolare", &CLSCO_INPUTAZCOLL::AnnoSolare, "anno solare (IVA) della chiamata"},
    InputField{"Pbol_InTransaction", &CLSCO_INPUTAZCOLL::Pbol_InTransaction,
               "il chiamante ha già una transazione aperta (eliminazione)"},
    InputField{"ActiveInterface", &CLSCO_INPUTAZCOLL::ActiveInterface,
               "interfaccia attiva del chiamante, per le videate di configurazione"},
    InputField{"AnnoSolareDaDuplicare", &CLSCO_INPUTAZCOLL::AnnoSolareDaDuplicare,
               "anno da duplicare o da verificare"},
    InputField{"StrSelectSQLAttività", &CLSCO_INPUTAZCOLL::StrSelectSQLAttività,
               "elenco di colonne del chiamante per le interrogazioni delle attività"},
    InputField{"Pbol_AggiungiCampiDecodificheAttività",
               &CLSCO_INPUTAZCOLL::Pbol_AggiungiCampiDecodificheAttività,
               "aggiunge le colonne con le descrizioni"},
    InputField{"CodiceAttività", &CLSCO_INPUTAZCOLL::CodiceAttività, "codice dell'attività"},
    InputField{"IdAttività", &CLSCO_INPUTAZCOLL::IdAttività,
               "identificativo della riga di attività"},
    InputField{"IndProvenienzaMultiAziende", &CLSCO_INPUTAZCOLL::IndProvenienzaMultiAziende,
               "la chiamata viene dalla gestione multi azienda"},
    InputField{"SelezionaAttivitàSingolaAzienda",
               &CLSCO_INPUTAZCOLL::SelezionaAttivitàSingolaAzienda,
               "solo le attività della singola azienda"},
    InputField{"InserisciAttivitàDaPeriodoPrecedente",
               &CLSCO_INPUTAZCOLL::InserisciAttivitàDaPeriodoPrecedente,
               "inserisce le attività copiando il periodo precedente"},
    InputField{"SelezionaSoloAnagraficheAttività",
               &CLSCO_INPUTAZCOLL::SelezionaSoloAnagraficheAttività,
               "solo l'anagrafica delle attività"},
    InputField{"PopolaRecordsetInserimentoAttivitàMultiAzienda",
               &CLSCO_INPUTAZCOLL::PopolaRecordsetInserimentoAttivitàMultiAzienda,
               "restituisce la riga da inserire senza inserirla"},
    InputField{"SelezionaAttivitàPrincipale", &CLSCO_INPUTAZCOLL::SelezionaAttivitàPrincipale,
               "solo l'attività principale"},
    InputField{"TipoMsgAziendeColl", &CLSCO_INPUTAZCOLL::TipoMsgAziendeColl,
               "provenienza della richiesta di configurazione"},
    InputField{"Sezionale", &CLSCO_INPUTAZCOLL::Sezionale, "codice del sezionale IVA"},
    InputField{"Pbol_ValorizzaRecordsetSezionali",
               &CLSCO_INPUTAZCOLL::Pbol_ValorizzaRecordsetSezionali,
               "aggiunge il recordset dei sezionali"},
    InputField{"AttivaGestioneDuplicazioneCliFor",
               &CLSCO_INPUTAZCOLL::AttivaGestioneDuplicazioneCliFor,
               "gestione della duplicazione di clienti e fornitori attiva"},
    InputField{"MultiAziendaEscludiCollegate", &CLSCO_INPUTAZCOLL::MultiAziendaEscludiCollegate,
               "esclude le aziende collegate"},
};

inline constexpr std::array kOutputFields{
    OutputField{"Gbol_DittaPrincipale", &CLSCO_OUTPUTAZCOLL::Gbol_DittaPrincipale,
                "l'azienda è principale, o prende parte a un collegamento"},
    OutputField{"DitteCollegate", &CLSCO_OUTPUTAZCOLL::DitteCollegate,
                "elenco delle aziende, separate da virgola"},
    OutputField{"Grst_DitteCollegate", &CLSCO_OUTPUTAZCOLL::Grst_DitteCollegate,
                "recordset delle aziende collegate"},
    OutputField{"IndTipoCont", &CLSCO_OUTPUTAZCOLL::IndTipoCont,
                "tipo di contabilità del collegamento"},
    OutputField{"Gvar_DittaPrincipale", &CLSCO_OUTPUTAZCOLL::Gvar_DittaPrincipale,
                "codice dell'azienda principale"},
    OutputField{"Grst_AttivitaCollegate", &CLSCO_OUTPUTAZCOLL::Grst_AttivitaCollegate,
                "recordset delle attività"},
    OutputField{"GstrSQL_AttivitaCollegate", &CLSCO_OUTPUTAZCOLL::GstrSQL_AttivitaCollegate,
                "istruzione SQL composta"},
    OutputField{"CodiceAttività", &CLSCO_OUTPUTAZCOLL::CodiceAttività, "codice dell'attività"},
    OutputField{"DescrAttività", &CLSCO_OUTPUTAZCOLL::DescrAttività, "descrizione dell'attività"},
    OutputField{"IdAttività", &CLSCO_OUTPUTAZCOLL::IdAttività,
                "identificativo della riga di attività"},
};

/// The four public fields of the service object, in interface order.
inline constexpr std::array<std::string_view, 4> kServiceFields{"CPInput", "CPOutput", "Stato",
                                                                "Errore"};

/// A method of the service: how to call it, by what it gives back.
using MethodMember =
    std::variant<void (CLSCO_AZIENDECOLL::*)() noexcept, bool (CLSCO_AZIENDECOLL::*)() noexcept,
                 std::string (CLSCO_AZIENDECOLL::*)() noexcept>;

enum class MethodResult { None, Boolean, Text };

struct MethodEntry {
  std::string_view name;
  MethodResult result;
  MethodMember member;
  std::string_view meaning;  ///< one line in Italian
};

/// Type name of a method result, as the interface publishes it; "" for none.
[[nodiscard]] constexpr std::string_view typeName(MethodResult result) {
  constexpr std::array<std::string_view, 3> names{"", "Boolean", "String"};
  return names[static_cast<std::size_t>(result)];
}

inline constexpr std::array kMethods{
    MethodEntry{"DuplicaCliFor", MethodResult::None, &CLSCO_AZIENDECOLL::DuplicaCliFor,
                "diffonde un cliente/fornitore nel gruppo"},
    MethodEntry{"EliminaCliFor", MethodResult::None, &CLSCO_AZIENDECOLL::EliminaCliFor,
                "elimina un cliente/fornitore dal gruppo"},
    MethodEntry{"ControllaDittaPrincipale", MethodResult::None,
                &CLSCO_AZIENDECOLL::ControllaDittaPrincipale, "dice se l'azienda è la principale"},
    MethodEntry{"ControllaDittaCollegata", MethodResult::None,
                &CLSCO_AZIENDECOLL::ControllaDittaCollegata,
                "dice se l'azienda prende parte a un collegamento"},
    MethodEntry{"DitteCollegate", MethodResult::None, &CLSCO_AZIENDECOLL::DitteCollegate,
                "elenca le aziende collegate alla principale"},
    MethodEntry{"RecordsetDitteCollegate", MethodResult::None,
                &CLSCO_AZIENDECOLL::RecordsetDitteCollegate, "aziende collegate"},
    MethodEntry{"RecordsetDitteCollegateOPrincipale", MethodResult::None,
                &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipale,
                "il gruppo visto dall'azienda corrente"},
    MethodEntry{"DitteCollegatePiuPrincipale", MethodResult::None,
                &CLSCO_AZIENDECOLL::DitteCollegatePiuPrincipale,
                "elenca le aziende collegate e la principale"},
    MethodEntry{"RecordsetDitteCollegateOPrincipalePerSedi", MethodResult::None,
                &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerSedi,
                "il gruppo, per le aziende che hanno la sede"},
    MethodEntry{"RecordsetDitteCollegateOPrincipalePerIntermedi", MethodResult::None,
                &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerIntermedi,
                "il gruppo, per le aziende che hanno l'intermedio"},
    MethodEntry{"RecordsetDitteCollegatePiuPrincipale", MethodResult::None,
                &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipale,
                "aziende collegate, prima la principale"},
    MethodEntry{"RecordsetDitteCollegatePiuPrincipaleNoPrinc", MethodResult::None,
                &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipaleNoPrinc,
                "tutto il gruppo, anche da un'azienda collegata"},
    MethodEntry{"RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva", MethodResult::None,
                &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva,
                "aziende collegate con i dati della denuncia IVA"},
    MethodEntry{"RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio", MethodResult::None,
                &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio,
                "aziende collegate, per ultima la principale"},
    MethodEntry{"ModificaCliFor", MethodResult::None, &CLSCO_AZIENDECOLL::ModificaCliFor,
                "porta l'intermedio modificato in tutto il gruppo"},
    MethodEntry{"ControllaDittaNonCollegata", MethodResult::Boolean,
                &CLSCO_AZIENDECOLL::ControllaDittaNonCollegata,
                "verifica che i collegamenti dell'anno esistano"},
    MethodEntry{"GetDittaPrincipale", MethodResult::Text, &CLSCO_AZIENDECOLL::GetDittaPrincipale,
                "codice dell'azienda principale"},
    MethodEntry{"RecordsetAttivitaCollegate", MethodResult::None,
                &CLSCO_AZIENDECOLL::RecordsetAttivitaCollegate, "attività dell'anno"},
    MethodEntry{"StringaSQLAttivitaCollegate", MethodResult::None,
                &CLSCO_AZIENDECOLL::StringaSQLAttivitaCollegate, "istruzione SQL delle attività"},
    MethodEntry{"DuplicaAttività", MethodResult::None, &CLSCO_AZIENDECOLL::DuplicaAttività,
                "duplica le attività su un altro anno"},
    MethodEntry{"InserisciAttività", MethodResult::None, &CLSCO_AZIENDECOLL::InserisciAttività,
                "inserisce l'attività dell'anno"},
    MethodEntry{"AggiornaAttività", MethodResult::None, &CLSCO_AZIENDECOLL::AggiornaAttività,
                "aggiorna le attività dai dati dell'azienda"},
    MethodEntry{"AggiornaDatiGestionaliPerAttività", MethodResult::None,
                &CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAttività,
                "aggiorna i dati dell'azienda dalle attività"},
    MethodEntry{"StringaSQLEliminazioneAttività", MethodResult::None,
                &CLSCO_AZIENDECOLL::StringaSQLEliminazioneAttività,
                "istruzione SQL di eliminazione delle attività"},
    MethodEntry{"EliminaAttivitàSingolaCollegamentoMultiAzienda", MethodResult::None,
                &CLSCO_AZIENDECOLL::EliminaAttivitàSingolaCollegamentoMultiAzienda,
                "elimina le attività singole di un'azienda collegata"},
    MethodEntry{"GetCodiceAttivitàDaSezionale", MethodResult::None,
                &CLSCO_AZIENDECOLL::GetCodiceAttivitàDaSezionale, "attività di un sezionale IVA"},
    MethodEntry{"AggiornaDatiGestionaliPerAnagraficaAttività", MethodResult::None,
                &CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAnagraficaAttività,
                "aggiorna i dati dell'azienda dall'anagrafica attività"},
    MethodEntry{"InserisciAttivitàDaPeriodoPrecedente", MethodResult::None,
                &CLSCO_AZIENDECOLL::InserisciAttivitàDaPeriodoPrecedente,
                "inserisce le attività dal periodo precedente"},
    MethodEntry{"ControllaAttivitaNonCollegata", MethodResult::Boolean,
                &CLSCO_AZIENDECOLL::ControllaAttivitaNonCollegata,
                "verifica che le attività dell'anno esistano"},
    MethodEntry{"GetCodiceAttività", MethodResult::None, &CLSCO_AZIENDECOLL::GetCodiceAttività,
                "attività scelta dai filtri"},
    MethodEntry{"VerificaEsistenzaAttivita", MethodResult::Boolean,
                &CLSCO_AZIENDECOLL::VerificaEsistenzaAttivita, "dice se l'attività esiste"},
    MethodEntry{"AggiornaDateRegistriAnagraficaAttività", MethodResult::None,
                &CLSCO_AZIENDECOLL::AggiornaDateRegistriAnagraficaAttività,
                "aggiorna le date dei registri nell'anagrafica attività"},
    MethodEntry{"VerificaAnnoIvaEsercizioContabile", MethodResult::Boolean,
                &CLSCO_AZIENDECOLL::VerificaAnnoIvaEsercizioContabile,
                "dice se un esercizio tocca l'anno"},
    MethodEntry{"StringaSQLAttivitàSingolaCollegamentoMultiAzienda", MethodResult::None,
                &CLSCO_AZIENDECOLL::StringaSQLAttivitàSingolaCollegamentoMultiAzienda,
                "condizione SQL delle attività singole di un'azienda collegata"},
};
static_assert(kMethods.size() == 34);
static_assert(kInputFields.size() == 27);
static_assert(kOutputFields.size() == 10);

}  // namespace azcoll
