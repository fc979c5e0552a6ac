#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "year_duplication_fixture.h"

namespace azcoll::test {
namespace {

using YearDuplicationRows = YearDuplicationTest;

// The walk over the links of the source year.

class YearDuplicationLinks : public YearDuplicationTest {
 protected:
  YearDuplicationLinks() {
    service.CPInput->IndProvenienzaMultiAziende = true;
    configuration({{.id = 1, .dittaColl = 20},
                   {.id = 2, .dittaColl = 30, .codice = 3001},
                   {.id = 3, .dittaColl = 40, .codice = 4001},
                   {.id = 4, .anno = 2024, .dittaColl = 50, .codice = 5001}});
  }
  /// Companies whose own activities were deleted, in order.
  [[nodiscard]] std::vector<std::string> cleared() const {
    std::vector<std::string> companies;
    const std::string marker = "CG86_DITTACOLL_CG18 = ";
    for (const std::string& sql : stepsLike(" DELETE")) {
      if (sql.find("EXISTS") != std::string::npos) {
        const std::size_t at = sql.find(marker) + marker.size();
        companies.push_back(sql.substr(at, sql.find_first_not_of("0123456789", at) - at));
      }
    }
    return companies;
  }
};

TEST_F(YearDuplicationLinks, EveryLinkedCompanyOfTheSourceYearLosesItsOwnActivities) {
  service.DuplicaAttività();
  EXPECT_EQ(cleared(), (std::vector<std::string>{"30", "40"}));
  EXPECT_EQ(service.CPInput->Pvar_Ditta, Variant{std::int32_t{20}});
  const Lines deletions = lines(" DELETE");
  ASSERT_EQ(deletions.size(), 3U);
  EXPECT_NE(deletions[1].find("IN(2024, 2022)"), std::string::npos);
  expectDone();
}

TEST_F(YearDuplicationLinks, TheWalkStandsBetweenTheDeletionAndTheCopy) {
  service.DuplicaAttività();
  const Lines done = steps();
  Lines writes;
  for (const std::string& line : done) {
    if (line.starts_with(" DELETE") || line.starts_with(" INSERT")) {
      writes.push_back(line);
    }
  }
  ASSERT_EQ(writes.size(), 4U);
  EXPECT_EQ(writes[0], joined(ofTheYear({" DELETE"})));
  EXPECT_TRUE(writes[3].starts_with(" INSERT INTO CG86_AZIENDECOLL ("));
}

TEST_F(YearDuplicationLinks, LinksAreClearedForSingleCompanyRowsToo) {
  service.CPInput->IndProvenienzaMultiAziende = false;
  service.DuplicaAttività();
  EXPECT_EQ(cleared(), (std::vector<std::string>{"30", "40"}));
}

// The company is itself linked under another one, and other links of that group are shown, too.
TEST_F(YearDuplicationLinks, TheCompanysOwnActivitiesGiveWayWhereLinksAreCopied) {
  configuration({{.id = 1, .dittaColl = 30, .codice = 3001},
                 {.id = 2, .ditta = 10, .dittaColl = 20, .codice = 2001},
                 {.id = 3, .ditta = 10, .dittaColl = 40, .codice = 4001}});
  service.DuplicaAttività();
  EXPECT_EQ(cleared(), (std::vector<std::string>{"30", "20", "40"}));
  expectDone();
}

TEST_F(YearDuplicationLinks, TheCompanysOwnActivitiesStayWhereTheyAreWhatIsCopied) {
  service.CPInput->IndProvenienzaMultiAziende = false;
  configuration({{.id = 1, .dittaColl = 30, .codice = 3001},
                 {.id = 2, .ditta = 10, .dittaColl = 20, .codice = 2001},
                 {.id = 3, .ditta = 10, .dittaColl = 40, .codice = 4001}});
  service.DuplicaAttività();
  EXPECT_EQ(cleared(), (std::vector<std::string>{"30", "40"}));
  expectDone();
}

TEST_F(YearDuplicationLinks, TheWalkEndsAtTheFirstFailure) {
  connection->fail(
      " DELETE\r\n FROM   CG86_AZIENDECOLL\r\n WHERE CG86_INDTIPO = 0\r\n AND "
      "CG86_DITTACOLL_CG18 = 30",
      Failure::Provider, "guasto");
  service.DuplicaAttività();
  EXPECT_EQ(cleared(), std::vector<std::string>{"30"});
  EXPECT_EQ(service.CPInput->Pvar_Ditta, Variant{std::int32_t{20}});
  expectTrapped("guasto in EliminaAttivitàSingolaCollegamentoMultiAzienda");
  // The field values are not carried over after it.
  EXPECT_EQ(count("Open"), 1U);
  EXPECT_EQ(count("UpdateBatch"), 0U);
}

TEST_F(YearDuplicationLinks, AfterAFailedWalkTheYearIsCopiedAllTheSame) {
  connection->fail(
      " DELETE\r\n FROM   CG86_AZIENDECOLL\r\n WHERE CG86_INDTIPO = 0\r\n AND "
      "CG86_DITTACOLL_CG18 = 40",
      Failure::Provider, "guasto");
  service.DuplicaAttività();
  EXPECT_EQ(stepsLike(" INSERT INTO CG86_AZIENDECOLL (").size(), 1U);
  EXPECT_EQ(count("CommitTrans"), 1U);
  expectTrapped("guasto in EliminaAttivitàSingolaCollegamentoMultiAzienda");
}

// The remaining field values.

TEST_F(YearDuplicationRows, WithoutRowsNoValuesAreCarriedOver) {
  configuration({});
  service.DuplicaAttività();
  EXPECT_EQ(count("Open"), 1U);
  EXPECT_EQ(count("UpdateBatch"), 0U);
  expectDone();
}

TEST_F(YearDuplicationRows, ValuesThatDifferAreCarriedOntoTheTargetYear) {
  configuration({{.id = 1, .indComLettInt = 1, .attivitaPrincipale = 1},
                 {.id = 11, .anno = 2024, .indComLettInt = 0}});
  service.DuplicaAttività();
  EXPECT_EQ(count("Open"), 2U);
  const std::vector<Operation> changes = named("Change");
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_TRUE(changes[0].sql.starts_with(
      "UPDATE CG86_AZIENDECOLL SET CG86_INDCOMLETTINT = ? WHERE CG86_IDATTIVITA = ?"))
      << changes[0].sql;
  ASSERT_GE(changes[0].parameters.size(), 2U);
  EXPECT_EQ(changes[0].parameters[0].second, Variant{std::int16_t{1}});
  EXPECT_EQ(changes[0].parameters[1].second, Variant{std::int32_t{11}});
  ASSERT_GE(count("UpdateBatch"), 1U);
  for (const Operation& batch : named("UpdateBatch")) {
    EXPECT_EQ(batch.options, Ints{3});
  }
  expectDone();
}

TEST_F(YearDuplicationRows, TheValuesAreCarriedBetweenTheCopyAndTheFixUp) {
  configuration({{.id = 1, .indComLettInt = 1}, {.id = 11, .anno = 2024}});
  service.DuplicaAttività();
  std::size_t copied = 0;
  std::size_t carried = 0;
  std::size_t counted = 0;
  const Lines done = steps();
  for (std::size_t index = 0; index < done.size(); ++index) {
    copied = done[index].starts_with(" INSERT INTO") ? index : copied;
    carried = done[index].starts_with("UpdateBatch") ? index : carried;
    counted = done[index] == joined(countLines()) ? index : counted;
  }
  EXPECT_LT(copied, carried);
  EXPECT_LT(carried, counted);
}

TEST_F(YearDuplicationRows, RowsThatAgreeAreNotWritten) {
  configuration({{.id = 1, .indComLettInt = 1}, {.id = 11, .anno = 2024, .indComLettInt = 1}});
  service.DuplicaAttività();
  EXPECT_EQ(count("Change"), 0U);
  expectDone();
}

TEST_F(YearDuplicationRows, RowsWithOtherKeysAreNoPartners) {
  configuration({{.id = 1, .indComLettInt = 1},
                 {.id = 11, .anno = 2024, .indTipoCont = 2},
                 {.id = 12, .anno = 2024, .dittaColl = 30},
                 {.id = 13, .anno = 2024, .ditta = 30, .dittaColl = 20}});
  service.DuplicaAttività();
  EXPECT_EQ(count("Change"), 0U);
  expectDone();
}

TEST_F(YearDuplicationRows, RowsThatShareTheirKeysArePairedByCode) {
  configuration({{.id = 1, .codice = 2001, .indComLettInt = 5},
                 {.id = 2, .codice = 2002, .indComLettInt = 6},
                 {.id = 3, .codice = 2003, .indComLettInt = 7},
                 {.id = 12, .anno = 2024, .codice = 2002},
                 {.id = 11, .anno = 2024, .codice = 2001},
                 {.id = 19, .anno = 2024, .codice = 2009}});
  service.DuplicaAttività();
  std::map<std::int64_t, std::string> written;
  for (const Operation& change : named("Change")) {
    EXPECT_TRUE(change.sql.starts_with("UPDATE CG86_AZIENDECOLL SET CG86_INDCOMLETTINT = ? WHERE "))
        << change.sql;
    ASSERT_GE(change.parameters.size(), 2U);
    written[change.parameters[1].second.toInt64()] = change.parameters[0].second.text();
  }
  EXPECT_EQ(written, (std::map<std::int64_t, std::string>{{11, "5"}, {12, "6"}}));
  expectDone();
}

TEST_F(YearDuplicationRows, EqualCodesArePairedInTheirOrder) {
  configuration({{.id = 1, .indComLettInt = 5},
                 {.id = 2, .indComLettInt = 6},
                 {.id = 11, .anno = 2024},
                 {.id = 12, .anno = 2024},
                 {.id = 13, .anno = 2024}});
  service.DuplicaAttività();
  std::map<std::int64_t, std::string> written;
  for (const Operation& change : named("Change")) {
    ASSERT_GE(change.parameters.size(), 2U);
    written[change.parameters[1].second.toInt64()] = change.parameters[0].second.text();
  }
  EXPECT_EQ(written, (std::map<std::int64_t, std::string>{{11, "5"}, {12, "6"}}));
}

TEST_F(YearDuplicationRows, WhenTheCopiedRowsCannotBeReadAgainTheCopyStays) {
  configuration({{.id = 1, .indComLettInt = 1}, {.id = 11, .anno = 2024}});
  connection->onOperation = [this](const Operation& operation) {
    if (operation.sql.starts_with(" INSERT INTO CG86_AZIENDECOLL (")) {
      connection->fail(" SELECT CASE WHEN CG86_AZIENDECOLL.CG86_CODATTIVITA", Failure::Provider,
                       "guasto");
    }
  };
  service.DuplicaAttività();
  expectTrapped("guasto in RecordsetAttivitaCollegate");
  EXPECT_EQ(count("CommitTrans"), 1U);
  EXPECT_EQ(count("RollbackTrans"), 0U);
  EXPECT_EQ(count("UpdateBatch"), 0U);
  EXPECT_EQ(stepsLike(joined(countLines())).size(), 1U);
}

TEST_F(YearDuplicationRows, ARowChangedMeanwhileEndsTheCopy) {
  configuration({{.id = 1, .indComLettInt = 1}, {.id = 11, .anno = 2024}});
  connection->fail("UpdateBatch ", Failure::Provider, "guasto");
  service.DuplicaAttività();
  expectTrapped("guasto in DuplicaAttività");
  EXPECT_EQ(count("RollbackTrans"), 1U);
  EXPECT_EQ(count("CommitTrans"), 0U);
}

}  // namespace
}  // namespace azcoll::test
