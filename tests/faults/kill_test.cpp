// A process that is killed in the middle of the duplication: what was committed is there, what was
// not is gone, and the file is whole.

#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>
#include <string>
#include <thread>

#include "faults/killed_call.h"
#include "service/service.h"
#include "support/child_process.h"
#include "support/database_file.h"

namespace azcoll::test {
namespace {

constexpr int kKillsAtRandom = 300;

class Kill : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder = std::make_unique<ScratchFolder>();
    const std::string path = folder->file("example.db");
    makeExampleFile(path);
    runSql(*openFile(path), customerOfTheWholeGroup());
  }
  static void TearDownTestSuite() { folder.reset(); }

  /// A fresh copy of the example database.
  static std::string copy() {
    std::string path = folder->file("copy.db");
    for (const char* const part : {"", "-wal", "-shm"}) {
      std::filesystem::remove(path + part);
    }
    std::filesystem::copy_file(folder->file("example.db"), path);
    return path;
  }

  static Lines picture(const std::string& path) { return pictureOf(*openFile(path), testTables()); }

  static std::unique_ptr<ScratchFolder> folder;
};
std::unique_ptr<ScratchFolder> Kill::folder;

Variant duplicate(const std::shared_ptr<Connection>& connection, int company, int code) {
  return callOn(connection, &CLSCO_AZIENDECOLL::DuplicaCliFor, company, code);
}

class KillAtEveryStep : public Kill, public ::testing::WithParamInterface<Job> {};

TEST_P(KillAtEveryStep, LeavesAllOrNothing) {
  const Lines before = picture(folder->file("example.db"));
  const std::string whole = copy();
  const std::vector<std::string> operations = operationsOf(openFile(whole), GetParam());
  ASSERT_FALSE(operations.empty());
  const Lines after = picture(whole);
  ASSERT_NE(before, after);

  bool committed = false;
  for (std::size_t step = 0; step < operations.size(); ++step) {
    for (const bool done : {false, true}) {
      const std::string path = copy();
      ASSERT_EQ(killedAt([&] { return openFile(path); }, GetParam(), step, done), -SIGKILL) << step;
      committed = committed || (done && operations[step] == "CommitTrans");
      const std::string where = join(done ? "after" : "before", " operation ",
                                     static_cast<std::int64_t>(step), ", ", operations[step]);
      EXPECT_EQ(integrityOf(path), "ok") << where;
      EXPECT_TRUE(picture(path) == (committed ? after : before)) << where;
    }
  }
  EXPECT_TRUE(committed);
}

INSTANTIATE_TEST_SUITE_P(Jobs, KillAtEveryStep,
                         ::testing::Values(Job{"Duplicate", &CLSCO_AZIENDECOLL::DuplicaCliFor, 120},
                                           Job{"Modify", &CLSCO_AZIENDECOLL::ModificaCliFor, 777},
                                           Job{"Delete", &CLSCO_AZIENDECOLL::EliminaCliFor, 777}),
                         [](const auto& tested) { return tested.param.name; });

/// Saves one customer after another in company 5, as a front end does, and spreads each over the
/// group. Every third code is taken in company 15.
int saveCustomers(const std::string& path, int count) {
  const std::shared_ptr<Connection> connection = openFile(path);
  for (int number = 0; number < count; ++number) {
    const int code = 1000 + 10 * number;
    connection->beginTrans();
    runSql(*connection,
           join("INSERT INTO CG16_ANAGGEN (CG16_RAGSOANAG, CG16_CODICE) VALUES (N'Prova', ",
                50000 + number,
                ") INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, "
                "CG44_CODICE_CG16, CG44_TIPOCF_CG40, CG44_INTERMEDIO_CG40, "
                "CG44_FLGATTIVO) VALUES (5, 0, ",
                code, ", ", 50000 + number,
                ", 0, 7, 1) INSERT INTO MG19_CLIFORVA (MG19_DITTA_CG18, "
                "MG19_TIPOCF_CG44, MG19_CLIFOR_CG44) VALUES (5, 0, ",
                code, ")"));
    if (number % 3 == 0) {
      runSql(*connection, join("INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, "
                               "CG44_CLIFOR, CG44_CODICE_CG16, CG44_FLGATTIVO) VALUES (15, 0, ",
                               code, ", 3012, 1)"));
    }
    connection->commitTrans();
    if (duplicate(connection, 5, code) != Variant{std::int16_t{0}}) {
      return 1;
    }
  }
  return 0;
}

/// Every saved customer is in company 5 alone, with its sales data, or under one code in the whole
/// group. Returns how many are in the whole group.
int expectAllOrNothing(const std::string& path, int round) {
  const std::shared_ptr<Connection> connection = openFile(path);
  std::map<std::string, std::map<std::string, std::string>> codes;
  for (const std::string& line :
       rowsOf(*connection,
              "SELECT CG44_CODICE_CG16, CG44_DITTA_CG18, CG44_CLIFOR FROM "
              "CG44_CLIFOR WHERE CG44_CODICE_CG16 >= 50000")) {
    const std::size_t first = line.find('|');
    const std::size_t second = line.find('|', first + 1);
    codes[line.substr(0, first)][line.substr(first + 1, second - first - 1)] =
        line.substr(second + 1);
  }
  int whole = 0;
  int alone = 0;
  for (const auto& [entry, companies] : codes) {
    std::set<std::string> found;
    std::set<std::string> different;
    for (const auto& [company, code] : companies) {
      found.insert(company);
      different.insert(code);
    }
    EXPECT_EQ(different.size(), 1U) << "round " << round << ", customer " << entry;
    if (found.size() == 1) {
      ++alone;
      EXPECT_EQ(*found.begin(), "5") << "round " << round << ", customer " << entry;
    } else {
      ++whole;
      EXPECT_EQ(found, kGroup) << "round " << round << ", customer " << entry;
    }
    EXPECT_EQ(rowsOf(*connection,
                     join("SELECT COUNT(*) AS N FROM MG19_CLIFORVA WHERE MG19_DITTA_CG18 = 5 AND "
                          "MG19_CLIFOR_CG44 = ",
                          companies.at("5"))),
              Lines{"1"})
        << "round " << round << ", customer " << entry;
  }
  EXPECT_LE(alone, 1) << "round " << round;
  return whole;
}

TEST_F(Kill, AtAnyMomentLeavesEveryCustomerWholeOrUntouched) {
  const unsigned seed = std::random_device{}();
  RecordProperty("seed", static_cast<int>(seed % 1000000));
  std::mt19937 random(seed);
  // The processes live as long as it takes to save a few customers, on however slow a machine.
  const std::string measured = copy();
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(saveCustomers(measured, 6), 0);
  const auto lifetime = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - start);
  std::uniform_int_distribution<std::int64_t> moment(0, lifetime.count());
  int whole = 0;
  int killed = 0;
  for (int round = 0; round < kKillsAtRandom && !HasFailure(); ++round) {
    const std::string path = copy();
    ChildProcess process{[&] { return saveCustomers(path, std::numeric_limits<int>::max()); }};
    std::this_thread::sleep_for(std::chrono::microseconds{moment(random)});
    process.kill();
    ASSERT_EQ(process.wait(), -SIGKILL) << "round " << round << ", seed " << seed;
    ++killed;
    ASSERT_EQ(integrityOf(path), "ok") << "round " << round << ", seed " << seed;
    whole += expectAllOrNothing(path, round);
  }
  EXPECT_EQ(killed, kKillsAtRandom);
  EXPECT_GT(whole, 0) << "no process came far enough to tell anything";
  std::cout << killed << " processes killed, " << whole << " customers spread before\n";
}

}  // namespace
}  // namespace azcoll::test
