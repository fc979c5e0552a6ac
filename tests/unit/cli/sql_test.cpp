#include "cli_test.h"

namespace azcoll::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Sql : public DatabaseTest {
 protected:
  template <typename... Args>
  Outcome sql(const Args&... args) {
    return azcoll("sql", "--db", db_, args...);
  }
};

TEST_F(Sql, PrintsAnAlignedTable) {
  const Outcome outcome =
      sql("SELECT CG16_CODICE AS CODICE, CG16_RAGSOANAG AS NOME FROM CG16_ANAGGEN"
          " WHERE CG16_CODICE IN (1010, 3004) ORDER BY CG16_CODICE");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_EQ(outcome.out,
            "CODICE  NOME\n"
            "------  -----------------------\n"
            "  1010  Alfa Società per Azioni\n"
            "  3004  Fornaci di Forlì S.p.A.\n"
            "(2 righe)\n");
  EXPECT_THAT(outcome.err, IsEmpty());
}

TEST_F(Sql, PrintsEveryResultAndTheRowsChanged) {
  const Outcome outcome =
      sql("SELECT 1 AS A\nSELECT 'x' AS B, NULL AS C\nGO\n"
          "UPDATE CG38_PARCOGE SET CG38_GGCALACCIVA = 1 WHERE CG38_DITTA_CG18 = 10");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_EQ(outcome.out,
            "A\n-\n1\n(1 riga)\n\n"
            "B  C\n-  ----\nx  NULL\n(1 riga)\n\n"
            "1 riga modificata\n");
}

TEST_F(Sql, KeepsWhatItChanged) {
  const Outcome outcome = sql("DELETE FROM CG38_PARCOGE");
  EXPECT_EQ(outcome.out, "2 righe modificate\n") << outcome.err;
  EXPECT_EQ(sql("--csv", "SELECT COUNT(*) AS N FROM CG38_PARCOGE").out, "N\r\n0\r\n");
}

TEST_F(Sql, ReadsStandardInputWithoutAnArgument) {
  const Outcome outcome =
      azcollWith("\xEF\xBB\xBFSELECT 1 AS A\nGO\nSELECT 2 AS B\n", {"sql", "--db", db_, "--csv"});
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_EQ(outcome.out, "A\r\n1\r\n\r\nB\r\n2\r\n");
}

TEST_F(Sql, PrintsNothingForNoStatement) {
  EXPECT_EQ(sql("").out, "");
  EXPECT_EQ(sql("--csv", "GO\nGO\n").out, "");
  EXPECT_EQ(sql("--json", " -- nulla\n").out, "[]\n");
  EXPECT_EQ(sql("").code, ExitCode::Ok);
}

TEST_F(Sql, GivesAnArrayOfResultsAsJson) {
  const Outcome outcome = sql("--json",
                              "SELECT CG38_DITTA_CG18, CG38_PERCACCIVA FROM CG38_PARCOGE"
                              " ORDER BY CG38_DITTA_CG18\n"
                              "SELECT CG19_DATAAPE AS D, 'è' AS T FROM CG19_ANADITTAESER"
                              " WHERE CG19_DITTA_CG18 = 20\n"
                              "GO\nDELETE FROM CG38_PARCOGE WHERE CG38_DITTA_CG18 = 12");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_EQ(
      outcome.out,
      R"([{"colonne":["CG38_DITTA_CG18","CG38_PERCACCIVA"],"righe":[[10,"97.00"],[12,null]]},)"
      R"({"colonne":["D","T"],"righe":[["2024-07-01","è"]]},)"
      R"({"righe_modificate":1}])"
      "\n");
}

TEST_F(Sql, WritesCsvThatOtherProgramsRead) {
  const Outcome outcome =
      sql("--csv",
          "SELECT CG40_DESCR AS D, CG40_IDMEDIA_CG99 AS [M,1] FROM"
          " CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = 5 AND CG40_INTERMEDIO > 6"
          " ORDER BY CG40_INTERMEDIO\nSELECT 'a,\"b\"' AS X, '' AS Y");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_EQ(outcome.out,
            "D,\"M,1\"\r\nStudio dell'Aquila,900\r\n,\r\n"
            "\r\n"
            "X,Y\r\n\"a,\"\"b\"\"\",\"\"\r\n");
}

TEST_F(Sql, TellsTheRowsChangedBesideTheCsv) {
  const Outcome outcome = sql("--csv", "DELETE FROM CG38_PARCOGE");
  EXPECT_THAT(outcome.out, IsEmpty());
  EXPECT_EQ(outcome.err, "2 righe modificate\n");
}

TEST_F(Sql, RefusesTwoForms) {
  const Outcome outcome = sql("--csv", "--json", "SELECT 1");
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err, HasSubstr("--json e --csv"));
}

TEST_F(Sql, ReportsNumberMessageAndLineOfAnError) {
  const Outcome outcome = sql("SELECT 1 AS A\nGO\n\nSELECT *\nFROM NESSUNA");
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(outcome.out, HasSubstr("(1 riga)"));
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("Errore 208"), HasSubstr("riga 4: "),
                                 HasSubstr("Invalid object name 'NESSUNA'.")));
}

TEST_F(Sql, ReportsTheLineOfASyntaxError) {
  const Outcome outcome = sql("SELECT 1 AS A\nGO\nSELECT 2 AS B\n\nSELECT FROM");
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("riga 5: "), HasSubstr("Incorrect syntax")));
}

TEST_F(Sql, EndsTheJsonArrayAtAnError) {
  const Outcome outcome =
      sql("--json", "SELECT 1 AS A\nGO\nSELECT * FROM NESSUNA\nGO\nSELECT 2 AS B");
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_EQ(outcome.json().size(), 1U);
}

TEST_F(Sql, DropsATransactionThatWasLeftOpen) {
  EXPECT_EQ(sql("BEGIN TRANSACTION\nDELETE FROM CG38_PARCOGE").code, ExitCode::Ok);
  EXPECT_EQ(sql("--csv", "SELECT COUNT(*) AS N FROM CG38_PARCOGE").out, "N\r\n2\r\n");
}

TEST_F(Sql, WantsExactlyOneDatabase) {
  EXPECT_EQ(azcoll("sql", "SELECT 1").code, ExitCode::Usage);
  const Outcome both =
      sql("--connessione", "Provider=embedded;Data Source=:memory:", "SELECT 1 AS A");
  EXPECT_EQ(both.code, ExitCode::Usage);
  EXPECT_THAT(both.err, HasSubstr("--db FILE oppure --connessione STRINGA"));
}

TEST_F(Sql, TakesAConnectionString) {
  const Outcome outcome = azcoll("sql", "--connessione", "Provider=embedded;Data Source=" + db_,
                                 "--csv", "SELECT 1 AS A");
  EXPECT_EQ(outcome.out, "A\r\n1\r\n") << outcome.err;
}

TEST_F(Sql, ReportsADatabaseThatCannotBeOpened) {
  std::ofstream{path("altro.db")} << std::string(5000, 'x');
  for (const std::string& file : {path("manca.db"), path("altro.db"), folder_.path().string()}) {
    const Outcome outcome = azcoll("sql", "--db", file, "SELECT 1");
    EXPECT_EQ(outcome.code, ExitCode::CannotOpen) << file << outcome.out;
    EXPECT_THAT(outcome.err, HasSubstr("Impossibile aprire il database " + file));
    EXPECT_THAT(outcome.out, IsEmpty());
  }
  EXPECT_FALSE(std::filesystem::exists(path("manca.db")));
}

TEST_F(Sql, DoesNotRepeatAConnectionStringInMessages) {
  const Outcome outcome =
      azcoll("sql", "--connessione", "Provider=nessuno;Password=segreta", "SELECT 1");
  EXPECT_EQ(outcome.code, ExitCode::CannotOpen);
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("Impossibile aprire"), Not(HasSubstr("segreta"))));
}

TEST_F(Sql, TakesStatementsBehindADoubleDash) {
  EXPECT_EQ(azcoll("sql", "--db", db_, "--csv", "--", "--commento\nSELECT 1 AS A").out,
            "A\r\n1\r\n");
}

}  // namespace
}  // namespace azcoll::cli
