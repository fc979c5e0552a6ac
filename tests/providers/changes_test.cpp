#include <string>

#include "data/decimal.h"
#include "providers/provider.h"

namespace azcoll::test {
namespace {

using Lines = std::vector<std::string>;

class Changes : public OnProvider {
 protected:
  void SetUp() override {
    OnProvider::SetUp();
    if (IsSkipped()) {
      return;
    }
    AZCOLL_NEEDS(BatchUpdates);
    run("CREATE TABLE T1_PROVA (C1 INT NOT NULL, C2 {nvarchar}(20) NOT NULL, C3 DECIMAL(19,4),"
        " C4 {datetime}, C5 {bit}, PRIMARY KEY (C1, C2))");
    run("INSERT INTO T1_PROVA VALUES (1, {n}'uno', 1.5, '2024-01-01', {true})");
    run("INSERT INTO T1_PROVA VALUES (2, {n}'due', NULL, NULL, {false})");
  }
};

TEST_P(Changes, AddedRowsAreWritten) {
  const auto rows = open("SELECT * FROM T1_PROVA WHERE 1=2");
  rows->addNew();
  rows->fields().item("C1").setValue(std::int32_t{3});
  rows->fields().item("C2").setValue("perché");
  rows->fields().item("C3").setValue(Decimal::parse("12345.6789").value());
  rows->fields().item("C4").setValue(Date::of(2024, 5, 6, 7, 8, 9).value());
  rows->fields().item("C5").setValue(true);
  rows->update();
  rows->addNew();
  rows->fields().item("C1").setValue(std::int32_t{4});
  rows->fields().item("C2").setValue("vuota");
  rows->fields().item("C3").setValue(kNull);
  rows->update();
  EXPECT_EQ(value("SELECT COUNT(*) FROM T1_PROVA").toInt64(), 2);
  rows->updateBatch(Affect::All);
  const auto written = run("SELECT * FROM T1_PROVA WHERE C1 > 2 ORDER BY C1");
  ASSERT_EQ(written->recordCount(), 2);
  EXPECT_EQ(written->fields().item("C2").value(), Variant{"perché"});
  EXPECT_EQ(written->fields().item("C3").value().toDecimal().text(), "12345.6789");
  EXPECT_EQ(written->fields().item("C4").value(), Variant{Date::of(2024, 5, 6, 7, 8, 9).value()});
  EXPECT_TRUE(written->fields().item("C5").value().toBool());
  written->moveNext();
  EXPECT_TRUE(written->fields().item("C3").value().isNull());
  EXPECT_TRUE(written->fields().item("C4").value().isNull());
}

TEST_P(Changes, OnlyTheRowOfTheKeyIsChanged) {
  const auto rows = open("SELECT C1, C2, C3, C5 FROM T1_PROVA ORDER BY C1");
  rows->fields().item("C3").setValue(Decimal::parse("2.5").value());
  rows->fields().item("C5").setValue(kNull);
  rows->update();
  rows->updateBatch(Affect::All);
  EXPECT_EQ(value("SELECT C3 FROM T1_PROVA WHERE C1 = 1").toDecimal(), Decimal::parse("2.5"));
  EXPECT_TRUE(value("SELECT C5 FROM T1_PROVA WHERE C1 = 1").isNull());
  EXPECT_TRUE(value("SELECT C3 FROM T1_PROVA WHERE C1 = 2").isNull());
}

TEST_P(Changes, AMomentIsFoundAgainByItsOriginalValue) {
  run("UPDATE T1_PROVA SET C4 = '2024-01-01 10:11:12.123' WHERE C1 = 1");
  const auto rows = open("SELECT * FROM T1_PROVA WHERE C1 = 1");
  rows->fields().item("C4").setValue(Date::of(2025, 1, 1).value());
  rows->update();
  rows->updateBatch(Affect::All);
  EXPECT_EQ(value("SELECT C4 FROM T1_PROVA WHERE C1 = 1"), Variant{Date::of(2025, 1, 1).value()});
}

TEST_P(Changes, ARowChangedByAnotherIsAConflict) {
  const auto rows = open("SELECT * FROM T1_PROVA WHERE C1 = 1");
  run("UPDATE T1_PROVA SET C3 = 99 WHERE C1 = 1");
  rows->fields().item("C3").setValue(Decimal::parse("7").value());
  rows->update();
  const Error error = failureOf([&] { rows->updateBatch(Affect::All); });
  EXPECT_EQ(error.info().sqlState, "01001") << error.description();
  EXPECT_EQ(value("SELECT C3 FROM T1_PROVA WHERE C1 = 1").toDecimal(), Decimal::parse("99"));
}

TEST_P(Changes, AJoinWritesToTheOneTableOfTheChange) {
  run("CREATE TABLE T2_PROVA (K1 INT NOT NULL PRIMARY KEY, K2 {nvarchar}(20))");
  run("INSERT INTO T2_PROVA VALUES (1, {n}'figlio')");
  const auto rows = open(
      "SELECT CASE WHEN A.C1 = 1 THEN 1 ELSE 0 END AS PRIMA, A.*, B.*"
      " FROM T1_PROVA A INNER JOIN T2_PROVA B ON B.K1 = A.C1");
  ASSERT_EQ(rows->recordCount(), 1);
  rows->fields().item("C3").setValue(Decimal::parse("8").value());
  rows->update();
  rows->updateBatch(Affect::All);
  EXPECT_EQ(value("SELECT C3 FROM T1_PROVA WHERE C1 = 1").toDecimal(), Decimal::parse("8"));
  rows->fields().item("PRIMA").setValue(std::int32_t{5});
  rows->update();
  static_cast<void>(failureOf([&] { rows->updateBatch(Affect::All); }));
}

TEST_P(Changes, ARowWithoutItsKeyIsNotChanged) {
  const auto rows = open("SELECT C2, C3 FROM T1_PROVA WHERE C1 = 1");  // half a key
  rows->fields().item("C3").setValue(Decimal::parse("8").value());
  rows->update();
  EXPECT_FALSE(failureOf([&] { rows->updateBatch(Affect::All); }).fromProvider());
  EXPECT_EQ(value("SELECT C3 FROM T1_PROVA WHERE C1 = 1").toDecimal(), Decimal::parse("1.5"));
}

TEST_P(Changes, ATableJoinedWithItselfIsNotChanged) {
  // Equal values, so that nothing but the table's name could tell the two rows apart.
  run("UPDATE T1_PROVA SET C3 = 1.5");
  const auto rows =
      open("SELECT A.C1, A.C2, B.C3 FROM T1_PROVA A INNER JOIN T1_PROVA B ON B.C1 = A.C1 + 1");
  ASSERT_EQ(rows->recordCount(), 1);
  rows->fields().item("C3").setValue(Decimal::parse("8").value());
  rows->update();
  static_cast<void>(failureOf([&] { rows->updateBatch(Affect::All); }));
  EXPECT_EQ(value("SELECT C3 FROM T1_PROVA WHERE C1 = 1").toDecimal(), Decimal::parse("1.5"));
  EXPECT_EQ(value("SELECT C3 FROM T1_PROVA WHERE C1 = 2").toDecimal(), Decimal::parse("1.5"));
}

TEST_P(Changes, ANumberedColumnIsLeftOutOfInserts) {
  run("CREATE TABLE T3_PROVA (C1 {identity} NOT NULL PRIMARY KEY, C2 {nvarchar}(10))");
  const auto rows = open("SELECT * FROM T3_PROVA WHERE 1=2");
  for (const char* const text : {"a", "b"}) {
    rows->addNew();
    rows->fields().item("C2").setValue(text);
    rows->update();
  }
  rows->updateBatch(Affect::All);
  EXPECT_EQ(lines("SELECT C1, C2 FROM T3_PROVA ORDER BY C1"), (Lines{"1|a", "2|b"}));
}

INSTANTIATE_TEST_SUITE_P(Providers, Changes, testing::ValuesIn(providerNames()), nameOfCase);

}  // namespace
}  // namespace azcoll::test
