#include <string>

#include "providers/provider.h"

namespace azcoll::test {
namespace {

using Results = OnProvider;
using Lines = std::vector<std::string>;

TEST_P(Results, CountsOfChangedRowsAreExact) {
  run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY, C2 INT)");
  EXPECT_EQ(affectedBy("INSERT INTO T1_PROVA VALUES (1, 10)"), 1);
  EXPECT_EQ(affectedBy("INSERT INTO T1_PROVA VALUES (2, 10)"), 1);
  EXPECT_EQ(affectedBy("UPDATE T1_PROVA SET C2 = 11"), 2);
  EXPECT_EQ(affectedBy("UPDATE T1_PROVA SET C2 = 12 WHERE C1 = 99"), 0);
  EXPECT_EQ(affectedBy("DELETE FROM T1_PROVA"), 2);
  EXPECT_EQ(run("DELETE FROM T1_PROVA"), nullptr);
}

TEST_P(Results, AResultWithoutRowsHasItsColumns) {
  run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY, C2 {nvarchar}(10))");
  const auto rows = run("SELECT * FROM T1_PROVA WHERE 1=2");
  ASSERT_NE(rows, nullptr);
  EXPECT_EQ(rows->recordCount(), 0);
  EXPECT_TRUE(rows->atEnd());
  EXPECT_EQ(rows->fields().count(), 2U);
  EXPECT_NO_THROW(static_cast<void>(rows->fields().item("c2")));
}

TEST_P(Results, EveryRowOfAResultOfManyBlocksArrivesInOrder) {
  run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY, C2 {nvarchar}(30))");
  connection().beginTrans();
  constexpr int kRows = 1'537;
  for (int row = 0; row < kRows; ++row) {
    const std::string number = std::to_string(row);
    run("INSERT INTO T1_PROVA VALUES (" + number + ", " +
        (row % 7 == 0 ? "NULL" : "{n}'riga " + number + "'") + ")");
  }
  connection().commitTrans();
  const auto rows = run("SELECT C1, C2 FROM T1_PROVA ORDER BY C1");
  ASSERT_EQ(rows->recordCount(), kRows);
  for (int row = 0; row < kRows; ++row, rows->moveNext()) {
    ASSERT_EQ(rows->fields().item("C1").value(), Variant{std::int32_t{row}});
    const Variant expected = row % 7 == 0 ? Variant{kNull} : Variant{"riga " + std::to_string(row)};
    ASSERT_EQ(rows->fields().item("C2").value(), expected) << row;
  }
  EXPECT_TRUE(rows->atEnd());
}

TEST_P(Results, SeveralQueriesGiveSeveralResults) {
  AZCOLL_NEEDS(SeveralResults);
  const auto first = run("SELECT 1 AS C1; SELECT 2 AS C2, 3 AS C3");
  ASSERT_EQ(first->recordCount(), 1);
  EXPECT_EQ(first->fields().item("C1").value().text(), "1");
  const auto second = first->nextRecordset();
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(second->fields().item("C3").value().text(), "3");
  EXPECT_EQ(second->nextRecordset(), nullptr);
}

TEST_P(Results, AnOpenResultDoesNotBlockTheConnection) {
  run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY)");
  for (int row = 1; row <= 5; ++row) {
    run("INSERT INTO T1_PROVA VALUES (" + std::to_string(row) + ")");
  }
  const auto outer = run("SELECT C1 FROM T1_PROVA ORDER BY C1");
  int seen = 0;
  for (; !outer->atEnd(); outer->moveNext()) {
    const std::string key = outer->fields().item("C1").value().text();
    const auto inner = run("SELECT C1 FROM T1_PROVA WHERE C1 = " + key);
    EXPECT_EQ(inner->recordCount(), 1);
    EXPECT_EQ(affectedBy("UPDATE T1_PROVA SET C1 = C1 + 100 WHERE C1 = " + key), 1);
    ++seen;
  }
  EXPECT_EQ(seen, 5);
}

TEST_P(Results, AFailureCarriesStateAndTextAndTheConnectionGoesOn) {
  run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY)");
  run("INSERT INTO T1_PROVA VALUES (1)");
  EXPECT_EQ(connection().errors().count(), 0U);
  const std::string text = "INSERT INTO T1_PROVA VALUES (1)";
  const Error error = failureOf([&] { run(text); });
  EXPECT_TRUE(error.fromProvider());
  EXPECT_EQ(error.info().statement, text);
  EXPECT_FALSE(error.description().empty());
  EXPECT_FALSE(error.description().starts_with('['));
  EXPECT_FALSE(error.info().connectionLost);
  EXPECT_FALSE(error.info().transactionLost);
  ASSERT_GE(connection().errors().count(), 1U);
  EXPECT_EQ(connection().errors().item(0).description, error.description());
  // A success leaves the collection alone.
  EXPECT_EQ(lines("SELECT C1 FROM T1_PROVA"), (Lines{"1"}));
  EXPECT_GE(connection().errors().count(), 1U);
  connection().errors().clear();
  EXPECT_EQ(connection().errors().count(), 0U);
}

TEST_P(Results, ADuplicateKeyHasTheStateOfABrokenRule) {
  AZCOLL_NEEDS(SqlStates);
  run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY)");
  run("INSERT INTO T1_PROVA VALUES (1)");
  const Error error = failureOf([&] { run("INSERT INTO T1_PROVA VALUES (1)"); });
  EXPECT_EQ(error.info().sqlState.substr(0, 2), "23") << error.description();
}

TEST_P(Results, AMisspelledStatementIsAnErrorOfTheProvider) {
  const Error error = failureOf([&] { run("SELEKT 1"); });
  EXPECT_TRUE(error.fromProvider());
  EXPECT_GE(connection().errors().count(), 1U);
}

TEST_P(Results, RowsStayReadableWithoutTheConnection) {
  run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY)");
  run("INSERT INTO T1_PROVA VALUES (4)");
  const auto rows = open("SELECT C1 FROM T1_PROVA");
  rows->setActiveConnection(nullptr);
  run("DELETE FROM T1_PROVA");
  ASSERT_EQ(rows->recordCount(), 1);
  EXPECT_EQ(rows->fields().item("C1").value().text(), "4");
}

TEST_P(Results, AStatementThatTakesTooLongIsGivenUp) {
  AZCOLL_NEEDS(TimeLimits);
  connection().setCommandTimeout(1);
  const Error error = failureOf([&] { run(provider().slowStatement); });
  EXPECT_TRUE(error.fromProvider());
  connection().setCommandTimeout(100);
  EXPECT_EQ(lines("SELECT 1 AS C1"), (Lines{"1"}));
}

TEST_P(Results, AClosedConnectionRefusesToWork) {
  connection().close();
  EXPECT_FALSE(connection().isOpen());
  EXPECT_FALSE(failureOf([&] { run("SELECT 1"); }).fromProvider());
  EXPECT_FALSE(failureOf([&] { connection().beginTrans(); }).fromProvider());
  EXPECT_FALSE(failureOf([&] { connection().close(); }).fromProvider());
}

INSTANTIATE_TEST_SUITE_P(Providers, Results, testing::ValuesIn(providerNames()), nameOfCase);

}  // namespace
}  // namespace azcoll::test
