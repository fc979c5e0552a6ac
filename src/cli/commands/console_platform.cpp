#include "cli/commands/console_platform.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <istream>
#include <ostream>

#include "cli/print/names.h"
#include "data/error.h"
#include "text/trimming.h"

namespace azcoll::cli {

std::shared_ptr<Connection> ConsolePlatform::newConnection(std::string_view connectionString) {
  return defaultPlatform()->newConnection(connectionString);
}

std::shared_ptr<NamedMembers> ConsolePlatform::createObject(std::string_view progId) {
  throw Error(fmt::format(
      "L'oggetto {} non si può creare: su Linux non esistono oggetti richiamati per ProgID, dunque "
      "nemmeno le videate di configurazione. I collegamenti e le attività si configurano in "
      "CG86_AZIENDECOLL, per esempio con azcoll sql",
      progId));
}

Answer ConsolePlatform::messageBox(std::string_view text, int /*style*/, std::string_view title) {
  console_.err << title << '\n' << text << '\n';
  Answer answer = Answer::No;
  if (answer_) {
    answer = givenAnswer();
  } else if (console_.interactive) {
    answer = ask();
  } else {
    console_.err << "Nessun terminale a cui chiedere: la risposta è No (si veda --rispondi).\n";
  }
  if (answer == Answer::Yes) {
    explainNoScreens();
  }
  return answer;
}

Answer ConsolePlatform::givenAnswer() {
  // A Yes to a configuration prompt leads to the same prompt again until the configuration exists,
  // and nothing configures it in between: without a limit it would never end.
  if (*answer_ == Answer::Yes && yesLeft_ > 0) {
    --yesLeft_;
    console_.err << "Risposta: Sì\n";
    return Answer::Yes;
  }
  console_.err << (*answer_ == Answer::Yes
                       ? "Risposta: No (i Sì da dare sono finiti: si veda --rispondi-volte)\n"
                       : "Risposta: No\n");
  return Answer::No;
}

Answer ConsolePlatform::ask() {
  constexpr std::array<std::string_view, 4> yes{"s", "si", "y", "yes"};
  console_.err << "Sì o No? [s/N] " << std::flush;
  std::string line;
  if (!std::getline(console_.in, line)) {
    console_.err << '\n';  // the end of the input leaves the cursor after the question
  }
  line.erase(line.find_last_not_of(" \t\r") + 1);
  const std::string answer = foldName(trim(line));
  const bool agreed = std::find(yes.begin(), yes.end(), answer) != yes.end();
  console_.err << (agreed ? "Risposta: Sì\n" : "Risposta: No\n");
  return agreed ? Answer::Yes : Answer::No;
}

void ConsolePlatform::explainNoScreens() {
  if (!noScreensExplained_) {
    console_.err << "Su Linux le videate di configurazione non esistono: dopo il Sì la "
                    "configurazione viene solo ricontrollata.\n";
    noScreensExplained_ = true;
  }
}

}  // namespace azcoll::cli
