#include "text/quoting.h"

#include <gtest/gtest.h>

namespace azcoll {
namespace {

TEST(Doubled, WritesEachMarkTwice) {
  EXPECT_EQ(doubled("L'Aquila 'd'", '\''), "L''Aquila ''d''");
  EXPECT_EQ(doubled("", '\''), "");
  EXPECT_EQ(doubled("'", '\''), "''");
}

TEST(Quoted, PutsMarksAroundAndDoublesTheClosingOne) {
  EXPECT_EQ(quoted("L'Aquila", '\''), "'L''Aquila'");
  EXPECT_EQ(quoted("a\"b", '"'), "\"a\"\"b\"");
  EXPECT_EQ(quoted("a]b[", '['), "[a]]b[]");
  EXPECT_EQ(quoted("a}b{", '{'), "{a}}b{}");
  EXPECT_EQ(quoted("", '\''), "''");
}

}  // namespace
}  // namespace azcoll
