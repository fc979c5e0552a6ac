#include "odbc/connection.h"

#include <algorithm>
#include <utility>

#include "data/error.h"
#include "data/messages.h"
#include "odbc/base_columns.h"
#include "odbc/call_batch.h"
#include "odbc/execution.h"
#include "odbc/odbc_connection.h"
#include "odbc/procedures.h"
#include "odbc/select_shape.h"

namespace azcoll::odbc {

std::shared_ptr<Connection> newConnection() { return std::make_shared<OdbcConnection>(); }

/// Completes the entries of a failure with what it means for connection and transaction.
void OdbcConnection::settleTransaction(std::vector<ErrorInfo>& entries) {
  if (!session_) {
    return;
  }
  const bool connectionLost =
      session_->isDead() || std::ranges::any_of(entries, [](const ErrorInfo& entry) {
        return entry.sqlState.starts_with("08");
      });
  const bool undone = transaction_->examine(entries, connectionLost);
  for (ErrorInfo& entry : entries) {
    entry.connectionLost = connectionLost;
    entry.transactionLost = undone;
  }
}

/// Some drivers say no more than "Unknown error": what is known is added.
void OdbcConnection::explain(ErrorInfo& entry) const {
  const bool saysNothing = entry.description.empty() || entry.description == "Unknown error";
  if (!saysNothing) {
    return;
  }
  const std::string server = serverOf(connectionString_);
  entry.description =
      join(entry.description.empty() ? "Errore senza spiegazioni del driver" : entry.description,
           " (", entry.connectionLost ? "connessione caduta, " : "",
           server.empty() ? std::string{} : join("server ", server, ", "), "stato ", entry.sqlState,
           ", numero ", entry.nativeNumber, ")");
}

void OdbcConnection::fail(const DriverFailure& failure, std::string_view statement) {
  std::vector<ErrorInfo> entries = failure.entries();
  settleTransaction(entries);
  for (ErrorInfo& entry : entries) {
    explain(entry);
    entry.description = secrets_.masked(std::move(entry.description));
    entry.statement = secrets_.masked(std::string{statement});
  }
  errors_.record(entries);
  throw Error::provider(std::move(entries.front()));
}

/// Runs an operation of the driver; its failures are recorded.
template <typename Action>
auto OdbcConnection::recorded(std::string_view statement, Action action) {
  try {
    return action();
  } catch (const DriverFailure& failure) {
    fail(failure, statement);
  }
}

Session& OdbcConnection::session() const {
  if (!session_) {
    throw Error("La connessione è chiusa.");
  }
  return *session_;
}

void OdbcConnection::open(std::string_view user, std::string_view password,
                          CommandOption /*options*/) {
  if (session_) {
    throw Error("La connessione è già aperta.");
  }
  const std::string complete = withCredentials(connectionString_, user, password);
  secrets_.addFrom(connectionString_);
  secrets_.addFrom(complete);
  const GroupLock lock = groupLock(connectionString_);
  recorded({}, [&] {
    session_ = std::make_unique<Session>(withoutOwnKeys(complete), loginTimeout(connectionString_));
    transaction_ = std::make_unique<Transaction>(*session_, lock);
  });
  catalogue_.forget();
  connectionString_ = maskedConnectionString(connectionString_);
}

void OdbcConnection::close() {
  static_cast<void>(session());
  transaction_.reset();
  session_.reset();
}

ExecutionResult OdbcConnection::runOn(std::string_view text,
                                      std::vector<BoundParameter>& parameters, int timeoutSeconds,
                                      bool escapes, Reading reading) {
  Session& session = this->session();
  transaction_->beforeStatement();
  const bool mayEscape =
      escapes || text.find('{') == std::string_view::npos;  // nothing to leave alone
  const auto statement = session.newStatement(timeoutSeconds, mayEscape);
  SQLUSMALLINT number = 0;
  for (BoundParameter& parameter : parameters) {
    parameter.bind(*statement, ++number);
  }
  ExecutionResult result = runToEnd(*statement, text, session.reread(), reading);
  transaction_->statementDone();
  return result;
}

ExecutionResult OdbcConnection::run(std::string_view text) {
  Session& session = this->session();
  return recorded(text, [&] {
    std::vector<BoundParameter> none;
    if (!catalogue_.isEmpty() && !leavesTablesAlone(text)) {
      catalogue_.forget();
    }
    const bool repeatable = session.speaksTSql() && !session.reread().bound && onlyReads(text);
    ExecutionResult result =
        runOn(text, none, timeoutSeconds_, false, repeatable ? Reading::Repeatable : Reading::Once);
    const std::size_t count = result.results.size();
    if (count > 0) {
      const auto batch = std::make_shared<const std::string>(text);
      for (std::size_t index = 0; index < count; ++index) {
        result.results[index].settle = [batch, index, count](std::vector<ColumnInfo> columns,
                                                             Connection& connection) {
          auto* const own = dynamic_cast<OdbcConnection*>(&connection);
          if (own == nullptr) {
            throw Error(messages::kWrongConnection);
          }
          return own->settle(std::move(columns), *batch, index, count);
        };
      }
    }
    return result;
  });
}

std::vector<ColumnInfo> OdbcConnection::settle(std::vector<ColumnInfo> columns,
                                               std::string_view batch, std::size_t index,
                                               std::size_t count) {
  Session& session = this->session();
  return recorded(batch, [&] {
    transaction_->beforeStatement();
    return settledColumns(std::move(columns), batch, index, count, session, catalogue_,
                          timeoutSeconds_);
  });
}

std::int64_t OdbcConnection::runChange(std::string_view text,
                                       const std::vector<Variant>& parameters) {
  Session& session = this->session();
  return recorded(text, [&] {
    std::vector<BoundParameter> bound;
    bound.reserve(parameters.size());
    for (const Variant& value : parameters) {
      bound.push_back(BoundParameter::ofValue(value, session.speaksTSql()));
    }
    const std::int64_t changed =
        runOn(text, bound, timeoutSeconds_, true, Reading::Once).recordsAffected;
    if (changed < 0) {
      throw DriverFailure{"HY000", "Il driver ODBC non dice quante righe sono state modificate"};
    }
    return changed;
  });
}

std::shared_ptr<Recordset> OdbcConnection::handOut(ExecutionResult result) {
  if (result.results.empty()) {
    return nullptr;
  }
  return openClientCursor(std::move(result), shared_from_this());
}

std::shared_ptr<Recordset> OdbcConnection::execute(std::string_view commandText,
                                                   std::int64_t& recordsAffected,
                                                   CommandOption options) {
  if (options == CommandOption::StoredProcedure) {
    std::vector<Variant> none;
    const Procedure procedure{.name = std::string{commandText}, .parameters = {}};
    return callProcedure(procedure, none, recordsAffected, timeoutSeconds_);
  }
  ExecutionResult result = run(commandText);
  recordsAffected = result.recordsAffected;
  return handOut(std::move(result));
}

std::shared_ptr<const Procedure> OdbcConnection::findProcedure(std::string_view name) {
  Session& session = this->session();
  return recorded(name, [&] {
    transaction_->beforeStatement();
    return std::make_shared<const Procedure>(
        Procedure{std::string{name}, declaredParameters(session, name, timeoutSeconds_)});
  });
}

std::vector<cursor::ProcedureParameter> OdbcConnection::parametersOf(const Procedure& procedure) {
  std::vector<cursor::ProcedureParameter> parameters;
  parameters.reserve(procedure.parameters.size());
  for (const DeclaredParameter& each : procedure.parameters) {
    parameters.push_back({each.name, each.direction});
  }
  return parameters;
}

ExecutionResult OdbcConnection::call(const Procedure& procedure, std::vector<Variant>& values,
                                     int timeoutSeconds) {
  const std::vector<DeclaredParameter>& declared = procedure.parameters;
  std::vector<BoundParameter> bound;
  bound.reserve(declared.size());
  for (std::size_t index = 0; index < declared.size(); ++index) {
    bound.push_back(BoundParameter::ofDeclared(declared[index], values[index]));
  }
  ExecutionResult execution =
      runOn(callText(procedure.name, declared.size()), bound, timeoutSeconds, true, Reading::Once);
  for (std::size_t index = 0; index < declared.size(); ++index) {
    if (declared[index].direction != ParameterDirection::Input) {
      values[index] = bound[index].output();
    }
  }
  return execution;
}

/// The same as a batch, for a driver that cannot leave out a parameter.
ExecutionResult OdbcConnection::callInABatch(const Procedure& procedure,
                                             std::vector<Variant>& values, int timeoutSeconds) {
  CallBatch batch{procedure.name, procedure.parameters, values};
  ExecutionResult execution =
      runOn(batch.text(), batch.parameters(), timeoutSeconds, false, Reading::Once);
  batch.takeOutputs(execution, values);
  return execution;
}

std::shared_ptr<Recordset> OdbcConnection::callProcedure(const Procedure& procedure,
                                                         std::vector<Variant>& values,
                                                         std::int64_t& recordsAffected,
                                                         int timeoutSeconds) {
  const std::string text = callText(procedure.name, procedure.parameters.size());
  Session& session = this->session();
  catalogue_.forget();  // a procedure may do anything
  ExecutionResult result = recorded(text, [&] {
    std::ranges::for_each(procedure.parameters, requireKnownDigits);
    try {
      return call(procedure, values, timeoutSeconds);
    } catch (const DriverFailure& failure) {
      if (!session.speaksTSql() || !isRefusedDefault(failure)) {
        throw;
      }
      return callInABatch(procedure, values, timeoutSeconds);
    }
  });
  for (ResultSet& set : result.results) {
    std::vector<ColumnInfo> columns = set.columns.all();
    for (ColumnInfo& column : columns) {  // no query here that would tell how sure they are
      column.baseTable.clear();
      column.baseColumn.clear();
    }
    set.columns = std::move(columns);
  }
  recordsAffected = result.recordsAffected;
  return handOut(std::move(result));
}

void OdbcConnection::beginTrans() {
  static_cast<void>(session());
  recorded({}, [&] { transaction_->begin(timeoutSeconds_); });
}

void OdbcConnection::commitTrans() {
  static_cast<void>(session());
  recorded({}, [&] { transaction_->commit(); });
}

void OdbcConnection::rollbackTrans() {
  static_cast<void>(session());
  catalogue_.forget();
  recorded({}, [&] { transaction_->rollback(); });
}

std::shared_ptr<Recordset> OdbcConnection::newRecordset() { return newClientCursor(); }

std::shared_ptr<Command> OdbcConnection::newCommand() {
  return std::make_shared<cursor::ClientCommand<OdbcConnection>>();
}

}  // namespace azcoll::odbc
