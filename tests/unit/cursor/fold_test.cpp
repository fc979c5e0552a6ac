#include "cursor/fold.h"

#include "gtest/gtest.h"

#include "cursor/column_index.h"

namespace azcoll::cursor {
namespace {

TEST(Fold, MakesLatinCapitalsSmall) {
  EXPECT_EQ(folded("AZ az 09_[@`{"), "az az 09_[@`{");
  EXPECT_EQ(folded("ATTIVIT\u00C0"), "attivit\u00E0");
  EXPECT_EQ(folded("\u00C7\u00D1\u00DE"), "\u00E7\u00F1\u00FE");
  EXPECT_EQ(folded("\u0100\u0136\u0139\u013D"), "\u0101\u0137\u013A\u013E");
  EXPECT_EQ(folded("\u0141\u0147\u014A\u0160\u0176\u0179\u017D"),
            "\u0142\u0148\u014B\u0161\u0177\u017A\u017E");
}

TEST(Fold, LeavesAloneWhatHasNoSmallForm) {
  for (const char* text : {"\u00D7", "\u00F7", "\u00DF", "\u0130", "\u0131", "\u0138", "\u013F",
                           "\u0149", "\u0178", "\u017F", "\u20AC", "\xC3", "\x80\xFF", ""}) {
    EXPECT_EQ(folded(text), text);
  }
  EXPECT_EQ(folded("\xC3"
                   "A"),
            "\xC3"
            "a");
}

TEST(Fold, ComparesWithoutRegardToCase) {
  EXPECT_EQ(compareFolded("Rossi", "ROSSI"), std::strong_ordering::equal);
  EXPECT_EQ(compareFolded("Rossa", "ROSSI"), std::strong_ordering::less);
  EXPECT_EQ(compareFolded("Rossi", "ROSS"), std::strong_ordering::greater);
  EXPECT_EQ(compareFolded("", "a"), std::strong_ordering::less);
  EXPECT_TRUE(sameName("Attivit\u00E0", "ATTIVIT\u00C0"));
  EXPECT_FALSE(sameName("A", "AB"));
  EXPECT_FALSE(sameName("A", "B"));
}

TEST(ColumnIndex, FindsTheFirstOfSeveralColumnsOfOneName) {
  std::vector<ColumnInfo> columns;
  for (const char* name : {"A", "b", "", "B", "Attivit\u00E0"}) {
    columns.push_back(ColumnInfo{.name = name});
  }
  ColumnIndex index;
  EXPECT_EQ(index.find(columns, "B"), 1U);
  EXPECT_EQ(index.find(columns, ""), 2U);
  EXPECT_EQ(index.find(columns, "ATTIVIT\u00C0"), 4U);
  EXPECT_EQ(index.find(columns, "C"), std::nullopt);
}

TEST(ColumnIndex, FindsEachOfManyColumns) {
  std::vector<ColumnInfo> columns;
  for (int number = 0; number < 500; ++number) {
    columns.push_back(ColumnInfo{.name = "CG86_COLONNA" + std::to_string(number)});
  }
  ColumnIndex index;
  for (std::size_t number = 0; number < columns.size(); ++number) {
    EXPECT_EQ(index.find(columns, "cg86_colonna" + std::to_string(number)), number);
  }
}

TEST(ColumnIndex, StartsAgainAfterAReset) {
  ColumnIndex index;
  EXPECT_EQ(index.find({ColumnInfo{.name = "A"}}, "A"), 0U);
  index.reset();
  EXPECT_EQ(index.find({ColumnInfo{.name = "X"}, ColumnInfo{.name = "A"}}, "A"), 1U);
  index.reset();
  EXPECT_EQ(index.find({}, "A"), std::nullopt);
}

}  // namespace
}  // namespace azcoll::cursor
