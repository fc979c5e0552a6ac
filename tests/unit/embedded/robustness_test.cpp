// Hostile texts, large ones, files of others, processes that die.

#include <csignal>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

#include "gtest/gtest.h"

#include "engine_fixture.h"
#include "support/scratch_folder.h"

namespace azcoll::embedded::test {
namespace {

/// A database file that goes with the test.
class File {
 public:
  [[nodiscard]] std::shared_ptr<EmbeddedConnection> open(const std::string& more = "") const {
    auto connection = newConnectionWith({});
    connection->setConnectionString("Provider=embedded;Data Source=" + path_ + ";" + more);
    connection->open("", "", CommandOption::Unspecified);
    return connection;
  }
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  azcoll::test::ScratchFolder folder_;
  std::string path_ = folder_.file("prova.db");
};

std::string openFailure(const File& file, const std::string& more = "") {
  try {
    static_cast<void>(file.open(more));
  } catch (const Error& error) {
    return error.description();
  }
  return "";
}

TEST(Robustness, LargeTextsRun) {
  const auto db = openMemory();
  db->run("CREATE TABLE T (A NVARCHAR(MAX) NULL)");
  const std::string large(10'000'000, 'x');
  db->run("INSERT INTO T VALUES (N'" + large + "')");
  EXPECT_EQ(rows(*db, "SELECT LEN(A) FROM T"), "10000000");
  std::string list = "SELECT 1 WHERE 70000 IN (0";
  for (int i = 1; i <= 70000; ++i) {
    list += "," + std::to_string(i);
  }
  EXPECT_EQ(rows(*db, list + ")"), "1");
}

TEST(Robustness, DeepAndLongTextsAreRefused) {
  const auto db = openMemory();
  db->run("CREATE TABLE T (A INT NULL)");
  const auto repeated = [](const std::string& text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
      all += text;
    }
    return all;
  };
  EXPECT_EQ(failureNumber(*db, "SELECT " + repeated("(", 100000) + "1"), 191);
  EXPECT_EQ(failureNumber(*db, "SELECT " + repeated("1 + ", 100000) + "1"), 191);
  // Within the parser's limits, but beyond SQLite's: refused or right, never anything else.
  const auto refusedOr = [&db](const std::string& text, const std::string& expected) {
    std::string result;
    try {
      result = show(db->run(text));
    } catch (const Error& error) {
      EXPECT_EQ(error.info().nativeNumber, 8623) << error.description();
      return;
    }
    EXPECT_EQ(result, expected);
  };
  refusedOr("SELECT " + repeated("1 + ", 990) + "1", "991");
  refusedOr("SELECT COUNT(*) FROM T WHERE " + repeated("A = 1 OR ", 990) + "A = 1", "0");
  refusedOr(repeated("SELECT 1 UNION ALL ", 900) + "SELECT 1", repeated("1;", 900) + "1");
  refusedOr("SELECT " + repeated("(SELECT ", 60) + "1" + repeated(")", 60), "1");
  refusedOr(
      "SELECT COUNT(*) FROM T" +
          [] {
            std::string joins;
            for (int i = 0; i < 80; ++i) {
              joins += " CROSS JOIN T AS A" + std::to_string(i);
            }
            return joins;
          }(),
      "0");
}

TEST(Robustness, MalformedTextsAreRefused) {
  const auto db = openMemory();
  for (const std::string& text :
       {std::string("SELECT '\xff'"), std::string("SELECT '\xc3"), std::string("\xed\xa0\x80"),
        std::string("SELECT 1\0", 9), std::string("'"), std::string("/*"), std::string("[")}) {
    EXPECT_NE(failure(*db, text), "no error");
  }
  EXPECT_EQ(rows(*db, std::string("SELECT LEN('a\0b')", 17)), "3");
  EXPECT_EQ(rows(*db, ""), "");
  EXPECT_EQ(rows(*db, "-- nothing"), "");
}

TEST(Robustness, EndlessStatementsAreBrokenOff) {
  const auto db = openMemory();
  db->setCommandTimeout(1);
  EXPECT_EQ(failure(*db, "DECLARE @i INT = 1 WHILE @i = 1 SET @i = 1"), "-2 Query timeout expired");
  std::string values = "(0)";
  for (int i = 1; i < 100; ++i) {
    values += ",(" + std::to_string(i) + ")";
  }
  db->run("CREATE TABLE T (A INT) INSERT INTO T VALUES " + values);
  EXPECT_EQ(failureNumber(*db,
                          "SELECT COUNT(*) FROM T A CROSS JOIN T B CROSS JOIN T C CROSS JOIN "
                          "T D CROSS JOIN T E CROSS JOIN T F"),
            -2);
  EXPECT_EQ(rows(*db, "SELECT COUNT(*) FROM T"), "100");
}

/// SQLite undoes the whole transaction when it breaks off a statement that writes.
class UndoneTransaction : public testing::Test {
 protected:
  void SetUp() override {
    db_->run("CREATE TABLE N (A INT) INSERT INTO N VALUES (1), (2), (3), (4), (5), (6), (7), (8)");
    db_->run("CREATE TABLE T (A INT)");
    db_->setCommandTimeout(1);
    db_->beginTrans();
    db_->run("INSERT INTO T VALUES (1) CREATE TABLE S (A INT)");
    EXPECT_EQ(failureNumber(*db_,
                            "INSERT INTO T SELECT 1 FROM N A, N B, N C, N D, N E, N F, N G, N H, "
                            "N I, N J, N K, N L, N M"),
              -2);
  }
  std::shared_ptr<EmbeddedConnection> db_ = openMemory();
};

TEST_F(UndoneTransaction, TakesNoStatementUntilItsOwnerHasEndedIt) {
  EXPECT_TRUE(db_->errors().item(0).transactionLost);
  for (const char* const text : {"INSERT INTO T VALUES (2)", "SELECT * FROM T", "EXEC P"}) {
    EXPECT_EQ(failureNumber(*db_, text), 3930) << text;
    EXPECT_TRUE(db_->errors().item(0).transactionLost);
  }
  EXPECT_THROW(static_cast<void>(db_->findProcedure("P")), Error);
  EXPECT_THROW(db_->beginTrans(), Error);
  EXPECT_THROW(db_->commitTrans(), Error);
  EXPECT_EQ(db_->errors().item(0).nativeNumber, 3902);
  db_->rollbackTrans();
  EXPECT_EQ(rows(*db_, "SELECT COUNT(*) FROM T"), "0");
  EXPECT_EQ(failureNumber(*db_, "SELECT * FROM S"), 208);
}

TEST_F(UndoneTransaction, IsEndedByATextAsWell) {
  db_->run("ROLLBACK TRANSACTION");
  db_->beginTrans();
  db_->run("INSERT INTO T VALUES (2)");
  db_->commitTrans();
  EXPECT_EQ(rows(*db_, "SELECT A FROM T"), "2");
}

TEST(Robustness, RecursionEnds) {
  const auto db = openMemory();
  db->run("CREATE PROCEDURE P @N INT AS BEGIN DECLARE @M INT SET @M = @N + 1 EXEC P @M END");
  EXPECT_EQ(failureNumber(*db, "EXEC P 1"), 217);
  db->run("CREATE PROCEDURE Q @N INT AS BEGIN DECLARE @T TABLE (A INT) EXEC Q @N END");
  EXPECT_EQ(failureNumber(*db, "EXEC Q 1"), 0);
}

TEST(Files, ThatAreNotOursAreRefused) {
  const File file;
  EXPECT_NE(openFailure(file).find(file.path()), std::string::npos);
  std::ofstream(file.path())
      << "nothing like a database, but long enough to look at its header ....";
  EXPECT_NE(openFailure(file).find(file.path()), std::string::npos);
  std::filesystem::remove(file.path());
  {
    const SqliteDatabase other(file.path(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    other.execute("CREATE TABLE theirs (a)");
  }
  EXPECT_NE(openFailure(file, "Create=True").find("non è un database di questo programma"),
            std::string::npos);
  std::filesystem::remove(file.path());
  {
    const SqliteDatabase newer(file.path(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    newer.execute("PRAGMA application_id = 1096434508; PRAGMA user_version = 33554432");
  }
  EXPECT_NE(openFailure(file).find("più recente"), std::string::npos);
}

TEST(Files, ABusyDatabaseSaysSo) {
  const File file;
  const auto first = file.open("Create=True;Timeout=0");
  first->run("CREATE TABLE T (A INT)");
  first->beginTrans();
  first->run("INSERT INTO T VALUES (1)");
  const auto second = file.open("Timeout=0");
  EXPECT_EQ(rows(*second, "SELECT COUNT(*) FROM T"), "0");
  const std::string text = failure(*second, "INSERT INTO T VALUES (2)");
  EXPECT_EQ(text.substr(0, 5), "1222 ");
  EXPECT_NE(text.find(file.path()), std::string::npos);
  EXPECT_NE(text.find("occupato da un altro processo"), std::string::npos);
  EXPECT_THROW(second->beginTrans(), Error);
  first->commitTrans();
  EXPECT_EQ(rows(*second, "SELECT COUNT(*) FROM T"), "1");
}

TEST(Files, AKilledProcessLosesNothingCommitted) {
  const File file;
  file.open("Create=True")->run("CREATE TABLE T (A INT NOT NULL PRIMARY KEY)");
  const pid_t child = ::fork();
  ASSERT_NE(child, -1);
  if (child == 0) {
    const auto db = file.open();
    db->run("INSERT INTO T VALUES (1)");
    db->beginTrans();
    db->run("INSERT INTO T VALUES (2)");
    ::kill(::getpid(), SIGKILL);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(rows(*file.open(), "SELECT A FROM T"), "1");
}

TEST(Files, AnotherConnectionsDefinitionsAreSeen) {
  const File file;
  const auto first = file.open("Create=True");
  first->run("CREATE TABLE T (A INT) INSERT INTO T VALUES (1)");
  const auto second = file.open();
  EXPECT_EQ(rows(*second, "SELECT A FROM T"), "1");
  first->run("DROP TABLE T CREATE TABLE T (A VARCHAR(9), B INT) INSERT INTO T VALUES ('x', 2)");
  EXPECT_EQ(rows(*second, "SELECT A FROM T"), "x");
  EXPECT_EQ(rows(*second, "SELECT * FROM T"), "x|2");
  second->run("INSERT INTO T VALUES ('12', 3)");
  first->run("DROP TABLE T CREATE TABLE T (A INT, B INT)");
  second->run("INSERT INTO T VALUES ('12', 3)");
  EXPECT_EQ(rows(*first, "SELECT A + 1 FROM T"), "13");
}

TEST(Files, ReadOnlyOnesStayAsTheyAre) {
  const File file;
  file.open("Create=True")->run("CREATE TABLE T (A INT) INSERT INTO T VALUES (1)");
  const auto db = file.open("Read Only=True");
  EXPECT_EQ(rows(*db, "DECLARE @T TABLE (A INT) INSERT INTO @T SELECT A FROM T SELECT A FROM @T"),
            "1");
  EXPECT_EQ(failureNumber(*db, "DELETE FROM T"), 3906);
  db->beginTrans();
  EXPECT_EQ(rows(*db, "SELECT A FROM T"), "1");
  db->commitTrans();
}

TEST(Files, BrokenDecimalsAreToldApart) {
  const File file;
  file.open("Create=True")->run("CREATE TABLE T (A DECIMAL(30, 2)) INSERT INTO T VALUES (1)");
  {
    const SqliteDatabase raw(file.path(), SQLITE_OPEN_READWRITE);
    raw.execute("UPDATE T SET A = x'00'");
  }
  EXPECT_EQ(failureNumber(*file.open(), "SELECT A FROM T"), 824);
}

}  // namespace
}  // namespace azcoll::embedded::test
