#include "cli/print/tables.h"

#include <sstream>

#include "gtest/gtest.h"

namespace azcoll::cli {
namespace {

using views::Rows;

std::string table(const Rows& rows) {
  std::ostringstream out;
  printTable(out, rows);
  return out.str();
}

std::string csv(const Rows& rows) {
  std::ostringstream out;
  printCsv(out, rows);
  return out.str();
}

TEST(Table, AlignsAccentedTextByCharacters) {
  EXPECT_EQ(table({{"NOME", "CODICE"}, {{"Forlì", 1}, {"Perù e altro", 20}}}),
            "NOME          CODICE\n"
            "------------  ------\n"
            "Forlì              1\n"
            "Perù e altro      20\n");
}

TEST(Table, PutsColumnsOfNumbersToTheRight) {
  EXPECT_EQ(table({{"A", "B"}, {{*Decimal::parse("10.50"), "x"}, {kNull, 5}}}),
            "    A  B\n"
            "-----  -\n"
            "10.50  x\n"
            " NULL  5\n");
}

TEST(Table, LeavesAColumnWithoutValuesToTheLeft) {
  EXPECT_EQ(table({{"COLONNA", "B"}, {{kNull, 1}}}),
            "COLONNA  B\n"
            "-------  -\n"
            "NULL     1\n");
}

TEST(Table, PrintsTheHeaderOfAnEmptyResult) {
  EXPECT_EQ(table({{"A", "DITTA"}, {}}), "A  DITTA\n-  -----\n");
}

TEST(Table, ShowsUnnamedColumnsAndControlCharacters) {
  EXPECT_EQ(table({{""}, {{"a\r\nb"}}}), "\n----\na␍␊b\n");
}

TEST(Csv, QuotesOnlyWhatNeedsIt) {
  EXPECT_EQ(csv({{"A", "B,C"}, {{"x;y", "a\"b"}, {"riga\r\ndue", "a,b"}}}),
            "A,\"B,C\"\r\n"
            "x;y,\"a\"\"b\"\r\n"
            "\"riga\r\ndue\",\"a,b\"\r\n");
}

TEST(Csv, TellsNullFromTheEmptyText) {
  EXPECT_EQ(csv({{"A", "B"}, {{kNull, ""}}}), "A,B\r\n,\"\"\r\n");
}

TEST(Csv, WritesValuesInTheirExchangeForm) {
  EXPECT_EQ(csv({{"A", "B", "C"}, {{*Date::of(2024, 1, 31), *Decimal::parse("1.50"), true}}}),
            "A,B,C\r\n2024-01-31,1.50,True\r\n");
}

}  // namespace
}  // namespace azcoll::cli
