#include "odbc/connection.h"

#include <algorithm>
#include <utility>

#include "data/error.h"
#include "data/text.h"
#include "odbc/base_columns.h"
#include "odbc/call_batch.h"
#include "odbc/execution.h"
#include "odbc/odbc_connection.h"
#include "odbc/procedures.h"
#include "odbc/select_shape.h"

namespace azcoll::odbc {
namespace {

std::vector<ProcedureParameter> namesAndDirections(const std::vector<DeclaredParameter>& declared) {
  std::vector<ProcedureParameter> parameters;
  parameters.reserve(declared.size());
  for (const DeclaredParameter& each : declared) {
    parameters.push_back({each.name, each.direction});
  }
  return parameters;
}

}  // namespace

std::shared_ptr<Connection> newConnection() { return std::make_shared<OdbcConnection>(); }

/// Completes the entries of a failure with what it means for connection and transaction.
void OdbcConnection::noteTransaction(std::vector<ErrorInfo>& entries) {
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
  const std::string server = serverOf(connectionString());
  entry.description =
      join(entry.description.empty() ? "Errore senza spiegazioni del driver" : entry.description,
           " (", entry.connectionLost ? "connessione caduta, " : "",
           server.empty() ? std::string{} : join("server ", server, ", "), "stato ", entry.sqlState,
           ", numero ", entry.nativeNumber, ")");
}

void OdbcConnection::fail(const DriverFailure& failure, std::string_view statement) {
  std::vector<ErrorInfo> entries = failure.entries();
  noteTransaction(entries);
  for (ErrorInfo& entry : entries) {
    explain(entry);
    entry.description = secrets_.masked(std::move(entry.description));
    entry.statement = secrets_.masked(std::string{statement});
  }
  failWith(std::move(entries));
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
  requireOpen();
  return *session_;
}

void OdbcConnection::open(std::string_view user, std::string_view password,
                          CommandOption /*options*/) {
  requireClosed();
  const std::string given = connectionString();
  const std::string complete = withCredentials(given, user, password);
  secrets_.addFrom(given);
  secrets_.addFrom(complete);
  const GroupLock lock = groupLock(given);
  recorded({}, [&] {
    session_ = std::make_unique<Session>(withoutOwnKeys(complete), loginTimeout(given));
    transaction_ = std::make_unique<Transaction>(*session_, lock);
  });
  catalogue_.forget();
  setConnectionString(maskedConnectionString(given));
}

void OdbcConnection::close() {
  requireOpen();
  transaction_.reset();
  session_.reset();
}

ExecutionResult OdbcConnection::runOn(std::string_view text,
                                      std::vector<BoundParameter>& parameters, int timeoutSeconds,
                                      Escapes escapes, Reading reading) {
  Session& session = this->session();
  transaction_->beforeStatement();
  const bool nothingToLeaveAlone = text.find('{') == std::string_view::npos;
  const auto statement =
      session.newStatement(timeoutSeconds, nothingToLeaveAlone ? Escapes::Translated : escapes);
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
    ExecutionResult result = runOn(text, none, timeoutSeconds(), Escapes::LeftAlone,
                                   repeatable ? Reading::Repeatable : Reading::Once);
    const std::size_t count = result.results.size();
    if (count > 0) {
      const auto batch = std::make_shared<const std::string>(text);
      for (std::size_t index = 0; index < count; ++index) {
        result.results[index].origin = ResultOrigin{batch, index, count};
      }
    }
    return result;
  });
}

std::vector<ColumnInfo> OdbcConnection::completeColumns(const std::vector<ColumnInfo>& columns,
                                                        const ResultOrigin& origin) {
  Session& session = this->session();
  return recorded(*origin.batch, [&] {
    transaction_->beforeStatement();
    return completedColumns(columns, *origin.batch, origin.index, origin.count, session, catalogue_,
                            timeoutSeconds());
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
        runOn(text, bound, timeoutSeconds(), Escapes::Translated, Reading::Once).recordsAffected;
    if (changed < 0) {
      throw DriverFailure{"HY000", "Il driver ODBC non dice quante righe sono state modificate"};
    }
    return changed;
  });
}

/// A procedure by the name that it is called by, with what the server says of its parameters.
class OdbcConnection::Procedure final : public NativeProcedure {
 public:
  Procedure(OdbcConnection& connection, std::string_view called,
            std::vector<DeclaredParameter> parameters)
      : NativeProcedure{namesAndDirections(parameters)},
        name{called},
        declared{std::move(parameters)},
        connection_{connection} {}

  ExecutionResult call(std::vector<Variant>& values, int timeoutSeconds) override {
    return connection_.call(*this, values, timeoutSeconds);
  }

  const std::string name;
  const std::vector<DeclaredParameter> declared;

 private:
  OdbcConnection& connection_;
};

std::shared_ptr<NativeProcedure> OdbcConnection::findProcedure(std::string_view name) {
  Session& session = this->session();
  return recorded(name, [&] {
    transaction_->beforeStatement();
    return std::make_shared<Procedure>(*this, name,
                                       declaredParameters(session, name, timeoutSeconds()));
  });
}

/// Without asking for parameters: a call with no values needs to know none.
ExecutionResult OdbcConnection::callByName(std::string_view name) {
  std::vector<Variant> none;
  return call(Procedure{*this, name, {}}, none, timeoutSeconds());
}

ExecutionResult OdbcConnection::callInOneStatement(const Procedure& procedure,
                                                   std::vector<Variant>& values,
                                                   int timeoutSeconds) {
  const std::vector<DeclaredParameter>& declared = procedure.declared;
  std::vector<BoundParameter> bound;
  bound.reserve(declared.size());
  for (std::size_t index = 0; index < declared.size(); ++index) {
    bound.push_back(BoundParameter::ofDeclared(declared[index], values[index]));
  }
  ExecutionResult execution = runOn(callText(procedure.name, declared.size()), bound,
                                    timeoutSeconds, Escapes::Translated, Reading::Once);
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
  CallBatch batch{procedure.name, procedure.declared, values};
  ExecutionResult execution =
      runOn(batch.text(), batch.parameters(), timeoutSeconds, Escapes::LeftAlone, Reading::Once);
  batch.takeOutputs(execution, values);
  return execution;
}

ExecutionResult OdbcConnection::call(const Procedure& procedure, std::vector<Variant>& values,
                                     int timeoutSeconds) {
  const std::string text = callText(procedure.name, procedure.declared.size());
  Session& session = this->session();
  catalogue_.forget();  // a procedure may do anything
  ExecutionResult result = recorded(text, [&] {
    std::ranges::for_each(procedure.declared, requireKnownDigits);
    try {
      return callInOneStatement(procedure, values, timeoutSeconds);
    } catch (const DriverFailure& failure) {
      if (!session.speaksTSql() || !isRefusedDefault(failure)) {
        throw;
      }
      return callInABatch(procedure, values, timeoutSeconds);
    }
  });
  for (ResultSet& set : result.results) {
    std::vector<ColumnInfo> columns = set.columns.all();
    for (ColumnInfo& column : columns) {  // no query here that would say how sure they are
      column.baseTable.clear();
      column.baseColumn.clear();
    }
    set.columns = std::move(columns);
  }
  return result;
}

void OdbcConnection::beginTrans() {
  requireOpen();
  recorded({}, [&] { transaction_->begin(timeoutSeconds()); });
}

void OdbcConnection::commitTrans() {
  requireOpen();
  recorded({}, [&] { transaction_->commit(); });
}

void OdbcConnection::rollbackTrans() {
  requireOpen();
  catalogue_.forget();
  recorded({}, [&] { transaction_->rollback(); });
}

}  // namespace azcoll::odbc
