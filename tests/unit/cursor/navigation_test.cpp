#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "cursor/client_cursor.h"
#include "fake_connection.h"

namespace azcoll::cursor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Positions, fields, filters, searches, opening and closing of a client-side recordset.
class Navigation : public testing::Test {
 protected:
  std::shared_ptr<FakeConnection> connection = std::make_shared<FakeConnection>();
  std::shared_ptr<Recordset> rows = openClientCursor(resultOf(customers()), connection);

  /// Names of the rows shown, from the first one on; leaves the recordset at its end.
  std::vector<std::string> names() {
    std::vector<std::string> result;
    if (rows->recordCount() > 0) {
      for (rows->moveFirst(); !rows->atEnd(); rows->moveNext()) {
        result.push_back(textOf(*rows, "RAGSOC1"));
      }
    }
    return result;
  }

  static std::shared_ptr<Recordset> emptyRecordset() {
    ResultSet set = customers();
    set.values.clear();
    return openClientCursor(resultOf(std::move(set)), nullptr);
  }
};

TEST_F(Navigation, StartsOnTheFirstRow) {
  EXPECT_TRUE(rows->isOpen());
  EXPECT_EQ(rows->recordCount(), 3);
  EXPECT_FALSE(rows->atStart());
  EXPECT_FALSE(rows->atEnd());
  EXPECT_EQ(textOf(*rows, "RAGSOC1"), "Rossi");
}

TEST_F(Navigation, WalksToTheEndAndBackToTheFirstRow) {
  EXPECT_THAT(names(), ElementsAre("Rossi", "Bianchi", "ROSSI"));
  EXPECT_TRUE(rows->atEnd());
  EXPECT_FALSE(rows->atStart());
  rows->moveFirst();
  EXPECT_EQ(textOf(*rows, "CLIFOR1"), "10");
}

TEST_F(Navigation, FailsWhenMovingBeyondTheEnd) {
  names();
  EXPECT_EQ(failureOf([&] { rows->moveNext(); }), "Spostamento oltre la fine del recordset");
  EXPECT_TRUE(rows->atEnd());
}

TEST_F(Navigation, FailsWhenReadingWithoutACurrentRow) {
  names();
  EXPECT_EQ(failureOf([&] { textOf(*rows, "RAGSOC1"); }), "Nessuna riga corrente");
  EXPECT_EQ(failureOf([&] { rows->fields().item("RAGSOC1").setValue(Variant{"x"}); }),
            "Nessuna riga corrente");
}

TEST_F(Navigation, IsAtBothEndsWhenThereAreNoRows) {
  const auto empty = emptyRecordset();
  EXPECT_EQ(empty->recordCount(), 0);
  EXPECT_TRUE(empty->atStart());
  EXPECT_TRUE(empty->atEnd());
  EXPECT_EQ(empty->fields().count(), 4U);
  EXPECT_EQ(failureOf([&] { empty->moveFirst(); }), "Nessuna riga corrente");
  EXPECT_EQ(failureOf([&] { empty->moveNext(); }), "Spostamento oltre la fine del recordset");
}

TEST_F(Navigation, FindsFieldsByNameAndPosition) {
  Fields& fields = rows->fields();
  EXPECT_EQ(fields.count(), 4U);
  EXPECT_EQ(fields.item("ragsoc1").name(), "RAGSOC1");
  EXPECT_EQ(fields.item(std::size_t{1}).value(), Variant{10});
  EXPECT_EQ(fields.item("SCONTO1").value().text(), "5.50");
  EXPECT_EQ(&fields.item("DITTA1"), &fields.item(std::size_t{0}));
}

TEST_F(Navigation, NamesTheFieldThatIsMissing) {
  EXPECT_EQ(failureOf([&] { static_cast<void>(rows->fields().item("CG44_CLIFOR")); }),
            "Elemento non trovato nella raccolta: CG44_CLIFOR");
  EXPECT_EQ(failureOf([&] { static_cast<void>(rows->fields().item(std::size_t{4})); }),
            "Elemento non trovato nella raccolta: 4");
}

TEST_F(Navigation, LetsAFieldFollowTheCurrentRow) {
  const Field& name = rows->fields().item("RAGSOC1");
  EXPECT_EQ(name.value(), Variant{"Rossi"});
  rows->moveNext();
  EXPECT_EQ(name.value(), Variant{"Bianchi"});
}

TEST_F(Navigation, IgnoresAnIncompleteLastRow) {
  ResultSet set = customers();
  set.values.pop_back();
  const auto cut = openClientCursor(resultOf(std::move(set)), nullptr);
  EXPECT_EQ(cut->recordCount(), 2);
}

TEST_F(Navigation, AcceptsAResultWithoutColumns) {
  const auto bare = openClientCursor(resultOf(ResultSet{}), nullptr);
  EXPECT_EQ(bare->recordCount(), 0);
  EXPECT_EQ(bare->fields().count(), 0U);
  EXPECT_EQ(failureOf([&] { static_cast<void>(bare->fields().item("A")); }),
            "Elemento non trovato nella raccolta: A");
}

TEST_F(Navigation, ShowsOnlyTheFilteredRows) {
  rows->setFilter("RAGSOC1 = 'rossi'");
  EXPECT_EQ(rows->recordCount(), 2);
  EXPECT_EQ(textOf(*rows, "DITTA1"), "1");
  EXPECT_THAT(names(), ElementsAre("Rossi", "ROSSI"));
  rows->setFilter("RAGSOC1 = 'rossi' AND DITTA1 = 2");
  EXPECT_THAT(names(), ElementsAre("ROSSI"));
}

TEST_F(Navigation, ShowsAllRowsWithoutAFilter) {
  rows->setFilter("DITTA1 = 2");
  rows->setFilter(" ");
  EXPECT_EQ(rows->recordCount(), 3);
  EXPECT_EQ(textOf(*rows, "CLIFOR1"), "10");
  EXPECT_THAT(names(), ElementsAre("Rossi", "Bianchi", "ROSSI"));
}

TEST_F(Navigation, IsEmptyWhenAFilterShowsNothing) {
  rows->setFilter("DITTA1 = 3");
  EXPECT_EQ(rows->recordCount(), 0);
  EXPECT_TRUE(rows->atStart());
  EXPECT_TRUE(rows->atEnd());
  EXPECT_EQ(failureOf([&] { rows->moveFirst(); }), "Nessuna riga corrente");
}

TEST_F(Navigation, KeepsItsFilterWhenTheNextOneIsWrong) {
  rows->setFilter("DITTA1 = 2");
  EXPECT_NE(failureOf([&] { rows->setFilter("DITTA1 = "); }), "no failure");
  EXPECT_EQ(failureOf([&] { rows->setFilter("DITTA9 = 1"); }),
            "Elemento non trovato nella raccolta: DITTA9");
  EXPECT_NE(failureOf([&] { rows->setFilter("DITTA1 = 'x'"); }), "no failure");
  EXPECT_THAT(names(), ElementsAre("ROSSI"));
}

TEST_F(Navigation, FindsForwardFromTheFirstRow) {
  rows->moveNext();
  rows->find("CLIFOR1 = 10", 0, SearchDirection::Forward, Bookmark::First);
  EXPECT_EQ(textOf(*rows, "DITTA1"), "1");
  rows->find("CLIFOR1 = 10", 1, SearchDirection::Forward, Bookmark::First);
  EXPECT_EQ(textOf(*rows, "DITTA1"), "2");
}

TEST_F(Navigation, FindsFromTheCurrentRow) {
  rows->find("CLIFOR1 = 10", 0, SearchDirection::Forward, Bookmark::Current);
  EXPECT_EQ(textOf(*rows, "DITTA1"), "1");
  rows->find("CLIFOR1 = 10", 1, SearchDirection::Forward, Bookmark::Current);
  EXPECT_EQ(textOf(*rows, "DITTA1"), "2");
  rows->find("RAGSOC1 LIKE 'R*'", 1, SearchDirection::Backward, Bookmark::Current);
  EXPECT_EQ(textOf(*rows, "DITTA1"), "1");
}

TEST_F(Navigation, FindsBackwardFromTheLastRow) {
  rows->find("DITTA1 = 1", 0, SearchDirection::Backward, Bookmark::Last);
  EXPECT_EQ(textOf(*rows, "RAGSOC1"), "Bianchi");
}

TEST_F(Navigation, EndsBehindTheLastRowWhenNothingIsFound) {
  rows->find("DITTA1 = 3", 0, SearchDirection::Forward, Bookmark::First);
  EXPECT_TRUE(rows->atEnd());
  EXPECT_EQ(
      failureOf([&] { rows->find("DITTA1 = 1", 0, SearchDirection::Forward, Bookmark::Current); }),
      "Nessuna riga corrente");
  rows->find("DITTA1 = 3", 0, SearchDirection::Backward, Bookmark::Last);
  EXPECT_TRUE(rows->atStart());
  EXPECT_FALSE(rows->atEnd());
  rows->moveNext();
  EXPECT_EQ(textOf(*rows, "RAGSOC1"), "Rossi");
}

TEST_F(Navigation, FindsNothingBeyondItsRows) {
  for (const std::int64_t skip :
       {std::int64_t{3}, std::int64_t{-1}, std::int64_t{4},
        std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
    rows->find("DITTA1 > 0", skip, SearchDirection::Forward, Bookmark::First);
    EXPECT_TRUE(rows->atEnd()) << skip;
  }
}

TEST_F(Navigation, FindsAmongTheFilteredRowsOnly) {
  rows->setFilter("CLIFOR1 = 10");
  rows->find("RAGSOC1 = 'Bianchi'", 0, SearchDirection::Forward, Bookmark::First);
  EXPECT_TRUE(rows->atEnd());
  rows->find("DITTA1 = 2", 0, SearchDirection::Forward, Bookmark::First);
  EXPECT_EQ(textOf(*rows, "RAGSOC1"), "ROSSI");
}

TEST_F(Navigation, StaysPutWhenASearchIsWrong) {
  rows->moveNext();
  EXPECT_NE(failureOf([&] {
              rows->find("DITTA1 = 1 AND CLIFOR1 = 10", 0, SearchDirection::Forward,
                         Bookmark::First);
            }),
            "no failure");
  EXPECT_EQ(textOf(*rows, "RAGSOC1"), "Bianchi");
}

TEST_F(Navigation, SearchesNoRowsWithoutFailing) {
  const auto empty = emptyRecordset();
  empty->find("DITTA1 = 1", 0, SearchDirection::Forward, Bookmark::First);
  EXPECT_TRUE(empty->atEnd());
  empty->find("DITTA1 = 1", 0, SearchDirection::Backward, Bookmark::Last);
  EXPECT_TRUE(empty->atEnd());
  EXPECT_TRUE(empty->atStart());
  EXPECT_EQ(failureOf([&] { empty->moveNext(); }), "Spostamento oltre la fine del recordset");
}

TEST_F(Navigation, FailsInEveryOperationWhenClosed) {
  rows->close();
  EXPECT_FALSE(rows->isOpen());
  const std::string closed = "Recordset chiuso";
  EXPECT_EQ(failureOf([&] { rows->close(); }), closed);
  EXPECT_EQ(failureOf([&] { static_cast<void>(rows->recordCount()); }), closed);
  EXPECT_EQ(failureOf([&] { static_cast<void>(rows->atStart()); }), closed);
  EXPECT_EQ(failureOf([&] { static_cast<void>(rows->atEnd()); }), closed);
  EXPECT_EQ(failureOf([&] { rows->moveFirst(); }), closed);
  EXPECT_EQ(failureOf([&] { rows->moveNext(); }), closed);
  EXPECT_EQ(failureOf([&] { static_cast<void>(rows->fields()); }), closed);
  EXPECT_EQ(failureOf([&] { rows->setFilter("A = 1"); }), closed);
  EXPECT_EQ(failureOf([&] { rows->find("A = 1", 0, SearchDirection::Forward, Bookmark::First); }),
            closed);
  EXPECT_EQ(failureOf([&] { rows->addNew(); }), closed);
  EXPECT_EQ(failureOf([&] { rows->update(); }), closed);
  EXPECT_EQ(failureOf([&] { rows->cancelUpdate(); }), closed);
  EXPECT_EQ(failureOf([&] { rows->updateBatch(Affect::All); }), closed);
  EXPECT_EQ(failureOf([&] { static_cast<void>(rows->nextRecordset()); }), closed);
}

TEST_F(Navigation, KeepsFieldsUsableAcrossClosingAndOpening) {
  const Fields& fields = rows->fields();
  Field& last = rows->fields().item("SCONTO1");
  rows->close();
  EXPECT_EQ(failureOf([&] { static_cast<void>(last.value()); }), "Recordset chiuso");
  EXPECT_EQ(failureOf([&] { static_cast<void>(last.name()); }), "Recordset chiuso");
  EXPECT_EQ(failureOf([&] { static_cast<void>(fields.count()); }), "Recordset chiuso");

  ResultSet narrow;
  narrow.columns = {column("A")};
  narrow.values = {Variant{1}};
  connection->results.push_back(resultOf(std::move(narrow)));
  rows->open("SELECT A", connection, CursorType::Keyset, LockType::BatchOptimistic,
             CommandOption::Text);
  EXPECT_EQ(failureOf([&] { static_cast<void>(last.value()); }),
            "Elemento non trovato nella raccolta: 3");
  EXPECT_EQ(failureOf([&] { last.setValue(Variant{1}); }),
            "Elemento non trovato nella raccolta: 3");
}

TEST_F(Navigation, OpensInTheStepsOfTheReadPattern) {
  connection->results.push_back(resultOf(customers()));
  const auto recordset = connection->newRecordset();
  EXPECT_FALSE(recordset->isOpen());
  recordset->setActiveConnection(connection);
  recordset->setSource("SELECT * FROM T1");
  recordset->setCursorLocation(CursorLocation::Client);
  recordset->setCursorType(CursorType::Keyset);
  recordset->setLockType(LockType::BatchOptimistic);
  recordset->open(CursorType::Unspecified, LockType::Unspecified, CommandOption::Text);
  EXPECT_THAT(connection->texts, ElementsAre("SELECT * FROM T1"));
  EXPECT_EQ(recordset->recordCount(), 3);
  recordset->fields().item("RAGSOC1").setValue(Variant{"Verdi"});
  EXPECT_EQ(textOf(*recordset, "RAGSOC1"), "Verdi");
}

TEST_F(Navigation, OpensOnlyWhenEverythingIsThere) {
  const auto recordset = newClientCursor();
  const auto open = [&] {
    recordset->open(CursorType::Unspecified, LockType::Unspecified, CommandOption::Text);
  };
  EXPECT_EQ(failureOf(open), "Connessione mancante");
  recordset->setActiveConnection(connection);
  EXPECT_EQ(failureOf(open), "Testo del comando mancante");
  recordset->setSource("SELECT 1");
  EXPECT_EQ(failureOf(open), "Invalid object name");
  EXPECT_FALSE(recordset->isOpen());
  connection->results.push_back(resultOf(customers()));
  EXPECT_EQ(failureOf(open), "no failure");
}

TEST_F(Navigation, RefusesToOpenTwiceOrToBeConfiguredWhileOpen) {
  const std::string open = "Recordset gi\u00E0 aperto";
  EXPECT_EQ(failureOf([&] {
              rows->open("SELECT 1", connection, CursorType::Keyset, LockType::BatchOptimistic,
                         CommandOption::Text);
            }),
            open);
  EXPECT_EQ(failureOf([&] {
              rows->open(CursorType::Keyset, LockType::BatchOptimistic, CommandOption::Text);
            }),
            open);
  EXPECT_EQ(failureOf([&] { rows->setSource("x"); }), open);
  EXPECT_EQ(failureOf([&] { rows->setCursorLocation(CursorLocation::Client); }), open);
  EXPECT_EQ(failureOf([&] { rows->setLockType(LockType::ReadOnly); }), open);
  EXPECT_THAT(connection->texts, IsEmpty());
}

TEST_F(Navigation, RefusesLocksAndOptionsThatItDoesNotHave) {
  const auto recordset = newClientCursor();
  for (const LockType lock :
       {LockType::Pessimistic, LockType::Optimistic, static_cast<LockType>(9)}) {
    EXPECT_EQ(failureOf([&] { recordset->setLockType(lock); }),
              "Tipo di blocco non gestito: usare sola lettura o batch ottimistico");
  }
  EXPECT_EQ(failureOf([&] {
              recordset->open("P", connection, CursorType::Keyset, LockType::BatchOptimistic,
                              CommandOption::StoredProcedure);
            }),
            "Opzione di apertura non gestita: usare il testo di un comando");
}

TEST_F(Navigation, StaysClosedWhenTheSourceGivesNoResult) {
  connection->results.push_back(ExecutionResult{});
  const auto recordset = newClientCursor();
  recordset->open("SET NOCOUNT ON", connection, CursorType::Keyset, LockType::BatchOptimistic,
                  CommandOption::Text);
  EXPECT_FALSE(recordset->isOpen());
  EXPECT_EQ(openClientCursor(ExecutionResult{}, connection), nullptr);
}

TEST_F(Navigation, RefusesAConnectionThatRunsNoStatements) {
  const auto foreign = std::make_shared<ForeignConnection>();
  EXPECT_EQ(failureOf([&] { rows->setActiveConnection(foreign); }),
            "Connessione di un altro fornitore");
  EXPECT_EQ(failureOf([&] { static_cast<void>(openClientCursor(resultOf(customers()), foreign)); }),
            "Connessione di un altro fornitore");
}

TEST_F(Navigation, HandsOutTheFollowingResultsOneAfterTheOther) {
  ExecutionResult result = resultOf(customers());
  for (int number = 2; number <= 3; ++number) {
    ResultSet set;
    set.columns = {column("N")};
    set.values = {Variant{number}};
    result.results.push_back(std::move(set));
  }
  const auto first = openClientCursor(std::move(result), connection);
  const auto second = first->nextRecordset();
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(textOf(*second, "N"), "2");
  EXPECT_EQ(first->recordCount(), 3);
  const auto third = second->nextRecordset();
  ASSERT_NE(third, nullptr);
  EXPECT_EQ(textOf(*third, "N"), "3");
  EXPECT_EQ(third->nextRecordset(), nullptr);
  EXPECT_EQ(first->nextRecordset(), nullptr);
  EXPECT_EQ(rows->nextRecordset(), nullptr);
}

TEST_F(Navigation, HandsOutTheFollowingResultsOfAnOpenedSource) {
  ExecutionResult result = resultOf(customers());
  result.results.push_back(customers());
  connection->results.push_back(std::move(result));
  const auto recordset = newClientCursor();
  recordset->open("SELECT 1;SELECT 2", connection, CursorType::Keyset, LockType::BatchOptimistic,
                  CommandOption::Text);
  const auto next = recordset->nextRecordset();
  ASSERT_NE(next, nullptr);
  EXPECT_EQ(next->recordCount(), 3);
  EXPECT_EQ(recordset->nextRecordset(), nullptr);
}

TEST_F(Navigation, StaysReadableWhenDetached) {
  rows->setActiveConnection(nullptr);
  EXPECT_EQ(connection.use_count(), 1);
  EXPECT_THAT(names(), ElementsAre("Rossi", "Bianchi", "ROSSI"));
  rows->setFilter("DITTA1 = 2");
  EXPECT_EQ(rows->recordCount(), 1);
}

}  // namespace
}  // namespace azcoll::cursor
