// What the deletion of a customer or supplier leaves behind in the example group.

#include "scenarios/company_database.h"
#include "support/another_server.h"

namespace azcoll::test {
namespace {

class Deletion : public CompanyDatabase {
 protected:
  void erase(int company, EnumTipoCF kind, const Variant& code) {
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->Pint_TipoCF = kind;
    service.CPInput->Pvar_CliFor = code;
    service.EliminaCliFor();
  }
  void expectSuccess() {
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}}) << service.Errore.text();
    EXPECT_TRUE(service.Errore.isEmpty());
  }
  void expectRefusal(std::int16_t stato, const std::string& message) {
    EXPECT_EQ(service.Stato, Variant{stato});
    EXPECT_EQ(service.Errore.text(), message);
  }
  /// Companies that hold a code, in order.
  Lines holders(EnumTipoCF kind, int code) {
    return rows(
        join("SELECT CG44_DITTA_CG18 FROM CG44_CLIFOR WHERE CG44_TIPOCF = ", static_cast<int>(kind),
             " AND CG44_CLIFOR = ", code, " ORDER BY CG44_DITTA_CG18"));
  }
  /// The tables of the rows that are gone, one entry a row, as "TABLE|company|kind|code".
  static Lines keys(const Lines& gone) {
    Lines found;
    for (const std::string& line : gone) {
      std::size_t end = 0;
      for (int part = 0; part < 4; ++part) {
        end = line.find('|', end + 1);
      }
      found.push_back(line.substr(0, end));
    }
    return found;
  }
};

TEST_F(Deletion, TheCustomerGoesFromEveryOtherCompanyAndStaysInTheCurrentOne) {
  const Lines before = picture();
  erase(5, Cliente, 110);
  expectSuccess();
  const Difference change = difference(before, picture());
  EXPECT_EQ(keys(change.gone), (Lines{"CG44_CLIFOR|10|0|110", "CG44_CLIFOR|12|0|110",
                                      "CG44_CLIFOR|15|0|110", "MG19_CLIFORVA|10|0|110"}));
  EXPECT_EQ(change.come, Lines{});
  EXPECT_EQ(holders(Cliente, 110), Lines{"5"});
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(Deletion, AllSubTableRowsGoWithTheCustomer) {
  const Lines before = picture();
  erase(12, Cliente, 110);
  expectSuccess();
  const Difference change = difference(before, picture());
  EXPECT_EQ(keys(change.gone),
            (Lines{"CG44_CLIFOR|10|0|110", "CG44_CLIFOR|15|0|110", "CG44_CLIFOR|5|0|110",
                   "CG4E_CFCOINTESTATI|5|0|110", "CG4E_CFCOINTESTATI|5|0|110",
                   "MG19_CLIFORVA|10|0|110", "MG19_CLIFORVA|5|0|110", "MG1C_CLIFORAGEMUL|5|0|110",
                   "MG20_CLIFORSCPAG|5|0|110", "MG21_CLIFORSALPAG|5|0|110",
                   "MG22_CLIFORDEST|5|0|110", "MG23_CLIFORNCOP|5|0|110", "MG24_CLIFORRAG|5|0|110",
                   "MG26_CLIFORNOTE|5|0|110", "MG27_CLIFORACC|5|0|110", "MG28_CLIFORINT|5|0|110",
                   "MG29_CLIFORRID|5|0|110", "MG35_CLIFORCC|5|0|110", "MG41_CLIFORVETT|5|0|110"}));
  EXPECT_EQ(change.come, Lines{});
  EXPECT_EQ(holders(Cliente, 110), Lines{"12"});
}

TEST_F(Deletion, TheMainCompanysCustomerGoesFromItsLinkedCompanies) {
  erase(10, Cliente, 111);
  expectSuccess();
  EXPECT_EQ(holders(Cliente, 111), Lines{"10"});
}

TEST_F(Deletion, OnlyTheKindThatWasAskedForIsDeleted) {
  // Customer 120 exists in companies 5 and 12, the supplier 120 in company 10.
  run("INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16, "
      "CG44_FLGATTIVO) VALUES (10, 1, 120, 4001, 1)");
  erase(5, Fornitore, 120);
  expectSuccess();
  EXPECT_EQ(holders(Fornitore, 120), Lines{});
  EXPECT_EQ(holders(Cliente, 120), (Lines{"5", "12"}));
}

TEST_F(Deletion, ACustomerWithDocumentsHereIsRefusedBeforeAnythingChanges) {
  const Lines before = picture();
  erase(5, Cliente, 112);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{1}});
  const std::string message = service.Errore.text();
  EXPECT_TRUE(message.ends_with(" in EliminaCliFor")) << message;
  EXPECT_TRUE(holdsPart(message, "FK_MG60_CG44")) << message;
  EXPECT_EQ(picture(), before);
  EXPECT_EQ(connection->errors().count(), 0U);
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(Deletion, ACompanyThatRefusesUndoesTheOnesBeforeIt) {
  // From company 12 the order is 10, 5, 15; the documents are in company 5.
  const Lines before = picture();
  erase(12, Cliente, 112);
  expectRefusal(2, "Il cliente non può essere eliminato nella ditta 5!");
  EXPECT_EQ(picture(), before);
  EXPECT_EQ(connection->errors().count(), 0U);
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(Deletion, ASupplierThatACompanyRefusesIsNamedAsOne) {
  const Lines before = picture();
  for (const int company : {5, 10, 15}) {
    erase(company, Fornitore, 205);
    expectRefusal(2, "Il fornitore non può essere eliminato nella ditta 12!");
    EXPECT_EQ(picture(), before);
  }
  erase(12, Fornitore, 205);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{1}});
  EXPECT_EQ(picture(), before);
}

TEST_F(Deletion, WithoutItsDocumentsTheCustomerGoes) {
  erase(12, Cliente, 112);
  ASSERT_EQ(service.Stato, Variant{std::int16_t{2}});
  run("DELETE FROM MG60_DOCUMENTI WHERE MG60_DITTA_CG18 = 5");
  service.EliminaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(holders(Cliente, 112), Lines{"12"});
}

TEST_F(Deletion, ACodeThatNobodyHoldsSucceeds) {
  const Lines before = picture();
  erase(5, Cliente, 999);
  expectSuccess();
  EXPECT_EQ(picture(), before);
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(Deletion, NothingIsDeletedWhereTheLinkSaysSo) {
  run("INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16, "
      "CG44_FLGATTIVO) VALUES (30, 0, 300, 3010, 1)");
  const Lines before = picture();
  for (const int company : {30, 31}) {
    erase(company, Cliente, 300);
    expectSuccess();
  }
  EXPECT_EQ(picture(), before);
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(Deletion, NothingHappensOutsideEveryGroupOrInAYearWithoutLinks) {
  const Lines before = picture();
  erase(20, Cliente, 122);
  expectSuccess();
  service.CPInput->AnnoSolare = 2019;
  erase(5, Cliente, 112);  // not even the trial, which would be refused
  expectSuccess();
  EXPECT_EQ(picture(), before);
}

TEST_F(Deletion, InsideTheCallersTransactionTheCallerDecides) {
  const Lines before = picture();
  service.CPInput->Pbol_InTransaction = true;
  connection->beginTrans();
  erase(5, Cliente, 110);
  expectSuccess();
  EXPECT_EQ(holders(Cliente, 110), Lines{"5"});
  connection->rollbackTrans();
  EXPECT_EQ(picture(), before);

  connection->beginTrans();
  erase(5, Cliente, 110);
  connection->commitTrans();
  EXPECT_EQ(holders(Cliente, 110), Lines{"5"});
}

TEST_F(Deletion, InsideTheCallersTransactionTheCurrentCompanyIsNotTried) {
  service.CPInput->Pbol_InTransaction = true;
  connection->beginTrans();
  erase(5, Cliente, 112);
  expectSuccess();
  connection->commitTrans();
  EXPECT_EQ(holders(Cliente, 112), Lines{"5"});
}

TEST_F(Deletion, ARefusalInsideTheCallersTransactionLeavesItOpen) {
  const Lines before = picture();
  service.CPInput->Pbol_InTransaction = true;
  connection->beginTrans();
  erase(5, Fornitore, 205);
  expectRefusal(2, "Il fornitore non può essere eliminato nella ditta 12!");
  EXPECT_EQ(holders(Fornitore, 205), (Lines{"5", "12", "15"}));
  EXPECT_TRUE(endOpenTransaction());
  EXPECT_EQ(picture(), before);
}

TEST_F(Deletion, ACallersTransactionThatIsNotToldEndsTheCall) {
  const Lines before = picture();
  connection->beginTrans();
  erase(5, Cliente, 110);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(service.Errore.text().ends_with(" in EliminaCliFor")) << service.Errore.text();
  EXPECT_TRUE(endOpenTransaction());
  EXPECT_EQ(picture(), before);
}

TEST_F(Deletion, ACodeThatIsMissingOrNoNumberIsRefusedByTheDatabaseInTheTrial) {
  const Lines before = picture();
  erase(5, Cliente, "abc");
  EXPECT_EQ(service.Stato, Variant{std::int16_t{1}});
  if (embedded()) {
    EXPECT_EQ(service.Errore.text(), "Invalid column name 'abc'. in EliminaCliFor");
  }
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    erase(5, Cliente, missing);
    EXPECT_EQ(service.Stato, Variant{std::int16_t{1}});
    EXPECT_TRUE(service.Errore.text().ends_with(" in EliminaCliFor"));
  }
  EXPECT_EQ(picture(), before);
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(Deletion, WhatTheDuplicationSpreadsTheDeletionTakesBack) {
  duplicate(5, Cliente, 130);
  ASSERT_EQ(service.Stato, Variant{std::int16_t{0}}) << service.Errore.text();
  ASSERT_EQ(holders(Cliente, 130), (Lines{"5", "10", "12", "15"}));
  service.EliminaCliFor();
  expectSuccess();
  EXPECT_EQ(holders(Cliente, 130), Lines{"5"});
}

}  // namespace
}  // namespace azcoll::test
