// The activity query of a company with many activities: over the rows that it gives, at one size of
// the table, and over what else the table holds, with the same rows.

#include "activity_query.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <compare>
#include <map>

#include "bench_database.h"
#include "raw_database.h"
#include "service/service.h"
#include "support/sqlite_texts.h"

namespace azcoll::bench {
namespace {

constexpr int kYear = 2024;
constexpr int kOtherYears = 19;
constexpr int kFirstOther = 2000;  // of the other companies

/// What the table of activities holds beyond the example.
struct Filling {
  int rows = 100;         ///< activities of the company in the year that is asked for
  int table = 10'000;     ///< the same with those of the nineteen years before
  int companies = 0;      ///< other companies, each with ten activities in that year
  bool asLinked = false;  ///< the company is linked under another one with all of them

  friend auto operator<=>(const Filling&, const Filling&) = default;
};

void addCompany(Connection& connection, int company) {
  run(connection, join("INSERT INTO CG18_ANADITTABASE (CG18_DITTA, CG18_CODICE_CG16) VALUES (",
                       company, ", 1010)"));
  run(connection, join("INSERT INTO CG25_ANADITTAGEST (CG25_DITTA_CG18, CG25_FLGIVAQUATER) VALUES"
                       " (",
                       company, ", 2)"));
}

void addActivities(Connection& connection, int main, int company, int year, int rows) {
  for (int code = 1; code <= rows; ++code) {
    run(connection,
        join("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
             " CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_CODICE_CG28)"
             " VALUES (0, ",
             year, ", 0, ", main, ", ", company, ", ", code, ", N'22')"));
  }
}

void fill(Connection& connection, const Filling& filling) {
  connection.beginTrans();
  const int main = filling.asLinked ? kMainCompany + 1 : kMainCompany;
  addCompany(connection, kMainCompany);
  addCompany(connection, kMainCompany + 1);
  const int before = (filling.table - filling.rows) / kOtherYears;
  for (int code = 1; code <= std::max(filling.rows, before); ++code) {
    run(connection, join("INSERT INTO CG96_ANAGATTIVITA (CG96_DITTA_CG18, CG96_CODATTIVITA,"
                         " CG96_DESCRATTIVITA) VALUES (",
                         kMainCompany, ", ", code, ", N'Attività')"));
  }
  addActivities(connection, main, kMainCompany, kYear, filling.rows);
  for (int year = kYear - kOtherYears; year < kYear; ++year) {
    addActivities(connection, main, kMainCompany, year, before);
  }
  for (int other = kFirstOther; other < kFirstOther + filling.companies; ++other) {
    constexpr int kOwn = 10;
    addCompany(connection, other);
    addActivities(connection, other, other, kYear, kOwn);
  }
  connection.commitTrans();
}

/// Filling a database takes longer than asking it: one file for all that ask for the same.
std::string filledFile(const Filling& filling) {
  static std::map<Filling, std::unique_ptr<ScratchFile>> files;
  std::unique_ptr<ScratchFile>& file = files[filling];
  if (!file) {
    file = std::make_unique<ScratchFile>();
    fill(*openExample(file->path()), filling);
  }
  return file->path();
}

std::string& plan() {
  static std::string text;
  return text;
}

void ask(CLSCO_AZIENDECOLL& service) {
  service.CPInput->Pvar_Ditta = kMainCompany;
  service.CPInput->AnnoSolare = kYear;
}

/// The SQLite text of the query; its plan is kept.
std::string sqliteText(const std::string& path) {
  const test::SqliteTexts listening;
  const std::shared_ptr<Connection> connection =
      newConnectionFor(join("Provider=embedded;Data Source=", path));
  connection->open("", "", CommandOption::Unspecified);
  CLSCO_AZIENDECOLL service;
  ask(service);
  service.StringaSQLAttivitaCollegate();
  const test::SqliteTexts::Ran statement =
      test::sqliteStatementOf(*connection, service.CPOutput->GstrSQL_AttivitaCollegate);
  plan().clear();
  for (const std::string& step : test::queryPlan(statement)) {
    plan() += "  " + step + "\n";
  }
  return statement.expanded;
}

/// `RecordsetAttivitaCollegate`, as a caller calls it.
void throughTheService(benchmark::State& state, const Filling& filling) {
  const std::shared_ptr<Connection> connection =
      newConnectionFor(join("Provider=embedded;Data Source=", filledFile(filling)));
  connection->setCursorLocation(CursorLocation::Client);
  connection->open("", "", CommandOption::Unspecified);
  CLSCO_AZIENDECOLL service;
  service.CPInput->Connessione = connection;
  ask(service);
  for (auto _ : state) {
    service.RecordsetAttivitaCollegate();
    if (service.Stato != Variant{std::int16_t{0}} ||
        service.CPOutput->Grst_AttivitaCollegate->recordCount() != filling.rows) {
      state.SkipWithError("the rows are not there");
      return;
    }
  }
}

/// The same query by SQLite alone, prepared once.
void byHand(benchmark::State& state, const Filling& filling) {
  const std::string path = filledFile(filling);
  RawDatabase database{path};
  const auto statement = database.prepare(sqliteText(path));
  for (auto _ : state) {
    if (statement->readAll() != filling.rows) {
      state.SkipWithError("the rows are not there");
      return;
    }
  }
}

Filling ofRows(const benchmark::State& state) { return {.rows = static_cast<int>(state.range(0))}; }
Filling ofTable(const benchmark::State& state) {
  return {.table = static_cast<int>(state.range(0))};
}
Filling ofCompanies(const benchmark::State& state) {
  return {.companies = static_cast<int>(state.range(0))};
}

void serviceRows(benchmark::State& state) { throughTheService(state, ofRows(state)); }
void sqliteRows(benchmark::State& state) { byHand(state, ofRows(state)); }
void serviceTable(benchmark::State& state) { throughTheService(state, ofTable(state)); }
void sqliteTable(benchmark::State& state) { byHand(state, ofTable(state)); }
void serviceCompanies(benchmark::State& state) { throughTheService(state, ofCompanies(state)); }
void sqliteCompanies(benchmark::State& state) { byHand(state, ofCompanies(state)); }
void serviceLinked(benchmark::State& state) {
  throughTheService(state, {.rows = static_cast<int>(state.range(0)), .asLinked = true});
}

void over(benchmark::internal::Benchmark* job, std::int64_t small, std::int64_t middle,
          std::int64_t large) {
  job->Arg(small)->Arg(middle)->Arg(large)->Unit(benchmark::kMicrosecond);
}
void overRows(benchmark::internal::Benchmark* job) { over(job, 10, 100, 1000); }
void overTable(benchmark::internal::Benchmark* job) { over(job, 1000, 10'000, 100'000); }
void overCompanies(benchmark::internal::Benchmark* job) { over(job, 1, 100, 1000); }
BENCHMARK(serviceRows)->Apply(overRows);
BENCHMARK(sqliteRows)->Apply(overRows);
BENCHMARK(serviceTable)->Apply(overTable);
BENCHMARK(sqliteTable)->Apply(overTable);
BENCHMARK(serviceCompanies)->Apply(overCompanies);
BENCHMARK(sqliteCompanies)->Apply(overCompanies);
BENCHMARK(serviceLinked)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);

}  // namespace

const std::string& activityQueryPlan() { return plan(); }

}  // namespace azcoll::bench
