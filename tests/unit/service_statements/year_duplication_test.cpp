#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "year_duplication_fixture.h"

namespace azcoll::test {
namespace {

const std::string kColumns =
    "CG86_INDTIPOCONT, CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_INDBENIUS, "
    "CG86_PERCFORIVA, CG86_PERCDETRIVA, CG86_PERCDETRRED, CG86_INDPRORATA, CG86_PERCPRORATA, "
    "CG86_PERCFINEANNO, CG86_INDPLAFOND, CG86_DATAINPLAFOND, CG86_INDTIPODEN, CG86_FLGGESBENZ, "
    "CG86_INDREGDEN, CG86_INDREGAUT, CG86_INDCALCIVA, CG86_FLGR38BIS, CG86_INDVENT, "
    "CG86_FLGGRANDEDISTRIB, CG86_CODICE_CG28, CG86_ALQCOR1_CG28, CG86_ALQCOR2_CG28, "
    "CG86_ALQCOR3_CG28, CG86_ALQCOR4_CG28, CG86_FLGATTIVITAPRINC, CG86_INDIVAACQAGRIC, "
    "CG86_FLGIVAPER, CG86_INDNOITAEXP, CG86_DATAININOITAEXP";

using YearDuplication = YearDuplicationTest;

// Refusals.

TEST_F(YearDuplication, TheYearToDuplicateIsRequired) {
  for (const Variant& year : {Variant{}, Variant{kNull}, Variant{""}, Variant{std::int16_t{0}},
                              Variant{std::int32_t{-1}}, Variant{"0"}}) {
    service.CPInput->AnnoSolareDaDuplicare = year;
    service.Errore = Variant{};
    service.DuplicaAttività();
    expectRefused("Anno solare da duplicare mancante!");
  }
  service.CPInput->AnnoSolare = std::int32_t{-3};
  service.DuplicaAttività();
  expectRefused("Anno solare da duplicare mancante!");
  EXPECT_TRUE(connection->operations.empty());
}

TEST_F(YearDuplication, TheTargetYearIsRequired) {
  // A year 0 is refused here and not taken for the current year, whose activities would be
  // replaced.
  service.CPInput->DataInizioElaborazione = Date{.year = 2024, .month = 7, .day = 1};
  for (const Variant& year : {Variant{std::int32_t{-3}}, Variant{std::int16_t{0}}, Variant{"0"}}) {
    service.CPInput->AnnoSolare = year;
    service.Errore = Variant{};
    service.DuplicaAttività();
    expectRefused("Anno solare su cui duplicare l'anno 2022 mancante!");
  }
  EXPECT_TRUE(connection->operations.empty());
}

TEST_F(YearDuplication, TheTargetYearMayComeFromTheProcessingDate) {
  service.CPInput->AnnoSolare = kNull;
  service.CPInput->DataInizioElaborazione = Date{.year = 2024, .month = 7, .day = 1};
  service.DuplicaAttività();
  EXPECT_EQ(steps().front(), joined(linksLines()));
  expectDone();
}

TEST_F(YearDuplication, WithoutACompanyNothingIsDone) {
  service.CPInput->Pvar_Ditta = "";
  service.DuplicaAttività();
  expectRefused("Codice azienda mancante!");
  EXPECT_TRUE(connection->operations.empty());
}

TEST_F(YearDuplication, MultiCompanyRowsDoNotGoOntoAYearOfSingleCompanyActivities) {
  service.CPInput->IndProvenienzaMultiAziende = true;
  for (const std::int32_t number : {2, 3}) {
    ownRows(number);
    connection->operations.clear();
    service.DuplicaAttività();
    expectRefused(
        "Impossibile eseguire la duplicazione!\r\nL'azienda 20 gestisce l'esercizio di "
        "multiattività su singola azienda nell'anno 2024.");
    EXPECT_EQ(steps(), Lines{joined(ownRowsLines())});
  }
}

TEST_F(YearDuplication, OneSingleCompanyRowIsTolerated) {
  service.CPInput->IndProvenienzaMultiAziende = true;
  links(5);
  for (const std::int32_t number : {0, 1}) {
    ownRows(number);
    connection->operations.clear();
    service.DuplicaAttività();
    EXPECT_EQ(steps().front(), joined(ownRowsLines()));
    expectDone();
  }
}

TEST_F(YearDuplication, SingleCompanyRowsDoNotGoOntoAYearOfLinks) {
  ownRows(5);
  for (const std::int32_t number : {1, 2}) {
    links(number);
    connection->operations.clear();
    service.DuplicaAttività();
    expectRefused(
        "Impossibile eseguire la duplicazione!\r\nL'azienda 20 gestisce l'esercizio di "
        "multiattività su più aziende nell'anno 2024.");
    EXPECT_EQ(steps(), Lines{joined(linksLines())});
  }
}

/// Line breaks of a text that are not CR LF.
std::ptrdiff_t otherBreaks(const std::string& text) {
  std::ptrdiff_t pairs = 0;
  for (std::size_t at = text.find("\r\n"); at != std::string::npos;
       at = text.find("\r\n", at + 2)) {
    ++pairs;
  }
  return std::ranges::count(text, '\r') + std::ranges::count(text, '\n') - 2 * pairs;
}

// Every statement of its own: the counts, the main activities remembered, cleared, counted, put
// back and given to the lowest code, the deletion and the copy, with and without restrictions.
TEST_F(YearDuplication, TheLinesArePartedByCarriageReturnAndLineFeed) {
  remembered({std::int32_t{2002}});
  mainActivities(0);
  for (const std::string& flags : everySet("MAI")) {
    const TextCase which{flags};
    service.CPInput->IndProvenienzaMultiAziende = which.has('M');
    service.CPInput->CodiceAttività = which.has('A') ? Variant{std::int32_t{2001}} : Variant{};
    service.CPInput->IdAttività = which.has('I') ? Variant{std::int32_t{77}} : Variant{};
    connection->operations.clear();
    service.DuplicaAttività();
    const Lines all = transcript();
    EXPECT_EQ(all.size(), 13U) << flags;
    for (const std::string& line : all) {
      EXPECT_EQ(otherBreaks(line), 0) << line;
      EXPECT_EQ(line.find("\r\n") != std::string::npos, !line.ends_with("Trans")) << line;
    }
    expectDone();
  }
}

TEST_F(YearDuplication, TheMessagesLineIsPartedTheSameWay) {
  links(1);
  service.DuplicaAttività();
  EXPECT_EQ(otherBreaks(errore()), 0);
  EXPECT_EQ(std::ranges::count(errore(), '\n'), 1);
}

// The whole run.

TEST_F(YearDuplication, EveryStatementInItsOrder) {
  service.DuplicaAttività();
  const Lines done = steps();
  ASSERT_EQ(done.size(), 10U);
  EXPECT_EQ(done[0], joined(linksLines()));
  EXPECT_TRUE(done[1].starts_with(" SELECT CG25_FLGIVAQUATER"));
  EXPECT_TRUE(done[2].starts_with("Open  SELECT CASE WHEN CG86_AZIENDECOLL.CG86_CODATTIVITA"));
  EXPECT_EQ(done[3], "BeginTrans");
  EXPECT_EQ(done[4], joined(rememberedLines()));
  EXPECT_EQ(done[5], joined(clearLines()));
  EXPECT_EQ(done[6], joined(ofTheYear({" DELETE"})));
  EXPECT_TRUE(done[7].starts_with(" INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, "));
  EXPECT_EQ(done[8], joined(countLines()));
  EXPECT_EQ(done[9], "CommitTrans");
  expectTextCommands();
  expectDone();
}

TEST_F(YearDuplication, TheQueryCoversBothYearsWithoutDecodedColumns) {
  service.CPInput->Pbol_AggiungiCampiDecodificheAttività = true;
  service.DuplicaAttività();
  ASSERT_EQ(count("Open"), 1U);
  const std::string sql = named("Open").front().sql;
  EXPECT_NE(sql.find(" AND CG86_AZIENDECOLL.CG86_ANNOIVA IN(2024, 2022)\r\n"), std::string::npos);
  EXPECT_EQ(sql.find("CG35_PRSDATIPROC"), std::string::npos);
  EXPECT_FALSE(service.CPInput->Pbol_AggiungiCampiDecodificheAttività);
}

TEST_F(YearDuplication, TheCopyFollowsTheOriginAndTheFilters) {
  for (const std::string& flags : everySet("MAIP")) {
    const TextCase which{flags};
    CLSCO_INPUTAZCOLL& in = *service.CPInput;
    in.IndProvenienzaMultiAziende = which.has('M');
    in.CodiceAttività = which.has('A') ? Variant{std::int32_t{2001}} : Variant{""};
    in.IdAttività = which.has('I') ? Variant{std::int32_t{77}} : Variant{kNull};
    in.SelezionaAttivitàPrincipale = which.has('P');
    connection->operations.clear();
    service.DuplicaAttività();
    const Lines copies = stepsLike(" INSERT INTO CG86_AZIENDECOLL (");
    ASSERT_EQ(copies.size(), 1U) << "flags: " << flags;
    const Text tail{{"", "\n FROM   CG86_AZIENDECOLL WITH(NOLOCK)"},
                    {"", "\n WHERE  CG86_INDTIPO = 0"},
                    {"", "\n   AND  CG86_ANNOIVA = 2022"},
                    {"", "\n   AND  CG86_DITTA_CG18 = 20"},
                    {"M", "\n AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18"},
                    {"m", "\n   AND CG86_DITTA_CG18 = CG86_DITTACOLL_CG18"},
                    {"A", "\n AND CG86_CODATTIVITA = 2001"},
                    {"I", "\n AND CG86_IDATTIVITA = 77"}};
    EXPECT_EQ(squeezed(copies[0]),
              squeezed("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, " + kColumns +
                       ") SELECT CG86_INDTIPO, 2024, " + kColumns + composed(tail, which)))
        << "flags: " << flags;
    expectDone();
  }
}

TEST_F(YearDuplication, OnlyTheCodeRestrictsTheDeletion) {
  for (const std::string& flags : everySet("AIP")) {
    const TextCase which = give("YS" + flags);
    connection->operations.clear();
    service.DuplicaAttività();
    const Lines whole = ofTheYear({" DELETE"});
    EXPECT_EQ(stepsLike(" DELETE"),
              Lines{joined(which.has('A') ? with(whole, " AND CG86_CODATTIVITA = 2001") : whole)})
        << "flags: " << flags;
    EXPECT_EQ(stepsLike(" UPDATE"), Lines{joined(clearLines())});
  }
}

// The main activity of the target year.

TEST_F(YearDuplication, AMainActivityThatIsThereIsLeftAlone) {
  remembered({std::int32_t{2001}});
  service.DuplicaAttività();
  EXPECT_EQ(stepsLike(" UPDATE"), Lines{joined(clearLines())});
  expectDone();
}

TEST_F(YearDuplication, TheRememberedMainActivitiesArePutBack) {
  remembered({std::int32_t{2002}, std::int32_t{2001}});
  mainActivities(0);
  service.DuplicaAttività();
  const Lines updates = stepsLike(" UPDATE");
  // Counted again there is still none: the lowest code follows.
  ASSERT_EQ(updates.size(), 4U);
  EXPECT_EQ(updates[1], joined(restoreLines("2002")));
  EXPECT_EQ(updates[2], joined(restoreLines("2001")));
  EXPECT_NE(updates[3].find("SELECT TOP 1 CG86_IDATTIVITA"), std::string::npos);
  const Lines done = steps();
  ASSERT_GT(done.size(), 3U);
  EXPECT_EQ(done[done.size() - 3], joined(countLines()));
  EXPECT_EQ(stepsLike(joined(countLines())).size(), 2U);
  expectDone();
}

TEST_F(YearDuplication, WithoutAnyTheLowestCodeBecomesTheMainActivity) {
  mainActivities(0);
  service.DuplicaAttività();
  const Lines updates = stepsLike(" UPDATE");
  ASSERT_EQ(updates.size(), 2U);
  EXPECT_TRUE(updates[1].starts_with(joined(
      {" UPDATE CG86_AZIENDECOLL", "    SET CG86_FLGATTIVITAPRINC = 1", " FROM   CG86_AZIENDECOLL",
       " WHERE  CG86_IDATTIVITA IN (SELECT TOP 1 CG86_IDATTIVITA\n"})))
      << updates[1];
  EXPECT_EQ(squeezed(updates[1]),
            "UPDATE CG86_AZIENDECOLL SET CG86_FLGATTIVITAPRINC = 1 FROM CG86_AZIENDECOLL WHERE "
            "CG86_IDATTIVITA IN (SELECT TOP 1 CG86_IDATTIVITA FROM CG86_AZIENDECOLL WHERE "
            "CG86_INDTIPO = 0 AND CG86_ANNOIVA = 2024 AND CG86_DITTA_CG18 = 20 ORDER BY "
            "CG86_CODATTIVITA)");
  expectDone();
}

// Failures.

TEST_F(YearDuplication, AFailureInTheTransactionIsRolledBack) {
  remembered({std::int32_t{2001}});
  mainActivities(0);
  // Where a statement's lines are parted otherwise, the commit fails in its place.
  const std::vector<std::string> statements{
      "CommitTrans",
      " UPDATE CG86_AZIENDECOLL\r    SET CG86_FLGATTIVITAPRINC = 1",
      " UPDATE CG86_AZIENDECOLL\r\n    SET CG86_FLGATTIVITAPRINC = 1",
      " INSERT INTO",
      " DELETE",
      " UPDATE "};
  for (const std::string& statement : statements) {
    for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
      connection->fail(statement, failure, "guasto");
      connection->operations.clear();
      service.DuplicaAttività();
      EXPECT_EQ(count("BeginTrans"), 1U) << statement;
      EXPECT_EQ(count("RollbackTrans"), 1U) << statement;
      EXPECT_EQ(transcript().back(), "RollbackTrans") << statement;
      expectTrapped("guasto in DuplicaAttività");
    }
  }
}

TEST_F(YearDuplication, AFailedRollbackKeepsTheMessageOfTheFailure) {
  connection->fail(" DELETE", Failure::Provider, "guasto");
  connection->fail("RollbackTrans", Failure::Provider, "altro guasto");
  service.DuplicaAttività();
  expectTrapped("guasto in DuplicaAttività");
}

TEST_F(YearDuplication, AFailureBeforeTheTransactionIsTrapped) {
  connection->fail("BeginTrans", Failure::Provider, "guasto");
  service.DuplicaAttività();
  expectTrapped("guasto in DuplicaAttività");
  EXPECT_TRUE(stepsLike(" UPDATE").empty());
  EXPECT_EQ(count("CommitTrans"), 0U);
}

TEST_F(YearDuplication, WhenTheConfigurationCannotBeReadNothingStaysChanged) {
  connection->fail(" SELECT CASE WHEN CG86_AZIENDECOLL.CG86_CODATTIVITA", Failure::Provider,
                   "guasto");
  service.DuplicaAttività();
  expectTrapped("guasto in RecordsetAttivitaCollegate");
  EXPECT_EQ(count("BeginTrans"), 0U);
  EXPECT_TRUE(stepsLike(" UPDATE").empty());
  EXPECT_TRUE(stepsLike(" DELETE").empty());
  EXPECT_TRUE(stepsLike(" INSERT").empty());
}

}  // namespace
}  // namespace azcoll::test
