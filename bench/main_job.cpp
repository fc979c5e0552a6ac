// The main job: a customer of the main company spread over its linked companies.

#include <benchmark/benchmark.h>
#include <chrono>

#include "bench_database.h"
#include "component/service.h"

namespace azcoll::bench {
namespace {

/// How many companies hold the code; the answer that is checked before anything is timed.
std::int64_t companiesWith(Connection& connection, std::int64_t code) {
  std::int64_t affected = 0;
  return connection
      .execute(join("SELECT COUNT(*) FROM CG44_CLIFOR WHERE CG44_TIPOCF = 0 AND CG44_CLIFOR = ",
                    code, " AND CG44_DITTA_CG18 >= 1000"),
               affected, CommandOption::Text)
      ->fields()
      .item(std::size_t{0})
      .value()
      .toInt64();
}

void mainJob(benchmark::State& state) {
  const int linked = static_cast<int>(state.range(0));
  const std::shared_ptr<Connection> connection = openExample();
  addGroup(*connection, linked);
  CLSCO_AZIENDECOLL service;
  service.CPInput->Connessione = connection;
  service.CPInput->Pvar_Ditta = 1000;
  service.CPInput->AnnoSolare = 2025;
  std::int64_t code = 1'000'000;
  for (auto _ : state) {
    addCustomer(*connection, ++code);
    service.CPInput->Pvar_CliFor = code;
    const auto start = std::chrono::steady_clock::now();
    service.DuplicaCliFor();
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(elapsed.count());
    if (service.Stato != Variant{std::int16_t{0}} ||
        companiesWith(*connection, code) != linked + 1) {
      state.SkipWithError("the copies are not all there");
      return;
    }
  }
  state.counters["per_company"] =
      benchmark::Counter(static_cast<double>(linked) * static_cast<double>(state.iterations()),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(mainJob)->Arg(1)->Arg(10)->Arg(100)->Arg(1000)->UseManualTime()->Unit(
    benchmark::kMicrosecond);

}  // namespace
}  // namespace azcoll::bench
