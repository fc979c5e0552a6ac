// `azcoll crea --connessione`: what it installs, and what it leaves alone.

#include "cli_test.h"
#include "support/test_database.h"

namespace azcoll::cli {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

class CreaOnConnection : public FolderTest {
 protected:
  [[nodiscard]] std::string source(const std::string& more = "") const {
    return "Provider=embedded;Data Source=" + path("prova.db") + more;
  }
};

TEST_F(CreaOnConnection, InstallsOnAnEmptyDatabase) {
  const Outcome outcome = azcoll("crea", "--connessione", source(";Create=True"), "--esempio");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_THAT(outcome.err,
              HasSubstr("Installati nel database: tabelle.sql, procedure.sql, esempio.sql."));
  EXPECT_EQ(azcoll("sql", "--connessione", source(), "--csv",
                   "SELECT COUNT(*) AS N FROM CG18_ANADITTABASE")
                .out,
            "N\r\n8\r\n");
  EXPECT_EQ(azcoll("diagnosi", "--connessione", source()).code, ExitCode::Ok);
}

TEST_F(CreaOnConnection, KeepsWhatElseTheDatabaseHolds) {
  EXPECT_EQ(azcoll("crea", "--connessione", source(";Create=True")).code, ExitCode::Ok);
  const std::string other = "Provider=embedded;Data Source=" + path("altro.db") + ";Create=True";
  EXPECT_EQ(azcoll("sql", "--connessione", other, "CREATE TABLE NOSTRA (A INT NOT NULL)").code,
            ExitCode::Ok);
  EXPECT_EQ(azcoll("crea", "--connessione", other).code, ExitCode::Ok);
  EXPECT_THAT(azcoll("sql", "--connessione", other, "--csv", "SELECT A FROM NOSTRA").out,
              StartsWith("A\r\n"));
}

TEST_F(CreaOnConnection, ChangesNothingWhereTheTablesAreThereAlready) {
  ASSERT_EQ(azcoll("crea", "--db", path("prova.db")).code, ExitCode::Ok);
  const Outcome outcome = azcoll("crea", "--connessione", source(), "--esempio");
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err, HasSubstr("contiene già CG16_ANAGGEN e altri "));
  EXPECT_EQ(azcoll("sql", "--connessione", source(), "--csv",
                   "SELECT COUNT(*) AS N FROM CG18_ANADITTABASE")
                .out,
            "N\r\n0\r\n");
}

TEST_F(CreaOnConnection, RefusesADatabaseWithOneOfTheTables) {
  ASSERT_EQ(azcoll("sql", "--connessione", source(";Create=True"),
                   "CREATE TABLE cg44_clifor (A INT NOT NULL)")
                .code,
            ExitCode::Ok);
  const Outcome outcome = azcoll("crea", "--connessione", source());
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err, HasSubstr("contiene già cg44_clifor: non viene toccato"));
  EXPECT_EQ(azcoll("sql", "--connessione", source(), "SELECT 1 FROM CG16_ANAGGEN").code,
            ExitCode::Failed);
}

TEST_F(CreaOnConnection, WantsExactlyOneOfFileAndConnection) {
  for (const Outcome& outcome :
       {azcoll("crea"), azcoll("crea", "--db", path("a.db"), "--connessione", source())}) {
    EXPECT_EQ(outcome.code, ExitCode::Usage);
    EXPECT_THAT(outcome.err, HasSubstr("--db FILE oppure --connessione STRINGA"));
  }
  EXPECT_THAT(filesLeft(), IsEmpty());
}

TEST_F(CreaOnConnection, HasNoRolesOnTheEmbeddedEngine) {
  const Outcome file = azcoll("crea", "--db", path("a.db"), "--permessi");
  EXPECT_EQ(file.code, ExitCode::Usage);
  EXPECT_THAT(file.err, HasSubstr("non conosce utenti né ruoli"));
  EXPECT_THAT(filesLeft(), IsEmpty());
  const Outcome connection = azcoll("crea", "--connessione", source(";Create=True"), "--permessi");
  EXPECT_EQ(connection.code, ExitCode::Usage);
  EXPECT_THAT(connection.err, HasSubstr("non conosce utenti né ruoli"));
  EXPECT_EQ(azcoll("sql", "--connessione", source(), "SELECT 1 FROM CG16_ANAGGEN").code,
            ExitCode::Failed);
}

TEST_F(CreaOnConnection, NeverShowsAPassword) {
  for (const char* command : {"crea", "diagnosi"}) {
    for (const char* string : {"Driver=NESSUNO;Server=nessuno.invalid;UID=sa;PWD=Segreta1",
                               "Driver=NESSUNO;Server=nessuno.invalid;UID=sa;Password={Segreta1;}",
                               "Provider=embedded;Password=Segreta1"}) {
      const Outcome outcome = azcoll(command, "--connessione", string);
      EXPECT_EQ(outcome.code, ExitCode::CannotOpen) << string;
      EXPECT_THAT(outcome.err, Not(HasSubstr("Segreta1"))) << string;
      EXPECT_THAT(outcome.out, IsEmpty());
    }
  }
}

TEST(CreaOnAServer, InstallsOnceAndIsFoundWhole) {
  const std::string server = test::emptyServerDatabase();
  if (server.empty()) {
    GTEST_SKIP() << "AZCOLL_TEST_CONNESSIONE names no server to install on";
  }
  const Outcome first = azcoll("crea", "--connessione", server, "--esempio");
  ASSERT_EQ(first.code, ExitCode::Ok) << first.err;
  const Outcome second = azcoll("crea", "--connessione", server, "--esempio");
  EXPECT_EQ(second.code, ExitCode::Usage) << second.err;
  EXPECT_THAT(second.err, HasSubstr("contiene già"));
  const Outcome diagnosis = azcoll("diagnosi", "--connessione", server);
  EXPECT_EQ(diagnosis.code, ExitCode::Ok) << diagnosis.out << diagnosis.err;
}

}  // namespace
}  // namespace azcoll::cli
