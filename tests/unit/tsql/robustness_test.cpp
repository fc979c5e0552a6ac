#include <chrono>
#include <random>

#include "tsql/script.h"
#include "tsql/shape.h"
#include "unit/tsql/support.h"

namespace azcoll::tsql::test {
namespace {

std::string repeated(std::string_view part, std::size_t times) {
  std::string text;
  text.reserve(part.size() * times);
  for (std::size_t i = 0; i < times; ++i) {
    text += part;
  }
  return text;
}

TEST(Nesting, IsFollowedUpToTheLimitAndRefusedBeyondIt) {
  const std::size_t n = kMaxNesting;
  EXPECT_EQ(printed("SELECT " + repeated("(", n) + "1" + repeated(")", n)), "SELECT 1");
  const SyntaxError error = refusal("SELECT " + repeated("(", n + 1) + "1" + repeated(")", n + 1));
  EXPECT_EQ(error.number(), 191);
  EXPECT_STREQ(error.what(),
               "Some part of your SQL statement is nested too deeply. Rewrite the query or break "
               "it up into smaller queries.");
  EXPECT_EQ(error.position().column, 8 + n);
}

TEST(Nesting, IsRefusedInEveryConstructThatNests) {
  const std::size_t n = 10000;
  for (const std::string& text : {"SELECT " + repeated("(", n),
                                  "SELECT " + repeated("(SELECT ", n),
                                  "SELECT * FROM " + repeated("(", n),
                                  "SELECT * FROM " + repeated("(SELECT * FROM ", n),
                                  "SELECT * FROM " + repeated("a JOIN ", n),
                                  "SELECT " + repeated("- ", n) + "1",
                                  "SELECT 1 WHERE " + repeated("NOT ", n) + "1 = 1",
                                  "SELECT 1 WHERE " + repeated("(", n),
                                  "SELECT " + repeated("f(", n),
                                  "SELECT " + repeated("CASE ", n),
                                  "SELECT " + repeated("CASE WHEN 1 = 1 THEN ", n),
                                  "SELECT " + repeated("CAST(", n),
                                  "SELECT " + repeated("CONVERT(INT, ", n),
                                  "SELECT " + repeated("IIF(1 = 1, ", n),
                                  "SELECT 1 WHERE " + repeated("EXISTS(SELECT 1 WHERE ", n),
                                  "SELECT 1 WHERE " + repeated("1 IN(SELECT 1 WHERE ", n),
                                  repeated("IF 1 = 1 ", n),
                                  repeated("IF 1 = 1 SELECT 1 ELSE ", n),
                                  repeated("WHILE 1 = 1 ", n),
                                  repeated("BEGIN ", n),
                                  repeated("(", n),
                                  "INSERT INTO t " + repeated("(", n),
                                  "SELECT 1 UNION " + repeated("(", n),
                                  "SELECT * FROM a CROSS APPLY " + repeated("f(", n)}) {
    EXPECT_EQ(refusal(text).number(), 191) << text.substr(0, 60);
  }
}

TEST(Chains, AreFollowedUpToTheLimitAndRefusedBeyondIt) {
  const std::size_t n = kMaxChain;
  for (const auto& [start, link] :
       {std::pair("SELECT 1", " + 1"), std::pair("SELECT 1", " * 1"),
        std::pair("SELECT 1 WHERE 1 = 1", " AND 1 = 1"),
        std::pair("SELECT 1 WHERE 1 = 1", " OR 1 = 1"), std::pair("SELECT 1", " UNION SELECT 1"),
        std::pair("SELECT 1", " INTERSECT SELECT 1"),
        std::pair("SELECT 1 FROM t", " CROSS JOIN t")}) {
    const std::string longest = start + repeated(link, n);
    EXPECT_EQ(printed(longest), longest) << link;
    EXPECT_EQ(refusal(longest + link).number(), 191) << link;
    EXPECT_EQ(refusal(start + repeated(link, 100000)).number(), 191) << link;
  }
}

TEST(Chains, CountWhatIsNestedInThem) {
  // The first operand of the outer chain is a chain itself: together they are too high.
  std::string text = "1";
  for (int level = 0; level < 5; ++level) {
    text = "(" + text + repeated(" + 1", kMaxChain / 4) + ")";
  }
  EXPECT_EQ(refusal("SELECT " + text).number(), 191);
  // Side by side they are not.
  const std::string chain = "f(1" + repeated(" + 1", kMaxChain / 2) + ")";
  const std::string wide = "SELECT " + chain + " + " + chain + " + " + chain;
  EXPECT_EQ(printed(wide), wide);
}

TEST(LargeTexts, AreReadInBoundedTime) {
  const auto start = std::chrono::steady_clock::now();
  const std::size_t bytes = 10'000'000;
  EXPECT_EQ(parse("SELECT " + repeated("a, ", bytes / 3) + "b").statements.size(), 1U);
  EXPECT_EQ(parse(repeated("SELECT 1 ", bytes / 90)).statements.size(), bytes / 90);
  EXPECT_EQ(parse("SELECT '" + std::string(bytes, 'x') + "'").literalCount, 1U);
  EXPECT_EQ(parse(std::string(bytes, ' ')).statements.size(), 0U);
  EXPECT_EQ(refusal("SELECT '" + std::string(bytes, 'x')).number(), 105);
  EXPECT_EQ(refusal("SELECT " + std::string(bytes, '(')).number(), 191);
  EXPECT_EQ(refusal("SELECT " + std::string(bytes, 'x')).number(), 103);
  EXPECT_EQ(refusal(repeated("/*", bytes / 2)).number(), 113);
  EXPECT_EQ(refusal(repeated("/* */", bytes / 5) + ")").position().column, bytes + 1);
  EXPECT_EQ(splitScript(repeated("SELECT 1\nGO\n", bytes / 12)).size(), bytes / 12);
  Shape shape;
  scanShape(repeated("('a', 1) ", bytes / 9), shape);
  EXPECT_EQ(shape.literals.size(), bytes / 9 * 2);
  const auto seconds = std::chrono::steady_clock::now() - start;
  EXPECT_LT(std::chrono::duration_cast<std::chrono::seconds>(seconds).count(), 120);
}

TEST(MalformedUtf8, IsRefusedAtItsPlaceWhereverItStands) {
  for (const char* text :
       {"SELECT 1,\n  'a\xC3' AS b", "SELECT 1,\n  [b\xFF]", "SELECT 1,\n  bb\x80",
        "SELECT 1,\n--b\xED\xA0\x80", "SELECT 1,\n/*\xC3\xC3*/ 'open"}) {
    const SyntaxError error = refusal(text);
    EXPECT_EQ(error.number(), 0);
    EXPECT_STREQ(error.what(), "The text is not valid UTF-8.");
    EXPECT_EQ(error.position().line, 2U);
    EXPECT_NE(error.fragment().find("»\xEF\xBF\xBD«"), std::string::npos) << error.fragment();
  }
}

TEST(MalformedUtf8, KeepsTheFragmentShort) {
  const SyntaxError error = refusal("SELECT" + std::string(10000, '\x80'));
  EXPECT_LT(error.fragment().size(), 1000U);
  const SyntaxError behind = refusal("SELECT\xFF" + std::string(10000, '\x80'));
  EXPECT_LT(behind.fragment().size(), 1000U);
}

/// A text of random pieces of the language.
std::string tokenSoup(std::mt19937& random) {
  static const std::vector<std::string> kPieces = {
      "SELECT",  "FROM",    "WHERE",     "t",        "a",      "(",      ")",      ",",
      ".",       "*",       "=",         "<>",       "1",      "2.5",    "1E",     "'x'",
      "N'y'",    "'",       "[b]",       "[",        "AND",    "OR",     "NOT",    "IN",
      "LIKE",    "NULL",    "IS",        "CASE",     "WHEN",   "THEN",   "ELSE",   "END",
      "UNION",   "ALL",     "JOIN",      "LEFT",     "ON",     "GROUP",  "BY",     "ORDER",
      "INSERT",  "INTO",    "VALUES",    "UPDATE",   "SET",    "DELETE", "IF",     "BEGIN",
      "WHILE",   "DECLARE", "@v",        "INT",      "CREATE", "TABLE",  "EXISTS", "TOP",
      "WITH",    "NOLOCK",  "APPLY",     "OUTER",    "CAST",   "AS",     "-",      "--",
      "/*",      "*/",      "+",         "%",        ";",      "?",      "0x1F",   "BETWEEN",
      "EXEC",    "RETURN",  "PROCEDURE", "FUNCTION", "è",      "\n",     "@@x",    "\"q\"",
      "DEFAULT", "PRIMARY", "KEY",       "CONVERT",  "IIF",    "OUTPUT", "CROSS",  "$1",
      "{",       "\xC3"};
  std::string text;
  const auto length = random() % 40;
  for (std::size_t i = 0; i < length; ++i) {
    text += kPieces[random() % kPieces.size()];
    if (random() % 4 != 0) {
      text += ' ';
    }
  }
  return text;
}

/// Parses a text; what is accepted must print stably and have as many constants as its shape.
bool holdsTogether(const std::string& text) {
  Shape shape;
  scanShape(text, shape);
  try {
    const Batch batch = parse(text);
    const std::string canonical = print(batch);
    EXPECT_EQ(printed(canonical), canonical) << text;
    EXPECT_EQ(shape.literals.size(), batch.literalCount) << text;
    return true;
  } catch (const SyntaxError& error) {
    EXPECT_GE(error.position().line, 1U);
    EXPECT_LE(error.position().offset, text.size());
    EXPECT_NE(error.fragment().find("»"), std::string::npos) << error.fragment();
    return false;
  }
}

TEST(TokenSoup, NeverBreaksTheParser) {
  std::mt19937 random(20240101);
  for (int i = 0; i < 30000; ++i) {
    holdsTogether(tokenSoup(random));
  }
}

TEST(TokenSoup, OfMutatedStatementsNeverBreaksTheParser) {
  std::mt19937 random(7);
  const std::vector<Fixture> fixtures = readFixtures();
  std::size_t accepted = 0;
  for (int i = 0; i < 30000; ++i) {
    std::string text = fixtures[random() % fixtures.size()].statement;
    const std::string& other = fixtures[random() % fixtures.size()].statement;
    switch (random() % 4) {
      case 0:
        text.erase(random() % text.size(), random() % 8);
        break;
      case 1:
        text.resize(random() % text.size());
        break;
      case 2:
        text.insert(random() % text.size(), tokenSoup(random).substr(0, random() % 12));
        break;
      default:
        text = text.substr(0, random() % text.size()) + other.substr(random() % other.size());
        break;
    }
    accepted += holdsTogether(text) ? 1U : 0U;
  }
  EXPECT_GT(accepted, 1000U);  // enough of them to be worth the round trip
}

}  // namespace
}  // namespace azcoll::tsql::test
