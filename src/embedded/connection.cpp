#include "embedded/connection.h"

#include <utility>

#include "data/error.h"
#include "embedded/embedded_connection.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "tsql/syntax_error.h"

namespace azcoll::embedded {

namespace {

constexpr const char* kSource = "embedded";

ErrorInfo errorInfo(int number, const std::string& message, std::string_view statement) {
  ErrorInfo info;
  info.description = message;
  info.nativeNumber = number;
  info.sqlState = sqlStateOf(number);
  info.source = kSource;
  info.statement = statement;
  return info;
}

}  // namespace

bool isEmbeddedConnectionString(std::string_view connectionString) {
  return choosesEmbedded(connectionString);
}

std::shared_ptr<Connection> newConnection() { return newConnectionWith({}); }

std::shared_ptr<EmbeddedConnection> newConnectionWith(const EngineOptions& options) {
  return std::make_shared<EmbeddedConnection>(options);
}

void EmbeddedConnection::fail(int number, const std::string& message, std::string_view statement,
                              bool terminated, bool transactionLost) {
  ErrorInfo info = errorInfo(number, message, statement);
  info.transactionLost = transactionLost;
  std::vector<ErrorInfo> entries{std::move(info)};
  // SQL Server reports that the statement was ended as a second error, which ADO shows after the
  // first.
  if (terminated) {
    constexpr int kTerminated = 3621;
    entries.push_back(errorInfo(kTerminated, std::string(kStatementTerminated), statement));
  }
  failWith(std::move(entries));
}

/// Runs an operation of the provider; its failures are recorded.
template <typename Action>
auto EmbeddedConnection::recorded(std::string_view statement, Action action) {
  // Asked after the failure, by which SQLite may have undone the transaction.
  const auto lost = [&] { return engine_ && engine_->isTransactionLost(); };
  try {
    return action();
  } catch (const SqlError& error) {
    fail(error.number(), error.what(), statement, error.terminatesStatement(), lost());
  } catch (const tsql::SyntaxError& error) {
    // A numbered message is SQL Server's own; any other needs its place to be of use.
    fail(error.number(), error.number() == 0 ? error.located() : error.what(), statement, false,
         lost());
  }
}

Engine& EmbeddedConnection::engine() const {
  requireOpen();
  return *engine_;
}

std::optional<std::vector<std::string>> EmbeddedConnection::storedDefinitions() {
  Engine& engine = this->engine();
  return recorded({}, [&] { return engine.definitions(); });
}

void EmbeddedConnection::setCommandTimeout(int seconds) {
  ProviderConnection::setCommandTimeout(seconds);
  if (engine_) {
    engine_->setTimeout(timeoutSeconds());
  }
}

void EmbeddedConnection::open(std::string_view /*user*/, std::string_view /*password*/,
                              CommandOption /*options*/) {
  requireClosed();
  const ConnectionSettings settings = readConnectionString(connectionString());
  recorded({}, [&] {
    engine_ = std::make_unique<Engine>(settings, options_);
    engine_->setTimeout(timeoutSeconds());
  });
}

void EmbeddedConnection::close() {
  requireOpen();
  engine_.reset();
}

ExecutionResult EmbeddedConnection::run(std::string_view text) {
  Engine& engine = this->engine();
  return recorded(text, [&] { return engine.run(text); });
}

std::int64_t EmbeddedConnection::runChange(std::string_view text,
                                           const std::vector<Variant>& parameters) {
  Engine& engine = this->engine();
  return recorded(text, [&] { return engine.run(text, parameters).recordsAffected; });
}

namespace {

std::vector<ProcedureParameter> parametersOf(const Routine& routine) {
  std::vector<ProcedureParameter> parameters;
  parameters.reserve(routine.parameters.size());
  for (const RoutineParameter& each : routine.parameters) {
    parameters.push_back(
        {each.name, each.output ? ParameterDirection::InputOutput : ParameterDirection::Input});
  }
  return parameters;
}

/// The value as a whole number of the declared type. A command converts its values before it sends
/// them, as every provider does: rounded, and what does not convert is not a failure of the
/// database.
Variant asDeclared(const Variant& value, const Type& type) {
  if (value.isEmpty() || value.isNull()) {
    return value;
  }
  switch (type.kind) {
    case TypeKind::TinyInt:
    case TypeKind::SmallInt:
      return value.toInt16();
    case TypeKind::Int:
      return value.toInt32();
    case TypeKind::BigInt:
      return value.toInt64();
    default:
      return value;
  }
}

}  // namespace

class EmbeddedConnection::Procedure final : public NativeProcedure {
 public:
  Procedure(EmbeddedConnection& connection, std::shared_ptr<const Routine> routine)
      : NativeProcedure{parametersOf(*routine)},
        connection_{connection},
        routine_{std::move(routine)} {}

  ExecutionResult call(std::vector<Variant>& values, int timeoutSeconds) override {
    return connection_.call(*routine_, values, timeoutSeconds);
  }

 private:
  EmbeddedConnection& connection_;
  std::shared_ptr<const Routine> routine_;
};

std::shared_ptr<NativeProcedure> EmbeddedConnection::findProcedure(std::string_view name) {
  Engine& engine = this->engine();
  return recorded(name,
                  [&] { return std::make_shared<Procedure>(*this, engine.findProcedure(name)); });
}

ExecutionResult EmbeddedConnection::call(const Routine& routine, std::vector<Variant>& values,
                                         int timeoutSeconds) {
  Engine& engine = this->engine();
  for (std::size_t index = 0; index < values.size(); ++index) {
    values[index] = asDeclared(values[index], routine.parameters[index].type);
  }
  // A command's time-out counts for its own call, also when that fails.
  engine.setTimeout(timeoutSeconds);
  try {
    ExecutionResult result = recorded(routine.name, [&] { return engine.call(routine, values); });
    engine.setTimeout(this->timeoutSeconds());
    return result;
  } catch (...) {
    engine.setTimeout(this->timeoutSeconds());
    throw;
  }
}

void EmbeddedConnection::beginTrans() {
  Engine& engine = this->engine();
  recorded({}, [&] { engine.begin(); });
}

void EmbeddedConnection::commitTrans() {
  Engine& engine = this->engine();
  recorded({}, [&] { engine.commit(); });
}

void EmbeddedConnection::rollbackTrans() {
  Engine& engine = this->engine();
  recorded({}, [&] { engine.rollback(); });
}

}  // namespace azcoll::embedded
