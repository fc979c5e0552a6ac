#include "cli_test.h"
#include "service/members.h"

namespace azcoll::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Esegui : public DatabaseTest {
 protected:
  template <typename... Args>
  Outcome esegui(const char* method, const Args&... args) {
    return azcoll("esegui", method, "--db", db_, args...);
  }

  [[nodiscard]] Outcome duplica() {
    return esegui("DuplicaCliFor", "--json", "--imposta", "Pvar_Ditta=5", "--imposta",
                  "Pint_TipoCF=Cliente", "--imposta", "Pvar_CliFor=120", "--imposta",
                  "AnnoSolare=2024", "--traccia", path("traccia"));
  }

  [[nodiscard]] std::vector<nlohmann::ordered_json> trace() const {
    std::vector<nlohmann::ordered_json> lines;
    std::istringstream in{contents(path("traccia"))};
    for (std::string line; std::getline(in, line);) {
      lines.push_back(nlohmann::ordered_json::parse(line));
    }
    return lines;
  }
};

TEST_F(Esegui, PrintsWhatAMethodFound) {
  const Outcome outcome =
      esegui("DitteCollegate", "--imposta", "Pvar_Ditta=10", "--imposta", "AnnoSolare=2024");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_EQ(outcome.out,
            "Metodo: DitteCollegate\n"
            "Stato: 0\n"
            "Errore: nessuno\n"
            "\n"
            "Output:\n"
            "  DitteCollegate: 5, 12, 15, 10\n"
            "  IndTipoCont: 0\n");
  EXPECT_THAT(outcome.err, IsEmpty());
}

TEST_F(Esegui, PrintsTheResultOfAMethodThatHasOne) {
  const Outcome outcome = esegui("GetDittaPrincipale", "--imposta", "Pvar_Ditta=12", "--imposta",
                                 "DataInizioElaborazione=2024-06-30");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("\nRisultato: 10\n"));
}

TEST_F(Esegui, GivesOneJsonObject) {
  const Outcome outcome = esegui("GetDittaPrincipale", "--json", "--imposta", "Pvar_Ditta=12",
                                 "--imposta", "DataInizioElaborazione=2024-06-30");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.err;
  EXPECT_EQ(outcome.out,
            R"({"metodo":"GetDittaPrincipale","stato":0,"errore":null,"risultato":"10",)"
            R"("input":{"Pvar_Ditta":12,"DataInizioElaborazione":"2024-06-30"},)"
            R"("output":{"Gbol_DittaPrincipale":false,"DitteCollegate":"",)"
            R"("Grst_DitteCollegate":null,"IndTipoCont":0,"Gvar_DittaPrincipale":null,)"
            R"("Grst_AttivitaCollegate":null,"GstrSQL_AttivitaCollegate":"","CodiceAttività":null,)"
            R"("DescrAttività":null,"IdAttività":null}})"
            "\n");
}

TEST_F(Esegui, GivesNullForTheResultOfAMethodWithoutOne) {
  const auto report = esegui("ControllaDittaPrincipale", "--json", "--imposta", "Pvar_Ditta=10",
                             "--imposta", "AnnoSolare=2024")
                          .json();
  EXPECT_TRUE(report["risultato"].is_null());
  EXPECT_EQ(report["output"]["Gbol_DittaPrincipale"], true);
}

TEST_F(Esegui, ExitsWithOneWhenTheCallIsRefused) {
  const Outcome outcome = esegui("DitteCollegate");
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(outcome.out, HasSubstr("Stato: 1\nErrore: Codice azienda mancante!\n"));
  const Outcome asNull = esegui("DitteCollegate", "--nullo", "Pvar_Ditta", "--json");
  EXPECT_EQ(asNull.code, ExitCode::Failed);
  EXPECT_EQ(asNull.json()["stato"], 1);
  EXPECT_EQ(asNull.json()["errore"], "Codice azienda mancante!");
  EXPECT_EQ(asNull.json()["input"].dump(), R"({"Pvar_Ditta":null})");
}

TEST_F(Esegui, ExitsWithOneWhenTheCallFails) {
  const Outcome outcome =
      esegui("DitteCollegate", "--imposta", "Pvar_Ditta=abc", "--imposta", "AnnoSolare=2024");
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("Stato: 99\n"), HasSubstr(" in DitteCollegate\n")));
}

TEST_F(Esegui, AcceptsANameTypedCarelessly) {
  EXPECT_EQ(esegui("dittecollegate", "--imposta", "pvar_ditta=10", "--json").json()["metodo"],
            "DitteCollegate");
}

TEST_F(Esegui, NamesTheNearestMethodForAnUnknownOne) {
  const Outcome outcome = esegui("DuplicaCliente");
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err,
              HasSubstr("«DuplicaCliente» non esiste. Forse intendevi «DuplicaCliFor»?"));
  EXPECT_THAT(outcome.out, IsEmpty());
}

TEST_F(Esegui, CallsEveryMethod) {
  for (const MethodEntry& method : kMethods) {
    const Outcome outcome = esegui(std::string{method.name}.c_str(), "--json");
    EXPECT_THAT(outcome.code, testing::AnyOf(ExitCode::Ok, ExitCode::Failed)) << method.name;
    EXPECT_EQ(outcome.json()["metodo"], method.name);
  }
}

TEST_F(Esegui, ReportsWrongFieldsBeforeOpeningAnything) {
  const std::vector<std::vector<std::string>> wrong{
      {"--imposta", "Pvar_Dita=1"},
      {"--imposta", "Pvar_Ditta"},
      {"--imposta", "Connessione=x"},
      {"--imposta", "Pint_TipoCF=x"},
      {"--nullo", "Pint_TipoCF"},
      {"--nullo", "Pvar_Dita"},
      {"--rispondi", "forse"},
      {"--rispondi-volte", "2"},
      {"--rispondi", "no", "--rispondi-volte", "2"},
      {"--rispondi", "si", "--rispondi-volte", "0"},
      {"--rispondi", "si", "--rispondi-volte", "-1"},
      {"--rispondi", "si", "--rispondi-volte", "1001"},
      {"--rispondi", "si", "--rispondi-volte", "due"},
      {"--nullo", "Pvar_Ditta", "--imposta", "pvar_ditta=1"},
      {"--traccia", path("manca/t.x")},
      {"--traccia", db_},
  };
  const std::string before = contents(db_);
  for (const std::vector<std::string>& options : wrong) {
    std::vector<std::string> args{"esegui", "DitteCollegate", "--db", db_};
    args.insert(args.end(), options.begin(), options.end());
    const Outcome outcome = azcollWith("", args);
    EXPECT_EQ(outcome.code, ExitCode::Usage) << options.back();
    EXPECT_THAT(outcome.out, IsEmpty());
    EXPECT_THAT(outcome.err, testing::StartsWith("azcoll: "));
  }
  EXPECT_EQ(contents(db_), before);
}

TEST_F(Esegui, ReportsADatabaseThatCannotBeOpened) {
  const Outcome outcome = azcoll("esegui", "DitteCollegate", "--db", path("manca.db"));
  EXPECT_EQ(outcome.code, ExitCode::CannotOpen);
  EXPECT_THAT(outcome.err, HasSubstr("Impossibile aprire il database " + path("manca.db")));
  EXPECT_THAT(outcome.out, IsEmpty());
  EXPECT_EQ(azcoll("esegui", "DitteCollegate", "--connessione", "Provider=x").code,
            ExitCode::CannotOpen);
}

TEST_F(Esegui, WantsADatabase) {
  EXPECT_EQ(azcoll("esegui", "DitteCollegate").code, ExitCode::Usage);
  EXPECT_EQ(esegui("DitteCollegate", "--connessione", "Provider=embedded;Data Source=x").code,
            ExitCode::Usage);
}

TEST_F(Esegui, TakesAConnectionString) {
  const Outcome outcome = azcoll("esegui", "GetDittaPrincipale", "--connessione",
                                 "Provider=embedded;Data Source=" + db_, "--imposta",
                                 "Pvar_Ditta=31", "--imposta", "AnnoSolare=2024", "--json");
  EXPECT_EQ(outcome.json()["risultato"], "30") << outcome.err;
}

TEST_F(Esegui, ShowsAnInputFieldThatTheCallChanged) {
  const Outcome outcome = duplica();
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.out << outcome.err;
  EXPECT_EQ(outcome.json()["input"]["Pvar_CliFor"], 122);
  EXPECT_EQ(outcome.json()["input"]["Pvar_Ditta"], 5);
  EXPECT_FALSE(outcome.json()["input"].contains("Connessione"));
}

TEST_F(Esegui, ShowsAChangedInputFieldToPeople) {
  const Outcome outcome = esegui("DuplicaCliFor", "--imposta", "Pvar_Ditta=5", "--imposta",
                                 "Pvar_CliFor=120", "--imposta", "AnnoSolare=2024");
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.out << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("\nInput cambiato:\n  Pvar_CliFor: 120 -> 122\n"));
}

TEST_F(Esegui, WritesEveryOperationOfTheCall) {
  ASSERT_EQ(duplica().code, ExitCode::Ok);
  const auto lines = trace();
  ASSERT_GT(lines.size(), 5U);
  std::vector<std::string> operations;
  for (const auto& line : lines) {
    operations.push_back(line["op"]);
    EXPECT_TRUE(line["opzioni"].is_array());
    EXPECT_GE(line["ms"].get<double>(), 0);
    EXPECT_FALSE(line.contains("errore"));
  }
  EXPECT_EQ(operations.front(), "CommandExecute");
  EXPECT_EQ(operations.back(), "CommitTrans");
  EXPECT_THAT(operations, testing::IsSupersetOf({"BeginTrans", "Execute"}));
  EXPECT_THAT(operations, Not(testing::Contains("NextRecordset")));
  EXPECT_EQ(lines.front()["sql"], "PC_GetDitteCollegate");
  EXPECT_EQ(lines.front()["parametri"]["@CodiceDitta"], 5);
  EXPECT_EQ(lines.front()["parametri"]["@DataInizioElaborazione"], "2024-01-01");
  EXPECT_EQ(lines.front()["opzioni"].dump(), "[4]");
}

TEST_F(Esegui, WritesTheFailureOfAnOperation) {
  const Outcome outcome = esegui("DitteCollegate", "--imposta", "Pvar_Ditta=abc", "--imposta",
                                 "AnnoSolare=2024", "--traccia", path("traccia"));
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  const auto lines = trace();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0]["errore"]["numero"], 207);
  EXPECT_EQ(lines[0]["errore"]["descrizione"], "Invalid column name 'abc'.");
  EXPECT_THAT(lines[0]["sql"].get<std::string>(), HasSubstr("CG86_DITTA_CG18 = abc"));
}

TEST_F(Esegui, WritesTheTraceToStandardErrorForADash) {
  const Outcome outcome = esegui("DitteCollegate", "--imposta", "Pvar_Ditta=10", "--imposta",
                                 "AnnoSolare=2024", "--traccia", "-", "--json");
  EXPECT_EQ(outcome.json()["stato"], 0);
  EXPECT_EQ(nlohmann::json::parse(outcome.err.substr(0, outcome.err.find('\n')))["op"], "Open");
}

TEST_F(Esegui, UndoesATransactionThatTheMethodLeftOpen) {
  const Outcome outcome = esegui("DuplicaCliFor", "--imposta", "Pvar_Ditta=5", "--imposta",
                                 "Pvar_CliFor=9999", "--imposta", "AnnoSolare=2024");
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(outcome.err, HasSubstr("Annullata la transazione"));
}

TEST_F(Esegui, TakesTheLastOfTwoValues) {
  EXPECT_EQ(esegui("GetDittaPrincipale", "--json", "--imposta", "Pvar_Ditta=1", "--imposta",
                   "Pvar_Ditta=2")
                .json()["input"]["Pvar_Ditta"],
            2);
}

}  // namespace
}  // namespace azcoll::cli
