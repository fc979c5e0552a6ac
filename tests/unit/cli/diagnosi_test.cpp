// `azcoll diagnosi` on the embedded engine: what a database lacks, and what fixes it.

#include <functional>

#include "cli/commands/database_options.h"
#include "cli_test.h"
#include "deployment/scripts.h"
#include "tsql/script.h"

namespace azcoll::cli {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

class Diagnosi : public DatabaseTest {
 protected:
  /// A database whose scripts were changed by `change` before they ran.
  void make(const std::function<void(std::string&)>& change) {
    std::filesystem::remove(db_);
    const std::shared_ptr<Connection> connection =
        openConnection(embeddedConnectionString(db_) + ";Create=True");
    for (const deployment::Script& script : {deployment::kTabelle, deployment::kProcedure}) {
      for (const tsql::ScriptBatch& batch : tsql::splitScript(script.text)) {
        std::string text = batch.text;
        change(text);
        std::int64_t affected = 0;
        connection->execute(text, affected, CommandOption::Text);
      }
    }
  }
  void makeWith(const std::string& old, const std::string& changed) {
    std::size_t count = 0;
    make([&](std::string& text) {
      if (const std::size_t at = text.find(old); at != std::string::npos) {
        text.replace(at, old.size(), changed);
        ++count;
      }
    });
    EXPECT_EQ(count, 1U) << old;
  }
  [[nodiscard]] Outcome diagnosi() const { return azcoll("diagnosi", "--db", db_); }
};

TEST_F(Diagnosi, FindsNothingOnADatabaseOfTheScripts) {
  const Outcome outcome = diagnosi();
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_THAT(outcome.out,
              AllOf(StartsWith("Trovati: 31 tabelle, "), HasSubstr("2 procedure e funzioni"),
                    HasSubstr("il file si può scrivere"),
                    HasSubstr("Tutto a posto: il servizio può lavorare su questo database.")));
  EXPECT_THAT(outcome.err, IsEmpty());
}

TEST_F(Diagnosi, ChangesNothing) {
  const std::string before = contents(db_);
  EXPECT_EQ(diagnosi().code, ExitCode::Ok);
  EXPECT_TRUE(contents(db_) == before);
}

TEST_F(Diagnosi, ReportsAMissingTableWithItsDefinitionThatFixesIt) {
  azcoll("sql", "--db", db_, "DROP TABLE CG38_PARCOGE");
  const Outcome outcome = diagnosi();
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("Da sistemare: 1\n\n1. Manca la tabella CG38_PARCOGE."),
                                 HasSubstr("     CREATE TABLE CG38_PARCOGE (")));
  const nlohmann::ordered_json found = azcoll("diagnosi", "--db", db_, "--json").json();
  ASSERT_THAT(found["problemi"], SizeIs(1));
  const std::string remedy = found["problemi"][0]["rimedio"];
  EXPECT_EQ(azcoll("sql", "--db", db_, remedy).code, ExitCode::Ok);
  EXPECT_EQ(diagnosi().code, ExitCode::Ok);
}

TEST_F(Diagnosi, ReportsAMissingColumn) {
  makeWith("    CG38_GGCALACCIVA SMALLINT NULL,\n", "");
  const Outcome outcome = diagnosi();
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(outcome.out,
              AllOf(HasSubstr("Da sistemare: 1\n"),
                    HasSubstr("Nella tabella CG38_PARCOGE manca la colonna CG38_GGCALACCIVA."),
                    HasSubstr("azcoll crea --db NUOVO")));
}

TEST_F(Diagnosi, ReportsATypeThatHoldsLess) {
  for (const auto& [changed, told] : std::vector<std::pair<std::string, std::string>>{
           {"NVARCHAR(79)",
            "La colonna CG16_RAGSOANAG di CG16_ANAGGEN è NVARCHAR(79), serve "
            "NVARCHAR(80)."},
           {"VARCHAR(80)", "è VARCHAR(80), serve NVARCHAR(80)."},
           {"INT", "è INT, serve NVARCHAR(80)."}}) {
    makeWith("CG16_RAGSOANAG NVARCHAR(80)", "CG16_RAGSOANAG " + changed);
    EXPECT_THAT(diagnosi().out, AllOf(HasSubstr("Da sistemare: 1\n"), HasSubstr(told)));
  }
  makeWith("CG38_PERCACCIVA DECIMAL(5, 2)", "CG38_PERCACCIVA DECIMAL(6, 3)");
  EXPECT_EQ(diagnosi().code, ExitCode::Ok);
  makeWith("CG38_PERCACCIVA DECIMAL(5, 2)", "CG38_PERCACCIVA DECIMAL(5, 3)");
  EXPECT_THAT(diagnosi().out, HasSubstr("è DECIMAL(5, 3), serve DECIMAL(5, 2)."));
  makeWith("CG25_FLGSEZ SMALLINT", "CG25_FLGSEZ BIT");
  EXPECT_THAT(diagnosi().out, HasSubstr("è BIT, serve SMALLINT."));
}

TEST_F(Diagnosi, AcceptsMoreThanTheScriptsAskFor) {
  makeWith("CG16_RAGSOANAG NVARCHAR(80)", "CG16_NOTA INT NULL, CG16_RAGSOANAG NVARCHAR(MAX)");
  EXPECT_EQ(diagnosi().code, ExitCode::Ok);
}

TEST_F(Diagnosi, ReportsAColumnThatRefusesWhatTheServiceWrites) {
  makeWith("CG86_CODATTIVITA INT NULL", "CG86_CODATTIVITA INT NOT NULL");
  EXPECT_THAT(diagnosi().out, HasSubstr("CG86_CODATTIVITA di CG86_AZIENDECOLL non ammette NULL"));
  makeWith(" CONSTRAINT DF_CG86_INDCOMLETTINT DEFAULT (0)", "");
  EXPECT_THAT(diagnosi().out, HasSubstr("CG86_INDCOMLETTINT di CG86_AZIENDECOLL non ha un valore "
                                        "predefinito."));
  makeWith("CG86_IDATTIVITA INT IDENTITY(1, 1)", "CG86_IDATTIVITA INT");
  EXPECT_THAT(diagnosi().out, HasSubstr("non si numera da sé"));
}

TEST_F(Diagnosi, ReportsAParameterThatTheProcedureLacksWithWhatFixesIt) {
  makeWith("    @CodSede INT = NULL,\n    @DitteCollegate VARCHAR(8000) = NULL OUTPUT\nAS\nBEGIN\n",
           "    @DitteCollegate VARCHAR(100) = NULL OUTPUT\nAS\nBEGIN\n    DECLARE @CodSede INT\n");
  const nlohmann::ordered_json found = azcoll("diagnosi", "--db", db_, "--json").json();
  EXPECT_EQ(found["a_posto"], false);
  ASSERT_THAT(found["problemi"], SizeIs(1));
  EXPECT_EQ(found["problemi"][0]["messaggio"],
            "In procedura PC_GetDitteCollegate: manca il parametro @CodSede; il parametro "
            "@DitteCollegate è VARCHAR(100), serve VARCHAR(8000).");
  const std::string remedy = found["problemi"][0]["rimedio"];
  EXPECT_THAT(remedy, StartsWith("DROP PROCEDURE PC_GetDitteCollegate\nGO\nCREATE PROCEDURE"));
  EXPECT_EQ(azcoll("sql", "--db", db_, remedy).code, ExitCode::Ok);
  EXPECT_EQ(diagnosi().code, ExitCode::Ok);
}

TEST_F(Diagnosi, ReportsAMissingProcedureAndAFunctionWithoutAColumn) {
  makeWith("SELECT CG28_DITTA_CG18, CG28_CODICE, CG28_DESCR, CG28_PERCIVA",
           "SELECT CG28_DITTA_CG18, CG28_CODICE, CG28_DESCR");
  azcoll("sql", "--db", db_, "DROP PROCEDURE PC_GetDitteCollegate");
  EXPECT_THAT(diagnosi().out,
              AllOf(HasSubstr("Da sistemare: 2\n"),
                    HasSubstr("1. Manca la procedura PC_GetDitteCollegate."),
                    HasSubstr("2. In funzione FNCG28_TABCODIVA: non restituisce la colonna "
                              "CG28_PERCIVA.")));
}

TEST_F(Diagnosi, ReportsADatabaseThatCannotBeWritten) {
  const Outcome outcome =
      azcoll("diagnosi", "--connessione", "Provider=embedded;Read Only=True;Data Source=" + db_);
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("1. Il database non si può scrivere: Failed to update"),
                                 HasSubstr("Read Only=True")));
}

TEST_F(Diagnosi, SendsANewcomerToCreaWhenTheDatabaseIsEmpty) {
  std::filesystem::remove(db_);
  openConnection(embeddedConnectionString(db_) + ";Create=True")->close();
  EXPECT_THAT(diagnosi().out,
              AllOf(HasSubstr("Da sistemare: 1\n"), HasSubstr("nessuna delle tabelle"),
                    HasSubstr("azcoll crea --connessione")));
  azcoll("sql", "--db", db_, "CREATE TABLE NOSTRA (A INT NOT NULL)");
  EXPECT_THAT(diagnosi().out, HasSubstr("nessuna delle tabelle"));
}

TEST_F(Diagnosi, WantsExactlyOneDatabaseThatIsThere) {
  EXPECT_EQ(azcoll("diagnosi").code, ExitCode::Usage);
  EXPECT_EQ(azcoll("diagnosi", "--db", db_, "--connessione", "x").code, ExitCode::Usage);
  EXPECT_EQ(azcoll("diagnosi", "--db", path("manca.db")).code, ExitCode::CannotOpen);
}

TEST_F(Diagnosi, PrintsJson) {
  const nlohmann::ordered_json found = azcoll("diagnosi", "--db", db_, "--json").json();
  EXPECT_EQ(found["a_posto"], true);
  EXPECT_EQ(found["trovati"]["tabelle"], 31);
  EXPECT_EQ(found["trovati"]["procedure_e_funzioni"], 2);
  EXPECT_TRUE(found["utente"].is_null());
  EXPECT_THAT(found["problemi"], IsEmpty());
}

}  // namespace
}  // namespace azcoll::cli
