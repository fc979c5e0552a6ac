#include "faults/saved_customers.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <optional>

#include "data/error.h"
#include "data/text.h"
#include "data/tracing.h"
#include "service/service.h"

namespace azcoll::test {
namespace {

constexpr int kFirstEntry = 100000;
constexpr int kEntriesEach = 1000;
constexpr int kDuplicateKey = 2627;
constexpr int kDeadlock = 1205;

void execute(Connection& connection, const std::string& sql) {
  std::int64_t affected = 0;
  connection.execute(sql, affected, CommandOption::Text);
}

/// Saves a customer in one company, as a front end does. Its code; empty when the database refuses,
/// and then nothing is saved.
std::string save(Connection& connection, int company, int entry) {
  connection.beginTrans();
  try {
    const Lines next = rowsOf(connection, join("SELECT ISNULL(MAX(CG44_CLIFOR), 0) + 1 AS N FROM "
                                               "CG44_CLIFOR WHERE CG44_DITTA_CG18 = ",
                                               company));
    execute(connection,
            join("INSERT INTO CG16_ANAGGEN (CG16_RAGSOANAG, CG16_CODICE) VALUES (N'Prova', ", entry,
                 ") INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, "
                 "CG44_CODICE_CG16, CG44_FLGATTIVO) VALUES (",
                 company, ", 0, ", next.at(0), ", ", entry, ", 1)"));
    connection.commitTrans();
    return next.at(0);
  } catch (const Error&) {
    connection.rollbackTrans();
    return {};
  }
}

}  // namespace

std::string groupOfEight() {
  std::string sql;
  for (int i = 0; i < kCompanies; ++i) {
    const int company = kFirstCompany + i;
    sql +=
        join("INSERT INTO CG16_ANAGGEN (CG16_RAGSOANAG, CG16_CODICE) VALUES (N'Prova', ", 60000 + i,
             ") INSERT INTO CG18_ANADITTABASE (CG18_DITTA, CG18_CODICE_CG16) VALUES (", company,
             ", ", 60000 + i, ") ");
    if (i > 0) {
      sql += join(
          "INSERT INTO CG86_AZIENDECOLL (CG86_ANNOIVA, CG86_INDTIPO, CG86_DITTA_CG18, "
          "CG86_DITTACOLL_CG18, CG86_INDTIPOCONT) VALUES (2025, 0, ",
          kFirstCompany, ", ", company, ", 0) ");
    }
  }
  return sql;
}

Saved saveNewCustomers(const std::function<std::shared_ptr<Connection>()>& open, int company,
                       int count) {
  Saved saved;
  const std::shared_ptr<Connection> front = open();
  std::optional<ErrorInfo> failure;
  const auto traced = std::make_shared<ConnessioneTracciata>(open(), [&](const TraceEntry& entry) {
    if (entry.error && !failure) {
      failure = entry.error;
    }
  });
  for (int number = 0; number < count; ++number) {
    std::string code;
    while (code.empty()) {
      code = save(*front, company, kFirstEntry + kEntriesEach * company + number);
    }
    failure.reset();
    CLSCO_AZIENDECOLL service;
    service.CPInput->Connessione = traced;
    service.CPInput->AnnoSolare = 2025;
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->Pvar_CliFor = code;
    service.DuplicaCliFor();
    if (service.Stato == Variant{std::int16_t{0}}) {
      continue;
    }
    if (service.Errore.text().starts_with("Errore in Pcls_NumDoc.ElaboraNumerazione")) {
      ++saved.unnumbered;  // committed all the same
      continue;
    }
    if (failure && (failure->nativeNumber == kDuplicateKey || failure->nativeNumber == kDeadlock)) {
      ++saved.refused;
    } else {
      saved.otherwise = service.Errore.text();
    }
  }
  return saved;
}

std::map<std::string, FoundCustomer> savedCustomers(Connection& connection) {
  std::map<std::string, FoundCustomer> customers;
  for (const std::string& line :
       rowsOf(connection,
              join("SELECT CG44_CODICE_CG16, CG44_DITTA_CG18, CG44_CLIFOR FROM CG44_CLIFOR WHERE "
                   "CG44_CODICE_CG16 >= ",
                   kFirstEntry))) {
    const std::size_t first = line.find('|');
    const std::size_t second = line.find('|', first + 1);
    FoundCustomer& customer = customers[line.substr(0, first)];
    customer.companies.insert(line.substr(first + 1, second - first - 1));
    customer.codes.insert(line.substr(second + 1));
  }
  return customers;
}

int expectWholeOrAlone(const std::map<std::string, FoundCustomer>& customers) {
  int whole = 0;
  std::set<std::string> codesOfTheGroup;
  for (const auto& [entry, customer] : customers) {
    EXPECT_EQ(customer.codes.size(), 1U) << "customer " << entry;
    if (customer.companies.size() == 1) {
      const int own = (std::stoi(entry) - kFirstEntry) / kEntriesEach;
      EXPECT_EQ(*customer.companies.begin(), std::to_string(own)) << "customer " << entry;
      continue;
    }
    ++whole;
    EXPECT_EQ(customer.companies.size(), static_cast<std::size_t>(kCompanies))
        << "customer " << entry;
    EXPECT_TRUE(codesOfTheGroup.insert(*customer.codes.begin()).second)
        << "code " << *customer.codes.begin() << " twice, customer " << entry;
  }
  return whole;
}

}  // namespace azcoll::test
