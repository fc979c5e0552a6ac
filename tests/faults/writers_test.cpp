// Several processes that save customers in different companies of one group at once.

#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "component/service.h"
#include "support/child_process.h"
#include "support/database_file.h"

namespace azcoll::test {
namespace {

constexpr int kCustomersEach = 15;
constexpr int kFirstCompany = 200;
constexpr int kCompanies = 8;

/// The example database with a further group of eight companies, the first one the main company.
std::string groupOfEight(const ScratchFolder& folder) {
  const std::string path = folder.file("group.db");
  makeExampleFile(path);
  const std::shared_ptr<Connection> connection = openFile(path);
  for (int i = 0; i < kCompanies; ++i) {
    const int company = kFirstCompany + i;
    runSql(
        *connection,
        join("INSERT INTO CG16_ANAGGEN (CG16_RAGSOANAG, CG16_CODICE) VALUES (N'Prova', ", 60000 + i,
             ") INSERT INTO CG18_ANADITTABASE (CG18_DITTA, CG18_CODICE_CG16) "
             "VALUES (",
             company, ", ", 60000 + i, ")"));
    if (i > 0) {
      runSql(*connection, join("INSERT INTO CG86_AZIENDECOLL (CG86_ANNOIVA, CG86_INDTIPO, "
                               "CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_INDTIPOCONT) VALUES "
                               "(2025, 0, ",
                               kFirstCompany, ", ", company, ", 0)"));
    }
  }
  return path;
}

/// Saves customers in one company, each under the next code of that company, and spreads them.
int saveNewCustomers(const std::string& path, int company) {
  const std::shared_ptr<Connection> connection = openFile(path, "Timeout=60");
  for (int number = 0; number < kCustomersEach; ++number) {
    const int entry = 100000 + 1000 * company + number;
    connection->beginTrans();
    const Lines next = rowsOf(*connection, join("SELECT ISNULL(MAX(CG44_CLIFOR), 0) + 1 AS N FROM "
                                                "CG44_CLIFOR WHERE CG44_DITTA_CG18 = ",
                                                company));
    runSql(*connection,
           join("INSERT INTO CG16_ANAGGEN (CG16_RAGSOANAG, CG16_CODICE) VALUES (N'Prova', ", entry,
                ") INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, "
                "CG44_CODICE_CG16, CG44_FLGATTIVO) VALUES (",
                company, ", 0, ", next.at(0), ", ", entry, ", 1)"));
    connection->commitTrans();

    CLSCO_AZIENDECOLL service;
    service.CPInput->Connessione = connection;
    service.CPInput->AnnoSolare = 2025;
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->Pvar_CliFor = next.at(0);
    service.DuplicaCliFor();
    if (service.Stato != Variant{std::int16_t{0}}) {
      std::cerr << service.Errore.text() << std::endl;
      return 1;
    }
  }
  return 0;
}

class Writers : public ::testing::TestWithParam<int> {};

TEST_P(Writers, NeverShareACodeBetweenCustomers) {
  const int writers = GetParam();
  const ScratchFolder folder;
  const std::string path = groupOfEight(folder);
  {
    std::vector<ChildProcess> processes;
    for (int i = 0; i < writers; ++i) {
      // The last company first, so that with few writers the main company is not among them.
      const int company = kFirstCompany + kCompanies - 1 - i;
      processes.emplace_back([&path, company] { return saveNewCustomers(path, company); });
    }
    for (ChildProcess& process : processes) {
      EXPECT_EQ(process.wait(), 0);
    }
  }
  EXPECT_EQ(integrityOf(path), "ok");

  const std::shared_ptr<Connection> connection = openFile(path, "Timeout=0");
  std::map<std::string, std::set<std::string>> customersOfCode;
  std::map<std::string, std::set<std::string>> codesOfCustomer;
  std::map<std::string, int> companiesOfCustomer;
  for (const std::string& line :
       rowsOf(*connection,
              "SELECT CG44_CLIFOR, CG44_CODICE_CG16 FROM CG44_CLIFOR WHERE "
              "CG44_CODICE_CG16 >= 100000")) {
    const std::string code = line.substr(0, line.find('|'));
    const std::string customer = line.substr(line.find('|') + 1);
    customersOfCode[code].insert(customer);
    codesOfCustomer[customer].insert(code);
    ++companiesOfCustomer[customer];
  }
  EXPECT_EQ(codesOfCustomer.size(), static_cast<std::size_t>(writers * kCustomersEach));
  for (const auto& [code, customers] : customersOfCode) {
    EXPECT_EQ(customers.size(), 1U) << "code " << code;
  }
  for (const auto& [customer, codes] : codesOfCustomer) {
    EXPECT_EQ(codes.size(), 1U) << "customer " << customer;
    EXPECT_EQ(companiesOfCustomer[customer], kCompanies) << "customer " << customer;
  }
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
