#include <ctime>

#include "cli_test.h"

namespace azcoll::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Attivita : public DatabaseTest {
 protected:
  template <typename... Args>
  Outcome attivita(int company, int year, const Args&... args) {
    return azcoll("attivita", "--ditta", std::to_string(company), "--anno", std::to_string(year),
                  "--db", db_, args...);
  }

  void sql(const std::string& text) {
    const Outcome outcome = azcollWith(text, {"sql", "--db", db_});
    ASSERT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  }
};

TEST_F(Attivita, ShowsTheActivitiesWithTheirRegisters) {
  const Outcome outcome = attivita(10, 2024);
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_EQ(outcome.out,
            "Azienda 10 Alfa Società per Azioni, anno IVA 2024: 3 attività\n"
            "\n"
            "Attività  Descrizione               Principale  Sezionali\n"
            "--------  ------------------------  ----------  ---------\n"
            "      10  Attività 10 (azienda 10)  sì\n"
            "    1001  Editoria                              01\n"
            "    1002  Noleggio di attrezzature              02\n"
            "\n"
            "Nel 2023 non ci sono attività con cui confrontare.\n");
  EXPECT_THAT(outcome.err, IsEmpty());
}

TEST_F(Attivita, TellsWhatDiffersFromTheYearBefore) {
  EXPECT_EQ(attivita(40, 2025).out,
            "Azienda 40 È Terra Società Agricola S.S., anno IVA 2025: 2 attività\n"
            "\n"
            "Attività  Descrizione  Principale  Sezionali\n"
            "--------  -----------  ----------  ---------\n"
            "    4001  Agriturismo  sì\n"
            "      40  Viticoltura\n"
            "\n"
            "Rispetto al 2024:\n"
            "  ~ 40 Viticoltura\n"
            "      CG86_PERCDETRIVA: 4.00 -> 5.00\n"
            "      CG86_CODICE_CG28: 10 -> NULL\n"
            "      CG86_INDIVAACQAGRIC: 1 -> NULL\n"
            "  ~ 4001 Agriturismo\n"
            "      CG86_PERCDETRIVA: 10.00 -> 11.00\n"
            "      CG86_CODICE_CG28: 4 -> NULL\n"
            "  - 4002 Vendita di vini: non c'è più\n"
            "  - 4003 Consulenza: non c'è più\n");
}

TEST_F(Attivita, TellsThatNothingDiffers) {
  sql("DELETE FROM CG86_AZIENDECOLL WHERE CG86_INDTIPO = 0 AND CG86_ANNOIVA = 2025"
      " AND CG86_DITTACOLL_CG18 = 15\n"
      "INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT, CG86_DITTA_CG18,"
      " CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_PERCDETRIVA, CG86_INDTIPODEN, CG86_CODICE_CG28,"
      " CG86_FLGATTIVITAPRINC, CG86_INDNOITAEXP)"
      " VALUES (0, 2025, 0, 15, 15, 15, 100.00, 1, N'22', 1, 30)");
  EXPECT_THAT(attivita(15, 2025).out, HasSubstr("Rispetto al 2024:\n  nessuna differenza\n"));
}

TEST_F(Attivita, NamesTheGroupOfAnActivityThatIsALink) {
  const Outcome outcome = attivita(12, 2025);
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("Nel gruppo di\n"), HasSubstr("10 Alfa Società"),
                                 HasSubstr("  - 12 Attività 12 (azienda 12): non c'è più\n"),
                                 HasSubstr("  ~ 1201 Panetteria di gruppo (nel gruppo di 10)\n"
                                           "      CG86_INDTIPOCONT: 0 -> 2\n"),
                                 HasSubstr("      sezionali: nessuno -> 1\n")));
}

TEST_F(Attivita, SaysWhereTheMainActivityIsNotTheOneMarked) {
  sql("UPDATE CG86_AZIENDECOLL SET CG86_FLGATTIVITAPRINC = 0 WHERE CG86_DITTACOLL_CG18 = 40");
  EXPECT_THAT(attivita(40, 2025).out, HasSubstr("      40  Viticoltura  sì (codice più basso)\n"));
  sql("UPDATE CG86_AZIENDECOLL SET CG86_FLGATTIVITAPRINC = 1 WHERE CG86_DITTACOLL_CG18 = 40");
  EXPECT_THAT(attivita(40, 2025).out, AllOf(HasSubstr("      40  Viticoltura  sì\n"),
                                            HasSubstr("    4001  Agriturismo  solo nella riga\n")));
}

TEST_F(Attivita, NamesRegistersAndActivitiesThatFindNoPlace) {
  sql("DELETE FROM CG96_ANAGATTIVITA WHERE CG96_DITTA_CG18 = 40 AND CG96_CODATTIVITA = 4003");
  const Outcome outcome = attivita(40, 2024);
  EXPECT_THAT(outcome.out,
              AllOf(HasSubstr("\nSezionali senza attività: 02.\n"),
                    HasSubstr("\nNon elencate perché mancano nell'anagrafica attività: 4003.\n"),
                    Not(HasSubstr("4003  Consulenza"))));
  sql("UPDATE CG32_ANADITTAPSEZ SET CG32_IDATTIVITA_CG86 = 14 WHERE CG32_DITTA_CG18 = 40"
      " AND CG32_ANNO = 2024 AND CG32_SEZIONALE = '02'");
  EXPECT_THAT(attivita(40, 2024).out,
              AllOf(HasSubstr("\nSezionali di attività non elencate: 02.\n"),
                    Not(HasSubstr("Sezionali senza attività"))));
  const auto json = attivita(40, 2024, "--json").json();
  EXPECT_EQ(json["sezionali_di_attivita_non_elencate"].dump(), R"(["02"])");
}

TEST_F(Attivita, PairsRowsOfTheSameCodeInTheirOrder) {
  sql("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT, CG86_DITTA_CG18,"
      " CG86_DITTACOLL_CG18, CG86_CODATTIVITA) VALUES (0, 2025, 0, 40, 40, 4001)");
  EXPECT_THAT(attivita(40, 2025).out,
              AllOf(HasSubstr("  ~ 4001 Agriturismo\n"), HasSubstr("  + 4001 Agriturismo: nuova\n"),
                    HasSubstr("2025: 3 attività")));
}

TEST_F(Attivita, AYearWithoutActivitiesIsAnAnswerAndStaysEmpty) {
  const std::string before = contents(db_);
  for (int i = 0; i < 2; ++i) {
    const Outcome outcome = attivita(10, 2026);
    EXPECT_EQ(outcome.code, ExitCode::Ok);
    EXPECT_EQ(outcome.out,
              "Azienda 10 Alfa Società per Azioni, anno IVA 2026: nessuna attività\n"
              "Anni con attività: 2024, 2025.\n"
              "\n"
              "Rispetto al 2025:\n"
              "  - 10 Attività 10 (azienda 10): non c'è più\n");
  }
  EXPECT_TRUE(contents(db_) == before);
  const std::string differences = attivita(10, 2026, "--json").json()["differenze"].dump();
  EXPECT_EQ(differences,
            R"json([{"codice":10,"descrizione":"Attività 10 (azienda 10)","nel_gruppo_di":10,)json"
            R"json("segno":"-","campi":[]}])json");
  const Outcome never = attivita(5, 2024);
  EXPECT_THAT(never.out, HasSubstr("L'azienda 5 non ha attività in nessun anno.\n"));
  EXPECT_THAT(never.out, Not(HasSubstr("Rispetto al")));
  EXPECT_THAT(attivita(20, 2024).out, HasSubstr("L'azienda 20 non ha attività in nessun anno.\n"));
}

TEST_F(Attivita, GivesOneJsonObject) {
  const Outcome outcome = attivita(40, 2025, "--json");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  const auto json = outcome.json();
  EXPECT_EQ(json["ditta"], 40);
  EXPECT_EQ(json["nome"], "È Terra Società Agricola S.S.");
  EXPECT_EQ(json["anno"], 2025);
  ASSERT_EQ(json["attivita"].size(), 2U);
  EXPECT_EQ(json["attivita"][1].dump(),
            R"({"codice":40,"id":21,"descrizione":"Viticoltura","principale":false,)"
            R"("principale_nella_riga":false,"nel_gruppo_di":40,"sezionali":[]})");
  ASSERT_EQ(json["differenze"].size(), 4U);
  EXPECT_EQ(json["differenze"][0].dump(),
            R"({"codice":40,"descrizione":"Viticoltura","nel_gruppo_di":40,"segno":"~","campi":[)"
            R"({"campo":"CG86_PERCDETRIVA","prima":"4.00","ora":"5.00"},)"
            R"({"campo":"CG86_CODICE_CG28","prima":"10","ora":null},)"
            R"({"campo":"CG86_INDIVAACQAGRIC","prima":1,"ora":null}]})");
  EXPECT_EQ(json["anni_con_attivita"].dump(), "[2024,2025]");
  const auto first = attivita(10, 2024, "--json").json();
  EXPECT_TRUE(first["differenze"].is_null());
  EXPECT_EQ(first["attivita"][1]["sezionali"].dump(), R"(["01"])");
}

TEST_F(Attivita, RefusesBadInput) {
  for (const std::vector<std::string>& options :
       std::vector<std::vector<std::string>>{{"--ditta", "dieci"},
                                             {"--ditta", "10", "--anno", "x"},
                                             {"--ditta", "10", "--anni", "2023-2025"},
                                             {"--ditta", "10", "--csv"},
                                             {}}) {
    std::vector<std::string> args{"attivita", "--db", db_};
    args.insert(args.end(), options.begin(), options.end());
    EXPECT_EQ(azcollWith("", args).code, ExitCode::Usage);
  }
  EXPECT_EQ(azcoll("attivita", "--ditta", "10").code, ExitCode::Usage);
}

TEST_F(Attivita, ReportsWhatItCannotRead) {
  const Outcome unknown = attivita(99, 2024);
  EXPECT_EQ(unknown.code, ExitCode::Failed);
  EXPECT_THAT(unknown.err, HasSubstr("L'azienda 99 non esiste"));
  EXPECT_THAT(unknown.out, IsEmpty());
  const Outcome strange = azcoll("attivita", "--ditta", "10", "--connessione",
                                 "Provider=embedded;Data Source=:memory:");
  EXPECT_EQ(strange.code, ExitCode::Failed);
  EXPECT_THAT(strange.err, HasSubstr("Errore 208"));
  EXPECT_EQ(azcoll("attivita", "--ditta", "10", "--db", path("manca.db")).code,
            ExitCode::CannotOpen);
}

TEST_F(Attivita, TakesTheCurrentYear) {
  const std::time_t now = std::time(nullptr);
  const int year = std::localtime(&now)->tm_year + 1900;
  EXPECT_THAT(azcoll("attivita", "--ditta", "10", "--db", db_).out,
              HasSubstr("anno IVA " + std::to_string(year) + ":"));
}

}  // namespace
}  // namespace azcoll::cli
