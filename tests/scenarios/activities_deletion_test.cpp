// Removing the activities of a year.

#include "scenarios/activity_database.h"

namespace azcoll::test {
namespace {

class ActivityDeletion : public ActivityDatabase {};

TEST_F(ActivityDeletion, TheStatementIsHandedOutAndNotRun) {
  in().Connessione = nullptr;
  ask(40, 2025);
  in().CodiceAttività = 4001;
  service.StringaSQLEliminazioneAttività();
  EXPECT_EQ(out().GstrSQL_AttivitaCollegate,
            " DELETE\r\n FROM   CG86_AZIENDECOLL\r\n WHERE CG86_INDTIPO = 0\r\n"
            " AND CG86_DITTACOLL_CG18 = 40\r\n AND CG86_ANNOIVA IN(2025, 0)\r\n"
            " AND CG86_CODATTIVITA = 4001\r\n");
  EXPECT_TRUE(operations.empty());
  run(out().GstrSQL_AttivitaCollegate);
  EXPECT_EQ(rows("SELECT CG86_IDATTIVITA FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025"
                 " AND CG86_DITTA_CG18 = 40"),
            (Lines{"21"}));
}

TEST_F(ActivityDeletion, TheConditionServesAStatementOfTheCaller) {
  ask(12, 2024);
  service.StringaSQLAttivitàSingolaCollegamentoMultiAzienda();
  EXPECT_TRUE(out().GstrSQL_AttivitaCollegate.starts_with(" WHERE CG86_INDTIPO = 0\r\n"));
  EXPECT_TRUE(out().GstrSQL_AttivitaCollegate.ends_with("            )\r\n"));
  EXPECT_EQ(rows("SELECT CG86_IDATTIVITA FROM CG86_AZIENDECOLL" + out().GstrSQL_AttivitaCollegate),
            (Lines{"7"}));
}

TEST_F(ActivityDeletion, TheOwnActivitiesOfALinkedCompanyGo) {
  ask(12, 2024);
  const Lines before = activityPicture();
  service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
  expectState(0);
  const Difference changes = difference(before, activityPicture());
  EXPECT_EQ(changes.come, Lines{});
  ASSERT_EQ(changes.gone.size(), 1U);
  EXPECT_TRUE(changes.gone[0].starts_with("CG86_AZIENDECOLL|7|"));
  EXPECT_EQ(count("BeginTrans"), 0U);
}

TEST_F(ActivityDeletion, ACompanyThatIsNeverLinkedKeepsItsActivities) {
  for (const int company : {40, 10, 30}) {
    ask(company, 2025);
    const Lines before = activityPicture();
    service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
    expectState(0);
    EXPECT_EQ(activityPicture(), before) << company;
  }
  EXPECT_EQ(statements(" DELETE"), Lines{});
}

TEST_F(ActivityDeletion, AnActivityOfARegisterIsHeldBack) {
  run("UPDATE CG32_ANADITTAPSEZ SET CG32_IDATTIVITA_CG86 = 7 WHERE CG32_DITTA_CG18 = 12");
  ask(12, 2024);
  const Lines before = activityPicture();
  service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
  expectFailure(" in EliminaAttivitàSingolaCollegamentoMultiAzienda");
  EXPECT_EQ(activityPicture(), before);
}

TEST_F(ActivityDeletion, AFailedTextIsNotReplacedByAnEarlierOne) {
  ask(12, 2024);
  service.StringaSQLEliminazioneAttività();
  in().AnnoSolare = "duemila";
  const Lines before = activityPicture();
  service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
  expectState(99, "Tipo non corrispondente in EliminaAttività");
  EXPECT_EQ(activityPicture(), before);
  EXPECT_TRUE(operations.empty());
}

TEST_F(ActivityDeletion, TheTextsReportUnderOneName) {
  ask(12, "duemila");
  service.StringaSQLAttivitàSingolaCollegamentoMultiAzienda();
  expectState(99, "Tipo non corrispondente in EliminaAttività");
}

TEST_F(ActivityDeletion, TheTextsNeedACompany) {
  service.StringaSQLEliminazioneAttività();
  expectState(1, "Codice azienda mancante!");
  EXPECT_EQ(out().GstrSQL_AttivitaCollegate, "");
}

}  // namespace
}  // namespace azcoll::test
