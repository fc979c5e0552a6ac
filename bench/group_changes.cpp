// A change and a deletion carried to the group, over the number of linked companies.

#include <benchmark/benchmark.h>

#include "bench_database.h"
#include "processor_time.h"
#include "service/service.h"

namespace azcoll::bench {
namespace {

using Method = void (CLSCO_AZIENDECOLL::*)() noexcept;

/// Saves a customer in every company of the group.
void saveEverywhere(Connection& connection, int linked, std::int64_t code) {
  connection.beginTrans();
  for (int company = kMainCompany; company <= kMainCompany + linked; ++company) {
    run(connection,
        join("INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16,"
             " CG44_TIPOCF_CG40, CG44_INTERMEDIO_CG40, CG44_FLGATTIVO) VALUES (",
             company, ", 0, ", code, ", 3005, 0, ", company == kMainCompany ? "1" : "Null",
             ", 1)"));
  }
  connection.commitTrans();
}

/// Companies of the group in which the customer stands as `condition` says.
std::int64_t companiesWhere(Connection& connection, std::int64_t code, const char* condition) {
  return numberOf(connection, join("SELECT COUNT(*) FROM CG44_CLIFOR WHERE CG44_TIPOCF = 0 AND"
                                   " CG44_CLIFOR = ",
                                   code, " AND CG44_DITTA_CG18 >= ", kMainCompany, condition));
}

void timeMethod(benchmark::State& state, Method method, const char* condition,
                std::int64_t expected) {
  const auto linked = static_cast<int>(state.range(0));
  const std::shared_ptr<Connection> connection = openExample();
  addGroup(*connection, linked);
  CLSCO_AZIENDECOLL service;
  service.CPInput->Connessione = connection;
  service.CPInput->Pvar_Ditta = kMainCompany;
  service.CPInput->AnnoSolare = 2025;
  std::int64_t code = 1'000'000;
  for (auto _ : state) {
    saveEverywhere(*connection, linked, ++code);
    service.CPInput->Pvar_CliFor = code;
    const double start = processorTime();
    (service.*method)();
    state.SetIterationTime(processorTime() - start);
    if (service.Stato != Variant{std::int16_t{0}} ||
        companiesWhere(*connection, code, condition) != expected) {
      state.SkipWithError("the group is not as it should be");
      return;
    }
  }
}

void modification(benchmark::State& state) {
  timeMethod(state, &CLSCO_AZIENDECOLL::ModificaCliFor, " AND CG44_INTERMEDIO_CG40 = 1",
             state.range(0) + 1);
}
void deletion(benchmark::State& state) {
  timeMethod(state, &CLSCO_AZIENDECOLL::EliminaCliFor, "", 1);
}

/// A round is prepared by as many insertions as there are companies: their number is kept low.
void rounds(benchmark::internal::Benchmark* job) {
  constexpr int kRounds = 10;
  job->Arg(10)->Arg(100)->Arg(1000)->Iterations(kRounds)->UseManualTime()->Unit(
      benchmark::kMicrosecond);
}
BENCHMARK(modification)->Apply(rounds);
BENCHMARK(deletion)->Apply(rounds);

}  // namespace
}  // namespace azcoll::bench
