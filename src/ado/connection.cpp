#include "ado/connection.h"

#include <utility>

#include "ado/command.h"
#include "ado/dispatch.h"
#include "ado/recordset.h"
#include "ado/variants.h"
#include "ado/wide_text.h"
#include "data/error.h"

namespace azcoll::ado {
namespace {

/// The connection's own error collection.
class AdoErrors final : public Errors {
 public:
  explicit AdoErrors(Dispatch& connection) : connection_{connection} {}

  [[nodiscard]] std::size_t count() const override {
    const std::int64_t count = collection().getNumber(L"Count");
    return count > 0 ? static_cast<std::size_t>(count) : 0;
  }

  [[nodiscard]] ErrorInfo item(std::size_t index) const override {
    Dispatch entry{collection().getObject(L"Item", {static_cast<int>(index)})};
    return {.description = entry.getText(L"Description"),
            .sqlState = entry.getText(L"SQLState"),
            .nativeNumber = static_cast<int>(entry.getNumber(L"NativeError")),
            .source = entry.getText(L"Source")};
  }

  void clear() override { collection().call(L"Clear"); }

 private:
  [[nodiscard]] Dispatch collection() const { return Dispatch{connection_.getObject(L"Errors")}; }

  Dispatch& connection_;
};

class AdoConnection final : public Connection, public Automated {
 public:
  explicit AdoConnection(ComPtr<IDispatch> object) : ado_{std::move(object)} {}

  [[nodiscard]] const ComPtr<IDispatch>& dispatch() const override { return ado_.object(); }

  void setConnectionString(std::string text) override { ado_.put(L"ConnectionString", text); }
  [[nodiscard]] std::string connectionString() const override {
    return ado_.getText(L"ConnectionString");
  }
  void setCommandTimeout(int seconds) override { ado_.put(L"CommandTimeout", seconds); }
  void setCursorLocation(CursorLocation location) override {
    ado_.put(L"CursorLocation", location);
  }
  void open(std::string_view user, std::string_view password, CommandOption options) override {
    // The text was set before, as the connection string.
    ado_.call(L"Open", {Argument::missing(), user, password, options});
  }
  void close() override { ado_.call(L"Close"); }
  [[nodiscard]] bool isOpen() const override { return stateIsOpen(ado_); }

  std::shared_ptr<Recordset> execute(std::string_view commandText, std::int64_t& recordsAffected,
                                     CommandOption options) override {
    ScopedVariant affected;
    const ComPtr<IDispatch> rows =
        ado_.getObject(L"Execute", {commandText, Argument::out(affected.raw()), options});
    recordsAffected = affectedRows(affected);
    return wrapRecordset(rows);
  }

  void beginTrans() override { ado_.call(L"BeginTrans"); }
  void commitTrans() override { ado_.call(L"CommitTrans"); }
  void rollbackTrans() override { ado_.call(L"RollbackTrans"); }

  [[nodiscard]] Errors& errors() override { return errors_; }

  [[nodiscard]] std::shared_ptr<Recordset> newRecordset() override {
    return wrapRecordset(createObject(L"ADODB.Recordset"));
  }
  [[nodiscard]] std::shared_ptr<Command> newCommand() override {
    return wrapCommand(createObject(L"ADODB.Command"));
  }

 private:
  mutable Dispatch ado_;  // asking for a member's identifier remembers it
  AdoErrors errors_{ado_};
};

}  // namespace

std::shared_ptr<Connection> wrapConnection(const ComPtr<IDispatch>& object) {
  return object ? std::make_shared<AdoConnection>(object) : nullptr;
}

std::shared_ptr<Connection> newConnection() {
  return wrapConnection(createObject(L"ADODB.Connection"));
}

}  // namespace azcoll::ado
