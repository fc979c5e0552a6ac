// Numbers and texts of the refusals that callers read.

#include "gtest/gtest.h"

#include "engine_fixture.h"

namespace azcoll::embedded::test {
namespace {

class ErrorTexts : public testing::Test {
 protected:
  void SetUp() override {
    db_->run(
        "CREATE TABLE P (A INT NOT NULL, B INT NOT NULL, CONSTRAINT PK_P PRIMARY KEY (A, B))"
        "CREATE TABLE Q (K CHAR(2) NOT NULL CONSTRAINT PK_Q PRIMARY KEY, "
        "D DATETIME NULL CONSTRAINT UQ_Q UNIQUE, V INT NULL CONSTRAINT CK_V CHECK (V > 0))"
        "CREATE TABLE C (I INT IDENTITY(1, 1) NOT NULL CONSTRAINT PK_C PRIMARY KEY, A INT NULL, "
        "B INT NULL, K CHAR(2) NULL CONSTRAINT FK_Q REFERENCES Q (K), "
        "CONSTRAINT FK_P FOREIGN KEY (A, B) REFERENCES P (A, B))"
        "CREATE UNIQUE INDEX IX_C ON C (A, K)"
        "INSERT INTO P VALUES (1, 2) INSERT INTO Q (K, D) VALUES ('a', '20240102')"
        "INSERT INTO C (A, B, K) VALUES (1, 2, 'a')");
  }
  std::string refusal(std::string_view sql) { return failure(*db_, sql); }
  std::shared_ptr<EmbeddedConnection> db_ = openMemory();
};

TEST_F(ErrorTexts, DuplicateKeysNameTheConstraintAndTheValue) {
  EXPECT_EQ(
      refusal("INSERT INTO P VALUES (7, 7), (1, 2)"),
      "2627 Violation of PRIMARY KEY constraint 'PK_P'. Cannot insert duplicate key in object "
      "'dbo.P'. The duplicate key value is (1, 2).");
  EXPECT_EQ(refusal("INSERT INTO Q (K, D) SELECT 'b', D FROM Q"),
            "2627 Violation of UNIQUE KEY constraint 'UQ_Q'. Cannot insert duplicate key in object "
            "'dbo.Q'. The duplicate key value is (Jan  2 2024 12:00AM).");
  EXPECT_EQ(refusal("INSERT INTO C (A, K) VALUES (1, 'A')"),
            "2601 Cannot insert duplicate key row in object 'dbo.C' with unique index 'IX_C'. The "
            "duplicate key value is (1, A ).");
  db_->run("INSERT INTO C (A, K) VALUES (NULL, NULL)");
  EXPECT_EQ(refusal("INSERT INTO C (A, K) VALUES (NULL, NULL)"),
            "2601 Cannot insert duplicate key row in object 'dbo.C' with unique index 'IX_C'. The "
            "duplicate key value is (<NULL>, <NULL>).");
  EXPECT_EQ(rows(*db_, "SELECT COUNT(*) FROM P"), "1");
  // A row that breaks a key and an index is refused for the key.
  db_->run("CREATE UNIQUE INDEX IX_Q ON Q (V) UPDATE Q SET V = 8");
  EXPECT_EQ(
      refusal("INSERT INTO Q (K, V) VALUES ('b', 9), ('A', 8)"),
      "2627 Violation of PRIMARY KEY constraint 'PK_Q'. Cannot insert duplicate key in object "
      "'dbo.Q'. The duplicate key value is (A ).");
  EXPECT_EQ(refusal("INSERT INTO Q (K, D, V) SELECT 'b', D, V FROM Q"),
            "2627 Violation of UNIQUE KEY constraint 'UQ_Q'. Cannot insert duplicate key in object "
            "'dbo.Q'. The duplicate key value is (Jan  2 2024 12:00AM).");
  EXPECT_EQ(refusal("INSERT INTO Q (K, V) VALUES ('b', 8)"),
            "2601 Cannot insert duplicate key row in object 'dbo.Q' with unique index 'IX_Q'. The "
            "duplicate key value is (8).");
}

TEST_F(ErrorTexts, DuplicateKeysShowEmptyTextsInTheirPlace) {
  db_->run(
      "CREATE TABLE E (A VARCHAR(3) NOT NULL, B INT NOT NULL, CONSTRAINT PK_E PRIMARY KEY (A, "
      "B)) CREATE TABLE F (A VARCHAR(3) NULL, B INT NULL) INSERT INTO E VALUES ('', 1) "
      "INSERT INTO F VALUES ('', NULL), ('', NULL)");
  EXPECT_TRUE(refusal("INSERT INTO E VALUES ('', 1)").ends_with("value is (, 1)."));
  EXPECT_TRUE(refusal("CREATE UNIQUE INDEX IX_F ON F (A, B)").ends_with("value is (, <NULL>)."));
}

TEST_F(ErrorTexts, ForeignKeysNameTheTableTheyLookInto) {
  EXPECT_EQ(refusal("INSERT INTO C (K) VALUES ('z')"),
            "547 The INSERT statement conflicted with the FOREIGN KEY constraint \"FK_Q\". The "
            "conflict occurred in database \"memory\", table \"dbo.Q\", column 'K'.");
  EXPECT_EQ(refusal("UPDATE C SET B = 9"),
            "547 The UPDATE statement conflicted with the FOREIGN KEY constraint \"FK_P\". The "
            "conflict occurred in database \"memory\", table \"dbo.P\".");
  EXPECT_EQ(refusal("DELETE FROM Q"),
            "547 The DELETE statement conflicted with the REFERENCE constraint \"FK_Q\". The "
            "conflict occurred in database \"memory\", table \"dbo.C\", column 'K'.");
  EXPECT_EQ(refusal("UPDATE P SET A = 3"),
            "547 The UPDATE statement conflicted with the REFERENCE constraint \"FK_P\". The "
            "conflict occurred in database \"memory\", table \"dbo.C\".");
  db_->run(
      "CREATE TABLE S (A INT NOT NULL PRIMARY KEY, B INT NULL CONSTRAINT FK_S REFERENCES S (A))"
      "INSERT INTO S VALUES (1, 1) INSERT INTO S VALUES (2, 1)");
  EXPECT_EQ(
      refusal("DELETE FROM S WHERE A = 1"),
      "547 The DELETE statement conflicted with the SAME TABLE REFERENCE constraint \"FK_S\". "
      "The conflict occurred in database \"memory\", table \"dbo.S\", column 'B'.");
  EXPECT_EQ(refusal("INSERT INTO S VALUES (3, 9)"),
            "547 The INSERT statement conflicted with the FOREIGN KEY SAME TABLE constraint "
            "\"FK_S\". The conflict occurred in database \"memory\", table \"dbo.S\", column 'A'.");
  db_->run("DELETE FROM S");
}

TEST_F(ErrorTexts, NullsNameTheirColumnAndChecksTheirConstraint) {
  EXPECT_EQ(refusal("INSERT INTO P (A) VALUES (1)"),
            "515 Cannot insert the value NULL into column 'B', table 'memory.dbo.P'; column does "
            "not allow nulls. INSERT fails.");
  EXPECT_EQ(refusal("UPDATE Q SET K = NULL"),
            "515 Cannot insert the value NULL into column 'K', table 'memory.dbo.Q'; column does "
            "not allow nulls. UPDATE fails.");
  EXPECT_EQ(refusal("UPDATE Q SET V = 0"),
            "547 The UPDATE statement conflicted with the CHECK constraint \"CK_V\". The conflict "
            "occurred in database \"memory\", table \"dbo.Q\".");
}

TEST_F(ErrorTexts, AFailedStatementSaysThatItWasTerminated) {
  for (const char* text : {"INSERT INTO P VALUES (1, 2)", "DELETE FROM Q", "UPDATE Q SET K = 'abc'",
                           "INSERT INTO P (A) VALUES (1)"}) {
    EXPECT_NE(refusal(text), "no error");
    ASSERT_EQ(db_->errors().count(), 2U) << text;
    EXPECT_EQ(db_->errors().item(1).nativeNumber, 3621);
    EXPECT_EQ(db_->errors().item(1).description, "The statement has been terminated.");
  }
  EXPECT_NE(refusal("SELECT nothing"), "no error");
  EXPECT_EQ(db_->errors().count(), 1U);
  db_->run("SELECT 1");
  EXPECT_EQ(db_->errors().count(), 1U);
  EXPECT_EQ(db_->errors().item(0).statement, "SELECT nothing");
  EXPECT_EQ(db_->errors().item(0).sqlState, "42S22");
}

TEST_F(ErrorTexts, NamesThatCannotBeResolvedAreQuoted) {
  EXPECT_EQ(refusal("SELECT X FROM P"), "207 Invalid column name 'X'.");
  EXPECT_EQ(refusal("SELECT A FROM P, C"), "209 Ambiguous column name 'A'.");
  EXPECT_EQ(refusal("SELECT Z.A FROM P"),
            "4104 The multi-part identifier \"Z.A\" could not be bound.");
  EXPECT_EQ(refusal("SELECT * FROM NIENTE"), "208 Invalid object name 'NIENTE'.");
  EXPECT_EQ(refusal("SELECT * FROM @T"), "1087 Must declare the table variable \"@T\".");
  EXPECT_EQ(refusal("SELECT Z.* FROM P"),
            "107 The column prefix 'Z' does not match with a table name or alias name used in the "
            "query.");
  EXPECT_EQ(refusal("EXEC NIENTE"), "2812 Could not find stored procedure 'NIENTE'.");
}

TEST_F(ErrorTexts, InsertsThatDoNotFitTheirColumnsAreRefused) {
  EXPECT_EQ(failureNumber(*db_, "INSERT INTO P (A, B) VALUES (1)"), 109);
  EXPECT_EQ(failureNumber(*db_, "INSERT INTO P (A, B) VALUES (1, 2, 5)"), 110);
  EXPECT_EQ(failureNumber(*db_, "INSERT INTO P (A, B) SELECT 1"), 120);
  EXPECT_EQ(failureNumber(*db_, "INSERT INTO P (A, B) SELECT 1, 2, 3"), 121);
  EXPECT_EQ(failureNumber(*db_, "INSERT INTO P VALUES (1)"), 213);
  EXPECT_EQ(failureNumber(*db_, "INSERT INTO P (A, A) VALUES (1, 1)"), 264);
  EXPECT_EQ(
      refusal("INSERT INTO C (I, A) VALUES (1, 1)"),
      "544 Cannot insert explicit value for identity column in table 'C' when IDENTITY_INSERT "
      "is set to OFF.");
  EXPECT_EQ(failureNumber(*db_, "INSERT INTO C SELECT * FROM C"), 8101);
  EXPECT_EQ(failureNumber(*db_, "UPDATE C SET I = 5"), 8102);
}

TEST_F(ErrorTexts, AggregatesOverColumnsOfAnOuterQuery) {
  EXPECT_EQ(failureNumber(*db_, "SELECT (SELECT MAX(C.A + P.A) FROM P) FROM C"), 8124);
  for (const char* text : {"SELECT (SELECT MAX(C.A) FROM P) FROM C",
                           "SELECT 1 FROM C WHERE (SELECT MAX(C.A) FROM P) = 1",
                           "UPDATE C SET A = 1 WHERE (SELECT SUM(C.A) FROM P) = 1"}) {
    EXPECT_NE(refusal(text).find("an aggregate of an outer query inside a subquery"),
              std::string::npos)
        << text << refusal(text);
  }
  EXPECT_EQ(refusal("SELECT (SELECT MAX(P.A) FROM P WHERE P.A = C.A) FROM C"), "no error");
  EXPECT_EQ(refusal("SELECT C.A FROM C GROUP BY C.A HAVING MAX(C.I) > (SELECT COUNT(*) FROM P)"),
            "no error");
}

TEST_F(ErrorTexts, ConstructsOutsideTellTheirPlace) {
  const std::string text = refusal("SELECT\n  SOUNDEX('a')");
  EXPECT_NE(text.find("SOUNDEX"), std::string::npos) << text;
  EXPECT_NE(text.find('2'), std::string::npos);
  EXPECT_NE(text.find("»SOUNDEX«"), std::string::npos) << text;
  for (const char* outside :
       {"SELECT 1 FROM P FULL JOIN C ON 1 = 1 WHERE SOUNDEX('a') = 'x'",
        "SELECT CAST(1.5 AS FLOAT) % 2", "SELECT CAST(CAST(1 AS FLOAT) AS VARCHAR(9))",
        "SELECT GETDATE() + 1", "SELECT CONVERT(VARCHAR(9), 1, 5)", "SELECT 0x1F",
        "SELECT CAST(1 AS UNIQUEIDENTIFIER)", "DECLARE @x DATETIME2", "SELECT dbo.F(1)",
        "CREATE TABLE I (A INT IDENTITY(1, 2) NOT NULL)",
        "CREATE TABLE I (A VARCHAR(9) COLLATE Latin1_General_BIN NULL)",
        "DECLARE @a INT SELECT @a = 1, @a = @a + 1", "SET ROWCOUNT 5",
        "DECLARE @l VARCHAR(99) SELECT @l = @l + K FROM Q ORDER BY K",
        "SELECT COUNT(DISTINCT UPPER(K)) FROM Q HAVING AVG(CAST(V AS DECIMAL(9, 2))) > 1",
        "SELECT * FROM a.b.c"}) {
    EXPECT_EQ(failureNumber(*db_, outside), 0) << outside;
  }
}

}  // namespace
}  // namespace azcoll::embedded::test
