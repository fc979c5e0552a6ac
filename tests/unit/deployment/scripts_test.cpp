// The scripts of the folder `schema`: what they define, and how a script is run.

#include "deployment/scripts.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "data/connection.h"
#include "data/error.h"
#include "deployment/installation.h"
#include "deployment/rights.h"
#include "deployment/schema.h"
#include "platform/provider_factory.h"
#include "support/example_scripts.h"

namespace azcoll::deployment {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;
using ::testing::ThrowsMessage;

TEST(Scripts, AreThoseOfTheSchemaFolder) {
  for (const Script& script : {kTabelle, kProcedure, kEsempio, kPermessi}) {
    EXPECT_EQ(script.text, test::readFile(test::schemaPath(script.name))) << script.name;
    EXPECT_THAT(std::string{script.text}, testing::Not(IsEmpty()));
  }
}

TEST(ExpectedSchema, HoldsWhatTheScriptsDefine) {
  const Schema& schema = expectedSchema();
  const SchemaTable* const links = schema.table("cg86_aziendecoll");
  ASSERT_NE(links, nullptr);
  EXPECT_TRUE(links->columns.front().identity);
  EXPECT_THAT(links->definitions, SizeIs(6));  // with its five indexes
  EXPECT_THAT(links->definitions.back(),
              StartsWith("CREATE INDEX IX_CG86_DITTACOLL ON CG86_AZIENDECOLL"));
  const SchemaRoutine* const procedure = schema.routine("PC_GetDitteCollegate");
  ASSERT_NE(procedure, nullptr);
  ASSERT_THAT(procedure->parameters, SizeIs(9));
  EXPECT_EQ(procedure->parameters.back().type.text(), "VARCHAR(8000)");
  EXPECT_TRUE(procedure->parameters.back().output);
  EXPECT_THAT(procedure->definition,
              AllOf(StartsWith("CREATE PROCEDURE"), ::testing::EndsWith("END")));
  const SchemaRoutine* const function = schema.routine("FNCG28_TABCODIVA");
  ASSERT_NE(function, nullptr);
  EXPECT_THAT(function->columns, SizeIs(4));
}

TEST(ExpectedSchema, EndsADefinitionBeforeTheCommentsOfTheNextOne) {
  for (const SchemaTable& table : expectedSchema().tables) {
    EXPECT_THAT(table.definitions.front(), ::testing::EndsWith(")")) << table.name;
  }
}

TEST(ExpectedRights, AreReadFromTheScript) {
  const RoleRights& rights = expectedRights();
  EXPECT_EQ(rights.role, "azcoll_servizio");
  const Grant update{"UPDATE", "dbo", "CG44_CLIFOR"};
  EXPECT_NE(std::ranges::find(rights.grants, update), rights.grants.end());
  const Grant call{"EXECUTE", "dbo", "PC_GetDitteCollegate"};
  EXPECT_NE(std::ranges::find(rights.grants, call), rights.grants.end());
}

TEST(ExpectedRights, AreNotGuessedFromAnotherForm) {
  for (const char* script :
       {"GRANT SELECT TO R", "GRANT SELECT ON T TO R", "GRANT SELECT (A) ON dbo.T TO R",
        "GRANT SELECT ON dbo.T TO R GRANT SELECT ON dbo.U TO S", "GRANT", "GRANT SELECT,"}) {
    EXPECT_THAT([&] { static_cast<void>(readGrants(script)); },
                ThrowsMessage<Error>(HasSubstr("GRANT in una forma non prevista")))
        << script;
  }
}

class RunScript : public testing::Test {
 protected:
  void SetUp() override {
    connection_->setCursorLocation(CursorLocation::Client);
    connection_->open("", "", CommandOption::Unspecified);
  }

  void run(std::string_view text) { runScript(*connection_, {"prova.sql", text}); }

  std::shared_ptr<Connection> connection_ =
      newConnectionFor("Provider=embedded;Data Source=:memory:");
};

TEST_F(RunScript, RunsEveryBatch) {
  run("CREATE TABLE T (A INT NOT NULL)\nGO\nINSERT INTO T (A) VALUES (1)\ngo\n");
  std::int64_t affected = 0;
  const auto rows = connection_->execute("SELECT A FROM T", affected, CommandOption::Text);
  EXPECT_EQ(rows->recordCount(), 1);
}

TEST_F(RunScript, NamesScriptLineAndStatementOfASyntaxError) {
  EXPECT_THAT([&] { run("CREATE TABLE T (A INT NOT NULL)\nGO\n\nINSERT INTO T (A)\nVALUS (1)\n"); },
              ThrowsMessage<Error>(AllOf(HasSubstr("prova.sql, riga 5: "), HasSubstr("Errore 102"),
                                         HasSubstr("INSERT INTO T (A) VALUS (1)"))));
}

TEST_F(RunScript, NamesScriptLineAndStatementOfARefusedStatement) {
  EXPECT_THAT(
      [&] { run("CREATE TABLE T (A INT NOT NULL)\nGO\n\nINSERT INTO T (A)\nVALUES (NULL)\n"); },
      ThrowsMessage<Error>(AllOf(HasSubstr("prova.sql, riga 4: "), HasSubstr("Errore 515"),
                                 HasSubstr("INSERT INTO T (A) VALUES (NULL)"))));
}

TEST_F(RunScript, ShortensALongStatement) {
  const std::string text = "SELECT '" + std::string(500, 'x') + "' FROM NESSUNA";
  EXPECT_THAT([&] { run(text); },
              ThrowsMessage<Error>(AllOf(HasSubstr("Errore 208"), HasSubstr("xxx…"),
                                         testing::Not(HasSubstr(std::string(300, 'x'))))));
}

TEST_F(RunScript, KeepsControlCharactersOutOfTheMessage) {
  EXPECT_THAT([&] { run("SELECT A\x1b[2J\x7f\x01 FROM NESSUNA"); },
              ThrowsMessage<Error>(AllOf(HasSubstr("\n  SELECT A [2J FROM NESSUNA"),
                                         testing::Not(HasSubstr("\n  SELECT A\x1b")))));
}

}  // namespace
}  // namespace azcoll::deployment
