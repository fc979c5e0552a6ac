#include "data/error.h"
#include "data/messages.h"
#include "windows/standin/objects.h"

namespace azcoll::test {
namespace {

class StandInParameter final : public LateObject {
 public:
  StandInParameter(std::shared_ptr<Command> command, Parameter& parameter)
      : LateObject{"Parameter " + parameter.name()},
        command_{std::move(command)},
        parameter_{parameter} {
    setMembers({{L"Value",
                 [this](const CallArguments& arguments) {
                   if (!arguments.assigns()) {
                     return result(parameter_.value());
                   }
                   parameter_.setValue(arguments.value(0));
                   return nothing();
                 }},
                {L"Name", [this](const auto&) { return result(parameter_.name()); }},
                {L"Direction", [this](const auto&) {
                   return result(static_cast<std::int32_t>(parameter_.direction()));
                 }}});
  }

 private:
  std::shared_ptr<Command> command_;
  Parameter& parameter_;
};

class StandInParameters final : public LateObject {
 public:
  explicit StandInParameters(std::shared_ptr<Command> command)
      : LateObject{"Parameters"}, command_{std::move(command)} {
    setMembers({{L"Item",
                 [this](const CallArguments& arguments) {
                   const Variant key = arguments.value(0);
                   Parameters& all = command_->parameters();
                   Parameter& found = key.kind() == Variant::Kind::Text
                                          ? all.item(key.text())
                                          : all.item(static_cast<std::size_t>(key.toInt64()));
                   return result(new StandInParameter{command_, found});
                 }},
                {L"Count", [this](const auto&) {
                   return result(static_cast<std::int32_t>(command_->parameters().count()));
                 }}});
  }

 private:
  std::shared_ptr<Command> command_;
};

}  // namespace

StandInCommand::StandInCommand() : LateObject{"Command"} {
  setMembers(
      {{L"CommandText",
        [this](const CallArguments& arguments) {
          text_ = arguments.text(0);
          return nothing();
        }},
       {L"ActiveConnection",
        [this](const CallArguments& arguments) {
          setConnection(arguments.object(0));
          return nothing();
        }},
       {L"CommandType",
        [this](const CallArguments& arguments) {
          type_ = static_cast<CommandOption>(arguments.number(0, 1));
          return nothing();
        }},
       {L"CommandTimeout",
        [this](const CallArguments& arguments) {
          timeout_ = arguments.number(0, 0);
          return nothing();
        }},
       {L"Prepared",
        [this](const CallArguments& arguments) {
          prepared_ = arguments.value(0).toBool();
          return nothing();
        }},
       {L"Parameters", [this](const auto&) { return result(new StandInParameters{command()}); }},
       {L"Execute", [this](const CallArguments& arguments) { return execute(arguments); }}});
}

void StandInCommand::setConnection(IDispatch* connection) {
  connection_ = ado::ComPtr<IDispatch>::share(connection);
  if (command_) {
    command_->setActiveConnection(
        connection == nullptr ? nullptr : StandInConnection::from(connection).inner());
  }
}

/// The engine's command, once there is a connection to ask.
const std::shared_ptr<Command>& StandInCommand::command() {
  if (!command_) {
    if (!connection_) {
      throw Error(std::string{messages::kNoConnection});
    }
    const std::shared_ptr<Connection>& inner = StandInConnection::from(connection_.get()).inner();
    command_ = inner->newCommand();
    command_->setActiveConnection(inner);
    command_->setCommandText(text_);
    command_->setCommandType(type_);
    command_->setCommandTimeout(timeout_);
    command_->setPrepared(prepared_);
  }
  return command_;
}

ado::ScopedVariant StandInCommand::execute(const CallArguments& arguments) {
  std::int64_t affected = 0;
  std::shared_ptr<Recordset> rows =
      command()->execute(affected, static_cast<CommandOption>(arguments.number(2, 4)));
  arguments.write(0, affected);
  return result(new StandInRecordset{std::move(rows), connection_.get()});
}

}  // namespace azcoll::test
