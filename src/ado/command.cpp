#include "ado/command.h"

#include <utility>
#include <vector>

#include "ado/automated.h"
#include "ado/connection.h"
#include "ado/dispatch.h"
#include "ado/recordset.h"
#include "ado/variants.h"
#include "data/connection.h"

namespace azcoll::ado {
namespace {

class AdoParameter final : public Parameter {
 public:
  explicit AdoParameter(ComPtr<IDispatch> object) : ado_{std::move(object)} {}

  [[nodiscard]] std::string name() const override { return ado_.getText(L"Name"); }
  [[nodiscard]] ParameterDirection direction() const override {
    return static_cast<ParameterDirection>(ado_.getNumber(L"Direction"));
  }
  [[nodiscard]] Variant value() const override { return fromVariant(ado_.get(L"Value").value()); }
  void setValue(const Variant& value) override { ado_.put(L"Value", value); }

 private:
  mutable Dispatch ado_;
};

/// The collection that ADO fills from the procedure's declaration when it is first used.
class AdoParameters final : public Parameters {
 public:
  explicit AdoParameters(ComPtr<IDispatch> object) : ado_{std::move(object)} {}

  [[nodiscard]] std::size_t count() override {
    const std::int64_t count = ado_.getNumber(L"Count");
    return count > 0 ? static_cast<std::size_t>(count) : 0;
  }
  [[nodiscard]] Parameter& item(std::string_view name) override { return keep({name}); }
  [[nodiscard]] Parameter& item(std::size_t index) override {
    return keep({static_cast<int>(index)});
  }

 private:
  Parameter& keep(Dispatch::Arguments key) {
    handedOut_.push_back(std::make_unique<AdoParameter>(ado_.getObject(L"Item", key)));
    return *handedOut_.back();
  }

  Dispatch ado_;
  std::vector<std::unique_ptr<AdoParameter>> handedOut_;
};

class AdoCommand final : public Command, public Automated {
 public:
  explicit AdoCommand(ComPtr<IDispatch> object) : ado_{std::move(object)} {}

  [[nodiscard]] const ComPtr<IDispatch>& dispatch() const override { return ado_.object(); }

  void setActiveConnection(std::shared_ptr<Connection> connection) override {
    ado_.putRef(L"ActiveConnection", dispatchOf(connection));
  }
  void setCommandText(std::string text) override { ado_.put(L"CommandText", text); }
  void setCommandType(CommandOption type) override { ado_.put(L"CommandType", type); }
  void setCommandTimeout(int seconds) override { ado_.put(L"CommandTimeout", seconds); }
  void setPrepared(bool prepared) override { ado_.put(L"Prepared", prepared); }
  [[nodiscard]] Parameters& parameters() override {
    if (!parameters_) {
      parameters_ = std::make_unique<AdoParameters>(ado_.getObject(L"Parameters"));
    }
    return *parameters_;
  }

  std::shared_ptr<Recordset> execute(std::int64_t& recordsAffected,
                                     CommandOption options) override {
    ScopedVariant affected;
    const ComPtr<IDispatch> rows =
        ado_.getObject(L"Execute", {Argument::out(affected.raw()), Argument::missing(), options});
    recordsAffected = affectedRows(affected);
    return wrapRecordset(rows);
  }

 private:
  Dispatch ado_;
  std::unique_ptr<AdoParameters> parameters_;
};

}  // namespace

std::shared_ptr<Command> wrapCommand(const ComPtr<IDispatch>& object) {
  return object ? std::make_shared<AdoCommand>(object) : nullptr;
}

}  // namespace azcoll::ado
