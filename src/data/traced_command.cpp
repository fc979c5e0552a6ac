#include <utility>

#include "data/trace_report.h"

namespace azcoll::detail {
namespace {

/// Passes everything on to another command and reports its executions.
class TracedCommand final : public Command {
 public:
  TracedCommand(std::shared_ptr<Command> inner, SharedHooks hooks)
      : inner_{std::move(inner)}, hooks_{std::move(hooks)} {}

  void setActiveConnection(std::shared_ptr<Connection> connection) override {
    inner_->setActiveConnection(innermost(connection));
  }
  void setCommandText(std::string text) override {
    inner_->setCommandText(text);
    text_ = std::move(text);
  }
  void setCommandType(CommandOption type) override { inner_->setCommandType(type); }
  void setCommandTimeout(int seconds) override { inner_->setCommandTimeout(seconds); }
  void setPrepared(bool prepared) override { inner_->setPrepared(prepared); }
  [[nodiscard]] Parameters& parameters() override {
    Parameters& parameters = inner_->parameters();
    parametersKnown_ = true;
    return parameters;
  }

  std::shared_ptr<Recordset> execute(std::int64_t& recordsAffected,
                                     CommandOption options) override {
    TraceEntry entry{
        .operation = "CommandExecute", .sql = text_, .options = {static_cast<int>(options)}};
    std::shared_ptr<Recordset> result;
    traced(hooks_, std::move(entry), [&](TraceEntry& running) {
      listParameters(running);
      result = inner_->execute(recordsAffected, options);
      running.rows = rowsOf(result.get(), recordsAffected);
    });
    return tracedRecordset(std::move(result), hooks_);
  }

 private:
  void listParameters(TraceEntry& entry) {
    // Asking for parameters that nobody asked for would read the procedure's declaration: tracing
    // must not add work to the database.
    if (!parametersKnown_) {
      return;
    }
    Parameters& parameters = inner_->parameters();
    const std::size_t count = parameters.count();
    entry.parameters.reserve(count);
    for (std::size_t index = 0; index < count; ++index) {
      const Parameter& parameter = parameters.item(index);
      entry.parameters.emplace_back(parameter.name(), parameter.value());
    }
  }

  std::shared_ptr<Command> inner_;
  SharedHooks hooks_;
  std::string text_;
  bool parametersKnown_ = false;
};

}  // namespace

std::shared_ptr<Command> tracedCommand(std::shared_ptr<Command> inner, SharedHooks hooks) {
  if (!inner) {
    return nullptr;
  }
  return std::make_shared<TracedCommand>(std::move(inner), std::move(hooks));
}

}  // namespace azcoll::detail
