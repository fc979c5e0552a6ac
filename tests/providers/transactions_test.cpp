#include <string>

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

INSTANTIATE_TEST_SUITE_P(Providers, Transactions, testing::ValuesIn(providerNames()), nameOfCase);

}  // namespace
}  // namespace azcoll::test
