#include "odbc/select_shape.h"

#include "gtest/gtest.h"

namespace azcoll::odbc {
namespace {

/// `items FROM sources` in one line; empty when the text is no plain query.
std::string shown(std::string_view text) {
  const std::vector<SelectShape> shapes = selectShapes(text);
  std::string result;
  for (const SelectShape& shape : shapes) {
    result += result.empty() ? "" : " ; ";
    for (const SelectItem& item : shape.items) {
      result += item.qualifier.empty() ? "" : item.qualifier + ".";
      result += item.kind == SelectItem::Kind::AllColumns ? "*"
                : item.kind == SelectItem::Kind::Column   ? item.column
                                                          : "?";
      result += ' ';
    }
    result += "FROM";
    for (const SelectSource& source : shape.sources) {
      result += " " + (source.name.empty() ? "?" : source.name);
      result += source.alias == source.name ? "" : ":" + source.alias;
    }
  }
  return result;
}

TEST(SelectShape, PlainQueriesNameTableAndColumns) {
  EXPECT_EQ(shown("SELECT * FROM T1 WHERE 1=2"), "* FROM T1");
  EXPECT_EQ(shown("select A, [B c], \"D\" from [T 1] order by A"), "A B c D FROM T 1");
  EXPECT_EQ(shown("SELECT T.*, U.X FROM T AS T WITH(NOLOCK), U (NOLOCK)"), "T.* U.X FROM T ?");
  EXPECT_EQ(shown("SELECT TOP 1 A FROM T"), "A FROM T");
  EXPECT_EQ(shown("SELECT TOP (1 + 1) A FROM T"), "A FROM T");
  EXPECT_EQ(shown(" SELECT A AS X, A Y, T.A AS Z FROM T;"), "A A T.A FROM T");
}

TEST(SelectShape, ExpressionsAreComputed) {
  EXPECT_EQ(shown("SELECT A + 1, -B, COUNT(1), 'x', N'y', 5, NULL, @v, T.A + 1 X FROM T"),
            "? ? ? ? ? ? ? ? ? FROM T");
  EXPECT_EQ(shown("SELECT CASE WHEN T.K = (SELECT TOP 1 A.K FROM T AS A WHERE A.X = T.X)"
                  " THEN 1 ELSE 0 END AS PRIMA, T.* FROM T"),
            "? T.* FROM T");
  EXPECT_EQ(shown("SELECT ISNULL(A, (SELECT B FROM U UNION SELECT 1)) AS A, C FROM T"),
            "? C FROM T");
}

TEST(SelectShape, JoinsNameTheirTables) {
  EXPECT_EQ(shown("SELECT * FROM T AS A WITH (NOLOCK) LEFT OUTER JOIN U B ON B.K = A.K AND"
                  " B.J IN(1, 2) CROSS JOIN V INNER JOIN dbo.W ON 1=1 OUTER APPLY DBO.F(A.K, 1) G"),
            "* FROM T:A U:B V ? ?");
  EXPECT_EQ(shown("SELECT * FROM (SELECT * FROM T) AS A"), "* FROM ?");
  EXPECT_EQ(shown("SELECT * FROM T A, U"), "* FROM T:A U");
}

TEST(SelectShape, WhatIsNoPlainQueryIsNotGuessed) {
  for (const char* const text :
       {"", "SELECT 1", "UPDATE T SET A = 1", "SELECT A FROM T UNION SELECT A FROM U",
        "SELECT DISTINCT A FROM T", "SELECT A FROM T GROUP BY A", "SELECT A INTO #T FROM T",
        "SELECT A FROM T SELECT B FROM U", "SELECT A FROM T; UPDATE T SET A = 1",
        "WITH C AS (SELECT 1 A) SELECT A FROM C", "DECLARE @a int = 1 SELECT A FROM T",
        "SELECT A FROM T EXCEPT SELECT A FROM U"}) {
    EXPECT_EQ(shown(text), "") << text;
  }
}

TEST(SelectShape, SeveralQueriesGiveSeveralShapes) {
  EXPECT_EQ(shown("SELECT A FROM T ; SELECT * FROM U;"), "A FROM T ; * FROM U");
}

TEST(SelectShape, CommentsAndTextsHideNothing) {
  EXPECT_EQ(shown("SELECT A -- , B\n /* , C /* FROM X */ */ FROM T WHERE D = 'x'' FROM U;'"),
            "A FROM T");
}

TEST(SelectShape, MalformedTextIsTakenAsItComes) {
  for (const char* const text :
       {"SELECT 'open", "SELECT [open FROM T", "SELECT ((((", "))))", "/* open", "SELECT , FROM ,",
        "SELECT * FROM", "\xFF\xC3", "SELECT TOP", "SELECT TOP FROM", "SELECT . FROM . .",
        "FROM SELECT"}) {
    EXPECT_NO_THROW(static_cast<void>(selectShapes(text))) << text;
  }
}

TEST(SelectShape, BatchesThatMayChangeTablesAreKnown) {
  for (const char* const text :
       {"SELECT 1", "INSERT INTO T VALUES (1)", "UPDATE T SET A = 'DROP'", "DELETE FROM T",
        "DECLARE @a int = 1 IF 1=1 BEGIN UPDATE T SET A = 1 END", ""}) {
    EXPECT_TRUE(leavesTablesAlone(text)) << text;
  }
  for (const char* const text : {"CREATE TABLE T (A INT)", "DROP TABLE T", "sp_rename 'A', 'B'",
                                 "IF 1=1 ALTER TABLE T ADD B INT", "SELECT A INTO T FROM U",
                                 "EXEC P", "SELECT 1 DROP TABLE T"}) {
    EXPECT_FALSE(leavesTablesAlone(text)) << text;
  }
}

TEST(SelectShape, OnlyQueriesCanBeRunTwice) {
  for (const char* const text :
       {"SELECT 1", "select A, 'INSERT' from T with(updlock) where [UPDATE] = 1",
        "SELECT A FROM T UNION SELECT B FROM U; SELECT 2 -- EXEC", "SELECT DBO.F(1) /* SET */"}) {
    EXPECT_TRUE(onlyReads(text)) << text;
  }
  for (const char* const text :
       {"", "UPDATE T SET A = 1", "SELECT 1 INTO #T", "SELECT A FROM T DELETE FROM T",
        "SELECT NEXT VALUE FOR S", "DECLARE @a INT = 1 SELECT @a", "P_PROVA", "EXEC P_PROVA",
        "SELECT * FROM OPENQUERY(X, 'y')", "WITH A AS (SELECT 1 X) DELETE FROM A"}) {
    EXPECT_FALSE(onlyReads(text)) << text;
  }
}

}  // namespace
}  // namespace azcoll::odbc
