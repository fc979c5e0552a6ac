#include "group_change_fixture.h"

namespace azcoll::test {
namespace {

/// The fifteen deletions of one customer or supplier from one company, in their order.
Lines deletions(const std::string& company, const std::string& kind = "0",
                const std::string& code = "100") {
  const std::vector<std::pair<std::string, std::string>> tables{
      {"MG1C_CLIFORAGEMUL", "MG1C"}, {"MG22_CLIFORDEST", "MG22"},   {"MG24_CLIFORRAG", "MG24"},
      {"MG27_CLIFORACC", "MG27"},    {"MG28_CLIFORINT", "MG28"},    {"MG26_CLIFORNOTE", "MG26"},
      {"MG41_CLIFORVETT", "MG41"},   {"MG23_CLIFORNCOP", "MG23"},   {"MG35_CLIFORCC", "MG35"},
      {"MG29_CLIFORRID", "MG29"},    {"MG20_CLIFORSCPAG", "MG20"},  {"MG21_CLIFORSALPAG", "MG21"},
      {"MG19_CLIFORVA", "MG19"},     {"CG4E_CFCOINTESTATI", "CG4E"}};
  Lines lines;
  for (const auto& [table, prefix] : tables) {
    lines.push_back("DELETE FROM " + table + " WHERE " + prefix + "_DITTA_CG18 = " + company +
                    " AND " + prefix + "_TIPOCF_CG44 = " + kind + " AND " + prefix +
                    "_CLIFOR_CG44 = " + code);
  }
  lines.push_back("DELETE FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = " + company +
                  " AND CG44_TIPOCF = " + kind + " AND CG44_CLIFOR = " + code);
  return lines;
}

Lines operator+(Lines left, const Lines& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

class DeletionTest : public GroupChangeTest {};

TEST_F(DeletionTest, TriesItHereThenDeletesInEveryOtherCompany) {
  service.EliminaCliFor();
  const Lines trial = Lines{kProcedure, "BeginTrans"} + deletions("20") + Lines{"RollbackTrans"};
  const Lines group = deletions("10") + deletions("30") + deletions("40");
  EXPECT_EQ(transcript(), trial + Lines{"BeginTrans"} + group + Lines{"CommitTrans"});
  expectSilentSuccess();
}

TEST_F(DeletionTest, TheWalkBeginsAtTheCurrentRowOfTheGroup) {
  service.CPInput->Pbol_InTransaction = true;
  connection->onProcedureRows = [](Recordset& rows) { rows.moveNext(); };
  service.EliminaCliFor();
  EXPECT_EQ(lines("DELETE"), deletions("30") + deletions("40"));
}

TEST_F(DeletionTest, DeletesTheSubTablesThenTheJointHoldersThenTheMasterRow) {
  service.CPInput->Pbol_InTransaction = true;
  companies({7});
  service.CPInput->Pint_TipoCF = Fornitore;
  service.CPInput->Pvar_CliFor = std::int32_t{55};
  service.EliminaCliFor();
  EXPECT_EQ(
      lines("DELETE"),
      (Lines{"DELETE FROM MG1C_CLIFORAGEMUL WHERE MG1C_DITTA_CG18 = 7 AND MG1C_TIPOCF_CG44 = 1 AND "
             "MG1C_CLIFOR_CG44 = 55",
             "DELETE FROM MG22_CLIFORDEST WHERE MG22_DITTA_CG18 = 7 AND MG22_TIPOCF_CG44 = 1 AND "
             "MG22_CLIFOR_CG44 = 55",
             "DELETE FROM MG24_CLIFORRAG WHERE MG24_DITTA_CG18 = 7 AND MG24_TIPOCF_CG44 = 1 AND "
             "MG24_CLIFOR_CG44 = 55",
             "DELETE FROM MG27_CLIFORACC WHERE MG27_DITTA_CG18 = 7 AND MG27_TIPOCF_CG44 = 1 AND "
             "MG27_CLIFOR_CG44 = 55",
             "DELETE FROM MG28_CLIFORINT WHERE MG28_DITTA_CG18 = 7 AND MG28_TIPOCF_CG44 = 1 AND "
             "MG28_CLIFOR_CG44 = 55",
             "DELETE FROM MG26_CLIFORNOTE WHERE MG26_DITTA_CG18 = 7 AND MG26_TIPOCF_CG44 = 1 AND "
             "MG26_CLIFOR_CG44 = 55",
             "DELETE FROM MG41_CLIFORVETT WHERE MG41_DITTA_CG18 = 7 AND MG41_TIPOCF_CG44 = 1 AND "
             "MG41_CLIFOR_CG44 = 55",
             "DELETE FROM MG23_CLIFORNCOP WHERE MG23_DITTA_CG18 = 7 AND MG23_TIPOCF_CG44 = 1 AND "
             "MG23_CLIFOR_CG44 = 55",
             "DELETE FROM MG35_CLIFORCC WHERE MG35_DITTA_CG18 = 7 AND MG35_TIPOCF_CG44 = 1 AND "
             "MG35_CLIFOR_CG44 = 55",
             "DELETE FROM MG29_CLIFORRID WHERE MG29_DITTA_CG18 = 7 AND MG29_TIPOCF_CG44 = 1 AND "
             "MG29_CLIFOR_CG44 = 55",
             "DELETE FROM MG20_CLIFORSCPAG WHERE MG20_DITTA_CG18 = 7 AND MG20_TIPOCF_CG44 = 1 AND "
             "MG20_CLIFOR_CG44 = 55",
             "DELETE FROM MG21_CLIFORSALPAG WHERE MG21_DITTA_CG18 = 7 AND MG21_TIPOCF_CG44 = 1 AND "
             "MG21_CLIFOR_CG44 = 55",
             "DELETE FROM MG19_CLIFORVA WHERE MG19_DITTA_CG18 = 7 AND MG19_TIPOCF_CG44 = 1 AND "
             "MG19_CLIFOR_CG44 = 55",
             "DELETE FROM CG4E_CFCOINTESTATI WHERE CG4E_DITTA_CG18 = 7 AND CG4E_TIPOCF_CG44 = 1 "
             "AND CG4E_CLIFOR_CG44 = 55",
             "DELETE FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 7 AND CG44_TIPOCF = 1 AND "
             "CG44_CLIFOR = 55"}));
}

TEST_F(DeletionTest, EveryStatementRunsAsCommandText) {
  service.EliminaCliFor();
  EXPECT_EQ(count("Execute"), 60U);
  for (const Operation& operation : named("Execute")) {
    EXPECT_EQ(operation.options, Ints{1}) << operation.sql;
  }
}

TEST_F(DeletionTest, AsksForTheWholeGroupWithoutTheCurrentCompany) {
  service.EliminaCliFor();
  const auto commands = named("CommandExecute");
  ASSERT_EQ(commands.size(), 1U);
  EXPECT_EQ(commands.front().sql, kProcedure);
  // Type, time-out, prepared, execute option, on the service's connection.
  EXPECT_EQ(commands.front().options, (Ints{4, 0, 1, 4, 1}));
  const std::map<std::string, Variant> expected{
      {"@CodiceDitta", std::int32_t{20}},
      {"@DataInizioElaborazione", Date{.year = 2024, .month = 1, .day = 1}},
      {"@GestioneDuplicazioneCliFor", std::int16_t{1}},
      {"@EscludiDittaPrincipale", std::int16_t{0}},
      {"@EscludiDittaCorrente", std::int16_t{1}},
      {"@TipoCF", kNull},
      {"@CodIntermedio", kNull},
      {"@CodSede", kNull}};
  EXPECT_EQ(given(commands.front()), expected);
}

TEST_F(DeletionTest, ReleasesTheCommandBeforeItDeletesAnything) {
  service.EliminaCliFor();
  const Lines names = operationNames();
  ASSERT_GE(names.size(), 3U);
  EXPECT_EQ(Lines(names.begin(), names.begin() + 3),
            (Lines{"CommandExecute", "CommandRelease", "BeginTrans"}));
}

TEST_F(DeletionTest, AManagementSwitchedOffByTheCallerStaysOff) {
  service.CPInput->AttivaGestioneDuplicazioneCliFor = false;
  service.EliminaCliFor();
  EXPECT_EQ(given(named("CommandExecute").front())["@GestioneDuplicazioneCliFor"],
            Variant{std::int16_t{0}});
  EXPECT_EQ(count("CommitTrans"), 1U);  // what it finds is deleted all the same
}

TEST_F(DeletionTest, WithoutOtherCompaniesNothingIsDeleted) {
  companies({});
  service.EliminaCliFor();
  EXPECT_EQ(operationNames(), (Lines{"CommandExecute", "CommandRelease"}));
  expectSilentSuccess();
  EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{0}});
}

TEST_F(DeletionTest, AccountingTypeOneOfTheFirstRowStopsIt) {
  for (const Variant& one : {Variant{std::int16_t{1}}, Variant{std::int32_t{1}}}) {
    companies({10, 30}, one);
    connection->operations.clear();
    service.EliminaCliFor();
    EXPECT_EQ(operationNames(), (Lines{"CommandExecute", "CommandRelease"}));
    expectSilentSuccess();
    EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{0}});
  }
}

TEST_F(DeletionTest, AnyOtherAccountingTypeOfTheFirstRowLetsItPass) {
  for (const Variant& type : {Variant{kNull}, Variant{""}, Variant{std::int16_t{0}},
                              Variant{std::int16_t{2}}, Variant{std::int16_t{-1}}}) {
    // The types of the rows behind the first do not count.
    companies({10, 30}, type, std::int16_t{1});
    connection->operations.clear();
    service.EliminaCliFor();
    EXPECT_EQ(lines("DELETE").size(), 45U);
    expectSilentSuccess();
  }
}

TEST_F(DeletionTest, InsideTheCallersTransactionThereIsNoTrialAndNoTransaction) {
  service.CPInput->Pbol_InTransaction = true;
  service.EliminaCliFor();
  EXPECT_EQ(transcript(), Lines{kProcedure} + deletions("10") + deletions("30") + deletions("40"));
  expectSilentSuccess();
}

TEST_F(DeletionTest, CodesAreWrittenAsTheyStand) {
  service.CPInput->Pvar_Ditta = "0020";
  service.CPInput->Pvar_CliFor = "1e2";
  companies({10});
  service.EliminaCliFor();
  EXPECT_EQ(lines("DELETE"), deletions("0020", "0", "1e2") + deletions("10", "0", "1e2"));
}

TEST_F(DeletionTest, LeavesTheOutputOfEarlierCallsAlone) {
  const auto earlier = connection->newRecordset();
  service.CPOutput->Grst_DitteCollegate = earlier;
  service.CPOutput->IndTipoCont = std::int16_t{5};
  service.CPOutput->Gbol_DittaPrincipale = true;
  service.CPOutput->DitteCollegate = "left over";
  companies({10}, std::int16_t{3});
  service.EliminaCliFor();
  EXPECT_EQ(service.CPOutput->Grst_DitteCollegate, earlier);
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{5}});
  EXPECT_TRUE(service.CPOutput->Gbol_DittaPrincipale);
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{""});
}

TEST_F(DeletionTest, TheRunningFlagIsClearedAtTheEnd) {
  service.EliminaCliFor();
  EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{0}});
}

TEST_F(DeletionTest, ACallWithoutCompanyOrConnectionDoesNothing) {
  service.CPInput->Pvar_Ditta = kNull;
  service.EliminaCliFor();
  expectState(1, "Codice azienda mancante!");
  service.CPInput->Connessione = nullptr;
  service.EliminaCliFor();
  expectState(1, "Stringa di connessione mancante!");
  EXPECT_TRUE(connection->operations.empty());
}

}  // namespace
}  // namespace azcoll::test
