#include <chrono>
#include <ctime>

#include "group_fixture.h"

namespace azcoll::cli {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using Gruppo = GroupTest;

TEST_F(Gruppo, ShowsTheGroupOfALinkedCompanyAsATable) {
  const Outcome outcome = gruppo(12, "--anno", "2024");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_EQ(
      outcome.out,
      "Azienda 12 Gamma Città di Castello S.r.l., anno IVA 2024: collegata all'azienda principale"
      " 10 Alfa Società per Azioni\n"
      "\n"
      "Gruppo dell'azienda 10 Alfa Società per Azioni (3 aziende collegate, legami di tipo 0):\n"
      "\n"
      "Ditta  Nome                            Legame      Tipo contabile  Clienti e fornitori"
      " salvati qui\n"
      "-----  ------------------------------  ----------  --------------  ----------------------"
      "----------------\n"
      "   10  Alfa Società per Azioni         principale  0               copiati nelle"
      " collegate\n"
      "    5  Beta Distribuzione S.p.A.       collegata   0               copiati nella"
      " principale e nelle altre\n"
      "   12  Gamma Città di Castello S.r.l.  collegata   0               copiati nella"
      " principale e nelle altre\n"
      "   15  Delta Forlì S.r.l.              collegata   0               copiati nella"
      " principale e nelle altre\n");
  EXPECT_THAT(outcome.err, IsEmpty());
}

TEST_F(Gruppo, SaysThatTypeOneIsNotCopied) {
  const Outcome outcome = gruppo(30, "--anno", "2024");
  EXPECT_THAT(outcome.out, HasSubstr("principale di 1 azienda collegata\n"));
  EXPECT_THAT(outcome.out, HasSubstr("   31  Zeta Servizi S.r.l.     collegata   1             "
                                     "  non copiati (tipo contabile 1)\n"));
}

TEST_F(Gruppo, TakesTheMainCompanysTypeFromItsFirstLink) {
  sql("UPDATE CG86_AZIENDECOLL SET CG86_INDTIPOCONT = 1 WHERE CG86_ANNOIVA = 2025"
      " AND CG86_DITTA_CG18 = 10 AND CG86_DITTACOLL_CG18 = 5");
  EXPECT_THAT(gruppo(12, "--anno", "2025").out,
              AllOf(HasSubstr("principale  1               non copiati (tipo contabile 1)\n"),
                    HasSubstr("collegata   2               copiati nella principale")));
}

TEST_F(Gruppo, ACompanyOfTypeOneStillReceivesTheCopies) {
  sql("UPDATE CG86_AZIENDECOLL SET CG86_INDTIPOCONT = 1 WHERE CG86_ANNOIVA = 2025"
      " AND CG86_DITTACOLL_CG18 = 12");
  EXPECT_EQ(azcoll("esegui", "DuplicaCliFor", "--db", db_, "--imposta", "Pvar_Ditta=5", "--imposta",
                   "Pvar_CliFor=120", "--imposta", "AnnoSolare=2025")
                .code,
            ExitCode::Ok);
  EXPECT_EQ(azcoll("sql", "--db", db_, "--csv",
                   "SELECT CG44_CODICE_CG16 AS A FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 12"
                   " AND CG44_TIPOCF = 0 AND CG44_CLIFOR = 122")
                .out,
            "A\r\n3005\r\n");
}

TEST_F(Gruppo, CountsAMissingTypeAsZero) {
  sql("UPDATE CG86_AZIENDECOLL SET CG86_INDTIPOCONT = NULL WHERE CG86_ANNOIVA = 2024"
      " AND CG86_DITTACOLL_CG18 = 15");
  EXPECT_THAT(gruppo(10, "--anno", "2024").out,
              HasSubstr("collegata   non indicato    copiati nella principale"));
}

TEST_F(Gruppo, AYearWithoutLinksIsAnAnswer) {
  const Outcome outcome = gruppo(10, "--anno", "2019");
  EXPECT_EQ(outcome.code, ExitCode::Ok);
  EXPECT_EQ(outcome.out,
            "Azienda 10 Alfa Società per Azioni, anno IVA 2019: nessuna azienda collegata\n"
            "Anni con collegamenti: 2024, 2025.\n");
  EXPECT_EQ(gruppo(20, "--anno", "2024").out,
            "Azienda 20 Epsilon Indipendente S.n.c., anno IVA 2024: nessuna azienda collegata\n"
            "L'azienda 20 non ha collegamenti in nessun anno.\n");
}

TEST_F(Gruppo, AnUnknownCompanyIsNoAnswer) {
  const Outcome outcome = gruppo(99, "--anno", "2024");
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(outcome.out, IsEmpty());
  EXPECT_THAT(outcome.err, HasSubstr("azcoll: L'azienda 99 non esiste nel database"));
}

TEST_F(Gruppo, TakesTheCurrentYear) {
  const std::time_t now = std::time(nullptr);
  const int year = std::localtime(&now)->tm_year + 1900;
  EXPECT_THAT(gruppo(10).out, HasSubstr("anno IVA " + std::to_string(year) + ":"));
}

TEST_F(Gruppo, ShowsBothGroupsOfACompanyAndWhichOneCounts) {
  sql(insertLink(2024, "1", 30, 12));
  const Outcome outcome = gruppo(12, "--anno", "2024");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_THAT(
      outcome.out,
      AllOf(HasSubstr("collegata all'azienda principale 10 Alfa Società per Azioni; "
                      "collegata all'azienda principale 30 Zeta Capogruppo S.p.A.\n"),
            HasSubstr("\nGruppo dell'azienda 10 Alfa"), HasSubstr("\nGruppo dell'azienda 30 Zeta"),
            HasSubstr("copiati nel gruppo dell'azienda 10\n"),
            HasSubstr("\nNote:\n  L'azienda 12 Gamma Città di Castello S.r.l. è in 2 gruppi:"
                      " per i suoi clienti e fornitori vale quello dell'azienda 10.\n")));
  EXPECT_THAT(gruppo(30, "--anno", "2024").out,
              HasSubstr("\nNote:\n  L'azienda 12 Gamma Città di Castello S.r.l. è anche nel gruppo"
                        " dell'azienda 10.\n"));
}

TEST_F(Gruppo, AGroupOfItsOwnComesBeforeTheOneAbove) {
  sql(insertLink(2024, "0", 12, 20) + insertLink(2024, "0", 5, 31));
  const auto json = gruppo(12, "--anno", "2024", "--json").json();
  const auto& groups = json["anni"][0]["gruppi"];
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0]["principale"], 12);
  EXPECT_EQ(groups[1]["principale"], 10);
  EXPECT_EQ(groups[0]["aziende"][0]["copia_nel_gruppo"], 12);
  EXPECT_EQ(groups[1]["aziende"][2]["ditta"], 12);
  EXPECT_EQ(groups[1]["aziende"][2]["copia_nel_gruppo"], 12);
  EXPECT_EQ(groups[1]["aziende"][2]["altri_gruppi"].dump(), "[12]");
}

TEST_F(Gruppo, GivesOneJsonObject) {
  const Outcome outcome = gruppo(30, "--anno", "2024", "--json");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_EQ(outcome.out,
            R"({"ditta":30,"nome":"Zeta Capogruppo S.p.A.","anni":[{"anno":2024,"gruppi":[)"
            R"({"principale":30,"della_ditta":true,"tipo_legame":0,"aziende":[)"
            R"({"ditta":30,"nome":"Zeta Capogruppo S.p.A.","principale":true,"tipo_contabile":1,)"
            R"("copia_nel_gruppo":null,"altri_gruppi":[]},)"
            R"({"ditta":31,"nome":"Zeta Servizi S.r.l.","principale":false,"tipo_contabile":1,)"
            R"("copia_nel_gruppo":null,"altri_gruppi":[]}]}]}],)"
            R"("differenze":[],"anni_con_collegamenti":[2024,2025]})"
            "\n");
}

TEST_F(Gruppo, PutsYearsBesideEachOtherAndMarksTheDifferences) {
  sql("DELETE FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025 AND CG86_DITTA_CG18 = 10"
      " AND CG86_DITTACOLL_CG18 = 15\n" +
      insertLink(2025, "0", 10, 20));
  const Outcome outcome = gruppo(10, "--anni", "2023-2025");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_EQ(
      outcome.out,
      "Azienda 10 Alfa Società per Azioni, anni IVA 2023-2025\n"
      "\n"
      "  2023: nessuna azienda collegata\n"
      "  2024: principale di 3 aziende collegate\n"
      "  2025: principale di 3 aziende collegate\n"
      "\n"
      "Tipo contabile anno per anno (+ entra, - esce, ~ cambia; con il tipo 1 nulla è "
      "copiato):\n"
      "\n"
      "Gruppo  Ditta  Nome                            2023  2024  2025\n"
      "------  -----  ------------------------------  ----  ----  ----\n"
      "    10     10  Alfa Società per Azioni               + 0     0\n"
      "    10      5  Beta Distribuzione S.p.A.             + 0     0\n"
      "    10     12  Gamma Città di Castello S.r.l.        + 0   ~ 2\n"
      "    10     15  Delta Forlì S.r.l.                    + 0   -\n"
      "    10     20  Epsilon Indipendente S.n.c.                 + 0\n"
      "\n"
      "Dal 2023 al 2024:\n"
      "  + gruppo dell'azienda 10 Alfa Società per Azioni: nuovo, con 3 aziende collegate\n"
      "\n"
      "Dal 2024 al 2025:\n"
      "  ~ 12 Gamma Città di Castello S.r.l.: nel gruppo 10 il tipo contabile passa da 0 a 2\n"
      "  - 15 Delta Forlì S.r.l.: esce dal gruppo 10\n"
      "  + 20 Epsilon Indipendente S.n.c.: entra nel gruppo 10, tipo contabile 0\n");
}

TEST_F(Gruppo, SaysWhenAGroupIsGoneAndWhenNothingChanges) {
  EXPECT_THAT(gruppo(30, "--anni", "2024-2026").out,
              AllOf(HasSubstr("\nDal 2024 al 2025:\n  nessuna differenza\n"),
                    HasSubstr("\nDal 2025 al 2026:\n  - gruppo dell'azienda 30 Zeta Capogruppo "
                              "S.p.A.: non c'è più, con 1 azienda collegata\n")));
}

TEST_F(Gruppo, AGroupThatTheCompanyLeavesIsStillShownWithTheOthers) {
  sql("DELETE FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025 AND CG86_DITTACOLL_CG18 = 12");
  const Outcome outcome = gruppo(12, "--anni", "2024-2025");
  EXPECT_THAT(outcome.out,
              AllOf(HasSubstr("  2025: nessuna azienda collegata\n"),
                    HasSubstr("Dal 2024 al 2025:\n  - 12 Gamma Città di Castello S.r.l.: esce dal "
                              "gruppo 10\n"),
                    Not(HasSubstr("15 Delta Forlì S.r.l.: esce"))));
  const auto json = gruppo(12, "--anni", "2024-2025", "--json").json();
  EXPECT_EQ(json["anni"][1]["gruppi"][0]["della_ditta"], false);
  ASSERT_EQ(json["differenze"].size(), 1U);
  EXPECT_EQ(json["differenze"][0].dump(),
            R"({"anno":2025,"gruppo":10,"ditta":12,"segno":"-","tipo_contabile_prima":0,)"
            R"("tipo_contabile":null})");
}

TEST_F(Gruppo, YearsWithoutAnyLinkSaySo) {
  EXPECT_THAT(gruppo(10, "--anni", "2018-2019").out,
              AllOf(HasSubstr("  2018: nessuna azienda collegata\n"),
                    HasSubstr("Anni con collegamenti: 2024, 2025.\n"), Not(HasSubstr("Gruppo "))));
}

TEST_F(Gruppo, RefusesWhatIsNoCompanyAndNoYear) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> wrong{
      {{"--ditta", "abc"}, "--ditta vuole il codice numerico di un'azienda, non «abc»."},
      {{"--ditta", "-5"}, "non «-5»"},
      {{"--ditta", "5 OR 1=1"}, "non «5 OR 1=1»"},
      {{"--ditta", "99999999999"}, "non «99999999999»"},
      {{"--ditta", ""}, "non «»"},
      {{"--ditta", "10", "--anno", "duemila"}, "--anno vuole un anno come 2025, non «duemila»."},
      {{"--ditta", "10", "--anno", "25"}, "--anno vuole un anno"},
      {{"--ditta", "10", "--anno", "20250"}, "--anno vuole un anno"},
      {{"--ditta", "10", "--anni", "2025-2023"}, "2023-2025, non «2025-2023»."},
      {{"--ditta", "10", "--anni", "2023"}, "--anni vuole due anni come 2023-2025, non «2023»."},
      {{"--ditta", "10", "--anni", "2023-"}, "--anni vuole due anni"},
      {{"--ditta", "10", "--anni", "2023-2024-2025"}, "--anni vuole due anni"},
      {{"--ditta", "10", "--anni", "2000-2025"}, "--anni ammette al massimo 10 anni."},
      {{"--ditta", "10", "--anno", "2024", "--anni", "2024-2025"}, "--anno e --anni si escludono"},
      {{"--ditta", "10", "--json", "--dot"}, "--json, --dot e --svg si escludono."},
      {{"--ditta", "10", "--svg", "x.svg", "--dot"}, "--json, --dot e --svg si escludono."},
      {{"--ditta", "10", "--svg", "gruppo.png"}, "--svg scrive solo SVG"},
      {{"--ditta", "10", "--svg", ""}, "--svg scrive solo SVG"},
      {{"--ditta", "10", "--xml"}, "Opzione sconosciuta: --xml."},
      {{"--anno", "2024"}, "Manca --ditta."},
  };
  for (const auto& [options, message] : wrong) {
    std::vector<std::string> args{"gruppo", "--db", db_};
    args.insert(args.end(), options.begin(), options.end());
    const Outcome outcome = azcollWith("", args);
    EXPECT_EQ(outcome.code, ExitCode::Usage) << message << outcome.out;
    EXPECT_THAT(outcome.err, HasSubstr(message));
    EXPECT_THAT(outcome.out, IsEmpty());
  }
}

TEST_F(Gruppo, ReportsADatabaseThatIsNotTheSystems) {
  const Outcome outcome =
      azcoll("gruppo", "--ditta", "10", "--connessione", "Provider=embedded;Data Source=:memory:");
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("Errore 208"), HasSubstr("CG18_ANADITTABASE")));
  EXPECT_EQ(azcoll("gruppo", "--ditta", "10", "--db", path("manca.db")).code, ExitCode::CannotOpen);
  EXPECT_EQ(azcoll("gruppo", "--ditta", "10").code, ExitCode::Usage);
}

TEST_F(Gruppo, ChangesNothing) {
  const std::string before = contents(db_);
  EXPECT_EQ(gruppo(12, "--anni", "2023-2026").code, ExitCode::Ok);
  EXPECT_TRUE(contents(db_) == before);
  EXPECT_THAT(filesLeft(), ElementsAre("prova.db"));
}

TEST_F(Gruppo, ReadsThreeHundredCompanies) {
  makeGroup(300);
  const auto begin = std::chrono::steady_clock::now();
  const auto json = gruppo(1007, "--anni", "2023-2025", "--json").json();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds{20});
  const auto& companies = json["anni"][1]["gruppi"][0]["aziende"];
  ASSERT_EQ(companies.size(), 301U);
  EXPECT_EQ(companies[300]["ditta"], 1300);
  EXPECT_EQ(companies[9]["copia_nel_gruppo"].dump(), "null");
  EXPECT_EQ(companies[10]["copia_nel_gruppo"], 1000);
}

TEST_F(Gruppo, KeepsControlCharactersOfANameOutOfTheTerminal) {
  sql("UPDATE CG16_ANAGGEN SET CG16_RAGSOANAG = 'A' + CHAR(27) + '[2JB' WHERE CG16_CODICE = 1010");
  EXPECT_THAT(gruppo(10, "--anno", "2024").out, Not(HasSubstr("\x1b")));
  EXPECT_THAT(gruppo(10, "--anno", "2024", "--dot").out, Not(HasSubstr("\x1b")));
}

}  // namespace
}  // namespace azcoll::cli
