#include "unit/embedded_language/database_file.h"
#include "unit/embedded_language/support.h"

// Databases in files: opening, reopening, several connections.
namespace azcoll::test {
namespace {

Error openFailure(const std::string& connectionString) {
  const Error error = failureOf([&] { openConnection(connectionString); });
  return error;
}

TEST(ConnectionString, ChoosesTheEngineByItsProvider) {
  EXPECT_TRUE(embedded::isEmbeddedConnectionString("Provider=embedded;Data Source=a.db"));
  EXPECT_TRUE(embedded::isEmbeddedConnectionString(" data source = a.db ; PROVIDER = Embedded ;"));
  EXPECT_FALSE(embedded::isEmbeddedConnectionString("Provider=SQLOLEDB;Data Source=embedded"));
  EXPECT_FALSE(embedded::isEmbeddedConnectionString("Data Source=Provider=embedded"));
  EXPECT_FALSE(embedded::isEmbeddedConnectionString(""));
}

TEST(ConnectionString, RefusesWhatItDoesNotKnow) {
  for (const char* text :
       {"Provider=embedded;Data Source=:memory:;Colour=Red", "Provider=embedded",
        "Provider=embedded;Data Source=", "Provider=embedded;Data Source=:memory:;Create=perhaps",
        "Provider=embedded;Data Source=:memory:;Timeout=soon",
        "Provider=embedded;Data Source=:memory:;Timeout=-1",
        "Provider=other;Data Source=:memory:", "", "Provider=embedded;Data Source=:memory:;x"}) {
    EXPECT_NE(openFailure(text).description(), "") << text;
  }
}

TEST(ConnectionString, IsGivenBackAsItWasSet) {
  const auto connection = embedded::newConnection();
  connection->setConnectionString("Provider=embedded;Data Source=:memory:");
  EXPECT_EQ(connection->connectionString(), "Provider=embedded;Data Source=:memory:");
}

TEST(Opening, OpensAndClosesOnce) {
  const auto connection = embedded::newConnection();
  EXPECT_FALSE(connection->isOpen());
  EXPECT_THROW(run(*connection, "SELECT 1"), Error);
  connection->setConnectionString("Provider=embedded;Data Source=:memory:");
  connection->open("", "", CommandOption::Unspecified);
  EXPECT_TRUE(connection->isOpen());
  EXPECT_THROW(connection->open("", "", CommandOption::Unspecified), Error);
  EXPECT_TRUE(connection->isOpen());
  connection->close();
  EXPECT_FALSE(connection->isOpen());
  EXPECT_THROW(run(*connection, "SELECT 1"), Error);
  EXPECT_THROW(connection->beginTrans(), Error);
  EXPECT_THROW(connection->close(), Error);
}

TEST(Opening, GivesEveryMemoryDatabaseToItsConnectionAlone) {
  const auto first = openMemory();
  run(*first, "CREATE TABLE T (A INT)");
  const auto second = openMemory();
  EXPECT_EQ(failureNumber(*second, "SELECT * FROM T"), 208);
  first->close();
  first->open("", "", CommandOption::Unspecified);
  EXPECT_EQ(failureNumber(*first, "SELECT * FROM T"), 208);
}

TEST(Opening, DoesNotMakeAMissingFile) {
  const DatabaseFile file;
  EXPECT_NE(openFailure(file.source()).description(), "");
  EXPECT_FALSE(std::filesystem::exists(file.path()));
  EXPECT_NE(openFailure(file.source() + ";Read Only=True").description(), "");
  EXPECT_FALSE(std::filesystem::exists(file.path()));
}

TEST(Opening, MakesAMissingFileWhenAsked) {
  const DatabaseFile file;
  openConnection(file.creating())->close();
  EXPECT_TRUE(std::filesystem::exists(file.path()));
  openConnection(file.source())->close();
}

TEST(Opening, CreateLeavesAnExistingFileAsItIs) {
  const DatabaseFile file;
  run(*openConnection(file.creating()), "CREATE TABLE T (A INT) INSERT INTO T VALUES (5)");
  EXPECT_EQ(lines(*openConnection(file.creating()), "SELECT A FROM T"), Lines{"5"});
}

TEST(Opening, RefusesAFileThatIsNoDatabase) {
  const DatabaseFile file;
  const std::string content(5000, 'x');
  file.write(content);
  EXPECT_NE(openFailure(file.source()).description(), "");
  EXPECT_NE(openFailure(file.creating()).description(), "");
  std::ifstream stream{file.path(), std::ios::binary};
  const std::string after{std::istreambuf_iterator<char>{stream}, std::istreambuf_iterator<char>{}};
  EXPECT_EQ(after, content);
}

TEST(Opening, RefusesAFolderAndAPathThatCannotBe) {
  const DatabaseFile file;
  EXPECT_NE(openFailure("Provider=embedded;Data Source=" + file.folder().string()).description(),
            "");
  EXPECT_NE(openFailure("Provider=embedded;Create=True;Data Source=" + file.folder().string() +
                        "/a/b/c.db")
                .description(),
            "");
}

TEST(Opening, TellsTheFileThatItCannotOpen) {
  const DatabaseFile file;
  EXPECT_NE(openFailure(file.source()).description().find("prova.db"), std::string::npos);
}

TEST(Opening, TakesAFileNameAsItIs) {
  const DatabaseFile file;
  const std::string name = file.folder().string() + "/a%20b?mode=memory#è.db";
  run(*openConnection("Provider=embedded;Create=True;Data Source=\"" + name + "\""),
      "CREATE TABLE T (A INT)");
  EXPECT_TRUE(std::filesystem::exists(name));
}

TEST(Reopening, KeepsEverything) {
  const DatabaseFile file;
  {
    const auto connection = openConnection(file.creating());
    run(*connection,
        "CREATE TABLE P (ID INT IDENTITY(5, 1) NOT NULL, K CHAR(3) NOT NULL CONSTRAINT DF_K "
        "DEFAULT ('k'), W DECIMAL(38, 10) NULL, D DATETIME NULL, S SMALLINT NULL, CONSTRAINT PK_P "
        "PRIMARY KEY (ID), CONSTRAINT UQ_P UNIQUE (K))");
    run(*connection,
        "CREATE TABLE C (A INT NULL CONSTRAINT FK_C REFERENCES P (ID)) CREATE INDEX IX_C ON C (A)");
    run(*connection,
        "CREATE PROCEDURE Q @A INT = 3, @B VARCHAR(9) OUTPUT AS SET @B = 'b' "
        "SELECT ID FROM P WHERE S = @A");
    run(*connection,
        "CREATE FUNCTION F (@A INT) RETURNS TABLE AS RETURN (SELECT K FROM P WHERE S = @A)");
    run(*connection,
        "INSERT INTO P (W, D, S) VALUES (1234567890123456789012345678.0123456789, '20240131 "
        "10:00:00.003', 3)");
  }
  const auto connection = openConnection(file.source());
  EXPECT_EQ(lines(*connection, "SELECT ID, K, W, S FROM P WHERE D = '20240131 10:00:00.003'"),
            Lines{"5|k  |1234567890123456789012345678.0123456789|3"});
  const auto row = run(*connection, "SELECT ID, K, W, D, S FROM P");
  EXPECT_EQ(row->fields().item("S").value(), Variant(std::int16_t{3}));
  EXPECT_EQ(row->fields().item("D").value(), Variant(*Date::of(2024, 1, 31, 10, 0, 0, 3)));
  EXPECT_EQ(lines(*connection, "SELECT K FROM F(3)"), Lines{"k  "});
  EXPECT_EQ(lines(*connection, "DECLARE @X VARCHAR(9) EXEC Q @B = @X OUTPUT"), Lines{"5"});
  EXPECT_EQ(failureNumber(*connection, "INSERT INTO P (K) VALUES ('K')"), 2627);
  EXPECT_EQ(failureNumber(*connection, "INSERT INTO C (A) VALUES (6)"), 547);
  run(*connection, "INSERT INTO P (K) VALUES ('l') INSERT INTO C (A) VALUES (5)");
  EXPECT_EQ(lines(*connection, "SELECT COUNT(*) FROM P WHERE ID > 5 AND K = 'l'"), Lines{"1"});
  const Error error = failureOf([&] { run(*connection, "DELETE FROM P"); });
  EXPECT_NE(error.description().find("\"FK_C\""), std::string::npos) << error.description();
  EXPECT_EQ(failureNumber(*connection, "CREATE TABLE P (A INT)"), 2714);
}

TEST(Reopening, ForgetsWhatWasNotCommitted) {
  const DatabaseFile file;
  {
    const auto connection = openConnection(file.creating());
    run(*connection, "CREATE TABLE T (A INT)");
    connection->beginTrans();
    run(*connection, "INSERT INTO T VALUES (1) CREATE TABLE S (A INT)");
    // The connection goes with its transaction open.
  }
  const auto connection = openConnection(file.source());
  EXPECT_EQ(lines(*connection, "SELECT COUNT(*) FROM T"), Lines{"0"});
  EXPECT_EQ(failureNumber(*connection, "SELECT * FROM S"), 208);
}

TEST(Reopening, ForgetsWhatWasNotCommittedWhenClosed) {
  const DatabaseFile file;
  const auto connection = openConnection(file.creating());
  run(*connection, "CREATE TABLE T (A INT)");
  connection->beginTrans();
  run(*connection, "INSERT INTO T VALUES (1)");
  try {
    connection->close();
  } catch (const Error&) {
    // Refusing to close inside a transaction is right as well.
    connection->rollbackTrans();
    connection->close();
  }
  EXPECT_EQ(lines(*openConnection(file.source()), "SELECT COUNT(*) FROM T"), Lines{"0"});
}

TEST(Reopening, DoesNotKeepTemporaryTables) {
  const DatabaseFile file;
  try {
    run(*openConnection(file.creating()), "CREATE TABLE #X (A INT)");
  } catch (const Error& error) {
    EXPECT_EQ(error.info().nativeNumber, 0) << error.description();  // outside the language
  }
  EXPECT_EQ(failureNumber(*openConnection(file.source()), "SELECT A FROM #X"), 208);
}

TEST(ReadOnly, ReadsAndRefusesToWrite) {
  const DatabaseFile file;
  run(*openConnection(file.creating()), "CREATE TABLE T (A INT) INSERT INTO T VALUES (1)");
  const auto connection = openConnection(file.source() + ";Read Only=True");
  EXPECT_EQ(lines(*connection, "SELECT A FROM T"), Lines{"1"});
  for (const char* text : {"INSERT INTO T VALUES (2)", "UPDATE T SET A = 2", "DELETE FROM T",
                           "CREATE TABLE S (A INT)", "DROP TABLE T"}) {
    const Error error = failureOf([&] { run(*connection, text); });
    EXPECT_NE(error.description(), "") << text;
  }
  EXPECT_EQ(lines(*connection,
                  "DECLARE @T TABLE (A INT) INSERT INTO @T SELECT A FROM T SELECT A "
                  "FROM @T"),
            Lines{"1"});
  EXPECT_EQ(lines(*openConnection(file.source()), "SELECT A FROM T"), Lines{"1"});
}

TEST(TwoConnections, SeeOnlyWhatTheOtherCommitted) {
  const DatabaseFile file;
  const auto writer = openConnection(file.creating());
  run(*writer, "CREATE TABLE T (A INT) INSERT INTO T VALUES (1)");
  const auto reader = openConnection(file.source());
  writer->beginTrans();
  run(*writer, "UPDATE T SET A = 2");
  EXPECT_EQ(lines(*reader, "SELECT A FROM T"), Lines{"1"});
  EXPECT_EQ(lines(*writer, "SELECT A FROM T"), Lines{"2"});
  writer->commitTrans();
  EXPECT_EQ(lines(*reader, "SELECT A FROM T"), Lines{"2"});
}

TEST(TwoConnections, TellThatTheDatabaseIsBusy) {
  const DatabaseFile file;
  const auto first = openConnection(file.creating());
  run(*first, "CREATE TABLE T (A INT NOT NULL PRIMARY KEY)");
  const auto second = openConnection(file.source() + ";Timeout=0");
  first->beginTrans();
  run(*first, "INSERT INTO T VALUES (1)");
  const Error error = failureOf([&] { run(*second, "INSERT INTO T VALUES (2)"); });
  EXPECT_TRUE(error.fromProvider());
  EXPECT_EQ(error.info().nativeNumber, 1222) << error.description();
  EXPECT_EQ(second->errors().count(), 1U);
  EXPECT_THROW(
      {
        second->beginTrans();
        run(*second, "INSERT INTO T VALUES (2)");
      },
      Error);
  first->commitTrans();
  try {
    second->rollbackTrans();
  } catch (const Error&) {
    // The transaction did not even begin.
  }
  run(*second, "INSERT INTO T VALUES (3)");
  EXPECT_EQ(lines(*first, "SELECT A FROM T ORDER BY A"), (Lines{"1", "3"}));
}

TEST(TwoConnections, NoticeTheTablesOfTheOther) {
  const DatabaseFile file;
  const auto first = openConnection(file.creating());
  run(*first, "CREATE TABLE T (A INT) INSERT INTO T VALUES (1)");
  const auto second = openConnection(file.source());
  EXPECT_EQ(lines(*second, "SELECT * FROM T"), Lines{"1"});
  run(*first, "DROP TABLE T");
  run(*first, "CREATE TABLE T (B SMALLINT, C INT) INSERT INTO T VALUES (2, 3)");
  EXPECT_EQ(lines(*second, "SELECT * FROM T"), Lines{"2|3"});
  EXPECT_EQ(value(*second, "SELECT B FROM T"), Variant(std::int16_t{2}));
  run(*first, "CREATE PROCEDURE P AS SELECT 9");
  EXPECT_EQ(lines(*second, "EXEC P"), Lines{"9"});
  run(*first, "DROP TABLE T");
  EXPECT_EQ(failureNumber(*second, "SELECT * FROM T"), 208);
}

}  // namespace
}  // namespace azcoll::test
