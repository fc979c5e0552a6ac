// Single statements: the engine on a known shape, against the SQLite statement that it runs, which
// is prepared once or prepared afresh each time.

#include <benchmark/benchmark.h>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include "bench_database.h"
#include "raw_database.h"
#include "support/sqlite_texts.h"

namespace azcoll::bench {
namespace {

constexpr int kRows = 1000;

/// The SQLite text, constants included, that the engine runs for a statement.
std::string sqliteTextOf(const std::string& file, const std::string& statement) {
  const test::SqliteTexts listening;
  const std::shared_ptr<Connection> connection =
      newConnectionFor(join("Provider=embedded;Data Source=", file));
  connection->open("", "", CommandOption::Unspecified);
  return test::sqliteStatementOf(*connection, statement).expanded;
}

/// The activity query with the decoded columns, as the service composes it for company 10 in 2024:
/// the first statement of its fixture.
std::string activityQuery() {
  std::ifstream file{std::string(AZCOLL_SOURCE_DIR) +
                     "/tests/statements/cases/attivita_decodifiche.sql.txt"};
  std::string text;
  std::string line;
  while (std::getline(file, line) && !line.starts_with("query")) {
  }
  while (std::getline(file, line) && line != "----") {
    const bool joined = line.ends_with("\\");
    text += joined ? line.substr(0, line.size() - 1) : line + "\r\n";
  }
  return text;
}

std::string pointSelect(int code) {
  return join("SELECT CG40_DESCR FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = 20",
              " AND CG40_TIPOCF = 0 AND CG40_INTERMEDIO = ", kRows + code);
}

std::string insert(int code) {
  return join(
      "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16,"
      " CG44_GRUPPO_CG10, CG44_CONTO_CG24, CG44_CONTOR_CG24, CG44_CODPAG_CG62, CG44_GGSCADFIX,"
      " CG44_CODABI_CG12, CG44_CODCAB_CG13, CG44_TIPOCF_CG40, CG44_INTERMEDIO_CG40,"
      " CG44_CODICE_CG08, CG44_CODICE_CG28, CG44_IDAGENTE_MG17, CG44_CODSEDE_CG31,"
      " CG44_IDMEDIA_CG99, CG44_FLGATTIVO) VALUES (20, 0, ",
      kRows + code,
      ", 3005, 1, N'0401130', Null, N'RB90', 10, 3069, 12711, Null, Null, N'IT',"
      " N'22', Null, Null, 55, 1)");
}

/// The example with rows to look for and with activity rows for twenty years.
void fill(Connection& connection, int activities) {
  connection.beginTrans();
  for (int code = 1; code <= kRows; ++code) {
    run(connection, join("INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF,"
                         " CG40_INTERMEDIO, CG40_DESCR) VALUES (20, 0, ",
                         kRows + code, ", N'x')"));
  }
  // Company 10 gets the activities of a larger business in the year that is asked for.
  constexpr int kOwn = 8;
  for (int i = 0; i < kOwn; ++i) {
    run(connection, join("INSERT INTO CG96_ANAGATTIVITA (CG96_DITTA_CG18, CG96_CODATTIVITA,"
                         " CG96_DESCRATTIVITA) VALUES (10, ",
                         900 + i, ", N'Attività')"));
    run(connection,
        join("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
             " CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_CODICE_CG28) VALUES"
             " (0, 2024, 2, 10, 10, ",
             900 + i, ", N'22')"));
  }
  constexpr int kYears = 20;
  for (int i = 0; i < activities; ++i) {
    run(connection,
        join("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
             " CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA) VALUES (0, ",
             2003 + i % kYears, ", 2, ", i % 2 == 0 ? 20 : 40, ", ", i % 2 == 0 ? 20 : 40, ", ",
             500 + i, ")"));
  }
  connection.commitTrans();
}

constexpr int kActivities = 5000;

/// One database for all: filling it takes longer than measuring.
const std::string& filledFile() {
  static const ScratchFile file;
  static const std::string path = [] {
    fill(*openExample(file.path()), kActivities);
    return file.path();
  }();
  return path;
}

std::shared_ptr<Connection> openFilled() {
  const std::shared_ptr<Connection> connection = openExample();
  fill(*connection, kActivities);
  return connection;
}

void throughTheEngine(benchmark::State& state, const std::function<std::string(int)>& statement,
                      std::int64_t rows) {
  const std::shared_ptr<Connection> connection = openFilled();
  connection->beginTrans();
  int number = 0;
  std::int64_t affected = 0;
  for (auto _ : state) {
    const std::shared_ptr<Recordset> result =
        connection->execute(statement(++number), affected, CommandOption::Text);
    if (rows >= 0 && (!result || result->recordCount() != rows)) {
      state.SkipWithError("the rows are not there");
      return;
    }
  }
}

void engineSelect(benchmark::State& state) {
  throughTheEngine(
      state, [](int number) { return pointSelect(number % kRows + 1); }, 1);
}
void engineInsert(benchmark::State& state) { throughTheEngine(state, insert, -1); }
void engineActivities(benchmark::State& state) {
  const std::string query = activityQuery();
  const std::int64_t rows =
      RawDatabase{filledFile()}.prepare(sqliteTextOf(filledFile(), query))->readAll();
  throughTheEngine(
      state, [&](int) { return query; }, rows);
}

/// The floor: `text` prepared once; `bind` gives it the values of each round.
void prepared(benchmark::State& state, const std::string& text,
              const std::function<void(RawStatement&, int)>& bind) {
  RawDatabase database{filledFile()};
  database.run("BEGIN IMMEDIATE");
  const auto statement = database.prepare(text);
  int number = 0;
  for (auto _ : state) {
    bind(*statement, ++number);
    benchmark::DoNotOptimize(statement->readAll());
  }
}

/// The same, prepared afresh each time from a text that holds its values.
void afresh(benchmark::State& state, const std::function<std::string(int)>& text) {
  RawDatabase database{filledFile()};
  database.run("BEGIN IMMEDIATE");
  int number = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(database.prepare(text(++number))->readAll());
  }
}

void preparedSelect(benchmark::State& state) {
  prepared(state,
           "SELECT CG40_DESCR FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = ?1 AND CG40_TIPOCF ="
           " ?2 AND CG40_INTERMEDIO = ?3",
           [](RawStatement& statement, int number) {
             statement.bind(1, 20);
             statement.bind(2, 0);
             statement.bind(3, kRows + number % kRows + 1);
           });
}
void freshSelect(benchmark::State& state) {
  afresh(state, [](int number) { return pointSelect(number % kRows + 1); });
}

constexpr const char* kInsert =
    "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16,"
    " CG44_GRUPPO_CG10, CG44_CONTO_CG24, CG44_CONTOR_CG24, CG44_CODPAG_CG62, CG44_GGSCADFIX,"
    " CG44_CODABI_CG12, CG44_CODCAB_CG13, CG44_TIPOCF_CG40, CG44_INTERMEDIO_CG40,"
    " CG44_CODICE_CG08, CG44_CODICE_CG28, CG44_IDAGENTE_MG17, CG44_CODSEDE_CG31,"
    " CG44_IDMEDIA_CG99, CG44_FLGATTIVO) VALUES (";

void preparedInsert(benchmark::State& state) {
  prepared(state,
           join(kInsert, "?1,?2,?3,?4,?5,?6,?7,?8,?9,?10,?11,?12,?13,?14,?15,?16,?17,?18,?19)"),
           [](RawStatement& statement, int number) {
             statement.bind(1, 20);
             statement.bind(2, 0);
             statement.bind(3, kRows + number);
             statement.bind(4, 3005);
             statement.bind(5, 1);
             statement.bind(6, "0401130");
             statement.bindNull(7);
             statement.bind(8, "RB90");
             statement.bind(9, 10);
             statement.bind(10, 3069);
             statement.bind(11, 12711);
             statement.bindNull(12);
             statement.bindNull(13);
             statement.bind(14, "IT");
             statement.bind(15, "22");
             statement.bindNull(16);
             statement.bindNull(17);
             statement.bind(18, 55);
             statement.bind(19, 1);
           });
}
void freshInsert(benchmark::State& state) {
  afresh(state, [](int number) {
    return join(kInsert, "20, 0, ", kRows + number,
                ", 3005, 1, '0401130', NULL, 'RB90', 10, 3069, 12711, NULL, NULL, 'IT', '22', NULL,"
                " NULL, 55, 1)");
  });
}

void preparedActivities(benchmark::State& state) {
  prepared(state, sqliteTextOf(filledFile(), activityQuery()), [](RawStatement&, int) {});
}
void freshActivities(benchmark::State& state) {
  const std::string text = sqliteTextOf(filledFile(), activityQuery());
  afresh(state, [&](int) { return text; });
}

BENCHMARK(engineSelect);
BENCHMARK(preparedSelect);
BENCHMARK(freshSelect);
BENCHMARK(engineInsert);
BENCHMARK(preparedInsert);
BENCHMARK(freshInsert);
BENCHMARK(engineActivities)->Unit(benchmark::kMicrosecond);
BENCHMARK(preparedActivities)->Unit(benchmark::kMicrosecond);
BENCHMARK(freshActivities)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace azcoll::bench
