#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

/// The tables and columns of the suite's company database that the component names: the one place
/// where they are listed. Statements spell them out as they stand here.
namespace azcoll::tables {

/// Tables, without the customer/supplier sub-tables.
inline constexpr std::array<std::string_view, 17> kTables{
    "CG86_AZIENDECOLL",  "CG96_ANAGATTIVITA",  "CG18_ANADITTABASE",  "CG16_ANAGGEN",
    "CG25_ANADITTAGEST", "CG30_ANADITTADATE",  "CG19_ANADITTAESER",  "CG32_ANADITTAPSEZ",
    "CG35_PRSDATIPROC",  "CG38_PARCOGE",       "CG6A_TABATECO2007",  "CG70_NUMERDOC",
    "CG44_CLIFOR",       "CG4E_CFCOINTESTATI", "CG40_ANADITTAINTER", "CG31_ANADITTASEDI",
    "MG17_AGENTI"};

/// The sub-tables of a customer/supplier, in the fixed order in which they are processed together.
/// Their key columns are the prefix followed by the endings of `kSubTableKeyEndings`.
inline constexpr std::array<std::string_view, 13> kSubTables{
    "MG1C_CLIFORAGEMUL", "MG22_CLIFORDEST",   "MG24_CLIFORRAG",  "MG27_CLIFORACC", "MG28_CLIFORINT",
    "MG26_CLIFORNOTE",   "MG41_CLIFORVETT",   "MG23_CLIFORNCOP", "MG35_CLIFORCC",  "MG29_CLIFORRID",
    "MG20_CLIFORSCPAG",  "MG21_CLIFORSALPAG", "MG19_CLIFORVA"};

/// Company, kind and code columns of a sub-table and of the joint holders, after the prefix.
inline constexpr std::array<std::string_view, 3> kSubTableKeyEndings{"_DITTA_CG18", "_TIPOCF_CG44",
                                                                     "_CLIFOR_CG44"};

/// Columns of `CG44_CLIFOR` in the order in which a copy is written.
inline constexpr std::array<std::string_view, 19> kMasterColumns{
    "CG44_DITTA_CG18",      "CG44_TIPOCF",       "CG44_CLIFOR",      "CG44_CODICE_CG16",
    "CG44_GRUPPO_CG10",     "CG44_CONTO_CG24",   "CG44_CONTOR_CG24", "CG44_CODPAG_CG62",
    "CG44_GGSCADFIX",       "CG44_CODABI_CG12",  "CG44_CODCAB_CG13", "CG44_TIPOCF_CG40",
    "CG44_INTERMEDIO_CG40", "CG44_CODICE_CG08",  "CG44_CODICE_CG28", "CG44_IDAGENTE_MG17",
    "CG44_CODSEDE_CG31",    "CG44_IDMEDIA_CG99", "CG44_FLGATTIVO"};

/// How a value of a sales-data row is written into the copy's statement.
enum class ValueRule : std::uint8_t { Company, Key, Text, Number, Date, DateOrNull };

/// A column of a sales-data row, and how the copy of a row writes its value.
struct SalesColumn {
  std::string_view name;
  ValueRule rule;
};

/// Columns of `MG19_CLIFORVA` in the order in which a copy is written. MG19_RAGGCRF3 is spelled so
/// by the suite.
inline constexpr std::array<SalesColumn, 65> kSalesColumns{{
    {"MG19_DITTA_CG18", ValueRule::Company},
    {"MG19_TIPOCF_CG44", ValueRule::Key},
    {"MG19_CLIFOR_CG44", ValueRule::Key},
    {"MG19_MACROAREA", ValueRule::Text},
    {"MG19_AREA", ValueRule::Text},
    {"MG19_ZONA", ValueRule::Text},
    {"MG19_MACROCAT", ValueRule::Text},
    {"MG19_CATEG", ValueRule::Text},
    {"MG19_SOTTOCAT", ValueRule::Text},
    {"MG19_RAGGRCF1", ValueRule::Text},
    {"MG19_RAGGRCF2", ValueRule::Text},
    {"MG19_RAGGCRF3", ValueRule::Text},
    {"MG19_CODICLFATT", ValueRule::Number},
    {"MG19_INDCLIFAT", ValueRule::Number},
    {"MG19_FLGDATICLFAT", ValueRule::Number},
    {"MG19_CODDOCUM_MG3G", ValueRule::Text},
    {"MG19_TIPOCLXDOC", ValueRule::Number},
    {"MG19_INDDESDOCEST", ValueRule::Number},
    {"MG19_LINGUA_MG52", ValueRule::Text},
    {"MG19_INDSTSCADEST", ValueRule::Number},
    {"MG19_SC1PERCOR", ValueRule::Number},
    {"MG19_SC2PERCOR", ValueRule::Number},
    {"MG19_SC3PERCOR", ValueRule::Number},
    {"MG19_SCIMPCOR", ValueRule::Number},
    {"MG19_MAGPERCOR", ValueRule::Number},
    {"MG19_MAGIMPCOR", ValueRule::Number},
    {"MG19_SCPERPIEDE", ValueRule::Number},
    {"MG19_FLGSPEINC", ValueRule::Number},
    {"MG19_FLGSPBOL", ValueRule::Number},
    {"MG19_INDSPESECUM", ValueRule::Number},
    {"MG19_SCAGLSPBANC", ValueRule::Number},
    {"MG19_SPESEF1", ValueRule::Text},
    {"MG19_SPESEF2", ValueRule::Text},
    {"MG19_FLGESCLSPEPOR", ValueRule::Number},
    {"MG19_INDCLIBLOC", ValueRule::Number},
    {"MG19_CODLIVBLOC", ValueRule::Text},
    {"MG19_DATABLOCCO", ValueRule::DateOrNull},
    {"MG19_NOTEBLOC", ValueRule::Text},
    {"MG19_CODPREVRAGB", ValueRule::Text},
    {"MG19_CODDESTPREV", ValueRule::Text},
    {"MG19_TESTOF1", ValueRule::Text},
    {"MG19_INDTESTOF1", ValueRule::Number},
    {"MG19_TESTOF2", ValueRule::Text},
    {"MG19_INDTESTOF2", ValueRule::Number},
    {"MG19_DATACREAZ", ValueRule::Date},
    {"MG19_DATAULTVAR", ValueRule::Date},
    {"MG19_DATADISMIS", ValueRule::DateOrNull},
    {"MG19_DATAULTDOC", ValueRule::DateOrNull},
    {"MG19_DATAULTFAT", ValueRule::DateOrNull},
    {"MG19_DATAULTORD", ValueRule::DateOrNull},
    {"MG19_DATAULTCALSP", ValueRule::DateOrNull},
    {"MG19_LISPIUART_LI26", ValueRule::Text},
    {"MG19_LISTMAG", ValueRule::Number},
    {"MG19_PUNLIS99PRE", ValueRule::Number},
    {"MG19_FLGPRZCAMP", ValueRule::Number},
    {"MG19_INDARRL96", ValueRule::Number},
    {"MG19_INDARRINFAT", ValueRule::Number},
    {"MG19_IMPDAARROT", ValueRule::Number},
    {"MG19_IMPARROTPREC", ValueRule::Number},
    {"MG19_CODRIFNUM", ValueRule::Number},
    {"MG19_CODRIFALF", ValueRule::Text},
    {"MG19_INDGESFIDO", ValueRule::Number},
    {"MG19_FIDOAZIENDALE", ValueRule::Number},
    {"MG19_FIDOFACTORING", ValueRule::Number},
    {"MG19_IDMEDIA_CG99", ValueRule::Number},
}};

/// Columns of an activity row in the order in which one is inserted.
inline constexpr std::array<std::string_view, 34> kActivityColumns{
    "CG86_INDTIPO",          "CG86_ANNOIVA",        "CG86_INDTIPOCONT",      "CG86_DITTA_CG18",
    "CG86_DITTACOLL_CG18",   "CG86_CODATTIVITA",    "CG86_INDBENIUS",        "CG86_PERCFORIVA",
    "CG86_PERCDETRIVA",      "CG86_PERCDETRRED",    "CG86_INDPRORATA",       "CG86_PERCPRORATA",
    "CG86_PERCFINEANNO",     "CG86_INDPLAFOND",     "CG86_DATAINPLAFOND",    "CG86_INDTIPODEN",
    "CG86_FLGGESBENZ",       "CG86_INDREGDEN",      "CG86_INDREGAUT",        "CG86_INDCALCIVA",
    "CG86_FLGR38BIS",        "CG86_INDVENT",        "CG86_FLGGRANDEDISTRIB", "CG86_CODICE_CG28",
    "CG86_ALQCOR1_CG28",     "CG86_ALQCOR2_CG28",   "CG86_ALQCOR3_CG28",     "CG86_ALQCOR4_CG28",
    "CG86_FLGATTIVITAPRINC", "CG86_INDIVAACQAGRIC", "CG86_FLGIVAPER",        "CG86_INDCOMLETTINT",
    "CG86_INDNOITAEXP",      "CG86_DATAININOITAEXP"};

/// VAT settings held both by an activity row (CG86_) and by the company (CG25_), without prefix.
inline constexpr std::array<std::string_view, 24> kVatSettings{
    "INDBENIUS",    "PERCFORIVA",       "PERCDETRIVA",    "PERCDETRRED",   "INDPRORATA",
    "PERCPRORATA",  "PERCFINEANNO",     "INDPLAFOND",     "DATAINPLAFOND", "INDTIPODEN",
    "FLGGESBENZ",   "INDREGDEN",        "INDREGAUT",      "INDCALCIVA",    "FLGR38BIS",
    "INDVENT",      "FLGGRANDEDISTRIB", "CODICE_CG28",    "ALQCOR1_CG28",  "ALQCOR2_CG28",
    "ALQCOR3_CG28", "ALQCOR4_CG28",     "INDIVAACQAGRIC", "FLGIVAPER"};

/// Columns of the activity registry in the order in which a row is inserted.
inline constexpr std::array<std::string_view, 17> kRegistryColumns{
    "CG96_DITTA_CG18",        "CG96_CODATTIVITA",       "CG96_DESCRATTIVITA",
    "CG96_CODICE_CG6A",       "CG96_INDCATPART",        "CG96_FLGIVAEDIT",
    "CG96_INDAGRIC",          "CG96_DATASTPREGACQ",     "CG96_DATASTPREGVEN",
    "CG96_DATASTPREGCOR",     "CG96_DATASTPREGRIE",     "CG96_DATASTPLIQIVA",
    "CG96_ANNOLIQ",           "CG96_DATASTPPLAFON",     "CG96_DATASTPREGACQGLOB",
    "CG96_DATASTPREGVENGLOB", "CG96_DATASTPREGUNICANAL"};

/// Register print dates held both by the registry (CG96_) and by the company (CG30_), without
/// prefix.
inline constexpr std::array<std::string_view, 10> kRegisterDates{
    "DATASTPREGACQ",     "DATASTPREGVEN",     "DATASTPREGCOR", "DATASTPREGRIE",
    "DATASTPLIQIVA",     "ANNOLIQ",           "DATASTPPLAFON", "DATASTPREGACQGLOB",
    "DATASTPREGVENGLOB", "DATASTPREGUNICANAL"};

/// Columns named singly, in none of the lists above.
inline constexpr std::array<std::string_view, 69> kOtherColumns{"CG86_IDATTIVITA",
                                                                "CG18_DITTA",
                                                                "CG18_CODICE_CG16",
                                                                "CG18_ATECOCOD_CG6A",
                                                                "CG16_CODICE",
                                                                "CG16_RAGSOANAG",
                                                                "CG25_DITTA_CG18",
                                                                "CG25_FLGIVAQUATER",
                                                                "CG25_FLGPOSTICIP",
                                                                "CG25_INDCATPART",
                                                                "CG25_FLGRIEPIVASEP",
                                                                "CG25_FLGSEZ",
                                                                "CG25_DATAINISEZ",
                                                                "CG25_FLGASSIVARIEP",
                                                                "CG25_TIPOCONT",
                                                                "CG25_INDCREDIVAF24",
                                                                "CG25_FLGCREDIVAACCF24",
                                                                "CG25_FLGMONOFASERSM",
                                                                "CG25_FLGIVAEDIT",
                                                                "CG25_INDAGRIC",
                                                                "CG30_DITTA_CG18",
                                                                "CG19_DITTA_CG18",
                                                                "CG19_DATAAPE",
                                                                "CG19_DATACHIU",
                                                                "CG32_DITTA_CG18",
                                                                "CG32_ANNO",
                                                                "CG32_SEZIONALE",
                                                                "CG32_IDATTIVITA_CG86",
                                                                "CG35_FLGINTULTPER",
                                                                "CG35_MAXCOMPNODICH",
                                                                "CG35_PERCINTIVA",
                                                                "CG35_IVADEBITO",
                                                                "CG35_PERCACCIVA",
                                                                "CG35_GGCALACCIVA",
                                                                "CG35_A38BISMAXCOMP",
                                                                "CG35_MAXCOMPNOVICO",
                                                                "CG35_IMPMINVERSACC",
                                                                "CG35_PERCFORFIVAEDIT",
                                                                "CG35_A38BISLIMMIN",
                                                                "CG35_NUMGGCOMPPOST",
                                                                "CG35_MAXRIMBNOVICO",
                                                                "CG38_DITTA_CG18",
                                                                "CG38_PERCACCIVA",
                                                                "CG38_GGCALACCIVA",
                                                                "CG38_IMPMINVERSACC",
                                                                "CG38_PERCFORFIVAEDIT",
                                                                "CG6A_CODICE",
                                                                "CG6A_DESCRIZ",
                                                                "CG28_DESCR",
                                                                "CG70_DITTA_CG18",
                                                                "CG70_SEZ_CG68",
                                                                "CG70_ANNO",
                                                                "CG70_TIPODOCINT",
                                                                "CG70_ULTNUMDOC",
                                                                "CG40_DITTA_CG18",
                                                                "CG40_TIPOCF",
                                                                "CG40_INTERMEDIO",
                                                                "CG40_DESCR",
                                                                "CG40_IDMEDIA_CG99",
                                                                "CG31_DITTA_CG18",
                                                                "CG31_CODICE",
                                                                "CG31_INDIRIZZO",
                                                                "CG31_CAP",
                                                                "CG31_CITTA",
                                                                "CG31_PROV",
                                                                "CG31_IDMEDIA_CG99",
                                                                "MG17_IDAGENTE",
                                                                "MG17_DITTA_CG18",
                                                                "MG17_ANAGEN_CG16"};

/// First four characters of a table's name: the prefix of its columns.
[[nodiscard]] constexpr std::string_view prefix(std::string_view table) {
  return table.substr(0, 4);
}

/// A list of names of this page, or a part of one.
using Names = std::span<const std::string_view>;

/// Whether `name` is a table or a column of this page (letter case counts).
[[nodiscard]] bool isKnownName(std::string_view name);

}  // namespace azcoll::tables
