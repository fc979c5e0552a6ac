#pragma once

#include <array>
#include <string_view>

namespace azcoll::test {

/// What a method looks for the reference year in.
enum class YearUse {
  None,      ///< it reads no year
  AsGiven,   ///< a year 0 is a year
  Numeric,   ///< a year 0 counts as missing
  OwnInput,  ///< `AnnoSolare` alone, with a message of its own
};

/// How a method ends when no reference year can be found out.
struct WithoutYear {
  std::string_view method;
  YearUse use;
  int state;
  std::string_view ending;  ///< of `Errore`
};

/// Every method, in the order of the table of members. Where a method calls another one, the name
/// in the message is that of the one that looked for the year. The methods whose outcome depends on
/// the company's regime stand here for regime 1.
inline constexpr std::array<WithoutYear, 34> kWithoutYear{{
    {"DuplicaCliFor", YearUse::Numeric, 99, " in DuplicaClifor"},
    {"EliminaCliFor", YearUse::Numeric, 99, " in EliminaCliFor"},
    {"ControllaDittaPrincipale", YearUse::Numeric, 99, " in ControllaDittaPrincipale"},
    {"ControllaDittaCollegata", YearUse::AsGiven, 99, " in ControllaDittaCollegata"},
    {"DitteCollegate", YearUse::AsGiven, 99, " in DitteCollegate"},
    {"RecordsetDitteCollegate", YearUse::AsGiven, 99, " in RecordsetDitteCollegate"},
    {"RecordsetDitteCollegateOPrincipale", YearUse::Numeric, 99,
     " in RecordsetDitteCollegateOPrincipale"},
    {"DitteCollegatePiuPrincipale", YearUse::AsGiven, 99, " in DitteCollegatePiuPrincipale"},
    {"RecordsetDitteCollegateOPrincipalePerSedi", YearUse::Numeric, 99,
     " in RecordsetDitteCollegateOPrincipalePerSedi"},
    {"RecordsetDitteCollegateOPrincipalePerIntermedi", YearUse::Numeric, 99,
     " in RecordsetDitteCollegateOPrincipalePerIntermedi"},
    {"RecordsetDitteCollegatePiuPrincipale", YearUse::AsGiven, 99,
     " in RecordsetDitteCollegatePiuPrincipale"},
    {"RecordsetDitteCollegatePiuPrincipaleNoPrinc", YearUse::AsGiven, 99,
     " in RecordsetDitteCollegatePiuPrincipaleNoPrinc"},
    {"RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva", YearUse::AsGiven, 99,
     " in RecordsetDitteCollegatePiuPrincipale"},
    {"RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio", YearUse::AsGiven, 99,
     " in RecordsetDitteCollegatePiuPrincipale"},
    {"ModificaCliFor", YearUse::Numeric, 99, " in RecordsetDitteCollegateOPrincipale"},
    {"ControllaDittaNonCollegata", YearUse::AsGiven, 99, " in ControllaDittaNonCollegata"},
    // It tells of no failure: no main company is known.
    {"GetDittaPrincipale", YearUse::Numeric, 0, ""},
    {"RecordsetAttivitaCollegate", YearUse::Numeric, 99, " in StringaSQLAttivitaCollegate"},
    {"StringaSQLAttivitaCollegate", YearUse::Numeric, 99, " in StringaSQLAttivitaCollegate"},
    {"DuplicaAttività", YearUse::AsGiven, 1, "Anno solare su cui duplicare l'anno 2024 mancante!"},
    {"InserisciAttività", YearUse::Numeric, 99, " in InserisciAttività"},
    {"AggiornaAttività", YearUse::Numeric, 99, " in AggiornaAttività"},
    {"AggiornaDatiGestionaliPerAttività", YearUse::Numeric, 99,
     " in AggiornaDatiGestionaliPerAttività"},
    {"StringaSQLEliminazioneAttività", YearUse::Numeric, 99, " in EliminaAttività"},
    {"EliminaAttivitàSingolaCollegamentoMultiAzienda", YearUse::Numeric, 99, " in EliminaAttività"},
    {"GetCodiceAttivitàDaSezionale", YearUse::OwnInput, 1, "Non è stato definito l'anno solare."},
    {"AggiornaDatiGestionaliPerAnagraficaAttività", YearUse::None, 0, ""},
    {"InserisciAttivitàDaPeriodoPrecedente", YearUse::AsGiven, 99,
     " in VerificaAnnoIvaEsercizioContabile"},
    {"ControllaAttivitaNonCollegata", YearUse::AsGiven, 99, " in ControllaAttivitaNonCollegata"},
    {"GetCodiceAttività", YearUse::Numeric, 99, " in GetCodiceAttività"},
    {"VerificaEsistenzaAttivita", YearUse::AsGiven, 99, " in ControllaDittaNonCollegata"},
    // The year is read only where the company has no registry entry.
    {"AggiornaDateRegistriAnagraficaAttività", YearUse::Numeric, 99, " in InserisciAttività"},
    {"VerificaAnnoIvaEsercizioContabile", YearUse::AsGiven, 99,
     " in VerificaAnnoIvaEsercizioContabile"},
    {"StringaSQLAttivitàSingolaCollegamentoMultiAzienda", YearUse::Numeric, 99,
     " in EliminaAttività"},
}};

/// What the trapped methods say before the ending of `kWithoutYear`.
inline constexpr std::string_view kNoYear =
    "Anno di riferimento mancante: né AnnoSolare né DataInizioElaborazione danno un anno";

}  // namespace azcoll::test
