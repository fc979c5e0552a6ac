// Runs the benchmarks in turn and prints how they stand to each other.

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "activity_query.h"

namespace {

/// Prints as the console reporter does, and remembers the shortest time of every benchmark: on a
/// shared machine the shortest of several runs is the one that was disturbed least.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  RatioReporter() : ConsoleReporter{OO_Tabular} {}

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
      const std::string name =
          run.run_name.function_name + (run.run_name.args.empty() ? "" : "/" + run.run_name.args);
      const bool manual = !run.run_name.time_type.empty();
      const double seconds = (manual ? run.real_accumulated_time : run.cpu_accumulated_time) /
                             static_cast<double>(run.iterations);
      const auto [found, isNew] = shortest_.try_emplace(name, seconds);
      if (!isNew) {
        found->second = std::min(found->second, seconds);
      }
    }
    ConsoleReporter::ReportRuns(medians);
  }

  void printRatios() const {
    std::printf("\n%-66s %8s %8s\n", "ratio of processor times (shortest of the repetitions)",
                "measured", "goal");
    for (const char* const size : {"1", "10", "100", "1000"}) {
      const std::string group = std::string("/") + size;
      ratio("component / its statements as text, linked companies: " + std::string(size),
            "component" + group, "replayedText" + group, group == "/100" ? "<= 1.15" : "");
      ratio("statements as text / SQLite by hand, linked companies: " + std::string(size),
            "replayedText" + group, "handWritten" + group, group == "/100" ? "<= 2.0" : "");
      ratio("component / one set-based batch, linked companies: " + std::string(size),
            "component" + group, "setBased" + group, "");
    }
    perPart("component, cost per linked company, 1000 against 10", "component", 10, 1000);
    perPart("component, cost per linked company, 1000 against 100", "component", 100, 1000);
    for (const char* const name : {"modification", "deletion"}) {
      perPart(std::string(name) + ", cost per linked company, 1000 against 10", name, 10, 1000);
      perPart(std::string(name) + ", cost per linked company, 1000 against 100", name, 100, 1000);
    }
    activityQuery();
    statement("point SELECT", "Select", "<= 1.4");
    statement("INSERT of 19 columns", "Insert", "<= 1.8");
    statement("activity query", "Activities", "<= 1.1");
  }

  [[nodiscard]] bool failed() const { return failed_; }

 private:
  void line(const std::string& title, double value, const char* goal) const {
    std::printf("%-66s %8.2f %8s\n", title.c_str(), value, goal);
  }
  void ratio(const std::string& title, const std::string& over, const std::string& under,
             const char* goal) const {
    const auto top = shortest_.find(over);
    const auto bottom = shortest_.find(under);
    if (top != shortest_.end() && bottom != shortest_.end()) {
      line(title, top->second / bottom->second, goal);
    }
  }
  /// Of a job over so many companies or rows: what one of them costs.
  void perPart(const std::string& title, const std::string& name, int small, int large,
               const char* goal = "<= 1.2") const {
    const auto top = shortest_.find(name + "/" + std::to_string(large));
    const auto bottom = shortest_.find(name + "/" + std::to_string(small));
    if (top != shortest_.end() && bottom != shortest_.end()) {
      line(title, top->second / large / (bottom->second / small), goal);
    }
  }
  /// In proportion to the rows, whatever else the table holds.
  void activityQuery() const {
    for (const char* const who : {"service", "sqlite"}) {
      const std::string name = who;
      perPart("activity query, " + name + ", cost per row, 1000 against 100", name + "Rows", 100,
              1000);
      ratio("activity query, " + name + ", table of 100,000 rows against 1,000",
            name + "Table/100000", name + "Table/1000", "<= 1.2");
      ratio("activity query, " + name + ", beside 1000 companies against 1",
            name + "Companies/1000", name + "Companies/1", "<= 1.2");
    }
    perPart("activity query of a linked company, cost per row, 100 against 10", "serviceLinked", 10,
            100, "");
    ratio("activity query, 1000 rows, service / SQLite", "serviceRows/1000", "sqliteRows/1000", "");
    ratio("activity query, 100 rows, service / SQLite", "serviceRows/100", "sqliteRows/100", "");
  }
  void statement(const std::string& title, const std::string& name, const char* goal) const {
    ratio(title + ", engine / prepared once", "engine" + name, "prepared" + name, goal);
    ratio(title + ", prepared afresh / engine", "fresh" + name, "engine" + name, ">= 3");
  }

  std::map<std::string, double> shortest_;
  bool failed_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 2;
  }
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  reporter.printRatios();
  if (const std::string& plan = azcoll::bench::activityQueryPlan(); !plan.empty()) {
    std::printf("\nquery plan of the activity query\n%s", plan.c_str());
  }
  return reporter.failed() ? 1 : 0;
}
