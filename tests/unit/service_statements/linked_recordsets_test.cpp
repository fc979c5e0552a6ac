#include "linked_recordsets_fixture.h"

namespace azcoll::test {
namespace {

/// A method that gives a recordset of one statement.
struct Member {
  const char* name;
  Method method;
  const std::string* sql;
  const char* suffix;
};

class StatementMemberTest : public LinkedRecordsetsTest,
                            public ::testing::WithParamInterface<Member> {
 protected:
  void call() { (service.*GetParam().method)(); }
};

TEST_P(StatementMemberTest, OpensItsStatementWithTheStandardPattern) {
  call();
  EXPECT_EQ(transcript(), Lines{"Open " + *GetParam().sql});
  EXPECT_EQ(operationNames(),
            (Lines{"RecordsetConnection", "CursorLocation", "CursorType", "LockType", "Open"}));
  EXPECT_EQ(named("CursorLocation").front().options, Ints{3});
  EXPECT_EQ(named("CursorType").front().options, Ints{1});
  EXPECT_EQ(named("LockType").front().options, Ints{4});
  EXPECT_EQ(named("Open").front().options, (Ints{-1, -1, 1}));
}

TEST_P(StatementMemberTest, LeavesTheRecordsetOpenConnectedAndOnItsFirstRow) {
  connection->answer(*GetParam().sql, companies({12, std::int16_t{2}, 15, std::int16_t{7}}));
  call();
  const auto& found = service.CPOutput->Grst_DitteCollegate;
  ASSERT_NE(found, nullptr);
  EXPECT_TRUE(found->isOpen());
  EXPECT_EQ(found->recordCount(), 2);
  EXPECT_EQ(companiesLeft(*found), (Lines{"12", "15"}));
  EXPECT_EQ(count("Detach"), 0U);
  EXPECT_EQ(service.CPOutput->IndTipoCont.text(), "2");
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{""});
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_TRUE(service.Errore.isEmpty());
}

TEST_P(StatementMemberTest, HandsOutAMissingAccountingTypeAsItIs) {
  service.CPOutput->IndTipoCont = std::int16_t{5};
  connection->answer(*GetParam().sql, companies({12, kNull}));
  call();
  EXPECT_TRUE(service.CPOutput->IndTipoCont.isNull());
}

TEST_P(StatementMemberTest, WithoutRowsGivesAnEmptyOpenRecordsetAndKeepsTheAccountingType) {
  const auto earlier = leaveRecordset();
  service.CPOutput->IndTipoCont = std::int16_t{5};
  service.CPOutput->DitteCollegate = "left over";
  call();
  const auto& found = service.CPOutput->Grst_DitteCollegate;
  ASSERT_NE(found, nullptr);
  EXPECT_NE(found, earlier);
  EXPECT_TRUE(found->isOpen());
  EXPECT_EQ(found->recordCount(), 0);
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{5}});
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{""});
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
}

TEST_P(StatementMemberTest, StoresTheRecordsetBeforeItOpensIt) {
  const auto earlier = leaveRecordset();
  connection->fail("SELECT", Failure::Provider, "Timeout expired");
  call();
  const auto& found = service.CPOutput->Grst_DitteCollegate;
  ASSERT_NE(found, nullptr);
  EXPECT_NE(found, earlier);
  EXPECT_FALSE(found->isOpen());
}

TEST_P(StatementMemberTest, AnyFailureIsReportedUnderItsFixedName) {
  service.CPOutput->IndTipoCont = std::int16_t{5};
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->fail("SELECT", failure, "Rotto");
    service.Stato = std::int16_t{0};
    call();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
    EXPECT_EQ(errore(), std::string{"Rotto in "} + GetParam().suffix);
  }
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{5}});
}

TEST_P(StatementMemberTest, ARowWithoutTheAccountingTypeIsAFailureThatLeavesTheRecordset) {
  connection->answer(*GetParam().sql, rowSet({"DITTA"}, {12}));
  call();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(errore().ends_with(std::string{" in "} + GetParam().suffix)) << errore();
  ASSERT_NE(service.CPOutput->Grst_DitteCollegate, nullptr);
  EXPECT_TRUE(service.CPOutput->Grst_DitteCollegate->isOpen());
}

TEST_P(StatementMemberTest, WritesCompanyAndYearAsTheyStand) {
  service.CPInput->Pvar_Ditta = "0020";
  service.CPInput->AnnoSolare = Variant{};
  service.CPInput->DataInizioElaborazione = "30/06/2019";
  call();
  const std::string sql = named("Open").front().sql;
  EXPECT_NE(sql.find("CG86_ANNOIVA = 2019 AND CG86_DITTA_CG18 = 0020"), std::string::npos) << sql;
  EXPECT_EQ(sql.find("2024"), std::string::npos);
}

TEST_P(StatementMemberTest, AYearOfZeroIsAYear) {
  service.CPInput->AnnoSolare = std::int32_t{0};
  service.CPInput->DataInizioElaborazione = "30/06/2019";
  call();
  EXPECT_NE(named("Open").front().sql.find("CG86_ANNOIVA = 0 AND"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    EachMember, StatementMemberTest,
    ::testing::Values(
        Member{"RecordsetDitteCollegate", &CLSCO_AZIENDECOLL::RecordsetDitteCollegate, &kLinkedOnly,
               "RecordsetDitteCollegate"},
        Member{"RecordsetDitteCollegatePiuPrincipale",
               &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipale, &kMainFirst,
               "RecordsetDitteCollegatePiuPrincipale"},
        // The two siblings report the name of the method above.
        Member{"RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva",
               &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva,
               &kWithVatReturn, "RecordsetDitteCollegatePiuPrincipale"},
        Member{"RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio",
               &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio,
               &kMainLast, "RecordsetDitteCollegatePiuPrincipale"}),
    [](const auto& member) { return std::string{member.param.name}; });

// ------------------------------------------------------------ the whole group of any company

class WholeGroupTest : public LinkedRecordsetsTest {};

TEST_F(WholeGroupTest, OfAMainCompanyIsReadInOneStatement) {
  connection->answer(kGroupOfMain, companies({20, std::int16_t{3}, 30, std::int16_t{0}}));
  service.RecordsetDitteCollegatePiuPrincipaleNoPrinc();
  EXPECT_EQ(transcript(), Lines{"Open " + kGroupOfMain});
  EXPECT_EQ(named("Open").front().options, (Ints{-1, -1, 1}));
  EXPECT_EQ(named("CursorLocation").front().options, Ints{3});
  EXPECT_EQ(named("CursorType").front().options, Ints{1});
  EXPECT_EQ(named("LockType").front().options, Ints{4});
  ASSERT_NE(service.CPOutput->Grst_DitteCollegate, nullptr);
  EXPECT_EQ(companiesLeft(*service.CPOutput->Grst_DitteCollegate), (Lines{"20", "30"}));
  EXPECT_EQ(service.CPOutput->IndTipoCont.text(), "3");
}

TEST_F(WholeGroupTest, OfALinkedCompanyIsReadThroughItsMainCompany) {
  connection->answer(kGroupOfLinked,
                     companies({10, std::int16_t{4}, 20, std::int16_t{0}, 30, std::int16_t{0}}));
  service.RecordsetDitteCollegatePiuPrincipaleNoPrinc();
  EXPECT_EQ(transcript(), (Lines{"Open " + kGroupOfMain, "Open " + kGroupOfLinked}));
  EXPECT_EQ(named("Open").back().options, (Ints{-1, -1, 1}));
  EXPECT_EQ(named("CursorLocation").back().options, Ints{3});
  EXPECT_EQ(named("CursorType").back().options, Ints{1});
  EXPECT_EQ(named("LockType").back().options, Ints{4});
  const auto& found = service.CPOutput->Grst_DitteCollegate;
  ASSERT_NE(found, nullptr);
  EXPECT_TRUE(found->isOpen());
  EXPECT_EQ(companiesLeft(*found), (Lines{"10", "20", "30"}));
  EXPECT_EQ(service.CPOutput->IndTipoCont.text(), "4");
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
}

TEST_F(WholeGroupTest, OfACompanyWithoutLinksIsEmptyAfterBothStatements) {
  service.CPOutput->IndTipoCont = std::int16_t{5};
  service.RecordsetDitteCollegatePiuPrincipaleNoPrinc();
  EXPECT_EQ(transcript(), (Lines{"Open " + kGroupOfMain, "Open " + kGroupOfLinked}));
  const auto& found = service.CPOutput->Grst_DitteCollegate;
  ASSERT_NE(found, nullptr);
  EXPECT_TRUE(found->isOpen());
  EXPECT_EQ(found->recordCount(), 0);
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{5}});
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
}

TEST_F(WholeGroupTest, AFailureOfEitherStatementIsReported) {
  connection->fail(kGroupOfLinked, Failure::Provider, "Secondo");
  service.RecordsetDitteCollegatePiuPrincipaleNoPrinc();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(errore(), "Secondo in RecordsetDitteCollegatePiuPrincipaleNoPrinc");
  // The recordset there is that of the second statement, closed: not the first one, which found
  // nobody, for the answer.
  ASSERT_NE(service.CPOutput->Grst_DitteCollegate, nullptr);
  EXPECT_FALSE(service.CPOutput->Grst_DitteCollegate->isOpen());
  connection->operations.clear();
  connection->fail(kGroupOfMain, Failure::Foreign, "Primo");
  service.RecordsetDitteCollegatePiuPrincipaleNoPrinc();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(errore(), "Primo in RecordsetDitteCollegatePiuPrincipaleNoPrinc");
  EXPECT_EQ(transcript(), Lines{"Open " + kGroupOfMain});
}

// ------------------------------------------------------------ the list

class GroupListTest : public LinkedRecordsetsTest {};

TEST_F(GroupListTest, OfAMainCompanyIsItsLinkedCompaniesAndItself) {
  connection->answer(kLinkedOnly, companies({12, std::int16_t{2}, 15, std::int16_t{0}}));
  service.DitteCollegatePiuPrincipale();
  EXPECT_EQ(transcript(), Lines{"Open " + kLinkedOnly});
  EXPECT_EQ(operationNames(),
            (Lines{"RecordsetConnection", "CursorLocation", "CursorType", "LockType", "Open"}));
  EXPECT_EQ(named("Open").front().options, (Ints{-1, -1, 1}));
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{"12, 15, 20"});
  EXPECT_EQ(service.CPOutput->IndTipoCont.text(), "2");
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
}

TEST_F(GroupListTest, OfALinkedCompanyIsTheOthersThenItself) {
  connection->answer(kFellowsAndMain, companies({30, std::int16_t{6}, 10, std::int16_t{0}}));
  service.DitteCollegatePiuPrincipale();
  EXPECT_EQ(transcript(), (Lines{"Open " + kLinkedOnly, "Open " + kFellowsAndMain}));
  EXPECT_EQ(named("Open").back().options, (Ints{-1, -1, 1}));
  EXPECT_EQ(named("CursorLocation").back().options, Ints{3});
  EXPECT_EQ(named("CursorType").back().options, Ints{1});
  EXPECT_EQ(named("LockType").back().options, Ints{4});
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{"30, 10, 20"});
  EXPECT_EQ(service.CPOutput->IndTipoCont.text(), "6");
}

TEST_F(GroupListTest, RepeatsACompanyThatTheStatementGivesTwice) {
  connection->answer(kFellowsAndMain, companies({10, std::int16_t{0}, 10, std::int16_t{2}}));
  service.DitteCollegatePiuPrincipale();
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{"10, 10, 20"});
}

TEST_F(GroupListTest, WithoutLinksIsEmptyAfterBothStatements) {
  service.CPOutput->DitteCollegate = "left over";
  service.CPOutput->IndTipoCont = std::int16_t{5};
  service.DitteCollegatePiuPrincipale();
  EXPECT_EQ(transcript(), (Lines{"Open " + kLinkedOnly, "Open " + kFellowsAndMain}));
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{""});
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{5}});
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
}

TEST_F(GroupListTest, LeavesTheRecordsetOfAnEarlierCallAlone) {
  const auto earlier = leaveRecordset();
  connection->answer(kLinkedOnly, companies({12, std::int16_t{2}}));
  service.DitteCollegatePiuPrincipale();
  EXPECT_EQ(service.CPOutput->Grst_DitteCollegate, earlier);
  EXPECT_FALSE(earlier->isOpen());
}

TEST_F(GroupListTest, AMissingAccountingTypeIsHandedOutAsItIs) {
  connection->answer(kLinkedOnly, companies({12, kNull}));
  service.DitteCollegatePiuPrincipale();
  EXPECT_TRUE(service.CPOutput->IndTipoCont.isNull());
}

TEST_F(GroupListTest, AFailureOfEitherStatementIsReported) {
  connection->fail(kFellowsAndMain, Failure::Own, "Secondo");
  service.DitteCollegatePiuPrincipale();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(errore(), "Secondo in DitteCollegatePiuPrincipale");
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{""});
  connection->fail("SELECT", Failure::Provider, "Primo");
  service.DitteCollegatePiuPrincipale();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(errore(), "Primo in DitteCollegatePiuPrincipale");
}

}  // namespace
}  // namespace azcoll::test
