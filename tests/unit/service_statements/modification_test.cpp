#include "group_change_fixture.h"

namespace azcoll::test {
namespace {

const std::string kReadIntermediary =
    "SELECT CG44_INTERMEDIO_CG40 FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 20 AND CG44_TIPOCF = 0 "
    "AND CG44_CLIFOR = 100";

std::string countOfCode(const std::string& company, const std::string& kind = "0",
                        const std::string& code = "100") {
  return "SELECT COUNT(1) FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = " + company +
         " AND CG44_TIPOCF = " + kind + " AND CG44_CLIFOR = " + code;
}
std::string countOfIntermediary(const std::string& company, const std::string& kind = "0",
                                const std::string& intermediary = "15") {
  return "SELECT COUNT(1) FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = " + company +
         " AND CG40_TIPOCF = " + kind + " AND CG40_INTERMEDIO = " + intermediary;
}
std::string update(const std::string& company, const std::string& intermediary = "15",
                   const std::string& kind = "0", const std::string& code = "100") {
  return "UPDATE CG44_CLIFOR SET CG44_INTERMEDIO_CG40 = " + intermediary +
         " WHERE CG44_DITTA_CG18 = " + company + " AND CG44_TIPOCF = " + kind +
         " AND CG44_CLIFOR = " + code;
}

/// The intermediary of the customer is 15; code and intermediary exist in every company.
class ModificationTest : public GroupChangeTest {
 protected:
  ModificationTest() {
    intermediary(std::int32_t{15});
    codeExists(std::int32_t{1});
    intermediaryExists(std::int32_t{1});
  }
  void intermediary(const Variant& value) {
    connection->answerPrefix("SELECT CG44_INTERMEDIO_CG40 ",
                             rowSet({"CG44_INTERMEDIO_CG40"}, {value}));
  }
  // The counts have no column name: they are read by position.
  void codeExists(const Variant& found) {
    connection->answerPrefix("SELECT COUNT(1) FROM CG44_CLIFOR", rowSet({""}, {found}));
  }
  void intermediaryExists(const Variant& found) {
    connection->answerPrefix("SELECT COUNT(1) FROM CG40_ANADITTAINTER", rowSet({""}, {found}));
  }
  void missing(const std::string& sql) { connection->answer(sql, rowSet({""}, {0})); }
  [[nodiscard]] Lines steps() const {
    Lines found;
    for (const std::string& name : operationNames()) {
      if (name.ends_with("Trans")) {
        found.push_back(name);
      }
    }
    return found;
  }
};

TEST_F(ModificationTest, ChecksAndWritesCompanyByCompanyInOneTransaction) {
  service.ModificaCliFor();
  EXPECT_EQ(transcript(), (Lines{kProcedure, kReadIntermediary, "BeginTrans", countOfCode("10"),
                                 countOfIntermediary("10"), update("10"), countOfCode("30"),
                                 countOfIntermediary("30"), update("30"), countOfCode("40"),
                                 countOfIntermediary("40"), update("40"), "CommitTrans"}));
  expectSilentSuccess();
}

TEST_F(ModificationTest, EveryStatementRunsAsCommandText) {
  service.ModificaCliFor();
  EXPECT_EQ(count("Execute"), 10U);
  EXPECT_EQ(count("Open") + count("OpenWithSource"), 0U);
  for (const Operation& operation : named("Execute")) {
    EXPECT_EQ(operation.options, Ints{1}) << operation.sql;
  }
}

TEST_F(ModificationTest, TakesTheGroupWithoutTheCurrentCompany) {
  service.ModificaCliFor();
  const auto commands = named("CommandExecute");
  ASSERT_EQ(commands.size(), 1U);
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
  EXPECT_EQ(commands.front().options, (Ints{4, 0, 1, 4, 1}));
}

TEST_F(ModificationTest, AManagementSwitchedOffByTheCallerStaysOff) {
  service.CPInput->AttivaGestioneDuplicazioneCliFor = false;
  service.ModificaCliFor();
  EXPECT_EQ(given(named("CommandExecute").front())["@GestioneDuplicazioneCliFor"],
            Variant{std::int16_t{0}});
  EXPECT_EQ(lines("UPDATE").size(), 3U);
}

TEST_F(ModificationTest, ASupplierIsReadCheckedAndWrittenAsOne) {
  service.CPInput->Pint_TipoCF = Fornitore;
  service.CPInput->Pvar_CliFor = "0055";
  companies({10});
  service.ModificaCliFor();
  EXPECT_EQ(transcript(),
            (Lines{kProcedure,
                   "SELECT CG44_INTERMEDIO_CG40 FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 20 AND "
                   "CG44_TIPOCF = 1 AND CG44_CLIFOR = 0055",
                   "BeginTrans", countOfCode("10", "1", "0055"), countOfIntermediary("10", "1"),
                   update("10", "15", "1", "0055"), "CommitTrans"}));
}

TEST_F(ModificationTest, WithoutAnIntermediaryEveryCompanyLosesItsOwnUnchecked) {
  for (const Variant& none : {Variant{kNull}, Variant{}, Variant{""}, Variant{"Null"}}) {
    connection->operations.clear();
    intermediary(none);
    companies({10, 30});
    service.ModificaCliFor();
    EXPECT_EQ(transcript(), (Lines{kProcedure, kReadIntermediary, "BeginTrans", countOfCode("10"),
                                   update("10", "Null"), countOfCode("30"), update("30", "Null"),
                                   "CommitTrans"}));
    expectSilentSuccess();
  }
}

TEST_F(ModificationTest, AMissingSourceRowCountsAsNoIntermediary) {
  connection->answer(kReadIntermediary, rowSet({"CG44_INTERMEDIO_CG40"}, {}));
  service.ModificaCliFor();
  EXPECT_EQ(lines("UPDATE"),
            (Lines{update("10", "Null"), update("30", "Null"), update("40", "Null")}));
  expectSilentSuccess();
}

TEST_F(ModificationTest, IntermediaryZeroIsAnIntermediary) {
  intermediary(std::int32_t{0});
  companies({10});
  service.ModificaCliFor();
  EXPECT_EQ(lines("SELECT COUNT(1) FROM CG40"), Lines{countOfIntermediary("10", "0", "0")});
  EXPECT_EQ(lines("UPDATE"), Lines{update("10", "0")});
}

TEST_F(ModificationTest, TheAccountingTypeDoesNotStopIt) {
  companies({10, 30}, std::int16_t{1});
  service.ModificaCliFor();
  EXPECT_EQ(lines("UPDATE"), (Lines{update("10"), update("30")}));
  EXPECT_EQ(service.CPOutput->IndTipoCont.text(), "1");
}

TEST_F(ModificationTest, WithoutOtherCompaniesNothingIsReadOrWritten) {
  companies({});
  service.CPOutput->Grst_DitteCollegate = connection->newRecordset();
  service.ModificaCliFor();
  EXPECT_EQ(transcript(), Lines{kProcedure});
  EXPECT_EQ(service.CPOutput->Grst_DitteCollegate, nullptr);
  expectSilentSuccess();
  EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{0}});
}

TEST_F(ModificationTest, TheRunningFlagIsClearedOnEveryNormalWayOut) {
  service.ModificaCliFor();
  EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{0}});
  companies({10});
  connection->fail("UPDATE", Failure::Provider, "No");
  service.ModificaCliFor();
  EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{0}});
  companies({10});
  intermediaryExists(0);
  service.ModificaCliFor();
  EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{0}});
  companies({10});
  codeExists(0);
  service.ModificaCliFor();
  EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{0}});
}

TEST_F(ModificationTest, BeginsItsOwnTransactionWhateverTheCallerTells) {
  service.CPInput->Pbol_InTransaction = true;
  service.ModificaCliFor();
  EXPECT_EQ(steps(), (Lines{"BeginTrans", "CommitTrans"}));
  expectSilentSuccess();
}

TEST_F(ModificationTest, ACallWithoutCompanyOrConnectionDoesNothing) {
  service.CPInput->Pvar_Ditta = "";
  service.ModificaCliFor();
  expectState(1, "Codice azienda mancante!");
  service.CPInput->Connessione = nullptr;
  service.ModificaCliFor();
  expectState(1, "Stringa di connessione mancante!");
  EXPECT_TRUE(connection->operations.empty());
}

// ------------------------------------------------------------ checks that fail

TEST_F(ModificationTest, ACodeMissingInACompanyUndoesTheOnesBeforeIt) {
  missing(countOfCode("30"));
  service.ModificaCliFor();
  expectState(99, "Il codice cliente 100 non è presente nell'azienda 30.");
  EXPECT_EQ(transcript(),
            (Lines{kProcedure, kReadIntermediary, "BeginTrans", countOfCode("10"),
                   countOfIntermediary("10"), update("10"), countOfCode("30"), "RollbackTrans"}));
}

TEST_F(ModificationTest, AnIntermediaryMissingInACompanyUndoesTheOnesBeforeIt) {
  missing(countOfIntermediary("30"));
  service.ModificaCliFor();
  expectState(99, "Il codice intermedio 15 non è presente nell'azienda 30.");
  EXPECT_EQ(transcript(), (Lines{kProcedure, kReadIntermediary, "BeginTrans", countOfCode("10"),
                                 countOfIntermediary("10"), update("10"), countOfCode("30"),
                                 countOfIntermediary("30"), "RollbackTrans"}));
}

TEST_F(ModificationTest, ARefusedUpdateUndoesTheOnesBeforeIt) {
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->operations.clear();
    connection->fail(update("30"), failure, "Deadlock");
    service.ModificaCliFor();
    expectState(99,
                "Errore durante la modifica dell'intermedio relativo al codice cliente 100 "
                "dell'azienda 30.");
    EXPECT_EQ(steps(), (Lines{"BeginTrans", "RollbackTrans"}));
    EXPECT_EQ(connection->operations.back().name, "RollbackTrans");
    EXPECT_TRUE(lines(countOfCode("40")).empty());
  }
}

TEST_F(ModificationTest, TheMessagesCallASupplierSo) {
  for (const std::int32_t kind : {1, 7}) {
    service.CPInput->Pint_TipoCF = static_cast<EnumTipoCF>(kind);
    codeExists(0);
    service.ModificaCliFor();
    expectState(99, "Il codice fornitore 100 non è presente nell'azienda 10.");
    codeExists(1);
    connection->fail("UPDATE", Failure::Provider, "No");
    service.ModificaCliFor();
    expectState(99,
                "Errore durante la modifica dell'intermedio relativo al codice fornitore 100 "
                "dell'azienda 10.");
  }
}

TEST_F(ModificationTest, ACountThatGivesNothingOrFailsIsAMissingCode) {
  for (const Variant& none : {Variant{kNull}, Variant{}, Variant{0}, Variant{-1}}) {
    codeExists(none);
    service.ModificaCliFor();
    expectState(99, "Il codice cliente 100 non è presente nell'azienda 10.");
  }
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->operations.clear();
    connection->fail("SELECT COUNT(1) FROM CG44_CLIFOR", failure, "No");
    service.ModificaCliFor();
    expectState(99, "Il codice cliente 100 non è presente nell'azienda 10.");
    EXPECT_EQ(steps(), (Lines{"BeginTrans", "RollbackTrans"}));
  }
}

TEST_F(ModificationTest, ACountThatGivesNothingOrFailsIsAMissingIntermediary) {
  for (const Variant& none : {Variant{kNull}, Variant{0}, Variant{-1}}) {
    intermediaryExists(none);
    service.ModificaCliFor();
    expectState(99, "Il codice intermedio 15 non è presente nell'azienda 10.");
  }
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->operations.clear();
    connection->fail("SELECT COUNT(1) FROM CG40", failure, "No");
    service.ModificaCliFor();
    expectState(99, "Il codice intermedio 15 non è presente nell'azienda 10.");
    EXPECT_EQ(steps(), (Lines{"BeginTrans", "RollbackTrans"}));
  }
}

// ------------------------------------------------------------ failures

TEST_F(ModificationTest, AnIntermediaryThatCannotBeReadCountsAsNone) {
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->operations.clear();
    connection->fail("SELECT CG44_INTERMEDIO_CG40 ", failure, "No");
    service.ModificaCliFor();
    EXPECT_EQ(lines("UPDATE").front(), update("10", "Null"));
    expectSilentSuccess();
  }
}

TEST_F(ModificationTest, AFailingCommitIsRolledBackAndReported) {
  connection->fail("CommitTrans", Failure::Provider, "Connection lost");
  service.ModificaCliFor();
  expectState(99, "Connection lost in ModificaCliFor");
  EXPECT_EQ(steps(), (Lines{"BeginTrans", "CommitTrans", "RollbackTrans"}));
  EXPECT_EQ(connection->recordedErrors().count(), 0U);
  // The errors are cleared first: those of a rollback that fails are there to be read.
  EXPECT_EQ(named("RollbackTrans").front().options, Ints{0});
}

TEST_F(ModificationTest, AFailureThatIsNotTheDatabasesIsReportedWithoutARollback) {
  for (const Failure failure : {Failure::Own, Failure::Foreign}) {
    connection->operations.clear();
    connection->fail("CommitTrans", failure, "Rotto");
    service.ModificaCliFor();
    expectState(99, "Rotto in ModificaCliFor");
    EXPECT_EQ(steps(), (Lines{"BeginTrans", "CommitTrans"}));
  }
}

TEST_F(ModificationTest, AnEntryLeftByASwallowedFailureMakesALaterFailureRollBack) {
  connection->fail("SELECT CG44_INTERMEDIO_CG40 ", Failure::Provider, "No");
  connection->fail("CommitTrans", Failure::Own, "Rotto");
  service.ModificaCliFor();
  expectState(99, "Rotto in ModificaCliFor");
  EXPECT_EQ(steps(), (Lines{"BeginTrans", "CommitTrans", "RollbackTrans"}));
  EXPECT_EQ(connection->recordedErrors().count(), 0U);
}

TEST_F(ModificationTest, ATransactionThatCannotBeginIsReportedWithoutARollback) {
  connection->fail("BeginTrans", Failure::Provider, "Cannot start more transactions");
  service.ModificaCliFor();
  expectState(99, "Cannot start more transactions in ModificaCliFor");
  EXPECT_EQ(steps(), Lines{"BeginTrans"});
  EXPECT_EQ(connection->recordedErrors().count(), 1U);
  EXPECT_TRUE(lines("SELECT COUNT").empty());
}

TEST_F(ModificationTest, ARollbackThatFailsReplacesTheMessageOfTheCheck) {
  codeExists(0);
  connection->fail("RollbackTrans", Failure::Own, "Rotto");
  service.ModificaCliFor();
  expectState(99, "Rotto in ModificaCliFor");
  EXPECT_EQ(steps(), (Lines{"BeginTrans", "RollbackTrans"}));
}

TEST_F(ModificationTest, ACompanyThatCannotBeReadLeavesTheTransactionOpen) {
  connection->onProcedure = [](Parameters&) {
    return ProcedureAnswer{rowSet({"CG86_INDTIPOCONT"}, {std::int16_t{0}}), {}};
  };
  service.ModificaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(errore().ends_with(" in ModificaCliFor")) << errore();
  EXPECT_EQ(steps(), Lines{"BeginTrans"});
}

TEST_F(ModificationTest, AFailureOfTheGroupIsReportedByTheMethodThatAsksForIt) {
  failProcedure(Failure::Provider, "Timeout expired");
  service.ModificaCliFor();
  expectState(99, "Timeout expired in RecordsetDitteCollegateOPrincipale");
  EXPECT_EQ(transcript(), Lines{kProcedure});
  EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{0}});
}

TEST_F(ModificationTest, AFailureOfTheGroupIsNotAnsweredFromAnEarlierCall) {
  service.RecordsetDitteCollegateOPrincipale();
  const std::shared_ptr<Recordset> earlier = service.CPOutput->Grst_DitteCollegate;
  ASSERT_NE(earlier, nullptr);
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    service.CPOutput->Grst_DitteCollegate = earlier;
    connection->operations.clear();
    failProcedure(failure, "Timeout expired");
    service.ModificaCliFor();
    expectState(99, "Timeout expired in RecordsetDitteCollegateOPrincipale");
    EXPECT_EQ(transcript(), Lines{kProcedure});
    EXPECT_FALSE(earlier->atEnd());
  }
}

TEST_F(ModificationTest, TheWalkBeginsAtTheCurrentRowOfTheGroup) {
  connection->onProcedureRows = [](Recordset& rows) { rows.moveNext(); };
  service.ModificaCliFor();
  EXPECT_EQ(lines("UPDATE"), (Lines{update("30"), update("40")}));
  expectSilentSuccess();
}

TEST_F(ModificationTest, TheRunningFlagStaysOnAfterAFailure) {
  connection->fail("CommitTrans", Failure::Provider, "Connection lost");
  service.ModificaCliFor();
  EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{1}});
}

}  // namespace
}  // namespace azcoll::test
