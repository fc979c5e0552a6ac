// The orders in which a group is handed out, and how many statements a company of it costs.

#include <iostream>

#include "data/tracing.h"
#include "scenarios/company_database.h"

namespace azcoll::test {
namespace {

using Method = void (CLSCO_AZIENDECOLL::*)() noexcept;

class GroupOrders : public CompanyDatabase {
 protected:
  /// What a method hands out to a company, as "12, 15, 10", whether as recordset or as list.
  std::string order(int company, Method method) {
    service.CPOutput->Grst_DitteCollegate = nullptr;
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->CodiceSede = 1;
    service.CPInput->CodiceIntermedio = 1;
    (service.*method)();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}}) << service.Errore.text();
    const auto& rows = service.CPOutput->Grst_DitteCollegate;
    if (!rows) {
      return service.CPOutput->DitteCollegate.text();
    }
    std::string text;
    for (; !rows->atEnd(); rows->moveNext()) {
      text += join(text.empty() ? "" : ", ", rows->fields().item("DITTA").value());
    }
    return text;
  }
};

TEST_F(GroupOrders, AreThoseThatTheProceduresOfTheSuiteWalk) {
  // Company 10 with 12 and 15, of one accounting type.
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
  struct Row {
    const char* name;
    Method method;
    const char* fromMain;
    const char* fromLinked;
  };
  using Service = CLSCO_AZIENDECOLL;
  const Row table[]{
      {"DitteCollegate", &Service::DitteCollegate, "12, 15, 10", ""},
      {"DitteCollegatePiuPrincipale", &Service::DitteCollegatePiuPrincipale, "12, 15, 10",
       "10, 15, 12"},
      {"RecordsetDitteCollegate", &Service::RecordsetDitteCollegate, "12, 15", ""},
      {"RecordsetDitteCollegateOPrincipale", &Service::RecordsetDitteCollegateOPrincipale, "12, 15",
       "10, 15"},
      {"RecordsetDitteCollegateOPrincipalePerSedi",
       &Service::RecordsetDitteCollegateOPrincipalePerSedi, "12, 15", "10, 15"},
      {"RecordsetDitteCollegateOPrincipalePerIntermedi",
       &Service::RecordsetDitteCollegateOPrincipalePerIntermedi, "12, 15", "10, 15"},
      {"RecordsetDitteCollegatePiuPrincipale", &Service::RecordsetDitteCollegatePiuPrincipale,
       "10, 12, 15", ""},
      {"RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio",
       &Service::RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio, "12, 15, 10", ""},
  };
  for (const Row& row : table) {
    const std::string fromMain = order(10, row.method);
    const std::string fromLinked = order(12, row.method);
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
