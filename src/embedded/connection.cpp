#include "embedded/connection.h"

#include <utility>

#include "data/error.h"
#include "embedded/embedded_connection.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "tsql/parser.h"

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

std::optional<std::vector<std::string>> storedDefinitions(Connection& connection) {
  auto* const own = dynamic_cast<EmbeddedConnection*>(&connection);
  return own == nullptr ? std::nullopt : std::optional{own->definitions()};
}

std::shared_ptr<EmbeddedConnection> newConnectionWith(const EngineOptions& options) {
  return std::make_shared<EmbeddedConnection>(options);
}

void EmbeddedConnection::fail(int number, const std::string& message, std::string_view statement,
                              bool terminated, bool transactionLost) {
  ErrorInfo info = errorInfo(number, message, statement);
  info.transactionLost = transactionLost;
  std::vector<ErrorInfo> entries{info};
  if (terminated) {
    constexpr int kTerminated = 3621;
    entries.push_back(errorInfo(kTerminated, std::string(kStatementTerminated), statement));
  }
  errors_.record(std::move(entries));
  throw Error::provider(std::move(info));
}

/// Runs an operation of the provider; its failures are recorded.
template <typename Action>
auto EmbeddedConnection::recorded(std::string_view statement, Action action) {
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

Engine& EmbeddedConnection::engine() {
  if (!engine_) {
    throw Error("La connessione è chiusa.");
  }
  return *engine_;
}

std::vector<std::string> EmbeddedConnection::definitions() {
  Engine& engine = this->engine();
  return recorded({}, [&] { return engine.definitions(); });
}

void EmbeddedConnection::setCommandTimeout(int seconds) {
  timeoutSeconds_ = seconds < 0 ? 0 : seconds;
  if (engine_) {
    engine_->setTimeout(timeoutSeconds_);
  }
}

void EmbeddedConnection::open(std::string_view /*user*/, std::string_view /*password*/,
                              CommandOption /*options*/) {
  if (engine_) {
    throw Error("La connessione è già aperta.");
  }
  const ConnectionSettings settings = readConnectionString(connectionString_);
  recorded({}, [&] {
    engine_ = std::make_unique<Engine>(settings, options_);
    engine_->setTimeout(timeoutSeconds_);
  });
}

void EmbeddedConnection::close() {
  static_cast<void>(engine());
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

std::shared_ptr<Recordset> EmbeddedConnection::handOut(ExecutionResult result) {
  if (result.results.empty()) {
    return nullptr;
  }
  return openClientCursor(std::move(result), shared_from_this());
}

std::shared_ptr<Recordset> EmbeddedConnection::execute(std::string_view commandText,
                                                       std::int64_t& recordsAffected,
                                                       CommandOption options) {
  if (options == CommandOption::StoredProcedure) {
    const auto routine = findProcedure(commandText);
    std::vector<Variant> values(routine->parameters.size());
    return callProcedure(*routine, values, recordsAffected, timeoutSeconds_);
  }
  ExecutionResult result = run(commandText);
  recordsAffected = result.recordsAffected;
  return handOut(std::move(result));
}

std::shared_ptr<const Routine> EmbeddedConnection::findProcedure(std::string_view name) {
  Engine& engine = this->engine();
  return recorded(name, [&] { return engine.findProcedure(name); });
}

std::vector<cursor::ProcedureParameter> EmbeddedConnection::parametersOf(const Routine& routine) {
  std::vector<cursor::ProcedureParameter> parameters;
  parameters.reserve(routine.parameters.size());
  for (const RoutineParameter& each : routine.parameters) {
    parameters.push_back(
        {each.name, each.output ? ParameterDirection::InputOutput : ParameterDirection::Input});
  }
  return parameters;
}

namespace {

/// The value as a whole number of the declared type. A command converts its values before it sends
/// them, as every provider does: rounded, and what does not convert is no failure of the database.
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

std::shared_ptr<Recordset> EmbeddedConnection::callProcedure(const Routine& routine,
                                                             std::vector<Variant>& values,
                                                             std::int64_t& recordsAffected,
                                                             int timeoutSeconds) {
  Engine& engine = this->engine();
  for (std::size_t index = 0; index < values.size(); ++index) {
    values[index] = asDeclared(values[index], routine.parameters[index].type);
  }
  engine.setTimeout(timeoutSeconds);
  try {
    ExecutionResult result = recorded(routine.name, [&] { return engine.call(routine, values); });
    engine.setTimeout(timeoutSeconds_);
    recordsAffected = result.recordsAffected;
    return handOut(std::move(result));
  } catch (...) {
    engine.setTimeout(timeoutSeconds_);
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

std::shared_ptr<Recordset> EmbeddedConnection::newRecordset() { return newClientCursor(); }

std::shared_ptr<Command> EmbeddedConnection::newCommand() {
  return std::make_shared<cursor::ClientCommand<EmbeddedConnection>>();
}

}  // namespace azcoll::embedded
