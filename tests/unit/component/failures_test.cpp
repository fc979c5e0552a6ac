#include "unit/component/copies_fixture.h"

namespace azcoll::testing {
namespace {

/// What the trap of the duplication does when something fails.
class DuplicationFailures : public CopiesTest {
 protected:
  [[nodiscard]] Lines transaction() const {
    return log({"BeginTrans", "CommitTrans", "RollbackTrans"});
  }
};

const Lines kRolledBack{"BeginTrans", "RollbackTrans"};

TEST_F(DuplicationFailures, ARefusedCopyRollsEverythingBackAndEndsTheCall) {
  connection->fail("INSERT INTO CG44_CLIFOR", Failure::Provider, "Chiave doppia");
  service->DuplicaCliFor();
  expectOutcome(99, "Chiave doppia in DuplicaClifor");
  EXPECT_EQ(transaction(), kRolledBack);
  EXPECT_EQ(inserts("CG44_CLIFOR").size(), 1U);
  EXPECT_TRUE(platform->numbered.empty());
  EXPECT_EQ(connection->recordedErrors().count(), 0U);
  EXPECT_EQ(connection->recordedErrors().clears(), 1);
}

TEST_F(DuplicationFailures, ARefusedReducedCopyLeavesTheOtherCompaniesAlone) {
  connection->fail(masterStatement("12").substr(0, masterStatement("12").size() - 1),
                   Failure::Provider, "Chiave doppia");
  service->DuplicaCliFor();
  expectOutcome(99, "Chiave doppia in DuplicaClifor");
  EXPECT_EQ(transaction(), kRolledBack);
  EXPECT_EQ(inserts("CG44_CLIFOR").size(), 2U);
}

TEST_F(DuplicationFailures, EveryStatementOfTheTransactionEndsInARollbackWhenRefused) {
  sales(salesValues());
  for (const std::string start :
       {"SELECT * FROM CG44_CLIFOR", "SELECT * FROM MG19_CLIFORVA",
        "SELECT * FROM CG40_ANADITTAINTER", "SELECT * FROM CG31_ANADITTASEDI",
        " SELECT     DST.MG17_IDAGENTE", "INSERT INTO MG19_CLIFORVA", "CommitTrans"}) {
    forget();
    connection->fail(start, Failure::Provider, "Rifiutato");
    service->DuplicaCliFor();
    EXPECT_EQ(shown(service->Stato), "Int16 99") << start;
    EXPECT_TRUE(service->Errore.text().starts_with("Rifiutato")) << service->Errore.text();
    EXPECT_TRUE(service->Errore.text().ends_with(" in DuplicaClifor")) << service->Errore.text();
    EXPECT_EQ(transaction().back(), "RollbackTrans") << start;
    connection->answerPrefix(start, rowSet({"X"}, {std::int16_t{1}}));  // mended
    script();
    sales(salesValues());
    connection->answerPrefix(" SELECT     DST.MG17_IDAGENTE", rowSet({"IDAGENTE"}, {kNull}));
  }
}

TEST_F(DuplicationFailures, AFailureThatTheProviderDidNotRecordRollsNothingBack) {
  for (const Failure failure : {Failure::Own, Failure::Foreign}) {
    forget();
    connection->fail("INSERT INTO CG44_CLIFOR", failure, "Guasto");
    service->DuplicaCliFor();
    expectOutcome(99, "Guasto in DuplicaClifor");
    EXPECT_EQ(transaction(), (Lines{"BeginTrans"}));
    EXPECT_TRUE(ServiceProbe::transazioneAperta(*service));
    EXPECT_EQ(connection->recordedErrors().clears(), 0);
  }
}

TEST_F(DuplicationFailures, AnOlderEntryInTheErrorsIsEnoughForARollback) {
  // Stands for a failure that was skipped on the way.
  EXPECT_THROW(connection->raise(Failure::Provider, "saltato", "SELECT"), Error);
  connection->fail("INSERT INTO CG44_CLIFOR", Failure::Own, "Guasto");
  service->DuplicaCliFor();
  expectOutcome(99, "Guasto in DuplicaClifor");
  EXPECT_EQ(transaction(), kRolledBack);
  EXPECT_EQ(connection->recordedErrors().count(), 0U);
}

TEST_F(DuplicationFailures, ATransactionThatCannotBeginIsNotRolledBack) {
  connection->fail("BeginTrans", Failure::Provider, "Già aperta");
  service->DuplicaCliFor();
  expectOutcome(99, "Già aperta in DuplicaClifor");
  EXPECT_EQ(transaction(), (Lines{"BeginTrans"}));
  EXPECT_EQ(connection->recordedErrors().count(), 1U);
  EXPECT_FALSE(ServiceProbe::transazioneAperta(*service));
}

TEST_F(DuplicationFailures, ARollbackThatFailsDoesNotHideTheFirstFailureNorEscape) {
  connection->fail("INSERT INTO CG44_CLIFOR", Failure::Provider, "Chiave doppia");
  connection->fail("RollbackTrans", Failure::Provider, "Connessione persa");
  service->DuplicaCliFor();
  EXPECT_EQ(shown(service->Stato), "Int16 99");
  EXPECT_TRUE(service->Errore.text().ends_with(" in DuplicaClifor")) << service->Errore.text();
}

TEST_F(DuplicationFailures, TheRunningFlagIsNotClearedByTheTrap) {
  connection->fail("INSERT INTO CG44_CLIFOR", Failure::Provider, "Chiave doppia");
  service->DuplicaCliFor();
  EXPECT_TRUE(ServiceProbe::gestioneDuplicazione(*service));
}

TEST_F(DuplicationFailures, ASuccessAfterAFailureKeepsTheMessage) {
  connection->fail("INSERT INTO CG44_CLIFOR", Failure::Provider, "Chiave doppia");
  service->DuplicaCliFor();
  connection->answerPrefix("INSERT INTO CG44_CLIFOR", ResultSet{});
  forget();
  service->DuplicaCliFor();
  expectOutcome(0, "Chiave doppia in DuplicaClifor");
  EXPECT_EQ(transaction(), (Lines{"BeginTrans", "CommitTrans"}));
}

TEST_F(DuplicationFailures, AFailedNumberingIsReportedAndCommitted) {
  platform->numberingStatus = [](const NumerazioneDocumenti& numbering) {
    return numbering.Ditta.toInt64() == 12 ? 4711 : 0;
  };
  service->DuplicaCliFor();
  expectOutcome(99, "Errore in Pcls_NumDoc.ElaboraNumerazione - Stato: 4711");
  EXPECT_EQ(transaction(), (Lines{"BeginTrans", "CommitTrans"}));
  EXPECT_EQ(platform->numbered.size(), 3U);
  EXPECT_FALSE(ServiceProbe::transazioneAperta(*service));
  EXPECT_FALSE(ServiceProbe::gestioneDuplicazione(*service));
}

TEST_F(DuplicationFailures, ANumberingThatThrowsIsTrapped) {
  for (const std::string stage : {"numbering", "ElaboraNumerazione"}) {
    forget();
    platform->fails = [&stage](std::string_view which) {
      if (which == stage) {
        throw std::runtime_error{"libreria assente"};
      }
    };
    service->DuplicaCliFor();
    expectOutcome(99, "libreria assente in DuplicaClifor");
    EXPECT_EQ(transaction(), (Lines{"BeginTrans"}));  // the provider recorded nothing
    EXPECT_EQ(platform->numberingsAlive, 0);
  }
}

TEST_F(DuplicationFailures, ADayThatCannotBeToldIsTrapped) {
  platform->fails = [](std::string_view which) {
    if (which == "today") {
      throw Error{"orologio fermo"};
    }
  };
  service->DuplicaCliFor();
  expectOutcome(99, "orologio fermo in DuplicaClifor");
}

TEST_F(DuplicationFailures, APrerequisiteThatFailsEndsTheDuplication) {
  // Missing in the target and in the source: there is nothing to copy.
  connection->answerPrefix("SELECT * FROM CG40_ANADITTAINTER",
                           rowSet({"CG40_TIPOCF", "CG40_INTERMEDIO"}, {}));
  service->DuplicaCliFor();
  EXPECT_EQ(shown(service->Stato), "Int16 99");
  EXPECT_TRUE(service->Errore.text().ends_with(" in DuplicaClifor")) << service->Errore.text();
  EXPECT_TRUE(inserts("CG44_CLIFOR").empty());
  EXPECT_EQ(transaction(), (Lines{"BeginTrans"}));
}

TEST_F(DuplicationFailures, AMissingCompanyOrConnectionIsRefusedBeforeAnything) {
  in().Pvar_Ditta = "";
  service->DuplicaCliFor();
  expectOutcome(1, "Codice azienda mancante!");
  in().Connessione = nullptr;
  service->DuplicaCliFor();
  expectOutcome(1, "Stringa di connessione mancante!");
  EXPECT_TRUE(log().empty());
}

TEST_F(DuplicationFailures, MissingObjectsAreTrapped) {
  service->CPOutput = nullptr;
  service->DuplicaCliFor();
  EXPECT_EQ(shown(service->Stato), "Int16 99");
  service->Stato = std::int16_t{0};
  service->CPInput = nullptr;
  service->DuplicaCliFor();
  EXPECT_EQ(shown(service->Stato), "Int16 99");
  EXPECT_TRUE(service->Errore.text().ends_with(" in DuplicaClifor"));
}

TEST_F(DuplicationFailures, AnObjectAsCodeIsTrapped) {
  in().Pvar_CliFor = std::shared_ptr<Object>{std::make_shared<Object>()};
  service->DuplicaCliFor();
  EXPECT_EQ(shown(service->Stato), "Int16 99");
  EXPECT_TRUE(service->Errore.text().ends_with(" in DuplicaClifor")) << service->Errore.text();
}

}  // namespace
}  // namespace azcoll::testing
