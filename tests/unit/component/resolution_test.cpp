#include "unit/component/fixture.h"

namespace azcoll::testing {
namespace {

const std::string kLinkText =
    "SELECT * FROM CG86_AZIENDECOLL WHERE CG86_INDTIPO = 0 AND CG86_DITTA_CG18 <> "
    "CG86_DITTACOLL_CG18 AND CG86_ANNOIVA = 2024 AND (CG86_DITTA_CG18 = 5 OR CG86_DITTACOLL_CG18 = "
    "5)";
const std::string kListText =
    "SELECT CG86_DITTACOLL_CG18 AS DITTA, CG86_INDTIPOCONT FROM CG86_AZIENDECOLL WHERE "
    "CG86_INDTIPO = 0 AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18 AND CG86_ANNOIVA = 2024 AND "
    "CG86_DITTA_CG18 = 5";

std::string call(const std::string& ditta, const std::string& data, const std::string& gestione,
                 const std::string& escludi) {
  return "CommandExecute 4,0,1,4,1: PC_GetDitteCollegate | @CodiceDitta " + ditta +
         " | @DataInizioElaborazione Date " + data + " | @GestioneDuplicazioneCliFor Int16 " +
         gestione + " | @EscludiDittaPrincipale Int16 " + escludi +
         " | @EscludiDittaCorrente Int16 " + escludi +
         " | @TipoCF Null | @CodIntermedio Null | @CodSede Null";
}

class Resolution : public ComponentTest {};

TEST_F(Resolution, TheLinkCheckOpensItsStatementAsAClientSideKeysetBatchRecordset) {
  service->ControllaDittaCollegata();
  expectSuccess();
  const Lines all = log();
  ASSERT_EQ(all.size(), 5U);
  EXPECT_EQ(all.back(), "Open -1,-1,1: " + kLinkText);
  EXPECT_EQ(log({"CursorLocation", "CursorType", "LockType"}),
            (Lines{"CursorLocation 3", "CursorType 1", "LockType 4"}));
  EXPECT_EQ(log({"RecordsetConnection"}).size(), 1U);
}

TEST_F(Resolution, TheListOpensItsStatementTheSameWay) {
  service->DitteCollegate();
  expectSuccess();
  const Lines all = log();
  ASSERT_EQ(all.size(), 5U);
  EXPECT_EQ(all.back(), "Open -1,-1,1: " + kListText);
  EXPECT_EQ(log({"CursorLocation", "CursorType", "LockType"}),
            (Lines{"CursorLocation 3", "CursorType 1", "LockType 4"}));
}

TEST_F(Resolution, ValuesStandInTheStatementsAsTheyAre) {
  in().Pvar_Ditta = "007";
  in().AnnoSolare = "2023";
  service->DitteCollegate();
  service->ControllaDittaCollegata();
  const Lines opened = log({"Open "});
  ASSERT_EQ(opened.size(), 2U);
  EXPECT_TRUE(opened[0].ends_with("AND CG86_ANNOIVA = 2023 AND CG86_DITTA_CG18 = 007"));
  EXPECT_TRUE(opened[1].ends_with(
      "AND CG86_ANNOIVA = 2023 AND (CG86_DITTA_CG18 = 007 OR CG86_DITTACOLL_CG18 = 007)"));
}

TEST_F(Resolution, AYearOfZeroStandsInTheTextsButNotInTheProceduresDate) {
  in().AnnoSolare = std::int32_t{0};
  in().DataInizioElaborazione = Date{.year = 2022, .month = 5, .day = 6};
  service->DitteCollegate();
  std::ignore = service->GetDittaPrincipale();
  EXPECT_NE(log({"Open "}).at(0).find("CG86_ANNOIVA = 0 AND"), std::string::npos);
  EXPECT_EQ(log({"CommandExecute"}), (Lines{call("Int32 5", "01/01/2022", "0", "0")}));
}

TEST_F(Resolution, WithoutAYearTheStartDateCountsThenToday) {
  in().AnnoSolare = kNull;
  in().DataInizioElaborazione = "31/12/2021";
  service->DitteCollegate();
  in().DataInizioElaborazione = "";
  service->DitteCollegate();
  const Lines opened = log({"Open "});
  ASSERT_EQ(opened.size(), 2U);
  EXPECT_NE(opened[0].find("CG86_ANNOIVA = 2021 AND"), std::string::npos);
  EXPECT_NE(opened[1].find("CG86_ANNOIVA = 2024 AND"), std::string::npos);
}

TEST_F(Resolution, ALinkGivesItsFirstRow) {
  connection->answer(kLinkText,
                     rowSet({"CG86_DITTA_CG18", "CG86_DITTACOLL_CG18", "CG86_INDTIPOCONT"},
                            {std::int32_t{10}, std::int32_t{5}, std::int16_t{2},  //
                             std::int32_t{30}, std::int32_t{5}, std::int16_t{1}}));
  service->ControllaDittaCollegata();
  expectSuccess();
  EXPECT_TRUE(out().Gbol_DittaPrincipale);
  EXPECT_EQ(shown(out().IndTipoCont), "Int16 2");
  EXPECT_EQ(shown(out().Gvar_DittaPrincipale), "Int32 10");
}

TEST_F(Resolution, AnAccountingTypeThatIsNullStaysNullInTheLinkCheck) {
  connection->answer(kLinkText,
                     rowSet({"CG86_DITTA_CG18", "CG86_INDTIPOCONT"}, {std::int32_t{10}, kNull}));
  out().IndTipoCont = std::int16_t{3};
  service->ControllaDittaCollegata();
  EXPECT_EQ(shown(out().IndTipoCont), "Null");
}

TEST_F(Resolution, NoLinkSaysNoAndLeavesTheRest) {
  out().Gbol_DittaPrincipale = true;
  out().Gvar_DittaPrincipale = "prima";
  out().IndTipoCont = std::int16_t{7};
  service->ControllaDittaCollegata();
  expectSuccess();
  EXPECT_FALSE(out().Gbol_DittaPrincipale);
  EXPECT_EQ(shown(out().Gvar_DittaPrincipale), "'prima'");
  EXPECT_EQ(shown(out().IndTipoCont), "Int16 7");
}

TEST_F(Resolution, TheListNamesEveryRowInOrderThenTheCompanyItself) {
  connection->answer(kListText,
                     rowSet({"DITTA", "CG86_INDTIPOCONT"}, {std::int32_t{12}, std::int16_t{4},  //
                                                            std::int32_t{15}, std::int16_t{1},  //
                                                            std::int32_t{12}, std::int16_t{0}}));
  service->DitteCollegate();
  expectSuccess();
  EXPECT_EQ(shown(out().DitteCollegate), "'12, 15, 12, 5'");
  EXPECT_EQ(shown(out().IndTipoCont), "Int16 4");
}

TEST_F(Resolution, AListWithoutRowsIsBlankAndTheAccountingTypeStays) {
  out().DitteCollegate = "vecchio";
  out().IndTipoCont = std::int16_t{9};
  service->DitteCollegate();
  expectSuccess();
  EXPECT_EQ(shown(out().DitteCollegate), "''");
  EXPECT_EQ(shown(out().IndTipoCont), "Int16 9");
}

TEST_F(Resolution, TheMainCompanyIsAskedForWithoutExclusions) {
  group(10, {5, 12});
  EXPECT_EQ(service->GetDittaPrincipale(), "10");
  expectSuccess();
  const Lines all = log();
  ASSERT_EQ(all.size(), 3U);
  EXPECT_EQ(all[0], call("Int32 5", "01/01/2024", "0", "0"));
  EXPECT_TRUE(all[1].starts_with("Detach")) << all[1];
  EXPECT_EQ(all[2], "Find 0,1,1: PRINCIPALE = 1");
  EXPECT_EQ(log({"CommandRelease"}).size(), 1U);
}

TEST_F(Resolution, TheCompanyReachesTheProcedureAsGiven) {
  in().Pvar_Ditta = "5";
  in().AttivaGestioneDuplicazioneCliFor = true;
  std::ignore = service->GetDittaPrincipale();
  EXPECT_EQ(log({"CommandExecute"}), (Lines{call("'5'", "01/01/2024", "1", "0")}));
}

TEST_F(Resolution, TheDuplicationFlagOfTheCallIsAZeroOrAOne) {
  const std::vector<std::pair<Variant, std::string>> cases{{true, "1"},
                                                           {false, "0"},
                                                           {std::int16_t{-1}, "1"},
                                                           {std::int32_t{1}, "1"},
                                                           {"1", "1"},
                                                           {kNull, "0"},
                                                           {Variant{}, "0"},
                                                           {"", "0"},
                                                           {std::int64_t{0}, "0"}};
  for (const auto& [value, expected] : cases) {
    forget();
    in().AttivaGestioneDuplicazioneCliFor = value;
    std::ignore = service->GetDittaPrincipale();
    EXPECT_EQ(log({"CommandExecute"}), (Lines{call("Int32 5", "01/01/2024", expected, "0")}))
        << shown(value);
  }
}

TEST_F(Resolution, TheMainRowNeedNotBeTheFirst) {
  group(10, {5, 12, 15}, std::int16_t{6});  // the fixture puts the main company last
  EXPECT_EQ(service->GetDittaPrincipale(), "10");
  EXPECT_EQ(shown(out().IndTipoCont), "Int16 6");
}

TEST_F(Resolution, AMissingAccountingTypeOfTheMainCompanyIsZero) {
  for (const Variant& missing : {Variant{kNull}, Variant{""}}) {
    group(10, {}, missing);
    out().IndTipoCont = std::int16_t{8};
    EXPECT_EQ(service->GetDittaPrincipale(), "10");
    EXPECT_TRUE(sameValue(out().IndTipoCont, std::int16_t{0})) << shown(out().IndTipoCont);
  }
}

TEST_F(Resolution, WithoutAMainRowNothingIsSet) {
  group(0, {5, 12});
  out().IndTipoCont = std::int16_t{8};
  EXPECT_EQ(service->GetDittaPrincipale(), "");
  EXPECT_EQ(shown(out().IndTipoCont), "Int16 8");
  expectSuccess();
}

TEST_F(Resolution, AMainRowWithoutACodeGivesNoCode) {
  connection->onProcedure = [](Parameters&) {
    return ProcedureAnswer{.rows = rowSet({"DITTA", "PRINCIPALE", "CG86_INDTIPOCONT"},
                                          {kNull, std::int16_t{1}, std::int16_t{2}})};
  };
  EXPECT_EQ(service->GetDittaPrincipale(), "");
  EXPECT_EQ(shown(out().IndTipoCont), "Int16 2");
}

TEST_F(Resolution, TheMainCompanyIsTheMainCompany) {
  group(10, {5, 12});
  const std::vector<std::pair<Variant, bool>> cases{
      {std::int32_t{10}, true},  {std::int16_t{10}, true},
      {std::int64_t{10}, true},  {"10", true},
      {std::int32_t{5}, false},  {"5", false},
      {std::int32_t{100}, false}};
  for (const auto& [ditta, expected] : cases) {
    in().Pvar_Ditta = ditta;
    out().Gbol_DittaPrincipale = !expected;
    service->ControllaDittaPrincipale();
    EXPECT_EQ(out().Gbol_DittaPrincipale, expected) << shown(ditta);
    expectSuccess();
  }
}

TEST_F(Resolution, WithoutAMainCompanyNoCompanyIsTheMainOne) {
  group(0, {});
  for (const Variant& ditta : {Variant{std::int32_t{-1}}, Variant{"-1"}, Variant{"x"}}) {
    in().Pvar_Ditta = ditta;
    out().Gbol_DittaPrincipale = true;
    service->ControllaDittaPrincipale();
    EXPECT_FALSE(out().Gbol_DittaPrincipale) << shown(ditta);
  }
}

TEST_F(Resolution, TheMainCompanyCheckSetsNoOtherField) {
  group(10, {5}, std::int16_t{3});
  out().Gvar_DittaPrincipale = "prima";
  service->ControllaDittaPrincipale();
  EXPECT_EQ(shown(out().Gvar_DittaPrincipale), "'prima'");
  EXPECT_EQ(shown(out().IndTipoCont), "Int16 3");
}

TEST_F(Resolution, TheLinkedCompaniesAreAskedForWithoutMainAndCurrentCompany) {
  group(10, {5, 12, 15});
  std::shared_ptr<Recordset> ditte;
  EXPECT_EQ(ServiceProbe::LeggiDitteCollegate(*service, ditte), "12, 15");
  EXPECT_EQ(log(), (Lines{call("Int32 5", "01/01/2024", "0", "1")}));
  EXPECT_EQ(log({"CommandRelease"}).size(), 1U);
  ASSERT_NE(ditte, nullptr);
  EXPECT_TRUE(ditte->isOpen());
  EXPECT_EQ(ditte->recordCount(), 2);
  EXPECT_EQ(shown(ditte->fields().item("DITTA").value()), "Int32 12");
}

TEST_F(Resolution, AListThatIsNullReadsAsBlank) {
  connection->onProcedure = [](Parameters&) {
    return ProcedureAnswer{.rows = rowSet({"DITTA"}, {}), .outputs = {{"@DitteCollegate", kNull}}};
  };
  std::shared_ptr<Recordset> ditte;
  EXPECT_EQ(ServiceProbe::LeggiDitteCollegate(*service, ditte), "");
  expectSuccess();
}

TEST_F(Resolution, ProcedureFailuresAreSwallowed) {
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->onProcedure = [this, failure](Parameters&) -> ProcedureAnswer {
      connection->raise(failure, "rotto", "PC_GetDitteCollegate");
    };
    service->Errore = "di prima";
    out().IndTipoCont = std::int16_t{8};
    std::shared_ptr<Recordset> ditte;
    EXPECT_EQ(service->GetDittaPrincipale(), "");
    EXPECT_EQ(ServiceProbe::LeggiDitteCollegate(*service, ditte), "");
    expectOutcome(0, "di prima");
    EXPECT_EQ(shown(out().IndTipoCont), "Int16 8");
    out().Gbol_DittaPrincipale = true;
    service->ControllaDittaPrincipale();
    expectOutcome(0, "di prima");
    EXPECT_FALSE(out().Gbol_DittaPrincipale);
  }
}

TEST_F(Resolution, StatementFailuresCarryTheNameOfTheMethod) {
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->fail("SELECT", failure, "Tabella assente");
    service->ControllaDittaCollegata();
    expectOutcome(99, "Tabella assente in ControllaDittaCollegata");
    service->DitteCollegate();
    expectOutcome(99, "Tabella assente in DitteCollegate");
  }
  EXPECT_TRUE(log({"BeginTrans", "RollbackTrans"}).empty());
}

TEST_F(Resolution, AListCutShortByAFailureKeepsWhatItHad) {
  connection->answer(kListText, rowSet({"DITTA", "ALTRO"}, {std::int32_t{12}, kNull}));
  service->DitteCollegate();
  EXPECT_EQ(shown(service->Stato), "Int16 99");
  EXPECT_TRUE(service->Errore.text().ends_with(" in DitteCollegate"));
  EXPECT_EQ(shown(out().DitteCollegate), "''");  // the missing column is read before the rows
}

}  // namespace
}  // namespace azcoll::testing
