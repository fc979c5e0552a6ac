#include "cli/console_platform.h"

#include <sstream>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "data/error.h"

namespace azcoll::cli {
namespace {

using testing::HasSubstr;

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

TEST_F(Prompt, DoesNotSayYesTwiceToTheSameQuestion) {
  std::istringstream in;
  Console console{in, out_, err_};
  ConsolePlatform platform{console, Answer::Yes};
  EXPECT_EQ(platform.messageBox("A?", 36, "Richiesta"), Answer::Yes);
  EXPECT_EQ(platform.messageBox("A?", 36, "Richiesta"), Answer::No);
  EXPECT_EQ(platform.messageBox("B?", 36, "Richiesta"), Answer::Yes);
  EXPECT_THAT(err_.str(), HasSubstr("si è già risposto Sì"));
}

TEST(ConsolePlatform, ChoosesTheProviderByTheConnectionString) {
  std::istringstream in;
  std::ostringstream out;
  Console console{in, out, out};
  ConsolePlatform platform{console, std::nullopt};
  EXPECT_NE(platform.newConnection("Provider=embedded;Data Source=:memory:"), nullptr);
  EXPECT_THROW(static_cast<void>(platform.newConnection("Provider=nessuno")), Error);
}

}  // namespace
}  // namespace azcoll::cli
