#include <string>

#include "activity_fixture.h"

namespace azcoll::test {
namespace {

// Flags as of `kWhere`; the company's condition always stands there.
const Text kDelete{{"", " DELETE"}, {"", " FROM   CG86_AZIENDECOLL"}};
const Text kMultiCompany{
    {"", " AND  CG86_DITTA_CG18 = CG86_DITTACOLL_CG18"},
    {"", " AND EXISTS (SELECT 1"},
    {"", "             FROM   CG86_AZIENDECOLL AS A"},
    {"", "             WHERE A.CG86_INDTIPO = CG86_INDTIPO"},
    {"", "               AND  A.CG86_ANNOIVA = CG86_ANNOIVA"},
    {"", "               AND  A.CG86_DITTACOLL_CG18 = CG86_DITTACOLL_CG18"},
    {"", "               AND  A.CG86_DITTA_CG18 <> A.CG86_DITTACOLL_CG18"},
    {"", "            )"},
};
class ActivityDeletionTest : public ActivityTest {
 protected:
  /// What the count of the rows to be deleted gives.
  void rowsToDelete(std::int32_t number) {
    connection->answerPrefix(" SELECT COUNT(", rowSet({"NUM"}, {number}));
    connection->answerPrefix("SELECT COUNT(", rowSet({"NUM"}, {number}));
  }
  TextCase giveCompany(const std::string& on) {
    TextCase which = give(on);
    which.on += 'C';
    return which;
  }
  /// Flags of other methods, which play no part here.
  void giveForeignFlags() {
    CLSCO_INPUTAZCOLL& in = *service.CPInput;
    in.SelezionaAttivitàSingolaAzienda = true;
    in.SelezionaSoloAnagraficheAttività = true;
    in.MultiAziendaEscludiCollegate = true;
    in.IndProvenienzaMultiAziende = true;
    in.Pbol_AggiungiCampiDecodificheAttività = true;
    in.Pbol_ValorizzaRecordsetSezionali = true;
    in.StrSelectSQLAttività = "CG86_CODATTIVITA";
  }
  const std::string& text() const { return service.CPOutput->GstrSQL_AttivitaCollegate; }
  static std::string deletion(const TextCase& which) {
    return composed(kDelete + kWhere + kLineBreak, which);
  }
  static std::string multiCompanyDeletion(const TextCase& which) {
    return composed(kDelete + kWhere + kMultiCompany + kLineBreak, which);
  }
};

TEST_F(ActivityDeletionTest, TheStatementFollowsTheFilters) {
  for (const std::string& flags : everySet("YSAIP")) {
    const TextCase which = giveCompany(flags);
    service.StringaSQLEliminazioneAttività();
    EXPECT_EQ(text(), deletion(which)) << "flags: " << flags;
  }
  EXPECT_TRUE(connection->operations.empty());
  expectState(0);
}

TEST_F(ActivityDeletionTest, TheConditionFollowsTheFilters) {
  for (const std::string& flags : everySet("YSAIP")) {
    const TextCase which = giveCompany(flags);
    service.StringaSQLAttivitàSingolaCollegamentoMultiAzienda();
    EXPECT_EQ(text(), composed(kWhere + kMultiCompany + kLineBreak, which)) << "flags: " << flags;
  }
  EXPECT_TRUE(connection->operations.empty());
  expectState(0);
}

TEST_F(ActivityDeletionTest, TheTextsInFull) {
  service.StringaSQLEliminazioneAttività();
  EXPECT_EQ(text(),
            " DELETE\r\n FROM   CG86_AZIENDECOLL\r\n WHERE CG86_INDTIPO = 0\r\n"
            " AND CG86_DITTACOLL_CG18 = 20\r\n AND CG86_ANNOIVA IN(2024, 0)\r\n");
  service.StringaSQLAttivitàSingolaCollegamentoMultiAzienda();
  EXPECT_EQ(text(),
            " WHERE CG86_INDTIPO = 0\r\n AND CG86_DITTACOLL_CG18 = 20\r\n"
            " AND CG86_ANNOIVA IN(2024, 0)\r\n"
            " AND  CG86_DITTA_CG18 = CG86_DITTACOLL_CG18\r\n AND EXISTS (SELECT 1\r\n"
            "             FROM   CG86_AZIENDECOLL AS A\r\n"
            "             WHERE A.CG86_INDTIPO = CG86_INDTIPO\r\n"
            "               AND  A.CG86_ANNOIVA = CG86_ANNOIVA\r\n"
            "               AND  A.CG86_DITTACOLL_CG18 = CG86_DITTACOLL_CG18\r\n"
            "               AND  A.CG86_DITTA_CG18 <> A.CG86_DITTACOLL_CG18\r\n"
            "            )\r\n");
}

TEST_F(ActivityDeletionTest, FlagsOfOtherMethodsPlayNoPart) {
  const TextCase which = giveCompany("Y");
  giveForeignFlags();
  service.StringaSQLEliminazioneAttività();
  EXPECT_EQ(text(), deletion(which));
  service.StringaSQLAttivitàSingolaCollegamentoMultiAzienda();
  EXPECT_EQ(text(), composed(kWhere + kMultiCompany + kLineBreak, which));
  rowsToDelete(1);
  service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
  EXPECT_EQ(lines(" DELETE"), Lines{multiCompanyDeletion(which)});
}

TEST_F(ActivityDeletionTest, TheTextsAreComposedWithoutAConnection) {
  service.CPInput->Connessione = nullptr;
  const TextCase which = giveCompany("Y");
  service.StringaSQLEliminazioneAttività();
  EXPECT_EQ(text(), deletion(which));
  service.StringaSQLAttivitàSingolaCollegamentoMultiAzienda();
  EXPECT_TRUE(text().starts_with(" WHERE CG86_INDTIPO = 0\r\n"));
  EXPECT_EQ(service.CPInput->Connessione, nullptr);
  expectState(0);
}

TEST_F(ActivityDeletionTest, TheTextMethodsInheritTheState) {
  service.Stato = std::int16_t{1};
  service.Errore = "di prima";
  const TextCase which = giveCompany("Y");
  service.StringaSQLEliminazioneAttività();
  EXPECT_EQ(text(), deletion(which));
  service.StringaSQLAttivitàSingolaCollegamentoMultiAzienda();
  EXPECT_NE(text().find(" AND EXISTS "), std::string::npos);
  expectRefused("di prima");
}

TEST_F(ActivityDeletionTest, WithoutACompanyThereIsNoText) {
  service.CPInput->Pvar_Ditta = "";
  service.CPOutput->GstrSQL_AttivitaCollegate = "rimasto";
  service.StringaSQLEliminazioneAttività();
  EXPECT_EQ(text(), "rimasto");
  expectRefused("Codice azienda mancante!");
  service.Stato = std::int16_t{0};
  service.StringaSQLAttivitàSingolaCollegamentoMultiAzienda();
  EXPECT_EQ(text(), "rimasto");
  expectRefused("Codice azienda mancante!");
  rowsToDelete(1);
  service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
  EXPECT_EQ(text(), "rimasto");
  expectRefused("Codice azienda mancante!");
  EXPECT_TRUE(connection->operations.empty());
}

TEST_F(ActivityDeletionTest, BothTextMethodsReportUnderOneName) {
  service.CPOutput = nullptr;
  service.StringaSQLEliminazioneAttività();
  expectState(99);
  EXPECT_TRUE(errore().ends_with(" in EliminaAttività")) << errore();
  service.Errore = Variant{};
  service.StringaSQLAttivitàSingolaCollegamentoMultiAzienda();
  expectState(99);
  EXPECT_TRUE(errore().ends_with(" in EliminaAttività")) << errore();
}

TEST_F(ActivityDeletionTest, TheMultiCompanyDeletionFollowsTheFilters) {
  rowsToDelete(2);
  for (const std::string& flags : everySet("YSAIP")) {
    const TextCase which = giveCompany(flags);
    connection->operations.clear();
    service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
    EXPECT_EQ(lines(" DELETE"), Lines{multiCompanyDeletion(which)}) << "flags: " << flags;
    EXPECT_EQ(text(), deletion(which)) << "flags: " << flags;
    expectTextCommands();
    expectState(0);
  }
}

TEST_F(ActivityDeletionTest, TheRowsMeantAreCountedBeforeTheyAreDeleted) {
  rowsToDelete(1);
  giveCompany("YA");
  service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
  const Lines steps = transcript();
  ASSERT_EQ(steps.size(), 2U);
  const std::string counted = squeezed(steps[0]);
  EXPECT_TRUE(counted.starts_with("SELECT COUNT("));
  EXPECT_EQ(counted.find("DELETE"), std::string::npos);
  for (const char* const part : {"CG86_INDTIPO = 0", "CG86_DITTACOLL_CG18 = 20",
                                 "CG86_ANNOIVA IN(2024, 0)", "CG86_CODATTIVITA = 2001"}) {
    EXPECT_NE(counted.find(part), std::string::npos) << part;
  }
  EXPECT_TRUE(steps[1].starts_with(" DELETE\r\n"));
}

TEST_F(ActivityDeletionTest, TheCountNamesTheOuterRowInsideTheSubquery) {
  rowsToDelete(0);
  service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
  ASSERT_EQ(count("Execute"), 1U);
  const std::string counted = squeezed(transcript().front());
  // Unqualified, the comparison would be of the inner row with itself.
  EXPECT_EQ(counted.find("= CG86_ANNOIVA"), std::string::npos) << counted;
  EXPECT_EQ(counted.find("A.CG86_DITTACOLL_CG18 = CG86_DITTACOLL_CG18"), std::string::npos)
      << counted;
}

TEST_F(ActivityDeletionTest, NothingIsDeletedForACompanyThatIsNotLinked) {
  rowsToDelete(0);
  service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
  EXPECT_TRUE(lines(" DELETE").empty());
  EXPECT_EQ(count("Execute"), 1U);
  expectState(0);
  EXPECT_TRUE(service.Errore.isEmpty());
}

TEST_F(ActivityDeletionTest, TheDeletionOpensNoTransaction) {
  rowsToDelete(1);
  service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
  expectNoTransaction();
}

TEST_F(ActivityDeletionTest, AFailedDeletionIsReportedAndNotRolledBack) {
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    rowsToDelete(1);
    connection->fail(" DELETE", failure, "guasto");
    service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
    expectTrapped("guasto in EliminaAttivitàSingolaCollegamentoMultiAzienda");
    expectNoTransaction();
  }
}

TEST_F(ActivityDeletionTest, AFailedCountDeletesNothing) {
  connection->fail(" SELECT COUNT(", Failure::Provider, "guasto");
  connection->fail("SELECT COUNT(", Failure::Provider, "guasto");
  service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
  EXPECT_TRUE(lines(" DELETE").empty());
  expectTrapped("guasto in EliminaAttivitàSingolaCollegamentoMultiAzienda");
}

TEST_F(ActivityDeletionTest, TheInputStaysAsItWas) {
  rowsToDelete(1);
  giveCompany("YSAIP");
  const CLSCO_INPUTAZCOLL before = *service.CPInput;
  service.EliminaAttivitàSingolaCollegamentoMultiAzienda();
  EXPECT_EQ(service.CPInput->Pvar_Ditta, before.Pvar_Ditta);
  EXPECT_EQ(service.CPInput->AnnoSolare, before.AnnoSolare);
  EXPECT_EQ(service.CPInput->AnnoSolareDaDuplicare, before.AnnoSolareDaDuplicare);
  EXPECT_EQ(service.CPInput->CodiceAttività, before.CodiceAttività);
  EXPECT_EQ(service.CPInput->IdAttività, before.IdAttività);
}

}  // namespace
}  // namespace azcoll::test
