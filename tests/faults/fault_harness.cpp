#include "faults/fault_harness.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <utility>

#include "support/server_example.h"
#include "support/test_database.h"

namespace azcoll::test {
namespace {

struct Run {
  Outcome outcome;
  std::vector<TraceEntry> operations;
  bool failed = false;  ///< the fault was reached
};

/// The example database under a faulty connection, made anew only when a call has changed it.
class Bench {
 public:
  explicit Bench(const FaultScenario& scenario) : scenario_{scenario} { makeAnew(); }

  [[nodiscard]] const Lines& before() const { return before_; }

  Run withoutFault(std::vector<Lines>& states) {
    faulty_->failNowhere();
    if (scenario_.eachStatementCommits) {
      faulty_->listen([&] { states.push_back(picture()); });
    }
    Run run = call();
    faulty_->listen({});
    return run;
  }
  Run withFault(std::size_t number, Way way) {
    faulty_->failAt(number, way);
    return call();
  }

 private:
  Run call() {
    Run run;
    {
      CLSCO_AZIENDECOLL service;
      service.CPInput->Connessione = faulty_->connection();
      scenario_.call(service);
      run.outcome.stato = service.Stato;
      run.outcome.errore = service.Errore;
    }
    run.operations = faulty_->operations();
    run.failed = faulty_->failed();
    run.outcome.transactionOpen = endOpenTransaction(*inner_);
    run.outcome.database = picture();
    if (run.outcome.database != before_) {
      makeAnew();
    } else if (server_ != nullptr) {
      server_->resetIdentities();  // a server does not take back what undone rows have used up
    }
    inner_->errors().clear();
    return run;
  }

  void makeAnew() {
    if (server_ != nullptr) {
      server_->restore(scenario_.prepare);
      inner_ = connectionToServer();
    } else {
      inner_ = openExample();
      if (!scenario_.prepare.empty()) {
        std::int64_t affected = 0;
        inner_->execute(scenario_.prepare, affected, CommandOption::Text);
      }
    }
    faulty_ = std::make_unique<FaultyConnection>(inner_);
    before_ = picture();
  }

  /// The one of all scenarios: what a session does for the first time takes a server a second.
  const std::shared_ptr<Connection>& connectionToServer() const {
    static const std::shared_ptr<Connection> one = server_->connect();
    return one;
  }

  Lines picture() {
    return server_ != nullptr ? server_->picture() : pictureOf(*inner_, testTables());
  }

  const FaultScenario& scenario_;
  ServerExample* server_ = ServerExample::find();
  std::shared_ptr<Connection> inner_;
  std::unique_ptr<FaultyConnection> faulty_;
  Lines before_;
};

/// How many operations of the same name come before operation `number`.
std::size_t occurrenceOf(const std::vector<TraceEntry>& operations, std::size_t number) {
  return static_cast<std::size_t>(std::count_if(
      operations.begin(), operations.begin() + static_cast<std::ptrdiff_t>(number),
      [&](const TraceEntry& each) { return each.operation == operations[number].operation; }));
}

bool insideTransaction(const Fault& fault, const Reference& reference) {
  bool inside = false;
  for (std::size_t i = 0; i < fault.number; ++i) {
    const std::string& name = reference.operations[i].operation;
    inside = name == "BeginTrans" || (inside && name != "CommitTrans" && name != "RollbackTrans");
  }
  return inside;
}

/// The rule of the frame.
Outcome ruled(const FaultScenario& scenario, const Fault& fault, const Reference& reference) {
  Outcome outcome = undone(reference, join(FaultyConnection::kDescription, scenario.suffix));
  if (fault.is("CommitTrans") && fault.way == Way::LostAfter) {
    outcome.database = reference.outcome.database;
  }
  if (scenario.eachStatementCommits) {
    const std::size_t done = fault.number + (fault.way == Way::LostAfter ? 1 : 0);
    outcome.database =
        done < reference.states.size() ? reference.states[done] : reference.outcome.database;
  }
  const bool refusedAnyway = fault.operation.error.has_value() && fault.way == Way::LostAfter;
  if (fault.is("RollbackTrans") || refusedAnyway) {
    // The failure that led here is the one to be told.
    outcome.stato = reference.outcome.stato;
    outcome.errore = reference.outcome.errore;
    outcome.transactionOpen = fault.is("RollbackTrans") && !fault.lost();
  } else {
    outcome.transactionOpen = fault.way == Way::Foreign && insideTransaction(fault, reference);
  }
  return outcome;
}

std::string differences(const Lines& expected, const Lines& found) {
  const Difference change = difference(expected, found);
  std::ostringstream text;
  for (const std::string& line : change.gone) {
    text << "    missing:    " << line << "\n";
  }
  for (const std::string& line : change.come) {
    text << "    unexpected: " << line << "\n";
  }
  return text.str();
}

std::string shown(const Variant& value) { return value.isEmpty() ? "(Empty)" : value.text(); }

/// Whether a server has undone the transaction for a statement that it does not understand.
bool undoneByServer(const Outcome& expected, const Outcome& found) {
  return ServerExample::find() != nullptr && !expected.endWhenUndone.empty() &&
         found.errore.text().ends_with(expected.endWhenUndone);
}

void expectSame(const Outcome& expected, const Outcome& found, const std::string& where) {
  EXPECT_EQ(shown(found.stato), shown(expected.stato)) << where;
  if (ServerExample::find() != nullptr && !expected.fixedEnd.empty()) {
    const std::string text = shown(found.errore);
    EXPECT_TRUE(text.ends_with(expected.fixedEnd) && text.size() > expected.fixedEnd.size())
        << where << ": " << text;
  } else {
    EXPECT_EQ(shown(found.errore), shown(expected.errore)) << where;
  }
  EXPECT_EQ(found.transactionOpen, expected.transactionOpen) << where;
  EXPECT_TRUE(found.database == expected.database)
      << where << "\n"
      << differences(expected.database, found.database);
}

}  // namespace

std::string testName(const std::string& scenario) {
  std::string name;
  bool start = true;
  for (const char c : scenario) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) {
      start = true;
      continue;
    }
    name += start ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
    start = false;
  }
  return name;
}

void expectDocumentedOutcomes(const FaultScenario& scenario) {
  if (!scenario.onServer && ServerExample::find() != nullptr) {
    GTEST_SKIP() << "its operations are among those of other duplications, which run on the server";
  }
  Bench bench{scenario};
  Reference reference{.before = bench.before(), .outcome = {}, .operations = {}, .states = {}};
  Run whole = bench.withoutFault(reference.states);
  reference.outcome = std::move(whole.outcome);
  reference.operations = std::move(whole.operations);
  ASSERT_FALSE(reference.operations.empty());

  for (std::size_t number = 0; number < reference.operations.size(); ++number) {
    for (const Way way : kAllWays) {
      const Fault fault{number, way, reference.operations[number],
                        occurrenceOf(reference.operations, number)};
      const std::optional<Outcome> documented = scenario.documented(fault, reference);
      const Run run = bench.withFault(number, way);
      const std::string where =
          join(scenario.name, ", operation ", static_cast<std::int64_t>(number), ", ",
               fault.operation.operation, " ", fault.operation.sql, ": ", nameOf(way));
      EXPECT_TRUE(run.failed) << where;
      Outcome expected = documented ? *documented : ruled(scenario, fault, reference);
      if (undoneByServer(expected, run.outcome)) {
        expected = refused(reference, "", expected.endWhenUndone);
      }
      expectSame(expected, run.outcome, where);
    }
  }
  std::cout << scenario.name << ": " << reference.operations.size() << " operations, "
            << reference.operations.size() * std::size(kAllWays) << " faults\n";
}

Outcome asWithoutFault(const Reference& reference) { return reference.outcome; }

Outcome undone(const Reference& reference, std::string message) {
  return {.stato = std::int16_t{99},
          .errore = Variant{std::move(message)},
          .transactionOpen = false,
          .database = reference.before};
}

Outcome refused(const Reference& reference, std::string_view message, std::string_view suffix) {
  Outcome outcome = undone(reference, join(message, suffix));
  outcome.fixedEnd = suffix;
  return outcome;
}

Lines databaseWithout(const Reference& reference,
                      const std::function<bool(const std::string&)>& left) {
  const Difference change = difference(reference.before, reference.outcome.database);
  Lines lines = reference.outcome.database;
  std::erase_if(lines, [&](const std::string& line) {
    return left(line) && std::ranges::binary_search(change.come, line);
  });
  std::ranges::copy_if(change.gone, std::back_inserter(lines), left);
  std::ranges::sort(lines);
  return lines;
}

}  // namespace azcoll::test
