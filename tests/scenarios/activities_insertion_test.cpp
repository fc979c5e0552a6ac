// Activities that come into being: from the company's data, from the latest year, for a group.

#include "scenarios/activity_database.h"

namespace azcoll::test {
namespace {

class ActivityInsertion : public ActivityDatabase {
 protected:
  Lines activitiesOf(int company) {
    return rows(
        join("SELECT CG86_ANNOIVA, CG86_CODATTIVITA FROM CG86_AZIENDECOLL WHERE"
             " CG86_INDTIPO = 0 AND CG86_DITTACOLL_CG18 = ",
             company, " ORDER BY CG86_ANNOIVA, CG86_CODATTIVITA"));
  }
};

TEST_F(ActivityInsertion, ACompanyWithoutActivitiesGetsOneOfItsOwnCode) {
  ask(20, 2024);
  service.InserisciAttività();
  expectState(0);
  EXPECT_EQ(rows("SELECT CG86_INDTIPOCONT, CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA,"
                 " CG86_PERCFORIVA, CG86_PERCDETRIVA, CG86_INDPLAFOND, CG86_DATAINPLAFOND,"
                 " CG86_CODICE_CG28, CG86_ALQCOR4_CG28, CG86_FLGATTIVITAPRINC, CG86_INDCOMLETTINT,"
                 " CG86_INDNOITAEXP, CG86_DATAININOITAEXP FROM CG86_AZIENDECOLL"
                 " WHERE CG86_DITTACOLL_CG18 = 20 AND CG86_INDTIPO = 0"),
            (Lines{"0|20|20|20|12.50|87.50|2|15/01/2024 10:30:00|22|4|1|0|30|NULL"}));
  EXPECT_EQ(rows("SELECT * FROM CG96_ANAGATTIVITA WHERE CG96_DITTA_CG18 = 20"),
            (Lines{"20|20|Attività 20 (azienda 20)|69.20.11|4|0|0|31/07/2024|30/07/2024|NULL|NULL|"
                   "20/08/2024|2024|NULL|NULL|NULL|NULL"}));
}

TEST_F(ActivityInsertion, ACodeOfTheCallersIsTaken) {
  ask(15, 2023);
  in().CodiceAttività = 77;
  service.InserisciAttività();
  expectState(0);
  EXPECT_EQ(year(2023), (Lines{"15|15|77|1"}));
  EXPECT_EQ(rows("SELECT CG96_DESCRATTIVITA FROM CG96_ANAGATTIVITA WHERE CG96_CODATTIVITA = 77"),
            (Lines{"Attività 77 (azienda 15)"}));
}

TEST_F(ActivityInsertion, TwiceInsertsOnce) {
  ask(20, 2024);
  service.InserisciAttività();
  const Lines after = activityPicture();
  service.InserisciAttività();
  expectState(0);
  EXPECT_EQ(activityPicture(), after);
  EXPECT_TRUE(sameValue(out().CodiceAttività, 20));
}

TEST_F(ActivityInsertion, ARegistryEntryThatIsThereStays) {
  ask(12, 2023);
  const Lines before = activityPicture();
  service.InserisciAttività();
  expectState(0);
  const Difference changes = difference(before, activityPicture());
  EXPECT_EQ(changes.gone, Lines{});
  EXPECT_EQ(changes.come.size(), 1U);
  EXPECT_EQ(year(2023), (Lines{"12|12|12|1"}));
}

TEST_F(ActivityInsertion, TheLatestYearIsCopiedUnchanged) {
  ask(10, 2026);
  in().AnnoSolareDaDuplicare = 2024;
  in().CodiceAttività = 1001;
  service.InserisciAttività();
  expectState(0);
  EXPECT_TRUE(sameValue(out().CodiceAttività, 1001));
  EXPECT_EQ(rows("SELECT CG86_PERCDETRIVA, CG86_DATAINPLAFOND, CG86_FLGATTIVITAPRINC,"
                 " CG86_INDCOMLETTINT, CG86_INDNOITAEXP, CG86_DATAININOITAEXP"
                 " FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2026"),
            (Lines{"75.25|01/03/2024|0|1|45|01/04/2024"}));
  service.InserisciAttività();
  EXPECT_EQ(year(2026).size(), 1U);
}

TEST_F(ActivityInsertion, AYearThatHasTheActivityIsLeftAlone) {
  ask(40, 2025);
  in().AnnoSolareDaDuplicare = 2024;
  in().CodiceAttività = 4001;
  const Lines before = activityPicture();
  service.InserisciAttività();
  expectState(0);
  EXPECT_EQ(activityPicture(), before);
  EXPECT_TRUE(sameValue(out().CodiceAttività, 4001));
}

TEST_F(ActivityInsertion, WithoutAYearTheOneAfterTheLatestIsTaken) {
  ask(40, -1);
  in().CodiceAttività = 4002;
  service.InserisciAttività();
  expectState(0);
  EXPECT_TRUE(sameValue(in().AnnoSolare, 2025));
  EXPECT_EQ(year(2025).back(), "40|40|4002|0");
}

TEST_F(ActivityInsertion, TheRowToBeInsertedIsHandedOutInstead) {
  in().PopolaRecordsetInserimentoAttivitàMultiAzienda = true;
  ask(20, 2024);
  service.InserisciAttività();
  expectState(0);
  EXPECT_EQ(activitiesOf(20), Lines{});
  ASSERT_EQ(out().Grst_AttivitaCollegate->recordCount(), 1);
  EXPECT_EQ(column(*out().Grst_AttivitaCollegate, "CG86_CODATTIVITA"), (Lines{"20"}));
  // The registry entry is written all the same.
  EXPECT_EQ(rows("SELECT CG96_CODATTIVITA FROM CG96_ANAGATTIVITA WHERE CG96_DITTA_CG18 = 20"),
            (Lines{"20"}));

  ask(40, 2025);
  in().CodiceAttività = 4001;
  const Lines before = activityPicture();
  service.InserisciAttività();
  expectState(0);
  EXPECT_EQ(activityPicture(), before);
  EXPECT_EQ(out().Grst_AttivitaCollegate->fields().count(), 34U);
  EXPECT_EQ(column(*out().Grst_AttivitaCollegate, "CG86_CODATTIVITA"), (Lines{"4001"}));
  EXPECT_TRUE(sameValue(out().CodiceAttività, 4001));
}

TEST_F(ActivityInsertion, ACompanyWithoutManagementDataGetsNothing) {
  ask(31, 2023);
  const Lines before = activityPicture();
  service.InserisciAttività();
  expectState(0);
  EXPECT_EQ(activityPicture(), before);
}

TEST_F(ActivityInsertion, AGroupTakesOverTheLatestEarlierYear) {
  ask(10, 2026);
  in().InserisciAttivitàDaPeriodoPrecedente = true;
  in().CodiceAttività = 5;
  in().AnnoSolareDaDuplicare = 1999;
  service.InserisciAttivitàDaPeriodoPrecedente();
  expectState(0);
  EXPECT_EQ(year(2026), (Lines{"10|5|NULL|0", "10|10|10|1", "10|12|1201|0", "10|15|NULL|0"}));
  EXPECT_TRUE(sameValue(in().Pvar_Ditta, 10));
  EXPECT_TRUE(sameValue(in().AnnoSolareDaDuplicare, 1999));
  EXPECT_TRUE(sameValue(in().CodiceAttività, 5));
}

TEST_F(ActivityInsertion, AYearOfTheGroupThatHasRowsIsNotSeeded) {
  ask(10, 2025);
  in().InserisciAttivitàDaPeriodoPrecedente = true;
  const Lines before = activityPicture();
  service.InserisciAttivitàDaPeriodoPrecedente();
  expectState(0);
  EXPECT_EQ(activityPicture(), before);
}

TEST_F(ActivityInsertion, OnlyRegimeZeroIsSeededWithoutBeingAsked) {
  ask(10, 2026);
  service.InserisciAttivitàDaPeriodoPrecedente();
  expectState(0);
  EXPECT_EQ(year(2026), Lines{});
  EXPECT_EQ(operations.size(), 1U);
  ask(20, 2024);
  service.InserisciAttivitàDaPeriodoPrecedente();
  EXPECT_EQ(activitiesOf(20), (Lines{"2024|20"}));
  ask(20, 2025);
  service.InserisciAttivitàDaPeriodoPrecedente();
  EXPECT_EQ(activitiesOf(20), (Lines{"2024|20", "2025|20"}));
}

TEST_F(ActivityInsertion, AYearWithoutFinancialYearIsNotSeeded) {
  ask(20, 2026);
  service.InserisciAttivitàDaPeriodoPrecedente();
  expectState(0);
  EXPECT_EQ(activitiesOf(20), Lines{});
}

TEST_F(ActivityInsertion, ARowThatFailsStaysInTheInputAndDoesNotKeepTheOthersFromTheirTurn) {
  failOn = "WHERE  CG86_IDATTIVITA = 17\r\n END";
  ask(10, 2026);
  in().InserisciAttivitàDaPeriodoPrecedente = true;
  service.InserisciAttivitàDaPeriodoPrecedente();
  expectState(99, "guasto in InserisciAttività");
  EXPECT_TRUE(sameValue(in().Pvar_Ditta, 12));
  EXPECT_TRUE(sameValue(in().AnnoSolareDaDuplicare, 2025));
  EXPECT_TRUE(sameValue(in().CodiceAttività, 1201));
  const Lines inserted = statements(" IF NOT EXISTS");
  EXPECT_EQ(inserted.size(), 4U);
  EXPECT_FALSE(inserted.back().ends_with(failOn));
}

TEST_F(ActivityInsertion, ASeedingThatFailsIsToldAndWhatIsThereIsRead) {
  failOn = "WHERE  CG86_IDATTIVITA = 17\r\n END";
  ask(10, 2026);
  in().InserisciAttivitàDaPeriodoPrecedente = true;
  service.RecordsetAttivitaCollegate();
  expectState(99, "guasto in InserisciAttività");
  ASSERT_NE(out().Grst_AttivitaCollegate, nullptr);
  // The row of company 12 was inserted before its failure was reported.
  EXPECT_EQ(column(*out().Grst_AttivitaCollegate, "CG86_CODATTIVITA"), (Lines{"10", "1201"}));
}

TEST_F(ActivityInsertion, FailuresNameTheInsertion) {
  ask(10, "duemila");
  service.InserisciAttività();
  expectFailure(" in InserisciAttività");
  in().InserisciAttivitàDaPeriodoPrecedente = true;
  ask(10, 2026);
  in().CodiceAttività = "1 +";
  service.InserisciAttività();
  expectFailure(" in InserisciAttività");
  service.CPOutput = nullptr;
  in().CodiceAttività = {};
  service.InserisciAttivitàDaPeriodoPrecedente();
  expectFailure(" in InserisciAttività");
}

}  // namespace
}  // namespace azcoll::test
