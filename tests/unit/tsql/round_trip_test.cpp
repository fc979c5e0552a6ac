#include "tsql/script.h"
#include "unit/tsql/support.h"

namespace azcoll::tsql::test {
namespace {

TEST(RoundTrip, EveryStatementOfTheTablePrintsAsItsCanonicalText) {
  const std::vector<Fixture> fixtures = readFixtures();
  ASSERT_GT(fixtures.size(), 90U);
  for (const Fixture& fixture : fixtures) {
    try {
      EXPECT_EQ(printed(fixture.statement), fixture.canonical);
    } catch (const SyntaxError& error) {
      ADD_FAILURE() << fixture.statement << "\n" << error.located();
    }
  }
}

TEST(RoundTrip, CanonicalTextsPrintAsThemselves) {
  for (const Fixture& fixture : readFixtures()) {
    EXPECT_EQ(printed(fixture.canonical), fixture.canonical);
  }
}

TEST(RoundTrip, TheScriptsOfTheDatabaseParseAndPrintStably) {
  for (const char* name : {"tabelle.sql", "procedure.sql", "esempio.sql"}) {
    const std::string script = readFile(std::string(AZCOLL_SOURCE_DIR "/schema/") + name);
    const std::vector<ScriptBatch> batches = splitScript(script);
    EXPECT_FALSE(batches.empty()) << name;
    for (const ScriptBatch& batch : batches) {
      try {
        const std::string text = printed(batch.text);
        EXPECT_EQ(printed(text), text);
      } catch (const SyntaxError& error) {
        ADD_FAILURE() << name << ", batch of line " << batch.firstLine << ": " << error.located();
      }
    }
  }
}

TEST(RoundTrip, PartsOfATreePrintAlone) {
  const Batch batch = parse("SELECT a + 1 FROM t WHERE b = 2");
  const Statement& statement = *batch.statements.at(0);
  EXPECT_EQ(print(statement), "SELECT a + 1 FROM t WHERE b = 2");
  const Query& query = *std::get<SelectStatement>(statement.node).query;
  EXPECT_EQ(print(query), "SELECT a + 1 FROM t WHERE b = 2");
  const auto& specification = std::get<QuerySpecification>(query.body);
  EXPECT_EQ(print(*specification.items.at(0).expression), "a + 1");
  EXPECT_EQ(print(*specification.where), "b = 2");
}

TEST(RoundTrip, AnElseKeepsItsIfInATreeThatNoTextHas) {
  Batch batch = parse("IF 1 = 1 BEGIN IF 2 = 2 SELECT 1 END ELSE SELECT 2");
  auto& outer = std::get<IfStatement>(batch.statements.at(0)->node);
  StatementPtr inner = std::move(std::get<BlockStatement>(outer.then->node).statements.at(0));
  outer.then = std::move(inner);
  EXPECT_EQ(print(batch), "IF 1 = 1 BEGIN IF 2 = 2 SELECT 1 END ELSE SELECT 2");
}

}  // namespace
}  // namespace azcoll::tsql::test
