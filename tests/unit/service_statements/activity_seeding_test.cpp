#include <string>

#include "activity_fixture.h"

namespace azcoll::test {
namespace {

// Seeding a year from the latest one before it.

const std::string kGroupHead =
    " SELECT *\r\n FROM   CG86_AZIENDECOLL AS CG86 WITH(NOLOCK)\r\n WHERE  CG86.CG86_INDTIPO = 0"
    "\r\n   AND  CG86.CG86_ANNOIVA ";
const std::string kEarlier = kGroupHead + "< ";
const std::string kPresent = kGroupHead + "= ";
/// Rows of the group before `year`, in any layout.
std::string earlier(const std::string& columns, const std::string& company,
                    const std::string& year) {
  return "SELECT " + columns +
         " FROM CG86_AZIENDECOLL AS CG86 WITH(NOLOCK) WHERE CG86.CG86_INDTIPO = 0 AND "
         "CG86.CG86_ANNOIVA < " +
         year +
         " AND CG86.CG86_DITTA_CG18 IN (SELECT C.CG86_DITTA_CG18 FROM CG86_AZIENDECOLL AS C "
         "WITH(NOLOCK) WHERE C.CG86_INDTIPO = CG86.CG86_INDTIPO AND C.CG86_ANNOIVA = "
         "CG86.CG86_ANNOIVA AND (C.CG86_DITTACOLL_CG18 = " +
         company + " OR C.CG86_DITTA_CG18 = " + company + "))";
}

class SeedingTest : public ActivityTest {
 protected:
  SeedingTest() {
    regime(std::int16_t{0});
    financialYears(1);
    connection->answerPrefix(" SELECT COUNT(1) AS NUM", rowSet({"NUM"}, {1}));
  }
  void earlierRows(const std::vector<Activity>& rows) {
    connection->answerPrefix(kEarlier, activities(rows));
  }
  void presentRows(const std::vector<Activity>& rows) {
    connection->answerPrefix(kPresent, activities(rows));
  }
  /// Two rows of 2023 and one of 2022, in the order of the statement.
  void earlierGroup() {
    earlierRows(
        {{.id = 1, .anno = 2023, .ditta = 10, .dittaColl = 12, .codice = std::int32_t{1201}},
         {.id = 2, .anno = 2023, .ditta = 10, .dittaColl = 10, .codice = kNull},
         {.id = 3, .anno = 2022, .ditta = 10, .dittaColl = 15}});
  }
  /// The reads of candidates so far.
  [[nodiscard]] Lines insertions() const { return lines(kCandidates); }
  static std::string candidates(const std::string& company, const std::string& lastYear,
                                const std::string& code) {
    TextCase which{
        "CY",
        {{"p", ""}, {"ditta", company}, {"anno", "2024"}, {"dup", lastYear}, {"codice", code}}};
    which.on += code.empty() ? "" : "A";
    return composed(Text{{"", " SELECT *"}, {"", " FROM   CG86_AZIENDECOLL WITH(NOLOCK)"}} +
                        kWhere + Text{{"", " ORDER BY CG86_ANNOIVA DESC"}},
                    which);
  }
};

TEST_F(SeedingTest, NeedsTheFlagOrNoRegimeAndAFinancialYear) {
  for (const bool flag : {false, true}) {
    for (const std::int16_t kind : {std::int16_t{0}, std::int16_t{1}, std::int16_t{2}}) {
      for (const std::int32_t years : {0, 1, 2}) {
        service.CPInput->InserisciAttivitàDaPeriodoPrecedente = flag;
        regime(kind);
        financialYears(years);
        connection->operations.clear();
        service.InserisciAttivitàDaPeriodoPrecedente();
        const bool asked = flag || kind == 0;
        EXPECT_EQ(lines(" SELECT COUNT(1)\r FROM   CG19").size(), asked ? 1U : 0U);
        EXPECT_EQ(lines(kEarlier).size(), asked && years > 0 ? 1U : 0U);
        EXPECT_EQ(insertions().size(), asked && years > 0 ? 1U : 0U);
        expectState(0);
      }
    }
  }
}

TEST_F(SeedingTest, ACompanyWithoutARegimeCountsAsNone) {
  for (const ResultSet& answer :
       {rowSet({"CG25_FLGIVAQUATER"}, {kNull}), rowSet({"CG25_FLGIVAQUATER"}, {})}) {
    connection->answerPrefix(" SELECT CG25_FLGIVAQUATER", answer);
    connection->operations.clear();
    service.InserisciAttivitàDaPeriodoPrecedente();
    EXPECT_EQ(insertions().size(), 1U);
  }
}

TEST_F(SeedingTest, AnUnreadableRegimeCountsAsNone) {
  connection->fail(" SELECT CG25_FLGIVAQUATER", Failure::Provider, "guasto");
  service.InserisciAttivitàDaPeriodoPrecedente();
  EXPECT_EQ(insertions().size(), 1U);
  expectState(0);
}

TEST_F(SeedingTest, TheStatementsBeforeTheInsertion) {
  service.InserisciAttivitàDaPeriodoPrecedente();
  const Lines steps = transcript();
  ASSERT_EQ(steps.size(), 6U);
  EXPECT_EQ(steps[0], regimeOf("20"));
  EXPECT_EQ(steps[1],
            " SELECT COUNT(1)\r FROM   CG19_ANADITTAESER WITH (NOLOCK)\r WHERE  CG19_DITTA_CG18 = "
            "20\r   AND (CG19_DATAAPE BETWEEN  '20240101' AND '20241231'\r        OR CG19_DATACHIU "
            "BETWEEN  '20240101' AND '20241231'\r        OR (CG19_DATAAPE < '20240101' AND "
            "CG19_DATACHIU > '20241231')\r       ) ");
  EXPECT_TRUE(steps[2].starts_with(kEarlier + "2024\r\n   AND  CG86.CG86_DITTA_CG18 IN (SELECT "
                                              "C.CG86_DITTA_CG18\r\n"))
      << steps[2];
  EXPECT_TRUE(steps[2].ends_with("\r\n ORDER BY CG86_ANNOIVA DESC")) << steps[2];
  EXPECT_EQ(squeezed(steps[2]),
            squeezed(earlier("*", "20", "2024") + " ORDER BY CG86_ANNOIVA DESC"));
  EXPECT_EQ(steps[3], candidates("20", "0", ""));
  EXPECT_EQ(count("Open"), 0U);
  expectTextCommands();
  expectNoTransaction();
}

TEST_F(SeedingTest, WithoutEarlierRowsTheDefaultActivityIsInserted) {
  service.CPInput->CodiceAttività = std::int32_t{2001};
  service.InserisciAttivitàDaPeriodoPrecedente();
  EXPECT_TRUE(lines(kPresent).empty());
  EXPECT_EQ(insertions(), Lines{candidates("20", "0", "2001")});
  EXPECT_EQ(lines(" IF NOT EXISTS").size(), 1U);
  expectState(0);
}

TEST_F(SeedingTest, WithEarlierRowsThoseOfTheYearAreRead) {
  earlierGroup();
  service.InserisciAttivitàDaPeriodoPrecedente();
  const Lines present = lines(kPresent);
  ASSERT_EQ(present.size(), 1U);
  EXPECT_TRUE(present[0].starts_with(kPresent + "2024\r\n   AND  CG86_DITTA_CG18 IN("))
      << present[0];
  EXPECT_EQ(squeezed(present[0]),
            squeezed("SELECT * FROM CG86_AZIENDECOLL AS CG86 WITH(NOLOCK) WHERE CG86.CG86_INDTIPO "
                     "= 0 AND CG86.CG86_ANNOIVA = 2024 AND CG86_DITTA_CG18 IN(" +
                     earlier("CG86_DITTA_CG18", "20", "2024") + ")"));
}

TEST_F(SeedingTest, AYearThatHasRowsIsCompletedForTheCompanyOnly) {
  earlierGroup();
  presentRows({{.id = 9, .ditta = 10, .dittaColl = 12}});
  service.InserisciAttivitàDaPeriodoPrecedente();
  EXPECT_EQ(insertions(), Lines{candidates("20", "0", "")});
  expectState(0);
}

TEST_F(SeedingTest, EveryRowOfTheLatestYearIsInsertedInItsTurn) {
  earlierGroup();
  service.InserisciAttivitàDaPeriodoPrecedente();
  EXPECT_EQ(insertions(), (Lines{candidates("12", "2023", "1201"), candidates("10", "2023", "")}));
  EXPECT_EQ(lines(" IF NOT EXISTS").size(), 2U);
  expectState(0);
}

TEST_F(SeedingTest, TheBorrowedInputIsGivenBack) {
  earlierGroup();
  CLSCO_INPUTAZCOLL& in = *service.CPInput;
  in.Pvar_Ditta = "20";
  in.AnnoSolareDaDuplicare = kNull;
  in.CodiceAttività = "777";
  service.InserisciAttivitàDaPeriodoPrecedente();
  EXPECT_EQ(insertions(), (Lines{candidates("12", "2023", "1201"), candidates("10", "2023", "")}));
  EXPECT_EQ(in.Pvar_Ditta, Variant{"20"});
  EXPECT_TRUE(in.AnnoSolareDaDuplicare.isNull());
  EXPECT_EQ(in.CodiceAttività, Variant{"777"});
  EXPECT_EQ(in.AnnoSolare, Variant{std::int32_t{2024}});
  in.AnnoSolareDaDuplicare = std::int16_t{2020};
  in.CodiceAttività = Variant{};
  service.InserisciAttivitàDaPeriodoPrecedente();
  EXPECT_EQ(in.AnnoSolareDaDuplicare, Variant{std::int16_t{2020}});
  EXPECT_TRUE(in.CodiceAttività.isEmpty());
}

TEST_F(SeedingTest, TheRowsCanBeHandedOutInsteadOfInserted) {
  earlierGroup();
  service.CPInput->PopolaRecordsetInserimentoAttivitàMultiAzienda = true;
  service.InserisciAttivitàDaPeriodoPrecedente();
  EXPECT_EQ(insertions().size(), 2U);
  EXPECT_TRUE(lines(" IF NOT EXISTS").empty());
  EXPECT_EQ(lines(" SELECT 0 AS CG86_INDTIPO").size(), 2U);
  EXPECT_NE(service.CPOutput->Grst_AttivitaCollegate, nullptr);
}

TEST_F(SeedingTest, ReportsUnderTheNameOfTheInsertion) {
  earlierGroup();
  for (const std::string& statement : {kPresent, kEarlier}) {
    for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
      connection->fail(statement, failure, "guasto");
      service.InserisciAttivitàDaPeriodoPrecedente();
      expectTrapped("guasto in InserisciAttività");
    }
  }
  EXPECT_TRUE(insertions().empty());
  expectNoTransaction();
}

TEST_F(SeedingTest, AFailedCheckOfTheFinancialYearsEndsIt) {
  connection->fail(" SELECT COUNT(1)\r FROM   CG19", Failure::Provider, "guasto");
  service.InserisciAttivitàDaPeriodoPrecedente();
  expectTrapped("guasto in VerificaAnnoIvaEsercizioContabile");
  EXPECT_TRUE(lines(kEarlier).empty());
  EXPECT_TRUE(insertions().empty());
}

TEST_F(SeedingTest, AFailureInTheWalkLeavesTheBorrowedInput) {
  // The rows lack the activity code: reading it fails in the walk itself.
  connection->answerPrefix(kEarlier, rowSet({"CG86_ANNOIVA", "CG86_DITTACOLL_CG18"},
                                            {std::int16_t{2023}, std::int32_t{12}}));
  service.CPInput->CodiceAttività = std::int32_t{777};
  service.InserisciAttivitàDaPeriodoPrecedente();
  expectState(99);
  EXPECT_TRUE(errore().ends_with(" in InserisciAttività")) << errore();
  EXPECT_EQ(service.CPInput->Pvar_Ditta, Variant{std::int32_t{12}});
  EXPECT_EQ(service.CPInput->AnnoSolareDaDuplicare, Variant{std::int16_t{2023}});
  EXPECT_EQ(service.CPInput->CodiceAttività, Variant{std::int32_t{777}});
}

TEST_F(SeedingTest, AFailedInsertionLeavesItsRowInTheInput) {
  earlierGroup();
  connection->fail(candidates("10", "2023", ""), Failure::Provider, "guasto");
  service.InserisciAttivitàDaPeriodoPrecedente();
  expectTrapped("guasto in InserisciAttività");
  EXPECT_EQ(service.CPInput->Pvar_Ditta, Variant{std::int32_t{10}});
  EXPECT_EQ(service.CPInput->AnnoSolareDaDuplicare, Variant{std::int16_t{2023}});
  EXPECT_TRUE(service.CPInput->CodiceAttività.isNull());
}

TEST_F(SeedingTest, OfSeveralFailedInsertionsTheFirstIsTold) {
  earlierGroup();
  connection->fail(candidates("12", "2023", "1201"), Failure::Provider, "primo");
  connection->fail(candidates("10", "2023", ""), Failure::Provider, "secondo");
  service.InserisciAttivitàDaPeriodoPrecedente();
  EXPECT_EQ(insertions().size(), 2U);
  expectTrapped("primo in InserisciAttività");
  EXPECT_EQ(service.CPInput->Pvar_Ditta, Variant{std::int32_t{12}});
}

TEST_F(SeedingTest, AFailedInsertionDoesNotKeepTheOthersFromTheirTurn) {
  earlierGroup();
  connection->fail(candidates("12", "2023", "1201"), Failure::Provider, "guasto");
  service.InserisciAttivitàDaPeriodoPrecedente();
  EXPECT_EQ(insertions().size(), 2U);
  // The success of the other row does not hide it.
  expectTrapped("guasto in InserisciAttività");
  EXPECT_EQ(service.CPInput->Pvar_Ditta, Variant{std::int32_t{12}});
  EXPECT_EQ(service.CPInput->CodiceAttività, Variant{std::int32_t{1201}});
}

}  // namespace
}  // namespace azcoll::test
