// Several processes that save customers in different companies of one group at once.

#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "faults/saved_customers.h"
#include "service/service.h"
#include "support/child_process.h"
#include "support/database_file.h"

namespace azcoll::test {
namespace {

constexpr int kCustomersEach = 15;
constexpr int kFailedOtherwise = 200;

class Writers : public ::testing::TestWithParam<int> {};

TEST_P(Writers, NeverShareACodeBetweenCustomers) {
  const int writers = GetParam();
  const ScratchFolder folder;
  const std::string path = folder.file("group.db");
  makeExampleFile(path);
  runSql(*openFile(path), groupOfEight());
  {
    std::vector<ChildProcess> processes;
    for (int i = 0; i < writers; ++i) {
      // The last company first, so that with few writers the main company is not among them.
      const int company = kFirstCompany + kCompanies - 1 - i;
      processes.emplace_back([&path, company] {
        const Saved saved =
            saveNewCustomers([&] { return openFile(path, "Timeout=60"); }, company, kCustomersEach);
        std::cerr << saved.otherwise;
        return saved.otherwise.empty() ? saved.refused : kFailedOtherwise;
      });
    }
    for (ChildProcess& process : processes) {
      EXPECT_EQ(process.wait(), 0);
    }
  }
  EXPECT_EQ(integrityOf(path), "ok");

  const std::shared_ptr<Connection> connection = openFile(path, "Timeout=0");
  const std::map<std::string, FoundCustomer> customers = savedCustomers(*connection);
  EXPECT_EQ(customers.size(), static_cast<std::size_t>(writers * kCustomersEach));
  EXPECT_EQ(expectWholeOrAlone(customers), writers * kCustomersEach);
  // No lock is left: a writer that does not wait gets through.
  connection->beginTrans();
  connection->rollbackTrans();
}

INSTANTIATE_TEST_SUITE_P(Processes, Writers, ::testing::Values(2, 4, 8));

TEST(BusyDatabase, IsReportedByNameAfterTheWaitThatWasAskedFor) {
  const ScratchFolder folder;
  const std::string path = folder.file("busy.db");
  makeExampleFile(path);
  const std::shared_ptr<Connection> other = openFile(path);
  other->beginTrans();

  CLSCO_AZIENDECOLL service;
  service.CPInput->StringaConnessione = join("Provider=embedded;Timeout=1;Data Source=", path);
  service.CPInput->AnnoSolare = 2025;
  service.CPInput->Pvar_Ditta = 5;
  service.CPInput->Pvar_CliFor = 120;
  service.DuplicaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(service.Errore.text(),
            join("Lock request time out period exceeded. Il database \"", path,
                 "\" è occupato da un altro processo. in DuplicaClifor"));

  other->rollbackTrans();
  service.DuplicaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
}

}  // namespace
}  // namespace azcoll::test
