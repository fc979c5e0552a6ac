// What becomes of a transaction when something goes wrong: in it, at its end, or with the
// connection.

#ifdef AZCOLL_WITH_ODBC

#include <string>

#include "providers/fault_fixture.h"

namespace azcoll::test {
namespace {

TEST_F(Faults, AConnectionLostInACommitLosesTheTransaction) {
  connect("Commit=lost");
  connection_->beginTrans();
  const Error error = failureOf([&] { connection_->commitTrans(); });
  EXPECT_TRUE(error.info().connectionLost);
  EXPECT_TRUE(error.info().transactionLost);
  EXPECT_TRUE(failureOf([&] { run("STATE"); }).info().connectionLost);
  connection_->close();
}

TEST_F(Faults, AFailedCommitIsForItsOwnerToUndoAndAutocommitComesBack) {
  connect("Commit=fails");
  connection_->beginTrans();
  EXPECT_EQ(state(), "0|0|0");
  const Error error = failureOf([&] { connection_->commitTrans(); });
  EXPECT_EQ(error.info().nativeNumber, 9002);
  EXPECT_EQ(error.description(), "The log is full");
  EXPECT_FALSE(error.info().transactionLost);
  EXPECT_EQ(state(), "0|0|0");
  connection_->rollbackTrans();
  EXPECT_EQ(state(), "1|0|1");
}

TEST_F(Faults, AFailedRollbackNeverTurnsIntoACommit) {
  connect("Rollback=fails");
  connection_->beginTrans();
  EXPECT_TRUE(failureOf([&] { connection_->rollbackTrans(); }).fromProvider());
  EXPECT_EQ(state(), "0|0|0");  // switching autocommit on would commit
  connection_->rollbackTrans();
  EXPECT_EQ(state(), "1|0|1");
}

TEST_F(Faults, ATransactionThatDoesNotBeginLeavesAutocommit) {
  connect("Begin=fails");
  EXPECT_TRUE(failureOf([&] { connection_->beginTrans(); }).fromProvider());
  EXPECT_EQ(state(), "1|0|0");
  EXPECT_TRUE(failureOf([&] { connection_->commitTrans(); }).fromProvider());
}

TEST_F(Faults, WhatWasCommittedIsToldAsCommittedWhateverComesAfterIt) {
  connect("Autocommit=lost");
  connection_->beginTrans();
  EXPECT_NO_THROW(connection_->commitTrans());
  EXPECT_TRUE(failureOf([&] { run("STATE"); }).info().connectionLost);
}

TEST_F(Faults, WhatWasUndoneIsToldAsUndoneWhateverComesAfterIt) {
  connect("Autocommit=lost");
  connection_->beginTrans();
  EXPECT_NO_THROW(connection_->rollbackTrans());
  EXPECT_TRUE(failureOf([&] { run("STATE"); }).info().connectionLost);
}

/// How a server that speaks T-SQL, or another one, undoes a transaction by itself.
struct Undoing {
  const char* name;
  const char* behaviour;
  const char* failure;
  int number;
};

class UndoneByTheServer : public Faults, public testing::WithParamInterface<Undoing> {
 protected:
  void SetUp() override {
    connect(GetParam().behaviour);
    connection_->beginTrans();
    run("INSERT T1");
    error_ = failureOf([&] { run(GetParam().failure); });
  }
  Error error_{""};
};

TEST_P(UndoneByTheServer, IsToldWithTheFailure) {
  EXPECT_EQ(error_.info().nativeNumber, GetParam().number);
  EXPECT_TRUE(error_.info().transactionLost);
  EXPECT_FALSE(error_.info().connectionLost);
}

TEST_P(UndoneByTheServer, TakesNoStatementUntilItsOwnerHasEndedIt) {
  for (const char* const text : {"INSERT T1", "SELECT 1", "STATE"}) {
    const Error refused = failureOf([&] { run(text); });
    EXPECT_TRUE(refused.fromProvider());
    EXPECT_EQ(refused.info().sqlState, "25000") << text;
    EXPECT_TRUE(refused.info().transactionLost) << text;
    EXPECT_NE(refused.description().find(error_.description()), std::string::npos)
        << refused.description();
  }
  const Error begun = failureOf([&] { connection_->beginTrans(); });
  EXPECT_EQ(begun.info().sqlState, "25001");
  connection_->rollbackTrans();
  EXPECT_EQ(state().substr(0, 3), "1|0");
}

TEST_P(UndoneByTheServer, CannotBeCommitted) {
  const Error error = failureOf([&] { connection_->commitTrans(); });
  EXPECT_EQ(error.info().nativeNumber, 3902);
  EXPECT_TRUE(failureOf([&] { run("STATE"); }).fromProvider());
  connection_->rollbackTrans();
  EXPECT_EQ(state().substr(0, 3), "1|0");
}

TEST_P(UndoneByTheServer, IsFollowedByAWholeOne) {
  connection_->rollbackTrans();
  connection_->beginTrans();
  run("INSERT T1");
  EXPECT_EQ(state().substr(0, 3), "0|0");
  connection_->commitTrans();
  EXPECT_EQ(state().substr(0, 3), "1|1");
}

INSTANTIATE_TEST_SUITE_P(
    Servers, UndoneByTheServer,
    testing::Values(Undoing{"ByClass", "", "DEADLOCK", 1205},
                    Undoing{"DeadlockByNumber", "Server=tsql;Starts=at once", "VICTIM", 1205},
                    Undoing{"Asked", "Server=tsql;Starts=at once", "CONVERSION ERROR", 245},
                    Undoing{"WithXactAbort", "Server=tsql;Starts=at once;Xact_abort=on",
                            "CONVERSION ERROR", 245},
                    Undoing{"BegunByAStatement", "Server=tsql", "CONVERSION ERROR", 245}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(Faults, AFailureThatTheTransactionOutlivesLetsItGoOn) {
  for (const char* const behaviour : {"", "Server=tsql", "Server=tsql;Starts=at once"}) {
    connect(behaviour);
    connection_->beginTrans();
    run("INSERT T1");
    EXPECT_FALSE(failureOf([&] { run("DUPLICATE KEY"); }).info().transactionLost);
    EXPECT_NO_THROW(run("INSERT T1"));
    connection_->commitTrans();
    EXPECT_EQ(state().substr(0, 3), "1|1") << behaviour;
  }
}

TEST_F(Faults, ATransactionThatNoStatementHasBegunYetIsNotLost) {
  connect("Server=tsql");  // the first statement would have begun it
  connection_->beginTrans();
  EXPECT_FALSE(failureOf([&] { run("CONVERSION ERROR"); }).info().transactionLost);
  run("INSERT T1");
  connection_->commitTrans();
  EXPECT_EQ(state().substr(0, 3), "1|1");
}

TEST_F(Faults, WhatTheTransactionBeforeHasDoneDoesNotBeginThisOne) {
  connect("Server=tsql");
  connection_->beginTrans();
  run("INSERT T1");
  connection_->commitTrans();
  connection_->beginTrans();
  EXPECT_FALSE(failureOf([&] { run("CONVERSION ERROR"); }).info().transactionLost);
}

TEST_F(Faults, ATransactionThatHasBegunAtOnceIsLostByItsFirstStatement) {
  connect("Server=tsql;Starts=at once");
  connection_->beginTrans();
  EXPECT_TRUE(failureOf([&] { run("CONVERSION ERROR"); }).info().transactionLost);
}

TEST_F(Faults, TheTurnIsPartOfTheTransactionAndLostWithIt) {
  connect("Server=tsql;Blocco=Gruppo");
  connection_->beginTrans();
  EXPECT_TRUE(failureOf([&] { run("CONVERSION ERROR"); }).info().transactionLost);
}

TEST_F(Faults, AServerThatCannotSayWhetherTheTransactionIsThereIsSentNoMore) {
  connect("Server=tsql;Starts=at once;Count=once");
  connection_->beginTrans();
  run("INSERT T1");
  EXPECT_TRUE(failureOf([&] { run("DUPLICATE KEY"); }).info().transactionLost);
  EXPECT_EQ(failureOf([&] { run("INSERT T1"); }).info().sqlState, "25000");
  connection_->rollbackTrans();
}

TEST_F(Faults, ATransactionThatTheServerHasEndedUnnoticedCanBeRolledBack) {
  connect("Server=tsql;Starts=at once");
  connection_->beginTrans();
  run("UNNOTICED END");
  EXPECT_NO_THROW(connection_->rollbackTrans());
  EXPECT_NO_THROW(connection_->beginTrans());
}

TEST_F(Faults, TurnsAreTakenOnAServerThatSpeaksTSqlOnly) {
  connect("Blocco=Gruppo");
  EXPECT_EQ(failureOf([&] { connection_->beginTrans(); }).info().sqlState, "HYC00");
  EXPECT_EQ(state(), "1|0|1");
  EXPECT_THROW(connect("Blocco=Tabella"), Error);
}

TEST_F(Faults, ATurnThatDoesNotComeBeginsNothing) {
  connect("Server=tsql;Starts=at once;Blocco=Gruppo;Turn=never");
  const Error error = failureOf([&] { connection_->beginTrans(); });
  EXPECT_EQ(error.info().sqlState, "HYT00");
  EXPECT_EQ(error.info().nativeNumber, 1222);
  EXPECT_EQ(state().substr(0, 3), "1|0");
}

TEST_F(Faults, ATurnWhoseAnswerIsNoNumberBeginsNothing) {
  connect("Server=tsql;Starts=at once;Blocco=Gruppo;Turn=null");
  const Error error = failureOf([&] { connection_->beginTrans(); });
  EXPECT_TRUE(error.fromProvider());
  EXPECT_EQ(error.info().sqlState, "HY000");
  EXPECT_EQ(state().substr(0, 3), "1|0");
}

TEST_F(Faults, TheWaitForATurnHasALimitOfTheProgramsOwn) {
  connect("Server=tsql;Starts=at once;Blocco=Gruppo");
  connection_->setCommandTimeout(7);
  connection_->beginTrans();
  EXPECT_EQ(value("TURN LIMIT"), Variant{std::int32_t{37}});  // behind the server's own seven
  connection_->rollbackTrans();
  connection_->setCommandTimeout(0);
  connection_->beginTrans();
  EXPECT_EQ(value("TURN LIMIT"), Variant{std::int32_t{0}});
}

}  // namespace
}  // namespace azcoll::test

#endif
