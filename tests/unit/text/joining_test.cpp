#include "text/joining.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace azcoll {
namespace {

TEST(JoinAll, PutsTheSeparatorBetweenTheElementsOnly) {
  EXPECT_EQ(joinAll(std::vector<std::string>{}, ", "), "");
  EXPECT_EQ(joinAll(std::vector<std::string>{"a"}, ", "), "a");
  EXPECT_EQ(joinAll(std::vector<std::string>{"a", "", "c"}, ", "), "a, , c");
}

TEST(JoinAll, MakesATextOfEachElement) {
  EXPECT_EQ(joinAll(std::vector<int>{1, 2}, "-", [](int n) { return std::to_string(n * n); }),
            "1-4");
}

}  // namespace
}  // namespace azcoll
