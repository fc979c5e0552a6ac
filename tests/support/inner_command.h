#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "data/connection.h"

namespace azcoll::test {

/// A command of a native connection that stands under a connection of the tests: whatever
/// connection it is set on, it works on the native one.
class InnerCommand final : public Command {
 public:
  /// `executing`, when set, is told the name of the procedure before it runs.
  explicit InnerCommand(std::shared_ptr<Connection> native,
                        std::function<void(std::string_view)> executing = {})
      : native_{std::move(native)},
        command_{native_->newCommand()},
        executing_{std::move(executing)} {}

  void setActiveConnection(std::shared_ptr<Connection> connection) override {
    command_->setActiveConnection(connection ? native_ : nullptr);
  }
  void setCommandText(std::string text) override {
    text_ = text;
    command_->setCommandText(std::move(text));
  }
  void setCommandType(CommandOption type) override { command_->setCommandType(type); }
  void setCommandTimeout(int seconds) override { command_->setCommandTimeout(seconds); }
  void setPrepared(bool prepared) override { command_->setPrepared(prepared); }
  [[nodiscard]] Parameters& parameters() override { return command_->parameters(); }
  std::shared_ptr<Recordset> execute(std::int64_t& recordsAffected,
                                     CommandOption options) override {
    if (executing_) {
      executing_(text_);
    }
    return command_->execute(recordsAffected, options);
  }

 private:
  std::shared_ptr<Connection> native_;
  std::shared_ptr<Command> command_;
  std::function<void(std::string_view)> executing_;
  std::string text_;
};

}  // namespace azcoll::test
