#include "embedded/plan/plan_cache.h"

#include <list>

#include "gtest/gtest.h"

#include "embedded/plan/guards.h"
#include "engine_fixture.h"
#include "tsql/shape.h"

namespace azcoll::embedded::test {
namespace {

/// The constants of a shape are views of its text, which has to stay.
const tsql::Shape& shapeOf(const std::string& text) {
  static std::list<std::string> texts;
  static std::list<tsql::Shape> shapes;
  tsql::scanShape(texts.emplace_back(text), shapes.emplace_back());
  return shapes.back();
}

TEST(PlanCache, ForgetsThePlanNotUsedForTheLongestTime) {
  PlanCache cache(2);
  const auto plan = std::make_shared<Plan>();
  cache.add(shapeOf("SELECT a"), plan);
  cache.add(shapeOf("SELECT b"), plan);
  EXPECT_NE(cache.find(shapeOf("SELECT a")), nullptr);
  cache.add(shapeOf("SELECT c"), plan);
  EXPECT_EQ(cache.find(shapeOf("SELECT b")), nullptr);
  EXPECT_NE(cache.find(shapeOf("SELECT a")), nullptr);
  EXPECT_EQ(cache.size(), 2U);
  cache.clear();
  EXPECT_EQ(cache.find(shapeOf("SELECT a")), nullptr);
}

TEST(PlanCache, KeepsWhatMayBeKeptOnly) {
  PlanCache cache(9);
  cache.add(shapeOf("SELECT 1 -- remark"), std::make_shared<Plan>());
  const auto once = std::make_shared<Plan>();
  once->cacheable = false;
  cache.add(shapeOf("SELECT 2"), once);
  cache.add(shapeOf(std::string(70000, 'a')), std::make_shared<Plan>());
  EXPECT_EQ(cache.size(), 0U);
}

TEST(PlanCache, HoldsAPlanForEveryMeaningOfAConstant) {
  PlanCache cache(9);
  for (int i = 1; i <= 20; ++i) {
    const tsql::Shape& shape = shapeOf("SELECT a ORDER BY " + std::to_string(i));
    EXPECT_EQ(cache.find(shape), nullptr);
    const auto plan = std::make_shared<Plan>();
    plan->guards.push_back({Guard::Kind::SameText, 0, {}, std::to_string(i)});
    cache.add(shape, plan);
    EXPECT_EQ(cache.find(shape), plan);
  }
  EXPECT_EQ(cache.size(), 1U);
  EXPECT_EQ(cache.find(shapeOf("SELECT a ORDER BY 1")), nullptr);  // only so many of one shape
  EXPECT_NE(cache.find(shapeOf("SELECT a ORDER BY 20")), nullptr);
}

TEST(Guards, HoldAPlanToWhatItTookForGranted) {
  const auto holds = [](Guard::Kind kind, const Type& type, const char* text,
                        const char* constant) {
    return guardsHold({{kind, 0, type, text}}, shapeOf(std::string("SELECT ") + constant));
  };
  EXPECT_TRUE(holds(Guard::Kind::SameText, {}, "it's", "'it''s'"));
  EXPECT_FALSE(holds(Guard::Kind::SameText, {}, "its", "'it''s'"));
  EXPECT_TRUE(holds(Guard::Kind::SameType, kInt, "", "2147483647"));
  EXPECT_FALSE(holds(Guard::Kind::SameType, kInt, "", "2147483648"));
  EXPECT_TRUE(holds(Guard::Kind::SameType, decimalType(3, 2), "", "1.25"));
  EXPECT_FALSE(holds(Guard::Kind::SameType, decimalType(3, 2), "", "12.25"));
  EXPECT_TRUE(holds(Guard::Kind::SmallInteger, {}, "", "123456789012345678"));
  EXPECT_FALSE(holds(Guard::Kind::SmallInteger, {}, "", "1234567890123456789"));
  EXPECT_TRUE(holds(Guard::Kind::Scale, decimalType(9, 2), "", "1.25"));
  EXPECT_FALSE(holds(Guard::Kind::Scale, decimalType(9, 2), "", "1.255"));
}

/// Texts of few shapes, each run several times with other constants.
const std::vector<std::string>& variedTexts() {
  static const std::vector<std::string> texts = [] {
    std::vector<std::string> all;
    for (const char* constant :
         {"1",     "12",    "-3",     "2147483647", "2147483648", "99999999999999999999",
          "1.5",   "1.25",  "12.345", "0.0000001",  "1e2",        "'1'",
          "'x'",   "N'è'",  "''",     "'it''s'",    "NULL",       "'20240101'",
          "' 7 '", "'1.50'"}) {
      const std::string c(constant);
      all.push_back("SELECT " + c);
      all.push_back("SELECT " + c + " + 1");
      all.push_back("SELECT I FROM V WHERE I = " + c + " ORDER BY I");
      all.push_back("SELECT I FROM V WHERE D < " + c + " ORDER BY I");
      all.push_back("SELECT I FROM V WHERE W >= " + c + " ORDER BY I");
      all.push_back("SELECT I FROM V WHERE T = " + c + " ORDER BY I");
      all.push_back("SELECT I FROM V WHERE F > " + c + " ORDER BY I");
      all.push_back("SELECT I FROM V WHERE A = " + c + " ORDER BY I");
      all.push_back("SELECT CASE WHEN I > 1 THEN " + c + " ELSE 2 END FROM V ORDER BY I");
      all.push_back("SELECT ISNULL(T, " + c + ") FROM V ORDER BY I");
      all.push_back("SELECT I FROM V WHERE I IN (1, " + c + ") ORDER BY I");
      all.push_back("SELECT I FROM V WHERE D BETWEEN 0 AND " + c + " ORDER BY I");
      all.push_back("SELECT " + c + " UNION SELECT 1 ORDER BY 1");
      all.push_back("INSERT INTO V (I, S, D, W, T, C, F, A) VALUES (9, " + c +
                    ", NULL, NULL, NULL, NULL, NULL, NULL) SELECT S FROM V WHERE I = 9");
      all.push_back("INSERT INTO V (I, D, T) VALUES (9, " + c + ", " + c +
                    ") SELECT D, T FROM V WHERE I = 9");
      all.push_back("UPDATE V SET W = " + c + ", C = " + c + " WHERE I = 1 SELECT W, C FROM V");
      all.push_back("UPDATE V SET A = " + c + " WHERE I = 1 SELECT A FROM V");
    }
    for (const char* number : {"1", "2", "3", "4"}) {
      const std::string n(number);
      all.push_back("SELECT I, D FROM V ORDER BY " + n);
      all.push_back("SELECT TOP " + n + " I FROM V ORDER BY I DESC");
      all.push_back("SELECT I FROM V WHERE " + n + " = 2 ORDER BY I");
      all.push_back("SELECT (SELECT TOP " + n + " I FROM V ORDER BY I)");
      all.push_back("SELECT CAST('abcdef' AS VARCHAR(" + n + ")) AS 'c" + n + "'");
    }
    return all;
  }();
  return texts;
}

std::shared_ptr<EmbeddedConnection> openVaried(const EngineOptions& options) {
  auto connection = openMemory(options);
  connection->run(
      "CREATE TABLE V (I INT NOT NULL PRIMARY KEY, S SMALLINT NULL, D DECIMAL(5, 2) NULL, "
      "W DECIMAL(38, 6) NULL, T VARCHAR(5) NULL, C CHAR(4) NULL, F FLOAT NULL, A DATETIME NULL)"
      "INSERT INTO V VALUES (1, 1, 1.25, 12.345, '1', 'x', 1.5, '20240101')"
      "INSERT INTO V VALUES (2, -3, -1.5, 99999999999999999999, 'It''s', 'abcd', 100, NULL)"
      "INSERT INTO V VALUES (12, NULL, NULL, 0.0000005, NULL, NULL, NULL, '19000101')");
  return connection;
}

/// Everything a caller can tell about the outcome; the change is taken back.
std::string outcome(EmbeddedConnection& connection, const std::string& text) {
  connection.beginTrans();
  std::string result;
  try {
    const ExecutionResult execution = connection.run(text);
    result = show(execution);
    for (const ResultSet& set : execution.results) {
      for (const ColumnInfo& column : set.columns) {
        result += "," + column.name + ":" + column.baseTable + "." + column.baseColumn;
      }
      for (const Variant& value : set.allValues()) {
        result += std::to_string(static_cast<int>(value.kind()));
      }
    }
  } catch (const Error& error) {
    result = std::to_string(error.info().nativeNumber) + error.description();
  }
  connection.rollbackTrans();
  return result;
}

TEST(PlanCache, NeverChangesAResult) {
  const auto cached = openVaried({});
  const auto fresh = openVaried({.planCache = false});
  for (int round = 0; round < 2; ++round) {
    for (const std::string& text : variedTexts()) {
      EXPECT_EQ(outcome(*cached, text), outcome(*fresh, text)) << text;
    }
  }
  EXPECT_EQ(fresh->engine().cache().size(), 0U);
  EXPECT_LT(cached->engine().cache().size(), variedTexts().size());
}

TEST(PlanCache, ChangesNothingWhenAConstantDoesNotConvert) {
  // The statement fails when it is reached: what stands in front of it has run, and what is not
  // reached does not fail. A remark keeps a text out of the cache.
  for (const char* remark : {"", " -- remark"}) {
    for (const bool planCache : {true, false}) {
      const auto connection = openVaried({.planCache = planCache});
      EXPECT_EQ(failureNumber(*connection,
                              std::string("INSERT INTO V (I) VALUES (50) SELECT I FROM V WHERE I = "
                                          "'x'") +
                                  remark),
                245);
      EXPECT_EQ(rows(*connection, "SELECT I FROM V WHERE I = 50"), "50");
      EXPECT_EQ(
          rows(*connection, std::string("IF 1 = 2 SELECT CAST('x' AS INT) ELSE SELECT 7") + remark),
          "7");
      EXPECT_EQ(failureNumber(*connection, std::string("SELECT CAST('x' AS INT), CAST(1 AS "
                                                       "DECIMAL(99))") +
                                               remark),
                2750);
    }
  }
}

TEST(PlanCache, RunsNothingOfATextThatHoldsAConstantWithoutAValue) {
  for (const bool planCache : {true, false}) {
    const auto connection = openVaried({.planCache = planCache});
    const auto insertTwice = [](const std::string& key, const std::string& value) {
      return "INSERT INTO V (I, T) VALUES (" + key + ", 'a') INSERT INTO V (I, F) VALUES (" + key +
             "1, " + value + ")";
    };
    EXPECT_EQ(failure(*connection, insertTwice("5", "1.5")), "no error");
    for (const auto& [value, number] :
         {std::pair("0x1F", 0), std::pair("999999999999999999999999999999999999999", 1007),
          std::pair("1E400", 168)}) {
      EXPECT_EQ(failureNumber(*connection, insertTwice("6", value)), number);
      EXPECT_EQ(rows(*connection, "SELECT COUNT(*) FROM V WHERE I = 6"), "0") << value;
    }
  }
}

TEST(PlanCache, TakesANumberOfAnyTypeForADate) {
  // A whole number is an INT or, with more digits, a NUMERIC: one shape, and days since 1900 both.
  for (const bool planCache : {true, false}) {
    const auto connection = openVaried({.planCache = planCache});
    connection->run(
        "CREATE FUNCTION DBO.FN (@A DATETIME) RETURNS TABLE AS RETURN (SELECT I FROM V WHERE A = "
        "@A)");
    for (const char* statement :
         {"UPDATE V SET T = '%t', A = %n WHERE I = 1",
          "SELECT CAST('%t' AS CHAR(1)), CAST(%n AS DATETIME)", "SELECT '%t', YEAR(%n)",
          "SELECT '%t', DATEADD(day, 1, %n)",
          "SELECT * FROM V WHERE T = '%t' AND I IN (SELECT I FROM DBO.FN(%n))",
          "SELECT V.I FROM V CROSS APPLY DBO.FN(%n) AS F WHERE V.T = '%t'",
          "DECLARE @D DATETIME = %n SELECT '%t'", "DECLARE @D DATETIME SET @D = %n SELECT '%t'",
          "DECLARE @D DATETIME SELECT @D = %n SELECT '%t'"}) {
      const auto batch = [statement](const std::string& text, const std::string& number) {
        std::string filled = std::string("INSERT INTO V (I) VALUES (50) ") + statement;
        filled.replace(filled.find("%t"), 2, text);
        return filled.replace(filled.find("%n"), 2, number);
      };
      EXPECT_EQ(failure(*connection, batch("z", "1")), "no error") << statement;
      connection->run("DELETE FROM V WHERE I = 50");
      for (const char* beyond : {"12345678901", "2958464", "2958464.5"}) {
        EXPECT_EQ(failureNumber(*connection, batch("y", beyond)), 8115) << statement;
        EXPECT_EQ(rows(*connection, "SELECT COUNT(*) FROM V WHERE I = 50"), "1") << statement;
        connection->run("DELETE FROM V WHERE I = 50");
      }
      EXPECT_EQ(failure(*connection, batch("z", "45320.25")), "no error") << statement;
      connection->run("DELETE FROM V WHERE I = 50");
    }
  }
}

TEST(PlanCache, LetsAProcedureHoldAConstantThatDoesNotConvert) {
  const auto connection = openMemory();
  connection->run(
      "CREATE PROCEDURE P @A INT AS IF @A = 1 SELECT CAST('x' AS INT) ELSE SELECT CAST('2' AS "
      "INT)");
  EXPECT_EQ(rows(*connection, "EXEC P 2"), "2");
  EXPECT_EQ(failureNumber(*connection, "EXEC P 1"), 245);
  // A CHECK becomes part of the database at once, so it is refused at once.
  EXPECT_EQ(failureNumber(*connection, "CREATE TABLE C (A INT NULL CHECK (A > 'x'))"), 245);
}

TEST(PlanCache, SurvivesARollbackThatTakesTableVariablesBack) {
  const auto connection = openMemory();
  const char* const text = "DECLARE @T TABLE (A INT) INSERT INTO @T VALUES (1) SELECT * FROM @T";
  connection->beginTrans();
  EXPECT_EQ(rows(*connection, text), "1");
  connection->rollbackTrans();
  EXPECT_EQ(rows(*connection, text), "1");
}

}  // namespace
}  // namespace azcoll::embedded::test
