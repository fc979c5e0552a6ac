// Which activity applies, and whether it exists.

#include "scenarios/activity_database.h"

namespace azcoll::test {
namespace {

class ActivityLookup : public ActivityDatabase {
 protected:
  void expectActivity(const Variant& code, const Variant& description, const Variant& identity) {
    EXPECT_TRUE(sameValue(out().CodiceAttività, code)) << join(out().CodiceAttività);
    EXPECT_TRUE(sameValue(out().DescrAttività, description)) << join(out().DescrAttività);
    EXPECT_TRUE(sameValue(out().IdAttività, identity)) << join(out().IdAttività);
  }
  void ofRegister(int company, int year, const Variant& code) {
    ask(company, year);
    in().Sezionale = code;
    service.GetCodiceAttivitàDaSezionale();
  }
};

TEST_F(ActivityLookup, ARegisterNamesItsActivity) {
  ofRegister(10, 2024, "01");
  expectState(0);
  expectActivity(1001, "Editoria", 5);
  ofRegister(40, 2024, "01");
  expectActivity(4002, "Vendita di vini", 13);
}

TEST_F(ActivityLookup, ARegisterWithoutActivityTakesTheFirstOfItsCompanyAndYear) {
  ofRegister(12, 2025, 1);
  expectState(0);
  expectActivity(1201, "Panetteria di gruppo", 17);
}

TEST_F(ActivityLookup, InRegimeTwoARegisterWithoutActivityHasNone) {
  ofRegister(40, 2024, "02");
  expectState(0);
  EXPECT_TRUE(out().CodiceAttività.isNull());
  EXPECT_TRUE(out().IdAttività.isNull());
}

TEST_F(ActivityLookup, ARegisterThatIsNotThereGivesNull) {
  ofRegister(10, 2024, "01");
  ofRegister(10, 2024, "77");
  expectState(0);
  expectActivity(kNull, kNull, kNull);
}

TEST_F(ActivityLookup, TheRegisterCodeIsTwoCharacters) {
  ofRegister(30, 2024, 1);
  EXPECT_TRUE(statements(" SELECT CG86_CODATTIVITA").back().ends_with("CG32_SEZIONALE = '1 '"));
  ofRegister(30, 2024, "ABC");
  EXPECT_TRUE(statements(" SELECT CG86_CODATTIVITA").back().ends_with("CG32_SEZIONALE = 'AB'"));
}

TEST_F(ActivityLookup, ARegistersMissingInputIsNamedInOrder) {
  in().Connessione = nullptr;
  service.GetCodiceAttivitàDaSezionale();
  expectState(1, "Non è stata definita la connessione.");
  EXPECT_TRUE(out().CodiceAttività.isNull());
  in().Connessione = connection;
  in().AnnoSolare = {};
  service.GetCodiceAttivitàDaSezionale();
  expectState(1, "Non è stato definito il codice azienda.");
  in().Pvar_Ditta = 10;
  service.GetCodiceAttivitàDaSezionale();
  expectState(1, "Non è stato definito l'anno solare.");
  in().AnnoSolare = 2024;
  service.GetCodiceAttivitàDaSezionale();
  expectState(1, "Non è stato definito il codice sezionale");
}

TEST_F(ActivityLookup, ARegistersYearIsSeededFirst) {
  ofRegister(20, 2024, "00");
  expectState(0);
  EXPECT_TRUE(sameValue(out().CodiceAttività, 20));
}

TEST_F(ActivityLookup, TheInputSelectsTheActivity) {
  ask(40, 2024);
  in().SelezionaAttivitàPrincipale = true;
  service.GetCodiceAttività();
  expectState(0);
  expectActivity(4001, "Agriturismo", 12);
  in().CodiceAttività = 99;
  service.GetCodiceAttività();
  expectActivity(kNull, kNull, kNull);
}

TEST_F(ActivityLookup, ALookupWithoutCompanyIsRefusedAndEmptiesTheResult) {
  out().CodiceAttività = 1;
  service.GetCodiceAttività();
  expectState(1, "Codice azienda mancante!");
  EXPECT_TRUE(out().CodiceAttività.isNull());
}

TEST_F(ActivityLookup, WithoutACodeTheActivityExistsWithoutAQuestion) {
  ask(31, 2024);
  EXPECT_TRUE(service.VerificaEsistenzaAttivita());
  EXPECT_TRUE(operations.empty());
}

TEST_F(ActivityLookup, AnActivityOfTheYearExists) {
  ask(40, 2024);
  in().CodiceAttività = 4003;
  EXPECT_TRUE(service.VerificaEsistenzaAttivita());
  expectState(0);
}

TEST_F(ActivityLookup, InRegimeZeroAMissingActivityIsMade) {
  ask(20, 2024);
  in().CodiceAttività = 20;
  EXPECT_TRUE(service.VerificaEsistenzaAttivita());
  EXPECT_EQ(year(2024).size(), 15U);
}

TEST_F(ActivityLookup, TheExistenceOfNoCompanyIsFalse) {
  in().CodiceAttività = 20;
  EXPECT_FALSE(service.VerificaEsistenzaAttivita());
  expectState(1, "Codice azienda mancante!");
}

TEST_F(ActivityLookup, DatabaseFailuresCarryTheMethodsName) {
  ask(10, 2024);
  in().CodiceAttività = "1 +";
  service.GetCodiceAttività();
  expectFailure(" in GetCodiceAttività");
  in().CodiceAttività = {};
  in().Sezionale = "'";
  service.GetCodiceAttivitàDaSezionale();
  expectFailure(" in GetCodiceAttivitàDaSezionale");
  // A look-up that failed counts as a missing activity; nothing is missing in the configuration.
  in().CodiceAttività = "1 +";
  service.VerificaEsistenzaAttivita();
  expectFailure(" in GetCodiceAttività");
}

}  // namespace
}  // namespace azcoll::test
