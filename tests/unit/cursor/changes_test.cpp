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

/// Editing rows of a client-side recordset and sending them in batches.
class Changes : public testing::Test {
 protected:
  std::shared_ptr<FakeConnection> connection = std::make_shared<FakeConnection>();
  std::shared_ptr<Recordset> rows = openClientCursor(resultOf(customers()), connection);

  void set(std::string_view name, const Variant& value) {
    rows->fields().item(name).setValue(value);
  }

  /// A recordset over other columns.
  void useColumns(std::vector<ColumnInfo> columns, std::vector<Variant> values) {
    ResultSet set;
    set.columns = std::move(columns);
    set.values = std::move(values);
    rows = openClientCursor(resultOf(std::move(set)), connection);
  }

  [[nodiscard]] std::vector<std::string> sentTexts() const {
    std::vector<std::string> texts;
    for (const FakeConnection::Change& change : connection->changes) {
      texts.push_back(change.text);
    }
    return texts;
  }
};

TEST_F(Changes, SendsNothingWhenNothingChanged) {
  rows->update();
  rows->updateBatch(Affect::All);
  EXPECT_THAT(connection->changes, IsEmpty());
}

TEST_F(Changes, ShowsAnEditAtOnceAndSendsItWithTheBatchOnly) {
  set("RAGSOC1", Variant{"Verdi"});
  EXPECT_EQ(textOf(*rows, "RAGSOC1"), "Verdi");
  rows->update();
  EXPECT_THAT(connection->changes, IsEmpty());
  rows->updateBatch(Affect::All);
  ASSERT_THAT(sentTexts(),
              ElementsAre("UPDATE T1 SET RAGSOC1 = ? WHERE DITTA1 = ? AND CLIFOR1 = ? AND "
                          "RAGSOC1 = ?"));
  EXPECT_THAT(connection->changes[0].parameters,
              ElementsAre(Variant{"Verdi"}, Variant{1}, Variant{10}, Variant{"Rossi"}));
}

TEST_F(Changes, SendsTheChangedColumnsOnlyInTheOrderOfTheResult) {
  set("SCONTO1", Variant{*Decimal::parse("7.25")});
  set("RAGSOC1", Variant{"Verdi"});
  rows->updateBatch(Affect::All);
  ASSERT_THAT(sentTexts(),
              ElementsAre("UPDATE T1 SET RAGSOC1 = ?, SCONTO1 = ? WHERE DITTA1 = ? AND "
                          "CLIFOR1 = ? AND RAGSOC1 = ? AND SCONTO1 = ?"));
}

TEST_F(Changes, ChecksAnOriginalNullWithIsNull) {
  rows->moveNext();
  set("SCONTO1", Variant{3});
  rows->updateBatch(Affect::All);
  ASSERT_THAT(
      sentTexts(),
      ElementsAre(
          "UPDATE T1 SET SCONTO1 = ? WHERE DITTA1 = ? AND CLIFOR1 = ? AND SCONTO1 IS NULL"));
  EXPECT_THAT(connection->changes[0].parameters, ElementsAre(Variant{3}, Variant{1}, Variant{11}));
}

TEST_F(Changes, SendsNullWhereAValueWasTakenAway) {
  set("RAGSOC1", Variant{kNull});
  set("SCONTO1", Variant{});
  rows->updateBatch(Affect::All);
  ASSERT_EQ(connection->changes.size(), 1U);
  EXPECT_EQ(connection->changes[0].parameters[0], Variant{kNull});
  EXPECT_EQ(connection->changes[0].parameters[1], Variant{kNull});
}

TEST_F(Changes, AddressesAChangedKeyByItsOldValue) {
  set("CLIFOR1", Variant{99});
  rows->updateBatch(Affect::All);
  ASSERT_THAT(sentTexts(),
              ElementsAre("UPDATE T1 SET CLIFOR1 = ? WHERE DITTA1 = ? AND CLIFOR1 = ?"));
  EXPECT_THAT(connection->changes[0].parameters, ElementsAre(Variant{99}, Variant{1}, Variant{10}));
}

TEST_F(Changes, TakesAnEqualValueForNoChange) {
  set("SCONTO1", Variant{5.5});
  set("DITTA1", Variant{std::int64_t{1}});
  rows->updateBatch(Affect::All);
  EXPECT_THAT(connection->changes, IsEmpty());
}

TEST_F(Changes, ForgetsAChangeThatWasTakenBack) {
  set("RAGSOC1", Variant{"Verdi"});
  rows->update();
  set("RAGSOC1", Variant{"Rossi"});
  rows->updateBatch(Affect::All);
  EXPECT_THAT(connection->changes, IsEmpty());
}

TEST_F(Changes, ChecksTheValueReadEvenAfterSeveralEdits) {
  set("RAGSOC1", Variant{"Verdi"});
  rows->update();
  set("RAGSOC1", Variant{"Neri"});
  rows->updateBatch(Affect::All);
  ASSERT_EQ(connection->changes.size(), 1U);
  EXPECT_EQ(connection->changes[0].parameters.front(), Variant{"Neri"});
  EXPECT_EQ(connection->changes[0].parameters.back(), Variant{"Rossi"});
}

TEST_F(Changes, TakesMovingFilteringAndSearchingAsTheEndOfAnEdit) {
  set("RAGSOC1", Variant{"A"});
  rows->moveNext();
  set("RAGSOC1", Variant{"B"});
  rows->setFilter("DITTA1 = 2");
  set("RAGSOC1", Variant{"C"});
  rows->find("DITTA1 = 2", 0, SearchDirection::Forward, Bookmark::First);
  rows->cancelUpdate();
  rows->setFilter("");
  rows->updateBatch(Affect::All);
  EXPECT_EQ(connection->changes.size(), 3U);
}

TEST_F(Changes, UndoesTheEditInProgressOnly) {
  set("RAGSOC1", Variant{"Verdi"});
  rows->update();
  set("RAGSOC1", Variant{"Neri"});
  set("SCONTO1", Variant{1});
  set("SCONTO1", Variant{2});
  rows->cancelUpdate();
  EXPECT_EQ(textOf(*rows, "RAGSOC1"), "Verdi");
  EXPECT_EQ(textOf(*rows, "SCONTO1"), "5.50");
  rows->cancelUpdate();
  EXPECT_EQ(textOf(*rows, "RAGSOC1"), "Verdi");
}

TEST_F(Changes, TakesTheSentValuesAsTheNewOriginals) {
  set("RAGSOC1", Variant{"Verdi"});
  rows->updateBatch(Affect::All);
  rows->updateBatch(Affect::All);
  EXPECT_EQ(connection->changes.size(), 1U);
  set("RAGSOC1", Variant{"Neri"});
  rows->updateBatch(Affect::All);
  ASSERT_EQ(connection->changes.size(), 2U);
  EXPECT_EQ(connection->changes[1].parameters.back(), Variant{"Verdi"});
}

TEST_F(Changes, InsertsTheColumnsThatReceivedAValue) {
  rows->addNew();
  set("CLIFOR1", Variant{12});
  set("DITTA1", Variant{1});
  set("SCONTO1", Variant{kNull});
  rows->update();
  rows->updateBatch(Affect::All);
  ASSERT_THAT(sentTexts(),
              ElementsAre("INSERT INTO T1 (DITTA1, CLIFOR1, SCONTO1) VALUES (?, ?, ?)"));
  EXPECT_THAT(connection->changes[0].parameters,
              ElementsAre(Variant{1}, Variant{12}, Variant{kNull}));
}

TEST_F(Changes, MakesTheAddedRowTheCurrentOne) {
  rows->addNew();
  EXPECT_FALSE(rows->atStart());
  EXPECT_FALSE(rows->atEnd());
  EXPECT_EQ(rows->recordCount(), 4);
  EXPECT_TRUE(rows->fields().item("RAGSOC1").value().isNull());
  set("RAGSOC1", Variant{"Verdi"});
  rows->update();
  EXPECT_EQ(rows->recordCount(), 4);
  EXPECT_EQ(textOf(*rows, "RAGSOC1"), "Verdi");
  rows->moveNext();
  EXPECT_TRUE(rows->atEnd());
}

TEST_F(Changes, AddsToAnEmptyRecordset) {
  useColumns({column("A1", "T1", true)}, {});
  rows->addNew();
  EXPECT_FALSE(rows->atEnd());
  set("A1", Variant{7});
  rows->update();
  EXPECT_EQ(rows->recordCount(), 1);
  rows->moveFirst();
  EXPECT_EQ(textOf(*rows, "A1"), "7");
}

TEST_F(Changes, ReturnsToTheRowBeforeWhenAnAdditionIsUndone) {
  rows->moveNext();
  rows->addNew();
  set("RAGSOC1", Variant{"Verdi"});
  rows->cancelUpdate();
  EXPECT_EQ(rows->recordCount(), 3);
  EXPECT_EQ(textOf(*rows, "RAGSOC1"), "Bianchi");
  rows->updateBatch(Affect::All);
  EXPECT_THAT(connection->changes, IsEmpty());
}

TEST_F(Changes, SettlesAnAdditionBeforeTheNextOne) {
  rows->addNew();
  set("DITTA1", Variant{5});
  rows->addNew();
  set("DITTA1", Variant{6});
  rows->moveFirst();
  EXPECT_EQ(rows->recordCount(), 5);
  rows->updateBatch(Affect::All);
  ASSERT_EQ(connection->changes.size(), 2U);
  EXPECT_THAT(connection->changes[0].parameters, ElementsAre(Variant{5}));
  EXPECT_THAT(connection->changes[1].parameters, ElementsAre(Variant{6}));
}

TEST_F(Changes, EditsAnAddedRowBeforeItIsSent) {
  rows->addNew();
  set("DITTA1", Variant{5});
  rows->update();
  set("DITTA1", Variant{6});
  set("CLIFOR1", Variant{kNull});
  rows->update();
  set("RAGSOC1", Variant{"x"});
  rows->cancelUpdate();
  rows->updateBatch(Affect::All);
  ASSERT_THAT(sentTexts(), ElementsAre("INSERT INTO T1 (DITTA1, CLIFOR1) VALUES (?, ?)"));
  EXPECT_THAT(connection->changes[0].parameters, ElementsAre(Variant{6}, Variant{kNull}));
}

TEST_F(Changes, ShowsAnAddedRowUnderAFilter) {
  rows->setFilter("DITTA1 = 2");
  rows->addNew();
  set("DITTA1", Variant{9});
  rows->update();
  EXPECT_EQ(rows->recordCount(), 2);
  EXPECT_EQ(textOf(*rows, "DITTA1"), "9");
  rows->setFilter("DITTA1 = 2");
  EXPECT_EQ(rows->recordCount(), 1);
}

TEST_F(Changes, LeavesIdentityColumnsOutOfInserts) {
  std::vector<ColumnInfo> columns{column("ID1", "T1", true), column("A1", "T1")};
  columns[0].isIdentity = true;
  useColumns(columns, {});
  rows->addNew();
  set("ID1", Variant{77});
  set("A1", Variant{1});
  rows->updateBatch(Affect::All);
  ASSERT_THAT(sentTexts(), ElementsAre("INSERT INTO T1 (A1) VALUES (?)"));
  // The number copied is not the row's own: it must not address another row later.
  EXPECT_TRUE(rows->fields().item("ID1").value().isNull());
  set("A1", Variant{2});
  rows->updateBatch(Affect::All);
  EXPECT_EQ(connection->changes[1].text, "UPDATE T1 SET A1 = ? WHERE ID1 IS NULL AND A1 = ?");
}

TEST_F(Changes, RefusesToChangeAnIdentityColumn) {
  std::vector<ColumnInfo> columns{column("ID1", "T1", true), column("A1", "T1")};
  columns[0].isIdentity = true;
  useColumns(columns, {Variant{1}, Variant{2}});
  set("ID1", Variant{9});
  EXPECT_EQ(failureOf([&] { rows->updateBatch(Affect::All); }), "Colonna non aggiornabile: ID1");
}

TEST_F(Changes, RefusesToInsertARowWithoutValues) {
  rows->addNew();
  rows->update();
  EXPECT_EQ(failureOf([&] { rows->updateBatch(Affect::All); }),
            "Nessun valore nella riga da inserire");
  EXPECT_THAT(connection->changes, IsEmpty());
}

TEST_F(Changes, ReportsARowThatSomeoneElseChanged) {
  connection->rowsChanged = {0};
  set("RAGSOC1", Variant{"Verdi"});
  try {
    rows->updateBatch(Affect::All);
    FAIL() << "no failure";
  } catch (const Error& error) {
    EXPECT_TRUE(error.fromProvider());
    EXPECT_EQ(error.description(),
              "Row cannot be located for updating. Some values may have been changed since it was "
              "last read.");
    EXPECT_EQ(error.info().sqlState, "01001");
    EXPECT_EQ(error.info().statement, sentTexts().back());
  }
  ASSERT_EQ(connection->list.count(), 1U);
  EXPECT_EQ(connection->list.item(0).sqlState, "01001");
  rows->updateBatch(Affect::All);
  EXPECT_EQ(connection->changes.size(), 2U) << "the row stayed pending";
}

TEST_F(Changes, ReportsAKeyThatNamesSeveralRows) {
  connection->rowsChanged = {2};
  set("RAGSOC1", Variant{"Verdi"});
  EXPECT_EQ(failureOf([&] { rows->updateBatch(Affect::All); }),
            "La chiave non individua una sola riga della tabella T1");
  EXPECT_EQ(connection->list.count(), 1U);
}

TEST_F(Changes, KeepsTheUnsentRowsPendingWhenOneFails) {
  for (int number = 0; number < 3; ++number) {
    rows->addNew();
    set("DITTA1", Variant{number});
    rows->update();
  }
  connection->failingChange = 1;
  EXPECT_EQ(failureOf([&] { rows->updateBatch(Affect::All); }), "Violation");
  ASSERT_EQ(connection->changes.size(), 1U);
  rows->updateBatch(Affect::All);
  ASSERT_EQ(connection->changes.size(), 3U);
  EXPECT_THAT(connection->changes[1].parameters, ElementsAre(Variant{1}));
  EXPECT_THAT(connection->changes[2].parameters, ElementsAre(Variant{2}));
}

TEST_F(Changes, SendsTheCurrentRowOrTheShownRowsOnRequest) {
  for (rows->moveFirst(); !rows->atEnd(); rows->moveNext()) {
    set("SCONTO1", Variant{9});
  }
  EXPECT_EQ(failureOf([&] { rows->updateBatch(Affect::Current); }), "Nessuna riga corrente");
  rows->moveFirst();
  rows->updateBatch(Affect::Current);
  EXPECT_EQ(connection->changes.size(), 1U);
  rows->setFilter("RAGSOC1 = 'Rossi'");
  rows->updateBatch(Affect::Group);
  ASSERT_EQ(connection->changes.size(), 2U);
  EXPECT_EQ(connection->changes[1].parameters[1], Variant{2});
  rows->updateBatch(Affect::All);
  EXPECT_EQ(connection->changes.size(), 3U);
  rows->setFilter("");
  rows->updateBatch(Affect::Group);
  EXPECT_EQ(connection->changes.size(), 3U);
}

TEST_F(Changes, SendsWhatIsPendingOfAllRowsAsAGroupWithoutAFilter) {
  set("SCONTO1", Variant{9});
  rows->updateBatch(Affect::Group);
  EXPECT_EQ(connection->changes.size(), 1U);
}

TEST_F(Changes, WritesAJoinBackToTheOneTableConcerned) {
  useColumns({column("DITTA1", "T1", true), column("NOME1", "T1"), column("DITTA2", "T2", true),
              column("NOME2", "T2"), column("SOMMA")},
             {Variant{1}, Variant{"a"}, Variant{5}, Variant{"b"}, Variant{6}});
  set("NOME2", Variant{"c"});
  rows->updateBatch(Affect::All);
  ASSERT_THAT(sentTexts(), ElementsAre("UPDATE T2 SET NOME2 = ? WHERE DITTA2 = ? AND NOME2 = ?"));
  EXPECT_THAT(connection->changes[0].parameters,
              ElementsAre(Variant{"c"}, Variant{5}, Variant{"b"}));
}

TEST_F(Changes, RefusesChangesOfSeveralTablesBeforeSendingAny) {
  useColumns({column("DITTA1", "T1", true), column("NOME1", "T1"), column("DITTA2", "T2", true),
              column("NOME2", "T2")},
             {Variant{1}, Variant{"a"}, Variant{5}, Variant{"b"},  //
              Variant{2}, Variant{"a"}, Variant{6}, Variant{"b"}});
  set("NOME1", Variant{"c"});
  rows->moveNext();
  set("NOME1", Variant{"c"});
  set("NOME2", Variant{"c"});
  EXPECT_EQ(failureOf([&] { rows->updateBatch(Affect::All); }),
            "Aggiornamento di pi\u00F9 tabelle insieme: T1, T2");
  EXPECT_THAT(connection->changes, IsEmpty());
}

TEST_F(Changes, RefusesColumnsThatComeFromNoTable) {
  useColumns({column("DITTA1", "T1", true), column("SOMMA")}, {Variant{1}, Variant{6}});
  set("SOMMA", Variant{7});
  EXPECT_EQ(failureOf([&] { rows->updateBatch(Affect::All); }), "Colonna non aggiornabile: SOMMA");
}

TEST_F(Changes, RefusesATableWhoseKeyIsNotInTheResult) {
  useColumns({column("NOME1", "T1"), column("DITTA2", "T2", true)}, {Variant{"a"}, Variant{1}});
  set("NOME1", Variant{"b"});
  EXPECT_EQ(failureOf([&] { rows->updateBatch(Affect::All); }),
            "Chiave non presente nel recordset per la tabella T1");
}

TEST_F(Changes, RefusesTwoRowsOfOneTableSideBySide) {
  useColumns({column("K1", "T1", true), column("K1", "T1", true), column("A1", "T1")},
             {Variant{1}, Variant{2}, Variant{"a"},  //
              Variant{3}, Variant{3}, Variant{"a"}});
  rows->moveNext();
  set("A1", Variant{"b"});
  rows->updateBatch(Affect::All);
  EXPECT_THAT(sentTexts(), ElementsAre("UPDATE T1 SET A1 = ? WHERE K1 = ? AND A1 = ?"));
  rows->moveFirst();
  set("A1", Variant{"b"});
  EXPECT_EQ(failureOf([&] { rows->updateBatch(Affect::All); }),
            "La tabella compare pi\u00F9 volte nel recordset: T1");
}

TEST_F(Changes, QuotesNamesThatCouldBeReservedWords) {
  useColumns({column("k", "ORDER", true), column("Nome ]strano", "ORDER"), column("1A", "ORDER"),
              column("_", "ORDER"), column("Citt\u00E01", "ORDER")},
             {Variant{1}, Variant{"a"}, Variant{2}, Variant{3}, Variant{4}});
  set("Nome ]strano", Variant{"b"});
  rows->updateBatch(Affect::All);
  rows->addNew();
  for (std::size_t index = 0; index < 5; ++index) {
    rows->fields().item(index).setValue(Variant{1});
  }
  rows->updateBatch(Affect::All);
  EXPECT_THAT(
      sentTexts(),
      ElementsAre("UPDATE [ORDER] SET [Nome ]]strano] = ? WHERE k = ? AND [Nome ]]strano] = ?",
                  "INSERT INTO [ORDER] (k, [Nome ]]strano], [1A], [_], [Citt\u00E01]) VALUES (?, "
                  "?, ?, ?, ?)"));
}

TEST_F(Changes, AreRefusedInAReadOnlyRecordset) {
  connection->results.push_back(resultOf(customers()));
  rows = newClientCursor();
  rows->open("SELECT * FROM T1", connection, CursorType::Keyset, LockType::Unspecified,
             CommandOption::Text);
  const std::string readOnly = "Recordset di sola lettura";
  EXPECT_EQ(failureOf([&] { set("RAGSOC1", Variant{"x"}); }), readOnly);
  EXPECT_EQ(failureOf([&] { rows->addNew(); }), readOnly);
  EXPECT_EQ(failureOf([&] { rows->update(); }), readOnly);
  EXPECT_EQ(failureOf([&] { rows->updateBatch(Affect::All); }), readOnly);
}

TEST_F(Changes, RefuseAnObjectAsAValue) {
  EXPECT_EQ(failureOf([&] { set("RAGSOC1", Variant{std::shared_ptr<Object>{}}); }),
            "Tipo non corrispondente");
}

TEST_F(Changes, WaitForAConnectionWhenDetached) {
  rows->setActiveConnection(nullptr);
  set("RAGSOC1", Variant{"Verdi"});
  EXPECT_EQ(failureOf([&] { rows->updateBatch(Affect::All); }),
            "Aggiornamento non possibile: il recordset non ha una connessione");
  EXPECT_EQ(textOf(*rows, "RAGSOC1"), "Verdi");
  const auto other = std::make_shared<FakeConnection>();
  rows->setActiveConnection(other);
  rows->updateBatch(Affect::All);
  EXPECT_EQ(other->changes.size(), 1U);
  EXPECT_THAT(connection->changes, IsEmpty());
}

TEST_F(Changes, AreDroppedByClosing) {
  set("RAGSOC1", Variant{"Verdi"});
  rows->update();
  rows->addNew();
  rows->close();
  connection->results.push_back(resultOf(customers()));
  rows->open("SELECT * FROM T1", connection, CursorType::Keyset, LockType::BatchOptimistic,
             CommandOption::Text);
  EXPECT_EQ(rows->recordCount(), 3);
  rows->updateBatch(Affect::All);
  EXPECT_THAT(connection->changes, IsEmpty());
}

}  // namespace
}  // namespace azcoll::cursor
