// Several processes that save customers in different companies of one group on a server at once.

#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "faults/saved_customers.h"
#include "support/child_process.h"
#include "support/server_example.h"

namespace azcoll::test {
namespace {

constexpr int kPatienceSeconds = 120;
constexpr int kOtherFailure = 200;  ///< result of a writer that met what no other writer explains

class ServerWriters : public ::testing::Test {
 protected:
  void SetUp() override {
    example_ = ServerExample::find();
    if (example_ == nullptr) {
      GTEST_SKIP() << "no server: AZCOLL_TEST_CONNESSIONE is not set";
    }
    example_->restore(groupOfEight());
  }
  void TearDown() override {
    if (example_ != nullptr) {
      example_->restore();
    }
  }

  /// Lets `writers` processes save `customers` each; `more` is added to their connection strings.
  /// Returns how many calls were refused.
  int write(int writers, int customers, const std::string& more) {
    std::vector<ChildProcess> processes;
    for (int i = 0; i < writers; ++i) {
      // The last company first, so that with few writers the main company is not among them.
      const int company = kFirstCompany + kCompanies - 1 - i;
      processes.emplace_back([this, company, customers, more] {
        const auto open = [&] {
          std::shared_ptr<Connection> connection = example_->connect(more);
          connection->setCommandTimeout(kPatienceSeconds);
          return connection;
        };
        const Saved saved = saveNewCustomers(open, company, customers);
        std::cerr << saved.otherwise;
        if (saved.unnumbered > 0) {
          std::cerr << saved.unnumbered << " spread without their number, company " << company
                    << "\n";
        }
        return saved.otherwise.empty() ? saved.refused : kOtherFailure;
      });
    }
    int refused = 0;
    for (ChildProcess& process : processes) {
      const int result = process.wait();
      EXPECT_GE(result, 0) << "a writer was ended by a signal";
      EXPECT_LE(result, customers) << "a call failed for another reason";
      refused += result;
    }
    return refused;
  }

  /// Every customer is in the whole group or was refused without a trace, and no lock is left.
  void expectAllToldTruly(int calls, int refused) {
    example_->writeEveryRow();
    const std::map<std::string, FoundCustomer> customers = savedCustomers(*example_->connect());
    EXPECT_EQ(customers.size(), static_cast<std::size_t>(calls));
    EXPECT_EQ(expectWholeOrAlone(customers), calls - refused);
  }

  ServerExample* example_ = nullptr;
};

class ServerWritersAtOnce : public ServerWriters, public ::testing::WithParamInterface<int> {};

TEST_P(ServerWritersAtOnce, NeverShareACodeAndRefusedCallsLeaveNoTrace) {
  constexpr int kCustomersEach = 15;
  const int calls = GetParam() * kCustomersEach;
  const int refused = write(GetParam(), kCustomersEach, "");
  expectAllToldTruly(calls, refused);
  EXPECT_LT(refused, calls);
  std::cout << GetParam() << " writers, " << calls << " calls, " << refused << " refused\n";
}

INSTANTIATE_TEST_SUITE_P(Processes, ServerWritersAtOnce, ::testing::Values(2, 4, 8));

TEST_F(ServerWriters, TakeTurnsWithTheLockOfTheGroup) {
  constexpr int kWriters = 4;
  constexpr int kCalls = 40;
  const int refused = write(kWriters, kCalls, "Blocco=Gruppo;");
  EXPECT_EQ(refused, 0);
  expectAllToldTruly(kWriters * kCalls, refused);
  std::cout << kWriters << " writers with Blocco=Gruppo, " << kWriters * kCalls << " calls, "
            << refused << " refused\n";
}

}  // namespace
}  // namespace azcoll::test
