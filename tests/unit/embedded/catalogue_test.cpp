#include "embedded/catalogue/catalogue.h"

#include "gtest/gtest.h"

#include "cursor/native_connection.h"
#include "data/error.h"
#include "embedded/embedded_connection.h"
#include "embedded/values/types.h"
#include "engine_fixture.h"

namespace azcoll::embedded::test {
namespace {

TEST(Types, SurviveTheirCode) {
  for (const Type& type :
       {kInt, kFloat, kDateTime, decimalType(38, 10), Type{TypeKind::VarChar, kUnlimited, 0, 0},
        Type{TypeKind::NChar, 4000, 0, 0}, Type{TypeKind::DateTime2, 0, 0, 3}}) {
    EXPECT_EQ(decodeType(encodeType(type)), type);
  }
}

TEST(Types, MeetInTheHigherOne) {
  EXPECT_EQ(commonType(kInt, decimalType(5, 2)), decimalType(12, 2));
  EXPECT_EQ(commonType(decimalType(38, 0), decimalType(38, 1)), std::nullopt);
  EXPECT_EQ(commonType(kVarChar, kInt), kInt);
  EXPECT_EQ(commonType(kNullType, kDateTime), kDateTime);
  EXPECT_EQ(commonType({TypeKind::NChar, 3, 0, 0}, {TypeKind::VarChar, 5, 0, 0}),
            (Type{TypeKind::NVarChar, 5, 0, 0}));
  EXPECT_EQ(commonType({TypeKind::Char, 3, 0, 0}, {TypeKind::Char, 5, 0, 0}),
            (Type{TypeKind::Char, 5, 0, 0}));
  EXPECT_EQ(commonType({TypeKind::DateTime2, 0, 0, 1}, {TypeKind::DateTime2, 0, 0, 3}),
            (Type{TypeKind::DateTime2, 0, 0, 3}));
  EXPECT_EQ(commonType(kDateTime, {TypeKind::DateTime2, 0, 0, 0}),
            (Type{TypeKind::DateTime2, 0, 0, 3}));
}

TEST(Definitions, AreGivenInTheOrderOfTheirCreation) {
  const std::shared_ptr<Connection> connection = newConnection();
  connection->setConnectionString("Provider=embedded;Data Source=:memory:");
  NativeConnection* const native = connection->native();
  ASSERT_NE(native, nullptr);
  EXPECT_THROW(static_cast<void>(native->storedDefinitions()), Error);  // it is not open
  connection->open("", "", CommandOption::Unspecified);
  const auto run = [&](const char* text) {
    std::int64_t affected = 0;
    connection->execute(text, affected, CommandOption::Text);
  };
  EXPECT_EQ(native->storedDefinitions(), std::vector<std::string>{});
  run("CREATE TABLE Z (A INT NOT NULL, B VARCHAR(9) NULL)");
  run("CREATE TABLE A (A INT NOT NULL)");
  run("CREATE INDEX I ON Z (B)");
  run("CREATE PROCEDURE P AS SELECT A FROM Z");
  run("DROP TABLE A");
  const auto definitions = native->storedDefinitions();
  ASSERT_TRUE(definitions);
  ASSERT_EQ(definitions->size(), 3U);
  EXPECT_EQ((*definitions)[0].substr(0, 14), "CREATE TABLE Z");
  EXPECT_EQ((*definitions)[1], "CREATE INDEX I ON Z (B)");
  EXPECT_EQ((*definitions)[2], "CREATE PROCEDURE P AS SELECT A FROM Z");
}

TEST(Definitions, AreRefusedWithTheirNumber) {
  const auto db = openMemory();
  db->run("CREATE TABLE P (A INT NOT NULL PRIMARY KEY, B VARCHAR(9) NULL) CREATE INDEX I ON P (B)");
  const std::vector<std::pair<const char*, int>> refusals{
      {"CREATE TABLE P (A INT)", 2714},
      {"CREATE TABLE X (A INT, a INT)", 2705},
      {"CREATE TABLE X (A DECIMAL(39, 0))", 2750},
      {"CREATE TABLE X (A DECIMAL(5, 6))", 183},
      {"CREATE TABLE X (A VARCHAR(8001))", 131},
      {"CREATE TABLE X (A VARCHAR(0))", 1001},
      {"CREATE TABLE X (A CHAR(MAX))", 1001},
      {"CREATE TABLE X (A FLOAT(54))", 1001},
      {"CREATE TABLE X (A INT(5))", 2716},
      {"CREATE TABLE X (A INT NULL PRIMARY KEY)", 8111},
      {"CREATE TABLE X (A INT PRIMARY KEY, B INT PRIMARY KEY)", 8110},
      {"CREATE TABLE X (A INT IDENTITY(1, 1), B INT IDENTITY(1, 1))", 2744},
      {"CREATE TABLE X (A VARCHAR(5) IDENTITY(1, 1))", 2749},
      {"CREATE TABLE X (A INT, CONSTRAINT K PRIMARY KEY (Z))", 1911},
      {"CREATE TABLE X (A INT REFERENCES NIENTE (A))", 1767},
      {"CREATE TABLE X (A INT REFERENCES P (Z))", 1770},
      {"CREATE TABLE X (A VARCHAR(9) REFERENCES P (B))", 1776},
      {"CREATE TABLE X (A VARCHAR(9) REFERENCES P (A))", 1778},
      {"CREATE TABLE X (A INT, B INT, FOREIGN KEY (A, B) REFERENCES P (A))", 8139},
      {"CREATE INDEX I ON P (A)", 1913},
      {"CREATE INDEX J ON NIENTE (A)", 1088},
      {"CREATE INDEX J ON P (Z)", 1911},
      {"DROP TABLE NIENTE", 3701},
      {"DROP INDEX P.NIENTE", 3701},
      {"DROP PROCEDURE NIENTE", 3701},
      {"DROP FUNCTION NIENTE", 3701},
      {"DECLARE @a INT, @A INT", 134},
      {"DECLARE @a INT DECLARE @a TABLE (X INT)", 134},
  };
  for (const auto& [text, number] : refusals) {
    EXPECT_EQ(failureNumber(*db, text), number) << text;
  }
  EXPECT_EQ(failure(*db, "DROP TABLE IF EXISTS NIENTE"), "no error");
  db->run("CREATE TABLE C (A INT REFERENCES P (A))");
  EXPECT_EQ(failureNumber(*db, "DROP TABLE P"), 3726);
  db->run("DROP TABLE C DROP INDEX P.I DROP TABLE P");
  EXPECT_EQ(failureNumber(*db, "SELECT * FROM P"), 208);
}

TEST(Definitions, AreTakenBackWithTheirTransaction) {
  const auto db = openMemory();
  db->beginTrans();
  db->run("CREATE TABLE T (A INT) INSERT INTO T VALUES (1)");
  db->rollbackTrans();
  EXPECT_EQ(failureNumber(*db, "SELECT * FROM T"), 208);
  db->run("CREATE TABLE T (B INT)");
  EXPECT_EQ(failureNumber(*db, "CREATE TABLE U (A INT, CONSTRAINT T CHECK (A > 0))"), 2714);
  EXPECT_EQ(rows(*db, "SELECT COUNT(B) FROM T"), "0");
}

TEST(Columns, TellWhereTheirValuesComeFrom) {
  const auto db = openMemory();
  db->run("CREATE TABLE T (I INT IDENTITY(1, 1) NOT NULL PRIMARY KEY, A INT NULL)");
  const auto columns = [&db](const char* text) {
    std::string result;
    const ExecutionResult execution = db->run(text);
    for (const ColumnInfo& column : execution.results.front().columns) {
      result += column.name + "=" + column.baseTable + "." + column.baseColumn +
                (column.isKey ? "!" : "") + (column.isIdentity ? "#" : "") + " ";
    }
    return result;
  };
  EXPECT_EQ(columns("SELECT I, A AS B, A + 1, 1 AS C FROM T"), "I=T.I!# B=T.A =. C=. ");
  EXPECT_EQ(columns("SELECT X.* FROM (SELECT I, A AS B FROM T) AS X"), "I=T.I!# B=T.A ");
  EXPECT_EQ(columns("SELECT DISTINCT A FROM T"), "A=. ");
  EXPECT_EQ(columns("SELECT MAX(A) FROM T"), "=. ");
  EXPECT_EQ(columns("SELECT A FROM T UNION SELECT 1"), "A=. ");
}

TEST(Batches, LimitTheirBatchEditsToOneTable) {
  const auto db = openMemory();
  db->run(
      "CREATE TABLE T (K INT NOT NULL PRIMARY KEY, D DECIMAL(9, 2) NULL, N NVARCHAR(9) NULL, "
      "A DATETIME NULL) INSERT INTO T VALUES (1, 1.5, 'a', '20240101'), (2, 2.5, NULL, NULL)");
  const auto recordset = db->newRecordset();
  recordset->setCursorLocation(CursorLocation::Client);
  recordset->open("SELECT * FROM T", db, CursorType::Keyset, LockType::BatchOptimistic,
                  CommandOption::Text);
  recordset->fields().item("D").setValue(*Decimal::parse("9.75"));
  recordset->fields().item("A").setValue(Variant{kNull});
  recordset->addNew();
  recordset->fields().item("K").setValue(std::int32_t{3});
  recordset->fields().item("N").setValue("it's");
  recordset->update();
  recordset->updateBatch(Affect::All);
  EXPECT_EQ(rows(*db, "SELECT * FROM T"), "1|9.75|a|NULL;2|2.50|NULL|NULL;3|NULL|it's|NULL");
  EXPECT_THROW(db->runChange("UPDATE T SET D = ? WHERE K = ?", {Variant{1}}), Error);
  EXPECT_THROW(db->run("SELECT * FROM T WHERE K = ?"), Error);
  EXPECT_EQ(db->runChange("UPDATE T SET N = ? WHERE N IS NULL AND D = ?",
                          {Variant{"x"}, *Decimal::parse("2.500")}),
            1);
  EXPECT_THROW(db->runChange("UPDATE T SET K = ?", {Variant{"x"}}), Error);
}

}  // namespace
}  // namespace azcoll::embedded::test
