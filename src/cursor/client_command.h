#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "data/command.h"
#include "data/connection.h"
#include "data/error.h"
#include "data/messages.h"
#include "data/text.h"
#include "text/letter_case.h"

namespace azcoll::cursor {

/// A parameter as the procedure declares it.
struct ProcedureParameter {
  std::string name;
  ParameterDirection direction = ParameterDirection::Input;
};

/// A command on the connections of one provider: its parameters are those that the procedure
/// declares, asked for once, and reached by name without regard to letter case.
///
/// `Provider` is the connection class. It has `findProcedure(name)`, which gives a shared pointer
/// to what it knows of a procedure; `parametersOf` of that; and `callProcedure` of it, with a value
/// per parameter, which receives the outputs. A value that was never set is Empty.
template <typename Provider>
class ClientCommand final : public Command, private Parameters {
 public:
  void setActiveConnection(std::shared_ptr<Connection> connection) override {
    if (!connection) {
      connection_.reset();
      return;
    }
    auto own = std::dynamic_pointer_cast<Provider>(connection);
    if (!own) {
      throw Error(messages::kWrongConnection);
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
  void setPrepared(bool /*prepared*/) override {}  // each provider knows what serves it best

  [[nodiscard]] Parameters& parameters() override { return *this; }

  std::shared_ptr<Recordset> execute(std::int64_t& recordsAffected,
                                     CommandOption options) override {
    Provider& connection = requireConnection();
    const CommandOption type = options == CommandOption::Unspecified ? type_ : options;
    if (type != CommandOption::StoredProcedure) {
      return connection.execute(text_, recordsAffected, type);
    }
    load();
    std::vector<Variant> values;
    values.reserve(parameters_.size());
    for (const auto& parameter : parameters_) {
      values.push_back(parameter->value());
    }
    auto result = connection.callProcedure(*procedure_, values, recordsAffected, timeoutSeconds_);
    for (std::size_t index = 0; index < parameters_.size(); ++index) {
      if (parameters_[index]->direction() != ParameterDirection::Input) {
        parameters_[index]->setValue(values[index]);
      }
    }
    return result;
  }

 private:
  class ClientParameter final : public Parameter {
   public:
    explicit ClientParameter(ProcedureParameter declared) : declared_{std::move(declared)} {}

    [[nodiscard]] std::string name() const override { return declared_.name; }
    [[nodiscard]] ParameterDirection direction() const override { return declared_.direction; }
    [[nodiscard]] Variant value() const override { return value_; }
    void setValue(const Variant& value) override { value_ = value; }

   private:
    ProcedureParameter declared_;
    Variant value_;
  };

  using Procedure = decltype(std::declval<Provider&>().findProcedure(std::string_view{}));

  [[nodiscard]] std::size_t count() override {
    load();
    return parameters_.size();
  }
  [[nodiscard]] Parameter& item(std::string_view name) override {
    load();
    for (const auto& parameter : parameters_) {
      if (equalsIgnoringCase(parameter->name(), name)) {
        return *parameter;
      }
    }
    throw Error(join(messages::kItemNotFound, name));
  }
  [[nodiscard]] Parameter& item(std::size_t index) override {
    load();
    if (index >= parameters_.size()) {
      throw Error(join(messages::kItemNotFound, index));
    }
    return *parameters_[index];
  }

  Provider& requireConnection() {
    if (!connection_) {
      throw Error(messages::kNoConnection);
    }
    return *connection_;
  }

  void load() {
    Provider& connection = requireConnection();
    if (procedure_) {
      return;
    }
    procedure_ = connection.findProcedure(text_);
    for (ProcedureParameter& declared : Provider::parametersOf(*procedure_)) {
      parameters_.push_back(std::make_unique<ClientParameter>(std::move(declared)));
    }
  }
  void forget() {
    procedure_.reset();
    parameters_.clear();
  }

  std::shared_ptr<Provider> connection_;
  std::string text_;
  CommandOption type_ = CommandOption::Unspecified;
  int timeoutSeconds_ = 30;
  Procedure procedure_;
  std::vector<std::unique_ptr<ClientParameter>> parameters_;
};

}  // namespace azcoll::cursor
