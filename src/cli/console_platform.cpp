#include "cli/console_platform.h"

#include <algorithm>
#include <array>
#include <istream>
#include <ostream>

#include "cli/names.h"
#include "data/text.h"

namespace azcoll::cli {

std::shared_ptr<Connection> ConsolePlatform::newConnection(std::string_view connectionString) {
  return defaultPlatform()->newConnection(connectionString);
}

Answer ConsolePlatform::messageBox(std::string_view text, int /*style*/, std::string_view title) {
  console_.err << title << '\n' << text << '\n';
  if (answer_) {
    return givenAnswer(text);
  }
  if (console_.interactive) {
    return ask();
  }
  console_.err << "Nessun terminale a cui chiedere: la risposta è No (si veda --rispondi).\n";
  return Answer::No;
}

Answer ConsolePlatform::givenAnswer(std::string_view text) {
  // A Yes to a configuration prompt leads to the same prompt again until the configuration exists,
  // and nothing configures it in between: a second Yes would never end.
  if (*answer_ == Answer::Yes && lastYes_ == text) {
    console_.err << "Risposta: No (alla stessa richiesta si è già risposto Sì)\n";
    return Answer::No;
  }
  const bool yes = *answer_ == Answer::Yes;
  lastYes_ = yes ? text : std::string_view{};
  console_.err << (yes ? "Risposta: Sì\n" : "Risposta: No\n");
  return *answer_;
}

Answer ConsolePlatform::ask() {
  constexpr std::array<std::string_view, 4> yes{"s", "si", "y", "yes"};
  console_.err << "Sì o No? [s/N] " << std::flush;
  std::string line;
  std::getline(console_.in, line);
  line.erase(line.find_last_not_of(" \t\r") + 1);
  const std::string answer = foldName(trim(line));
  return std::find(yes.begin(), yes.end(), answer) != yes.end() ? Answer::Yes : Answer::No;
}

}  // namespace azcoll::cli
