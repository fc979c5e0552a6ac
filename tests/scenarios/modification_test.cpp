// How a changed intermediary reaches the companies of the example group.

#include "scenarios/company_database.h"

namespace azcoll::test {
namespace {

class Modification : public CompanyDatabase {
 protected:
  void modify(int company, EnumTipoCF kind, const Variant& code) {
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->Pint_TipoCF = kind;
    service.CPInput->Pvar_CliFor = code;
    service.ModificaCliFor();
  }
  void expectSuccess() {
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}}) << service.Errore.text();
    EXPECT_TRUE(service.Errore.isEmpty());
    EXPECT_FALSE(endOpenTransaction());
  }
  void expectRefusal(const Lines& before, const std::string& message) {
    EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
    EXPECT_EQ(service.Errore.text(), message);
    EXPECT_EQ(picture(), before);
    EXPECT_FALSE(endOpenTransaction());
  }
  /// "company|kind of the intermediary|intermediary" of every holder of a code.
  Lines intermediaries(EnumTipoCF kind, int code) {
    return rows(
        join("SELECT CG44_DITTA_CG18, CG44_TIPOCF_CG40, CG44_INTERMEDIO_CG40 FROM "
             "CG44_CLIFOR WHERE CG44_TIPOCF = ",
             static_cast<int>(kind), " AND CG44_CLIFOR = ", code, " ORDER BY CG44_DITTA_CG18"));
  }
  void setIntermediary(int company, EnumTipoCF kind, int code, const std::string& intermediary) {
    run(join("UPDATE CG44_CLIFOR SET CG44_INTERMEDIO_CG40 = ", intermediary,
             " WHERE CG44_DITTA_CG18 = ", company, " AND CG44_TIPOCF = ", static_cast<int>(kind),
             " AND CG44_CLIFOR = ", code));
  }
};

TEST_F(Modification, TheNewIntermediaryReachesEveryCompany) {
  const Lines before = picture();
  modify(5, Cliente, 110);
  expectSuccess();
  EXPECT_EQ(intermediaries(Cliente, 110), (Lines{"5|0|2", "10|0|2", "12|0|2", "15|0|2"}));
  const Difference change = difference(before, picture());
  EXPECT_EQ(change.gone.size(), 3U);
  EXPECT_EQ(change.come.size(), 3U);
}

TEST_F(Modification, ALinkedOrMainCompanyMayBeTheOneThatChanged) {
  for (const int company : {10, 15}) {
    setIntermediary(company, Cliente, 112, "2");
    modify(company, Cliente, 112);
    expectSuccess();
    // Only the intermediary is written: company 15 has no kind beside it.
    EXPECT_EQ(intermediaries(Cliente, 112), (Lines{"5|0|2", "10|0|2", "12|0|2", "15|NULL|2"}));
    for (const int other : {5, 10, 12, 15}) {
      setIntermediary(other, Cliente, 112, "1");
    }
  }
}

TEST_F(Modification, AMissingIntermediaryIsTakenAwayEverywhere) {
  setIntermediary(5, Cliente, 110, "NULL");
  modify(5, Cliente, 110);
  expectSuccess();
  EXPECT_EQ(intermediaries(Cliente, 110),
            (Lines{"5|0|NULL", "10|0|NULL", "12|0|NULL", "15|0|NULL"}));
}

TEST_F(Modification, ACodeThatACompanyDoesNotHaveUndoesEverything) {
  setIntermediary(5, Cliente, 111, "2");
  const Lines before = picture();
  modify(5, Cliente, 111);
  expectRefusal(before, "Il codice cliente 111 non è presente nell'azienda 12.");
}

TEST_F(Modification, ACodeThatTheCurrentCompanyDoesNotHaveTakesTheIntermediaryAwayElsewhere) {
  // Company 12 alone lacks the customer 111: a row that cannot be read counts as "no intermediary".
  modify(12, Cliente, 111);
  expectSuccess();
  EXPECT_EQ(intermediaries(Cliente, 111), (Lines{"5|0|NULL", "10|0|NULL", "15|0|NULL"}));
}

TEST_F(Modification, AnIntermediaryThatACompanyDoesNotHaveUndoesEverything) {
  setIntermediary(10, Fornitore, 205, "NULL");
  const Lines before = picture();
  modify(5, Fornitore, 205);
  expectRefusal(before, "Il codice intermedio 4 non è presente nell'azienda 15.");
}

TEST_F(Modification, AnIntermediaryOfTheOtherKindDoesNotCount) {
  // The intermediary 7 stands in company 5 only, 4 is a supplier's in the other companies.
  setIntermediary(5, Cliente, 110, "7");
  Lines before = picture();
  modify(5, Cliente, 110);
  expectRefusal(before, "Il codice intermedio 7 non è presente nell'azienda 10.");
  run("INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF, CG40_INTERMEDIO) VALUES "
      "(5, 0, 4)");
  setIntermediary(5, Cliente, 110, "4");
  before = picture();
  modify(5, Cliente, 110);
  expectRefusal(before, "Il codice intermedio 4 non è presente nell'azienda 10.");
}

TEST_F(Modification, AnUpdateThatTheDatabaseRefusesUndoesEverything) {
  // The row of company 15 speaks of a supplier's intermediary, and there is no supplier's 2.
  run("UPDATE CG44_CLIFOR SET CG44_INTERMEDIO_CG40 = NULL, CG44_TIPOCF_CG40 = 1 WHERE "
      "CG44_DITTA_CG18 = 15 AND CG44_TIPOCF = 0 AND CG44_CLIFOR = 110");
  const Lines before = picture();
  modify(5, Cliente, 110);
  expectRefusal(before,
                "Errore durante la modifica dell'intermedio relativo al codice cliente 110 "
                "dell'azienda 15.");
}

TEST_F(Modification, NothingHappensOutsideEveryGroupOrInAYearWithoutLinks) {
  const Lines before = picture();
  modify(20, Cliente, 122);
  expectSuccess();
  service.CPInput->AnnoSolare = 2019;
  modify(5, Cliente, 110);
  expectSuccess();
  EXPECT_EQ(picture(), before);
}

TEST_F(Modification, TheAccountingTypeThatStopsTheDuplicationDoesNotStopTheChange) {
  const Lines before = picture();
  modify(31, Cliente, 300);
  expectRefusal(before, "Il codice cliente 300 non è presente nell'azienda 30.");
}

TEST_F(Modification, ACodeThatIsNoNumberIsAMissingCode) {
  const Lines before = picture();
  modify(5, Cliente, "abc");
  expectRefusal(before, "Il codice cliente abc non è presente nell'azienda 10.");
  modify(5, Fornitore, kNull);
  expectRefusal(before, "Il codice fornitore  non è presente nell'azienda 10.");
}

TEST_F(Modification, ACallInsideTheCallersTransactionIsRefusedAndLeavesItOpen) {
  const Lines before = picture();
  for (const bool told : {false, true}) {
    service.CPInput->Pbol_InTransaction = told;
    connection->beginTrans();
    modify(5, Cliente, 110);
    EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
    EXPECT_TRUE(service.Errore.text().ends_with(" in ModificaCliFor")) << service.Errore.text();
    EXPECT_TRUE(endOpenTransaction());
    EXPECT_EQ(picture(), before);
  }
}

}  // namespace
}  // namespace azcoll::test
