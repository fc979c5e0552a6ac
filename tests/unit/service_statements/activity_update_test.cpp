#include <string>

#include "activity_fixture.h"

namespace azcoll::test {
namespace {

// From the company onto its activities.

const Text kRowsWithCompany{
    {"", " SELECT *"},
    {"", " FROM   CG86_AZIENDECOLL WITH(NOLOCK)"},
    {"", " INNER  JOIN CG25_ANADITTAGEST WITH(NOLOCK)"},
    {"", "        ON CG86_DITTACOLL_CG18 = CG25_DITTA_CG18"},
};
const std::string kRowsWithCompanyHead =
    " SELECT *\r\n FROM   CG86_AZIENDECOLL WITH(NOLOCK)\r\n INNER  JOIN CG25_ANADITTAGEST";
const Lines kRegistryUpdateTail{
    " FROM   CG96_ANAGATTIVITA WITH(NOLOCK)",       " INNER  JOIN CG25_ANADITTAGEST WITH(NOLOCK)",
    "        ON CG96_DITTA_CG18 = CG25_DITTA_CG18", " INNER  JOIN CG18_ANADITTABASE WITH(NOLOCK)",
    "    ON  CG18_DITTA = CG25_DITTA_CG18",         " LEFT   OUTER JOIN CG30_ANADITTADATE",
    "    ON  CG30_DITTA_CG18 = CG18_DITTA",         " WHERE  CG18_DITTA = 20"};
const Text kRowUpdateTail{
    {"", " FROM   CG86_AZIENDECOLL WITH(NOLOCK)"},
    {"", " INNER  JOIN CG25_ANADITTAGEST WITH(NOLOCK)"},
    {"", "        ON CG86_DITTACOLL_CG18 = CG25_DITTA_CG18"},
    {"", " INNER  JOIN CG18_ANADITTABASE WITH(NOLOCK)"},
    {"", "    ON  CG18_DITTA = CG25_DITTA_CG18"},
};

class ActivityUpdateTest : public ActivityTest {
 protected:
  /// Expects an update whose head and tail stand as written and whose assignments are in any
  /// layout.
  static void expectUpdate(const std::string& sql, const std::string& table,
                           const std::string& assigned, const std::string& tail) {
    EXPECT_TRUE(sql.starts_with(" UPDATE " + table + "\r\n")) << sql;
    EXPECT_TRUE(sql.ends_with("\r\n" + tail)) << sql << "\nexpected end: " << tail;
    EXPECT_EQ(squeezed(sql), squeezed("UPDATE " + table + " SET " + assigned + " " + tail));
  }
  /// `number` rows for the read that comes before the updates.
  void rowsFound(std::size_t number) {
    connection->answerPrefix(kRowsWithCompanyHead, activities(std::vector<Activity>(number)));
    connection->answerPrefix(" SELECT *\r\n FROM   CG96_ANAGATTIVITA",
                             rowSet({"CG96_CODATTIVITA"}, std::vector<Variant>(number, 1)));
  }
  TextCase giveCompany(const std::string& on) {
    TextCase which = give(on);
    which.on += 'C';
    return which;
  }
};

TEST_F(ActivityUpdateTest, WritesTheRegistryThenTheSelectedRows) {
  rowsFound(1);
  for (const std::string& flags : everySet("YSAIP")) {
    const TextCase which = giveCompany(flags);
    connection->operations.clear();
    service.AggiornaAttività();
    const Lines steps = transcript();
    ASSERT_EQ(steps.size(), 4U) << "flags: " << flags;
    EXPECT_EQ(steps[0], regimeOf("20"));
    EXPECT_EQ(steps[1], composed(kRowsWithCompany + kWhere + kLineBreak, which));
    expectUpdate(steps[2], "CG96_ANAGATTIVITA",
                 "CG96_CODICE_CG6A = CG18_ATECOCOD_CG6A, CG96_INDCATPART = CG25_INDCATPART, "
                 "CG96_FLGIVAEDIT = CG25_FLGIVAEDIT, CG96_INDAGRIC = CG25_INDAGRIC",
                 crlf(kRegistryUpdateTail));
    expectUpdate(steps[3], "CG86_AZIENDECOLL", assignments(kSettings, "CG86", "CG25"),
                 composed(kRowUpdateTail + kWhere + kLineBreak, which));
    expectState(0);
  }
  expectTextCommands();
  expectNoTransaction();
}

TEST_F(ActivityUpdateTest, ThereAreTwentyFourSettings) { EXPECT_EQ(kSettings.size(), 24U); }

TEST_F(ActivityUpdateTest, EveryRegimeButTwoIsWritten) {
  rowsFound(1);
  for (const Variant& flag : {Variant{std::int16_t{0}}, Variant{std::int16_t{1}},
                              Variant{std::int16_t{3}}, Variant{kNull}}) {
    regime(flag);
    connection->operations.clear();
    service.AggiornaAttività();
    EXPECT_EQ(lines(" UPDATE ").size(), 2U);
    service.AggiornaDateRegistriAnagraficaAttività();
    EXPECT_EQ(lines(" UPDATE ").size(), 3U);
  }
}

TEST_F(ActivityUpdateTest, ACompanyOfRegimeTwoIsLeftAlone) {
  rowsFound(1);
  regime(std::int16_t{2});
  service.AggiornaAttività();
  EXPECT_EQ(transcript(), Lines{regimeOf("20")});
  expectState(0);
  connection->operations.clear();
  service.AggiornaDateRegistriAnagraficaAttività();
  EXPECT_EQ(transcript(), Lines{regimeOf("20")});
  expectState(0);
}

TEST_F(ActivityUpdateTest, WithoutRowsTheyAreInserted) {
  connection->answerPrefix(" SELECT COUNT(1) AS NUM", rowSet({"NUM"}, {1}));
  service.AggiornaAttività();
  const Lines steps = transcript();
  ASSERT_EQ(steps.size(), 5U);
  EXPECT_TRUE(steps[1].starts_with(kRowsWithCompanyHead));
  EXPECT_TRUE(steps[2].starts_with(kCandidates));
  EXPECT_TRUE(steps[3].starts_with(" SELECT COUNT(1) AS NUM\r\n FROM   CG96_ANAGATTIVITA"));
  EXPECT_TRUE(steps[4].starts_with(" IF NOT EXISTS("));
  EXPECT_TRUE(lines(" UPDATE ").empty());
  expectState(0);
}

TEST_F(ActivityUpdateTest, AFailedInsertionIsToldUnderItsOwnName) {
  connection->fail(kCandidates, Failure::Provider, "guasto");
  service.AggiornaAttività();
  expectTrapped("guasto in InserisciAttività");
  service.AggiornaDateRegistriAnagraficaAttività();
  expectTrapped("guasto in InserisciAttività");
}

TEST_F(ActivityUpdateTest, AFailureEndsTheUpdate) {
  rowsFound(1);
  connection->fail(" UPDATE CG86_AZIENDECOLL", Failure::Provider, "guasto");
  service.AggiornaAttività();
  expectTrapped("guasto in AggiornaAttività");
  connection->fail(" UPDATE CG96_ANAGATTIVITA", Failure::Own, "altro guasto");
  connection->operations.clear();
  service.AggiornaAttività();
  expectTrapped("altro guasto in AggiornaAttività");
  EXPECT_TRUE(lines(" UPDATE CG86").empty());
  connection->fail(kRowsWithCompanyHead, Failure::Foreign, "terzo guasto");
  service.AggiornaAttività();
  expectTrapped("terzo guasto in AggiornaAttività");
  expectNoTransaction();
}

TEST_F(ActivityUpdateTest, TheRegistryTakesThePrintDates) {
  rowsFound(2);
  const std::string read =
      " SELECT *\r\n FROM   CG96_ANAGATTIVITA WITH(NOLOCK)\r\n WHERE  CG96_DITTA_CG18 = 20";
  const std::string tail =
      crlf({" FROM   CG96_ANAGATTIVITA WITH(NOLOCK)", " LEFT   OUTER JOIN CG30_ANADITTADATE",
            "    ON  CG30_DITTA_CG18 = CG96_DITTA_CG18", " WHERE  CG96_DITTA_CG18 = 20"});
  for (const std::string& flags : everySet("YSAIP")) {
    const TextCase which = giveCompany(flags);
    const std::string code = which.has('A') ? "\r\n AND CG96_CODATTIVITA = 2001" : "";
    connection->operations.clear();
    service.AggiornaDateRegistriAnagraficaAttività();
    const Lines steps = transcript();
    ASSERT_EQ(steps.size(), 3U) << "flags: " << flags;
    EXPECT_EQ(steps[0], regimeOf("20"));
    EXPECT_EQ(steps[1], read + code);
    expectUpdate(steps[2], "CG96_ANAGATTIVITA", assignments(kDates, "CG96", "CG30"), tail + code);
    expectState(0);
  }
  expectTextCommands();
  expectNoTransaction();
}

TEST_F(ActivityUpdateTest, AMissingRegistryEntryIsInsertedWithItsActivity) {
  connection->answerPrefix(" SELECT COUNT(1) AS NUM", rowSet({"NUM"}, {0}));
  service.AggiornaDateRegistriAnagraficaAttività();
  const Lines steps = transcript();
  ASSERT_EQ(steps.size(), 6U);
  EXPECT_TRUE(steps[1].starts_with(" SELECT *\r\n FROM   CG96_ANAGATTIVITA"));
  EXPECT_TRUE(steps[2].starts_with(kCandidates));
  EXPECT_TRUE(steps[4].starts_with(" INSERT INTO CG96_ANAGATTIVITA("));
  EXPECT_TRUE(steps[5].starts_with(" IF NOT EXISTS("));
  EXPECT_TRUE(lines(" UPDATE ").empty());
  expectState(0);
}

TEST_F(ActivityUpdateTest, FailuresOfThePrintDatesHaveTheirOwnName) {
  rowsFound(1);
  connection->fail(" UPDATE CG96_ANAGATTIVITA", Failure::Provider, "guasto");
  service.AggiornaDateRegistriAnagraficaAttività();
  expectTrapped("guasto in AggiornaDateRegistriAnagraficaAttività");
  connection->fail(" SELECT *\r\n FROM   CG96_ANAGATTIVITA", Failure::Foreign, "altro guasto");
  service.AggiornaDateRegistriAnagraficaAttività();
  expectTrapped("altro guasto in AggiornaDateRegistriAnagraficaAttività");
  expectNoTransaction();
}

TEST_F(ActivityUpdateTest, WithoutACompanyNothingIsDone) {
  for (const auto method : {&CLSCO_AZIENDECOLL::AggiornaAttività,
                            &CLSCO_AZIENDECOLL::AggiornaDateRegistriAnagraficaAttività,
                            &CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAttività,
                            &CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAnagraficaAttività}) {
    service.CPInput->Pvar_Ditta = kNull;
    service.CPInput->CodiceAttività = std::int32_t{2001};
    service.Errore = Variant{};
    (service.*method)();
    expectRefused("Codice azienda mancante!");
  }
  EXPECT_TRUE(connection->operations.empty());
}

}  // namespace
}  // namespace azcoll::test
