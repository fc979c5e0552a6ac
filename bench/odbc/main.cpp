// Runs the benchmarks of the ODBC provider in turn and prints how they stand to bare ODBC calls.

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "measured.h"
#include "processor_time.h"
#include "wall_time.h"

namespace azcoll::bench {
namespace {

/// Remembers the shortest time of every benchmark: the one that was disturbed least.
class ShortestTimes : public benchmark::ConsoleReporter {
 public:
  ShortestTimes() : ConsoleReporter{OO_Tabular} {}

  void ReportRuns(const std::vector<Run>& runs) override {
    std::vector<Run> medians;
    for (const Run& run : runs) {
      failed_ = failed_ || run.error_occurred;
      if (run.run_type == Run::RT_Aggregate) {
        if (run.aggregate_name == "median") {
          medians.push_back(run);
        }
        continue;
      }
      const auto iterations = static_cast<double>(run.iterations);
      note(run.run_name.function_name, run.real_accumulated_time / iterations);
      note("processor/" + run.run_name.function_name, run.cpu_accumulated_time / iterations);
    }
    ConsoleReporter::ReportRuns(medians);
  }

  /// Shortest time of the benchmarks whose name begins with `start` and ends with `end`; 0 without.
  [[nodiscard]] double best(const std::string& start, const std::string& end) const {
    double shortest = 0;
    for (const auto& [name, seconds] : shortest_) {
      if (name.starts_with(start) && name.ends_with(end)) {
        shortest = shortest == 0 ? seconds : std::min(shortest, seconds);
      }
    }
    return shortest;
  }
  [[nodiscard]] bool failed() const { return failed_; }

 private:
  void note(const std::string& name, double seconds) {
    const auto [found, isNew] = shortest_.try_emplace(name, seconds);
    if (!isNew) {
      found->second = std::min(found->second, seconds);
    }
  }

  std::map<std::string, double> shortest_;
  bool failed_ = false;
};

void line(const std::string& title, double over, double under, const char* goal) {
  if (over > 0 && under > 0) {
    std::printf("%-66s %8.2f %8s\n", title.c_str(), over / under, goal);
  }
}

void printRatios(const ShortestTimes& times, const std::string& database) {
  const std::string end = "/" + database;
  const auto ratio = [&](const std::string& title, const std::string& over,
                         const std::string& under, const char* goal) {
    line(database + ": " + title, times.best(over, end), times.best(under, end), goal);
  };
  ratio("100,000 rows of 40 columns, provider / bare ODBC", "fetch/provider/", "fetch/bare",
        "<= 1.10");
  ratio("the same with every value read / bare ODBC", "fetch/provider and read/", "fetch/bare", "");
  const FetchMemory& memory = memoryOf(database);
  const auto bytes = [](std::size_t count) { return static_cast<double>(count); };
  line(database + ": memory of the rows / their data", bytes(memory.providerHeld),
       bytes(memory.data), "<= 2");
  line(database + ": the most during the fetch / their data", bytes(memory.providerPeak),
       bytes(memory.data), "<= 2");
  line(database + ": bare ODBC, memory of what it keeps / their data", bytes(memory.bareHeld),
       bytes(memory.data), "");
  ratio("500 statements of a job, provider / bare ODBC", "job/provider/", "job/bare", "");
  ratio("the same, processor time of this program", "processor/job/provider/", "processor/job/bare",
        "");
  ratio("look-ups, prepared once / direct", "look-ups/prepared", "look-ups/direct", "");
  ratio("main job, 100 companies, provider / bare ODBC", "main job/provider/", "main job/bare",
        "<= 1.10");
  ratio("main job, 100 companies, component / bare ODBC", "main job/component/", "main job/bare",
        "<= 1.10");
}

void registerAll(const Measured& on) {
  if (!on.database().absent.empty()) {
    std::printf("skipped: %s: %s\n", on.name.c_str(), on.database().absent.c_str());
    return;
  }
  registerFetches(on);
  registerStatements(on);
}

}  // namespace
}  // namespace azcoll::bench

int main(int argc, char** argv) {
  using namespace azcoll::bench;  // NOLINT(google-build-using-namespace): the program's own
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 2;
  }
  registerAll({"sqlite", sqliteDatabase, processorTime});
  registerAll({"postgresql", postgresqlDatabase, wallTime});
  const bool server = registerServerJob();
  if (!server) {
    std::printf(
        "skipped: the main job at 100 companies needs a server that speaks T-SQL"
        " (AZCOLL_TEST_CONNESSIONE)\n");
  }
  ShortestTimes times;
  benchmark::RunSpecifiedBenchmarks(&times);
  benchmark::Shutdown();
  std::printf("\n%-66s %8s %8s\n", "ratio (shortest of the repetitions; bytes)", "measured",
              "goal");
  for (const char* const database : {"sqlite", "postgresql", "server"}) {
    printRatios(times, database);
  }
  if (server) {
    const RoundTrips trips = serverRoundTrips();
    line("server: main job, round trips per linked company, component", trips.component, 1, "");
    line("server: main job, round trips per linked company, bare ODBC", trips.bare, 1, "");
  }
  return times.failed() ? 1 : 0;
}
