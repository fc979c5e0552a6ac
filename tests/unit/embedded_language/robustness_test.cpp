#include <chrono>
#include <random>

#include "unit/embedded_language/support.h"

// Malformed and hostile texts: a clean error in bounded time, and a connection that goes on.
namespace azcoll::test {
namespace {

std::string repeated(std::string_view part, std::size_t times) {
  std::string text;
  text.reserve(part.size() * times);
  for (std::size_t i = 0; i < times; ++i) {
    text += part;
  }
  return text;
}

class Hostile : public testing::Test {
 protected:
  void SetUp() override {
    run(db(), "CREATE TABLE T (ID INT NOT NULL PRIMARY KEY, V NVARCHAR(MAX) NULL)");
    run(db(), "INSERT INTO T (ID, V) VALUES (1, 'x')");
  }
  void TearDown() override { EXPECT_EQ(lines(db(), "SELECT ID FROM T"), Lines{"1"}); }

  Connection& db() { return *connection_; }

  std::shared_ptr<Command> command(const std::string& name) {
    const auto result = connection_->newCommand();
    result->setActiveConnection(connection_);
    result->setCommandText(name);
    result->setCommandType(CommandOption::StoredProcedure);
    return result;
  }

  /// A refusal by the provider, or rows; anything else ends the test.
  void tryOut(const std::string& text) {
    try {
      run(db(), text);
    } catch (const Error& error) {
      EXPECT_TRUE(error.fromProvider()) << text.substr(0, 200);
      EXPECT_NE(error.description(), "") << text.substr(0, 200);
      EXPECT_EQ(error.description().find("Errore interno"), std::string::npos)
          << text.substr(0, 500) << "\n"
          << error.description();
    }
  }

 private:
  std::shared_ptr<Connection> connection_ = openMemory();
};

TEST_F(Hostile, MalformedUtf8IsRefused) {
  for (const char* text :
       {"SELECT 'a\xC3'", "SELECT '\xFF\xFE'", "SELECT \x80 FROM T", "SELECT '\xED\xA0\x80'",
        "SELECT '\xF4\x90\x80\x80'", "SELECT '\xC0\x80'", "\xEF\xBB",
        "INSERT INTO T (ID, V) VALUES "
        "(2, N'\xE8')"}) {
    const Error error = failureOf([&] { run(db(), text); });
    EXPECT_TRUE(error.fromProvider()) << text;
    EXPECT_EQ(error.info().nativeNumber, 0) << error.description();
  }
}

TEST_F(Hostile, MalformedUtf8InParametersIsRefused) {
  run(db(), "CREATE PROCEDURE P @A NVARCHAR(10) AS SELECT @A AS A");
  const auto call = command("P");
  call->parameters().item("@A").setValue("a\xE8");
  std::int64_t affected = 0;
  EXPECT_THROW(call->execute(affected, CommandOption::Unspecified), Error);
}

TEST_F(Hostile, ZeroBytesDoNotCutTheText) {
  const std::string text("SELECT 'a\0b'", 12);
  const std::string behind("SELECT ID FROM T\0 WHERE ID = 99", 31);
  tryOut(text);
  try {
    const auto rows = run(db(), behind);
    EXPECT_EQ(rows, nullptr) << "the text behind a zero byte was dropped";
  } catch (const Error& error) {
    EXPECT_TRUE(error.fromProvider());
  }
  try {
    EXPECT_EQ(value(db(), text), Variant(std::string("a\0b", 3)));
  } catch (const Error& error) {
    EXPECT_TRUE(error.fromProvider());
  }
}

TEST_F(Hostile, DeepNestingIsRefused) {
  constexpr std::size_t kDeep = 10000;
  for (const std::string& text :
       {"SELECT " + repeated("(", kDeep) + "1" + repeated(")", kDeep),
        "SELECT " + repeated("(SELECT ", kDeep) + "1" + repeated(")", kDeep),
        "SELECT * FROM " + repeated("(SELECT * FROM ", kDeep) + "T" + repeated(") AS X", kDeep),
        "SELECT " + repeated("CASE WHEN 1 = 1 THEN ", kDeep) + "1" + repeated(" END", kDeep),
        "SELECT ID FROM T WHERE " + repeated("NOT ", kDeep) + "ID = 1",
        "SELECT ID FROM T WHERE " + repeated("ID IN (SELECT ID FROM T WHERE ", kDeep) + "1 = 1" +
            repeated(")", kDeep),
        "SELECT " + repeated("ISNULL(", kDeep) + "1" + repeated(", 1)", kDeep),
        repeated("IF 1 = 1 ", kDeep) + "SELECT 1", repeated("BEGIN ", kDeep)}) {
    EXPECT_EQ(failureNumber(db(), text), 191) << text.substr(0, 60);
  }
}

TEST_F(Hostile, DeepestNestingOfTheLanguageIsRunOrRefusedCleanly) {
  for (const std::size_t depth : {20U, 60U, 100U, 150U, 199U}) {
    for (const auto& [open, core, close] :
         {std::tuple{"(", "1", ")"}, std::tuple{"(SELECT ", "1", ")"},
          std::tuple{"CASE WHEN 1 = 1 THEN ", "1", " END"}, std::tuple{"ISNULL(", "1", ", 1)"},
          std::tuple{"CAST(", "1", " AS INT)"}, std::tuple{"UPPER(", "'a'", ")"}}) {
      tryOut("SELECT " + repeated(open, depth) + core + repeated(close, depth));
    }
    tryOut("SELECT * FROM " + repeated("(SELECT * FROM ", depth) + "T" + repeated(") AS X", depth));
    tryOut("SELECT ID FROM T WHERE " + repeated("EXISTS (SELECT 1 FROM T WHERE ", depth) + "1 = 1" +
           repeated(")", depth));
    tryOut("SELECT ID FROM T WHERE " + repeated("ID IN (SELECT ID FROM T WHERE ", depth) + "1 = 1" +
           repeated(")", depth));
    tryOut(repeated("IF 1 = 1 ", depth) + "SELECT 1");
  }
}

TEST_F(Hostile, LongChainsAreRunOrRefusedCleanly) {
  for (const std::size_t length : {100U, 500U, 1000U, 5000U}) {
    tryOut("SELECT 1" + repeated(" + 1", length));
    tryOut("SELECT 'a'" + repeated(" + 'b'", length));
    tryOut("SELECT ID FROM T WHERE ID = 1" + repeated(" OR ID = 2", length));
    tryOut("SELECT ID FROM T WHERE ID = 1" + repeated(" AND V = 'x'", length));
    tryOut("SELECT 1" + repeated(" UNION SELECT 1", length));
    tryOut("SELECT 1" + repeated(" UNION ALL SELECT 1", length));
    tryOut("SELECT ID FROM T WHERE ID IN (1" + repeated(", 2", length) + ")");
    tryOut("SELECT CASE ID " + repeated("WHEN 5 THEN 6 ", length) + "END FROM T");
    tryOut("SELECT 1" + repeated(", 1", length));
    tryOut("SELECT COALESCE(NULL" + repeated(", 1", length) + ")");
    std::string joins = "SELECT COUNT(*) FROM T AS T0";
    for (std::size_t i = 1; i < length / 10; ++i) {
      joins += " INNER JOIN T AS T" + std::to_string(i) + " ON T" + std::to_string(i) + ".ID = 1";
    }
    tryOut(joins);
  }
}

TEST_F(Hostile, LongListsGiveTheRightRows) {
  std::string list = "1";
  for (int i = 1000; i < 6000; ++i) {
    list += ", " + std::to_string(i);
  }
  EXPECT_EQ(lines(db(), "SELECT ID FROM T WHERE ID IN (" + list + ")"), Lines{"1"});
  EXPECT_EQ(lines(db(), "SELECT COUNT(*) FROM T WHERE ID NOT IN (" + list + ")"), Lines{"0"});
}

TEST_F(Hostile, ManyRowsOfValues) {
  std::string text = "DECLARE @T TABLE (A INT) INSERT INTO @T VALUES (0)";
  for (int i = 1; i < 1000; ++i) {
    text += ", (" + std::to_string(i) + ")";
  }
  EXPECT_EQ(lines(db(), text + " SELECT COUNT(*), MAX(A) FROM @T"), Lines{"1000|999"});
}

TEST_F(Hostile, TenMegabytesAreReadInBoundedTime) {
  const auto start = std::chrono::steady_clock::now();
  const std::string large(10'000'000, 'x');
  EXPECT_EQ(value(db(), "SELECT '" + large + "'").text().size(), large.size());
  run(db(), "UPDATE T SET V = '" + large + "'");
  EXPECT_EQ(lines(db(), "SELECT LEN(V) FROM T"), Lines{"10000000"});
  run(db(), "UPDATE T SET V = 'x'");
  EXPECT_EQ(lines(db(), "SELECT 1 " + std::string(10'000'000, ' ')), Lines{"1"});
  EXPECT_EQ(failureNumber(db(), "SELECT '" + large), 105);
  EXPECT_EQ(failureNumber(db(), "SELECT " + large), 103);
  tryOut(repeated("SELECT 1 ", 100'000));
  tryOut("SELECT ID FROM T WHERE ID IN (1" + repeated(", 2", 200'000) + ")");
  tryOut("SELECT " + repeated("a, ", 1'000'000) + "b");
  tryOut("INSERT INTO T (ID) VALUES (1)" + repeated(", (1)", 200'000));
  const auto seconds =
      std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start);
  EXPECT_LT(seconds.count(), 120);
}

TEST_F(Hostile, StatementsEndAfterTheCommandTimeout) {
  run(db(), "CREATE TABLE N (A INT NOT NULL PRIMARY KEY)");
  std::string values = "(0)";
  for (int i = 1; i < 200; ++i) {
    values += ", (" + std::to_string(i) + ")";
  }
  run(db(), "INSERT INTO N VALUES " + values);
  db().setCommandTimeout(1);
  for (const char* text :
       {"SELECT COUNT(*) FROM N A, N B, N C, N D, N E WHERE A.A + B.A + C.A + D.A + E.A < 0",
        "DECLARE @A INT = 0 WHILE 1 = 1 SET @A = 1", "WHILE 1 = 1 UPDATE N SET A = A WHERE A = 0",
        "DECLARE @A INT = 0 WHILE @A = 0 BEGIN IF @A = 1 BREAK END",
        "UPDATE N SET A = (SELECT COUNT(*) FROM N A, N B, N C, N D, N E WHERE A.A + B.A + C.A + "
        "D.A + E.A < 0)"}) {
    const auto start = std::chrono::steady_clock::now();
    const Error error = failureOf([&] { run(db(), text); });
    EXPECT_TRUE(error.fromProvider()) << text;
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds{20}) << text;
  }
  EXPECT_EQ(lines(db(), "SELECT COUNT(*), MAX(A) FROM N"), Lines{"200|199"});
  EXPECT_NO_THROW(db().beginTrans());
  db().rollbackTrans();
}

TEST_F(Hostile, ChecksAreKeptOrRefused) {
  try {
    run(db(), "CREATE TABLE K (A INT NULL, CONSTRAINT CK_K CHECK (A > 0 AND A <= 10))");
  } catch (const Error& error) {
    EXPECT_EQ(error.info().nativeNumber, 0) << error.description();
    return;
  }
  run(db(), "INSERT INTO K VALUES (1), (NULL)");
  const Error error = failureOf([&] { run(db(), "INSERT INTO K VALUES (11)"); });
  EXPECT_EQ(error.info().nativeNumber, 547);
  EXPECT_TRUE(error.description().starts_with(
      "The INSERT statement conflicted with the CHECK constraint \"CK_K\"."))
      << error.description();
  EXPECT_EQ(failureNumber(db(), "UPDATE K SET A = 0 WHERE A = 1"), 547);
  EXPECT_EQ(lines(db(), "SELECT A FROM K ORDER BY A"), (Lines{"NULL", "1"}));
}

TEST_F(Hostile, EmptyTextsGiveNothing) {
  EXPECT_EQ(run(db(), ""), nullptr);
  EXPECT_EQ(run(db(), " \r\n\t "), nullptr);
  EXPECT_EQ(run(db(), "-- nothing"), nullptr);
  EXPECT_EQ(run(db(), "/* nothing */;;"), nullptr);
}

TEST_F(Hostile, NamesOfTheEngineBehindAreNotReached) {
  for (const char* text : {"PRAGMA journal_mode",
                           "ATTACH DATABASE 'x' AS y",
                           "VACUUM",
                           "SELECT * FROM pragma_table_info('T')",
                           "SELECT json_each(1)",
                           "SELECT * FROM json_each('[1]')",
                           "SELECT printf('%d', 1)",
                           "SELECT ID FROM T LIMIT 1",
                           "SELECT ID FROM T WHERE V GLOB '*'",
                           "SELECT ID FROM T WHERE V REGEXP 'x'",

                           "REPLACE INTO T (ID) VALUES (1)",
                           "INSERT OR REPLACE INTO T (ID) VALUES (1)",
                           "SELECT 'a' || 'b'",
                           "SELECT ID FROM T WHERE ID IS 1",
                           "SELECT randomblob(9)",
                           "SELECT ts_div(1, 0)",
                           "CREATE TEMP TABLE X (A INT)",
                           "SELECT ID FROM T INDEXED BY X",
                           "SELECT ID FROM main.T.T.T",
                           "SELECT 1 FROM T NATURAL JOIN T",
                           "SELECT x'00'",
                           "EXPLAIN SELECT 1",
                           "SAVEPOINT a"}) {
    EXPECT_THROW(run(db(), text), Error) << text;
  }
}

TEST_F(Hostile, RandomTokensAreRunOrRefusedCleanly) {
  static const std::vector<std::string> kPieces = {
      "SELECT",  "FROM",   "WHERE",    "T",      "ID",    "V",      "(",    ")",    ",",
      ".",       "*",      "=",        "<>",     "1",     "2.5",    "1E",   "'x'",  "N'y'",
      "[V]",     "AND",    "OR",       "NOT",    "IN",    "LIKE",   "NULL", "IS",   "CASE",
      "WHEN",    "THEN",   "ELSE",     "END",    "UNION", "ALL",    "JOIN", "LEFT", "ON",
      "GROUP",   "BY",     "ORDER",    "MAX",    "COUNT", "ISNULL", "CAST", "AS",   "INT",
      "EXISTS",  "TOP",    "WITH",     "NOLOCK", "@v",    "-",      "+",    "/",    "%",
      "BETWEEN", "HAVING", "DISTINCT", "''",     "A",     "B",      "T.ID", "A.V",  "DESC"};
  std::mt19937 random{20240607};
  for (int i = 0; i < 20000; ++i) {
    std::string text = "SELECT ";
    const auto length = random() % 25;
    for (std::size_t piece = 0; piece < length; ++piece) {
      text += kPieces[random() % kPieces.size()];
      text += ' ';
    }
    tryOut(text);
  }
}

TEST_F(Hostile, CutStatementsAreRunOrRefusedCleanly) {
  const std::string text =
      "DECLARE @v INT = 1 SELECT TOP 2 A.ID AS 'x', CASE WHEN A.V LIKE N'%x' THEN ISNULL(A.V, '') "
      "ELSE NULL END, CAST(1.5 AS DECIMAL(9, 2)) + 2 FROM T AS A WITH(NOLOCK) LEFT OUTER JOIN "
      "(SELECT "
      "MAX(ID) AS M FROM T GROUP BY V HAVING COUNT(*) > 0) AS B ON A.ID = B.M WHERE A.ID IN(1, 2) "
      "AND "
      "NOT EXISTS (SELECT 1 FROM T WHERE ID = @v + 1) UNION ALL SELECT 1, 'a', 2 ORDER BY 1 DESC";
  for (std::size_t end = 0; end <= text.size(); ++end) {
    tryOut(text.substr(0, end));
  }
  for (std::size_t start = 0; start < text.size(); start += 3) {
    for (std::size_t length = 1; length < 20; length += 6) {
      std::string cut = text;
      cut.erase(start, length);
      tryOut(cut);
    }
  }
}

}  // namespace
}  // namespace azcoll::test
