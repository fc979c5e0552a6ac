// Single statements through the engine against the same statement prepared once on SQLite.

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include "bench_database.h"

namespace azcoll::bench {
namespace {

constexpr int kRows = 1000;

void pointSelectEngine(benchmark::State& state) {
  const std::shared_ptr<Connection> connection = openExample();
  connection->beginTrans();
  for (int code = 1; code <= kRows; ++code) {
    run(*connection, join("INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF,"
                          " CG40_INTERMEDIO, CG40_DESCR) VALUES (20, 0, ",
                          1000 + code, ", N'x')"));
  }
  int code = 0;
  std::int64_t affected = 0;
  for (auto _ : state) {
    code = code % kRows + 1;
    const std::shared_ptr<Recordset> row = connection->execute(
        join("SELECT CG40_DESCR FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = 20",
             " AND CG40_TIPOCF = 0 AND CG40_INTERMEDIO = ", 1000 + code),
        affected, CommandOption::Text);
    if (row->recordCount() != 1) {
      state.SkipWithError("the row is missing");
      return;
    }
  }
}
BENCHMARK(pointSelectEngine);

void pointSelectFloor(benchmark::State& state) {
  sqlite3* database = nullptr;
  sqlite3_open(":memory:", &database);
  sqlite3_exec(database,
               "CREATE TABLE T (D INTEGER NOT NULL, K INTEGER NOT NULL, I INTEGER NOT NULL, X TEXT,"
               " PRIMARY KEY (D, K, I)) WITHOUT ROWID;"
               "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000)"
               " INSERT INTO T SELECT 20, 0, 1000 + i, 'x' FROM n; BEGIN",
               nullptr, nullptr, nullptr);
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(database, "SELECT X FROM T WHERE D = ?1 AND K = ?2 AND I = ?3", -1, &statement,
                     nullptr);
  int code = 0;
  for (auto _ : state) {
    code = code % kRows + 1;
    sqlite3_bind_int(statement, 1, 20);
    sqlite3_bind_int(statement, 2, 0);
    sqlite3_bind_int(statement, 3, 1000 + code);
    if (sqlite3_step(statement) != SQLITE_ROW) {
      state.SkipWithError("the row is missing");
      break;
    }
    benchmark::DoNotOptimize(sqlite3_column_text(statement, 0));
    sqlite3_reset(statement);
  }
  sqlite3_finalize(statement);
  sqlite3_close(database);
}
BENCHMARK(pointSelectFloor);

}  // namespace
}  // namespace azcoll::bench
