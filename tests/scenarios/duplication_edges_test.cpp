// Customers that cannot take another code, and calls that follow one another on one connection.

#include "scenarios/company_database.h"

namespace azcoll::test {
namespace {

class DuplicationEdges : public CompanyDatabase {
 protected:
  void expectRefused(const std::string& error) {
    EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
    EXPECT_TRUE(service.Errore.text().ends_with(" in DuplicaClifor")) << service.Errore.text();
    if (embedded()) {
      EXPECT_NE(service.Errore.text().find(error), std::string::npos) << service.Errore.text();
    }
  }
};

TEST_F(DuplicationEdges, ACustomerWithDocumentsCannotChangeItsCode) {
  const Lines before = picture();
  duplicate(5, Cliente, 112);  // taken in company 10
  expectRefused("FK_MG60_CG44");
  EXPECT_EQ(service.CPInput->Pvar_CliFor, Variant{112});
  EXPECT_EQ(picture(), before);
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(DuplicationEdges, JointHoldersDoNotFollowACodeChangeAndPreventIt) {
  const Lines before = picture();
  duplicate(5, Cliente, 110);  // has rows in the thirteen sub-tables and joint holders
  expectRefused("FK_CG4E_CG44");
  EXPECT_EQ(picture(), before);
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(DuplicationEdges, ATakenCodeThatCannotBeCountedUpEndsTheCall) {
  const Lines before = picture();
  for (const char* const code : {"120 OR 1 = 1", "(120)", "120 --"}) {
    duplicate(5, Cliente, code);
    EXPECT_EQ(picture().size(), before.size()) << code;
    endOpenTransaction();
    EXPECT_EQ(picture(), before) << code;
  }
}

TEST_F(DuplicationEdges, ASuppliersIntermediaryIsCreatedUnderItsOwnKind) {
  const Lines before = picture();
  duplicate(5, Fornitore, 210);
  const Difference change = difference(before, picture());
  EXPECT_EQ(ofTable(change.come, "CG40_ANADITTAINTER"),
            (Lines{"10|1|6|Centrale Qualità|NULL", "12|1|6|Centrale Qualità|NULL",
                   "15|1|6|Centrale Qualità|NULL"}));
  EXPECT_TRUE(change.gone ==
              Lines({"CG44_CLIFOR|" + ofTable(change.gone, "CG44_CLIFOR").at(0),
                     "CG70_NUMERDOC|" + ofTable(change.gone, "CG70_NUMERDOC").at(0),
                     "CG70_NUMERDOC|" + ofTable(change.gone, "CG70_NUMERDOC").at(1),
                     "MG19_CLIFORVA|" + ofTable(change.gone, "MG19_CLIFORVA").at(0),
                     "MG35_CLIFORCC|" + ofTable(change.gone, "MG35_CLIFORCC").at(0),
                     "MG41_CLIFORVETT|" + ofTable(change.gone, "MG41_CLIFORVETT").at(0)}));
}

TEST_F(DuplicationEdges, ACustomerAndASupplierOfOneCodeAreTwo) {
  run("INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16, "
      "CG44_FLGATTIVO) VALUES (5, 1, 121, 4002, 1)");
  duplicate(5, Fornitore, 121);  // the customer 121 of company 10 does not take it
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(service.CPInput->Pvar_CliFor, Variant{121});
  EXPECT_EQ(rows("SELECT CG44_DITTA_CG18, CG44_TIPOCF FROM CG44_CLIFOR WHERE CG44_CLIFOR = 121 "
                 "ORDER BY CG44_DITTA_CG18, CG44_TIPOCF"),
            (Lines{"5|1", "10|0", "10|1", "12|1", "15|1"}));
}

TEST_F(DuplicationEdges, ACodeGivenAsTextIsTheSameCustomer) {
  duplicate(5, Cliente, "120");
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_TRUE(sameValue(service.CPInput->Pvar_CliFor, 122));
  EXPECT_EQ(rows("SELECT CG44_DITTA_CG18 FROM CG44_CLIFOR WHERE CG44_CODICE_CG16 = 3005 AND "
                 "CG44_CLIFOR = 122 ORDER BY CG44_DITTA_CG18"),
            (Lines{"5", "10", "12", "15"}));
}

TEST_F(DuplicationEdges, FromTheMainCompanyATakenCodeMovesTheMainCompanysCustomer) {
  run("INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16, "
      "CG44_FLGATTIVO) VALUES (15, 0, 125, 3012, 1)");
  duplicate(10, Cliente, 125);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(service.CPInput->Pvar_CliFor, Variant{126});
  EXPECT_EQ(rows("SELECT CG44_DITTA_CG18, CG44_CLIFOR, CG44_FLGATTIVO FROM CG44_CLIFOR WHERE "
                 "CG44_CODICE_CG16 = 3007 ORDER BY CG44_DITTA_CG18"),
            (Lines{"5|126|0", "10|126|1", "12|126|0", "15|126|0"}));
  EXPECT_EQ(rows("SELECT MG19_CLIFOR_CG44 FROM MG19_CLIFORVA WHERE MG19_DITTA_CG18 = 10 AND "
                 "MG19_CLIFOR_CG44 IN (125, 126)"),
            (Lines{"126"}));
}

TEST_F(DuplicationEdges, ATransactionLeftOpenBelongsToTheOwnerUntilItIsEnded) {
  const Lines before = picture();
  duplicate(5, Cliente, 999);
  duplicate(5, Cliente, 130);  // a second transaction cannot begin, the first one is not undone
  expectRefused("");
  EXPECT_TRUE(endOpenTransaction());
  EXPECT_EQ(picture(), before);
  duplicate(5, Cliente, 130);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
}

TEST_F(DuplicationEdges, AServiceGoesOnAfterAFailure) {
  duplicate(5, Cliente, 140);
  expectRefused("Aquila");
  const Variant message = service.Errore;
  duplicate(5, Cliente, 130);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(service.Errore, message);
  EXPECT_EQ(rows("SELECT COUNT(*) AS N FROM CG44_CLIFOR WHERE CG44_CODICE_CG16 = 3003"),
            (Lines{"4"}));
}

TEST_F(DuplicationEdges, ANumberAlreadyHigherIsNotLowered) {
  run("UPDATE CG70_NUMERDOC SET CG70_ULTNUMDOC = 5000 WHERE CG70_DITTA_CG18 = 12 AND "
      "CG70_TIPODOCINT = 901");
  duplicate(5, Cliente, 120);
  EXPECT_EQ(rows("SELECT CG70_DITTA_CG18, CG70_ULTNUMDOC FROM CG70_NUMERDOC WHERE "
                 "CG70_TIPODOCINT = 901 AND CG70_SEZ_CG68 = '00' AND CG70_ANNO = 0 ORDER BY "
                 "CG70_DITTA_CG18"),
            (Lines{"5|150", "10|125", "12|5000", "15|122", "20|122"}));
}

}  // namespace
}  // namespace azcoll::test
