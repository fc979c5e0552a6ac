// The orders in which a group is handed out, and how many statements a company of it costs.

#include <algorithm>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "data/tracing.h"
#include "scenarios/company_database.h"

namespace azcoll::test {
namespace {

using Method = void (CLSCO_AZIENDECOLL::*)() noexcept;

/// What a member says of the order of its companies. Where its statement has none, the database may
/// hand them out as it likes, and the test compares them from the lowest up.
enum class Order { Stated, Any, OwnCompanyLast };

class GroupOrders : public CompanyDatabase {
 protected:
  /// Company 10 with 12 and 15, of one accounting type; each has branch 1 and intermediary 1.
  void linkTheGroup() {
    run("DELETE FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2025");
    for (const char* const linked : {"12", "15"}) {
      run(
          join("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT, "
               "CG86_DITTA_CG18, CG86_DITTACOLL_CG18) VALUES (0, 2025, 0, 10, ",
               linked, ")"));
      run(join("IF NOT EXISTS (SELECT 1 FROM CG31_ANADITTASEDI WHERE CG31_DITTA_CG18 = ", linked,
               " AND CG31_CODICE = 1) INSERT INTO CG31_ANADITTASEDI (CG31_DITTA_CG18, CG31_CODICE) "
               "VALUES (",
               linked, ", 1)"));
      run(join("IF NOT EXISTS (SELECT 1 FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = ", linked,
               " AND CG40_TIPOCF = 0 AND CG40_INTERMEDIO = 1) INSERT INTO CG40_ANADITTAINTER "
               "(CG40_DITTA_CG18, CG40_TIPOCF, CG40_INTERMEDIO) VALUES (",
               linked, ", 0, 1)"));
    }
    for (const char* const company : {"10", "12", "15"}) {
      run(join("IF NOT EXISTS (SELECT 1 FROM CG25_ANADITTAGEST WHERE CG25_DITTA_CG18 = ", company,
               ") INSERT INTO CG25_ANADITTAGEST (CG25_DITTA_CG18) VALUES (", company, ")"));
    }
  }

  /// What a method hands out to a company, as "12, 15, 10", whether as recordset or as list.
  std::string handedOut(int company, Method method, Order order) {
    service.CPOutput->Grst_DitteCollegate = nullptr;
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->CodiceSede = 1;
    service.CPInput->CodiceIntermedio = 1;
    (service.*method)();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}}) << service.Errore.text();
    std::vector<int> companies = companiesHandedOut();
    if (order != Order::Stated && !companies.empty()) {
      const int fixed = order == Order::OwnCompanyLast ? 1 : 0;
      std::ranges::sort(companies.begin(), companies.end() - fixed);
    }
    std::string text;
    for (const int each : companies) {
      text += join(text.empty() ? "" : ", ", each);
    }
    return text;
  }

 private:
  std::vector<int> companiesHandedOut() {
    std::vector<int> companies;
    if (const auto& rows = service.CPOutput->Grst_DitteCollegate) {
      for (; !rows->atEnd(); rows->moveNext()) {
        companies.push_back(std::stoi(rows->fields().item("DITTA").value().text()));
      }
      return companies;
    }
    std::istringstream list{service.CPOutput->DitteCollegate.text()};
    for (std::string each; std::getline(list, each, ',');) {
      companies.push_back(std::stoi(each));
    }
    return companies;
  }
};

TEST_F(GroupOrders, AreThoseThatTheProceduresOfTheSuiteWalk) {
  linkTheGroup();
  struct Row {
    const char* name;
    Method method;
    Order order;
    const char* fromMain;
    const char* fromLinked;
  };
  using Group = CLSCO_AZIENDECOLL;
  const Row table[]{
      {"DitteCollegate", &Group::DitteCollegate, Order::OwnCompanyLast, "12, 15, 10", ""},
      {"DitteCollegatePiuPrincipale", &Group::DitteCollegatePiuPrincipale, Order::OwnCompanyLast,
       "12, 15, 10", "10, 15, 12"},
      {"RecordsetDitteCollegate", &Group::RecordsetDitteCollegate, Order::Any, "12, 15", ""},
      {"RecordsetDitteCollegateOPrincipale", &Group::RecordsetDitteCollegateOPrincipale, Order::Any,
       "12, 15", "10, 15"},
      {"RecordsetDitteCollegateOPrincipalePerSedi",
       &Group::RecordsetDitteCollegateOPrincipalePerSedi, Order::Any, "12, 15", "10, 15"},
      {"RecordsetDitteCollegateOPrincipalePerIntermedi",
       &Group::RecordsetDitteCollegateOPrincipalePerIntermedi, Order::Any, "12, 15", "10, 15"},
      {"RecordsetDitteCollegatePiuPrincipale", &Group::RecordsetDitteCollegatePiuPrincipale,
       Order::Stated, "10, 12, 15", ""},
      {"RecordsetDitteCollegatePiuPrincipaleNoPrinc",
       &Group::RecordsetDitteCollegatePiuPrincipaleNoPrinc, Order::Any, "10, 12, 15", "10, 12, 15"},
      {"RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva",
       &Group::RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva, Order::Stated, "10, 12, 15", ""},
      {"RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio",
       &Group::RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio, Order::Stated, "12, 15, 10",
       ""},
  };
  for (const Row& row : table) {
    const std::string fromMain = handedOut(10, row.method, row.order);
    const std::string fromLinked = handedOut(12, row.method, row.order);
    std::cout << row.name << ": from 10: " << fromMain << " | from 12: " << fromLinked << "\n";
    EXPECT_EQ(fromMain, row.fromMain) << row.name;
    EXPECT_EQ(fromLinked, row.fromLinked) << row.name;
  }
}

/// Statements of one call in a group of so many linked companies.
class GroupCosts : public CompanyDatabase {
 protected:
  void SetUp() override {
    if (!embedded()) {
      GTEST_SKIP() << "a thousand companies are made for the embedded engine, where they cost "
                      "little; the statements counted are the same everywhere";
    }
  }

  std::size_t statements(int linked, Method method) {
    connection = openExample();
    connection->beginTrans();
    for (int company = 1000; company <= 1000 + linked; ++company) {
      run(join("INSERT INTO CG18_ANADITTABASE (CG18_DITTA, CG18_CODICE_CG16) VALUES (", company,
               ", 1010) INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF, "
               "CG40_INTERMEDIO) VALUES (",
               company, ", 0, 1)"));
      if (company > 1000) {
        run(
            join("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT, "
                 "CG86_DITTA_CG18, CG86_DITTACOLL_CG18) VALUES (0, 2025, 0, 1000, ",
                 company, ")"));
      }
      if (company == 1000 || method != &CLSCO_AZIENDECOLL::DuplicaCliFor) {
        run(
            join("INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, "
                 "CG44_CODICE_CG16, CG44_TIPOCF_CG40, CG44_INTERMEDIO_CG40, CG44_FLGATTIVO) VALUES "
                 "(",
                 company, ", 0, 9000, 3005, 0, 1, 1)"));
      }
    }
    connection->commitTrans();
    std::size_t count = 0;
    service.CPInput->Connessione = std::make_shared<ConnessioneTracciata>(
        connection,
        [&](const TraceEntry& entry) { count += entry.operation == "Execute" ? 1U : 0U; });
    service.CPInput->Pvar_Ditta = 1000;
    service.CPInput->Pvar_CliFor = 9000;
    (service.*method)();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}}) << service.Errore.text();
    service.CPInput->Connessione = nullptr;
    return count;
  }

  void expectConstantCost(Method method, std::size_t perCompany) {
    const std::size_t one = statements(1, method);
    for (const int linked : {10, 100, 1000}) {
      EXPECT_EQ(statements(linked, method), one + static_cast<std::size_t>(linked - 1) * perCompany)
          << linked;
    }
  }
};

TEST_F(GroupCosts, ACopyCostsFourStatementsACompany) {
  // Intermediary, copy, and two for the number.
  expectConstantCost(&CLSCO_AZIENDECOLL::DuplicaCliFor, 4);
}

TEST_F(GroupCosts, AChangeCostsThreeStatementsACompany) {
  expectConstantCost(&CLSCO_AZIENDECOLL::ModificaCliFor, 3);
}

TEST_F(GroupCosts, ADeletionCostsFifteenStatementsACompany) {
  expectConstantCost(&CLSCO_AZIENDECOLL::EliminaCliFor, 15);
}

}  // namespace
}  // namespace azcoll::test
