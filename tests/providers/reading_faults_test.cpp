#ifdef AZCOLL_WITH_ODBC

#include <string>

#include "providers/fault_fixture.h"

// How results are read from drivers that tell little, or wrong things, about them.

namespace azcoll::test {
namespace {

class Reading : public Faults {
 protected:
  /// The two numbers that a statement of the driver gives.
  std::string pair(std::string_view text) {
    const auto rows = run(text);
    return rows->fields().item(std::size_t{0}).value().text() + "|" +
           rows->fields().item(std::size_t{1}).value().text();
  }

  void expectLyingSizesWhole(std::string_view text) {
    std::string longText;
    for (int at = 0; at < 5'000; ++at) {
      longText += "è";
    }
    const auto rows = run(text);
    ASSERT_EQ(rows->recordCount(), 3);
    EXPECT_EQ(rows->fields().item("C2").value(), Variant{"breve"});
    rows->moveNext();
    EXPECT_EQ(rows->fields().item("C1").value(), Variant{std::int32_t{2}});
    EXPECT_EQ(rows->fields().item("C2").value(), Variant{longText});
    EXPECT_EQ(rows->fields().item("C3").value(), Variant{"fine"});
    rows->moveNext();
    EXPECT_TRUE(rows->fields().item("C2").value().isNull());
  }
};

TEST_F(Reading, ColumnSizesThatLieCutNothing) {
  for (const char* const reread : {"Reread=none", "Reread=bound", "Reread=block"}) {
    SCOPED_TRACE(reread);
    connect(reread);
    expectLyingSizesWhole("LYING SIZES");
  }
}

TEST_F(Reading, AFailureBehindSomeRowsIsNotTheEndOfTheRows) {
  for (const char* const reread : {"Reread=none", "Reread=bound", "Reread=block"}) {
    SCOPED_TRACE(reread);
    connect(reread);
    const Error error = failureOf([&] { run("FAILS BEHIND ITS ROWS"); });
    EXPECT_EQ(error.info().nativeNumber, 8134);
    EXPECT_EQ(error.description(), "Divide by zero");
  }
}

TEST_F(Reading, AQueryIsReadInBlocksAlsoWhereADriverGivesNoValueTwice) {
  connect("Reread=none;Server=tsql");
  run("COUNTERS");
  const auto rows = run("SELECT * FROM MANY_ROWS");
  EXPECT_EQ(pair("COUNTERS"), "1|8");  // 32 rows, then 512 each, and the end
  ASSERT_EQ(rows->recordCount(), 3'000);
  for (int row = 1; row <= 3'000; ++row, rows->moveNext()) {
    ASSERT_EQ(rows->fields().item("C1").value(), Variant{std::int32_t{row}});
    const Variant text = row % 3 == 0 ? Variant{kNull} : Variant{"riga " + std::to_string(row)};
    ASSERT_EQ(rows->fields().item("C2").value(), text);
  }
}

TEST_F(Reading, AQueryWhoseColumnSizesLieIsRunOnceMoreAndCutsNothing) {
  connect("Reread=none;Server=tsql");
  run("COUNTERS");
  expectLyingSizesWhole("SELECT * FROM LYING_SIZES");
  EXPECT_EQ(pair("COUNTERS").substr(0, 2), "2|");
}

TEST_F(Reading, NothingThatMayHaveAnEffectIsEverRunTwice) {
  connect("Reread=none;Server=tsql");
  run("COUNTERS");
  expectLyingSizesWhole("EXEC LYING_SIZES");
  EXPECT_EQ(pair("COUNTERS").substr(0, 2), "1|");
  connect("Reread=none");  // not known to be T-SQL: a query may call a function with effects
  run("COUNTERS");
  expectLyingSizesWhole("SELECT * FROM LYING_SIZES");
  EXPECT_EQ(pair("COUNTERS").substr(0, 2), "1|");
}

TEST_F(Reading, ADecimalLongerThanAnyIsRefusedHoweverItIsRead) {
  for (const char* const driver :
       {"Reread=none", "Reread=bound", "Reread=block", "Reread=none;Server=tsql"}) {
    connect(driver);
    EXPECT_TRUE(failureOf([&] { run("LONG DECIMAL"); }).fromProvider()) << driver;
    EXPECT_TRUE(failureOf([&] { run("SELECT LONG_DECIMAL"); }).fromProvider()) << driver;
    EXPECT_EQ(state(), "1|0|0");
  }
}

TEST_F(Reading, NoOpenResultBlocksTheConnection) {
  for (const char* const reread : {"Reread=none", "Reread=bound", "Reread=block"}) {
    connect(reread);  // the driver has room for one open result
    const auto first = run("SELECT * FROM T1_PROVA");
    const auto second = run("SELECT * FROM MANY_ROWS");
    EXPECT_EQ(first->recordCount(), 1);
    EXPECT_EQ(second->recordCount(), 3'000);
    static_cast<void>(failureOf([&] { run("IMPOSSIBLE LENGTH"); }));  // stopped in its middle
    EXPECT_EQ(state(), "1|0|0");
  }
}

TEST_F(Reading, ANullInASingleRowBindIsNull) {
  connect("Reread=bound");  // one row at a time
  const auto rows = run("SELECT * FROM MANY_ROWS");
  rows->find("C1 = 2999", 0, SearchDirection::Forward, Bookmark::First);
  EXPECT_EQ(rows->fields().item("C2").value(), Variant{"riga 2999"});
  rows->moveNext();
  EXPECT_TRUE(rows->fields().item("C2").value().isNull());
}

TEST_F(Reading, TimeLimitsReachTheDriver) {
  connect("Connect Timeout=7");
  EXPECT_EQ(pair("TIME LIMITS"), "7|30");
  connection_->setCommandTimeout(100);
  EXPECT_EQ(pair("TIME LIMITS"), "7|100");
  connection_->setCommandTimeout(0);  // no limit
  EXPECT_EQ(pair("TIME LIMITS"), "7|0");
  connect();
  EXPECT_EQ(pair("TIME LIMITS"), "15|30");
  connect("Connect Timeout=0");
  EXPECT_EQ(pair("TIME LIMITS"), "0|30");
}

TEST_F(Reading, NoTotalLengthIsReadToTheEnd) {
  connect("Reread=none");
  const auto rows = run("NO TOTAL");
  ASSERT_EQ(rows->recordCount(), 3);
  EXPECT_EQ(rows->fields().item("C1").value(), Variant{std::string(20'000, 'x')});
  EXPECT_EQ(rows->fields().item("C2").value(), Variant{std::int32_t{7}});
  EXPECT_EQ(rows->fields().item("C3").value(), Variant{"coda"});
  rows->moveNext();
  for (std::size_t column = 0; column < 3; ++column) {
    EXPECT_TRUE(rows->fields().item(column).value().isNull());
  }
  rows->moveNext();
  EXPECT_EQ(rows->fields().item("C1").value(), Variant{""});
}

TEST_F(Reading, AnImpossibleLengthIsAnError) {
  for (const char* const reread : {"Reread=none", "Reread=bound", "Reread=block"}) {
    connect(reread);
    EXPECT_TRUE(failureOf([&] { run("IMPOSSIBLE LENGTH"); }).fromProvider()) << reread;
    EXPECT_EQ(state(), "1|0|0");  // and the connection is free
  }
}

}  // namespace
}  // namespace azcoll::test

#endif
