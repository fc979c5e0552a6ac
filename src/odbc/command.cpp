#include "odbc/command.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "cursor/fold.h"
#include "data/connection.h"
#include "data/error.h"
#include "data/messages.h"
#include "data/text.h"
#include "odbc/connection.h"

namespace azcoll::odbc {
namespace {

class OdbcParameter final : public Parameter {
 public:
  explicit OdbcParameter(const DeclaredParameter& declared)
      : name_(declared.name), direction_(declared.direction) {}

  [[nodiscard]] std::string name() const override { return name_; }
  [[nodiscard]] ParameterDirection direction() const override { return direction_; }
  [[nodiscard]] Variant value() const override { return value_; }
  void setValue(const Variant& value) override { value_ = value; }

 private:
  std::string name_;
  ParameterDirection direction_;
  Variant value_;
};

class OdbcCommand final : public Command, private Parameters {
 public:
  void setActiveConnection(std::shared_ptr<Connection> connection) override {
    if (!connection) {
      connection_.reset();
      return;
    }
    auto own = std::dynamic_pointer_cast<OdbcConnection>(connection);
    if (!own) {
      throw Error(std::string{messages::kWrongConnection});
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
  void setPrepared(bool /*prepared*/) override {}  // see runToEnd

  [[nodiscard]] Parameters& parameters() override { return *this; }

  std::shared_ptr<Recordset> execute(std::int64_t& recordsAffected,
                                     CommandOption options) override {
    OdbcConnection& connection = requireConnection();
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
    auto result =
        connection.callProcedure(text_, declared_, values, recordsAffected, timeoutSeconds_);
    for (std::size_t index = 0; index < parameters_.size(); ++index) {
      if (declared_[index].direction != ParameterDirection::Input) {
        parameters_[index]->setValue(values[index]);
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
    for (const auto& parameter : parameters_) {
      if (cursor::sameName(parameter->name(), name)) {
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

  OdbcConnection& requireConnection() {
    if (!connection_) {
      throw Error(std::string{messages::kNoConnection});
    }
    return *connection_;
  }

  /// Fills the parameters from the procedure's declaration, once.
  void load() {
    OdbcConnection& connection = requireConnection();
    if (loaded_) {
      return;
    }
    declared_ = connection.describeProcedure(text_);
    for (const DeclaredParameter& parameter : declared_) {
      parameters_.push_back(std::make_unique<OdbcParameter>(parameter));
    }
    loaded_ = true;
  }
  void forget() {
    declared_.clear();
    parameters_.clear();
    loaded_ = false;
  }

  std::shared_ptr<OdbcConnection> connection_;
  std::string text_;
  CommandOption type_ = CommandOption::Unspecified;
  int timeoutSeconds_ = 30;
  bool loaded_ = false;
  std::vector<DeclaredParameter> declared_;
  std::vector<std::unique_ptr<OdbcParameter>> parameters_;
};

}  // namespace

std::shared_ptr<Command> newOdbcCommand() { return std::make_shared<OdbcCommand>(); }

}  // namespace azcoll::odbc
