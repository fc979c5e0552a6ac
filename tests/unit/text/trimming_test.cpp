#include "text/trimming.h"

#include <gtest/gtest.h>

namespace azcoll {
namespace {

TEST(Trim, TakesBlanksOffBothEnds) {
  EXPECT_EQ(trim("  a b "), "a b");
  EXPECT_EQ(trim("   "), "");
  EXPECT_EQ(trim(""), "");
  EXPECT_EQ(trim("\ta\t"), "\ta\t");
  EXPECT_EQ(trim(" \xFF "), "\xFF");
}

TEST(Trim, TakesBlanksOffOneEnd) {
  EXPECT_EQ(trimStart("  a b "), "a b ");
  EXPECT_EQ(trimEnd("  a b "), "  a b");
  for (const char* const text : {"", "   "}) {
    EXPECT_EQ(trimStart(text), "");
    EXPECT_EQ(trimEnd(text), "");
  }
  EXPECT_EQ(trimStart("\t a"), "\t a");
  EXPECT_EQ(trimEnd("a \t"), "a \t");
}

}  // namespace
}  // namespace azcoll
