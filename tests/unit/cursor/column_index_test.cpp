#include "cursor/column_index.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace azcoll::cursor {
namespace {

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
