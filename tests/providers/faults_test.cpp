#ifdef AZCOLL_WITH_ODBC

#include <string>

#include "data/decimal.h"
#include "data/tracing.h"
#include "providers/fault_fixture.h"

namespace azcoll::test {
namespace {

TEST_F(Faults, AConnectionLostInAFetchIsOneErrorAndNoHalfResult) {
  for (const char* const reread : {"Reread=none", "Reread=bound", "Reread=block"}) {
    connect(reread);
    connection_->beginTrans();
    const Error error = failureOf([&] { run("LINK LOST"); });
    EXPECT_TRUE(error.fromProvider());
    EXPECT_EQ(error.info().sqlState, "08S01");
    EXPECT_EQ(error.info().nativeNumber, 10054);
    EXPECT_TRUE(error.info().connectionLost);
    EXPECT_TRUE(error.info().transactionLost);
    EXPECT_EQ(connection_->errors().count(), 1U);
    // Nothing works any more, and nothing hangs or crashes.
    EXPECT_TRUE(failureOf([&] { run("STATE"); }).info().connectionLost);
    EXPECT_TRUE(failureOf([&] { connection_->rollbackTrans(); }).fromProvider());
    connection_->close();
    EXPECT_FALSE(connection_->isOpen());
  }
}

TEST_F(Faults, ClosingUndoesAnOpenTransaction) {
  connect();
  connection_->beginTrans();
  connection_->close();  // the driver refuses to disconnect otherwise
  EXPECT_FALSE(connection_->isOpen());
}

TEST_F(Faults, DiagnosticsAreReadWholeAndAll) {
  connect();
  const Error error = failureOf([&] { run("LONG DIAGNOSTICS"); });
  EXPECT_EQ(error.description(), std::string(5'000, 'm') + "FINE");
  EXPECT_EQ(error.info().sqlState, "23000");
  EXPECT_EQ(error.info().nativeNumber, 2627);
  EXPECT_EQ(error.info().statement, "LONG DIAGNOSTICS");
  ASSERT_EQ(connection_->errors().count(), 3U);
  EXPECT_EQ(connection_->errors().item(1).description, "seconda riga");
  EXPECT_EQ(connection_->errors().item(1).nativeNumber, 3621);
  EXPECT_EQ(connection_->errors().item(2).description, "terza riga [con parentesi]");
}

TEST_F(Faults, ADriverThatGivesNoReasonStillGivesAnError) {
  connect();
  const Error error = failureOf([&] { run("SILENT"); });
  EXPECT_TRUE(error.fromProvider());
  EXPECT_FALSE(error.description().empty());
  EXPECT_EQ(connection_->errors().count(), 1U);
}

TEST_F(Faults, AnErrorWithoutAnExplanationGetsWhatIsKnown) {
  connect("SERVER=prova.it;Port=1433");
  EXPECT_EQ(failureOf([&] { run("UNKNOWN"); }).description(),
            "Unknown error (server prova.it:1433, stato HY000, numero 20004)");
  EXPECT_EQ(failureOf([&] { run("NO TEXT"); }).description(),
            "Errore senza spiegazioni del driver (server prova.it:1433, stato 07S01, numero 7)");
  EXPECT_EQ(failureOf([&] { run("UNKNOWN LOSS"); }).description(),
            "Unknown error (connessione caduta, server prova.it:1433, stato 08S01, numero 20004)");
}

TEST_F(Faults, LeadingRowCountsOfADeclareAreNotTheResult) {
  connect();
  const auto rows = run("LEADING COUNTS");
  ASSERT_NE(rows, nullptr);
  EXPECT_EQ(rows->fields().item("C1").value(), Variant{std::int32_t{42}});
  EXPECT_EQ(rows->nextRecordset(), nullptr);
  EXPECT_EQ(affected_, 3);
}

TEST_F(Faults, ACountThatTheDriverDoesNotGiveIsUnknown) {
  connect();
  EXPECT_EQ(run("NO COUNT"), nullptr);
  EXPECT_EQ(affected_, -1);
}

TEST_F(Faults, NamesInLowerCaseAreFound) {
  connect();
  const auto rows = run("LOWER NAMES");
  EXPECT_EQ(rows->fields().item("DITTA").value(), Variant{std::int32_t{10}});
  EXPECT_EQ(rows->fields().item(std::size_t{0}).name(), "ditta");
}

TEST_F(Faults, ATextThatIsNoUtf16IsRefused) {
  connect();
  EXPECT_EQ(failureOf([&] { run("LONE SURROGATE"); }).info().sqlState, "22021");
  EXPECT_EQ(state(), "1|0|0");
}

TEST_F(Faults, ADecimalWithoutAnExactValueIsRefused) {
  connect();
  EXPECT_EQ(failureOf([&] { run("HUGE DECIMAL"); }).info().sqlState, "22003");
  EXPECT_EQ(value("FINE DECIMAL"),
            Variant{Decimal::parse("-0.0000000000000000000000000000000000001").value()});
}

TEST_F(Faults, NoTemporaryTableIsLostByPreparing) {
  connect();  // the driver refuses to prepare
  EXPECT_EQ(value("SELECT 1 INTO #T").text(), "SELECT 1 INTO #T");
}

TEST_F(Faults, TextReachesTheDriverUnchanged) {
  connect();
  const std::string text = "SELECT '{d ''2024''} ? però €😀' -- {fn x}";
  EXPECT_EQ(value(text), Variant{text});
}

TEST_F(Faults, AProcedureIsCalledWithTheParametersOfItsDeclaration) {
  connect();
  const std::shared_ptr<Command> command = connection_->newCommand();
  command->setActiveConnection(connection_);
  command->setCommandText("P_PROVA");
  command->setCommandType(CommandOption::StoredProcedure);
  command->setCommandTimeout(0);
  command->setPrepared(true);
  ASSERT_EQ(command->parameters().count(), 3U);
  EXPECT_EQ(command->parameters().item(std::size_t{0}).name(), "@codice");
  command->parameters().item("@CODICE").setValue("12");  // a text that is a number
  command->parameters().item("@Data").setValue(Date::of(2024, 1, 1).value());
  EXPECT_EQ(command->parameters().item("@TESTO").direction(), ParameterDirection::InputOutput);
  EXPECT_FALSE(
      failureOf([&] { static_cast<void>(command->parameters().item("@ALTRO")); }).fromProvider());
  const auto rows = command->execute(affected_, CommandOption::StoredProcedure);
  ASSERT_NE(rows, nullptr);
  EXPECT_EQ(rows->fields().item("TESTO").value(), Variant{"{call P_PROVA(?,?,?)}"});
  EXPECT_EQ(rows->fields().item("PARAMETRI").value(), Variant{std::int32_t{3}});
  // Longer than the length that the driver told, and there only after the results.
  EXPECT_EQ(command->parameters().item("@testo").value(), Variant{"uscita di 12"});
  command->setActiveConnection(nullptr);
  EXPECT_FALSE(failureOf([&] {
                 command->execute(affected_, CommandOption::StoredProcedure);
               }).fromProvider());
}

TEST_F(Faults, AnOutputThatWasCutIsAnError) {
  connect("Outputs=cut");
  const std::shared_ptr<Command> command = connection_->newCommand();
  command->setActiveConnection(connection_);
  command->setCommandText("dbo.P_PROVA");
  command->setCommandType(CommandOption::StoredProcedure);
  command->parameters().item("@codice").setValue(std::int32_t{1});
  EXPECT_EQ(
      failureOf([&] { command->execute(affected_, CommandOption::Unspecified); }).info().sqlState,
      "01004");
}

TEST_F(Faults, AParameterLeftEmptyTakesItsDefaultOrTellsWhy) {
  connect("Defaults=none");
  const std::shared_ptr<Command> command = connection_->newCommand();
  command->setActiveConnection(connection_);
  command->setCommandText("P_PROVA");
  command->setCommandType(CommandOption::StoredProcedure);
  EXPECT_EQ(
      failureOf([&] { command->execute(affected_, CommandOption::Unspecified); }).info().sqlState,
      "07S01");
  connect();
  command->setActiveConnection(connection_);
  EXPECT_NO_THROW(command->execute(affected_, CommandOption::Unspecified));
}

TEST_F(Faults, AValueThatDoesNotConvertIsNotSent) {
  connect();
  const std::shared_ptr<Command> command = connection_->newCommand();
  command->setActiveConnection(connection_);
  command->setCommandText("P_PROVA");
  command->setCommandType(CommandOption::StoredProcedure);
  command->parameters().item("@codice").setValue("dodici");
  EXPECT_FALSE(
      failureOf([&] { command->execute(affected_, CommandOption::Unspecified); }).fromProvider());
  EXPECT_EQ(connection_->errors().count(), 0U);
}

TEST_F(Faults, AProcedureNameHoldsNothingElse) {
  connect();
  for (const char* const name : {"", "P(1)", "P; DROP TABLE T", "P}"}) {
    EXPECT_FALSE(failureOf([&] {
                   connection_->execute(name, affected_, CommandOption::StoredProcedure);
                 }).fromProvider())
        << name;
  }
}

TEST_F(Faults, AnotherProvidersConnectionIsRefusedByACommand) {
  connect();
  const std::shared_ptr<Command> command = connection_->newCommand();
  EXPECT_FALSE(failureOf([&] {
                 command->setActiveConnection(
                     newConnectionFor("Provider=embedded;Data Source=:memory:"));
               }).fromProvider());
}

TEST_F(Faults, ChangesGoToTheTableOfTheQueryWhenTheDriverDoesNotTellIt) {
  connect();
  const auto rows = run("SELECT * FROM T1_PROVA");
  rows->fields().item("C2_NOME").setValue("due");
  rows->update();
  rows->updateBatch(Affect::All);
  EXPECT_EQ(value("LAST CHANGE").text(),
            "UPDATE T1_PROVA SET c2_nome = ? WHERE c1_id = ? AND c2_nome = ? <- -9:due 4:1 -9:uno");
}

constexpr const char* kJoin =
    "SELECT CASE WHEN 1=1 THEN 1 END AS PRIMA, A.*, B.K1, B.K2 AS NOME, K3"
    " FROM T1_PROVA A INNER JOIN T2_PROVA AS B WITH(NOLOCK) ON B.K1 = A.C1_ID";

TEST_F(Faults, EveryColumnOfAJoinIsWrittenToItsOwnTable) {
  connect();
  auto rows = run(kJoin);
  rows->fields().item("C2_NOME").setValue("x");
  rows->updateBatch(Affect::All);
  EXPECT_EQ(value("LAST CHANGE").text(),
            "UPDATE T1_PROVA SET c2_nome = ? WHERE c1_id = ? AND c2_nome = ? <- -9:x 4:7 -9:uno");
  rows = run(kJoin);
  rows->fields().item("NOME").setValue(kNull);  // by its name in the table, not in the result
  rows->updateBatch(Affect::All);
  EXPECT_EQ(value("LAST CHANGE").text(),
            "UPDATE T2_PROVA SET K2 = ? WHERE K1 = ? AND K2 = ? <- -9:NULL 4:9 -9:due");
  for (const char* const column : {"PRIMA", "K1"}) {  // computed; numbered by the database
    rows = run(kJoin);
    rows->fields().item(column).setValue(std::int32_t{5});
    EXPECT_FALSE(failureOf([&] { rows->updateBatch(Affect::All); }).fromProvider()) << column;
  }
}

TEST_F(Faults, ATSqlServerGetsMomentsAsTextsThatItReadsExactly) {
  for (const auto& [moment, sent] :
       {std::pair{Date::of(2024, 1, 2).value(), "20240102"},
        std::pair{Date::of(2024, 1, 2, 3, 4, 5).value(), "20240102 03:04:05"},
        std::pair{Date::of(2024, 1, 2, 3, 4, 5, 7).value(), "20240102 03:04:05.007"}}) {
    connect("Server=tsql");
    const auto rows = run(kJoin);
    rows->fields().item("K3").setValue(moment);
    rows->updateBatch(Affect::All);
    EXPECT_EQ(value("LAST CHANGE").text(),
              std::string{"UPDATE T2_PROVA SET K3 = ? WHERE K1 = ? AND K3 IS NULL <- 12:"} + sent +
                  " 4:9");
  }
}

TEST_F(Faults, WhatTheQueryLeavesOpenIsNotChanged) {
  connect();
  // A function among the sources: its columns cannot be traced, those of the table can.
  auto rows = run("SELECT 1 AS PRIMA, T1_PROVA.*, X.K1, X.K2 NOME, X.K3 FROM T1_PROVA, F(1) X");
  rows->fields().item("NOME").setValue("x");
  EXPECT_FALSE(failureOf([&] { rows->updateBatch(Affect::All); }).fromProvider());
  rows = run("SELECT 1 AS PRIMA, T1_PROVA.*, X.K1, X.K2 NOME, X.K3 FROM T1_PROVA, F(1) X");
  rows->fields().item("C2_NOME").setValue("x");
  EXPECT_NO_THROW(rows->updateBatch(Affect::All));
  // The columns of the table are not those of the result.
  rows = run("SELECT A.*, A.*, A.C1_ID, A.C1_ID FROM T1_PROVA A");
  rows->fields().item("C2_NOME").setValue("x");
  EXPECT_FALSE(failureOf([&] { rows->updateBatch(Affect::All); }).fromProvider());
}

TEST_F(Faults, AChangeWhoseCountIsNotGivenIsAnError) {
  connect("Counts=none");
  const auto rows = run("SELECT * FROM T1_PROVA");
  rows->fields().item("C2_NOME").setValue("due");
  rows->update();
  EXPECT_TRUE(failureOf([&] { rows->updateBatch(Affect::All); }).fromProvider());
}

TEST_F(Faults, ThePasswordIsNeverShown) {
  const std::string behaviour = "Connect=refused";
  connection_ = newConnectionFor(faultString(behaviour));
  const Error refused = failureOf([&] { connection_->open("", "", CommandOption::Unspecified); });
  EXPECT_TRUE(refused.fromProvider());
  EXPECT_NE(refused.description().find("UID=prova"), std::string::npos);
  EXPECT_NE(refused.description().find("PWD=***"), std::string::npos) << refused.description();
  EXPECT_EQ(refused.description().find(kPassword), std::string::npos);
  EXPECT_FALSE(connection_->isOpen());

  connect();
  EXPECT_EQ(connection_->connectionString().find(kPassword), std::string::npos);
  const Error echoed = failureOf([&] { run("ECHO PASSWORD"); });
  EXPECT_NE(echoed.description().find("***"), std::string::npos);
  EXPECT_EQ(echoed.description().find(kPassword), std::string::npos);
  EXPECT_EQ(connection_->errors().item(0).description.find(kPassword), std::string::npos);
  const Error named = failureOf([&] { run(std::string{"ECHO PASSWORD"}); });
  EXPECT_EQ(named.info().statement.find(kPassword), std::string::npos);
}

TEST_F(Faults, APasswordGivenToOpenIsNeverShownEither) {
  connection_ = newConnectionFor(std::string{"Driver="} + AZCOLL_FAULT_DRIVER +
                                 ";Connect=refused;PWD=vecchia");
  const Error error =
      failureOf([&] { connection_->open("prova", "nu}ov@;1", CommandOption::Unspecified); });
  EXPECT_EQ(error.description().find("nu}ov@;1"), std::string::npos) << error.description();
  EXPECT_EQ(error.description().find("nu}}ov@;1"), std::string::npos) << error.description();
  EXPECT_EQ(error.description().find("vecchia"), std::string::npos) << error.description();
}

TEST_F(Faults, NoTraceShowsThePassword) {
  std::string seen;
  ConnessioneTracciata traced{newConnectionFor(faultString("Connect=refused")),
                              [&](const TraceEntry& entry) {
                                seen += entry.operation + entry.sql;
                                seen += entry.error ? entry.error->description : "";
                              }};
  static_cast<void>(failureOf([&] { traced.open("", "", CommandOption::Unspecified); }));
  EXPECT_NE(seen.find("Login failed"), std::string::npos);
  EXPECT_EQ(seen.find(kPassword), std::string::npos) << seen;
}

TEST_F(Faults, ADriverThatIsNotThereIsAnErrorWithAState) {
  const auto connection = newConnectionFor("Driver=/nessun/driver.so;PWD=Segret@9");
  const Error error = failureOf([&] { connection->open("", "", CommandOption::Unspecified); });
  EXPECT_TRUE(error.fromProvider());
  EXPECT_EQ(error.info().sqlState, "01000") << error.description();
  EXPECT_EQ(error.description().find("Segret@9"), std::string::npos);
}

}  // namespace
}  // namespace azcoll::test

#endif
