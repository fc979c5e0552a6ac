#include "cli/commands/console_platform.h"

#include <sstream>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "data/error.h"

namespace azcoll::cli {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class Prompt : public testing::Test {
 protected:
  Answer ask(bool interactive, std::optional<Answer> given, const std::string& typed = "") {
    std::istringstream in{typed};
    Console console{in, out_, err_, interactive};
    ConsolePlatform platform{console, given};
    return platform.messageBox("Si vuole procedere?\r\nDavvero?", 36, "Richiesta");
  }

  std::ostringstream out_;
  std::ostringstream err_;
};

TEST_F(Prompt, ShowsTitleAndTextAsGiven) {
  ask(false, Answer::No);
  EXPECT_THAT(err_.str(), HasSubstr("Richiesta\nSi vuole procedere?\r\nDavvero?\n"));
  EXPECT_EQ(out_.str(), "");
}

TEST_F(Prompt, GivesTheAnswerGivenBeforehand) {
  EXPECT_EQ(ask(false, Answer::Yes), Answer::Yes);
  EXPECT_EQ(ask(false, Answer::No), Answer::No);
  EXPECT_EQ(ask(true, Answer::Yes, "n\n"), Answer::Yes);
}

TEST_F(Prompt, AnswersNoWithoutATerminalAndSaysSo) {
  EXPECT_EQ(ask(false, std::nullopt, "s\n"), Answer::No);
  EXPECT_THAT(err_.str(), HasSubstr("la risposta è No"));
}

TEST_F(Prompt, AsksThePersonAtTheTerminal) {
  for (const char* yes : {"s\n", "S\n", "si\n", "Sì\n", " sì \r\n", "y\n", "yes"}) {
    EXPECT_EQ(ask(true, std::nullopt, yes), Answer::Yes) << yes;
  }
  for (const char* no : {"", "\n", "n\n", "no\n", "forse\n", "sissignore\n"}) {
    EXPECT_EQ(ask(true, std::nullopt, no), Answer::No) << no;
  }
}

TEST_F(Prompt, SaysWhatItUnderstood) {
  ask(true, std::nullopt, "forse\n");
  EXPECT_THAT(err_.str(), EndsWith("Sì o No? [s/N] Risposta: No\n"));
  ask(true, std::nullopt, "");
  EXPECT_THAT(err_.str(), EndsWith("Sì o No? [s/N] \nRisposta: No\n"));
}

TEST_F(Prompt, SaysYesAsOftenAsItMay) {
  std::istringstream in;
  Console console{in, out_, err_};
  ConsolePlatform platform{console, Answer::Yes, 3};
  for (const char* text : {"A?", "A?", "B?"}) {
    EXPECT_EQ(platform.messageBox(text, 36, "Richiesta"), Answer::Yes) << text;
  }
  EXPECT_THAT(err_.str(), Not(HasSubstr("--rispondi-volte")));
  EXPECT_EQ(platform.messageBox("C?", 36, "Richiesta"), Answer::No);
  EXPECT_EQ(platform.messageBox("A?", 36, "Richiesta"), Answer::No);
  EXPECT_THAT(err_.str(), HasSubstr("Risposta: No (i Sì da dare sono finiti"));
}

TEST_F(Prompt, SaysYesOnceUnlessToldOtherwise) {
  std::istringstream in;
  Console console{in, out_, err_};
  ConsolePlatform platform{console, Answer::Yes};
  EXPECT_EQ(platform.messageBox("A?", 36, "Richiesta"), Answer::Yes);
  EXPECT_EQ(platform.messageBox("B?", 36, "Richiesta"), Answer::No);
}

TEST_F(Prompt, NeverRunsOutOfNo) {
  std::istringstream in;
  Console console{in, out_, err_};
  ConsolePlatform platform{console, Answer::No};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(platform.messageBox("A?", 36, "Richiesta"), Answer::No);
  }
  EXPECT_THAT(err_.str(), Not(HasSubstr("finiti")));
}

TEST_F(Prompt, SaysOnceAfterAYesThatThereAreNoScreens) {
  std::istringstream in{"s\ns\n"};
  Console console{in, out_, err_, true};
  ConsolePlatform platform{console, std::nullopt};
  EXPECT_EQ(platform.messageBox("A?", 36, "Richiesta"), Answer::Yes);
  const std::string first = err_.str();
  EXPECT_THAT(first, EndsWith("Su Linux le videate di configurazione non esistono: dopo il Sì la "
                              "configurazione viene solo ricontrollata.\n"));
  EXPECT_EQ(platform.messageBox("A?", 36, "Richiesta"), Answer::Yes);
  EXPECT_THAT(err_.str().substr(first.size()), Not(HasSubstr("videate")));
}

TEST_F(Prompt, DoesNotSpeakOfScreensAfterANo) {
  ask(false, Answer::No);
  ask(true, std::nullopt, "n\n");
  ask(false, std::nullopt);
  EXPECT_THAT(err_.str(), Not(HasSubstr("videate")));
}

TEST(ConsolePlatform, SaysThatNoObjectIsCreatedByProgId) {
  std::istringstream in;
  std::ostringstream out;
  Console console{in, out, out};
  ConsolePlatform platform{console, std::nullopt};
  try {
    static_cast<void>(platform.createObject("AZCOLLUI.CLSCO_ATTIVITACOLL"));
    FAIL() << "an object was created";
  } catch (const Error& error) {
    EXPECT_THAT(
        error.description(),
        AllOf(HasSubstr("AZCOLLUI.CLSCO_ATTIVITACOLL non si può creare"), HasSubstr("su Linux"),
              HasSubstr("videate di configurazione"), HasSubstr("azcoll sql")));
    EXPECT_FALSE(error.fromProvider());
  }
}

TEST(ConsolePlatform, ChoosesTheProviderByTheConnectionString) {
  std::istringstream in;
  std::ostringstream out;
  Console console{in, out, out};
  ConsolePlatform platform{console, std::nullopt};
  EXPECT_NE(platform.newConnection("Provider=embedded;Data Source=:memory:"), nullptr);
  // Every other string goes to ODBC as it is; what is wrong with it shows when it is opened.
  EXPECT_THROW(
      {
        const std::shared_ptr<Connection> unknown = platform.newConnection("Provider=nessuno");
        unknown->open("", "", CommandOption::Unspecified);
      },
      Error);
}

}  // namespace
}  // namespace azcoll::cli
