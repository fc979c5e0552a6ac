#include <utility>

#include "data/messages.h"
#include "data/trace_report.h"
#include "data/tracing.h"

namespace azcoll {

using detail::traced;

namespace detail {

std::optional<std::int64_t> rowsOf(const Recordset* result, std::int64_t affected) {
  const std::int64_t rows =
      result != nullptr && result->isOpen() ? result->recordCount() : affected;
  return rows < 0 ? std::nullopt : std::optional{rows};
}

std::shared_ptr<Connection> innermost(const std::shared_ptr<Connection>& connection) {
  // One step only: a recordset under two tracers takes off the inner one itself.
  const std::shared_ptr<Connection> inner = connection ? connection->decorated() : nullptr;
  return inner ? inner : connection;
}

}  // namespace detail

ConnessioneTracciata::ConnessioneTracciata(std::shared_ptr<Connection> inner, TraceSink sink)
    : ConnessioneTracciata{std::move(inner), TraceHooks{.after = std::move(sink)}} {}

ConnessioneTracciata::ConnessioneTracciata(std::shared_ptr<Connection> inner, TraceHooks hooks)
    : inner_{std::move(inner)}, hooks_{std::make_shared<const TraceHooks>(std::move(hooks))} {
  if (!inner_) {
    throw Error(messages::kNoConnection);
  }
}

void ConnessioneTracciata::setConnectionString(std::string text) {
  inner_->setConnectionString(std::move(text));
}

std::string ConnessioneTracciata::connectionString() const { return inner_->connectionString(); }

void ConnessioneTracciata::setCommandTimeout(int seconds) { inner_->setCommandTimeout(seconds); }

void ConnessioneTracciata::setCursorLocation(CursorLocation location) {
  inner_->setCursorLocation(location);
}

void ConnessioneTracciata::open(std::string_view user, std::string_view password,
                                CommandOption options) {
  traced(hooks_, {.operation = "Open", .options = {static_cast<int>(options)}},
         [&](TraceEntry&) { inner_->open(user, password, options); });
}

void ConnessioneTracciata::close() {
  traced(hooks_, {.operation = "Close"}, [&](TraceEntry&) { inner_->close(); });
}

bool ConnessioneTracciata::isOpen() const { return inner_->isOpen(); }

std::shared_ptr<Recordset> ConnessioneTracciata::execute(std::string_view commandText,
                                                         std::int64_t& recordsAffected,
                                                         CommandOption options) {
  std::shared_ptr<Recordset> result;
  traced(hooks_,
         {.operation = "Execute",
          .sql = std::string{commandText},
          .options = {static_cast<int>(options)}},
         [&](TraceEntry& entry) {
           result = inner_->execute(commandText, recordsAffected, options);
           entry.rows = detail::rowsOf(result.get(), recordsAffected);
         });
  return detail::tracedRecordset(std::move(result), hooks_);
}

void ConnessioneTracciata::beginTrans() {
  traced(hooks_, {.operation = "BeginTrans"}, [&](TraceEntry&) { inner_->beginTrans(); });
}

void ConnessioneTracciata::commitTrans() {
  traced(hooks_, {.operation = "CommitTrans"}, [&](TraceEntry&) { inner_->commitTrans(); });
}

void ConnessioneTracciata::rollbackTrans() {
  traced(hooks_, {.operation = "RollbackTrans"}, [&](TraceEntry&) { inner_->rollbackTrans(); });
}

Errors& ConnessioneTracciata::errors() { return inner_->errors(); }

std::shared_ptr<Recordset> ConnessioneTracciata::newRecordset() {
  return detail::tracedRecordset(inner_->newRecordset(), hooks_);
}

std::shared_ptr<Command> ConnessioneTracciata::newCommand() {
  return detail::tracedCommand(inner_->newCommand(), hooks_);
}

}  // namespace azcoll
