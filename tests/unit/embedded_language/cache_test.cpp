#include "unit/embedded_language/support.h"

// Statements of one shape share a plan: what differs between them must still count.
namespace azcoll::test {
namespace {

class SameShape : public testing::Test {
 protected:
  void SetUp() override {
    run(db(),
        "CREATE TABLE T (ID INT NOT NULL PRIMARY KEY, A INT NULL, V VARCHAR(5) NULL, D DATETIME "
        "NULL, N DECIMAL(9, 2) NULL)");
    run(db(),
        "INSERT INTO T VALUES (1, 10, 'b', '20240101', 1.5), (2, 20, 'a', '20240201', 2.5), (3, "
        "10, NULL, NULL, NULL)");
  }

  Connection& db() { return *connection_; }
  Lines rows(const std::string& text) { return lines(db(), text); }

 private:
  std::shared_ptr<Connection> connection_ = openMemory();
};

TEST_F(SameShape, RunsWithTheConstantsOfEachText) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(rows("SELECT ID FROM T WHERE ID = 1"), Lines{"1"});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE ID = 2"), Lines{"2"});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE ID = 99"), Lines{});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE V = 'a'"), Lines{"2"});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE V = 'it''s'"), Lines{});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE V = 'B  '"), Lines{"1"});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE D = '20240101'"), Lines{"1"});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE D = '2024-02-01T00:00:00'"), Lines{"2"});
  }
}

TEST_F(SameShape, AConstantThatDoesNotConvert) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(rows("SELECT ID FROM T WHERE ID = '1'"), Lines{"1"});
    EXPECT_EQ(failureNumber(db(), "SELECT ID FROM T WHERE ID = 'x'"), 245);
    EXPECT_EQ(rows("SELECT ID FROM T WHERE ID = ' 2'"), Lines{"2"});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE D = '20240101'"), Lines{"1"});
    EXPECT_EQ(failureNumber(db(), "SELECT ID FROM T WHERE D = '20240230'"), 242);
    EXPECT_EQ(failureNumber(db(), "SELECT ID FROM T WHERE D = 'x'"), 241);
  }
}

TEST_F(SameShape, KeepsPositionsInOrderByApart) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(rows("SELECT V, ID FROM T WHERE ID < 3 ORDER BY 1"), (Lines{"a|2", "b|1"}));
    EXPECT_EQ(rows("SELECT V, ID FROM T WHERE ID < 3 ORDER BY 2"), (Lines{"b|1", "a|2"}));
    EXPECT_EQ(failureNumber(db(), "SELECT V, ID FROM T WHERE ID < 3 ORDER BY 3"), 108);
  }
}

TEST_F(SameShape, TakesTheCountOfTopFromEachText) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(rows("SELECT TOP 1 ID FROM T ORDER BY ID"), Lines{"1"});
    EXPECT_EQ(rows("SELECT TOP 2 ID FROM T ORDER BY ID"), (Lines{"1", "2"}));
    EXPECT_EQ(rows("SELECT TOP 0 ID FROM T ORDER BY ID"), Lines{});
  }
}

TEST_F(SameShape, TopOfOneAndOfMoreInAValue) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(rows("SELECT (SELECT TOP 1 ID FROM T ORDER BY ID)"), Lines{"1"});
    EXPECT_EQ(failureNumber(db(), "SELECT (SELECT TOP 2 ID FROM T ORDER BY ID)"), 512);
    EXPECT_EQ(rows("SELECT (SELECT TOP 0 ID FROM T ORDER BY ID)"), Lines{"NULL"});
  }
}

TEST_F(SameShape, KeepsLengthsAndScalesOfTypesApart) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(rows("SELECT CAST('abcdef' AS VARCHAR(3))"), Lines{"abc"});
    EXPECT_EQ(rows("SELECT CAST('abcdef' AS VARCHAR(5))"), Lines{"abcde"});
    EXPECT_EQ(rows("SELECT CAST(1.256 AS DECIMAL(9, 2))"), Lines{"1.26"});
    EXPECT_EQ(rows("SELECT CAST(1.256 AS DECIMAL(9, 1))"), Lines{"1.3"});
    EXPECT_EQ(failureNumber(db(), "SELECT CAST(1.256 AS DECIMAL(1, 1))"), 8115);
    EXPECT_EQ(rows("DECLARE @V VARCHAR(2) = 'abc' SELECT @V"), Lines{"ab"});
    EXPECT_EQ(rows("DECLARE @V VARCHAR(3) = 'abc' SELECT @V"), Lines{"abc"});
  }
}

TEST_F(SameShape, GivesEachConstantOfTheListItsOwnType) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(value(db(), "SELECT 1"), Variant(std::int32_t{1}));
    EXPECT_EQ(value(db(), "SELECT 3000000000"), Variant(*Decimal::parse("3000000000")));
    EXPECT_EQ(value(db(), "SELECT 2147483647"), Variant(std::int32_t{2147483647}));
    EXPECT_EQ(value(db(), "SELECT 1.50").text(), "1.50");
    EXPECT_EQ(value(db(), "SELECT 1.5").text(), "1.5");
    EXPECT_EQ(value(db(), "SELECT 123.4567").text(), "123.4567");
    EXPECT_EQ(value(db(), "SELECT 'a'"), Variant("a"));
    EXPECT_EQ(value(db(), "SELECT 'a longer text'"), Variant("a longer text"));
    EXPECT_EQ(value(db(), "SELECT ''"), Variant(""));
  }
}

TEST_F(SameShape, GivesArithmeticTheTypeOfEachConstant) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(value(db(), "SELECT A + 1 FROM T WHERE ID = 1"), Variant(std::int32_t{11}));
    EXPECT_EQ(failureNumber(db(), "SELECT A + 2147483647 FROM T WHERE ID = 1"), 8115);
    EXPECT_TRUE(sameValue(value(db(), "SELECT A + 2147483648 FROM T WHERE ID = 1"),
                          Variant(std::int64_t{2147483658})));
    EXPECT_TRUE(sameValue(value(db(), "SELECT N + 0.5 FROM T WHERE ID = 1"), Variant(2)));
    EXPECT_TRUE(sameValue(value(db(), "SELECT N + 0.125 FROM T WHERE ID = 1"),
                          Variant(*Decimal::parse("1.625"))));
  }
}

TEST_F(SameShape, ComparesWithTheScaleOfEachConstant) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(rows("SELECT ID FROM T WHERE N = 1.5"), Lines{"1"});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE N = 1.50000000"), Lines{"1"});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE N = 1.50000001"), Lines{});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE N < 99999999999999999999.5 ORDER BY ID"),
              (Lines{"1", "2"}));
    EXPECT_EQ(rows("SELECT ID FROM T WHERE A = 10 ORDER BY ID"), (Lines{"1", "3"}));
    EXPECT_EQ(rows("SELECT ID FROM T WHERE A = 10000000000 ORDER BY ID"), Lines{});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE A < 99999999999999999999999 ORDER BY ID"),
              (Lines{"1", "2", "3"}));
  }
}

TEST_F(SameShape, EvaluatesConstantConditionsAnew) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(rows("SELECT ID FROM T WHERE 0 = 1"), Lines{});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE 1 = 1 AND ID = 1"), Lines{"1"});
    EXPECT_EQ(rows("SELECT COUNT(*) FROM T LEFT JOIN T AS B ON 0 = 1"), Lines{"3"});
    EXPECT_EQ(rows("SELECT COUNT(*) FROM T LEFT JOIN T AS B ON 1 = 1"), Lines{"9"});
    EXPECT_EQ(rows("SELECT COUNT(*) FROM T LEFT JOIN T AS B ON 2 = 1"), Lines{"3"});
    EXPECT_EQ(rows("IF 1 = 1 SELECT 'y' ELSE SELECT 'n'"), Lines{"y"});
    EXPECT_EQ(rows("IF 1 = 2 SELECT 'y' ELSE SELECT 'n'"), Lines{"n"});
  }
}

TEST_F(SameShape, TakesThePatternOfLikeFromEachText) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(rows("SELECT ID FROM T WHERE V LIKE 'a'"), Lines{"2"});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE V LIKE '[a-b]' ORDER BY ID"), (Lines{"1", "2"}));
    EXPECT_EQ(rows("SELECT ID FROM T WHERE V LIKE '%'ORDER BY ID"), (Lines{"1", "2"}));
    EXPECT_EQ(rows("SELECT ID FROM T WHERE V LIKE ''"), Lines{});
  }
}

TEST_F(SameShape, KeepsQuotedNamesApart) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(run(db(), "SELECT 1 AS 'A'")->fields().item(std::size_t{0}).name(), "A");
    EXPECT_EQ(run(db(), "SELECT 1 AS 'B'")->fields().item(std::size_t{0}).name(), "B");
  }
}

TEST_F(SameShape, TakesNullsAmongValues) {
  for (int round = 0; round < 2; ++round) {
    run(db(), "DELETE FROM T");
    run(db(), "INSERT INTO T (ID, A, V, D, N) VALUES (1, 1, 'a', '20240101', 1.5)");
    run(db(), "INSERT INTO T (ID, A, V, D, N) VALUES (2, NULL, NULL, NULL, NULL)");
    run(db(), "INSERT INTO T (ID, A, V, D, N) VALUES ('3', '2', 5, Null, 2)");
    run(db(), "INSERT INTO T (ID, A, V, D, N) VALUES (4, -3, N'è', '', -2.5)");
    run(db(), "INSERT INTO T (ID, A, V, D, N) VALUES (5, 7.9, '', N'20240202', '1.25')");
    EXPECT_EQ(failureNumber(db(), "INSERT INTO T (ID, A, V, D, N) VALUES (NULL, 1, '', '', 1)"),
              515);
    EXPECT_EQ(failureNumber(db(), "INSERT INTO T (ID, A, V, D, N) VALUES (6, 'x', '', '', 1)"),
              245);
    EXPECT_EQ(failureNumber(db(), "INSERT INTO T (ID, A, V, D, N) VALUES (6, 1, 'abcdef', '', 1)"),
              8152);
    EXPECT_EQ(failureNumber(db(), "INSERT INTO T (ID, A, V, D, N) VALUES (6, 1, '', 'x', 1)"), 241);
    EXPECT_EQ(failureNumber(db(), "INSERT INTO T (ID, A, V, D, N) VALUES (6, 1, '', '', '')"),
              8114);
    EXPECT_EQ(failureNumber(db(),
                            "INSERT INTO T (ID, A, V, D, N) VALUES (6, 3000000000, '', '', "
                            "1)"),
              8115);
    EXPECT_EQ(rows("SELECT ID, A, V, D, N FROM T ORDER BY ID"),
              (Lines{"1|1|a|01/01/2024|1.50", "2|NULL|NULL|NULL|NULL", "3|2|5|NULL|2.00",
                     "4|-3|è|01/01/1900|-2.50", "5|7||02/02/2024|1.25"}));
  }
}

TEST_F(SameShape, NullOutsideValuesIsAnotherShape) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(rows("SELECT ID FROM T WHERE A = 20"), Lines{"2"});
    EXPECT_EQ(rows("SELECT ID FROM T WHERE A = NULL"), Lines{});
    run(db(), "UPDATE T SET A = 5 WHERE ID = 3");
    EXPECT_EQ(rows("SELECT A FROM T WHERE ID = 3"), Lines{"5"});
    run(db(), "UPDATE T SET A = NULL WHERE ID = 3");
    EXPECT_EQ(rows("SELECT A FROM T WHERE ID = 3"), Lines{"NULL"});
  }
}

TEST_F(SameShape, NamesInDifferentCaseAndQuotes) {
  EXPECT_EQ(rows("SELECT ID FROM T WHERE ID = 1"), Lines{"1"});
  EXPECT_EQ(rows("select id from t where id = 2"), Lines{"2"});
  EXPECT_EQ(run(db(), "SELECT 1 AS x")->fields().item(std::size_t{0}).name(), "x");
  EXPECT_EQ(run(db(), "SELECT 1 AS X")->fields().item(std::size_t{0}).name(), "X");
}

TEST_F(SameShape, TextsThatLookLikeMarks) {
  for (const std::string text : {"?", "@a", "--", "/*", "\x01", "\x02", "NULL", "1", "a", "b"}) {
    EXPECT_EQ(value(db(), "SELECT '" + text + "'"), Variant(text));
  }
}

TEST_F(SameShape, KeepsDefaultsOfDefinitionsApart) {
  run(db(), "CREATE TABLE D1 (A INT NULL, B INT DEFAULT 1)");
  run(db(), "CREATE TABLE D2 (A INT NULL, B INT DEFAULT 2)");
  run(db(), "INSERT INTO D1 (A) VALUES (0) INSERT INTO D2 (A) VALUES (0)");
  EXPECT_EQ(rows("SELECT B FROM D1 UNION ALL SELECT B FROM D2"), (Lines{"1", "2"}));
}

TEST_F(SameShape, ManyShapesOneAfterTheOther) {
  for (int round = 0; round < 2; ++round) {
    for (int i = 1; i < 1500; ++i) {
      const std::string name = "C" + std::to_string(i);
      const auto result = run(db(), "SELECT ID AS " + name + " FROM T WHERE ID = 1");
      ASSERT_EQ(result->fields().item(std::size_t{0}).name(), name);
    }
  }
  std::string list = "1";
  for (int i = 2; i < 300; ++i) {
    list += ", " + std::to_string(i);
    ASSERT_EQ(rows("SELECT COUNT(*) FROM T WHERE ID IN (" + list + ")"), Lines{i < 3 ? "2" : "3"});
  }
}

TEST_F(SameShape, DefinitionsMakePlansAnew) {
  EXPECT_EQ(rows("SELECT * FROM T WHERE ID = 2"), Lines{"2|20|a|01/02/2024|2.50"});
  run(db(), "DROP TABLE T");
  EXPECT_EQ(failureNumber(db(), "SELECT * FROM T WHERE ID = 2"), 208);
  run(db(), "CREATE TABLE T (X VARCHAR(9) NULL, ID SMALLINT NULL)");
  run(db(), "INSERT INTO T (X, ID) VALUES ('x', 2)");
  EXPECT_EQ(rows("SELECT * FROM T WHERE ID = 2"), Lines{"x|2"});
  EXPECT_EQ(value(db(), "SELECT ID FROM T"), Variant(std::int16_t{2}));
  run(db(), "CREATE FUNCTION F (@A INT) RETURNS TABLE AS RETURN SELECT @A + 1 AS B");
  EXPECT_EQ(rows("SELECT B FROM F(1)"), Lines{"2"});
  run(db(), "DROP FUNCTION F");
  run(db(), "CREATE FUNCTION F (@A INT) RETURNS TABLE AS RETURN SELECT @A + 2 AS B");
  EXPECT_EQ(rows("SELECT B FROM F(1)"), Lines{"3"});
}

TEST_F(SameShape, DefinitionsInsideABatchCountFromThereOn) {
  EXPECT_EQ(rows("SELECT * FROM T WHERE ID = 3"), Lines{"3|10|NULL|NULL|NULL"});
  EXPECT_EQ(rows("DROP TABLE T CREATE TABLE T (ID INT NULL) INSERT INTO T VALUES (3) SELECT * FROM "
                 "T WHERE ID = 3"),
            Lines{"3"});
  EXPECT_EQ(rows("SELECT * FROM T WHERE ID = 3"), Lines{"3"});
}

TEST_F(SameShape, AResultStaysAsItWasRead) {
  const auto first = run(db(), "SELECT ID FROM T WHERE ID = 1");
  const auto second = run(db(), "SELECT ID FROM T WHERE ID = 2");
  EXPECT_EQ(lines(*first), Lines{"1"});
  EXPECT_EQ(lines(*second), Lines{"2"});
}

}  // namespace
}  // namespace azcoll::test
