#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "data/tables.h"
#include "service/service.h"
#include "support/picture.h"
#include "support/test_database.h"

namespace azcoll::test {

/// The example database with a service on it, and the means to look at it row by row.
class CompanyDatabase : public ::testing::Test {
 protected:
  std::shared_ptr<Connection> connection = openExample();
  CLSCO_AZIENDECOLL service;

  CompanyDatabase() {
    service.CPInput->Connessione = connection;
    service.CPInput->AnnoSolare = 2025;
  }

  /// Every row of a query, its values parted by `|`; Null shows as NULL.
  Lines rows(const std::string& sql) { return rowsOf(*connection, sql); }

  void run(const std::string& sql) {
    std::int64_t affected = 0;
    connection->execute(sql, affected, CommandOption::Text);
  }

  /// Every row of every table that a customer/supplier can touch, in order.
  Lines picture() {
    std::vector<std::string_view> names(tables::kSubTables.begin(), tables::kSubTables.end());
    names.insert(names.end(),
                 {"CG44_CLIFOR", "CG4E_CFCOINTESTATI", "CG40_ANADITTAINTER", "CG31_ANADITTASEDI",
                  "CG70_NUMERDOC", "MG17_AGENTI", "CG86_AZIENDECOLL"});
    return pictureOf(*connection, names);
  }

  /// Whether this object's connection holds an open transaction; it is rolled back if so.
  bool endOpenTransaction() { return test::endOpenTransaction(*connection); }

  void duplicate(int company, EnumTipoCF kind, const Variant& code) {
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->Pint_TipoCF = kind;
    service.CPInput->Pvar_CliFor = code;
    service.DuplicaCliFor();
  }

  /// The wording of database errors is pinned on the embedded engine; servers have their own.
  static bool embedded() { return serverConnectionString().empty(); }
};

}  // namespace azcoll::test
