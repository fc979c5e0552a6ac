#include "data/messages.h"
#include "unit/embedded_language/support.h"

// Recordsets on the engine: reading, and sending changes back.
namespace azcoll::test {
namespace {

class Recordsets : public testing::Test {
 protected:
  void SetUp() override {
    run(db(),
        "CREATE TABLE T (ID INT NOT NULL PRIMARY KEY, V VARCHAR(10) NULL, C CHAR(3) NULL, N "
        "DECIMAL(9, 2) NULL, D DATETIME NULL, S SMALLINT NULL)");
    run(db(),
        "CREATE TABLE R (K INT IDENTITY(1, 1) NOT NULL PRIMARY KEY, T_ID INT NOT NULL REFERENCES T "
        "(ID), X INT NOT NULL)");
    run(db(),
        "INSERT INTO T VALUES (1, 'uno', 'a', 1.5, '20240131 10:00:00.003', 1), (2, 'due ', NULL, "
        "NULL, NULL, NULL), (3, '', 'ccc', -3, '20240301', 3)");
    run(db(), "INSERT INTO R (T_ID, X) VALUES (1, 100), (1, 200), (3, 300)");
  }

  Connection& db() { return *connection_; }

  std::shared_ptr<Recordset> opened(const std::string& source,
                                    LockType lock = LockType::BatchOptimistic) {
    const std::shared_ptr<Recordset> rows = connection_->newRecordset();
    rows->setCursorLocation(CursorLocation::Client);
    rows->open(source, connection_, CursorType::Keyset, lock, CommandOption::Text);
    return rows;
  }

  static void set(Recordset& rows, std::string_view field, const Variant& value) {
    rows.fields().item(field).setValue(value);
  }

  static std::string failure(Recordset& rows) {
    const Error error = failureOf([&] { rows.updateBatch(Affect::All); });
    return error.description();
  }

  Lines table() { return lines(db(), "SELECT ID, V, C, N, S FROM T ORDER BY ID"); }

 private:
  std::shared_ptr<Connection> connection_ = openMemory();
};

TEST_F(Recordsets, CountFilterAndFind) {
  const auto rows = opened("SELECT * FROM T ORDER BY ID");
  EXPECT_EQ(rows->recordCount(), 3);
  rows->setFilter("N > 0 AND V LIKE 'u*'");
  EXPECT_EQ(lines(*rows), Lines{"1|uno|a  |1.50|31/01/2024 10:00:00|1"});
  rows->setFilter("");
  rows->find("ID = 3", 0, SearchDirection::Forward, Bookmark::First);
  EXPECT_EQ(rows->fields().item("C").value(), Variant("ccc"));
}

TEST_F(Recordsets, OfNoRowKnowTheirColumns) {
  const auto rows = opened("SELECT * FROM T WHERE 1=2");
  EXPECT_EQ(rows->recordCount(), 0);
  EXPECT_EQ(rows->fields().count(), 6U);
  EXPECT_EQ(rows->fields().item("n").name(), "N");
  EXPECT_TRUE(rows->atStart());
  EXPECT_TRUE(rows->atEnd());
}

TEST_F(Recordsets, AddRowsThatOthersSeeAfterUpdateBatch) {
  const auto rows = opened("SELECT * FROM T WHERE 1=2");
  rows->addNew();
  set(*rows, "ID", std::int32_t{9});
  set(*rows, "V", "nove");
  set(*rows, "C", "x");
  set(*rows, "N", *Decimal::parse("9.99"));
  set(*rows, "D", *Date::of(2024, 12, 31));
  rows->update();
  rows->addNew();
  set(*rows, "ID", "10");
  set(*rows, "V", kNull);
  rows->update();
  EXPECT_EQ(lines(db(), "SELECT COUNT(*) FROM T"), Lines{"3"});
  rows->updateBatch(Affect::All);
  EXPECT_EQ(lines(db(), "SELECT ID, V, C, N, D, S FROM T WHERE ID > 3 ORDER BY ID"),
            (Lines{"9|nove|x  |9.99|31/12/2024|NULL", "10|NULL|NULL|NULL|NULL|NULL"}));
}

TEST_F(Recordsets, AddRowsToATableWithIdentity) {
  const auto rows = opened("SELECT * FROM R WHERE 1=2");
  rows->addNew();
  set(*rows, "T_ID", std::int32_t{2});
  set(*rows, "X", std::int32_t{400});
  rows->update();
  rows->updateBatch(Affect::All);
  EXPECT_EQ(lines(db(), "SELECT K, T_ID, X FROM R WHERE X = 400"), Lines{"4|2|400"});
}

TEST_F(Recordsets, ChangeOnlyTheRowTheyStandOn) {
  const auto rows = opened("SELECT * FROM T ORDER BY ID");
  set(*rows, "V", "UNO");
  set(*rows, "S", std::int16_t{7});
  rows->update();
  rows->moveNext();
  set(*rows, "C", "bb");
  rows->update();
  rows->updateBatch(Affect::All);
  EXPECT_EQ(table(), (Lines{"1|UNO|a  |1.50|7", "2|due |bb |NULL|NULL", "3||ccc|-3.00|3"}));
}

TEST_F(Recordsets, ChangeEveryKindOfColumn) {
  const auto rows = opened("SELECT * FROM T WHERE ID = 1");
  set(*rows, "V", "v");
  set(*rows, "C", "c");
  set(*rows, "N", *Decimal::parse("0.01"));
  set(*rows, "D", kNull);
  set(*rows, "S", kNull);
  rows->update();
  rows->updateBatch(Affect::All);
  EXPECT_EQ(lines(db(), "SELECT * FROM T WHERE ID = 1"), Lines{"1|v|c  |0.01|NULL|NULL"});
}

TEST_F(Recordsets, ChangeARowTwice) {
  const auto rows = opened("SELECT * FROM T WHERE ID = 1");
  for (const char* text : {"a", "b"}) {
    set(*rows, "V", text);
    rows->update();
    rows->updateBatch(Affect::All);
  }
  EXPECT_EQ(lines(db(), "SELECT V FROM T WHERE ID = 1"), Lines{"b"});
}

TEST_F(Recordsets, NoticeARowChangedByAnother) {
  for (const char* change :
       {"UPDATE T SET V = 'altro' WHERE ID = 1", "UPDATE T SET V = NULL WHERE ID = 1"}) {
    run(db(), "UPDATE T SET V = 'uno' WHERE ID = 1");
    const auto rows = opened("SELECT * FROM T WHERE ID = 1");
    set(*rows, "V", "mio");
    rows->update();
    run(db(), change);
    EXPECT_EQ(failure(*rows), messages::kRowConflict);
    EXPECT_NE(lines(db(), "SELECT V FROM T WHERE ID = 1"), Lines{"mio"});
  }
}

TEST_F(Recordsets, NoticeARowDeletedByAnother) {
  const auto rows = opened("SELECT * FROM T WHERE ID = 2");
  set(*rows, "V", "mio");
  rows->update();
  run(db(), "DELETE FROM T WHERE ID = 2");
  EXPECT_EQ(failure(*rows), messages::kRowConflict);
}

TEST_F(Recordsets, NoticeChangesOfDatesAndDecimals) {
  for (const auto& [field, mine, theirs] :
       {std::tuple{"D", Variant(*Date::of(2025, 1, 1)), "D = '20240131 10:00:00.007'"},
        std::tuple{"N", Variant(*Decimal::parse("7")), "N = 1.51"},
        std::tuple{"C", Variant("z"), "C = 'b'"}, std::tuple{"S", Variant(kNull), "S = 2"}}) {
    const auto rows = opened("SELECT * FROM T WHERE ID = 1");
    set(*rows, field, mine);
    rows->update();
    run(db(), std::string{"UPDATE T SET "} + theirs + " WHERE ID = 1");
    EXPECT_EQ(failure(*rows), messages::kRowConflict) << field;
  }
}

TEST_F(Recordsets, LeaveColumnsAloneThatOthersChanged) {
  const auto rows = opened("SELECT * FROM T WHERE ID = 1");
  set(*rows, "V", "mio");
  rows->update();
  run(db(), "UPDATE T SET S = 99 WHERE ID = 1");
  rows->updateBatch(Affect::All);
  EXPECT_EQ(lines(db(), "SELECT V, S FROM T WHERE ID = 1"), Lines{"mio|99"});
}

TEST_F(Recordsets, ChangeOneTableOfAJoin) {
  const auto rows =
      opened("SELECT T.*, R.K, R.X FROM T INNER JOIN R ON R.T_ID = T.ID ORDER BY R.K");
  EXPECT_EQ(rows->recordCount(), 3);
  rows->moveNext();
  set(*rows, "X", std::int32_t{201});
  rows->update();
  rows->updateBatch(Affect::All);
  EXPECT_EQ(lines(db(), "SELECT X FROM R ORDER BY K"), (Lines{"100", "201", "300"}));
}

TEST_F(Recordsets, ChangeTheTableOfALeftJoinThroughAnAlias) {
  const auto rows =
      opened("SELECT Q.ID, Q.V, R.X FROM T AS Q LEFT JOIN R ON R.T_ID = Q.ID WHERE Q.ID = 2");
  set(*rows, "V", "DUE");
  rows->update();
  rows->updateBatch(Affect::All);
  EXPECT_EQ(lines(db(), "SELECT V FROM T WHERE ID = 2"), Lines{"DUE"});
}

TEST_F(Recordsets, RefuseToChangeTwoTablesAtOnce) {
  const auto rows =
      opened("SELECT T.*, R.K, R.X FROM T INNER JOIN R ON R.T_ID = T.ID ORDER BY R.K");
  set(*rows, "X", std::int32_t{1});
  set(*rows, "V", "x");
  rows->update();
  EXPECT_TRUE(failure(*rows).starts_with(messages::kSeveralTables));
  EXPECT_EQ(lines(db(), "SELECT X FROM R WHERE K = 1"), Lines{"100"});
}

TEST_F(Recordsets, RefuseToChangeAComputedColumn) {
  for (const char* source :
       {"SELECT ID, V + '' AS V FROM T", "SELECT ID, 'x' AS V FROM T",
        "SELECT ID, ISNULL(V, '') AS V FROM T", "SELECT ID, UPPER(V) AS V FROM T",
        "SELECT ID, (SELECT 'x') AS V FROM T", "SELECT ID, CASE WHEN 1 = 1 THEN V END AS V FROM T",
        "SELECT ID, CAST(V AS VARCHAR(10)) AS V FROM T",
        "SELECT ID, MAX(V) AS V FROM T GROUP BY ID", "SELECT ID, V FROM T UNION SELECT 9, 'x'",
        "SELECT ID, V FROM T UNION ALL SELECT ID, V FROM T"}) {
    const auto rows = opened(source);
    try {
      set(*rows, "V", "mio");
      rows->update();
      rows->updateBatch(Affect::All);
      ADD_FAILURE() << "changed: " << source;
    } catch (const Error& error) {
      EXPECT_TRUE(error.description().starts_with(messages::kColumnNotUpdatable))
          << source << ": " << error.description();
    }
  }
  EXPECT_EQ(lines(db(), "SELECT COUNT(*) FROM T WHERE V = 'mio'"), Lines{"0"});
}

TEST_F(Recordsets, RefuseToChangeRowsWithoutTheirKey) {
  for (const char* source : {"SELECT V FROM T", "SELECT ID + 0 AS ID, V FROM T",
                             "SELECT R.K, T.V FROM T INNER JOIN R ON "
                             "R.T_ID = T.ID"}) {
    const auto rows = opened(source);
    set(*rows, "V", "mio");
    rows->update();
    EXPECT_TRUE(failure(*rows).starts_with(messages::kNoKey)) << source;
  }
}

TEST_F(Recordsets, RefuseToChangeATableThatIsThereTwice) {
  const auto rows =
      opened("SELECT A.ID, A.V, B.ID AS ALTRO FROM T AS A INNER JOIN T AS B ON B.ID = A.ID + 1");
  set(*rows, "V", "mio");
  rows->update();
  EXPECT_NE(failure(*rows), "");
  EXPECT_EQ(lines(db(), "SELECT COUNT(*) FROM T WHERE V = 'mio'"), Lines{"0"});
}

TEST_F(Recordsets, TellTheDatabasesRefusal) {
  const auto rows = opened("SELECT * FROM T WHERE 1=2");
  rows->addNew();
  set(*rows, "ID", std::int32_t{1});
  rows->update();
  EXPECT_NE(failure(*rows).find("Violation of PRIMARY KEY constraint"), std::string::npos);
  ASSERT_GE(db().errors().count(), 1U);
  EXPECT_EQ(db().errors().item(0).nativeNumber, 2627);
  EXPECT_NE(db().errors().item(0).description.find("The duplicate key value is (1)."),
            std::string::npos);
}

TEST_F(Recordsets, TellAValueThatDoesNotFit) {
  for (const auto& [field, wrong, number] :
       {std::tuple{"C", Variant("abcd"), 8152},
        std::tuple{"V", Variant(std::string(11, 'x')), 8152},
        std::tuple{"S", Variant(std::int32_t{40000}), 220},
        std::tuple{"N", Variant(*Decimal::parse("99999999")), 8115}}) {
    db().errors().clear();
    const auto rows = opened("SELECT * FROM T WHERE ID = 1");
    set(*rows, field, wrong);
    rows->update();
    EXPECT_NE(failure(*rows), "");
    ASSERT_GE(db().errors().count(), 1U) << field;
    EXPECT_EQ(db().errors().item(0).nativeNumber, number) << field;
  }
}

TEST_F(Recordsets, TellForeignKeysAndMissingValues) {
  const auto rows = opened("SELECT * FROM R WHERE K = 1");
  set(*rows, "T_ID", std::int32_t{77});
  rows->update();
  EXPECT_NE(failure(*rows).find("conflicted with the FOREIGN KEY constraint"), std::string::npos);
  const auto others = opened("SELECT * FROM R WHERE K = 2");
  set(*others, "X", kNull);
  others->update();
  EXPECT_NE(failure(*others).find("Cannot insert the value NULL into column 'X'"),
            std::string::npos);
}

TEST_F(Recordsets, AreUndoneWithTheTransaction) {
  db().beginTrans();
  const auto rows = opened("SELECT * FROM T WHERE ID = 1");
  set(*rows, "V", "mio");
  rows->update();
  rows->updateBatch(Affect::All);
  EXPECT_EQ(lines(db(), "SELECT V FROM T WHERE ID = 1"), Lines{"mio"});
  db().rollbackTrans();
  EXPECT_EQ(lines(db(), "SELECT V FROM T WHERE ID = 1"), Lines{"uno"});
}

TEST_F(Recordsets, StayReadableWhenDetached) {
  const auto rows = opened("SELECT ID FROM T ORDER BY ID");
  rows->setActiveConnection(nullptr);
  run(db(), "DELETE FROM R DELETE FROM T");
  EXPECT_EQ(lines(*rows), (Lines{"1", "2", "3"}));
}

TEST_F(Recordsets, AreReadOnlyUnlessOpenedForChanges) {
  const auto rows = opened("SELECT * FROM T", LockType::ReadOnly);
  EXPECT_THROW(set(*rows, "V", "x"), Error);
}

TEST_F(Recordsets, OfAnExecutionFollowEachOther) {
  const auto first = run(db(), "SELECT 1 AS A; SELECT 2 AS B");
  EXPECT_EQ(first->fields().item("A").value().toInt64(), 1);
  const auto second = first->nextRecordset();
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(second->fields().item("B").value().toInt64(), 2);
  EXPECT_EQ(second->nextRecordset(), nullptr);
}

TEST_F(Recordsets, DoNotOpenOnAnError) {
  const auto rows = openMemory()->newRecordset();
  EXPECT_THROW(opened("SELECT * FROM NESSUNA"), Error);
  EXPECT_EQ(db().errors().item(0).nativeNumber, 208);
  EXPECT_FALSE(rows->isOpen());
}

TEST_F(Recordsets, KeepDuplicateNamesApartByPosition) {
  const auto rows = opened("SELECT 1 AS A, 2 AS a, 3");
  EXPECT_EQ(rows->fields().count(), 3U);
  EXPECT_EQ(rows->fields().item("A").value().toInt64(), 1);
  EXPECT_EQ(rows->fields().item(std::size_t{1}).value().toInt64(), 2);
  EXPECT_EQ(rows->fields().item(std::size_t{2}).name(), "");
}

}  // namespace
}  // namespace azcoll::test
