// What the duplication leaves behind when it does not, or must not, go through.

#include "scenarios/company_database.h"
#include "text/trimming.h"

namespace azcoll::test {
namespace {

class DuplicationRefused : public CompanyDatabase {};

/// A numbering that cannot record anything in company 12.
class FailingNumbering final : public NumerazioneDocumenti {
 public:
  void ElaboraNumerazione() override { status_ = trim(Ditta.text()) == "12" ? 7 : 0; }
  [[nodiscard]] std::int32_t Stato() const override { return status_; }

 private:
  std::int32_t status_ = 0;
};

class PlatformWithFailingNumbering final : public Platform {
 public:
  std::shared_ptr<Connection> newConnection(std::string_view text) override {
    return newConnectionFor(text);
  }
  std::unique_ptr<NumerazioneDocumenti> newNumbering() override {
    return std::make_unique<FailingNumbering>();
  }
};

TEST_F(DuplicationRefused, AnApostropheInATextUndoesEverything) {
  const Lines before = picture();
  duplicate(5, Cliente, 140);

  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(service.Errore.text().ends_with(" in DuplicaClifor")) << service.Errore.text();
  if (embedded()) {
    EXPECT_EQ(service.Errore.text(), "Incorrect syntax near 'Aquila'. in DuplicaClifor");
  }
  EXPECT_EQ(picture(), before);
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(DuplicationRefused, AFailureAfterACodeChangeGivesTheOldCodeBack) {
  // The code 120 is moved first; the apostrophe makes the copy fail afterwards.
  run("UPDATE MG19_CLIFORVA SET MG19_ZONA = N'L''Aquila' WHERE MG19_DITTA_CG18 = 5 AND "
      "MG19_CLIFOR_CG44 = 120");
  const Lines before = picture();
  duplicate(5, Cliente, 120);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(picture(), before);
}

TEST_F(DuplicationRefused, ARefusalInTheLastLinkedCompanyUndoesTheCopiesBeforeIt) {
  // Company 15 holds the same registry entry under another code, and is told to hold it once only.
  run("INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16, "
      "CG44_FLGATTIVO) VALUES (15, 0, 777, 3009, 1)");
  run("CREATE UNIQUE INDEX UX_PROVA ON CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, "
      "CG44_CODICE_CG16)");
  const Lines before = picture();
  duplicate(5, Cliente, 150);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(service.Errore.text().ends_with(" in DuplicaClifor")) << service.Errore.text();
  EXPECT_EQ(picture(), before);
  EXPECT_FALSE(endOpenTransaction());
  if (!embedded()) {
    run("DROP INDEX UX_PROVA ON CG44_CLIFOR");  // the next test finds the same tables again
  }
}

TEST_F(DuplicationRefused, AnUnknownCodeLeavesTheTransactionToTheOwnerOfTheConnection) {
  const Lines before = picture();
  duplicate(5, Cliente, 999);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(service.Errore.isEmpty());
  EXPECT_TRUE(endOpenTransaction());
  EXPECT_EQ(picture(), before);
}

TEST_F(DuplicationRefused, ACodeThatIsNoNumberIsTheDatabasesRefusal) {
  const Lines before = picture();
  duplicate(5, Cliente, "abc");
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  if (embedded()) {
    EXPECT_EQ(service.Errore.text(), "Invalid column name 'abc'. in DuplicaClifor");
  }
  EXPECT_EQ(picture(), before);
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(DuplicationRefused, AMissingCodeIsTheDatabasesRefusalHoweverItIsMissing) {
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    duplicate(5, Cliente, missing);
    EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
    if (embedded()) {
      EXPECT_EQ(service.Errore.text(), "Incorrect syntax near '='. in DuplicaClifor");
    }
    EXPECT_FALSE(endOpenTransaction());
  }
}

TEST_F(DuplicationRefused, AMissingCompanyStopsTheCallHoweverItIsMissing) {
  const Lines before = picture();
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}}) {
    service.CPInput->Pvar_Ditta = missing;
    service.DuplicaCliFor();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{1}});
    EXPECT_EQ(service.Errore.text(), "Codice azienda mancante!");
  }
  EXPECT_EQ(picture(), before);
}

TEST_F(DuplicationRefused, NothingIsSharedWhereTheLinkSaysSo) {
  const Lines before = picture();
  duplicate(31, Cliente, 300);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{1}});
  EXPECT_EQ(picture(), before);
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(DuplicationRefused, NothingHappensOutsideEveryGroup) {
  const Lines before = picture();
  duplicate(20, Cliente, 122);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(picture(), before);
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(DuplicationRefused, NothingHappensInAYearWithoutLinks) {
  const Lines before = picture();
  service.CPInput->AnnoSolare = 2019;
  duplicate(5, Cliente, 120);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(picture(), before);
}

TEST_F(DuplicationRefused, ANumberingThatFailsIsReportedAndTheCopiesStay) {
  CLSCO_AZIENDECOLL other{std::make_shared<PlatformWithFailingNumbering>()};
  other.CPInput->Connessione = connection;
  other.CPInput->AnnoSolare = 2025;
  other.CPInput->Pvar_Ditta = 5;
  other.CPInput->Pvar_CliFor = 130;
  other.DuplicaCliFor();
  EXPECT_EQ(other.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(other.Errore.text(), "Errore in Pcls_NumDoc.ElaboraNumerazione - Stato: 7");
  EXPECT_FALSE(endOpenTransaction());
  EXPECT_EQ(rows("SELECT COUNT(*) AS N FROM CG44_CLIFOR WHERE CG44_CODICE_CG16 = 3003"),
            (Lines{"4"}));
}

TEST_F(DuplicationRefused, ACallInsideTheCallersTransactionIsRefusedAndEndsIt) {
  const Lines before = picture();
  connection->beginTrans();
  duplicate(5, Cliente, 130);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(service.Errore.text().ends_with(" in DuplicaClifor"));
  // The call had begun no transaction of its own: the caller's is still there.
  EXPECT_TRUE(endOpenTransaction());
  EXPECT_EQ(picture(), before);
}

}  // namespace
}  // namespace azcoll::test
