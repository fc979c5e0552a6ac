// Bad input on a server: what each command says, and that it says no password.

#include "server_test.h"
#include "support/relay.h"

namespace azcoll::cli {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class RefusedConnection : public ServerTest {
 protected:
  /// Every command with this connection string ends with 3, saying `check` and not the password.
  static void expectRefused(const std::string& connection, const std::string& check) {
    const std::string password = test::valueOf(connection, {"pwd"});
    for (std::vector<std::string> command :
         {std::vector<std::string>{"crea"},
          {"diagnosi"},
          {"sql", "SELECT 1 AS A"},
          {"gruppo", "--ditta", "12", "--anno", "2025"},
          {"attivita", "--ditta", "40", "--anno", "2025"},
          {"esegui", "DitteCollegate", "--imposta", "Pvar_Ditta=10"}}) {
      SCOPED_TRACE(command.front());
      command.insert(command.begin() + 1, {"--connessione", connection});
      const Outcome outcome = azcollWith("", command);
      EXPECT_EQ(outcome.code, ExitCode::CannotOpen);
      EXPECT_THAT(outcome.out, IsEmpty());
      EXPECT_THAT(outcome.err,
                  AllOf(HasSubstr("Impossibile aprire il database: "), HasSubstr(check)));
      EXPECT_THAT(outcome.err, Not(HasSubstr(password)));
    }
  }
};

TEST_F(RefusedConnection, SaysWhatToCheck) {
  expectRefused(test::withUser(server_, test::valueOf(server_, {"uid"}), "Sbagliata_77"),
                "Controllare l'utente e la password (UID, PWD)");
  expectRefused(test::withUser(server_, "azcoll_nessuno", "Sbagliata_77"),
                "Controllare l'utente e la password (UID, PWD)");
  expectRefused(test::withDatabase(server_, "azcoll_prova_non_esiste"),
                "Controllare il nome del database (Database)");
  const std::string slow = server_ + "Connect Timeout=5;";
  expectRefused(test::withKey(slow, "Server", "azcoll.invalid", {"server"}),
                "Controllare il nome del server e la porta (Server, Port)");
  expectRefused(test::withKey(server_, "Driver", "AZCOLL_NESSUNO", {"driver", "dsn"}),
                "Controllare il driver (Driver, oppure DSN)");
}

TEST_F(RefusedConnection, SaysSoWhenAnotherProgramHangsUp) {
  test::Relay relay{server_};
  relay.hangUpAfter(0);
  const Outcome outcome = azcoll("diagnosi", "--connessione", relay.connectionString());
  EXPECT_EQ(outcome.code, ExitCode::CannotOpen);
  EXPECT_THAT(outcome.err, HasSubstr("Controllare il nome del server e la porta"));
}

TEST_F(RefusedConnection, SaysSoToALoginThatTheDatabaseDoesNotKnow) {
  const test::ServerDatabase other{server_};
  const test::ServerLogin stranger{server_};
  const Outcome outcome = azcoll("diagnosi", "--connessione",
                                 test::withDatabase(stranger.connectionString(), other.name()));
  EXPECT_EQ(outcome.code, ExitCode::CannotOpen);
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("Controllare il nome del database (Database)"),
                                 Not(HasSubstr(test::ServerLogin::kPassword))));
}

TEST_F(RefusedConnection, ADatabaseWithoutTheTablesSaysWhoMakesThem) {
  const Outcome method = azcoll("esegui", "RecordsetAttivitaCollegate", "--connessione", server_,
                                "--imposta", "Pvar_Ditta=5", "--imposta", "AnnoSolare=2025");
  EXPECT_THAT(method.err, HasSubstr("azcoll diagnosi"));  // beside the method's own message
  const Outcome group =
      azcoll("gruppo", "--connessione", server_, "--ditta", "12", "--anno", "2025");
  EXPECT_EQ(group.code, ExitCode::Failed);
  EXPECT_THAT(group.err, HasSubstr("azcoll diagnosi"));
  const Outcome activities =
      azcoll("attivita", "--connessione", server_, "--ditta", "40", "--anno", "2025");
  EXPECT_EQ(activities.code, ExitCode::Failed);
  EXPECT_THAT(activities.err, HasSubstr("azcoll diagnosi"));
}

/// The look-up of the group passes over the missing procedure; the command does not.
void expectToldWithoutAProcedure(const std::string& connection) {
  const Outcome outcome =
      azcoll("esegui", "DuplicaCliFor", "--connessione", connection, "--imposta", "Pvar_Ditta=5",
             "--imposta", "Pvar_CliFor=120", "--imposta", "AnnoSolare=2025");
  EXPECT_EQ(outcome.code, ExitCode::Failed);
  EXPECT_THAT(outcome.out, HasSubstr("Stato"));
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("2812"), HasSubstr("azcoll diagnosi")));
}

TEST_F(RefusedConnection, AMethodThatFindsNoGroupForLackOfItsProcedureHasNotSucceeded) {
  expectToldWithoutAProcedure(server_);
}

TEST(DatabaseWithoutAProcedure, IsToldOnTheEmbeddedEngineToo) {
  expectToldWithoutAProcedure("Provider=embedded;Data Source=:memory:");
}

TEST_F(RefusedConnection, AnOlderSchemaOrMissingRightsSendToDiagnosi) {
  installSchema();
  run("ALTER TABLE CG16_ANAGGEN DROP COLUMN CG16_RAGSOANAG");
  const Outcome older =
      azcoll("gruppo", "--connessione", server_, "--ditta", "12", "--anno", "2025");
  EXPECT_EQ(older.code, ExitCode::Failed);
  EXPECT_THAT(older.err, HasSubstr("azcoll diagnosi"));
  const test::ServerLogin login{server_};
  const Outcome group = azcoll("gruppo", "--connessione", login.connectionString(), "--ditta", "12",
                               "--anno", "2025");
  EXPECT_EQ(group.code, ExitCode::Failed);
  EXPECT_THAT(group.err, HasSubstr("azcoll diagnosi"));
  const Outcome method = azcoll("esegui", "ControllaDittaCollegata", "--connessione",
                                login.connectionString(), "--imposta", "Pvar_Ditta=5");
  EXPECT_THAT(method.err, HasSubstr("azcoll diagnosi"));
  EXPECT_THAT(method.out + method.err, Not(HasSubstr(test::ServerLogin::kPassword)));
}

}  // namespace
}  // namespace azcoll::cli
