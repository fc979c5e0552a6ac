// How the embedded engine goes about the statements on activities: by index, so that a company of
// many years and activities does not wait for those that it does not ask for.

#include <algorithm>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "service/service.h"
#include "support/sqlite_texts.h"
#include "support/test_database.h"

namespace azcoll::test {
namespace {

/// The example database on the embedded engine, whatever AZCOLL_TEST_CONNESSIONE names: another
/// provider has plans of its own.
class ActivityPlan : public ::testing::Test {
 protected:
  SqliteTexts texts;
  std::shared_ptr<Connection> connection = embedded::newConnection();
  CLSCO_AZIENDECOLL service;

  ActivityPlan() {
    connection->setConnectionString("Provider=embedded;Data Source=:memory:");
    connection->setCursorLocation(CursorLocation::Client);
    connection->open("", "", CommandOption::Unspecified);
    fillExample(*connection);
    service.CPInput->Connessione = connection;
    service.CPInput->Pvar_Ditta = 10;
    service.CPInput->AnnoSolare = 2024;
    SqliteTexts::ran().clear();
  }

  CLSCO_INPUTAZCOLL& in() { return *service.CPInput; }

  SqliteTexts::Ran activityQuery() {
    service.StringaSQLAttivitaCollegate();
    return sqliteStatementOf(*connection, service.CPOutput->GstrSQL_AttivitaCollegate);
  }

  /// Steps of the plan that read the whole table of activities.
  static std::vector<std::string> scansOfActivities(const SqliteTexts::Ran& statement) {
    std::set<std::string> aliases{"CG86_AZIENDECOLL"};
    const std::regex source{R"re("CG86_AZIENDECOLL" AS (\w+))re"};
    for (std::sregex_iterator found{statement.text.begin(), statement.text.end(), source}, end;
         found != end; ++found) {
      aliases.insert((*found)[1]);
    }
    std::vector<std::string> scans;
    for (const std::string& step : queryPlan(statement)) {
      for (const std::string& alias : aliases) {
        if (step == "SCAN " + alias || step.starts_with("SCAN " + alias + " ")) {
          scans.push_back(step);
        }
      }
    }
    return scans;
  }
};

TEST_F(ActivityPlan, TheActivityQuerySearchesInAllItsForms) {
  for (const bool decoded : {false, true}) {
    for (const bool alone : {false, true}) {
      for (const char* const columns : {"", "*"}) {
        in().Pbol_AggiungiCampiDecodificheAttività = decoded;
        in().MultiAziendaEscludiCollegate = alone;
        in().StrSelectSQLAttività = columns;
        const SqliteTexts::Ran statement = activityQuery();
        ASSERT_NE(statement.text.find("CG86_AZIENDECOLL"), std::string::npos);
        EXPECT_EQ(scansOfActivities(statement), std::vector<std::string>{}) << statement.text;
      }
    }
  }
}

TEST_F(ActivityPlan, TheMainActivityIsTheFirstEntryOfItsIndex) {
  // Sought once for every row that is shown: gathering and sorting the year's rows each time would
  // take a time that grows with the square of their number.
  const std::vector<std::string> plan = queryPlan(activityQuery());
  EXPECT_TRUE(std::ranges::any_of(plan, [](const std::string& step) {
    return step.find(
               "USING COVERING INDEX CG86_AZIENDECOLL.IX_CG86_PRINCIPALE (CG86_INDTIPO=?"
               " AND CG86_ANNOIVA=? AND CG86_DITTACOLL_CG18=?)") != std::string::npos;
  }));
  EXPECT_EQ(std::ranges::count(plan, "USE TEMP B-TREE FOR ORDER BY"), 0);
}

TEST_F(ActivityPlan, TheGroupIsLookedForByItsCompanies) {
  // Not in all rows of the year, of which every company of the database has some.
  for (const std::string& step : queryPlan(activityQuery())) {
    EXPECT_FALSE(step.ends_with("(CG86_INDTIPO=? AND CG86_ANNOIVA=?)")) << step;
  }
}

TEST_F(ActivityPlan, NoMethodReadsTheWholeTable) {
  in().InserisciAttivitàDaPeriodoPrecedente = true;
  in().CodiceAttività = 1001;
  in().Sezionale = "01";
  in().Pbol_ValorizzaRecordsetSezionali = true;
  using Method = void (CLSCO_AZIENDECOLL::*)() noexcept;
  for (const Method method :
       {&CLSCO_AZIENDECOLL::RecordsetAttivitaCollegate,
        &CLSCO_AZIENDECOLL::GetCodiceAttivitàDaSezionale, &CLSCO_AZIENDECOLL::GetCodiceAttività,
        &CLSCO_AZIENDECOLL::InserisciAttività,
        &CLSCO_AZIENDECOLL::InserisciAttivitàDaPeriodoPrecedente,
        &CLSCO_AZIENDECOLL::AggiornaAttività, &CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAttività,
        &CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAnagraficaAttività,
        &CLSCO_AZIENDECOLL::EliminaAttivitàSingolaCollegamentoMultiAzienda}) {
    (service.*method)();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}}) << service.Errore.text();
  }
  in().AnnoSolareDaDuplicare = 2024;
  in().AnnoSolare = 2026;
  in().IndProvenienzaMultiAziende = true;
  service.DuplicaAttività();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}}) << service.Errore.text();
  std::set<std::string> seen;
  const std::vector<SqliteTexts::Ran> ran = SqliteTexts::ran();
  for (const SqliteTexts::Ran& statement : ran) {
    if (statement.text.find("\"CG86_AZIENDECOLL\"") != std::string::npos &&
        seen.insert(statement.text).second) {
      EXPECT_EQ(scansOfActivities(statement), std::vector<std::string>{}) << statement.text;
    }
  }
  EXPECT_GT(seen.size(), 15U);
}

}  // namespace
}  // namespace azcoll::test
