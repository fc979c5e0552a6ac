#include "embedded/command.h"

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "data/connection.h"
#include "data/error.h"
#include "embedded/collation.h"
#include "embedded/connection.h"

namespace azcoll::embedded {

namespace {

class EmbeddedParameter final : public Parameter {
 public:
  explicit EmbeddedParameter(const RoutineParameter& declared)
      : name_(declared.name), output_(declared.output) {}

  [[nodiscard]] std::string name() const override { return name_; }
  [[nodiscard]] ParameterDirection direction() const override {
    return output_ ? ParameterDirection::InputOutput : ParameterDirection::Input;
  }
  [[nodiscard]] Variant value() const override { return value_; }
  void setValue(const Variant& value) override { value_ = value; }

 private:
  std::string name_;
  bool output_;
  Variant value_;
};

class EmbeddedCommand final : public Command, private Parameters {
 public:
  void setActiveConnection(std::shared_ptr<Connection> connection) override {
    if (!connection) {
      connection_.reset();
      return;
    }
    auto own = std::dynamic_pointer_cast<EmbeddedConnection>(connection);
    if (!own) {
      throw Error("La connessione del comando è di un altro provider.");
    }
    if (own != connection_) {
      forget();
    }
    connection_ = std::move(own);
  }
  void setCommandText(std::string text) override {
    text_ = std::move(text);
    forget();
  }
  void setCommandType(CommandOption type) override { type_ = type; }
  void setCommandTimeout(int seconds) override { timeoutSeconds_ = seconds < 0 ? 0 : seconds; }
  void setPrepared(bool /*prepared*/) override {}  // plans are always kept

  [[nodiscard]] Parameters& parameters() override { return *this; }

  std::shared_ptr<Recordset> execute(std::int64_t& recordsAffected,
                                     CommandOption options) override {
    EmbeddedConnection& connection = requireConnection();
    const CommandOption type = options == CommandOption::Unspecified ? type_ : options;
    if (type != CommandOption::StoredProcedure) {
      return connection.execute(text_, recordsAffected, type);
    }
    load();
    std::vector<std::optional<Variant>> values;
    values.reserve(parameters_.size());
    for (const auto& parameter : parameters_) {
      // A parameter that was never given a value is not passed: its default counts.
      const Variant value = parameter->value();
      values.push_back(value.isEmpty() ? std::nullopt : std::optional(value));
    }
    auto result = connection.callProcedure(*routine_, values, recordsAffected, timeoutSeconds_);
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
      if (routine_->parameters[i].output) {
        parameters_[i]->setValue(*values[i]);
      }
    }
    return result;
  }

 private:
  [[nodiscard]] std::size_t count() override {
    load();
    return parameters_.size();
  }
  [[nodiscard]] Parameter& item(std::string_view name) override {
    load();
    const std::string folded = foldText(name);
    for (const auto& parameter : parameters_) {
      if (foldText(parameter->name()) == folded) {
        return *parameter;
      }
    }
    throw Error("Il comando non ha un parametro " + std::string(name) + ".");
  }
  [[nodiscard]] Parameter& item(std::size_t index) override {
    load();
    if (index >= parameters_.size()) {
      throw Error("Il comando non ha un parametro in posizione " + std::to_string(index) + ".");
    }
    return *parameters_[index];
  }

  EmbeddedConnection& requireConnection() {
    if (!connection_) {
      throw Error("Il comando non ha una connessione.");
    }
    return *connection_;
  }

  /// Fills the parameters from the procedure's declaration, once.
  void load() {
    EmbeddedConnection& connection = requireConnection();
    if (routine_) {
      return;
    }
    routine_ = connection.findProcedure(text_);
    for (const RoutineParameter& parameter : routine_->parameters) {
      parameters_.push_back(std::make_unique<EmbeddedParameter>(parameter));
    }
  }
  void forget() {
    routine_.reset();
    parameters_.clear();
  }

  std::shared_ptr<EmbeddedConnection> connection_;
  std::string text_;
  CommandOption type_ = CommandOption::Unspecified;
  int timeoutSeconds_ = 30;
  std::shared_ptr<const Routine> routine_;
  std::vector<std::unique_ptr<EmbeddedParameter>> parameters_;
};

}  // namespace

std::shared_ptr<Command> newEmbeddedCommand() { return std::make_shared<EmbeddedCommand>(); }

}  // namespace azcoll::embedded
