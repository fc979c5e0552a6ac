#include <string>

#include "data/date.h"
#include "data/decimal.h"
#include "providers/provider.h"

namespace azcoll::test {
namespace {

using Values = OnProvider;

Decimal decimal(std::string_view text) { return Decimal::parse(text).value(); }

TEST_P(Values, EveryTypeComesBackAsItsKind) {
  AZCOLL_NEEDS(DeclaredTypes);
  run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY, C2 SMALLINT, C3 BIGINT, C4 {bit},"
      " C5 {nvarchar}(20), C6 DATE, C7 {datetime}, C8 FLOAT)");
  run("INSERT INTO T1_PROVA VALUES (-2147483647, -32768, 9223372036854775807, {true}, {n}'abc',"
      " '2024-02-29', '2024-12-31 23:59:58', 0.25)");
  const auto rows = run("SELECT * FROM T1_PROVA");
  Fields& fields = rows->fields();
  EXPECT_EQ(fields.item("C1").value(), Variant{std::int32_t{-2147483647}});
  EXPECT_EQ(fields.item("C2").value(), Variant{std::int16_t{-32768}});
  EXPECT_EQ(fields.item("C3").value(), Variant{std::int64_t{9223372036854775807}});
  EXPECT_EQ(fields.item("C4").value(), Variant{true});
  EXPECT_EQ(fields.item("C5").value(), Variant{"abc"});
  EXPECT_EQ(fields.item("C6").value(), Variant{Date::of(2024, 2, 29).value()});
  EXPECT_EQ(fields.item("C7").value(), Variant{Date::of(2024, 12, 31, 23, 59, 58).value()});
  EXPECT_EQ(fields.item("C8").value(), Variant{0.25});
}

TEST_P(Values, NullIsNullInEveryType) {
  run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY, C2 SMALLINT, C3 BIGINT, C4 {bit},"
      " C5 {nvarchar}(20), C6 DATE, C7 {datetime}, C8 FLOAT, C9 DECIMAL(19,4), C10 {long})");
  run("INSERT INTO T1_PROVA (C1) VALUES (1)");
  for (const char* const text : {"SELECT * FROM T1_PROVA",  // read in pieces, for the long column
                                 "SELECT C1, C2, C3, C4, C5, C6, C7, C8, C9 FROM T1_PROVA"}) {
    const auto rows = run(text);
    ASSERT_EQ(rows->recordCount(), 1);
    for (std::size_t column = 1; column < rows->fields().count(); ++column) {
      EXPECT_TRUE(rows->fields().item(column).value().isNull()) << text << ", column " << column;
    }
  }
}

TEST_P(Values, NullInASingleRowBindIsNull) {
  run("CREATE TABLE T1_PROVA (C1 INT, C2 {nvarchar}(10))");
  run("INSERT INTO T1_PROVA VALUES (NULL, {n}'x')");
  EXPECT_TRUE(value("SELECT C1 FROM T1_PROVA").isNull());
  EXPECT_EQ(lines("SELECT C1, C2 FROM T1_PROVA"), (std::vector<std::string>{"NULL|x"}));
}

TEST_P(Values, MoneyBeyondTheReachOfADoubleStaysExact) {
  AZCOLL_NEEDS(ExactDecimals);
  run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY, C2 DECIMAL(19,4))");
  run("INSERT INTO T1_PROVA VALUES (1, 922337203685477.5807)");
  run("INSERT INTO T1_PROVA VALUES (2, -922337203685477.5808)");
  run("INSERT INTO T1_PROVA VALUES (3, 0)");
  EXPECT_EQ(value("SELECT C2 FROM T1_PROVA WHERE C1 = 1"),
            Variant{decimal("922337203685477.5807")});
  EXPECT_EQ(value("SELECT C2 FROM T1_PROVA WHERE C1 = 2"),
            Variant{decimal("-922337203685477.5808")});
  EXPECT_EQ(value("SELECT C2 FROM T1_PROVA WHERE C1 = 3").text(), "0.0000");
}

TEST_P(Values, DecimalsBeyondEighteenDigitsStayExact) {
  AZCOLL_NEEDS(ExactDecimals);
  run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY, C2 DECIMAL(38,10), C3 DECIMAL(38,0))");
  run("INSERT INTO T1_PROVA VALUES (1, -1234567890123456789012345678.0123456789,"
      " 99999999999999999999999999999999999999)");
  EXPECT_EQ(lines("SELECT C2, C3 FROM T1_PROVA"),
            (std::vector<std::string>{"-1234567890123456789012345678.0123456789|"
                                      "99999999999999999999999999999999999999"}));
}

TEST_P(Values, AccentsAndRareCharactersSurvive) {
  AZCOLL_NEEDS(Unicode);
  run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY, C2 {nvarchar}(40))");
  const std::string text = "Società Però € 😀 漢字";
  run("INSERT INTO T1_PROVA VALUES (1, {n}'" + text + "')");
  EXPECT_EQ(value("SELECT C2 FROM T1_PROVA"), Variant{text});
  EXPECT_EQ(lines("SELECT C1 FROM T1_PROVA WHERE C2 = {n}'" + text + "'"),
            (std::vector<std::string>{"1"}));
}

TEST_P(Values, MalformedTextIsRefusedBeforeItReachesTheDatabase) {
  const Error error = failureOf([&] { run("SELECT '\xC3(' AS C1"); });
  EXPECT_FALSE(error.description().empty());
  EXPECT_EQ(lines("SELECT 1 AS C1"), (std::vector<std::string>{"1"}));
}

TEST_P(Values, ALongColumnMayStandBeforeShortOnes) {
  run("CREATE TABLE T1_PROVA (C1 {long}, C2 INT, C3 {long}, C4 {nvarchar}(10))");
  const std::string first(100'000, 'a');
  const std::string third(70'001, 'z');
  run("INSERT INTO T1_PROVA VALUES ('" + first + "', 7, '" + third + "', {n}'breve')");
  run("INSERT INTO T1_PROVA VALUES (NULL, 8, '', {n}'')");
  const auto rows = run("SELECT * FROM T1_PROVA ORDER BY C2");
  ASSERT_EQ(rows->recordCount(), 2);
  EXPECT_EQ(rows->fields().item("C1").value(), Variant{first});
  EXPECT_EQ(rows->fields().item("C2").value(), Variant{std::int32_t{7}});
  EXPECT_EQ(rows->fields().item("C3").value(), Variant{third});
  EXPECT_EQ(rows->fields().item("C4").value(), Variant{"breve"});
  rows->moveNext();
  EXPECT_TRUE(rows->fields().item("C1").value().isNull());
  EXPECT_EQ(rows->fields().item("C3").value(), Variant{""});
}

TEST_P(Values, ALongTextIsWholeAtEveryLengthAroundAPiece) {
  run("CREATE TABLE T1_PROVA (C1 INT NOT NULL PRIMARY KEY, C2 {long})");
  for (const std::size_t length :
       {0U, 1U, 2047U, 2048U, 4094U, 4095U, 4096U, 4097U, 8191U, 8192U, 12286U, 12287U, 40'000U}) {
    run("DELETE FROM T1_PROVA");
    std::string text;
    for (std::size_t at = 0; at < length; ++at) {
      text += static_cast<char>('a' + at % 26);
    }
    run("INSERT INTO T1_PROVA VALUES (1, '" + text + "')");
    EXPECT_EQ(value("SELECT C2 FROM T1_PROVA"), Variant{text}) << length;
  }
}

TEST_P(Values, BytesAreReadInPiecesAndShownInHexadecimal) {
  AZCOLL_NEEDS(Binary);
  run("CREATE TABLE T1_PROVA (C1 {binary}, C2 INT)");
  std::string digits;
  for (int at = 0; at < 30'000; ++at) {
    digits += "00FF7B";
  }
  run("INSERT INTO T1_PROVA VALUES ({bytes}" + digits + "{endbytes}, 3)");
  EXPECT_EQ(lines("SELECT C1, C2 FROM T1_PROVA"), (std::vector<std::string>{"0x" + digits + "|3"}));
}

TEST_P(Values, MomentsKeepTheirMilliseconds) {
  AZCOLL_NEEDS(Milliseconds);
  run("CREATE TABLE T1_PROVA (C1 {datetime})");
  run("INSERT INTO T1_PROVA VALUES ('2024-03-05 07:08:09.123')");
  EXPECT_EQ(value("SELECT C1 FROM T1_PROVA"), Variant{Date::of(2024, 3, 5, 7, 8, 9, 123).value()});
}

INSTANTIATE_TEST_SUITE_P(Providers, Values, testing::ValuesIn(providerNames()), nameOfCase);

}  // namespace
}  // namespace azcoll::test
