// The statements of the files over companies drawn at random: with and without the plan cache, the
// rewrites and SQLite's own optimiser, the engine gives the same rows.

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "data/error.h"
#include "embedded/connection.h"
#include "statements/random_companies.h"
#include "statements/statement_file.h"
#include "support/test_database.h"
#include "tsql/lexer.h"
#include "tsql/script.h"
#include "tsql/shape.h"

namespace azcoll::statements {
namespace {

using embedded::EmbeddedConnection;
using embedded::EngineOptions;

std::shared_ptr<EmbeddedConnection> openRandom(const EngineOptions& options, unsigned seed) {
  auto connection = embedded::newConnectionWith(options);
  connection->setConnectionString("Provider=embedded;Data Source=:memory:");
  connection->open("", "", CommandOption::Unspecified);
  for (const char* script : {"tabelle.sql", "procedure.sql"}) {
    const std::string text = test::readFile(std::string(AZCOLL_SOURCE_DIR "/schema/") + script);
    for (const tsql::ScriptBatch& batch : tsql::splitScript(text)) {
      static_cast<void>(connection->run(batch.text));
    }
  }
  for (const std::string& statement : RandomCompanies(seed).statements()) {
    static_cast<void>(connection->run(statement));
  }
  return connection;
}

/// Whether a TOP stands without an ORDER BY: which rows it takes lies open.
bool takesAnyRows(std::string_view text) {
  std::vector<bool> openTop{false};  // by the depth of parentheses
  tsql::Lexer lexer(text);
  for (tsql::Token token = lexer.next(); token.kind != tsql::TokenKind::End; token = lexer.next()) {
    if (token.symbol == tsql::Symbol::LeftParenthesis) {
      openTop.push_back(false);
    } else if (token.symbol == tsql::Symbol::RightParenthesis && openTop.size() > 1) {
      if (openTop.back()) {
        return true;
      }
      openTop.pop_back();
    } else if (token.keyword == tsql::Keyword::Top) {
      openTop.back() = true;
    } else if (token.keyword == tsql::Keyword::Order) {
      openTop.back() = false;
    }
  }
  return openTop.front();
}

/// The rows in one order, each behind a line break.
std::string rowsOf(const ExecutionResult& execution) {
  std::string text;
  for (const ResultSet& set : execution.results) {
    std::vector<std::string> rows;
    const std::vector<Variant> values = set.allValues();
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (i % set.columns.size() == 0) {
        rows.emplace_back("\n");
      }
      rows.back() += (values[i].isNull() ? "NULL" : values[i].text()) + "|";
    }
    std::sort(rows.begin(), rows.end());
    for (const std::string& row : rows) {
      text += row;
    }
  }
  return text;
}

/// Everything that a caller can tell about one execution; when it changed rows, the tables that the
/// component changes, too.
std::string outcome(EmbeddedConnection& connection, const std::string& text) {
  connection.beginTrans();
  std::string shown;
  try {
    const ExecutionResult execution = connection.run(text);
    shown = std::to_string(execution.recordsAffected) + rowsOf(execution);
    if (execution.recordsAffected > 0) {
      for (const char* table : {"CG86_AZIENDECOLL", "CG96_ANAGATTIVITA", "CG25_ANADITTAGEST",
                                "CG18_ANADITTABASE", "CG44_CLIFOR", "CG32_ANADITTAPSEZ"}) {
        shown += rowsOf(connection.run(std::string("SELECT * FROM ") + table));
      }
    }
  } catch (const Error& error) {
    shown = "error " + std::to_string(error.info().nativeNumber) + " " + error.description();
  }
  connection.rollbackTrans();
  return shown;
}

/// The queries and the changes of the files, one text of every shape.
std::vector<std::string> texts() {
  std::map<std::string, std::string> byShape;
  for (const std::string& path : statementFilePaths()) {
    for (const Case& testCase : readStatementFile(path).cases) {
      for (const Step& step : testCase.steps) {
        const bool runs = step.kind == StepKind::Query || step.kind == StepKind::Count ||
                          step.kind == StepKind::Ok;
        if (runs && !takesAnyRows(step.text)) {
          tsql::Shape shape;
          tsql::scanShape(step.text, shape);
          byShape.emplace(shape.key, step.text);
        }
      }
    }
  }
  std::vector<std::string> result;
  for (const auto& [shape, text] : byShape) {
    result.push_back(text);
  }
  return result;
}

class Engines : public testing::TestWithParam<unsigned> {};

TEST_P(Engines, GiveTheSameRowsWhateverTheirInnerWorkings) {
  const auto whole = openRandom({}, GetParam());
  const std::map<std::string, std::shared_ptr<EmbeddedConnection>> others{
      {"no plan cache", openRandom({.planCache = false}, GetParam())},
      {"no rewrites", openRandom({.rewriteIn = false}, GetParam())},
      {"no optimiser", openRandom({.optimizer = false}, GetParam())},
      {"none of them",
       openRandom({.planCache = false, .rewriteIn = false, .optimizer = false}, GetParam())}};
  RandomCompanies constants(GetParam() + 1000);
  const std::vector<std::string> all = texts();
  EXPECT_GT(all.size(), 120U);
  std::set<std::string> withRows;
  for (const std::string& text : all) {
    for (int round = 0; round < 12; ++round) {
      const std::string variant = constants.withOtherConstants(text);
      const std::string expected = outcome(*whole, variant);
      if (expected.find('\n') != std::string::npos) {
        withRows.insert(text);
      }
      for (const auto& [name, other] : others) {
        ASSERT_EQ(outcome(*other, variant), expected) << name << "\n" << variant;
      }
    }
  }
  EXPECT_GT(withRows.size(), 70U);  // enough of them have rows to be worth the comparison
}

INSTANTIATE_TEST_SUITE_P(Seeds, Engines, testing::Values(1U, 2U, 3U));

/// The procedure over every company and year, with the companies left out or not.
TEST_P(Engines, GiveTheSameGroups) {
  const auto whole = openRandom({}, GetParam());
  const auto plain =
      openRandom({.planCache = false, .rewriteIn = false, .optimizer = false}, GetParam());
  std::size_t groups = 0;
  for (const int company : {5, 10, 12, 15, 20, 30, 31, 40, 51, 52}) {
    for (const int year : {2023, 2024, 2025, 2026}) {
      for (int excluded = 0; excluded < 4; ++excluded) {
        const std::string text =
            "DECLARE @Elenco VARCHAR(8000) EXEC PC_GetDitteCollegate " + std::to_string(company) +
            ", '" + std::to_string(year) + "0101', 1, " + std::to_string(excluded % 2) + ", " +
            std::to_string(excluded / 2) + ", NULL, NULL, NULL, @Elenco OUTPUT SELECT @Elenco";
        const std::string expected = outcome(*whole, text);
        groups += std::count(expected.begin(), expected.end(), '\n') > 1 ? 1U : 0U;
        ASSERT_EQ(outcome(*plain, text), expected) << text;
      }
    }
  }
  EXPECT_GT(groups, 40U);
}

TEST(TopWithoutOrder, IsRecognised) {
  EXPECT_TRUE(takesAnyRows("SELECT TOP 1 a FROM t"));
  EXPECT_TRUE(takesAnyRows("SELECT (SELECT TOP (1) a FROM t) FROM t ORDER BY 1"));
  EXPECT_FALSE(takesAnyRows("SELECT TOP (1) a FROM (SELECT 1 AS a) AS t ORDER BY a"));
  EXPECT_FALSE(takesAnyRows("SELECT a FROM t"));
}

}  // namespace
}  // namespace azcoll::statements
