#include "cli/reports/call_report.h"

#include "cli/commands/database_options.h"
#include "cli_test.h"

namespace azcoll::cli {
namespace {

using testing::HasSubstr;

/// A service whose output was set by hand, as a method would set it.
class Report : public testing::Test {
 protected:
  [[nodiscard]] std::shared_ptr<Recordset> query(const char* sql) {
    std::int64_t affected = 0;
    return connection_->execute(sql, affected, CommandOption::Text);
  }

  [[nodiscard]] std::string text(const Variant& result = {}) const {
    std::ostringstream out;
    report(result).print(out);
    return out.str();
  }

  [[nodiscard]] nlohmann::ordered_json json(const Variant& result = {}) const {
    std::ostringstream out;
    report(result).printJson(out);
    return nlohmann::ordered_json::parse(out.str());
  }

  [[nodiscard]] CallReport report(const Variant& result) const {
    return {method_, result, before_, service_};
  }

  MethodEntry method_{"Prova", MethodResult::Boolean, {}, "un metodo di prova"};
  CLSCO_INPUTAZCOLL before_;
  CLSCO_AZIENDECOLL service_;
  std::shared_ptr<Connection> connection_ = openConnection(embeddedConnectionString(":memory:"));
};

TEST_F(Report, PrintsRecordsetsAsTables) {
  service_.CPOutput->Grst_DitteCollegate =
      query("SELECT 10 AS DITTA, 'Forlì' AS SEDE UNION ALL SELECT 5, 'Milano' ORDER BY DITTA");
  EXPECT_THAT(text(true), HasSubstr("Risultato: True\n"));
  EXPECT_THAT(text(true), HasSubstr("\nGrst_DitteCollegate (2 righe):\n\n"
                                    "DITTA  SEDE\n"
                                    "-----  ------\n"
                                    "    5  Milano\n"
                                    "   10  Forlì\n"));
}

TEST_F(Report, GivesRecordsetsAsColumnsAndRows) {
  service_.CPOutput->Grst_AttivitaCollegate = query("SELECT 1 AS A SELECT 2 AS B SELECT 3 AS C");
  const auto output = json()["output"];
  EXPECT_EQ(output["Grst_AttivitaCollegate"].dump(),
            R"({"colonne":["A"],"righe":[[1]],"seguenti":[{"colonne":["B"],"righe":[[2]]},)"
            R"({"colonne":["C"],"righe":[[3]]}]})");
  EXPECT_TRUE(output["Grst_DitteCollegate"].is_null());
}

TEST_F(Report, ReadsARecordsetThatStandsAtItsEnd) {
  const auto rows = query("SELECT 1 AS A");
  rows->moveNext();
  service_.CPOutput->Grst_DitteCollegate = rows;
  EXPECT_EQ(json()["output"]["Grst_DitteCollegate"]["righe"].size(), 1U);
}

TEST_F(Report, GivesAnEmptyAndADetachedRecordset) {
  const auto rows = query("SELECT 1 AS A WHERE 1 = 0");
  rows->setActiveConnection(nullptr);
  service_.CPOutput->Grst_DitteCollegate = rows;
  EXPECT_EQ(json()["output"]["Grst_DitteCollegate"].dump(), R"({"colonne":["A"],"righe":[]})");
  EXPECT_THAT(text(), HasSubstr("Grst_DitteCollegate (0 righe):"));
}

TEST_F(Report, GivesAClosedRecordsetAsNull) {
  const auto rows = query("SELECT 1 AS A");
  rows->close();
  service_.CPOutput->Grst_DitteCollegate = rows;
  EXPECT_TRUE(json()["output"]["Grst_DitteCollegate"].is_null());
}

TEST_F(Report, PrintsATextOfSeveralLinesBelowItsName) {
  service_.CPOutput->GstrSQL_AttivitaCollegate = "SELECT *\r\nFROM T\rWHERE A = 'è'\n";
  EXPECT_THAT(text(), HasSubstr("  GstrSQL_AttivitaCollegate:\n"
                                "    SELECT *\n"
                                "    FROM T\n"
                                "    WHERE A = 'è'\n"));
  EXPECT_EQ(json()["output"]["GstrSQL_AttivitaCollegate"], "SELECT *\r\nFROM T\rWHERE A = 'è'\n");
}

TEST_F(Report, ShowsOnlyTheFieldsThatDifferFromTheirEmptyValue) {
  service_.CPOutput->DescrAttività = kNull;
  service_.CPOutput->CodiceAttività = *Decimal::parse("10.50");
  EXPECT_THAT(text(), HasSubstr("\nOutput:\n  CodiceAttività: 10.50\n  DescrAttività: NULL\n"));
  EXPECT_THAT(text(), testing::Not(HasSubstr("IdAttività")));
  EXPECT_EQ(json()["output"]["CodiceAttività"], "10.50");
  EXPECT_TRUE(json()["output"]["DescrAttività"].is_null());
}

TEST_F(Report, TellsAChangeOfKindAsAChange) {
  before_.Pvar_CliFor = kNull;
  service_.CPInput->Pvar_CliFor = "";
  EXPECT_THAT(text(), HasSubstr("  Pvar_CliFor: NULL -> \n"));
}

TEST_F(Report, PrintsTheStateAndTheMessage) {
  service_.Stato = std::int16_t{99};
  service_.Errore = "Errore\x1B in Prova";
  EXPECT_THAT(text(), HasSubstr("Stato: 99\nErrore: Errore␛ in Prova\n"));
  EXPECT_EQ(json()["errore"], "Errore\x1B in Prova");
}

}  // namespace
}  // namespace azcoll::cli
