#include "data/connection_pairs.h"

#include <string>
#include <string_view>
#include <vector>

#include "gtest/gtest.h"

namespace azcoll {
namespace {

constexpr std::string_view kAllQuotes = "{\"'";

/// Every pair as `key|value meant|value written`, with what is odd about it.
std::vector<std::string> pairsIn(std::string_view text, std::string_view quotes = kAllQuotes) {
  std::vector<std::string> all;
  for (const ConnectionPair& pair : readConnectionPairs(text, quotes)) {
    std::string shown{pair.key};
    shown.append("|").append(pair.value).append("|").append(pair.raw);
    switch (pair.flaw) {
      case PairFlaw::None:
        break;
      case PairFlaw::NoEquals:
        shown += "|no equals";
        break;
      case PairFlaw::OpenQuote:
        shown += "|open";
        break;
      case PairFlaw::TextBehindQuote:
        shown += "|text behind";
        break;
    }
    all.push_back(shown);
  }
  return all;
}

using Shown = std::vector<std::string>;

TEST(ConnectionPairs, AreKeysAndValuesWithoutTheBlanksAround) {
  EXPECT_EQ(pairsIn(" Data Source = a b ;x=1"), (Shown{"Data Source|a b|a b", "x|1|1"}));
  EXPECT_EQ(pairsIn("a=;b= "), (Shown{"a||", "b||"}));
  EXPECT_EQ(pairsIn("a=b=c"), (Shown{"a|b=c|b=c"}));
  EXPECT_EQ(pairsIn("=x"), (Shown{"|x|x"}));
  EXPECT_EQ(pairsIn(";; ;"), Shown{});
  EXPECT_EQ(pairsIn(""), Shown{});
}

TEST(ConnectionPairs, AQuotedValueHoldsAnything) {
  EXPECT_EQ(pairsIn("a= {x;}}=} ;b=\"p\"\"q\";c='r''s'"),
            (Shown{"a|x;}=|{x;}}=}", "b|p\"q|\"p\"\"q\"", "c|r's|'r''s'"}));
  EXPECT_EQ(pairsIn("a={};b=1"), (Shown{"a||{}", "b|1|1"}));
}

TEST(ConnectionPairs, OnlyTheGivenMarksQuote) {
  EXPECT_EQ(pairsIn("a={x;y}", "\"'"), (Shown{"a|{x|{x", "y}|||no equals"}));
  EXPECT_EQ(pairsIn("a='x", ""), (Shown{"a|'x|'x"}));
}

TEST(ConnectionPairs, ReportTheirFlaws) {
  EXPECT_EQ(pairsIn("a b ;c=1"), (Shown{"a b|||no equals", "c|1|1"}));
  EXPECT_EQ(pairsIn("a='x;b=1"), (Shown{"a|x;b=1|'x;b=1|open"}));
  EXPECT_EQ(pairsIn("a='x''"), (Shown{"a|x'|'x''|open"}));
  EXPECT_EQ(pairsIn("a='x'y;b=1"), (Shown{"a|x|'x'y|text behind", "b|1|1"}));
  EXPECT_EQ(pairsIn("a='x' ;b=1"), (Shown{"a|x|'x'", "b|1|1"}));
}

TEST(ConnectionPairs, PointIntoTheString) {
  const std::string text = "DSN=x; PWD = {a;b} ;";
  const std::vector<ConnectionPair> pairs = readConnectionPairs(text, kAllQuotes);
  ASSERT_EQ(pairs.size(), 2U);
  EXPECT_EQ(pairs[1].raw.data() - text.data(), 13);
  EXPECT_EQ(pairs[1].key.data() - text.data(), 7);
}

}  // namespace
}  // namespace azcoll
