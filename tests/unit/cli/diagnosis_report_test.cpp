#include "cli/reports/diagnosis_report.h"

#include <sstream>

#include "cli_test.h"
#include "deployment/diagnosis.h"

namespace azcoll::cli {
namespace {

using deployment::Diagnosis;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

std::string printed(const Diagnosis& diagnosis) {
  std::ostringstream out;
  printDiagnosis(out, diagnosis);
  return out.str();
}

nlohmann::ordered_json printedJson(const Diagnosis& diagnosis) {
  std::ostringstream out;
  printDiagnosisJson(out, diagnosis);
  return nlohmann::ordered_json::parse(out.str());
}

Diagnosis ofAServer(const std::string& user) {
  return {.tables = 31, .columns = 1, .routines = 2, .rights = 50, .hasUsers = true, .user = user};
}

TEST(DiagnosisReport, CountsWhatIsThereAndSaysThatAllIsWell) {
  EXPECT_EQ(printed(ofAServer("servizio")),
            "Trovati: 31 tabelle, 1 colonna, 2 procedure e funzioni, 50 diritti dell'utente "
            "servizio.\n\n"
            "Tutto a posto: il servizio può lavorare su questo database.\n");
}

TEST(DiagnosisReport, ListsWhatCouldNotBeChecked) {
  Diagnosis diagnosis = ofAServer("servizio");
  diagnosis.unchecked = {"le colonne delle tabelle: Errore 50000 (HY000): relation does not exist",
                         "i diritti dell'utente: Errore 229"};
  EXPECT_THAT(printed(diagnosis),
              AllOf(HasSubstr("\nNon controllato: le colonne delle tabelle: Errore 50000 (HY000): "
                              "relation does not exist\n"),
                    HasSubstr("\nNon controllato: i diritti dell'utente: Errore 229\n")));
}

TEST(DiagnosisReport, DoesNotCallAllRightWhatCouldNotBeChecked) {
  Diagnosis diagnosis = ofAServer("servizio");
  diagnosis.unchecked = {"i parametri della procedura e della funzione: relation does not exist"};
  EXPECT_THAT(printed(diagnosis), AllOf(EndsWith("Quello che si è potuto controllare è a posto.\n"),
                                        Not(HasSubstr("Tutto a posto"))));
  EXPECT_EQ(printedJson(diagnosis)["non_controllato"],
            nlohmann::ordered_json::array({diagnosis.unchecked.front()}));
}

TEST(DiagnosisReport, DoesNotGuessWhoTheUserIs) {
  EXPECT_THAT(printed(ofAServer("")), HasSubstr("diritti dell'utente della connessione"));
  EXPECT_TRUE(printedJson(ofAServer(""))["utente"].is_null());
}

TEST(DiagnosisReport, NumbersTheFindingsWithTheirRemedies) {
  Diagnosis diagnosis = ofAServer("servizio");
  diagnosis.findings = {{"tabella", "T", "Manca la tabella T.", "CREATE TABLE T (\r\n  A INT\n)"},
                        {"diritto", "U", "Manca su U\x1b: SELECT.", "GRANT SELECT ON U TO R"}};
  EXPECT_THAT(printed(diagnosis), EndsWith("\nDa sistemare: 2\n"
                                           "\n1. Manca la tabella T.\n   Rimedio:\n"
                                           "     CREATE TABLE T (\n       A INT\n     )\n"
                                           "\n2. Manca su U␛: SELECT.\n   Rimedio:\n"
                                           "     GRANT SELECT ON U TO R\n"));
  EXPECT_EQ(printedJson(diagnosis)["problemi"][1]["oggetto"], "U");
}

}  // namespace
}  // namespace azcoll::cli
