#include "cli_test.h"

namespace azcoll::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// Company 40 runs several activities within itself; activity 9999 is not configured in any year.
class PromptOfTheService : public DatabaseTest {
 protected:
  template <typename... Args>
  Outcome verifica(const Args&... args) {
    return azcoll("esegui", "VerificaEsistenzaAttivita", "--db", db_, "--imposta", "Pvar_Ditta=40",
                  "--imposta", "AnnoSolare=2024", "--imposta", "CodiceAttività=9999", args...);
  }

  static std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
      ++found;
    }
    return found;
  }
};

TEST_F(PromptOfTheService, IsShownAsGivenAndAnsweredNoWithoutATerminal) {
  const Outcome outcome = verifica();
  EXPECT_EQ(outcome.code, ExitCode::Ok) << outcome.out;
  EXPECT_EQ(
      outcome.err,
      "Richiesta\n"
      "L'azienda corrente gestisce l'esercizio delle multi attività su singola azienda, ma non"
      " esiste la configurazione dell'attività 9999 per l'anno 2024.\r\n"
      "Si vuole procedere alla configurazione?\n"
      "Nessun terminale a cui chiedere: la risposta è No (si veda --rispondi).\n");
  EXPECT_THAT(outcome.out, AllOf(StartsWith("Metodo: VerificaEsistenzaAttivita\nStato: 0\n"),
                                 HasSubstr("\nRisultato: False\n")));
}

TEST_F(PromptOfTheService, TakesTheAnswerGivenBeforehand) {
  const Outcome no = verifica("--rispondi", "no");
  EXPECT_EQ(count(no.err, "Si vuole procedere"), 1U);
  EXPECT_THAT(no.err, AllOf(HasSubstr("Risposta: No\n"), Not(HasSubstr("terminale"))));
}

TEST_F(PromptOfTheService, ComesBackAfterAYesUntilTheAnswersAreUsedUp) {
  const Outcome once = verifica("--rispondi", "sì");
  EXPECT_EQ(once.code, ExitCode::Ok);
  EXPECT_EQ(count(once.err, "Si vuole procedere"), 2U);
  EXPECT_EQ(count(once.err, "Risposta: Sì\n"), 1U);
  EXPECT_EQ(count(once.err, "le videate di configurazione non esistono"), 1U);
  EXPECT_THAT(once.err, HasSubstr("Risposta: No (i Sì da dare sono finiti"));
  const Outcome thrice = verifica("--rispondi", "si", "--rispondi-volte", "3");
  EXPECT_EQ(count(thrice.err, "Si vuole procedere"), 4U);
  EXPECT_EQ(count(thrice.err, "Risposta: Sì\n"), 3U);
  EXPECT_THAT(thrice.out, HasSubstr("\nRisultato: False\n"));
}

}  // namespace
}  // namespace azcoll::cli
