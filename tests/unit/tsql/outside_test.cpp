#include "unit/tsql/support.h"

namespace azcoll::tsql::test {
namespace {

struct Outside {
  const char* text;
  const char* construct;
  std::uint32_t column;
};

class OutsideConstructs : public testing::TestWithParam<Outside> {};

TEST_P(OutsideConstructs, AreRefusedByNameAtTheirPlace) {
  const Outside& outside = GetParam();
  const SyntaxError error = refusal(outside.text);
  EXPECT_EQ(error.number(), 0) << outside.text << "\n" << error.located();
  EXPECT_EQ(error.what(), "Outside the supported T-SQL: " + std::string(outside.construct) + ".");
  EXPECT_EQ(error.position().column, outside.column) << outside.text;
}

INSTANTIATE_TEST_SUITE_P(
    Queries, OutsideConstructs,
    testing::Values(
        Outside{"WITH c AS (SELECT 1) SELECT * FROM c", "common table expressions (WITH)", 1},
        Outside{"SELECT a FROM t ORDER BY a OFFSET 5 ROWS", "OFFSET and FETCH", 28},
        Outside{"SELECT ROW_NUMBER() OVER (ORDER BY a)", "window functions (OVER)", 21},
        Outside{"SELECT STRING_AGG(a, ',') WITHIN GROUP (ORDER BY a)", "WITHIN GROUP", 27},
        Outside{"SELECT a INTO b FROM t", "SELECT INTO", 10},
        Outside{"SELECT TOP 5 PERCENT a FROM t", "TOP with PERCENT", 14},
        Outside{"SELECT TOP 5 WITH TIES a FROM t", "TOP with WITH TIES", 14},
        Outside{"SELECT a FROM t FOR XML PATH", "FOR behind a table", 17},
        Outside{"SELECT 1 FOR XML PATH", "FOR behind a query", 10},
        Outside{"SELECT 1 OPTION (RECOMPILE)", "query hints (OPTION)", 10},
        Outside{"SELECT a FROM t PIVOT (MAX(a) FOR b IN ([1])) p", "PIVOT and UNPIVOT", 17},
        Outside{"SELECT a FROM t TABLESAMPLE (1)", "TABLESAMPLE", 17},
        Outside{"SELECT a FROM t AS x (b)", "column aliases behind a table alias", 22},
        Outside{"SELECT * FROM (VALUES (1)) AS x", "VALUES as a table", 16},
        Outside{"SELECT a FROM t WITH (INDEX(1))", "index hints", 23},
        Outside{"SELECT a FROM t INNER HASH JOIN u ON 1 = 1", "join hints", 23},
        Outside{"SELECT a FROM t LEFT MERGE JOIN u ON 1 = 1", "join hints", 22},
        Outside{"SELECT a FROM t CROSS APPLY u", "APPLY with a table", 29},
        Outside{"SELECT a FROM OPENROWSET('x')", "the function OPENROWSET", 15},
        Outside{"SELECT a FROM [@x]", "a table whose name begins with @", 15},
        Outside{"SELECT a FROM db..t", "a name with an empty part", 18},
        Outside{"SELECT a FROM t GROUP BY ALL a", "GROUP BY ALL", 26},
        Outside{"SELECT a FROM t GROUP BY ROLLUP(a)", "ROLLUP, CUBE and GROUPING SETS", 26},
        Outside{"SELECT a FROM t GROUP BY GROUPING SETS (a)", "ROLLUP, CUBE and GROUPING SETS", 26},
        Outside{"SELECT a FROM t GROUP BY a WITH CUBE", "ROLLUP, CUBE and GROUPING SETS", 28}));

INSTANTIATE_TEST_SUITE_P(
    Expressions, OutsideConstructs,
    testing::Values(Outside{"SELECT a COLLATE x", "COLLATE in an expression", 10},
                    Outside{"SELECT 'a' COLLATE x", "COLLATE in an expression", 12},
                    Outside{"SELECT a & 1", "bitwise operators", 10},
                    Outside{"SELECT ~1", "bitwise operators", 8},
                    Outside{"SELECT 1 WHERE a = ALL (SELECT 1)",
                            "ALL, ANY and SOME in front of a subquery", 20},
                    Outside{"SELECT 1 WHERE a > ANY (SELECT 1)",
                            "ALL, ANY and SOME in front of a subquery", 20},
                    Outside{"SELECT 1 WHERE CONTAINS(a, 'b')", "the function CONTAINS", 16},
                    Outside{"SELECT TRY_CONVERT(INT, a)", "the function TRY_CONVERT", 8},
                    Outside{"SELECT TRY_CAST(a AS INT)", "the function TRY_CAST", 8},
                    Outside{"SELECT $5", "constants of money and special columns ($)", 8},
                    Outside{"SELECT {d '2024-01-01'}", "escape sequences in braces", 8},
                    Outside{"SELECT CAST(a AS dbo.x)", "a data type with a schema", 21},
                    Outside{"SELECT CAST(a AS CHAR VARYING(5))", "a data type of several words",
                            23}));

INSTANTIATE_TEST_SUITE_P(
    Changes, OutsideConstructs,
    testing::Values(
        Outside{"INSERT TOP (1) INTO t VALUES (1)", "TOP in a statement that changes rows", 8},
        Outside{"INSERT INTO t (a) OUTPUT inserted.a VALUES (1)", "the clause OUTPUT", 19},
        Outside{"INSERT INTO t EXEC p", "INSERT with EXECUTE", 15},
        Outside{"UPDATE TOP (1) t SET a = 1", "TOP in a statement that changes rows", 8},
        Outside{"UPDATE STATISTICS t", "UPDATE STATISTICS", 8},
        Outside{"UPDATE t SET @a = a = 1", "a variable set by UPDATE", 14},
        Outside{"UPDATE t SET a += 1", "compound assignment (+= and the like)", 16},
        Outside{"UPDATE t SET a = DEFAULT", "DEFAULT in UPDATE", 18},
        Outside{"UPDATE t SET a.WRITE('x', 0, 1)", "a method of a column", 21},
        Outside{"UPDATE t SET a = 1 OUTPUT inserted.a", "the clause OUTPUT", 20},
        Outside{"UPDATE t SET a = 1 WHERE CURRENT OF c", "WHERE CURRENT OF", 26},
        Outside{"UPDATE OPENQUERY(x, 'y') SET a = 1", "the function OPENQUERY", 8},
        Outside{"DELETE TOP (1) FROM t", "TOP in a statement that changes rows", 8},
        Outside{"DELETE FROM TOP (1)", "TOP in a statement that changes rows", 13},
        Outside{"DELETE FROM t OUTPUT deleted.a", "the clause OUTPUT", 15},
        Outside{"DELETE FROM t WHERE CURRENT OF c", "WHERE CURRENT OF", 21},
        Outside{"DELETE FROM t OPTION (RECOMPILE)", "query hints (OPTION)", 15},
        Outside{"MERGE t USING u ON 1 = 1", "the statement MERGE", 1},
        Outside{"TRUNCATE TABLE t", "the statement TRUNCATE", 1}));

INSTANTIATE_TEST_SUITE_P(
    Procedures, OutsideConstructs,
    testing::Values(Outside{"BEGIN TRY SELECT 1 END TRY", "BEGIN TRY", 7},
                    Outside{"BEGIN DISTRIBUTED TRAN", "BEGIN DISTRIBUTED", 7},
                    Outside{"BEGIN TRAN x", "named transactions", 12},
                    Outside{"COMMIT TRAN @x", "named transactions", 13},
                    Outside{"COMMIT TRAN WITH (DELAYED_DURABILITY = ON)",
                            "options of a transaction (WITH)", 13},
                    Outside{"DECLARE c CURSOR FOR SELECT 1", "cursors", 9},
                    Outside{"DECLARE @c CURSOR", "cursors", 12},
                    Outside{"SET @c = CURSOR FOR SELECT 1", "cursors", 10},
                    Outside{"SET @a += 1", "compound assignment (+= and the like)", 8},
                    Outside{"SELECT @a += 1", "compound assignment (+= and the like)", 8},
                    Outside{"SET @a.m = 1", "a method of a variable", 7},
                    Outside{"SET ROWCOUNT 10", "SET ROWCOUNT", 5},
                    Outside{"SET IDENTITY_INSERT t ON", "SET IDENTITY_INSERT", 5},
                    Outside{"SET STATISTICS IO ON", "SET STATISTICS", 5},
                    Outside{"SET TRANSACTION ISOLATION LEVEL SNAPSHOT", "SET TRANSACTION", 5},
                    Outside{"SET DATEFORMAT dmy", "SET DATEFORMAT with a value", 16},
                    Outside{"SET LOCK_TIMEOUT -1", "SET LOCK_TIMEOUT with a value", 18},
                    Outside{"SET NOCOUNT, XACT_ABORT ON", "SET of several options", 12},
                    Outside{"PRINT 'a'", "the statement PRINT", 1},
                    Outside{"THROW", "the statement THROW", 1},
                    Outside{"GOTO x", "the statement GOTO", 1}, Outside{"x: SELECT 1", "labels", 1},
                    Outside{"{call p}", "escape sequences in braces", 1},
                    Outside{"EXEC @r = p", "the return value of EXECUTE", 6},
                    Outside{"EXEC @p", "EXECUTE of a procedure named by a variable", 6},
                    Outside{"EXEC ('SELECT 1')", "EXECUTE of a text", 6},
                    Outside{"EXECUTE AS USER = 'x'", "EXECUTE AS", 9},
                    Outside{"EXEC p x", "a word in place of a constant", 8},
                    Outside{"EXEC p @a = DEFAULT", "DEFAULT as an argument", 13},
                    Outside{"EXEC p WITH RECOMPILE", "options of EXECUTE (WITH)", 8}));

INSTANTIATE_TEST_SUITE_P(
    Definitions, OutsideConstructs,
    testing::Values(
        Outside{"ALTER TABLE t ADD a INT", "the statement ALTER", 1},
        Outside{"CREATE OR ALTER PROCEDURE p AS SELECT 1", "CREATE OR ALTER", 8},
        Outside{"CREATE VIEW v AS SELECT 1", "the statement CREATE VIEW", 8},
        Outside{"CREATE SEQUENCE s", "the statement CREATE SEQUENCE", 8},
        Outside{"DROP VIEW v", "the statement DROP VIEW", 6},
        Outside{"DROP TABLE a, b", "DROP of several objects", 13},
        Outside{"CREATE TABLE t (a AS b)", "computed columns", 19},
        Outside{"CREATE TABLE t (a INT SPARSE)", "the column option SPARSE", 23},
        Outside{"CREATE TABLE t (a INT, INDEX i (a))", "an index inside CREATE TABLE", 24},
        Outside{"CREATE TABLE t (a INT) ON [PRIMARY]", "file groups (ON)", 24},
        Outside{"CREATE TABLE t (a INT) WITH (X = 1)", "storage options (WITH)", 24},
        Outside{"CREATE TABLE t (a INT PRIMARY KEY ON x)", "file groups (ON)", 35},
        Outside{"CREATE TABLE t (a INT IDENTITY(1, 1) NOT FOR REPLICATION)", "NOT FOR REPLICATION",
                38},
        Outside{"CREATE TABLE t (a INT REFERENCES u NOT FOR REPLICATION)", "NOT FOR REPLICATION",
                36},
        Outside{"CREATE TABLE t (a INT REFERENCES u ON DELETE CASCADE)",
                "foreign keys that change rows (CASCADE, SET NULL, SET DEFAULT)", 46},
        Outside{"CREATE TABLE t (a INT, CONSTRAINT d DEFAULT 1 FOR a)",
                "DEFAULT as a constraint of the table", 37},
        Outside{"CREATE TABLE t (a INT, PRIMARY KEY (a DESC))", "descending keys", 39},
        Outside{"CREATE INDEX i ON t (a) INCLUDE (b)", "indexes with INCLUDE", 25},
        Outside{"CREATE INDEX i ON t (a) WHERE a = 1", "filtered indexes (WHERE)", 25},
        Outside{"CREATE PROCEDURE p;1 AS SELECT 1", "numbered procedures", 19},
        Outside{"CREATE PROCEDURE p WITH RECOMPILE AS SELECT 1",
                "options of a procedure (WITH, FOR)", 20},
        Outside{"CREATE PROCEDURE p @a x READONLY AS SELECT 1", "table-valued parameters", 25},
        Outside{"CREATE PROCEDURE p @a CURSOR VARYING OUTPUT AS SELECT 1", "cursors", 23},
        Outside{"CREATE FUNCTION f () RETURNS INT AS BEGIN RETURN 1 END",
                "functions other than a single query (RETURNS TABLE AS RETURN)", 30},
        Outside{"CREATE FUNCTION f () RETURNS TABLE AS BEGIN RETURN END",
                "functions other than a single query (RETURNS TABLE AS RETURN)", 39},
        Outside{"CREATE FUNCTION f () RETURNS TABLE WITH SCHEMABINDING AS RETURN SELECT 1",
                "options of a function (WITH)", 36}));

}  // namespace
}  // namespace azcoll::tsql::test
