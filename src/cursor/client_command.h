#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cursor/native_connection.h"
#include "data/command.h"

namespace azcoll::cursor {

/// A command on the connections of one native provider: its parameters are those that the
/// procedure declares, asked for once, and reached by name without regard to letter case. A value
/// that was never set is Empty.
class ClientCommand final : public Command, private Parameters {
 public:
  explicit ClientCommand(std::string provider) : provider_{std::move(provider)} {}

  /// Throws `Error` unless a connection of the command's provider is behind `connection`.
  void setActiveConnection(std::shared_ptr<Connection> connection) override;
  void setCommandText(std::string text) override;
  void setCommandType(CommandOption type) override { type_ = type; }
  void setCommandTimeout(int seconds) override { timeoutSeconds_ = seconds < 0 ? 0 : seconds; }
  void setPrepared(bool /*prepared*/) override {}  // each provider knows what serves it best

  [[nodiscard]] Parameters& parameters() override { return *this; }

  std::shared_ptr<Recordset> execute(std::int64_t& recordsAffected, CommandOption options) override;

 private:
  class ClientParameter;

  [[nodiscard]] std::size_t count() override;
  [[nodiscard]] Parameter& item(std::string_view name) override;
  [[nodiscard]] Parameter& item(std::size_t index) override;

  [[nodiscard]] NativeConnection& requireConnection() const;
  /// Asks for the procedure, unless it is known.
  void load();
  void forget();

  std::string provider_;
  std::shared_ptr<NativeConnection> connection_;
  std::string text_;
  CommandOption type_ = CommandOption::Unspecified;
  int timeoutSeconds_ = 30;
  std::shared_ptr<NativeProcedure> procedure_;  // of `connection_`
  std::vector<std::unique_ptr<Parameter>> parameters_;
};

}  // namespace azcoll::cursor
