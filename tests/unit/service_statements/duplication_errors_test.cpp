#include <map>
#include <string>
#include <vector>

#include "data/tables.h"
#include "service_fixture.h"

namespace azcoll::test {
namespace {

/// Everything is needed: the code is taken, a sub-table has a row, intermediary and branch are
/// missing in the targets, an agent and the sales data exist.
class DuplicationErrorsTest : public DuplicationTest {
 protected:
  DuplicationErrorsTest() {
    take("100");
    connection->columns("MG22_CLIFORDEST", {"MG22_DITTA_CG18", "MG22_CLIFOR_CG44"});
    connection->answer(
        "SELECT * FROM MG22_CLIFORDEST WHERE MG22_DITTA_CG18 = 20 AND MG22_TIPOCF_CG44 = 0 AND "
        "MG22_CLIFOR_CG44 = 100",
        rowSet({"MG22_DITTA_CG18", "MG22_CLIFOR_CG44"}, {20, 100}, "MG22_CLIFORDEST"));
    connection->answerPrefix("SELECT * FROM CG40_ANADITTAINTER", rowSet({"X"}, {}));
    connection->answerPrefix(
        "SELECT * FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = 20",
        rowSet({"CG40_TIPOCF", "CG40_INTERMEDIO", "CG40_DESCR", "CG40_IDMEDIA_CG99"},
               {0, 7, "Rossi", kNull}));
    connection->answerPrefix("SELECT * FROM CG31_ANADITTASEDI", rowSet({"X"}, {}));
    connection->answerPrefix("SELECT * FROM CG31_ANADITTASEDI WHERE CG31_DITTA_CG18 = 20",
                             rowSet({"CG31_CODICE", "CG31_INDIRIZZO", "CG31_CAP", "CG31_CITTA",
                                     "CG31_PROV", "CG31_IDMEDIA_CG99"},
                                    {2, "Via Po", kNull, kNull, kNull, kNull}));
    Row sales;
    for (const tables::SalesColumn& column : tables::kSalesColumns) {
      sales.set(std::string{column.name}, kNull);
    }
    connection->answerPrefix(
        "SELECT * FROM MG19_CLIFORVA WHERE MG19_DITTA_CG18 = 20 AND MG19_TIPOCF_CG44 = 0 AND "
        "MG19_CLIFOR_CG44 = 101",
        sales.in("MG19_CLIFORVA"));
  }
};

TEST_F(DuplicationErrorsTest, WithoutAFailureTheCallSucceeds) {
  service.DuplicaCliFor();
  EXPECT_EQ(lines("INSERT").size(), 10U);
  EXPECT_EQ(count("UpdateBatch"), 1U);
  expectSuccess();
}

/// Where the failure happens: the beginning of the statement, or an operation.
class FailingStatementTest : public DuplicationErrorsTest,
                             public ::testing::WithParamInterface<const char*> {};

TEST_P(FailingStatementTest, OfTheDatabaseRollsBackOnceAndClearsTheErrors) {
  connection->fail(GetParam(), Failure::Provider, "Violation of PRIMARY KEY constraint");
  service.DuplicaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(errore(), "Violation of PRIMARY KEY constraint in DuplicaClifor");
  EXPECT_EQ(count("BeginTrans"), 1U);
  EXPECT_EQ(count("RollbackTrans"), 1U);
  EXPECT_EQ(connection->recordedErrors().count(), 0U);
  EXPECT_GE(connection->recordedErrors().clears(), 1);
  // The errors are cleared first: those of a rollback that fails are there to be read.
  EXPECT_EQ(named("RollbackTrans").front().options, std::vector<int>{0});
  EXPECT_EQ(connection->operations.back().name, "RollbackTrans");
}

TEST_P(FailingStatementTest, OfThisSystemRollsNothingBack) {
  connection->fail(GetParam(), Failure::Own, "Tipo non corrispondente");
  service.DuplicaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(errore(), "Tipo non corrispondente in DuplicaClifor");
  EXPECT_EQ(count("RollbackTrans"), 0U);
}

TEST_P(FailingStatementTest, OfAnotherLibraryRollsNothingBack) {
  connection->fail(GetParam(), Failure::Foreign, "bad alloc");
  service.DuplicaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(errore(), "bad alloc in DuplicaClifor");
  EXPECT_EQ(count("RollbackTrans"), 0U);
}

INSTANTIATE_TEST_SUITE_P(
    EachStatement, FailingStatementTest,
    ::testing::Values("SELECT * FROM MG1C_CLIFORAGEMUL", "SELECT * FROM MG22_CLIFORDEST WHERE 1=2",
                      "DELETE FROM MG22_CLIFORDEST", "SELECT * FROM MG19_CLIFORVA",
                      "UPDATE CG44_CLIFOR ", "UpdateBatch SELECT * FROM MG22_CLIFORDEST WHERE 1=2",
                      "SELECT * FROM CG44_CLIFOR",
                      "SELECT * FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = 10",
                      "SELECT * FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = 20",
                      "INSERT INTO CG40_ANADITTAINTER",
                      "SELECT * FROM CG31_ANADITTASEDI WHERE CG31_DITTA_CG18 = 10",
                      "SELECT * FROM CG31_ANADITTASEDI WHERE CG31_DITTA_CG18 = 20",
                      "INSERT INTO CG31_ANADITTASEDI", " SELECT     DST.MG17_IDAGENTE",
                      "INSERT INTO CG44_CLIFOR", "INSERT INTO MG19_CLIFORVA",
                      "SELECT * FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = 30",
                      "SELECT * FROM CG31_ANADITTASEDI WHERE CG31_DITTA_CG18 = 40", "CommitTrans"),
    [](const auto& statement) { return "Statement" + std::to_string(statement.index + 1); });

/// A statement of a routine on the way, and the routine's name.
struct RoutineStatement {
  const char* statement;
  const char* routine;
};
class RoutineMessageTest : public DuplicationErrorsTest,
                           public ::testing::WithParamInterface<RoutineStatement> {};

// The routine's message stands there until the public method puts its own in its place.
TEST_P(RoutineMessageTest, NamesTheRoutineUntilTheCallIsOver) {
  std::string before = "no rollback";
  connection->onOperation = [&](const Operation& operation) {
    before = operation.name == "RollbackTrans" ? service.Errore.text() : before;
  };
  connection->fail(GetParam().statement, Failure::Provider, "Rotto");
  service.DuplicaCliFor();
  EXPECT_EQ(before, std::string{"Rotto in "} + GetParam().routine);
  EXPECT_EQ(errore(), "Rotto in DuplicaClifor");
}

INSTANTIATE_TEST_SUITE_P(
    EachStatement, RoutineMessageTest,
    ::testing::Values(
        RoutineStatement{"SELECT * FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = 10",
                         "ControllaIntermedio"},
        RoutineStatement{"SELECT * FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = 20",
                         "ControllaIntermedio"},
        RoutineStatement{"INSERT INTO CG40_ANADITTAINTER", "ControllaIntermedio"},
        RoutineStatement{"SELECT * FROM CG31_ANADITTASEDI WHERE CG31_DITTA_CG18 = 10",
                         "ControllaSedi"},
        RoutineStatement{"SELECT * FROM CG31_ANADITTASEDI WHERE CG31_DITTA_CG18 = 20",
                         "ControllaSedi"},
        RoutineStatement{"INSERT INTO CG31_ANADITTASEDI", "ControllaSedi"}),
    [](const auto& statement) { return "Statement" + std::to_string(statement.index + 1); });

TEST_F(DuplicationErrorsTest, AFailingReducedCopyEndsTheCall) {
  connection->fail(std::string{kMasterInsert} + "30, ", Failure::Provider, "Cannot insert");
  service.DuplicaCliFor();
  EXPECT_EQ(errore(), "Cannot insert in DuplicaClifor");
  EXPECT_EQ(lines("INSERT INTO CG44_CLIFOR").size(), 2U);  // the full copy and the refused one
  EXPECT_TRUE(platform->numberings.empty());
  EXPECT_EQ(count("RollbackTrans"), 1U);
  EXPECT_EQ(count("CommitTrans"), 0U);
}

TEST_F(DuplicationErrorsTest, AFailingBeginOfTheTransactionRollsNothingBack) {
  connection->fail("BeginTrans", Failure::Provider, "Cannot start more transactions");
  service.DuplicaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(errore(), "Cannot start more transactions in DuplicaClifor");
  EXPECT_EQ(count("RollbackTrans"), 0U);
  EXPECT_EQ(connection->recordedErrors().count(), 1U);
  EXPECT_TRUE(lines("INSERT").empty());
}

TEST_F(DuplicationErrorsTest, AnEntryLeftByASkippedFailureMakesALaterFailureRollBack) {
  connection->fail("SELECT MAX(", Failure::Provider, "Incorrect syntax");
  connection->fail("INSERT INTO MG19_CLIFORVA", Failure::Own, "Overflow");
  service.DuplicaCliFor();
  EXPECT_EQ(errore(), "Overflow in DuplicaClifor");
  EXPECT_EQ(count("RollbackTrans"), 1U);
  EXPECT_EQ(connection->recordedErrors().count(), 0U);
}

TEST_F(DuplicationErrorsTest, ARollbackThatFailsLeavesItsErrorAndTheMessageOfTheFirst) {
  connection->fail("INSERT INTO MG19_CLIFORVA", Failure::Provider, "Overflow");
  connection->fail("RollbackTrans", Failure::Provider, "Connection lost");
  service.DuplicaCliFor();
  EXPECT_EQ(errore(), "Overflow in DuplicaClifor");
  ASSERT_EQ(connection->recordedErrors().count(), 1U);
  EXPECT_EQ(connection->recordedErrors().item(0).description, "Connection lost");
}

TEST_F(DuplicationErrorsTest, TheInputKeepsTheNewCodeAfterARollback) {
  connection->fail("INSERT INTO MG19_CLIFORVA", Failure::Provider, "Overflow");
  service.DuplicaCliFor();
  EXPECT_EQ(count("RollbackTrans"), 1U);
  EXPECT_EQ(service.CPInput->Pvar_CliFor, Variant{std::int32_t{101}});
}

TEST_F(DuplicationErrorsTest, TheRunningFlagStaysOnAfterATrappedFailureAndIsClearedOtherwise) {
  const auto flag = [this] {
    (void)service.GetDittaPrincipale();
    const Operation asked = named("CommandExecute").back();
    std::map<std::string, Variant> given{asked.parameters.begin(), asked.parameters.end()};
    return given["@GestioneDuplicazioneCliFor"];
  };
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->answerPrefix("INSERT INTO MG19_CLIFORVA", ResultSet{});
    service.CPInput->Pvar_CliFor = std::int32_t{100};
    service.DuplicaCliFor();
    EXPECT_EQ(flag(), Variant{std::int16_t{0}});
    connection->fail("INSERT INTO MG19_CLIFORVA", failure, "Overflow");
    service.CPInput->Pvar_CliFor = std::int32_t{100};
    service.DuplicaCliFor();
    ASSERT_EQ(service.Stato, Variant{std::int16_t{99}});
    EXPECT_EQ(flag(), Variant{std::int16_t{1}});
  }
}

TEST_F(DuplicationErrorsTest, AMissingSourceRowNeitherCommitsNorRollsBack) {
  service.Errore = "prima";
  connection->answerPrefix("SELECT * FROM CG44_CLIFOR", rowSet({"CG44_CLIFOR"}, {}));
  service.DuplicaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(service.Errore, Variant{"prima"});
  EXPECT_EQ(count("BeginTrans"), 1U);
  EXPECT_EQ(count("CommitTrans") + count("RollbackTrans"), 0U);
  EXPECT_TRUE(lines("INSERT").empty());
  EXPECT_TRUE(platform->numberings.empty());
}

TEST_F(DuplicationErrorsTest, AMissingColumnOfTheSourceRollsNothingBack) {
  connection->answerPrefix("SELECT * FROM CG44_CLIFOR", rowSet({"CG44_CLIFOR"}, {101}));
  service.DuplicaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(errore().ends_with(" in DuplicaClifor")) << errore();
  EXPECT_EQ(count("CommitTrans") + count("RollbackTrans"), 0U);
}

TEST_F(DuplicationErrorsTest, TheNextCallStartsWithAFreshState) {
  connection->fail("UPDATE CG44_CLIFOR ", Failure::Provider, "Deadlock");
  service.DuplicaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  connection->answerPrefix("UPDATE CG44_CLIFOR ", ResultSet{});
  service.DuplicaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(errore(), "Deadlock in DuplicaClifor");
  EXPECT_EQ(count("CommitTrans"), 1U);
}

}  // namespace
}  // namespace azcoll::test
