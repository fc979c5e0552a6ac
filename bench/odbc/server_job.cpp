// The main job at 100 linked companies on a server that speaks T-SQL: the component, its operations
// sent again through the provider, and the same texts through bare ODBC calls.

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bare_odbc.h"
#include "bench_database.h"
#include "data/text.h"
#include "job_script.h"
#include "measured.h"
#include "support/relay.h"
#include "support/server_database.h"
#include "wall_time.h"

namespace azcoll::bench {
namespace {

constexpr int kLinked = 100;

/// The database of this process's own on the server, with the group in it.
const std::string& serverDatabase() {
  static const test::ServerDatabase own{std::getenv("AZCOLL_TEST_CONNESSIONE")};
  static const bool filled = [] {
    const std::shared_ptr<Connection> connection =
        openOdbc({.connectionString = own.connectionString()});
    for (const char* name : {"tabelle.sql", "procedure.sql", "esempio.sql"}) {
      runScript(*connection, name);
    }
    addGroup(*connection, kLinked);
    return true;
  }();
  static_cast<void>(filled);
  return own.connectionString();
}

/// The first of `count` codes that no job of this run has had.
std::int64_t takeCodes(int count) {
  static std::int64_t next = kFirstCode;
  next += count;
  return next - count;
}

/// A connection that has done the job before, and its operations: what a session learns at first
/// (parameters of a procedure, plans of the server) is not the job's.
struct WarmJob {
  explicit WarmJob(const std::string& database)
      : connection{openOdbc({.connectionString = database})}, script{connection, takeCodes(2)} {}

  std::shared_ptr<Connection> connection;
  Script script;
};

/// A constant of T-SQL.
std::string literal(const Variant& value) {
  if (value.isNull() || value.isEmpty()) {
    return "NULL";
  }
  if (const Date* const date = value.get<Date>()) {
    return join("'", date->databaseText(), "'");
  }
  std::string text = "N'";
  for (const char character : value.text()) {
    text.append(character == '\'' ? 2 : 1, character);
  }
  return text + "'";
}

/// A call of the procedure as a text, with the values that the component gave it.
std::string callText(const TraceEntry& entry) {
  std::string text = join("DECLARE @uscita VARCHAR(8000) EXEC ", entry.sql);
  std::string separator = " ";
  for (const auto& [name, value] : entry.parameters) {
    const bool isOutput = name == "@DitteCollegate" || name == "@dittecollegate";
    text += join(separator, name, " = ", isOutput ? "@uscita OUTPUT" : literal(value));
    separator = ", ";
  }
  return text + " SELECT @uscita";
}

/// Reads every result of a statement as text, in pieces of no interest to anybody.
void runBareToEnd(const BareConnection& connection, const std::string& text) {
  const BareStatement statement{connection};
  statement.execute(text);
  do {
    SQLSMALLINT columns = 0;
    statement.check(SQLNumResultCols(statement.get(), &columns));
    std::vector<std::array<char16_t, 256>> values(static_cast<std::size_t>(columns));
    std::vector<SQLLEN> lengths(static_cast<std::size_t>(columns));
    for (std::size_t column = 0; column < values.size(); ++column) {
      statement.check(SQLBindCol(statement.get(), static_cast<SQLUSMALLINT>(column + 1),
                                 SQL_C_WCHAR, values[column].data(), sizeof values[column],
                                 &lengths[column]));
    }
    while (columns > 0 && statement.fetch()) {
      benchmark::DoNotOptimize(values);
    }
    SQLFreeStmt(statement.get(), SQL_UNBIND);
  } while (SQLMoreResults(statement.get()) == SQL_SUCCESS);
}

/// The operations of a job through bare calls.
void replayBare(BareConnection& floor, const Script& script,
                const std::vector<std::string>& texts) {
  for (std::size_t at = 0; at < script.steps.size(); ++at) {
    const TraceEntry& entry = script.steps[at].entry;
    if (entry.operation == "Execute") {
      runBareToEnd(floor, texts[at]);
    } else if (entry.operation == "CommandExecute") {
      runBareToEnd(floor, callText(entry));
    } else if (entry.operation == "BeginTrans") {
      floor.begin();
    } else if (entry.operation == "CommitTrans") {
      floor.commit();
    }
  }
}

/// The three ways to do the job, each on a connection that is warm. There is one of each in a run:
/// the repetitions take turns on them.
struct Ways {
  explicit Ways(const std::string& database)
      : component{database}, provider{database}, bare{database}, floor{database} {
    for (int time = 0; time < 2; ++time) {
      const std::int64_t code = takeCodes(1);
      addCustomer(*bare.connection, code);
      replayBare(floor, bare.script, bare.script.texts(code));
    }
  }

  WarmJob component;
  WarmJob provider;
  WarmJob bare;  ///< its connection adds the customers and looks at the copies
  BareConnection floor;
  CLSCO_AZIENDECOLL service{};
};

Ways& ways() {
  static Ways all{serverDatabase()};
  return all;
}

template <typename Job>
void timeServerJobs(benchmark::State& state, Connection& connection, const Job& job) {
  for (auto _ : state) {
    const std::int64_t code = takeCodes(1);
    addCustomer(connection, code);
    const auto work = job(code);
    const double start = wallTime();
    work();
    state.SetIterationTime(wallTime() - start);
    if (companiesWith(connection, code) != kLinked + 1) {
      state.SkipWithError("the copies are not all there");
      return;
    }
  }
}

void component(benchmark::State& state) {
  const std::shared_ptr<Connection>& connection = ways().component.connection;
  timeServerJobs(state, *connection, [&](std::int64_t code) {
    return [&, code] { spread(ways().service, connection, code); };
  });
}

void replayed(benchmark::State& state) {
  const WarmJob& job = ways().provider;
  timeServerJobs(state, *job.connection, [&](std::int64_t code) {
    return [&, texts = job.script.texts(code)] { job.script.replay(job.connection, texts); };
  });
}

void bare(benchmark::State& state) {
  const WarmJob& job = ways().bare;
  timeServerJobs(state, *job.connection, [&](std::int64_t code) {
    return [&, texts = job.script.texts(code)] { replayBare(ways().floor, job.script, texts); };
  });
}

}  // namespace

bool registerServerJob() {
  const char* const server = std::getenv("AZCOLL_TEST_CONNESSIONE");
  if (server == nullptr || *server == '\0') {
    return false;
  }
  for (const auto& [name, job] : {std::pair{"main job/component/server", &component},
                                  std::pair{"main job/provider/server", &replayed},
                                  std::pair{"main job/bare ODBC/server", &bare}}) {
    benchmark::RegisterBenchmark(name, job)->UseManualTime()->Unit(benchmark::kMillisecond);
  }
  return true;
}

RoundTrips serverRoundTrips() {
  const auto turnsOf = [](const test::Relay& relay, const std::function<void(std::int64_t)>& job) {
    const std::int64_t code = takeCodes(1);
    addCustomer(*ways().bare.connection, code);
    const std::size_t before = relay.turns();
    job(code);
    return static_cast<double>(relay.turns() - before) / kLinked;
  };
  RoundTrips perCompany;
  const test::Relay toComponent{serverDatabase()};
  const WarmJob component{toComponent.connectionString()};
  CLSCO_AZIENDECOLL service;
  perCompany.component =
      turnsOf(toComponent, [&](std::int64_t code) { spread(service, component.connection, code); });
  const test::Relay toBare{serverDatabase()};
  BareConnection floor{toBare.connectionString()};
  const Script& script = ways().bare.script;
  perCompany.bare =
      turnsOf(toBare, [&](std::int64_t code) { replayBare(floor, script, script.texts(code)); });
  return perCompany;
}

}  // namespace azcoll::bench
