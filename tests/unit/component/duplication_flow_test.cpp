#include "unit/component/copies_fixture.h"

namespace azcoll::testing {
namespace {

std::string procedure(const std::string& ditta, const std::string& escludi,
                      const std::string& gestione = "1") {
  return "CommandExecute 4,0,1,4,1: PC_GetDitteCollegate | @CodiceDitta Int32 " + ditta +
         " | @DataInizioElaborazione Date 01/01/2024 | @GestioneDuplicazioneCliFor Int16 " +
         gestione + " | @EscludiDittaPrincipale Int16 " + escludi +
         " | @EscludiDittaCorrente Int16 " + escludi +
         " | @TipoCF Null | @CodIntermedio Null | @CodSede Null";
}

std::string intermediary(const std::string& ditta, const std::string& kind = "0") {
  return "Execute 1: SELECT * FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = " + ditta +
         " AND CG40_TIPOCF = " + kind + " AND CG40_INTERMEDIO = 7";
}
std::string branch(const std::string& ditta) {
  return "Execute 1: SELECT * FROM CG31_ANADITTASEDI WHERE CG31_DITTA_CG18 = " + ditta +
         " AND CG31_CODICE = 3";
}
std::string search(const std::string& list, const std::string& code = "120",
                   const std::string& kind = "0") {
  return "Execute 1: SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 IN(" + list +
         ") AND CG44_TIPOCF = " + kind + " AND CG44_CLIFOR = " + code;
}
std::string source(const std::string& ditta, const std::string& code = "120",
                   const std::string& kind = "0") {
  return "Execute 1: SELECT * FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = " + ditta +
         " AND CG44_TIPOCF = " + kind + " AND CG44_CLIFOR = " + code;
}
std::string sourceSales(const std::string& code = "120", const std::string& kind = "0") {
  return "Execute 1: SELECT * FROM MG19_CLIFORVA WHERE MG19_DITTA_CG18 = 5 AND MG19_TIPOCF_CG44 "
         "= " +
         kind + " AND MG19_CLIFOR_CG44 = " + code;
}
const std::string kAgent =
    "Execute 1:  SELECT     DST.MG17_IDAGENTE AS IDAGENTE FROM       MG17_AGENTI AS SRC "
    "WITH(NOLOCK) INNER JOIN MG17_AGENTI AS DST WITH(NOLOCK)         ON DST.MG17_DITTA_CG18 = 10   "
    "     AND DST.MG17_ANAGEN_CG16 = SRC.MG17_ANAGEN_CG16 WHERE      SRC.MG17_IDAGENTE = 501";
const std::string kFull =
    "Execute 1: " +
    masterStatement(
        "10, 0, 120, 3005, 2, N'0401120', N'0401999', N'BB30', 15, 1030, 14200, 0, 7, "
        "N'AT', N'E15', 510, 3, 808, 1");
std::string reduced(const std::string& ditta) {
  return "Execute 1: " +
         masterStatement(ditta +
                         ", 0, 120, 3005, 2,  Null, Null, Null, Null, Null, Null, 0, 7, N'AT', "
                         "N'E15',  Null,3,  Null, 0");
}

class DuplicationFlow : public CopiesTest {
 protected:
  /// The log without the two lookups of the group.
  [[nodiscard]] Lines work() const {
    Lines lines;
    for (const std::string& text : log()) {
      if (!text.starts_with("CommandExecute") && !text.starts_with("Detach") &&
          !text.starts_with("Find")) {
        lines.push_back(text);
      }
    }
    return lines;
  }
};

TEST_F(DuplicationFlow, ALinkedCompanySpreadsItsCustomerInThisOrder) {
  sales(salesValues());
  service->DuplicaCliFor();
  expectSuccess();
  EXPECT_EQ(
      work(),
      (Lines{"BeginTrans", search("12, 15, 10"), source("5"), sourceSales(), intermediary("10"),
             branch("10"), kAgent, kFull, "Execute 1: " + salesStatement(salesValues()),
             intermediary("12"), branch("12"), reduced("12"), intermediary("15"), branch("15"),
             reduced("15"), "Numera: 12", "Numera: 15", "Numera: 10", "CommitTrans"}));
  EXPECT_EQ(shown(in().Pvar_CliFor), "Int32 120");
}

TEST_F(DuplicationFlow, TheGroupIsLookedUpTwiceBeforeTheTransactionWithTheDuplicationFlagSet) {
  service->DuplicaCliFor();
  const Lines all = log({"CommandExecute", "BeginTrans"});
  EXPECT_EQ(all, (Lines{procedure("5", "0"), procedure("5", "1"), "BeginTrans"}));
}

TEST_F(DuplicationFlow, TheCallersChoiceOfDuplicationManagementWins) {
  in().AttivaGestioneDuplicazioneCliFor = false;
  service->DuplicaCliFor();
  EXPECT_EQ(log({"CommandExecute"}), (Lines{procedure("5", "0", "0"), procedure("5", "1", "0")}));
}

TEST_F(DuplicationFlow, TheMainCompanyWritesReducedCopiesOnly) {
  in().Pvar_Ditta = std::int32_t{10};
  set("CG44_DITTA_CG18", std::int32_t{10});
  service->DuplicaCliFor();
  expectSuccess();
  // The main company holds the code itself, so that it is not among those searched.
  Lines expected{"BeginTrans", search("5, 12, 15"), source("10")};
  for (const std::string ditta : {"5", "12", "15"}) {
    expected.push_back(intermediary(ditta));
    expected.push_back(branch(ditta));
    expected.push_back(reduced(ditta));
  }
  for (const char* const end :
       {"Numera: 5", "Numera: 12", "Numera: 15", "Numera: 10", "CommitTrans"}) {
    expected.emplace_back(end);
  }
  EXPECT_EQ(work(), expected);
}

TEST_F(DuplicationFlow, CompaniesAreComparedAsTexts) {
  in().Pvar_Ditta = "10";
  service->DuplicaCliFor();
  EXPECT_EQ(inserts("CG44_CLIFOR").size(), 3U);
  EXPECT_TRUE(log({sourceSales()}).empty());
}

TEST_F(DuplicationFlow, AMainCompanyWithoutOtherCompaniesReceivesTheFullCopyAlone) {
  group(10, {5});
  service->DuplicaCliFor();
  expectSuccess();
  EXPECT_EQ(work(),
            (Lines{"BeginTrans", search("10"), source("5"), sourceSales(), intermediary("10"),
                   branch("10"), kAgent, kFull, "Numera: 10", "CommitTrans"}));
}

TEST_F(DuplicationFlow, WithoutAMainCompanyTheFullCopyStillGoesToABlankCode) {
  group(0, {5, 12});
  service->DuplicaCliFor();
  expectSuccess();
  const Lines all = work();
  ASSERT_GE(all.size(), 2U);
  EXPECT_EQ(all[1], search("12"));
  const Lines copies = inserts("CG44_CLIFOR");
  ASSERT_EQ(copies.size(), 2U);  // the two codes differ, so the full copy is made
  EXPECT_TRUE(copies[0].find("VALUES (, 0, 120,") != std::string::npos) << copies[0];
  EXPECT_EQ(platform->numbered.size(), 1U);
}

TEST_F(DuplicationFlow, ASupplierHasItsOwnKindInEveryStatement) {
  in().Pint_TipoCF = Fornitore;
  set("CG44_TIPOCF", std::int16_t{1});
  group(10, {5});
  service->DuplicaCliFor();
  expectSuccess();
  const Lines all = work();
  EXPECT_EQ((Lines{all.begin(), all.begin() + 5}),
            (Lines{"BeginTrans", search("10", "120", "1"), source("5", "120", "1"),
                   sourceSales("120", "1"), intermediary("10", "1")}));
  EXPECT_NE(inserts("CG44_CLIFOR").at(0).find("VALUES (10, 1, 120, 3005,"), std::string::npos);
  EXPECT_EQ(platform->numbered, (Lines{"902 10 3 '00' 0 30/09/2024 120 ''"}));
}

TEST_F(DuplicationFlow, EmptyIntermediaryBranchAndAgentAskNothing) {
  for (const Variant& empty : {Variant{kNull}, Variant{}, Variant{""}}) {
    forget();
    set("CG44_INTERMEDIO_CG40", empty);
    set("CG44_CODSEDE_CG31", empty);
    set("CG44_IDAGENTE_MG17", empty);
    service->DuplicaCliFor();
    expectSuccess();
    EXPECT_EQ(work().size(), 11U) << shown(empty);
    EXPECT_TRUE(
        inserts("CG44_CLIFOR").at(0).ends_with("0, Null, N'AT', N'E15', Null, Null, 808, 1)"));
    EXPECT_TRUE(
        inserts("CG44_CLIFOR").at(1).ends_with("0, Null, N'AT', N'E15',  Null,Null,  Null, 0)"));
  }
}

TEST_F(DuplicationFlow, AnAgentWithoutCounterpartIsNull) {
  connection->answerPrefix(" SELECT     DST.MG17_IDAGENTE", rowSet({"IDAGENTE"}, {}));
  service->DuplicaCliFor();
  EXPECT_TRUE(inserts("CG44_CLIFOR").at(0).ends_with("N'E15', Null, 3, 808, 1)"));
}

TEST_F(DuplicationFlow, WithoutSalesDataTheMasterRowIsCopiedAlone) {
  connection->answerPrefix("SELECT * FROM MG19_CLIFORVA", rowSet({"MG19_AREA"}, {}));
  service->DuplicaCliFor();
  expectSuccess();
  EXPECT_EQ(inserts("CG44_CLIFOR").size(), 3U);
  EXPECT_TRUE(inserts("MG19_CLIFORVA").empty());
}

TEST_F(DuplicationFlow, NothingIsDoneWithoutAGroup) {
  group(0, {5});
  service->DuplicaCliFor();
  expectSuccess();
  EXPECT_TRUE(work().empty());
  EXPECT_FALSE(ServiceProbe::gestioneDuplicazione(*service));
}

TEST_F(DuplicationFlow, NothingIsDoneForAccountingTypeOneOfAnyKind) {
  for (const Variant& one : {Variant{std::int16_t{1}}, Variant{std::int32_t{1}},
                             Variant{*Decimal::parse("1")}, Variant{"1"}}) {
    forget();
    group(10, {5, 12}, one);
    service->DuplicaCliFor();
    expectSuccess();
    EXPECT_TRUE(work().empty()) << shown(one);
    EXPECT_FALSE(ServiceProbe::gestioneDuplicazione(*service));
  }
}

TEST_F(DuplicationFlow, EveryOtherAccountingTypeSpreads) {
  for (const Variant& other : {Variant{std::int16_t{0}}, Variant{std::int16_t{2}}, Variant{kNull},
                               Variant{std::int16_t{11}}}) {
    forget();
    group(10, {5, 12}, other);
    service->DuplicaCliFor();
    expectSuccess();
    EXPECT_EQ(inserts("CG44_CLIFOR").size(), 2U) << shown(other);
  }
}

TEST_F(DuplicationFlow, TheAccountingTypeOfAnEarlierCallCountsWhenNoMainCompanySetsIt) {
  group(0, {5, 12});
  out().IndTipoCont = std::int16_t{1};
  service->DuplicaCliFor();
  expectSuccess();
  EXPECT_TRUE(work().empty());
}

TEST_F(DuplicationFlow, TheCallersTransactionFlagIsNotConsulted) {
  in().Pbol_InTransaction = true;
  service->DuplicaCliFor();
  EXPECT_EQ(log({"BeginTrans", "CommitTrans"}), (Lines{"BeginTrans", "CommitTrans"}));
}

TEST_F(DuplicationFlow, TheFlagsAreClearedAfterASuccess) {
  service->DuplicaCliFor();
  EXPECT_FALSE(ServiceProbe::gestioneDuplicazione(*service));
  EXPECT_FALSE(ServiceProbe::transazioneAperta(*service));
}

TEST_F(DuplicationFlow, AnUnknownCustomerLeavesTheTransactionOpenWithoutAMessage) {
  connection->answerPrefix("SELECT * FROM CG44_CLIFOR", rowSet(masterColumns(), {}));
  service->Errore = "di prima";
  service->DuplicaCliFor();
  expectOutcome(99, "di prima");
  EXPECT_EQ(work(), (Lines{"BeginTrans", search("12, 15, 10"), source("5")}));
  EXPECT_TRUE(ServiceProbe::transazioneAperta(*service));
  EXPECT_FALSE(ServiceProbe::gestioneDuplicazione(*service));
}

TEST_F(DuplicationFlow, ATakenCodeIsLeftForTheNextFreeOneEverywhere) {
  for (const std::string code : {"120", "121"}) {
    connection->answer(search("12, 15, 10", code).substr(11),
                       rowSet({"CG44_CLIFOR"}, {static_cast<std::int32_t>(std::stoi(code))}));
  }
  set("CG44_CLIFOR", std::int32_t{122});
  service->DuplicaCliFor();
  expectSuccess();
  EXPECT_EQ(shown(in().Pvar_CliFor), "Int32 122");
  const Lines all = work();
  ASSERT_GT(all.size(), 20U);
  EXPECT_EQ((Lines{all.begin(), all.begin() + 5}),
            (Lines{"BeginTrans", search("12, 15, 10", "120"),
                   "Execute 1: SELECT MAX(CG70_ULTNUMDOC) AS CG70_ULTNUMDOC FROM CG70_NUMERDOC "
                   "WHERE CG70_DITTA_CG18 IN(12, 15, 10, 5) AND CG70_SEZ_CG68 = '00' AND CG70_ANNO "
                   "= 0AND CG70_TIPODOCINT = 901",
                   search("12, 15, 10", "121"), search("12, 15, 10", "122")}));
  // No sub-table has rows: thirteen reads, then the master row moves.
  EXPECT_EQ(all[5],
            "Execute 1: SELECT * FROM MG1C_CLIFORAGEMUL WHERE MG1C_DITTA_CG18 = 5 AND "
            "MG1C_TIPOCF_CG44 = 0 AND MG1C_CLIFOR_CG44 = 120");
  EXPECT_EQ(all[17], sourceSales("120"));
  EXPECT_EQ(all[18],
            "Execute 1: UPDATE CG44_CLIFOR  SET CG44_CLIFOR = 122 WHERE CG44_DITTA_CG18 = 5 AND "
            "CG44_TIPOCF = 0 AND CG44_CLIFOR = 120");
  EXPECT_EQ(all[19], source("5", "122"));
  EXPECT_EQ(all[20], sourceSales("122"));
  EXPECT_NE(inserts("CG44_CLIFOR").at(0).find("VALUES (10, 0, 122, 3005,"), std::string::npos);
  EXPECT_EQ(platform->numbered.at(0), "901 12 3 '00' 0 30/09/2024 122 ''");
}

}  // namespace
}  // namespace azcoll::testing
