#include "unit/embedded_language/support.h"

// Transactions, and the Errors collection of the connection.
namespace azcoll::test {
namespace {

class Transactions : public testing::Test {
 protected:
  void SetUp() override {
    run(db(), "CREATE TABLE T (ID INT NOT NULL CONSTRAINT PK_T PRIMARY KEY, A SMALLINT NOT NULL)");
    run(db(),
        "CREATE TABLE C (ID INT NOT NULL PRIMARY KEY, T_ID INT NULL CONSTRAINT FK_C REFERENCES T "
        "(ID))");
    run(db(), "INSERT INTO T (ID, A) VALUES (1, 10)");
  }

  Connection& db() { return *connection_; }
  Lines ids() { return lines(db(), "SELECT ID FROM T ORDER BY ID"); }

 private:
  std::shared_ptr<Connection> connection_ = openMemory();
};

TEST_F(Transactions, KeepWhatIsCommitted) {
  db().beginTrans();
  run(db(), "INSERT INTO T (ID, A) VALUES (2, 20)");
  db().commitTrans();
  EXPECT_EQ(ids(), (Lines{"1", "2"}));
}

TEST_F(Transactions, UndoWhatIsRolledBack) {
  db().beginTrans();
  run(db(), "INSERT INTO T (ID, A) VALUES (2, 20) UPDATE T SET A = 0 DELETE FROM T WHERE ID = 1");
  EXPECT_EQ(ids(), Lines{"2"});
  db().rollbackTrans();
  EXPECT_EQ(lines(db(), "SELECT ID, A FROM T"), Lines{"1|10"});
}

TEST_F(Transactions, DoNotNest) {
  db().beginTrans();
  run(db(), "INSERT INTO T (ID, A) VALUES (2, 20)");
  const Error error = failureOf([&] { db().beginTrans(); });
  EXPECT_TRUE(error.fromProvider());
  db().rollbackTrans();
  EXPECT_EQ(ids(), Lines{"1"});
}

TEST_F(Transactions, CannotEndBeforeTheyBegin) {
  EXPECT_THROW(db().commitTrans(), Error);
  EXPECT_THROW(db().rollbackTrans(), Error);
  db().beginTrans();
  db().commitTrans();
  EXPECT_THROW(db().commitTrans(), Error);
  EXPECT_THROW(db().rollbackTrans(), Error);
  db().beginTrans();
  db().rollbackTrans();
  EXPECT_THROW(db().rollbackTrans(), Error);
}

TEST_F(Transactions, OutliveAFailingStatement) {
  for (const char* text :
       {"INSERT INTO T (ID, A) VALUES (1, 1)", "INSERT INTO T (ID, A) VALUES (5, NULL)",
        "INSERT INTO C (ID, T_ID) VALUES (1, 99)", "INSERT INTO T (ID, A) VALUES (5, 99999)",
        "INSERT INTO T (ID, A) VALUES (5, 'x')", "UPDATE T SET A = 1 / 0", "SELECT * FROM NESSUNA",
        "SELECT X FROM T", "SELECT )", "SELECT (SELECT 1 UNION SELECT 2)",
        "SELECT CAST('x' AS DATETIME)", "EXEC NESSUNA"}) {
    db().beginTrans();
    run(db(), "INSERT INTO T (ID, A) VALUES (2, 20)");
    EXPECT_THROW(run(db(), text), Error) << text;
    run(db(), "INSERT INTO T (ID, A) VALUES (3, 30)");
    db().commitTrans();
    EXPECT_EQ(ids(), (Lines{"1", "2", "3"})) << text;
    run(db(), "DELETE FROM T WHERE ID > 1");
  }
}

TEST_F(Transactions, SayWhenTheyAreNotLost) {
  db().beginTrans();
  const Error error = failureOf([&] { run(db(), "INSERT INTO T (ID, A) VALUES (1, 1)"); });
  EXPECT_FALSE(error.info().transactionLost);
  EXPECT_FALSE(error.info().connectionLost);
  db().rollbackTrans();
}

TEST_F(Transactions, UndoOnlyTheFailingStatementsRows) {
  db().beginTrans();
  run(db(), "INSERT INTO T (ID, A) VALUES (2, 20)");
  EXPECT_EQ(failureNumber(db(), "INSERT INTO T (ID, A) SELECT ID + 1, A FROM T"), 2627);
  EXPECT_EQ(ids(), (Lines{"1", "2"}));
  EXPECT_EQ(failureNumber(db(), "INSERT INTO T (ID, A) VALUES (7, 1), (8, 2), (1, 3)"), 2627);
  db().commitTrans();
  EXPECT_EQ(ids(), (Lines{"1", "2"}));
}

TEST_F(Transactions, NameTheForeignKeyInsideThem) {
  db().beginTrans();
  run(db(), "INSERT INTO C (ID, T_ID) VALUES (1, 1)");
  Error error = failureOf([&] { run(db(), "DELETE FROM T"); });
  EXPECT_EQ(error.info().nativeNumber, 547);
  EXPECT_NE(error.description().find("REFERENCE constraint \"FK_C\""), std::string::npos);
  EXPECT_NE(error.description().find("table \"dbo.C\", column 'T_ID'."), std::string::npos);
  error = failureOf([&] { run(db(), "UPDATE C SET T_ID = 5"); });
  EXPECT_NE(error.description().find("FOREIGN KEY constraint \"FK_C\""), std::string::npos);
  run(db(), "INSERT INTO T (ID, A) VALUES (2, 2)");
  db().commitTrans();
  EXPECT_EQ(lines(db(), "SELECT T.ID, C.ID FROM T LEFT JOIN C ON C.T_ID = T.ID ORDER BY T.ID"),
            (Lines{"1|1", "2|NULL"}));
  EXPECT_EQ(failureNumber(db(), "DELETE FROM T WHERE ID = 1"), 547);
}

TEST_F(Transactions, CoverDefinitions) {
  db().beginTrans();
  run(db(), "CREATE TABLE S (A INT) INSERT INTO S VALUES (1)");
  run(db(), "CREATE PROCEDURE P AS SELECT A FROM S");
  run(db(), "CREATE FUNCTION F () RETURNS TABLE AS RETURN SELECT A FROM S");
  run(db(), "DROP TABLE C");
  EXPECT_EQ(lines(db(), "EXEC P"), Lines{"1"});
  EXPECT_EQ(lines(db(), "SELECT * FROM S"), Lines{"1"});
  db().rollbackTrans();
  EXPECT_EQ(failureNumber(db(), "SELECT * FROM S"), 208);
  EXPECT_EQ(failureNumber(db(), "EXEC P"), 2812);
  EXPECT_EQ(failureNumber(db(), "SELECT A FROM F()"), 208);
  EXPECT_EQ(lines(db(), "SELECT COUNT(*) FROM C"), Lines{"0"});
  run(db(), "CREATE TABLE S (B VARCHAR(5)) INSERT INTO S VALUES ('b')");
  EXPECT_EQ(lines(db(), "SELECT * FROM S"), Lines{"b"});
}

TEST_F(Transactions, CoverTheChangesOfARecordset) {
  db().beginTrans();
  const auto rows = run(db(), "SELECT COUNT(*) FROM T");
  run(db(), "DELETE FROM T");
  EXPECT_EQ(rows->fields().item(std::size_t{0}).value().toInt64(), 1);
  db().rollbackTrans();
  EXPECT_EQ(ids(), Lines{"1"});
}

TEST_F(Transactions, WrittenAsStatements) {
  run(db(), "BEGIN TRAN INSERT INTO T (ID, A) VALUES (2, 2) COMMIT");
  EXPECT_EQ(ids(), (Lines{"1", "2"}));
  run(db(), "BEGIN TRANSACTION INSERT INTO T (ID, A) VALUES (3, 3) ROLLBACK TRANSACTION");
  EXPECT_EQ(ids(), (Lines{"1", "2"}));
  Error error = failureOf([&] { run(db(), "COMMIT"); });
  EXPECT_EQ(error.info().nativeNumber, 3902);
  EXPECT_EQ(error.description(),
            "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION.");
  error = failureOf([&] { run(db(), "ROLLBACK"); });
  EXPECT_EQ(error.info().nativeNumber, 3903);
  EXPECT_EQ(error.description(),
            "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION.");
}

// ---- the Errors collection

TEST_F(Transactions, ErrorsStayThroughSuccess) {
  EXPECT_EQ(db().errors().count(), 0U);
  EXPECT_EQ(failureNumber(db(), "INSERT INTO T (ID, A) VALUES (1, 1)"), 2627);
  ASSERT_EQ(db().errors().count(), 2U);
  run(db(), "INSERT INTO T (ID, A) VALUES (2, 1)");
  run(db(), "SELECT 1");
  ASSERT_EQ(db().errors().count(), 2U);
  EXPECT_EQ(db().errors().item(0).nativeNumber, 2627);
  EXPECT_EQ(db().errors().item(1).nativeNumber, 3621);
  EXPECT_THROW(static_cast<void>(db().errors().item(2)), Error);
}

TEST_F(Transactions, ErrorsAreReplacedByTheNextFailure) {
  EXPECT_EQ(failureNumber(db(), "INSERT INTO T (ID, A) VALUES (1, 1)"), 2627);
  EXPECT_EQ(failureNumber(db(), "SELECT X FROM T"), 207);
  ASSERT_EQ(db().errors().count(), 1U);
  EXPECT_EQ(db().errors().item(0).nativeNumber, 207);
  db().errors().clear();
  EXPECT_EQ(db().errors().count(), 0U);
}

TEST_F(Transactions, ErrorsDoNotKnowOfFailuresOutsideTheProvider) {
  const auto rows = run(db(), "SELECT ID FROM T");
  EXPECT_THROW((void)rows->fields().item("NOPE"), Error);
  EXPECT_THROW(rows->setFilter("ID = ="), Error);
  EXPECT_EQ(db().errors().count(), 0U);
}

TEST_F(Transactions, ErrorsCarryWhatIsKnown) {
  const std::string text = "INSERT INTO T (ID, A) VALUES (1, 1)";
  const Error error = failureOf([&] { run(db(), text); });
  const ErrorInfo& info = error.info();
  EXPECT_EQ(info.sqlState, "23000");
  EXPECT_EQ(info.statement, text);
  EXPECT_NE(info.source, "");
  EXPECT_EQ(db().errors().item(0).sqlState, "23000");
}

TEST_F(Transactions, ErrorsOfSyntaxBringTheSqlState) {
  const Error error = failureOf([&] { run(db(), "SELECT )"); });
  EXPECT_EQ(error.info().sqlState, "42000");
  EXPECT_TRUE(error.fromProvider());
  EXPECT_EQ(db().errors().count(), 1U);
}

TEST_F(Transactions, ErrorsOfConstructsOutsideTellTheirPlace) {
  const Error error = failureOf([&] { run(db(), "SELECT ID\r\nFROM T\r\nFOR XML PATH"); });
  EXPECT_TRUE(error.fromProvider());
  EXPECT_EQ(db().errors().count(), 1U);
  const std::string& text = error.description();
  EXPECT_NE(text.find('3'), std::string::npos) << text;                // the line
  EXPECT_NE(text.find("\u00BBFOR\u00AB"), std::string::npos) << text;  // the marked fragment
}

// ---- rows changed

TEST_F(Transactions, RowsChangedAreCounted) {
  EXPECT_EQ(affectedBy(db(), "INSERT INTO T (ID, A) VALUES (2, 2), (3, 3)"), 2);
  EXPECT_EQ(affectedBy(db(), "UPDATE T SET A = 1"), 3);
  EXPECT_EQ(affectedBy(db(), "UPDATE T SET A = 1 WHERE ID = 99"), 0);
  EXPECT_EQ(affectedBy(db(), "DELETE FROM T WHERE ID > 1"), 2);
  EXPECT_EQ(affectedBy(db(), "SELECT ID FROM T"), -1);
  EXPECT_EQ(affectedBy(db(), "CREATE TABLE S (A INT)"), -1);
  EXPECT_EQ(affectedBy(db(), "SET NOCOUNT ON UPDATE T SET A = 2"), -1);
  EXPECT_EQ(affectedBy(db(), "SET NOCOUNT OFF UPDATE T SET A = 2"), 1);
}

TEST_F(Transactions, RowsChangedDoNotIncludeThoseOfAFailure) {
  std::int64_t affected = 77;
  EXPECT_THROW(
      db().execute("INSERT INTO T (ID, A) VALUES (2, 2), (1, 1)", affected, CommandOption::Text),
      Error);
  EXPECT_EQ(affectedBy(db(), "UPDATE T SET A = 5 WHERE ID = 99"), 0);
  EXPECT_EQ(lines(db(), "DELETE FROM T WHERE ID = 99 SELECT @@ROWCOUNT"), Lines{"0"});
}

}  // namespace
}  // namespace azcoll::test
