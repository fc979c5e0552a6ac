// A client of a server that is killed in the middle of a call: what was committed is there, what
// was not is gone, and no lock is left.

#include <csignal>
#include <cstdint>
#include <gtest/gtest.h>
#include <iostream>
#include <string>
#include <vector>

#include "faults/killed_call.h"
#include "support/server_example.h"

namespace azcoll::test {
namespace {

/// A customer of company 5 whose code is free in the group, and one that the whole group has.
std::string customersToKillFor() {
  return join(
      "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16, "
      "CG44_FLGATTIVO) VALUES (5, 0, 700, 3005, 1) INSERT INTO MG19_CLIFORVA (MG19_DITTA_CG18, "
      "MG19_TIPOCF_CG44, MG19_CLIFOR_CG44) VALUES (5, 0, 700) ",
      customerOfTheWholeGroup());
}

class ServerKill : public ::testing::TestWithParam<Job> {
 protected:
  void SetUp() override {
    example_ = ServerExample::find();
    if (example_ == nullptr) {
      GTEST_SKIP() << "no server: AZCOLL_TEST_CONNESSIONE is not set";
    }
    example_->restore(customersToKillFor());
  }
  void TearDown() override {
    if (example_ != nullptr) {
      example_->restore();
    }
  }

  /// Kills the client at one place and looks at what it has left.
  void expectAfterKill(std::size_t step, bool done, const Lines& expected,
                       const std::string& operation) {
    const std::string where = join(done ? "after" : "before", " operation ",
                                   static_cast<std::int64_t>(step), ", ", operation);
    EXPECT_EQ(killedAt([&] { return example_->connect(); }, GetParam(), step, done), -SIGKILL)
        << where;
    example_->writeEveryRow();
    const Lines found = example_->picture();
    EXPECT_TRUE(found == expected) << where;
    if (found != before_) {
      example_->restore(customersToKillFor());
    }
  }

  ServerExample* example_ = nullptr;
  Lines before_;
};

// To the server the end of one operation is the same as the beginning of the next one, so the
// client is killed before the first one and after each.
TEST_P(ServerKill, LeavesAllOrNothingAndNoLock) {
  before_ = example_->picture();
  const std::vector<std::string> operations = operationsOf(example_->connect(), GetParam());
  ASSERT_FALSE(operations.empty());
  const Lines after = example_->picture();
  ASSERT_NE(before_, after);
  example_->restore(customersToKillFor());
  ASSERT_EQ(example_->picture(), before_);

  expectAfterKill(0, false, before_, operations.front());
  bool committed = false;
  for (std::size_t step = 0; step < operations.size() && !HasFatalFailure(); ++step) {
    committed = committed || operations[step] == "CommitTrans";
    expectAfterKill(step, true, committed ? after : before_, operations[step]);
  }
  EXPECT_TRUE(committed);
  std::cout << operations.size() + 1 << " clients killed in " << GetParam().name << "\n";
}

INSTANTIATE_TEST_SUITE_P(Jobs, ServerKill,
                         ::testing::Values(Job{"Duplicate", &CLSCO_AZIENDECOLL::DuplicaCliFor, 700},
                                           Job{"Modify", &CLSCO_AZIENDECOLL::ModificaCliFor, 777},
                                           Job{"Delete", &CLSCO_AZIENDECOLL::EliminaCliFor, 777}),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace azcoll::test
