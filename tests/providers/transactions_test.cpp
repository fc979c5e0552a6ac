#include <string>

#include "platform/provider_factory.h"
#include "providers/provider.h"

namespace azcoll::test {
namespace {

class Transactions : public OnProvider {
 protected:
  void SetUp() override {
    OnProvider::SetUp();
    if (!IsSkipped()) {
      run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY)");
    }
  }

  /// Rows that another connection finds.
  std::string seenByOthers() {
    std::int64_t affected = 0;
    const auto rows =
        another()->execute("SELECT COUNT(*) FROM T1_PROVA", affected, CommandOption::Text);
    return rows->fields().item(std::size_t{0}).value().text();
  }
};

TEST_P(Transactions, CommitKeepsAndRollbackUndoes) {
  connection().beginTrans();
  run("INSERT INTO T1_PROVA VALUES (1)");
  connection().commitTrans();
  connection().beginTrans();
  run("INSERT INTO T1_PROVA VALUES (2)");
  connection().rollbackTrans();
  EXPECT_EQ(lines("SELECT C1 FROM T1_PROVA"), (std::vector<std::string>{"1"}));
}

TEST_P(Transactions, OutsideATransactionEveryStatementCountsAtOnce) {
  AZCOLL_NEEDS(SecondConnection);
  run("INSERT INTO T1_PROVA VALUES (1)");
  EXPECT_EQ(seenByOthers(), "1");
  connection().beginTrans();
  run("INSERT INTO T1_PROVA VALUES (2)");
  connection().commitTrans();
  run("INSERT INTO T1_PROVA VALUES (3)");
  EXPECT_EQ(seenByOthers(), "3");
  connection().beginTrans();
  run("INSERT INTO T1_PROVA VALUES (4)");
  connection().rollbackTrans();
  run("INSERT INTO T1_PROVA VALUES (5)");
  EXPECT_EQ(seenByOthers(), "4");
}

TEST_P(Transactions, ClosingUndoesWhatWasNotCommitted) {
  AZCOLL_NEEDS(SecondConnection);
  const auto other = another();
  std::int64_t affected = 0;
  other->beginTrans();
  other->execute("INSERT INTO T1_PROVA VALUES (1)", affected, CommandOption::Text);
  other->close();
  EXPECT_EQ(lines("SELECT C1 FROM T1_PROVA"), (std::vector<std::string>{}));
}

TEST_P(Transactions, ASecondOneIsRefusedAndTheFirstGoesOn) {
  connection().beginTrans();
  run("INSERT INTO T1_PROVA VALUES (1)");
  EXPECT_TRUE(failureOf([&] { connection().beginTrans(); }).fromProvider());
  EXPECT_EQ(connection().errors().count(), 1U);
  connection().commitTrans();
  EXPECT_EQ(lines("SELECT C1 FROM T1_PROVA"), (std::vector<std::string>{"1"}));
}

TEST_P(Transactions, CommitAndRollbackNeedATransaction) {
  EXPECT_TRUE(failureOf([&] { connection().commitTrans(); }).fromProvider());
  EXPECT_TRUE(failureOf([&] { connection().rollbackTrans(); }).fromProvider());
  connection().beginTrans();
  connection().commitTrans();
  EXPECT_TRUE(failureOf([&] { connection().commitTrans(); }).fromProvider());
}

TEST_P(Transactions, AFailedStatementLeavesTheRollbackToTheOwner) {
  connection().beginTrans();
  run("INSERT INTO T1_PROVA VALUES (1)");
  EXPECT_FALSE(failureOf([&] { run("INSERT INTO T1_PROVA VALUES (1)"); }).info().connectionLost);
  connection().rollbackTrans();
  run("INSERT INTO T1_PROVA VALUES (9)");
  EXPECT_EQ(lines("SELECT C1 FROM T1_PROVA"), (std::vector<std::string>{"9"}));
}

TEST_P(Transactions, AfterAFailedStatementTheTransactionGoesOn) {
  AZCOLL_NEEDS(TransactionGoesOn);
  connection().beginTrans();
  run("INSERT INTO T1_PROVA VALUES (1)");
  static_cast<void>(failureOf([&] { run("INSERT INTO T1_PROVA VALUES (1)"); }));
  run("INSERT INTO T1_PROVA VALUES (2)");
  connection().commitTrans();
  EXPECT_EQ(lines("SELECT C1 FROM T1_PROVA ORDER BY C1"), (std::vector<std::string>{"1", "2"}));
}

/// A failure after which some servers undo the whole transaction by themselves.
class LostTransactions : public Transactions {
 protected:
  void SetUp() override {
    Transactions::SetUp();
    if (IsSkipped()) {
      return;
    }
    AZCOLL_NEEDS(UndoesByItself);
    connection().beginTrans();
    run("INSERT INTO T1_PROVA VALUES (1)");
  }
  Error convert() {
    return failureOf([&] { run("SELECT CAST('dodici' AS INT) AS C1"); });
  }
  /// A whole transaction works, and counts.
  void expectUsable() {
    connection().beginTrans();
    run("INSERT INTO T1_PROVA VALUES (7)");
    connection().commitTrans();
    run("INSERT INTO T1_PROVA VALUES (8)");
    EXPECT_EQ(seenByOthers(), "2");
    connection().beginTrans();
    run("INSERT INTO T1_PROVA VALUES (9)");
    connection().rollbackTrans();
    EXPECT_EQ(lines("SELECT C1 FROM T1_PROVA ORDER BY C1"), (std::vector<std::string>{"7", "8"}));
  }
};

TEST_P(LostTransactions, NothingOfTheRestIsCommittedByItself) {
  ASSERT_TRUE(convert().info().transactionLost);
  EXPECT_TRUE(failureOf([&] { run("INSERT INTO T1_PROVA VALUES (2)"); }).info().transactionLost);
  EXPECT_EQ(seenByOthers(), "0");
  EXPECT_TRUE(failureOf([&] { connection().commitTrans(); }).fromProvider());
  connection().rollbackTrans();
  expectUsable();
}

TEST_P(LostTransactions, ARollbackWithNothingLeftToUndoIsNoFailure) {
  run("ROLLBACK TRANSACTION");
  EXPECT_NO_THROW(connection().rollbackTrans());
  expectUsable();
}

TEST_P(LostTransactions, AreEndedWhereEveryFailureUndoesAll) {
  connection().rollbackTrans();
  run("SET XACT_ABORT ON");
  connection().beginTrans();
  run("INSERT INTO T1_PROVA VALUES (1)");
  ASSERT_TRUE(failureOf([&] { run("INSERT INTO T1_PROVA VALUES (1)"); }).info().transactionLost);
  EXPECT_TRUE(failureOf([&] { run("INSERT INTO T1_PROVA VALUES (2)"); }).fromProvider());
  connection().rollbackTrans();
  expectUsable();
}

TEST_P(LostTransactions, AConnectionThatIsLostIsToldAndTakesItsTransactionWithIt) {
  const std::string session = value("SELECT @@SPID AS N").text();
  const auto other = another();
  std::int64_t affected = 0;
  other->execute("KILL " + session, affected, CommandOption::Text);
  const Error error = failureOf([&] { run("INSERT INTO T1_PROVA VALUES (2)"); });
  EXPECT_TRUE(error.info().connectionLost) << error.description();
  EXPECT_TRUE(error.info().transactionLost);
  EXPECT_TRUE(failureOf([&] { connection().rollbackTrans(); }).info().connectionLost);
  EXPECT_TRUE(connection().errors().item(0).connectionLost);
  EXPECT_EQ(seenByOthers(), "0");
  connection().close();
}

TEST_P(LostTransactions, CallersOfOneDatabaseTakeTurnsWhereTheyAskForIt) {
  connection().rollbackTrans();
  const auto inTurn = [&] {
    const auto caller = newConnectionFor(provider().connectionString + ";Blocco=Gruppo");
    caller->setCommandTimeout(1);
    caller->open("", "", CommandOption::Unspecified);
    return caller;
  };
  const auto first = inTurn();
  const auto second = inTurn();
  first->beginTrans();
  const Error error = failureOf([&] { second->beginTrans(); });
  EXPECT_EQ(error.info().sqlState, "HYT00");
  connection().beginTrans();  // whoever does not take turns is not kept
  connection().rollbackTrans();
  first->commitTrans();
  second->beginTrans();
  second->rollbackTrans();
  first->beginTrans();
  first->rollbackTrans();
}

INSTANTIATE_TEST_SUITE_P(Providers, LostTransactions, testing::ValuesIn(providerNames()),
                         nameOfCase);

INSTANTIATE_TEST_SUITE_P(Providers, Transactions, testing::ValuesIn(providerNames()), nameOfCase);

}  // namespace
}  // namespace azcoll::test
