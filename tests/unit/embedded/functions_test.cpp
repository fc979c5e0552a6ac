// What every function gives, and what its arguments must be.

#include <utility>

#include "gtest/gtest.h"

#include "engine_fixture.h"

namespace azcoll::embedded::test {
namespace {

using Table = std::vector<std::pair<const char*, const char*>>;

void expectValues(const Table& table) {
  const auto db = openMemory();
  for (const auto& [expression, value] : table) {
    EXPECT_EQ(rows(*db, std::string("SELECT ") + expression), value) << expression;
  }
}

void expectRefusals(const std::vector<std::pair<const char*, int>>& table) {
  const auto db = openMemory();
  for (const auto& [expression, number] : table) {
    EXPECT_EQ(failureNumber(*db, std::string("SELECT ") + expression), number) << expression;
  }
}

TEST(Functions, OfTextsCountCharactersAndNotBytes) {
  expectValues({
      {"LEN('abc  '), LEN(''), LEN(N'\xF0\x9F\x98\x80'), LEN(NULL)", "3|0|2|NULL"},
      {"LEFT('è vero', 2), LEFT('abc', 9), RIGHT('è', 5), RIGHT('perché', 2)", "è |abc|è|hé"},
      {"SUBSTRING('perché', 2, 3), SUBSTRING('abc', 0, 2), SUBSTRING('abc', 9, 1)", "erc|a|"},
      {"UPPER('perché'), LOWER('PERCHÉ')", "PERCHÉ|perché"},
      {"'[' + LTRIM('  a ') + ']', '[' + RTRIM(' a  ') + ']', '[' + TRIM(' a ') + ']', LTRIM('  ')",
       "[a ]|[ a]|[a]|"},
      {"REPLACE('aXbxc', 'x', '-'), REPLACE('abc', '', 'z'), REPLACE('ÀaÀ', 'à', 'o')",
       "a-b-c|abc|oao"},
      {"CHARINDEX('B', 'aab'), CHARINDEX('z', 'abc'), CHARINDEX('a', 'banana', 3), CHARINDEX('', "
       "'a')",
       "3|0|4|0"},
      {"REPLICATE('ab', 3), REPLICATE('a', -1), SPACE(2) + '.', SPACE(-1)", "ababab|NULL|  .|NULL"},
      {"REVERSE('perché'), CONCAT('a', NULL, 5, 'b')", "éhcrep|a5b"},
      {"CHAR(65), CHAR(233), CHAR(300), ASCII('A'), ASCII('è'), ASCII('')", "A|é|NULL|65|232|NULL"},
      {"CASE WHEN 'abc ' LIKE 'abc' THEN 1 ELSE 0 END, CASE WHEN N'abc ' LIKE 'abc' THEN 1 ELSE 0 "
       "END",
       "1|0"},
      {"CASE WHEN '5%' LIKE '5!%' ESCAPE '!' THEN 1 END, CASE WHEN 12 NOT LIKE '1_' THEN 1 END",
       "1|NULL"},
  });
  expectRefusals({{"LEFT('a', -1)", 537},
                  {"RIGHT('a', -1)", 536},
                  {"SUBSTRING('a', 1, -1)", 537},
                  {"REPLICATE('a', 9000)", 0},
                  {"CHAR(130)", 0},
                  {"ASCII(N'€')", 0},
                  {"LEN()", 174},
                  {"SUBSTRING('a', 1)", 174},
                  {"CASE WHEN 'a' LIKE 'a' ESCAPE '!!' THEN 1 END", 506},
                  {"NIENTE(1)", 0}});
}

TEST(Functions, OfDatesKeepToTheCalendar) {
  expectValues({
      {"DATEPART(year, '20240307'), DATEPART(quarter, '20240307'), DATEPART(mm, '20240307'), "
       "DATEPART(dd, '20240307'), DATEPART(dayofyear, '20240301')",
       "2024|1|3|7|61"},
      {"DATEPART(hour, '20240307 13:05:09.120'), DATEPART(mi, '20240307 13:05:09.120'), "
       "DATEPART(ss, '20240307 13:05:09.120'), DATEPART(ms, '20240307 13:05:09.120')",
       "13|5|9|120"},
      {"DATEADD(year, -1, '20240229'), DATEADD(month, 13, '20230131'), DATEADD(quarter, 1, "
       "'20231231')",
       "28/02/2023|29/02/2024|31/03/2024"},
      {"DATEADD(day, -1, '20240101'), DATEADD(hour, -1, '20240101'), DATEADD(second, 90, "
       "'20240101')",
       "31/12/2023|31/12/2023 23:00:00|01/01/2024 00:01:30"},
      {"DATEDIFF(year, '20231231', '20240101'), DATEDIFF(month, '20240131', '20231201'), "
       "DATEDIFF(day, '20240101 23:00', '20240102 01:00'), DATEDIFF(minute, '20240101', "
       "'20240102')",
       "1|-1|1|1440"},
      {"YEAR(NULL), DATEADD(day, NULL, '20240101'), DATEDIFF(day, NULL, '20240101')",
       "NULL|NULL|NULL"},
      {"CONVERT(VARCHAR(10), CAST('20240307' AS DATETIME), 103), CAST(CAST('20240307' AS DATE) AS "
       "VARCHAR(30)), CONVERT(CHAR(8), CAST('20240307' AS DATE), 112)",
       "07/03/2024|2024-03-07|20240307"},
      {"CASE WHEN GETDATE() > '20200101' THEN 1 END", "1"},
      {"CAST(2 AS DATETIME), CAST('20240307 10:00' AS SMALLDATETIME)",
       "03/01/1900|07/03/2024 10:00:00"},
      {"YEAR(1.5), DATEPART(hour, 1.75), DATEADD(day, 1, 0.5)", "1900|18|02/01/1900 12:00:00"},
  });
  expectRefusals({{"DATEADD(day, 4000000, '20240101')", 517},
                  {"DATEADD(year, 9000, '20240101')", 517},
                  {"DATEDIFF(ms, '20000101', '20240101')", 535},
                  {"DATEPART(week, '20240101')", 0},
                  {"CONVERT(VARCHAR(9), GETDATE(), 999)", 0},
                  {"CAST(GETDATE() AS INT)", 0},
                  {"CONVERT(VARCHAR(9), GETDATE(), 130)", 0},
                  {"CONVERT(VARCHAR(9), GETDATE(), 104)", 0},
                  {"CONVERT(VARCHAR(9), GETDATE(), 4294967399)", 0},
                  {"CAST('20240101 10:00:00.1234' AS DATETIME)", 241},
                  {"CAST('20240101 10:00:00.1234' AS DATETIME2(3))", 0},
                  {"CAST(1.5 AS DATE)", 206}});
}

TEST(Functions, OfNumbersAreExactAndPassNullOn) {
  expectValues({
      {"ABS(-5), ABS(-1.50), ABS(CAST(-2.5 AS FLOAT)), -CAST(12345678901234567890.5 AS DECIMAL(30, "
       "1))",
       "5|1.50|2.5|-12345678901234567890.5"},
      {"ISNULL(NULL, 5), COALESCE(NULL, NULL, 1.5), NULLIF(1, 1), NULLIF('a', 'b'), IIF(1 = 1, 2, "
       "3)",
       "5|1.5|NULL|a|2"},
      {"CAST(10 AS FLOAT) / 4, CAST(1 AS FLOAT) + 2, 1.5 * 2, 12345678901234567890.0 * 10, 1.25 - "
       "1",
       "2.5|3|3.0|123456789012345678900.0|0.25"},
      {"CAST(12345678901234567890 AS DECIMAL(38, 2)) - 0.5, 9 % 4, CAST(9 AS BIGINT) / 2",
       "12345678901234567889.50|1|4"},
      {"CAST('1' AS BIT), CAST('true' AS BIT), CAST(0.5 AS BIT), CAST(2.7 AS INT), CAST('7' AS "
       "TINYINT)",
       "True|True|True|2|7"},
      // As a double, 1.255 lies a little below the half.
      {"CAST(1.255 AS DECIMAL(5, 2)), CAST(CAST(1.255 AS FLOAT) AS DECIMAL(5, 2)), CAST('1e3' AS "
       "FLOAT), CAST(1.5 AS REAL)",
       "1.26|1.25|1000|1.5"},
      {"CAST(123456 AS VARCHAR(3)), CAST('abcdef' AS CHAR(3)) + '|', CAST(1.5 AS VARCHAR(9))",
       "*|abc||1.5"},
      {"SUM(X), AVG(X), MIN(X), MAX(X), COUNT(X), COUNT_BIG(*) FROM (SELECT 1 AS X UNION ALL "
       "SELECT "
       "4 UNION ALL SELECT NULL) AS T",
       "5|2|1|4|2|3"},
      {"SUM(X), AVG(X) FROM (SELECT CAST(1.5 AS FLOAT) AS X UNION ALL SELECT 2.5) AS T", "4|2"},
      {"SUM(X), AVG(X) FROM (SELECT 1 AS X) AS T WHERE X > 1", "NULL|NULL"},
      {"SUM(X) FROM (SELECT 1.25 AS X UNION ALL SELECT 2.75) AS T", "4.00"},
  });
  expectRefusals({{"CAST(9223372036854775807 AS BIGINT) + 1", 8115},
                  {"CAST(-9223372036854775808 AS BIGINT) / -1", 8115},
                  {"CAST(1e300 AS FLOAT) * 1e300", 8115},
                  {"CAST(1 AS FLOAT) / 0", 8134},
                  {"CAST(1e30 AS INT)", 232},
                  {"CAST(1e39 AS DECIMAL(38, 0))", 8115},
                  {"CAST(1e300 AS REAL)", 8115},
                  {"1e400", 168},
                  {"CAST('x' AS BIT)", 245},
                  {"CAST('x' AS BIGINT)", 8114},
                  {"CAST('99999999999999999999' AS BIGINT)", 8115},
                  {"CAST('x' AS FLOAT)", 8114},
                  {"CAST('300' AS TINYINT)", 244},
                  {"CAST(123456 AS NVARCHAR(3))", 8115},
                  {"CAST(123.45 AS VARCHAR(3))", 8115},
                  {"12345678901234567890123456789012345678 * 10.0", 0},
                  {"SUM(SUM(1))", 130},
                  {"COALESCE(NULL, NULL)", 4127},
                  {"CASE WHEN 1 = 1 THEN NULL END", 8133}});
}

TEST(Routines, RunWithTheirArguments) {
  const auto db = openMemory();
  db->run(
      "CREATE TABLE T (A INT NOT NULL PRIMARY KEY, B VARCHAR(5) NULL) "
      "INSERT INTO T VALUES (1, 'x'), (2, 'y')");
  db->run(
      "CREATE FUNCTION F (@A INT, @B VARCHAR(5)) RETURNS TABLE AS RETURN "
      "(SELECT A, B, A * 10 AS C, @B AS D FROM T WHERE A = @A)");
  EXPECT_EQ(rows(*db, "SELECT * FROM F(2, 'long text')"), "2|y|20|long ");
  EXPECT_EQ(rows(*db,
                 "SELECT N.X, F.* FROM (SELECT 1 AS X UNION SELECT 3) AS N OUTER APPLY "
                 "dbo.F(N.X, 'z') AS F ORDER BY N.X"),
            "1|1|x|10|z;3|NULL|NULL|NULL|NULL");
  EXPECT_EQ(rows(*db, "SELECT T.A, F.C FROM T CROSS APPLY F(T.A, NULL) AS F WHERE T.B = F.B"),
            "1|10;2|20");
  EXPECT_EQ(failureNumber(*db, "SELECT * FROM F(1)"), 313);
  EXPECT_EQ(failureNumber(*db, "SELECT * FROM F(1, 'a', 2)"), 8144);
  EXPECT_EQ(failureNumber(*db, "SELECT * FROM G(1)"), 208);
  db->run(
      "CREATE PROCEDURE P @A INT = 5, @B VARCHAR(9) = 'd' OUTPUT AS BEGIN "
      "IF @A > 9 RETURN WHILE @A < 8 BEGIN SET @A = @A + 1 IF @A = 7 BREAK CONTINUE END "
      "SET @B = @B + CAST(@A AS VARCHAR(9)) SELECT @A, @B END");
  EXPECT_EQ(rows(*db, "EXEC P"), "7|d7");
  EXPECT_EQ(rows(*db, "DECLARE @X VARCHAR(9) = 'o' EXEC dbo.P @B = @X OUTPUT, @A = 8 SELECT @X"),
            "8|o8#o8");
  EXPECT_EQ(rows(*db, "EXEC P 10"), "");
  EXPECT_EQ(failureNumber(*db, "EXEC P @Z = 1"), 8145);
  EXPECT_EQ(failureNumber(*db, "EXEC P 1, 'a', 2"), 8144);
  EXPECT_EQ(failureNumber(*db, "EXEC P 'x'"), 8114);
  EXPECT_EQ(failureNumber(*db, "DECLARE @X INT EXEC P @X OUTPUT"), 8162);
}

TEST(Routines, AreCalledByCommands) {
  const auto db = openExample();
  const auto command = db->newCommand();
  EXPECT_THROW(static_cast<void>(command->parameters().count()), Error);
  command->setActiveConnection(db);
  command->setCommandText("PC_GetDitteCollegate");
  command->setCommandType(CommandOption::StoredProcedure);
  command->setCommandTimeout(0);
  command->setPrepared(true);
  EXPECT_EQ(command->parameters().count(), 9U);
  EXPECT_EQ(command->parameters().item(std::size_t{8}).name(), "@DitteCollegate");
  EXPECT_EQ(command->parameters().item("@dittecollegate").direction(),
            ParameterDirection::InputOutput);
  EXPECT_THROW(static_cast<void>(command->parameters().item("@Niente")), Error);
  EXPECT_THROW(static_cast<void>(command->parameters().item(std::size_t{9})), Error);
  std::int64_t affected = 0;
  EXPECT_THROW(command->execute(affected, CommandOption::StoredProcedure), Error);
  EXPECT_EQ(db->errors().item(0).nativeNumber, 201);
  command->parameters().item("@codiceditta").setValue(std::int32_t{12});
  command->parameters().item("@DataInizioElaborazione").setValue(*Date::of(2024, 1, 1));
  command->parameters().item("@EscludiDittaPrincipale").setValue(std::int16_t{1});
  command->parameters().item("@CodSede").setValue(kNull);
  const auto companies = command->execute(affected, CommandOption::Unspecified);
  EXPECT_EQ(companies->recordCount(), 3);
  EXPECT_EQ(command->parameters().item("@DitteCollegate").value(), Variant("5, 12, 15"));
  command->setActiveConnection(nullptr);
  EXPECT_EQ(companies->fields().item("DITTA").value(), Variant(std::int32_t{5}));
  command->setActiveConnection(db);
  command->setCommandText("Niente");
  EXPECT_THROW(static_cast<void>(command->parameters().count()), Error);
  EXPECT_EQ(db->errors().item(0).nativeNumber, 2812);
  EXPECT_THROW(db->execute("PC_GetDitteCollegate", affected, CommandOption::Text), Error);
  EXPECT_EQ(db->errors().item(0).nativeNumber, 201);
}

TEST(Connections, KeepTheirPromises) {
  const auto db = newConnectionWith({});
  EXPECT_FALSE(db->isOpen());
  EXPECT_THROW(db->run("SELECT 1"), Error);
  EXPECT_THROW(db->close(), Error);
  EXPECT_THROW(db->open("", "", CommandOption::Unspecified), Error);
  EXPECT_EQ(db->errors().count(), 0U);
  db->setConnectionString("Provider=embedded;Data Source=:memory:");
  db->setCursorLocation(CursorLocation::Client);
  db->open("", "", CommandOption::Unspecified);
  EXPECT_THROW(db->open("", "", CommandOption::Unspecified), Error);
  EXPECT_EQ(db->connectionString(), "Provider=embedded;Data Source=:memory:");
  EXPECT_THROW(db->commitTrans(), Error);
  EXPECT_THROW(db->rollbackTrans(), Error);
  db->beginTrans();
  EXPECT_THROW(db->beginTrans(), Error);
  EXPECT_EQ(db->errors().count(), 1U);
  db->run("CREATE TABLE T (A INT NOT NULL PRIMARY KEY) INSERT INTO T VALUES (1)");
  EXPECT_EQ(failureNumber(*db, "INSERT INTO T VALUES (2), (1)"), 2627);
  EXPECT_EQ(rows(*db, "SELECT A, @@TRANCOUNT FROM T"), "1|1");
  db->commitTrans();
  EXPECT_EQ(rows(*db, "BEGIN TRAN DELETE FROM T ROLLBACK SELECT @@TRANCOUNT, COUNT(*) FROM T"),
            "0|1");
  EXPECT_EQ(failureNumber(*db, "COMMIT"), 3902);
  std::int64_t affected = 7;
  EXPECT_EQ(db->execute("SET NOCOUNT ON UPDATE T SET A = 2", affected, CommandOption::Text),
            nullptr);
  EXPECT_EQ(affected, -1);
  db->execute("UPDATE T SET A = 3 UPDATE T SET A = 4", affected, CommandOption::Text);
  EXPECT_EQ(affected, 2);
  const auto both = db->execute("SELECT A FROM T;SELECT @@ROWCOUNT", affected, CommandOption::Text);
  EXPECT_EQ(both->nextRecordset()->fields().item(std::size_t{0}).value(), Variant(std::int32_t{1}));
  db->close();
  EXPECT_FALSE(db->isOpen());
}

TEST(Batches, KeepTheirVariablesApart) {
  const auto db = openMemory();
  db->run("CREATE TABLE T (A INT IDENTITY(10, 1) NOT NULL, B INT CONSTRAINT DF DEFAULT (7))");
  EXPECT_EQ(rows(*db, "INSERT INTO T DEFAULT VALUES SELECT SCOPE_IDENTITY(), @@IDENTITY"), "10|10");
  EXPECT_EQ(rows(*db,
                 "INSERT INTO T (B) SELECT X FROM (SELECT 3 AS X UNION SELECT 1) AS S "
                 "INSERT INTO T (B) VALUES (DEFAULT), (NULL) SELECT * FROM T ORDER BY A"),
            "10|7;11|1;12|3;13|7;14|NULL");
  EXPECT_EQ(rows(*db,
                 "DECLARE @S VARCHAR(99) = '' SELECT @S = @S + CAST(A AS VARCHAR(9)) + ',' "
                 "FROM T WHERE B > 1 SELECT @S"),
            "10,12,13,");
  EXPECT_EQ(rows(*db,
                 "DECLARE @A INT = 1, @B INT SELECT @B = A FROM T WHERE A = 99 "
                 "SELECT @A, @B, @@ROWCOUNT"),
            "1|NULL|0");
  EXPECT_EQ(rows(*db, "DECLARE @N INT = 2 SELECT TOP (@N) A FROM T ORDER BY A DESC"), "14;13");
  EXPECT_EQ(failureNumber(*db, "DECLARE @N INT = -1 SELECT TOP (@N) A FROM T"), 1060);
  EXPECT_EQ(failureNumber(*db, "DECLARE @N INT SELECT @N = 1, A FROM T"), 141);
  EXPECT_EQ(failureNumber(*db, "IF EXISTS (SELECT 1 FROM NIENTE) SELECT 1 ELSE SELECT 2"), 208);
}

}  // namespace
}  // namespace azcoll::embedded::test
