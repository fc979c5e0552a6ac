#include "embedded/functions/like_pattern.h"

#include <string>

#include "gtest/gtest.h"

namespace azcoll::embedded {
namespace {

bool like(std::string_view text, std::string_view pattern) {
  return matchesLike(text, pattern, std::nullopt);
}

TEST(LikePattern, KnowsTheWildcards) {
  EXPECT_TRUE(like("", "%"));
  EXPECT_TRUE(like("Città", "c_tt%"));
  EXPECT_TRUE(like("abc", "%b%"));
  EXPECT_TRUE(like("aXbXc", "a%x%c"));
  EXPECT_FALSE(like("abc", "ab"));
  EXPECT_FALSE(like("abc", "_"));
  EXPECT_FALSE(like("ab ", "ab"));
  EXPECT_TRUE(like("à", "À"));
  EXPECT_FALSE(like("a", "à"));
}

TEST(LikePattern, KnowsSets) {
  EXPECT_TRUE(like("B5", "[a-c][0-9]"));
  EXPECT_FALSE(like("d5", "[a-c]5"));
  EXPECT_TRUE(like("d", "[^a-c]"));
  EXPECT_FALSE(like("b", "[^a-c]"));
  EXPECT_TRUE(like("]", "[]]"));
  EXPECT_TRUE(like("-", "[a-]"));
  EXPECT_TRUE(like("50%", "50[%]"));
  EXPECT_FALSE(like("[", "["));
  EXPECT_FALSE(like("a", "[a"));
}

TEST(LikePattern, TakesAnEscapedCharacterAsItIs) {
  EXPECT_TRUE(matchesLike("5%", "5!%", U'!'));
  EXPECT_FALSE(matchesLike("5x", "5!%", U'!'));
  EXPECT_TRUE(matchesLike("!", "!!", U'!'));
  EXPECT_TRUE(matchesLike("[a", "![a", U'!'));
}

TEST(LikePattern, StaysQuickOnHostilePatterns) {
  std::string pattern;
  for (int i = 0; i < 200; ++i) {
    pattern += "%a";
  }
  EXPECT_FALSE(like(std::string(20000, 'a') + "b", pattern + "%c"));
}

}  // namespace
}  // namespace azcoll::embedded
