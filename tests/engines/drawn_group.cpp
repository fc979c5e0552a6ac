#include "engines/drawn_group.h"

#include <algorithm>
#include <array>
#include <utility>

#include "data/text.h"
#include "scenarios/random_activities.h"
#include "support/test_database.h"

namespace azcoll::test {
namespace {

constexpr int kIntermediaries = 4;
constexpr int kBranches = 3;
constexpr int kPersons = 3;

constexpr std::array kTexts{"N'RB90'", "N'10'",      "N'dell''Aquila'", "N'Perù'",
                            "N'à b '", "N'  vuoto'", "N'0401130'",      "N'È'",
                            "N''",     "N'A;B'"};
constexpr std::array kDates{"'20240115'", "'20240229 10:30:00'", "'19000101'", "'20231231'",
                            "'20250630 23:59:58'"};

}  // namespace

std::string DrawnGroup::text(int percentNull) {
  return dice_.in(percentNull) ? "NULL" : dice_.anyOf(kTexts);
}

std::string DrawnGroup::date(int percentNull) {
  return dice_.in(percentNull) ? "NULL" : dice_.anyOf(kDates);
}

std::vector<std::string> DrawnGroup::statements() {
  statements_.clear();
  const std::vector<std::string>& tables = testTables();
  for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
    add("DELETE FROM " + *table);
  }
  for (std::string& statement : RandomActivities::companies()) {
    add(std::move(statement));
  }
  for (std::string& statement : RandomActivities{seed_}.statements()) {
    add(std::move(statement));
  }
  addGeneralData();
  for (int company = 1; company <= kCompanies; ++company) {
    addVatData(company);
    addPlaces(company);
    addRegisters(company);
    addNumbering(company);
  }
  for (int company = 1; company <= kCompanies; ++company) {
    addCustomers(company, 0);
    addCustomers(company, 1);
  }
  return std::move(statements_);
}

void DrawnGroup::addGeneralData() {
  for (int person = 1; person <= kPersons; ++person) {
    add(join("INSERT INTO CG16_ANAGGEN (CG16_CODICE, CG16_RAGSOANAG) VALUES (", 2000 + person,
             ", N'L''età di ", person, " ')"));
  }
  add("INSERT INTO CG6A_TABATECO2007 (CG6A_CODICE, CG6A_DESCRIZ) VALUES (N'62.01.00', N'Attività'),"
      " (N'10.71.10', NULL)");
  add("INSERT INTO CG35_PRSDATIPROC (CG35_FLGINTULTPER, CG35_MAXCOMPNODICH, CG35_PERCINTIVA)"
      " VALUES (1, 5000.1234, 1.00)");
}

void DrawnGroup::addVatData(int company) {
  const std::string ateco = dice_.orNull("N'62.01.00'", 50);
  add(join("UPDATE CG18_ANADITTABASE SET CG18_ATECOCOD_CG6A = ", ateco,
           " WHERE CG18_DITTA = ", company));
  const std::string start = date(40);
  const std::string code = text(30).substr(0, 6) == "N'RB90" ? "N'22'" : "N'4'";
  const int kind = dice_.below(5);
  add(join("UPDATE CG25_ANADITTAGEST SET CG25_DATAINPLAFOND = ", start, ", CG25_CODICE_CG28 = ",
           code, ", CG25_INDTIPODEN = ", kind, ", CG25_INDCATPART = ", dice_.orNull("2", 30),
           ", CG25_PERCPRORATA = 85.25 WHERE CG25_DITTA_CG18 = ", company));
  if (dice_.in(60)) {
    const std::string sold = date(30);
    const std::string bought = date(30);
    add(
        join("INSERT INTO CG30_ANADITTADATE (CG30_DITTA_CG18, CG30_DATASTPREGVEN,"
             " CG30_DATASTPREGACQ, CG30_ANNOLIQ) VALUES (",
             company, ", ", sold, ", ", bought, ", 2024)"));
  }
  if (dice_.in(40)) {
    add(
        join("INSERT INTO CG38_PARCOGE (CG38_DITTA_CG18, CG38_PERCACCIVA, CG38_GGCALACCIVA) VALUES"
             " (",
             company, ", ", dice_.orNull("97.00", 40), ", 15)"));
  }
  for (const char* const vatCode : {"22", "4"}) {
    if (dice_.in(70)) {
      add(join(
          "INSERT INTO CG28_TABCODIVA (CG28_DITTA_CG18, CG28_CODICE, CG28_DESCR, CG28_PERCIVA)"
          " VALUES (",
          company, ", N'", vatCode, "', N'Aliquota ", vatCode, "% dell''anno', ", vatCode, ")"));
    }
  }
}

/// Intermediaries, branches and agents.
void DrawnGroup::addPlaces(int company) {
  for (int kind = 0; kind <= 1; ++kind) {
    for (int code = 1; code <= kIntermediaries; ++code) {
      if (dice_.in(60)) {
        const std::string description = text(20);
        add(join(
            "INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF, CG40_INTERMEDIO,"
            " CG40_DESCR, CG40_IDMEDIA_CG99) VALUES (",
            company, ", ", kind, ", ", code, ", ", description, ", ", dice_.orNull("77", 50), ")"));
      }
    }
  }
  for (int code = 1; code <= kBranches; ++code) {
    if (dice_.in(60)) {
      const std::string street = text(20);
      add(
          join("INSERT INTO CG31_ANADITTASEDI (CG31_DITTA_CG18, CG31_CODICE, CG31_INDIRIZZO,"
               " CG31_CITTA) VALUES (",
               company, ", ", code, ", ", street, ", N'Forlì')"));
    }
  }
  for (int person = 1; person <= kPersons; ++person) {
    if (dice_.in(60)) {
      add(
          join("INSERT INTO MG17_AGENTI (MG17_IDAGENTE, MG17_DITTA_CG18, MG17_ANAGEN_CG16) VALUES"
               " (",
               company * 10 + person, ", ", company, ", ", 2000 + person, ")"));
    }
  }
}

void DrawnGroup::addRegisters(int company) {
  for (const char* const code : {"00", "1 ", "A1"}) {
    for (const int year : {2024, 2025}) {
      const int draw = dice_.below(3);
      const std::string key = join(company, ", ", year, ", '", code, "'");
      constexpr std::string_view into =
          "INSERT INTO CG32_ANADITTAPSEZ (CG32_DITTA_CG18, CG32_ANNO, CG32_SEZIONALE,"
          " CG32_IDATTIVITA_CG86) ";
      if (draw == 1) {
        add(join(into, "VALUES (", key, ", NULL)"));
      } else if (draw == 2) {
        add(join(into, "SELECT ", key,
                 ", MIN(CG86_IDATTIVITA) FROM CG86_AZIENDECOLL WHERE CG86_DITTACOLL_CG18 = ",
                 company, " AND CG86_ANNOIVA = ", year));
      }
    }
  }
}

void DrawnGroup::addNumbering(int company) {
  for (const int kind : {901, 902}) {
    if (dice_.in(60)) {
      const int last = 95 + dice_.below(15);
      add(
          join("INSERT INTO CG70_NUMERDOC (CG70_DITTA_CG18, CG70_SEZ_CG68, CG70_ANNO,"
               " CG70_TIPODOCINT, CG70_ULTNUMDOC) VALUES (",
               company, ", '00', 0, ", kind, ", ", last, ")"));
    }
  }
}

void DrawnGroup::addCustomers(int company, int kind) {
  for (int code = kFirstCustomer; code < kFirstCustomer + kCustomersPerKind; ++code) {
    if (dice_.in(55)) {
      continue;
    }
    const std::string account = text(40);
    const std::string media = dice_.orNull("55", 50);
    const std::string day = dice_.orNull("10", 50);
    const int person = 1 + dice_.below(kPersons);
    // Only what the company has: the first of each that is there, or none.
    const auto own = [&](std::string_view column, std::string_view table, std::string_view of) {
      const int skipped = dice_.below(3);
      return dice_.in(30) ? std::string{"NULL"}
                          : join("(SELECT MIN(", column, ") FROM ", table, " WHERE ", of, " = ",
                                 company, " AND ", column, " > ", skipped, ")");
    };
    const std::string intermediary = own("CG40_INTERMEDIO", "CG40_ANADITTAINTER",
                                         join("CG40_TIPOCF = ", kind, " AND CG40_DITTA_CG18"));
    const std::string agent = own("MG17_IDAGENTE", "MG17_AGENTI", "MG17_DITTA_CG18");
    const std::string branch = own("CG31_CODICE", "CG31_ANADITTASEDI", "CG31_DITTA_CG18");
    add(
        join("INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16,"
             " CG44_GRUPPO_CG10, CG44_CONTO_CG24, CG44_GGSCADFIX, CG44_TIPOCF_CG40,"
             " CG44_INTERMEDIO_CG40, CG44_CODICE_CG08, CG44_IDAGENTE_MG17, CG44_CODSEDE_CG31,"
             " CG44_IDMEDIA_CG99) SELECT ",
             company, ", ", kind, ", ", code, ", ", 2000 + person, ", 1, ", account, ", ", day,
             ", ", kind, ", ", intermediary, ", N'IT', ", agent, ", ", branch, ", ", media));
    const std::string key = join(company, ", ", kind, ", ", code);
    addSalesData(key);
    addSubRows(key);
    if (dice_.in(8)) {
      add(
          join("INSERT INTO MG60_DOCUMENTI (MG60_DITTA_CG18, MG60_TIPOCF_CG44, MG60_CLIFOR_CG44,"
               " MG60_ANNO, MG60_NUMERO, MG60_DATA, MG60_IMPTOTALE) VALUES (",
               key, ", 2024, ", kind * 1000 + code, ", '20240710', 99.9900)"));
    }
    if (dice_.in(6)) {
      add(
          join("INSERT INTO CG4E_CFCOINTESTATI (CG4E_DITTA_CG18, CG4E_TIPOCF_CG44,"
               " CG4E_CLIFOR_CG44, CG4E_PROGR, CG4E_CODICE_CG16, CG4E_PERCQUOTA) VALUES (",
               key, ", 1, 2001, 33.33)"));
    }
  }
}

void DrawnGroup::addSalesData(const std::string& key) {
  if (dice_.in(50)) {
    return;
  }
  const std::string area = text(40);
  const std::string created = date(50);
  const std::string blocked = date(50);
  const std::string note = text(40);
  add(
      join("INSERT INTO MG19_CLIFORVA (MG19_DITTA_CG18, MG19_TIPOCF_CG44, MG19_CLIFOR_CG44,"
           " MG19_AREA, MG19_SC1PERCOR, MG19_SCIMPCOR, MG19_DATACREAZ, MG19_DATABLOCCO,"
           " MG19_NOTEBLOC, MG19_FIDOAZIENDALE) VALUES (",
           key, ", ", area, ", 12.50, 0.0001, ", created, ", ", blocked, ", ", note,
           ", 922337203685477.5807)"));
}

void DrawnGroup::addSubRows(const std::string& key) {
  if (dice_.in(30)) {
    const std::string noted = date(30);
    const std::string note = text(20);
    add(
        join("INSERT INTO MG26_CLIFORNOTE (MG26_DITTA_CG18, MG26_TIPOCF_CG44, MG26_CLIFOR_CG44,"
             " MG26_PROGR, MG26_DATANOTA, MG26_NOTA) VALUES (",
             key, ", 1, ", noted, ", ", note, "), (", key, ", 2, NULL, N'seconda')"));
  }
  if (dice_.in(20)) {
    add(
        join("INSERT INTO MG28_CLIFORINT (MG28_DITTA_CG18, MG28_TIPOCF_CG44, MG28_CLIFOR_CG44,"
             " MG28_PROGR, MG28_NUMPROT, MG28_DATARICEV, MG28_IMPPLAFOND) VALUES (",
             key, ", 1, N'È/1', '20240105', 1234567890123456789012345678.0123456789)"));
  }
  if (dice_.in(20)) {
    const std::string city = text(20);
    add(
        join("INSERT INTO MG22_CLIFORDEST (MG22_DITTA_CG18, MG22_TIPOCF_CG44, MG22_CLIFOR_CG44,"
             " MG22_PROGR, MG22_CITTA, MG22_FLGPREDEF) VALUES (",
             key, ", 7, ", city, ", 1)"));
  }
}

}  // namespace azcoll::test
