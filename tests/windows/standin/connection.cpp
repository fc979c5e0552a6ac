#include "ado/wide_text.h"
#include "data/error.h"
#include "embedded/embedded_connection.h"
#include "windows/standin/objects.h"

namespace azcoll::test {
namespace {

class ErrorEntry final : public LateObject {
 public:
  explicit ErrorEntry(const ErrorInfo& info) : LateObject{"Error"} {
    setMembers({{L"Description", [info](const auto&) { return result(info.description); }},
                {L"Number", [info](const auto&) { return result(info.nativeNumber); }},
                {L"NativeError", [info](const auto&) { return result(info.nativeNumber); }},
                {L"SQLState", [info](const auto&) { return result(info.sqlState); }},
                {L"Source", [info](const auto&) { return result(info.source); }}});
  }
};

class ErrorCollection final : public LateObject {
 public:
  explicit ErrorCollection(std::shared_ptr<Connection> connection)
      : LateObject{"Errors"}, connection_{std::move(connection)} {
    setMembers({{L"Item",
                 [this](const CallArguments& arguments) {
                   const int index = arguments.number(0, 0);
                   return result(
                       new ErrorEntry{connection_->errors().item(static_cast<std::size_t>(index))});
                 }},
                {L"Count",
                 [this](const auto&) {
                   return result(static_cast<std::int32_t>(connection_->errors().count()));
                 }},
                {L"Clear", [this](const auto&) {
                   connection_->errors().clear();
                   return nothing();
                 }}});
  }

 private:
  std::shared_ptr<Connection> connection_;
};

std::string registerText() {
  std::string all;
  for (const std::string& call : callRegister()) {
    all += call;
    all += '\n';
  }
  return all;
}

}  // namespace

StandInConnection::StandInConnection() : StandInConnection{embedded::newConnection()} {}

StandInConnection::StandInConnection(std::shared_ptr<Connection> inner)
    : LateObject{"Connection"}, inner_{std::move(inner)} {
  Members members = properties();
  for (LateMember& method : methods()) {
    members.push_back(std::move(method));
  }
  setMembers(std::move(members));
}

StandInConnection& StandInConnection::from(IDispatch* object) {
  auto* const connection = dynamic_cast<StandInConnection*>(static_cast<LateObject*>(object));
  if (connection == nullptr) {
    throw Error("Connessione di un altro fornitore");
  }
  return *connection;
}

LateObject::Members StandInConnection::properties() {
  return {{L"ConnectionString",
           [this](const CallArguments& arguments) {
             if (!arguments.assigns()) {
               return result(inner_->connectionString());
             }
             inner_->setConnectionString(arguments.text(0));
             return nothing();
           }},
          {L"CommandTimeout",
           [this](const CallArguments& arguments) {
             if (!arguments.assigns()) {
               return result(commandTimeout_);
             }
             commandTimeout_ = arguments.number(0, 0);
             return nothing();
           }},
          {L"CursorLocation",
           [this](const CallArguments& arguments) {
             if (!arguments.assigns()) {
               return result(cursorLocation_);
             }
             cursorLocation_ = arguments.number(0, 0);
             inner_->setCursorLocation(static_cast<CursorLocation>(cursorLocation_));
             return nothing();
           }},
          {L"State", [this](const auto&) { return result(inner_->isOpen() ? 1 : 0); }},
          {L"Errors", [this](const auto&) { return result(new ErrorCollection{inner_}); }},
          // Not ADO's: what the tests read.
          {L"Registro", [](const auto&) { return result(registerText()); }},
          {L"AzzeraRegistro",
           [](const auto&) {
             callRegister().clear();
             return nothing();
           }},
          {L"OggettiVivi",
           [](const auto&) { return result(static_cast<std::int32_t>(liveObjects().size())); }}};
}

LateObject::Members StandInConnection::methods() {
  return {{L"Open",
           [this](const CallArguments& arguments) {
             if (arguments.at(0) != nullptr) {
               inner_->setConnectionString(arguments.text(0));
             }
             inner_->setCommandTimeout(commandTimeout_);
             inner_->open(arguments.text(1), arguments.text(2),
                          static_cast<CommandOption>(arguments.number(3, -1)));
             return nothing();
           }},
          {L"Close",
           [this](const auto&) {
             inner_->close();
             return nothing();
           }},
          {L"Execute",
           [this](const CallArguments& arguments) {
             std::int64_t affected = 0;
             std::shared_ptr<Recordset> rows = inner_->execute(
                 arguments.text(0), affected, static_cast<CommandOption>(arguments.number(2, 1)));
             arguments.write(1, affected);
             return result(new StandInRecordset{std::move(rows), this});
           }},
          {L"BeginTrans",
           [this](const auto&) {
             inner_->beginTrans();
             return result(1);
           }},
          {L"CommitTrans",
           [this](const auto&) {
             inner_->commitTrans();
             return nothing();
           }},
          {L"RollbackTrans", [this](const auto&) {
             inner_->rollbackTrans();
             return nothing();
           }}};
}

}  // namespace azcoll::test
