#include "cursor/client_command.h"

#include <utility>

#include "cursor/client_cursor.h"
#include "data/error.h"
#include "data/messages.h"
#include "data/text.h"
#include "text/letter_case.h"

namespace azcoll::cursor {

class ClientCommand::ClientParameter final : public Parameter {
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

void ClientCommand::setActiveConnection(std::shared_ptr<Connection> connection) {
  if (!connection) {  // a parameter that the caller still holds stays readable
    procedure_.reset();
    connection_.reset();
    return;
  }
  std::shared_ptr<NativeConnection> native = nativeOf(connection);
  // A procedure can only be run by the provider that found it.
  if (native->provider() != provider_) {
    throw Error(messages::kWrongConnection);
  }
  // Another database may declare the procedure in another way.
  if (native != connection_) {
    forget();
  }
  connection_ = std::move(native);
}

void ClientCommand::setCommandText(std::string text) {
  text_ = std::move(text);
  forget();
}

std::shared_ptr<Recordset> ClientCommand::execute(std::int64_t& recordsAffected,
                                                  CommandOption options) {
  NativeConnection& connection = requireConnection();
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
  ExecutionResult result = procedure_->call(values, timeoutSeconds_);
  recordsAffected = result.recordsAffected;
  for (std::size_t index = 0; index < parameters_.size(); ++index) {
    // Values of inputs stay as the caller gave them, not as they were converted.
    if (parameters_[index]->direction() != ParameterDirection::Input) {
      parameters_[index]->setValue(values[index]);
    }
  }
  return openClientCursor(std::move(result), connection_);
}

std::size_t ClientCommand::count() {
  load();
  return parameters_.size();
}

Parameter& ClientCommand::item(std::string_view name) {
  load();
  for (const auto& parameter : parameters_) {
    if (equalsIgnoringCase(parameter->name(), name)) {
      return *parameter;
    }
  }
  throw Error(join(messages::kItemNotFound, name));
}

Parameter& ClientCommand::item(std::size_t index) {
  load();
  if (index >= parameters_.size()) {
    throw Error(join(messages::kItemNotFound, index));
  }
  return *parameters_[index];
}

NativeConnection& ClientCommand::requireConnection() const {
  if (!connection_) {
    throw Error(messages::kNoConnection);
  }
  return *connection_;
}

void ClientCommand::load() {
  NativeConnection& connection = requireConnection();
  // Found once: asking may cost round trips.
  if (procedure_) {
    return;
  }
  std::shared_ptr<NativeProcedure> found = connection.findProcedure(text_);
  std::vector<std::unique_ptr<Parameter>> declared;
  for (const ProcedureParameter& each : found->parameters()) {
    declared.push_back(std::make_unique<ClientParameter>(each));
  }
  // Both or none: parameters that are not all there would be taken for all.
  parameters_ = std::move(declared);
  procedure_ = std::move(found);
}

void ClientCommand::forget() {
  procedure_.reset();
  parameters_.clear();
}

}  // namespace azcoll::cursor
