#include "unit/tsql/support.h"

namespace azcoll::tsql::test {
namespace {

std::string grouped(const Expression& expression);

std::string groupedNode(const Binary& binary) {
  static constexpr std::string_view kSymbols[] = {"+", "-", "*",  "/",  "%",  "=", "<>",
                                                  "<", ">", "<=", ">=", "&&", "||"};
  return "(" + grouped(*binary.left) + std::string(kSymbols[static_cast<std::size_t>(binary.op)]) +
         grouped(*binary.right) + ")";
}
std::string groupedNode(const Unary& unary) {
  static constexpr std::string_view kSymbols[] = {"-", "+", "!"};
  return "(" + std::string(kSymbols[static_cast<std::size_t>(unary.op)]) + grouped(*unary.operand) +
         ")";
}
std::string groupedNode(const Between& between) {
  return "(" + grouped(*between.operand) + " between " + grouped(*between.low) + " and " +
         grouped(*between.high) + ")";
}

/// An expression with every operator in parentheses.
std::string grouped(const Expression& expression) {
  if (const auto* binary = std::get_if<Binary>(&expression.node)) {
    return groupedNode(*binary);
  }
  if (const auto* unary = std::get_if<Unary>(&expression.node)) {
    return groupedNode(*unary);
  }
  if (const auto* between = std::get_if<Between>(&expression.node)) {
    return groupedNode(*between);
  }
  return print(expression);
}

const QuerySpecification& specificationOf(const Query& query) {
  return std::get<QuerySpecification>(query.body);
}

const Query& queryOf(const Batch& batch) {
  return *std::get<SelectStatement>(batch.statements.at(0)->node).query;
}

std::string groupedValue(const std::string& value) {
  const Batch batch = parse("SELECT " + value);
  return grouped(*specificationOf(queryOf(batch)).items.at(0).expression);
}

std::string groupedCondition(const std::string& condition) {
  const Batch batch = parse("SELECT 1 WHERE " + condition);
  return grouped(*specificationOf(queryOf(batch)).where);
}

TEST(Grouping, FollowsThePrecedenceOfArithmetic) {
  EXPECT_EQ(groupedValue("a + b * c - d"), "((a+(b*c))-d)");
  EXPECT_EQ(groupedValue("a - b - c"), "((a-b)-c)");
  EXPECT_EQ(groupedValue("a / b % c * d"), "(((a/b)%c)*d)");
  EXPECT_EQ(groupedValue("a - (b - c)"), "(a-(b-c))");
  EXPECT_EQ(groupedValue("(a + b) * c"), "((a+b)*c)");
}

TEST(Grouping, LetsASignTakeInTheFactorsBehindIt) {
  EXPECT_EQ(groupedValue("-100/-100*10"), "(-(100/(-(100*10))))");
  EXPECT_EQ(groupedValue("-a + b"), "((-a)+b)");
  EXPECT_EQ(groupedValue("a - -b + c"), "((a-(-b))+c)");
  EXPECT_EQ(groupedValue("(-a) * b"), "((-a)*b)");
}

TEST(Grouping, FollowsThePrecedenceOfConditions) {
  EXPECT_EQ(groupedCondition("a = 1 OR b = 2 AND NOT c = 3"), "((a=1)||((b=2)&&(!(c=3))))");
  EXPECT_EQ(groupedCondition("NOT a = 1 AND b = 2"), "((!(a=1))&&(b=2))");
  EXPECT_EQ(groupedCondition("(a = 1 OR b = 2) AND c = 3"), "(((a=1)||(b=2))&&(c=3))");
  EXPECT_EQ(groupedCondition("a BETWEEN 1 AND 2 AND b + 1 > 3"),
            "((a between 1 and 2)&&((b+1)>3))");
  EXPECT_EQ(groupedCondition("a = 1 OR b = 2 OR c = 3"), "(((a=1)||(b=2))||(c=3))");
  EXPECT_EQ(groupedCondition("((a)) + 1 = (b)"), "((a+1)=b)");
}

TEST(Grouping, LetsIntersectBindMoreThanUnion) {
  const Batch batch = parse("SELECT 1 UNION SELECT 2 INTERSECT SELECT 3 EXCEPT SELECT 4");
  const auto& outer = std::get<SetOperation>(queryOf(batch).body);
  EXPECT_EQ(outer.op, SetOperator::Except);
  const auto& inner = std::get<SetOperation>(outer.left->body);
  EXPECT_EQ(inner.op, SetOperator::Union);
  EXPECT_EQ(std::get<SetOperation>(inner.right->body).op, SetOperator::Intersect);
}

TEST(Tree, KeepsTheOrderWithTheWholeQuery) {
  const Batch batch = parse("SELECT a FROM t UNION SELECT b FROM u ORDER BY 1 DESC, a");
  const Query& query = queryOf(batch);
  ASSERT_EQ(query.orderBy.size(), 2U);
  EXPECT_TRUE(query.orderBy[0].descending);
  EXPECT_FALSE(query.orderBy[1].descending);
  EXPECT_TRUE(std::get<SetOperation>(query.body).right->orderBy.empty());
}

TEST(Tree, HoldsSourcesWithAliasAndHints) {
  const Batch batch = parse("SELECT * FROM dbo.t AS x WITH(nolock), @v y, f(1), (SELECT 1 AS a) z");
  const auto& from = specificationOf(queryOf(batch)).from;
  ASSERT_EQ(from.size(), 4U);
  EXPECT_EQ(from[0]->alias, "x");
  const auto& table = std::get<NamedTable>(from[0]->node);
  EXPECT_EQ(table.name.parts, (std::vector<std::string>{"dbo", "t"}));
  EXPECT_EQ(table.hints, std::vector<std::string>{"NOLOCK"});
  EXPECT_EQ(std::get<NamedTable>(from[1]->node).name.parts, std::vector<std::string>{"@v"});
  EXPECT_EQ(std::get<FunctionTable>(from[2]->node).arguments.size(), 1U);
  EXPECT_EQ(from[2]->alias, "");
  EXPECT_TRUE(std::holds_alternative<DerivedTable>(from[3]->node));
}

TEST(Tree, HoldsAliasesOfEveryForm) {
  const Batch batch = parse("SELECT a, b AS c, d 'e', f = g, 'h' = i, @v = j");
  const auto& items = specificationOf(queryOf(batch)).items;
  ASSERT_EQ(items.size(), 6U);
  EXPECT_FALSE(items[0].hasAlias);
  const std::vector<std::string> aliases = {"", "c", "e", "f", "h", ""};
  for (std::size_t i = 0; i < items.size(); ++i) {
    EXPECT_EQ(items[i].alias, aliases[i]);
    EXPECT_EQ(items[i].hasAlias, !aliases[i].empty());
  }
  EXPECT_EQ(items[5].assignTo, "@v");
}

TEST(Tree, HoldsPositions) {
  const Batch batch = parse("SELECT 1\n\n  UPDATE t SET a = b + 1");
  const Statement& statement = *batch.statements.at(1);
  EXPECT_EQ(statement.position.line, 3U);
  EXPECT_EQ(statement.position.column, 3U);
  const auto& update = std::get<UpdateStatement>(statement.node);
  EXPECT_EQ(update.target.name.position.column, 10U);
  EXPECT_EQ(update.assignments.at(0).value->position.column, 20U);
}

TEST(Tree, HoldsColumnsAndConstraints) {
  const Batch batch = parse(
      "CREATE TABLE t (a INT IDENTITY(5, 10) NOT NULL PRIMARY KEY, b DECIMAL(9, 2) NULL "
      "CONSTRAINT df DEFAULT (0), c VARCHAR(MAX), FOREIGN KEY (b) REFERENCES dbo.u (x))");
  const auto& table = std::get<CreateTableStatement>(batch.statements.at(0)->node);
  ASSERT_EQ(table.columns.size(), 3U);
  EXPECT_TRUE(table.columns[0].identity);
  EXPECT_EQ(table.columns[0].identitySeed, 5);
  EXPECT_EQ(table.columns[0].identityIncrement, 10);
  EXPECT_EQ(table.columns[0].nullable, false);
  EXPECT_EQ(table.columns[1].type.name, "DECIMAL");
  EXPECT_EQ(table.columns[1].type.length, 9);
  EXPECT_EQ(table.columns[1].type.scale, 2);
  EXPECT_EQ(table.columns[1].nullable, true);
  EXPECT_EQ(table.columns[1].defaultName, "df");
  EXPECT_EQ(table.columns[2].type.length, -1);
  EXPECT_EQ(table.columns[2].nullable, std::nullopt);
  ASSERT_EQ(table.constraints.size(), 2U);
  EXPECT_EQ(table.constraints[0].kind, ConstraintKind::PrimaryKey);
  EXPECT_EQ(table.constraints[0].columns, std::vector<std::string>{"a"});
  EXPECT_EQ(table.constraints[1].kind, ConstraintKind::ForeignKey);
  EXPECT_EQ(table.constraints[1].referencedTable.parts, (std::vector<std::string>{"dbo", "u"}));
  EXPECT_EQ(table.constraints[1].referencedColumns, std::vector<std::string>{"x"});
}

TEST(Tree, HoldsParametersAndTheTextOfRoutines) {
  const Batch batch = parse(
      "-- head\nCREATE PROCEDURE p @a INT, @b VARCHAR(8000) = NULL OUTPUT AS\nRETURN 1 -- end\n ");
  const auto& procedure = std::get<CreateProcedureStatement>(batch.statements.at(0)->node);
  ASSERT_EQ(procedure.parameters.size(), 2U);
  EXPECT_FALSE(procedure.parameters[0].output);
  EXPECT_EQ(procedure.parameters[0].defaultValue, nullptr);
  EXPECT_TRUE(procedure.parameters[1].output);
  EXPECT_NE(procedure.parameters[1].defaultValue, nullptr);
  EXPECT_EQ(procedure.source,
            "CREATE PROCEDURE p @a INT, @b VARCHAR(8000) = NULL OUTPUT AS\nRETURN 1 -- end");
}

TEST(Tree, NamesAnIndexBehindItsTable) {
  const Batch batch = parse("DROP INDEX i ON dbo.t");
  const auto& drop = std::get<DropStatement>(batch.statements.at(0)->node);
  EXPECT_EQ(drop.kind, "INDEX");
  EXPECT_EQ(drop.name.parts, (std::vector<std::string>{"dbo", "t", "i"}));
}

TEST(Tree, TakesAnElseForTheNearestIf) {
  const Batch batch = parse("IF 1 = 1 IF 2 = 2 SELECT 1 ELSE SELECT 2");
  const auto& outer = std::get<IfStatement>(batch.statements.at(0)->node);
  EXPECT_EQ(outer.otherwise, nullptr);
  EXPECT_NE(std::get<IfStatement>(outer.then->node).otherwise, nullptr);
}

TEST(Tree, NumbersMarkers) {
  const Batch batch = parse("SELECT ?, a FROM t WHERE b = ?");
  EXPECT_EQ(batch.markerCount, 2U);
  const auto& where = std::get<Binary>(specificationOf(queryOf(batch)).where->node);
  EXPECT_EQ(std::get<Marker>(where.right->node).ordinal, 1U);
}

}  // namespace
}  // namespace azcoll::tsql::test
