#include <ostream>
#include <streambuf>

#include "cli_test.h"

namespace azcoll::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

constexpr const char* kCommands[] = {"crea",   "esegui", "gruppo", "attivita",
                                     "metodi", "campi",  "sql",    "diagnosi"};

TEST(App, PrintsItsVersion) {
  const Outcome outcome = azcoll("--version");
  EXPECT_EQ(outcome.code, ExitCode::Ok);
  EXPECT_THAT(outcome.out, MatchesRegex("azcoll [0-9]+\\.[0-9]+\\.[0-9]+\n"));
  EXPECT_THAT(outcome.err, IsEmpty());
}

TEST(App, PrintsItsHelpInItalian) {
  for (const char* option : {"--help", "-h"}) {
    const Outcome outcome = azcoll(option);
    EXPECT_EQ(outcome.code, ExitCode::Ok);
    EXPECT_THAT(outcome.err, IsEmpty());
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("Uso: azcoll [OPZIONI] [COMANDO]"),
                                   HasSubstr("Opzioni:"), HasSubstr("Comandi:")));
    EXPECT_THAT(outcome.out, Not(HasSubstr("Options")));
    EXPECT_THAT(outcome.out, Not(HasSubstr("Print")));
    for (const char* command : kCommands) {
      EXPECT_THAT(outcome.out, HasSubstr(std::string{"\n  "} + command)) << command;
    }
  }
}

TEST(App, PrintsTheHelpOfEveryCommandInItalian) {
  for (const char* command : kCommands) {
    const Outcome outcome = azcoll(command, "--help");
    EXPECT_EQ(outcome.code, ExitCode::Ok) << command;
    EXPECT_THAT(outcome.err, IsEmpty());
    EXPECT_THAT(outcome.out, HasSubstr(std::string{"Uso: azcoll "} + command));
    EXPECT_THAT(outcome.out, HasSubstr("mostra questo aiuto"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("REQUIRED")));
    EXPECT_THAT(outcome.out, Not(HasSubstr("Excludes")));
    EXPECT_THAT(outcome.out, Not(HasSubstr("TEXT")));
    EXPECT_THAT(outcome.out, Not(HasSubstr("Positionals")));
    EXPECT_THAT(outcome.out, Not(HasSubstr("Options")));
  }
}

TEST(App, SaysInItsHelpWhereTheTraceGoes) {
  EXPECT_THAT(azcoll("esegui", "--help").out, HasSubstr("standard error"));
}

TEST(App, WantsACommand) {
  const Outcome outcome = azcoll();
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err, HasSubstr("Manca il comando. Comandi: crea, esegui"));
  EXPECT_THAT(outcome.out, IsEmpty());
}

TEST(App, NamesTheNearestCommandForAnUnknownOne) {
  const Outcome outcome = azcoll("esegiu", "DuplicaCliFor", "--db", "x");
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err, HasSubstr("Comando sconosciuto: «esegiu». Forse intendevi «esegui»?"));
}

TEST(App, ListsTheCommandsForAWordThatResemblesNone) {
  const Outcome outcome = azcoll("qwerty");
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err, Not(HasSubstr("Forse")));
  EXPECT_THAT(outcome.err,
              HasSubstr("Comandi: crea, esegui, gruppo, attivita, metodi, campi, sql, diagnosi."));
}

TEST(App, NamesTheNearestOptionForAnUnknownOne) {
  const Outcome outcome = azcoll("metodi", "--jsno");
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err, HasSubstr("Opzione sconosciuta: --jsno. Forse intendevi «--json»?"));
  EXPECT_THAT(azcoll("sql", "--dbb=x").err, HasSubstr("--dbb. Forse intendevi «--db»?"));
  EXPECT_THAT(azcoll("--versoin").err, HasSubstr("«--version»"));
}

TEST(App, RefusesAnArgumentTooMany) {
  const Outcome outcome = azcoll("metodi", "pippo");
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err, HasSubstr("Argomento di troppo: «pippo»."));
  EXPECT_THAT(azcoll("esegui", "DitteCollegate", "crea", "--db", "x").err,
              HasSubstr("Argomento di troppo: «crea»."));
  EXPECT_THAT(azcoll("crea", "--db", "x", "-").err, HasSubstr("Argomento di troppo: «-»."));
}

TEST(App, TakesADoubleDashAsTheEndOfTheOptions) {
  EXPECT_EQ(azcoll("metodi", "--").code, ExitCode::Ok);
  EXPECT_THAT(azcoll("metodi", "--", "--json").err, HasSubstr("--json"));
}

TEST(App, WantsTheRequiredArguments) {
  EXPECT_EQ(azcoll("esegui").code, ExitCode::Usage);
  EXPECT_THAT(azcoll("esegui", "--db", "x").err, HasSubstr("Manca METODO."));
  EXPECT_THAT(azcoll("gruppo", "--db", "x").err, HasSubstr("Manca --ditta."));
}

TEST(App, WantsTheValueOfAnOption) {
  const Outcome outcome = azcoll("crea", "--db");
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err, HasSubstr("L'opzione --db vuole un valore."));
}

TEST(App, RefusesAnOptionGivenTwice) {
  const Outcome outcome = azcoll("crea", "--db", "a", "--db", "b");
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err, HasSubstr("L'opzione --db è indicata più volte."));
}

TEST(App, RefusesAFlagWithAValueThatIsNone) {
  const Outcome outcome = azcoll("metodi", "--json=forse");
  EXPECT_EQ(outcome.code, ExitCode::Usage);
  EXPECT_THAT(outcome.err, StartsWith("azcoll: "));
}

TEST(App, SurvivesOddArguments) {
  const std::string zero{"\0x", 2};
  const std::vector<std::vector<std::string>> lines{
      {""},
      {"", ""},
      {"-"},
      {"--"},
      {"--", "--"},
      {"---"},
      {"--="},
      {"-x"},
      {"=", "a=b"},
      {"\xFF\xFE"},
      {zero},
      {std::string(100'000, 'a')},
      {"--" + std::string(100'000, 'a')},
      {"metodi", ""},
      {"esegui", ""},
      {"esegui", "\xFF"},
      {"esegui", std::string(100'000, 'D')},
      {"esegui", "DuplicaCliFor", "--imposta"},
      {"esegui", "DuplicaCliFor", "--imposta", ""},
      {"esegui", "DuplicaCliFor", "--imposta", "[a,b]"},
      {"esegui", "DuplicaCliFor", "--imposta", "=="},
      {"esegui", "DuplicaCliFor", "--nullo", ""},
      {"esegui", "DuplicaCliFor", "--rispondi", "\xFF"},
      {"esegui", "DuplicaCliFor", "--rispondi-volte", "\xFF"},
      {"gruppo", "--ditta", "\xFF"},
      {"gruppo", "--ditta", "1", "--anni", "-"},
      {"gruppo", "--ditta", "1", "--svg", zero},
      {"attivita", "--ditta", zero},
      {"sql", "--db", ""},
      {"sql", "--db", "a;b"},
      {"sql", "--db", "a\"b"},
      {"sql", "--db", zero},
      {"sql", "--connessione", ";;;==="},
      {"sql", "--connessione", zero},
      {"crea", "--db", ""},
      {"crea", "--db", ":memory:"},
      {"crea", "--esempio=3", "--db", "/nessuna/cartella/x"},
      {"crea", "--connessione", zero},
      {"crea", "--connessione", ";;;==="},
      {"diagnosi", "--db", zero},
      {"diagnosi", "--db", "/nessuna/cartella/x"},
  };
  for (const std::vector<std::string>& args : lines) {
    const Outcome outcome = azcollWith("", args);
    EXPECT_THAT(outcome.code, testing::AnyOf(ExitCode::Usage, ExitCode::CannotOpen))
        << args.front() << ' ' << outcome.err;
    EXPECT_THAT(outcome.err, StartsWith("azcoll: "));
    EXPECT_THAT(outcome.out, IsEmpty());
  }
}

/// A stream that takes nothing, like a full disk.
class FullBuffer : public std::streambuf {};

TEST(App, ReportsOutputThatCannotBeWritten) {
  FullBuffer full;
  std::ostream out{&full};
  std::istringstream in;
  std::ostringstream err;
  EXPECT_EQ(run({"metodi"}, in, out, err), static_cast<int>(ExitCode::Failed));
  EXPECT_THAT(err.str(), HasSubstr("non è stato scritto per intero"));
}

}  // namespace
}  // namespace azcoll::cli
