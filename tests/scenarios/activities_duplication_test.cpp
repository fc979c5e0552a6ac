// A year's activities copied onto another year.

#include "scenarios/activity_database.h"

namespace azcoll::test {
namespace {

class ActivityDuplication : public ActivityDatabase {
 protected:
  void duplicateYear(int company, const Variant& from, const Variant& to, bool overSeveral) {
    ask(company, to);
    in().AnnoSolareDaDuplicare = from;
    in().IndProvenienzaMultiAziende = overSeveral;
    service.DuplicaAttività();
  }
  void expectRefused(std::string_view message) {
    expectState(1, message);
    EXPECT_EQ(count("BeginTrans"), 0U);
    EXPECT_EQ(statements(" DELETE"), Lines{});
  }
};

TEST_F(ActivityDuplication, TheActivitiesWithinACompanyReplaceThoseOfTheTargetYear) {
  duplicateYear(40, 2024, 2025, false);
  expectState(0);
  EXPECT_EQ(year(2025),
            (Lines{"10|5|NULL|0", "10|10|10|1", "10|12|1201|0", "10|15|NULL|0", "30|31|NULL|0",
                   "40|40|40|0", "40|40|4001|1", "40|40|4002|0", "40|40|4003|0"}));
  EXPECT_EQ(rows("SELECT CG86_PERCDETRIVA, CG86_CODICE_CG28, CG86_INDNOITAEXP FROM"
                 " CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025 AND CG86_CODATTIVITA = 4001"),
            (Lines{"10.00|4|30"}));
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(ActivityDuplication, TheColumnLeftOutOfTheCopyIsCarriedOver) {
  run("UPDATE CG86_AZIENDECOLL SET CG86_INDCOMLETTINT = 7 WHERE CG86_IDATTIVITA = 14");
  duplicateYear(40, 2024, 2025, false);
  expectState(0);
  EXPECT_EQ(rows("SELECT CG86_CODATTIVITA, CG86_INDCOMLETTINT FROM CG86_AZIENDECOLL"
                 " WHERE CG86_ANNOIVA = 2025 AND CG86_DITTA_CG18 = 40 ORDER BY CG86_CODATTIVITA"),
            (Lines{"40|0", "4001|0", "4002|0", "4003|7"}));
}

TEST_F(ActivityDuplication, TheLinksReplaceThoseOfTheTargetYear) {
  duplicateYear(10, 2024, 2025, true);
  expectState(0);
  // The own activity of the target year goes with the rest, and the links are not main activities:
  // the lowest code is that of a link without activity.
  EXPECT_EQ(rows("SELECT CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_INDTIPOCONT,"
                 " CG86_INDCOMLETTINT FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025"
                 " AND CG86_DITTA_CG18 = 10 ORDER BY CG86_DITTACOLL_CG18"),
            (Lines{"5|NULL|0|0", "12|1201|0|1", "15|NULL|0|0"}));
  EXPECT_EQ(rows("SELECT COUNT(1) FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025"
                 " AND CG86_DITTA_CG18 = 10 AND CG86_FLGATTIVITAPRINC = 1"),
            (Lines{"1"}));
  // The company of the input is the caller's again.
  EXPECT_TRUE(sameValue(in().Pvar_Ditta, 10));
  // The own activities of a company linked with an activity give way to the link.
  EXPECT_EQ(statements(" DELETE").size(), 2U);
  EXPECT_NE(statements(" DELETE").back().find("CG86_DITTACOLL_CG18 = 12\r\n"), std::string::npos);
}

TEST_F(ActivityDuplication, OneOwnActivityDoesNotStandAgainstLinksTwoDo) {
  duplicateYear(10, 2025, 2024, true);
  expectRefused(
      "Impossibile eseguire la duplicazione!\r\nL'azienda 10 gestisce l'esercizio di multiattività "
      "su singola azienda nell'anno 2024.");
  run("DELETE FROM CG32_ANADITTAPSEZ");
  run("DELETE FROM CG86_AZIENDECOLL WHERE CG86_IDATTIVITA IN (5, 6)");
  duplicateYear(10, 2025, 2024, true);
  expectState(0);
}

TEST_F(ActivityDuplication, LinksOfTheTargetYearStandAgainstOwnActivities) {
  for (const int company : {10, 12}) {
    duplicateYear(company, 2024, 2025, false);
    expectRefused(join("Impossibile eseguire la duplicazione!\r\nL'azienda ", company,
                       " gestisce l'esercizio di multiattività su più aziende nell'anno 2025."));
  }
}

TEST_F(ActivityDuplication, AMissingYearIsRefused) {
  const Lines before = activityPicture();
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}, Variant{0}}) {
    duplicateYear(40, missing, 2025, false);
    expectRefused("Anno solare da duplicare mancante!");
  }
  for (const Variant& missing : {Variant{0}, Variant{"0"}, Variant{-1}}) {
    duplicateYear(40, 2024, missing, false);
    expectRefused("Anno solare su cui duplicare l'anno 2024 mancante!");
  }
  EXPECT_EQ(activityPicture(), before);
}

TEST_F(ActivityDuplication, AYearOntoItselfChangesNothing) {
  const Lines before = activityPicture();
  for (const Variant& year : {Variant{2024}, Variant{"2024"}}) {
    for (const auto& [company, overSeveral] : {std::pair{40, false}, std::pair{10, false}}) {
      duplicateYear(company, 2024, year, overSeveral);
      EXPECT_EQ(count("BeginTrans"), 0U);
      EXPECT_EQ(activityPicture(), before);
    }
  }
  run("DELETE FROM CG32_ANADITTAPSEZ");
  run("DELETE FROM CG86_AZIENDECOLL WHERE CG86_IDATTIVITA IN (5, 6)");
  const Lines oneOwn = activityPicture();
  duplicateYear(10, 2024, 2024, true);
  expectState(0);
  EXPECT_EQ(activityPicture(), oneOwn);
}

TEST_F(ActivityDuplication, ASecondRunReplacesExactly) {
  const auto withoutIdentities = [&] {
    Lines found = rows(
        "SELECT CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT, CG86_DITTA_CG18,"
        " CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_PERCDETRIVA,"
        " CG86_CODICE_CG28, CG86_FLGATTIVITAPRINC, CG86_INDCOMLETTINT,"
        " CG86_INDNOITAEXP FROM CG86_AZIENDECOLL");
    std::ranges::sort(found);
    return found;
  };
  for (const auto& [company, overSeveral] : {std::pair{40, false}, std::pair{10, true}}) {
    duplicateYear(company, 2024, 2025, overSeveral);
    expectState(0);
    const Lines once = withoutIdentities();
    duplicateYear(company, 2024, 2025, overSeveral);
    expectState(0);
    EXPECT_EQ(withoutIdentities(), once) << company;
  }
}

TEST_F(ActivityDuplication, ACompanyLinkedUnderAnotherKeepsTheActivitiesToBeCopied) {
  // In 2024 company 12 has an own activity and is linked under 10 with an activity of the group.
  duplicateYear(12, 2024, 2026, false);
  expectState(0);
  EXPECT_EQ(year(2026), (Lines{"12|12|12|1"}));
  EXPECT_EQ(rows("SELECT CG86_CODATTIVITA FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2024"
                 " AND CG86_DITTA_CG18 = 12"),
            (Lines{"12"}));
}

TEST_F(ActivityDuplication, ACompanyLinkedUnderAnotherLosesItsOwnActivitiesWhenItsLinksAreCopied) {
  // In 2024 company 12 has an own activity, is linked under 10, and now has a link of its own.
  run("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
      " CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA) VALUES (0, 2024, 0, 12, 15, 15)");
  duplicateYear(12, 2024, 2026, true);
  expectState(0);
  EXPECT_EQ(year(2026), (Lines{"12|15|15|1"}));
  EXPECT_EQ(rows("SELECT CG86_DITTACOLL_CG18, CG86_CODATTIVITA FROM CG86_AZIENDECOLL"
                 " WHERE CG86_ANNOIVA = 2024 AND CG86_DITTA_CG18 = 12"),
            (Lines{"15|15"}));
}

TEST_F(ActivityDuplication, OneActivityAloneIsReplaced) {
  in().CodiceAttività = 40;
  duplicateYear(40, 2024, 2025, false);
  expectState(0);
  EXPECT_EQ(rows("SELECT CG86_CODATTIVITA, CG86_PERCDETRIVA, CG86_FLGATTIVITAPRINC"
                 " FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025 AND CG86_DITTA_CG18 = 40"
                 " ORDER BY CG86_CODATTIVITA"),
            (Lines{"40|4.00|0", "4001|11.00|1"}));
}

TEST_F(ActivityDuplication, TheMainActivityOfTheTargetYearComesBack) {
  run("UPDATE CG86_AZIENDECOLL SET CG86_FLGATTIVITAPRINC = 0 WHERE CG86_ANNOIVA = 2024"
      " AND CG86_DITTA_CG18 = 40");
  duplicateYear(40, 2024, 2025, false);
  expectState(0);
  EXPECT_EQ(rows("SELECT CG86_CODATTIVITA FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025"
                 " AND CG86_DITTA_CG18 = 40 AND CG86_FLGATTIVITAPRINC = 1"),
            (Lines{"4001"}));
}

TEST_F(ActivityDuplication, WithoutAMainActivityTheLowestCodeBecomesIt) {
  run("UPDATE CG86_AZIENDECOLL SET CG86_FLGATTIVITAPRINC = 0 WHERE CG86_DITTA_CG18 = 40");
  duplicateYear(40, 2024, 2025, false);
  expectState(0);
  EXPECT_EQ(rows("SELECT CG86_CODATTIVITA FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025"
                 " AND CG86_DITTA_CG18 = 40 AND CG86_FLGATTIVITAPRINC = 1"),
            (Lines{"40"}));
}

TEST_F(ActivityDuplication, ARememberedMainActivityThatIsNotCopiedGivesWayToTheLowestCode) {
  run("UPDATE CG86_AZIENDECOLL SET CG86_FLGATTIVITAPRINC = 0 WHERE CG86_ANNOIVA = 2024"
      " AND CG86_DITTA_CG18 = 40");
  run("UPDATE CG86_AZIENDECOLL SET CG86_CODATTIVITA = 4999 WHERE CG86_IDATTIVITA = 22");
  duplicateYear(40, 2024, 2025, false);
  expectState(0);
  EXPECT_EQ(rows("SELECT CG86_CODATTIVITA FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025"
                 " AND CG86_DITTA_CG18 = 40 AND CG86_FLGATTIVITAPRINC = 1"),
            (Lines{"40"}));
}

TEST_F(ActivityDuplication, RowsOfTheSameKeysGoTogetherByCodeAndOrder) {
  run("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
      " CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_INDCOMLETTINT,"
      " CG86_PERCDETRIVA) VALUES (0, 2024, NULL, 40, 40, 4003, 3, 1.00)");
  run("UPDATE CG86_AZIENDECOLL SET CG86_INDCOMLETTINT = 2 WHERE CG86_IDATTIVITA = 12");
  duplicateYear(40, 2024, 2025, false);
  expectState(0);
  EXPECT_EQ(rows("SELECT CG86_CODATTIVITA, CG86_INDTIPOCONT, CG86_INDCOMLETTINT FROM"
                 " CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025 AND CG86_DITTA_CG18 = 40"
                 " ORDER BY CG86_CODATTIVITA, CG86_INDTIPOCONT"),
            (Lines{"40|0|0", "4001|0|2", "4002|0|0", "4003|NULL|3", "4003|0|0"}));
}

TEST_F(ActivityDuplication, OfSeveralRowsOfOneCodeEachKeepsItsOwnValue) {
  run("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
      " CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_INDCOMLETTINT)"
      " VALUES (0, 2024, 0, 40, 40, 4003, 3)");
  run("UPDATE CG86_AZIENDECOLL SET CG86_INDCOMLETTINT = 4 WHERE CG86_IDATTIVITA = 14");
  duplicateYear(40, 2024, 2025, false);
  expectState(0);
  EXPECT_EQ(rows("SELECT CG86_INDCOMLETTINT FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025"
                 " AND CG86_CODATTIVITA = 4003 ORDER BY CG86_INDCOMLETTINT"),
            (Lines{"3", "4"}));
}

TEST_F(ActivityDuplication, TheRowsOfAnotherMainCompanyStayAsTheyAre) {
  // In 2026 company 12 has a group of its own and is linked under 10 as well.
  run("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
      " CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_PERCDETRIVA)"
      " VALUES (0, 2026, 0, 10, 12, 1201, 33.00)");
  run("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
      " CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_PERCDETRIVA)"
      " VALUES (0, 2024, 0, 12, 15, 15, 44.00)");
  duplicateYear(12, 2024, 2026, true);
  expectState(0);
  EXPECT_EQ(rows("SELECT CG86_PERCDETRIVA FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2026"
                 " AND CG86_DITTA_CG18 = 10"),
            (Lines{"33.00"}));
  EXPECT_EQ(rows("SELECT CG86_DITTACOLL_CG18, CG86_PERCDETRIVA FROM CG86_AZIENDECOLL"
                 " WHERE CG86_ANNOIVA = 2026 AND CG86_DITTA_CG18 = 12"),
            (Lines{"15|44.00"}));
}

TEST_F(ActivityDuplication, AFailureUndoesEverything) {
  const Lines before = activityPicture();
  for (const char* statement :
       {"    SET CG86_FLGATTIVITAPRINC = 0", " DELETE", " INSERT INTO", " SELECT COUNT(1)\r\n"}) {
    failOn = statement;
    duplicateYear(40, 2024, 2025, false);
    expectState(99, "guasto in DuplicaAttività");
    EXPECT_EQ(activityPicture(), before) << statement;
    EXPECT_FALSE(endOpenTransaction());
  }
}

TEST_F(ActivityDuplication, ARegisterHoldsTheTargetYearBack) {
  run("UPDATE CG32_ANADITTAPSEZ SET CG32_IDATTIVITA_CG86 = 21 WHERE CG32_DITTA_CG18 = 40");
  const Lines before = activityPicture();
  duplicateYear(40, 2024, 2025, false);
  expectFailure(" in DuplicaAttività");
  EXPECT_EQ(activityPicture(), before);
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(ActivityDuplication, ATransactionOfTheCallerIsLeftAlone) {
  connection->beginTrans();
  duplicateYear(40, 2024, 2025, false);
  expectFailure(" in DuplicaAttività");
  EXPECT_EQ(count("RollbackTrans"), 0U);
  EXPECT_TRUE(endOpenTransaction());
}

TEST_F(ActivityDuplication, AConfigurationThatCannotBeReadIsNotReplaced) {
  in().StrSelectSQLAttività = "CG86_COLORE";
  const Lines before = activityPicture();
  duplicateYear(40, 2024, 2025, false);
  expectFailure(" in RecordsetAttivitaCollegate");
  EXPECT_EQ(activityPicture(), before);
  EXPECT_EQ(count("BeginTrans"), 0U);
}

TEST_F(ActivityDuplication, ALinkedCompanyThatKeepsItsActivitiesIsReported) {
  run("UPDATE CG32_ANADITTAPSEZ SET CG32_IDATTIVITA_CG86 = 7 WHERE CG32_DITTA_CG18 = 12");
  duplicateYear(10, 2024, 2025, true);
  expectFailure(" in EliminaAttivitàSingolaCollegamentoMultiAzienda");
  EXPECT_TRUE(sameValue(in().Pvar_Ditta, 10));
  // The copy goes on without the carried values and is committed.
  EXPECT_EQ(rows("SELECT CG86_DITTACOLL_CG18, CG86_INDCOMLETTINT FROM CG86_AZIENDECOLL"
                 " WHERE CG86_ANNOIVA = 2025 AND CG86_DITTA_CG18 = 10"
                 " ORDER BY CG86_DITTACOLL_CG18"),
            (Lines{"5|0", "12|0", "15|0"}));
  EXPECT_FALSE(endOpenTransaction());
}

}  // namespace
}  // namespace azcoll::test
