#include "unit/tsql/support.h"

namespace azcoll::tsql::test {
namespace {

TEST(SyntaxErrors, NameTheCurrentToken) {
  EXPECT_EQ(refused("SELECT a FROM t WHERE a IN()"), "102 1:28 Incorrect syntax near ')'.");
  EXPECT_EQ(refused("SELECT a FROM t WHERE a IN(, 10)"), "102 1:28 Incorrect syntax near ','.");
  EXPECT_EQ(refused("SELECT a\nFROM t\nWHERE a == 1"), "102 3:10 Incorrect syntax near '='.");
  EXPECT_EQ(refused("SELECT a FROM t u v"), "102 1:19 Incorrect syntax near 'v'.");
  EXPECT_EQ(refused("SELECT 1 FROM t WHERE a = 1 'x'"), "102 1:29 Incorrect syntax near 'x'.");
  EXPECT_EQ(refused("SELECT (a = 1)"), "102 1:11 Incorrect syntax near '='.");
  EXPECT_EQ(refused("SELECT a FROM t WHERE (a = 1) + 1 = 2"),
            "102 1:31 Incorrect syntax near '+'.");
  EXPECT_EQ(refused("SELECT a FROM t WHERE a = 1 = 2"), "102 1:29 Incorrect syntax near '='.");
  EXPECT_EQ(refused("SELECT 1 x y"), "102 1:12 Incorrect syntax near 'y'.");
  EXPECT_EQ(refused("SELEC a FROM t"), "102 1:1 Incorrect syntax near 'SELEC'.");
  EXPECT_EQ(refused("SELEC * FROM t"), "102 1:7 Incorrect syntax near '*'.");
  EXPECT_EQ(refused("SELECT 1; foo"), "102 1:11 Incorrect syntax near 'foo'.");
  EXPECT_EQ(refused("SELECT MAX(*)"), "102 1:12 Incorrect syntax near '*'.");
  EXPECT_EQ(refused("SELECT 1 + t.*"), "102 1:14 Incorrect syntax near '*'.");
  EXPECT_EQ(refused("SELECT a FROM t WHERE a LIKE"), "102 1:25 Incorrect syntax near 'LIKE'.");
  EXPECT_EQ(refused("SELECT (SELECT @a = 1)"), "102 1:19 Incorrect syntax near '='.");
  EXPECT_EQ(refused("INSERT INTO t SELECT @a = 1"), "102 1:25 Incorrect syntax near '='.");
  EXPECT_EQ(refused("SELECT CAST(1 AS VARCHAR(99999999999))"),
            "102 1:26 Incorrect syntax near '99999999999'.");
  EXPECT_EQ(refused("SELECT ! 1"), "102 1:8 Incorrect syntax near '!'.");
  EXPECT_EQ(refused("SELECT :a"), "102 1:8 Incorrect syntax near ':'.");
  EXPECT_EQ(refused("DECLARE @ INT"), "102 1:9 Incorrect syntax near '@'.");
  EXPECT_EQ(refused("CREATE TABLE t (a INT IDENTITY(x, 1))"),
            "102 1:32 Incorrect syntax near 'x'.");
  EXPECT_EQ(refused("CREATE TABLE t (a INT IDENTITY(99999999999999999999, 1))"),
            "102 1:32 Incorrect syntax near '99999999999999999999'.");
}

TEST(SyntaxErrors, NameTheLastTokenAtTheEndOfTheText) {
  EXPECT_EQ(refused("SELECT a FROM t WHERE a = "), "102 1:25 Incorrect syntax near '='.");
  EXPECT_EQ(refused("SELECT * FROM"), "102 1:10 Incorrect syntax near 'FROM'.");
  EXPECT_EQ(refused("SELECT * FROM t WHERE (a = 1  -- open"),
            "102 1:28 Incorrect syntax near '1'.");
  EXPECT_EQ(refused("IF 1 = 1 BEGIN SELECT 1"), "102 1:23 Incorrect syntax near '1'.");
  EXPECT_EQ(refused("CREATE PROCEDURE p AS"), "102 1:20 Incorrect syntax near 'AS'.");
}

TEST(SyntaxErrors, NameReservedWordsAsTheyAreWritten) {
  EXPECT_EQ(refused("SELECT a FROM t WHERE a = \r\n Order BY a"),
            "156 2:2 Incorrect syntax near the keyword 'Order'.");
  EXPECT_EQ(refused("SELECT select FROM t"), "156 1:8 Incorrect syntax near the keyword 'select'.");
  EXPECT_EQ(refused("SELECT a x FROM key"), "156 1:17 Incorrect syntax near the keyword 'key'.");
  EXPECT_EQ(refused("SELECT a AND b"), "156 1:10 Incorrect syntax near the keyword 'AND'.");
  EXPECT_EQ(refused("BEGIN END"), "156 1:7 Incorrect syntax near the keyword 'END'.");
  EXPECT_EQ(refused("END"), "156 1:1 Incorrect syntax near the keyword 'END'.");
  EXPECT_EQ(refused("SELECT LEFT FROM t"), "156 1:8 Incorrect syntax near the keyword 'LEFT'.");
  EXPECT_EQ(refused("SELECT a FROM t OUTER JOIN u ON 1 = 1"),
            "156 1:23 Incorrect syntax near the keyword 'JOIN'.");
  EXPECT_EQ(refused("(SELECT TOP 1 a FROM t ORDER BY a) UNION SELECT 2"),
            "156 1:24 Incorrect syntax near the keyword 'ORDER'.");
  EXPECT_EQ(refused("SELECT * FROM ((SELECT TOP 1 a FROM t ORDER BY a) UNION SELECT 2) x"),
            "156 1:51 Incorrect syntax near the keyword 'UNION'.");
  EXPECT_EQ(refused("SET ON"), "156 1:5 Incorrect syntax near the keyword 'ON'.");
  EXPECT_EQ(refused("CREATE CASE"), "156 1:8 Incorrect syntax near the keyword 'CASE'.");
  EXPECT_EQ(refused("DROP SELECT"), "156 1:6 Incorrect syntax near the keyword 'SELECT'.");
}

TEST(SyntaxErrors, TellAnOpenQuoteOnlyWhenAllInFrontOfItIsRight) {
  EXPECT_EQ(refused("INSERT INTO t VALUES (N'L'Aquila')"),
            "102 1:27 Incorrect syntax near 'Aquila'.");
  EXPECT_EQ(refused("SELECT 'abc"),
            "105 1:8 Unclosed quotation mark after the character string 'abc'.");
  EXPECT_EQ(refused("SELECT N'it''s"),
            "105 1:8 Unclosed quotation mark after the character string 'it''s'.");
  EXPECT_EQ(refused("SELECT [abc"),
            "105 1:8 Unclosed quotation mark after the character string 'abc'.");
  EXPECT_EQ(refused("\"abc"), "105 1:1 Unclosed quotation mark after the character string 'abc'.");
  EXPECT_EQ(refused("UPDATE t SET a = 'b' WHERE c = 'd''"),
            "105 1:32 Unclosed quotation mark after the character string 'd'''.");
  EXPECT_EQ(refused("SELECT ) 'abc"), "102 1:8 Incorrect syntax near ')'.");
}

TEST(SyntaxErrors, TellAnOpenComment) {
  EXPECT_EQ(refused("SELECT 1 /* a /* b */"), "113 1:10 Missing end comment mark '*/'.");
  EXPECT_EQ(refused("/*"), "113 1:1 Missing end comment mark '*/'.");
}

TEST(SyntaxErrors, TellNonBooleanConditions) {
  const std::string text =
      "An expression of non-boolean type specified in a context where a condition is expected, "
      "near '";
  EXPECT_EQ(refused("SELECT 1 WHERE a"), "4145 1:16 " + text + "a'.");
  EXPECT_EQ(refused("SELECT 1 WHERE (a OR b = 1)"), "4145 1:19 " + text + "OR'.");
  EXPECT_EQ(refused("IF @a SELECT 1"), "4145 1:7 " + text + "SELECT'.");
  EXPECT_EQ(refused("SELECT 1 WHERE (a AND b = 1)"), "4145 1:19 " + text + "AND'.");
}

TEST(SyntaxErrors, RefuseEmptyAndOverlongNames) {
  EXPECT_EQ(refusal("SELECT 1 AS ''").number(), 1038);
  EXPECT_EQ(refusal("SELECT [] FROM t").number(), 1038);
  EXPECT_EQ(refused("SELECT " + std::string(129, 'x')),
            "103 1:8 The identifier that starts with '" + std::string(128, 'x') +
                "' is too long. Maximum length is 128.");
  EXPECT_EQ(printed("SELECT " + std::string(128, 'x')), "SELECT " + std::string(128, 'x'));
  EXPECT_EQ(refusal("SELECT * FROM a.b.c.d.e").number(), 117);
}

TEST(SyntaxErrors, CarryTheNumbersOfTheRulesBeyondGrammar) {
  EXPECT_EQ(refused("SELECT 1 CREATE PROCEDURE p AS SELECT 1"),
            "111 1:17 'CREATE/ALTER PROCEDURE' must be the first statement in a query batch.");
  EXPECT_EQ(refused("SELECT 1; CREATE FUNCTION f () RETURNS TABLE AS RETURN SELECT 1"),
            "111 1:18 'CREATE FUNCTION' must be the first statement in a query batch.");
  EXPECT_EQ(refusal("CREATE FUNCTION f () RETURNS TABLE AS RETURN SELECT 1 SELECT 2").number(),
            156);
  EXPECT_EQ(refusal("SELECT * FROM (SELECT a FROM t ORDER BY a) x").number(), 1033);
  EXPECT_EQ(refusal("SELECT (SELECT 1 UNION SELECT 2 ORDER BY 1)").number(), 1033);
  EXPECT_EQ(refusal("SELECT * FROM t WITH (QUICKLY)").number(), 321);
  EXPECT_EQ(refusal("SELECT * FROM t WITH (NOLOCK,)").number(), 102);
  EXPECT_EQ(refusal("DROP INDEX i").number(), 159);
  EXPECT_EQ(refused("CREATE TABLE t (a INT DEFAULT 1 DEFAULT 2)"),
            "8148 1:33 More than one column DEFAULT constraint specified for column 'a', table "
            "'t'.");
}

TEST(SyntaxErrors, ShowTheMarkedPlace) {
  const SyntaxError error = refusal("SELECT a\r\nFROM t WHERE x = )\r\nORDER BY a");
  EXPECT_STREQ(error.what(), "Incorrect syntax near ')'.");
  EXPECT_EQ(error.fragment(), "FROM t WHERE x = »)«");
  EXPECT_EQ(error.located(), "Incorrect syntax near ')'. Line 2, column 18: FROM t WHERE x = »)«");
  EXPECT_EQ(error.position().offset, 27U);
}

TEST(SyntaxErrors, CountColumnsInCharacters) {
  EXPECT_EQ(refused("SELECT N'Attività', [è] ]"), "102 1:25 Incorrect syntax near ']'.");
}

TEST(SyntaxErrors, CutLongLinesAroundThePlace) {
  const SyntaxError error =
      refusal("SELECT " + std::string(100, 'a') + ", à, ) , " + std::string(100, 'b'));
  EXPECT_EQ(error.fragment(),
            "…" + std::string(35, 'a') + ", à, »)« , " + std::string(37, 'b') + "…");
  const SyntaxError text = refusal("SELECT 'x' y '" + std::string(100, 'c') + "\nd'");
  EXPECT_EQ(text.fragment(), "SELECT 'x' y »'" + std::string(31, 'c') + "…«");
  const SyntaxError lines = refusal("SELECT 'x' y '" + std::string(10, 'c') + "\nd' e");
  EXPECT_EQ(lines.fragment(), "SELECT 'x' y »'" + std::string(10, 'c') + "« e");
}

TEST(SyntaxErrors, CutLongTokensInMessages) {
  const std::string text = "SELECT 'x' y '" + std::string(500, 'c') + "'";
  EXPECT_EQ(refused(text), "102 1:14 Incorrect syntax near '" + std::string(128, 'c') + "'.");
}

}  // namespace
}  // namespace azcoll::tsql::test
