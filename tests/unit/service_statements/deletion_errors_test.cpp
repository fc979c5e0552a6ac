#include "data/tracing.h"
#include "group_change_fixture.h"

namespace azcoll::test {
namespace {

class DeletionErrorsTest : public GroupChangeTest {
 protected:
  /// Makes the deletion of the master row fail in one company.
  void refuseIn(const std::string& company, Failure failure = Failure::Provider) {
    connection->fail("DELETE FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = " + company + " ", failure,
                     "The DELETE statement conflicted");
  }
  /// The transaction steps, in order.
  [[nodiscard]] Lines steps() const {
    Lines found;
    for (const std::string& name : operationNames()) {
      if (name.ends_with("Trans")) {
        found.push_back(name);
      }
    }
    return found;
  }
  [[nodiscard]] std::size_t errorEntries() const { return connection->recordedErrors().count(); }
};

// ------------------------------------------------------------ the trial

TEST_F(DeletionErrorsTest, ARefusedTrialIsUndoneAndNothingElseIsTouched) {
  refuseIn("20");
  service.EliminaCliFor();
  expectState(1, "The DELETE statement conflicted in EliminaCliFor");
  EXPECT_EQ(lines("DELETE").size(), 15U);
  EXPECT_EQ(steps(), (Lines{"BeginTrans", "RollbackTrans"}));
  EXPECT_EQ(errorEntries(), 0U);
  // The errors are cleared first: those of a rollback that fails are there to be read.
  EXPECT_EQ(named("RollbackTrans").front().options, Ints{0});
  EXPECT_EQ(connection->operations.back().name, "RollbackTrans");
}

TEST_F(DeletionErrorsTest, ATrialThatFailsWithoutTheDatabaseStaysOpen) {
  for (const Failure failure : {Failure::Own, Failure::Foreign}) {
    connection->operations.clear();
    refuseIn("20", failure);
    service.EliminaCliFor();
    expectState(1, "The DELETE statement conflicted in EliminaCliFor");
    EXPECT_EQ(steps(), Lines{"BeginTrans"});
  }
}

TEST_F(DeletionErrorsTest, EachTableCanRefuseTheTrial) {
  for (const char* table :
       {"MG1C_CLIFORAGEMUL", "MG22_CLIFORDEST", "MG24_CLIFORRAG", "MG27_CLIFORACC",
        "MG28_CLIFORINT", "MG26_CLIFORNOTE", "MG41_CLIFORVETT", "MG23_CLIFORNCOP", "MG35_CLIFORCC",
        "MG29_CLIFORRID", "MG20_CLIFORSCPAG", "MG21_CLIFORSALPAG", "MG19_CLIFORVA",
        "CG4E_CFCOINTESTATI", "CG44_CLIFOR"}) {
    const auto fresh = std::make_shared<ScriptedConnection>();
    fresh->onProcedure = connection->onProcedure;
    connection = fresh;
    service.CPInput->Connessione = fresh;
    connection->fail(std::string{"DELETE FROM "} + table + " ", Failure::Provider, "No");
    service.EliminaCliFor();
    expectState(1, "No in EliminaCliFor");
    EXPECT_EQ(steps(), (Lines{"BeginTrans", "RollbackTrans"})) << table;
    EXPECT_TRUE(connection->operations[connection->operations.size() - 2].sql.starts_with(
        std::string{"DELETE FROM "} + table));
  }
}

TEST_F(DeletionErrorsTest, ATrialThatCannotBeUndoneIsAFailureOfTheCall) {
  connection->fail("RollbackTrans", Failure::Own, "Rotto");
  service.EliminaCliFor();
  expectState(99, "Rotto in EliminaCliFor");
  EXPECT_EQ(steps(), (Lines{"BeginTrans", "RollbackTrans"}));
  EXPECT_EQ(lines("DELETE").size(), 15U);
}

// ------------------------------------------------------------ the deletion in the group

TEST_F(DeletionErrorsTest, ARefusingCompanyUndoesTheOnesBeforeItAndIsNamed) {
  refuseIn("30");
  service.EliminaCliFor();
  expectState(2, "Il cliente non può essere eliminato nella ditta 30!");
  // Trial, company 10, company 30; company 40 is not reached.
  EXPECT_EQ(lines("DELETE").size(), 45U);
  EXPECT_EQ(named("RollbackTrans").back().options, Ints{0});
  EXPECT_EQ(steps(), (Lines{"BeginTrans", "RollbackTrans", "BeginTrans", "RollbackTrans"}));
  EXPECT_EQ(errorEntries(), 0U);
  EXPECT_EQ(connection->operations.back().name, "RollbackTrans");
}

TEST_F(DeletionErrorsTest, TheFirstAndTheLastCompanyAreNamedToo) {
  for (const char* company : {"40", "10"}) {
    refuseIn(company);
    service.EliminaCliFor();
    expectState(2, std::string{"Il cliente non può essere eliminato nella ditta "} + company + "!");
  }
}

TEST_F(DeletionErrorsTest, ASupplierIsCalledSo) {
  for (const std::int32_t kind : {1, 7}) {
    service.CPInput->Pint_TipoCF = static_cast<EnumTipoCF>(kind);
    refuseIn("40");
    service.EliminaCliFor();
    expectState(2, "Il fornitore non può essere eliminato nella ditta 40!");
  }
}

TEST_F(DeletionErrorsTest, AFailureThatIsNotTheDatabasesLeavesTheDeletionOpen) {
  for (const Failure failure : {Failure::Own, Failure::Foreign}) {
    connection->operations.clear();
    refuseIn("30", failure);
    service.EliminaCliFor();
    expectState(2, "Il cliente non può essere eliminato nella ditta 30!");
    EXPECT_EQ(steps(), (Lines{"BeginTrans", "RollbackTrans", "BeginTrans"}));
  }
}

TEST_F(DeletionErrorsTest, AnEntryThatWasThereBeforeMakesSuchAFailureRollBack) {
  try {
    connection->raise(Failure::Provider, "earlier", "SELECT 1");
  } catch (const Error&) {
    ASSERT_EQ(errorEntries(), 1U);
  }
  refuseIn("30", Failure::Own);
  service.EliminaCliFor();
  expectState(2, "Il cliente non può essere eliminato nella ditta 30!");
  EXPECT_EQ(steps(), (Lines{"BeginTrans", "RollbackTrans", "BeginTrans", "RollbackTrans"}));
  EXPECT_EQ(errorEntries(), 0U);
}

TEST_F(DeletionErrorsTest, AFailingCommitIsAFailureOfTheCall) {
  connection->fail("CommitTrans", Failure::Provider, "Connection lost");
  service.EliminaCliFor();
  expectState(99, "Connection lost in EliminaCliFor");
  EXPECT_EQ(steps(),
            (Lines{"BeginTrans", "RollbackTrans", "BeginTrans", "CommitTrans", "RollbackTrans"}));
  EXPECT_EQ(errorEntries(), 0U);
}

// ------------------------------------------------------------ inside the caller's transaction

TEST_F(DeletionErrorsTest, TheCallersTransactionIsLeftToTheCaller) {
  service.CPInput->Pbol_InTransaction = true;
  refuseIn("30");
  service.EliminaCliFor();
  expectState(2, "Il cliente non può essere eliminato nella ditta 30!");
  EXPECT_EQ(transactionSteps(), 0U);
  EXPECT_EQ(errorEntries(), 1U);
  EXPECT_EQ(lines("DELETE").size(), 30U);
}

TEST_F(DeletionErrorsTest, TheCurrentCompanyIsNotAskedInsideTheCallersTransaction) {
  service.CPInput->Pbol_InTransaction = true;
  refuseIn("20");
  service.EliminaCliFor();
  expectSilentSuccess();
}

// ------------------------------------------------------------ outside the two phases

TEST_F(DeletionErrorsTest, AFailingProcedureIsAFailureOfTheCall) {
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    failProcedure(failure, "Timeout expired");
    service.EliminaCliFor();
    expectState(99, "Timeout expired in EliminaCliFor");
  }
  EXPECT_EQ(transactionSteps(), 0U);
  EXPECT_TRUE(lines("DELETE").empty());
}

TEST_F(DeletionErrorsTest, ARowWithoutTheAccountingTypeIsAFailureOfTheCall) {
  connection->onProcedure = [](Parameters&) {
    return ProcedureAnswer{rowSet({"DITTA"}, {10}), {}};
  };
  service.EliminaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(errore().ends_with(" in EliminaCliFor")) << errore();
  EXPECT_EQ(transactionSteps(), 0U);
}

TEST_F(DeletionErrorsTest, ACompanyThatCannotBeReadIsRefusedWithoutItsName) {
  connection->onProcedure = [](Parameters&) {
    return ProcedureAnswer{rowSet({"CG86_INDTIPOCONT"}, {std::int16_t{0}}), {}};
  };
  service.EliminaCliFor();
  expectState(2, "Il cliente non può essere eliminato nella ditta !");
  EXPECT_EQ(steps(), (Lines{"BeginTrans", "RollbackTrans", "BeginTrans"}));
}

TEST_F(DeletionErrorsTest, ATransactionThatCannotBeginIsAFailureOfTheCall) {
  connection->fail("BeginTrans", Failure::Provider, "Cannot start more transactions");
  service.EliminaCliFor();
  expectState(99, "Cannot start more transactions in EliminaCliFor");
  EXPECT_EQ(steps(), Lines{"BeginTrans"});
  EXPECT_EQ(errorEntries(), 1U);
  EXPECT_TRUE(lines("DELETE").empty());
}

TEST_F(DeletionErrorsTest, ASecondTransactionThatCannotBeginRollsNothingBack) {
  service.CPInput->Connessione =
      std::make_shared<ConnessioneTracciata>(connection, [this](const TraceEntry& entry) {
        if (entry.operation == "RollbackTrans") {  // the end of the trial
          connection->fail("BeginTrans", Failure::Provider, "Cannot start more transactions");
        }
      });
  service.EliminaCliFor();
  expectState(99, "Cannot start more transactions in EliminaCliFor");
  EXPECT_EQ(steps(), (Lines{"BeginTrans", "RollbackTrans", "BeginTrans"}));
  EXPECT_EQ(errorEntries(), 1U);
}

TEST_F(DeletionErrorsTest, TheRunningFlagStaysOnAfterAFailure) {
  refuseIn("30");
  service.EliminaCliFor();
  EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{1}});
}

TEST_F(DeletionErrorsTest, TheNextCallStartsAfresh) {
  refuseIn("30");
  service.EliminaCliFor();
  ASSERT_EQ(service.Stato, Variant{std::int16_t{2}});
  const std::string message = errore();
  connection->answerPrefix("DELETE FROM CG44_CLIFOR", ResultSet{});
  service.EliminaCliFor();
  expectState(0, message);
  EXPECT_EQ(count("CommitTrans"), 1U);
  EXPECT_EQ(duplicationFlag(), Variant{std::int16_t{0}});
}

}  // namespace
}  // namespace azcoll::test
