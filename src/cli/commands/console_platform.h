#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "cli/console.h"
#include "component/platform.h"

namespace azcoll::cli {

/// The platform's services for a call from the command line: prompts are shown on the message
/// stream and answered beforehand, by the person at the terminal, or with No. There are no
/// configuration screens and no objects by ProgID.
class ConsolePlatform final : public Platform {
 public:
  /// `answer` is the answer given beforehand, if any; Yes is given `times` times, then No.
  ConsolePlatform(Console& console, std::optional<Answer> answer, std::int32_t times = 1)
      : console_{console}, answer_{answer}, yesLeft_{times} {}

  [[nodiscard]] std::shared_ptr<Connection> newConnection(
      std::string_view connectionString) override;
  [[nodiscard]] Answer messageBox(std::string_view text, int style,
                                  std::string_view title) override;
  /// Throws `Error`: no object can be created here, and the message says what to do instead.
  [[nodiscard]] std::shared_ptr<NamedMembers> createObject(std::string_view progId) override;

 private:
  [[nodiscard]] Answer givenAnswer();
  [[nodiscard]] Answer ask();
  void explainNoScreens();

  Console& console_;
  std::optional<Answer> answer_;
  std::int32_t yesLeft_;  ///< how often the answer given beforehand is still Yes
  bool noScreensExplained_ = false;
};

}  // namespace azcoll::cli
