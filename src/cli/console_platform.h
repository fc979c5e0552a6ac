#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "cli/console.h"
#include "component/platform.h"

namespace azcoll::cli {

/// The platform's services for a call from the command line: prompts are shown on the message
/// stream and answered beforehand, by the person at the terminal, or with No.
class ConsolePlatform final : public Platform {
 public:
  /// `answer` is the answer given beforehand, if any.
  ConsolePlatform(Console& console, std::optional<Answer> answer)
      : console_{console}, answer_{answer} {}

  [[nodiscard]] std::shared_ptr<Connection> newConnection(
      std::string_view connectionString) override;
  [[nodiscard]] Answer messageBox(std::string_view text, int style,
                                  std::string_view title) override;

 private:
  [[nodiscard]] Answer givenAnswer(std::string_view text);
  [[nodiscard]] Answer ask();

  Console& console_;
  std::optional<Answer> answer_;
  std::string lastYes_;  ///< the question that the answer given beforehand said Yes to
};

}  // namespace azcoll::cli
