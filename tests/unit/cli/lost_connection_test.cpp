// What the commands say, and how they end, when the line to the server breaks on the way.

#include <functional>

#include "server_test.h"
#include "support/relay.h"

namespace azcoll::cli {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::Not;

class LostConnection : public ServerTest {
 protected:
  void SetUp() override {
    ServerTest::SetUp();
    if (test::ServerExample* const example = test::ServerExample::find()) {
      example->restore();
      server_ = example->connectionString();
    }
  }

  /// What must hold of a run that the break hit.
  void expectTold(const Outcome& outcome) const {
    EXPECT_EQ(outcome.code, ExitCode::CannotOpen) << outcome.out << outcome.err;
    EXPECT_THAT(outcome.err, AnyOf(HasSubstr("Impossibile aprire il database"),
                                   HasSubstr("La connessione al database è caduta")));
    EXPECT_THAT(outcome.err, HasSubstr("Controllare"));
    EXPECT_THAT(outcome.out + outcome.err, Not(HasSubstr(test::valueOf(server_, {"pwd"}))));
  }

  /// Runs the command once on a line that breaks after so many pieces.
  [[nodiscard]] Outcome onLine(const std::vector<std::string>& command, int pieces) const {
    test::Relay relay{server_};
    relay.hangUpAfter(static_cast<std::size_t>(pieces));
    std::vector<std::string> args = command;
    args.insert(args.begin() + 1, {"--connessione", relay.connectionString()});
    return azcollWith("", args);
  }

  /// Runs the command on lines that break after one piece, two pieces …, until it is done before
  /// the line breaks, or `isDone` although it broke.
  void onEveryBreak(
      const std::vector<std::string>& command,
      const std::function<bool()>& isDone = [] { return false; }) const {
    // The first pieces log in and look the group up; of those after it every sixteenth will do.
    for (int pieces = 1; pieces < 500; pieces += pieces < 8 ? 1 : 16) {
      SCOPED_TRACE(command.front() + " after " + std::to_string(pieces) + " pieces");
      const Outcome outcome = onLine(command, pieces);
      if (outcome.code == ExitCode::Ok) {
        EXPECT_GT(pieces, 2);  // the login, and a statement at least
        return;
      }
      expectTold(outcome);
      if (HasFailure() || isDone()) {
        return;
      }
    }
    FAIL() << "never done";
  }

  [[nodiscard]] std::string customers() const {
    return azcoll("sql", "--connessione", server_, "--csv",
                  "SELECT CG44_DITTA_CG18, CG44_CLIFOR, CG44_FLGATTIVO FROM CG44_CLIFOR"
                  " ORDER BY CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR")
        .out;
  }
};

TEST_F(LostConnection, IsToldByEseguiWhateverTheMethodMadeOfIt) {
  const std::string before = customers();
  onEveryBreak({"esegui", "DuplicaCliFor", "--imposta", "Pvar_Ditta=5", "--imposta",
                "Pvar_CliFor=120", "--imposta", "AnnoSolare=2025"},
               [&] { return customers() != before; });  // it broke behind the commit
  EXPECT_NE(customers(), before);
}

TEST_F(LostConnection, IsToldByTheCommandsThatOnlyRead) {
  onEveryBreak({"esegui", "DitteCollegate", "--imposta", "Pvar_Ditta=10", "--imposta",
                "AnnoSolare=2025", "--json", "--traccia", path("traccia.jsonl")});
  onEveryBreak({"gruppo", "--ditta", "12", "--anno", "2025"});
  onEveryBreak({"attivita", "--ditta", "40", "--anno", "2025"});
  onEveryBreak({"sql", "SELECT CG18_DITTA FROM CG18_ANADITTABASE"});
  constexpr int login = 3;  // the questions of diagnosi take a server long
  expectTold(onLine({"diagnosi"}, login));
  expectTold(onLine({"diagnosi"}, login + 2));
}

}  // namespace
}  // namespace azcoll::cli
