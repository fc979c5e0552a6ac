// The main job's statements in neutral SQL, for 100 companies: what the provider adds to each of
// them. And the same look-up prepared once or executed directly each time.

#include <benchmark/benchmark.h>
#include <memory>
#include <string>
#include <vector>

#include "bare_odbc.h"
#include "bench_database.h"
#include "data/text.h"
#include "measured.h"

namespace azcoll::bench {
namespace {

int nextJobCode() {
  static int code = 0;
  return ++code;
}

/// Five statements for each company, the values in their texts; `true` marks those that give rows.
std::vector<std::pair<std::string, bool>> jobTexts(int code) {
  std::vector<std::pair<std::string, bool>> texts;
  for (int company = 1; company <= kJobCompanies; ++company) {
    texts.emplace_back(
        join("SELECT * FROM INTERMEDIARI WHERE DITTA = ", company, " AND TIPO = 0 AND CODICE = 1"),
        true);
    texts.emplace_back(join("SELECT * FROM SEDI WHERE DITTA = ", company, " AND CODICE = 1"), true);
    texts.emplace_back(
        join("INSERT INTO CLIENTI (DITTA, TIPO, CODICE, C4, C5, C6, C7, C8, C9, C10, C11, C12, C13,"
             " C14, C15, C16, C17, C18, C19) VALUES (",
             company, ", 0, ", code,
             ", 3005, 1, '0401130', NULL, 'RB90', 10, 3069, 12711, NULL, NULL, 'IT', '22', NULL,"
             " NULL, 55, 1)"),
        false);
    texts.emplace_back(join("SELECT ULTIMO FROM NUMERI WHERE DITTA = ", company), true);
    texts.emplace_back(join("UPDATE NUMERI SET ULTIMO = ", code, " WHERE DITTA = ", company),
                       false);
  }
  return texts;
}

void jobThroughProvider(benchmark::State& state, const Measured& on) {
  const std::shared_ptr<Connection> connection = openOdbc(on.database());
  for (auto _ : state) {
    const auto texts = jobTexts(nextJobCode());
    std::int64_t affected = 0;
    const double start = on.clock();
    connection->beginTrans();
    for (const auto& [text, givesRows] : texts) {
      const std::shared_ptr<Recordset> rows =
          connection->execute(text, affected, CommandOption::Text);
      if (givesRows && rows->fields().item(std::size_t{0}).value().isNull()) {
        state.SkipWithError("the row is not there");
      }
    }
    connection->commitTrans();
    state.SetIterationTime(on.clock() - start);
  }
}

/// A statement as a program runs it that reads one row of numbers and texts.
void runBare(const BareConnection& connection, const std::string& text, bool givesRows) {
  const BareStatement statement{connection};
  statement.execute(text);
  if (!givesRows) {
    SQLLEN count = 0;
    statement.check(SQLRowCount(statement.get(), &count));
    return;
  }
  SQLSMALLINT columns = 0;
  statement.check(SQLNumResultCols(statement.get(), &columns));
  std::array<std::array<char16_t, 41>, 4> values{};
  std::array<SQLLEN, 4> lengths{};
  for (SQLUSMALLINT column = 0; column < columns; ++column) {
    statement.check(SQLBindCol(statement.get(), static_cast<SQLUSMALLINT>(column + 1), SQL_C_WCHAR,
                               values.at(column).data(), sizeof values[0], &lengths.at(column)));
  }
  while (statement.fetch()) {
    benchmark::DoNotOptimize(values);
  }
}

void jobThroughBareOdbc(benchmark::State& state, const Measured& on) {
  BareConnection connection{on.database().connectionString};
  for (auto _ : state) {
    const auto texts = jobTexts(nextJobCode());
    const double start = on.clock();
    connection.begin();
    for (const auto& [text, givesRows] : texts) {
      runBare(connection, text, givesRows);
    }
    connection.commit();
    state.SetIterationTime(on.clock() - start);
  }
}

constexpr int kLooks = 500;

void direct(benchmark::State& state, const Measured& on) {
  const BareConnection connection{on.database().connectionString};
  for (auto _ : state) {
    const double start = on.clock();
    for (int look = 0; look < kLooks; ++look) {
      runBare(connection,
              join("SELECT * FROM INTERMEDIARI WHERE DITTA = ", look % kJobCompanies + 1,
                   " AND TIPO = 0 AND CODICE = 1"),
              true);
    }
    state.SetIterationTime(on.clock() - start);
  }
}

void prepared(benchmark::State& state, const Measured& on) {
  const BareConnection connection{on.database().connectionString};
  const BareStatement statement{connection};
  std::u16string text = u"SELECT * FROM INTERMEDIARI WHERE DITTA = ? AND TIPO = 0 AND CODICE = 1";
  statement.check(SQLPrepareW(statement.get(), reinterpret_cast<SQLWCHAR*>(text.data()),
                              static_cast<SQLINTEGER>(text.size())));
  std::int32_t company = 0;
  statement.check(SQLBindParameter(statement.get(), 1, SQL_PARAM_INPUT, SQL_C_SLONG, SQL_INTEGER,
                                   10, 0, &company, 0, nullptr));
  std::array<std::array<char16_t, 41>, 4> values{};
  std::array<SQLLEN, 4> lengths{};
  for (SQLUSMALLINT column = 0; column < 4; ++column) {
    statement.check(SQLBindCol(statement.get(), static_cast<SQLUSMALLINT>(column + 1), SQL_C_WCHAR,
                               values.at(column).data(), sizeof values[0], &lengths.at(column)));
  }
  for (auto _ : state) {
    const double start = on.clock();
    for (int look = 0; look < kLooks; ++look) {
      company = look % kJobCompanies + 1;
      statement.check(SQLExecute(statement.get()));
      while (statement.fetch()) {
        benchmark::DoNotOptimize(values);
      }
      SQLFreeStmt(statement.get(), SQL_CLOSE);
    }
    state.SetIterationTime(on.clock() - start);
  }
}

}  // namespace

void registerStatements(const Measured& on) {
  const auto add = [&](const char* name, void (*job)(benchmark::State&, const Measured&)) {
    benchmark::RegisterBenchmark(join(name, "/", on.name).c_str(), job, on)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
  };
  add("job/provider", jobThroughProvider);
  add("job/bare ODBC", jobThroughBareOdbc);
  add("look-ups/direct", direct);
  add("look-ups/prepared", prepared);
}

}  // namespace azcoll::bench
