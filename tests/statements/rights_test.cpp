// What schema/permessi.sql grants is what the statements need: no less and no more.

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "data/text.h"
#include "statements/composed_statements.h"
#include "statements/needed_rights.h"
#include "statements/statement_file.h"
#include "support/test_database.h"
#include "tsql/parser.h"
#include "tsql/script.h"
#include "tsql/syntax_error.h"

namespace azcoll::statements {
namespace {

Rights rightsOf(std::string_view batch) {
  Rights rights;
  addNeededRights(rights, batch);
  return rights;
}

std::string shown(const Rights& rights) {
  std::ostringstream text;
  for (const auto& [object, verbs] : rights) {
    text << object << ":";
    for (const std::string& verb : verbs) {
      text << " " << verb;
    }
    text << "; ";
  }
  return text.str();
}

// ---------------------------------------------------------------- the rule

TEST(NeededRights, AreSelectForEveryTableThatIsReadWhereverTheQueryStands) {
  EXPECT_EQ(shown(rightsOf("SELECT A.X, (SELECT MAX(Y) FROM T2) FROM dbo.T1 AS A "
                           "LEFT JOIN (SELECT Z FROM T3) AS B ON B.Z IN (SELECT W FROM T4) "
                           "WHERE EXISTS (SELECT 1 FROM T5) OR A.X = CASE WHEN 1 = 1 THEN "
                           "(SELECT V FROM T6) END UNION SELECT U, 1 FROM t7 ORDER BY 1")),
            "T1: SELECT; T2: SELECT; T3: SELECT; T4: SELECT; T5: SELECT; T6: SELECT; T7: SELECT; ");
  EXPECT_EQ(shown(rightsOf("SELECT 1 FROM T OUTER APPLY DBO.F(T.A, 1) AS F")),
            "F: SELECT; T: SELECT; ");
}

TEST(NeededRights, AreReadingTooWhenAChangeLooksAtItsColumns) {
  EXPECT_EQ(shown(rightsOf("UPDATE T SET A = 1")), "T: UPDATE; ");
  EXPECT_EQ(shown(rightsOf("UPDATE T SET A = B")), "T: SELECT UPDATE; ");
  EXPECT_EQ(shown(rightsOf("UPDATE T SET A = ? WHERE K = ?")), "T: SELECT UPDATE; ");
  EXPECT_EQ(shown(rightsOf("UPDATE X SET A = 1 FROM T AS X INNER JOIN S ON S.K = X.K")),
            "S: SELECT; T: SELECT UPDATE; ");
  EXPECT_EQ(shown(rightsOf("DELETE FROM T")), "T: DELETE; ");
  EXPECT_EQ(shown(rightsOf("DELETE FROM T WHERE A = 1")), "T: DELETE SELECT; ");
  EXPECT_EQ(shown(rightsOf("INSERT INTO T (A) VALUES (1)")), "T: INSERT; ");
  EXPECT_EQ(shown(rightsOf("INSERT INTO T (A) SELECT A FROM S")), "S: SELECT; T: INSERT; ");
}

TEST(NeededRights, LeaveOutWhatBelongsToTheSession) {
  EXPECT_EQ(shown(rightsOf("DECLARE @T TABLE (A INT) INSERT INTO @T (A) SELECT A FROM S "
                           "DELETE FROM @T WHERE A = 1 SELECT A FROM @T")),
            "S: SELECT; ");
}

TEST(NeededRights, ReachIntoBranchesAndVariables) {
  EXPECT_EQ(shown(rightsOf("DECLARE @N INT = (SELECT COUNT(1) FROM T1) "
                           "IF EXISTS (SELECT 1 FROM T2) UPDATE T3 SET A = 1 "
                           "ELSE BEGIN DELETE FROM T4 END EXEC dbo.P @X = 1")),
            "P: EXECUTE; T1: SELECT; T2: SELECT; T3: UPDATE; T4: DELETE; ");
}

// ---------------------------------------------------------------- what the component sends

Rights rightsOfAllMethods() {
  Rights all;
  composeEverything({.statement =
                         [&all](std::string_view method, std::string_view text) {
                           try {
                             addNeededRights(all, text);
                           } catch (const tsql::SyntaxError&) {
                             // A value that breaks its statement: no server runs it.
                             ADD_FAILURE() << method << ": " << text;
                           }
                         },
                     .procedure = [&all](std::string_view name) { addProcedureRight(all, name); }});
  return all;
}

// ---------------------------------------------------------------- the script

constexpr std::string_view kRole = "azcoll_servizio";

/// Tables, procedure and function as the scripts spell them, in their order.
std::vector<std::string> schemaObjects() {
  std::vector<std::string> names;
  for (const std::string_view script : {"tabelle.sql", "procedure.sql"}) {
    for (const auto& batch : tsql::splitScript(test::readFile(test::schemaPath(script)))) {
      for (const auto& statement : tsql::parse(batch.text).statements) {
        std::visit(
            [&names](const auto& node) {
              using Node = std::remove_cvref_t<decltype(node)>;
              if constexpr (std::is_same_v<Node, tsql::CreateTableStatement> ||
                            std::is_same_v<Node, tsql::CreateProcedureStatement> ||
                            std::is_same_v<Node, tsql::CreateFunctionStatement>) {
                names.push_back(node.name.parts.back());
              }
            },
            statement->node);
      }
    }
  }
  return names;
}

std::string upper(std::string text) {
  std::ranges::transform(text, text.begin(),
                         [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

/// One line for each object, in the order of the schema.
std::vector<std::string> grantLines(const Rights& rights) {
  std::vector<std::string> lines;
  Rights left = rights;
  for (const std::string& object : schemaObjects()) {
    const auto found = left.find(upper(object));
    if (found == left.end()) {
      continue;
    }
    std::string verbs;
    for (const char* verb : {"SELECT", "INSERT", "UPDATE", "DELETE", "EXECUTE"}) {
      if (found->second.erase(verb) != 0) {
        verbs += join(verbs.empty() ? "" : ", ", verb);
      }
    }
    EXPECT_TRUE(found->second.empty()) << object << " " << *found->second.begin();
    lines.push_back(join("GRANT ", verbs, " ON dbo.", object, " TO ", std::string{kRole}));
    left.erase(found);
  }
  EXPECT_TRUE(left.empty()) << "not in the schema: " << shown(left);
  return lines;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream{text};
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

bool isGrant(const std::string& line) { return line.starts_with("GRANT "); }

TEST(Permissions, AreExactlyWhatTheMethodsNeed) {
  const std::vector<std::string> file = linesOf(test::readFile(test::schemaPath("permessi.sql")));
  const std::vector<std::string> needed = grantLines(rightsOfAllMethods());
  std::vector<std::string> granted;
  std::ranges::copy_if(file, std::back_inserter(granted), isGrant);
  EXPECT_GT(needed.size(), 30U);
  if (granted == needed) {
    return;
  }
  std::ostringstream wanted;
  bool written = false;
  for (const std::string& line : file) {
    if (!isGrant(line)) {
      wanted << line << '\n';
    } else if (!std::exchange(written, true)) {
      for (const std::string& each : needed) {
        wanted << each << '\n';
      }
    }
  }
  ADD_FAILURE() << "schema/permessi.sql should be:\n" << wanted.str();
}

TEST(Permissions, AreGivenToARoleThatIsMadeOnceAndByNothingElse) {
  std::vector<std::string> rest;
  for (const std::string& line : linesOf(test::readFile(test::schemaPath("permessi.sql")))) {
    if (!isGrant(line) && !line.starts_with("--") && !line.empty()) {
      rest.push_back(line);
    }
  }
  const std::vector<std::string> expected{
      join("IF NOT EXISTS (SELECT 1 FROM sys.database_principals WHERE name = N'",
           std::string{kRole}, "' AND type = 'R')"),
      join("    CREATE ROLE ", std::string{kRole}), "GO", "GO"};
  EXPECT_EQ(rest, expected);
}

/// The statement files hold every statement that the component composes: the calls above have
/// missed none that needs a right of its own. (The files lack what the cursor writes for a batch
/// update, and the numbering.)
TEST(Permissions, SufficeForEveryStatementOfTheStatementFiles) {
  const Rights methods = rightsOfAllMethods();
  std::size_t seen = 0;
  for (const std::string& path : statementFilePaths()) {
    for (const Case& entry : readStatementFile(path).cases) {
      for (const Step& step : entry.steps) {
        Rights needed;
        if (step.kind == StepKind::Call) {
          addProcedureRight(needed, step.text);
        } else if (step.kind != StepKind::Error) {
          addNeededRights(needed, step.text);
        }
        for (const auto& [object, verbs] : needed) {
          const auto held = methods.find(object);
          for (const std::string& verb : verbs) {
            ++seen;
            EXPECT_TRUE(held != methods.end() && held->second.contains(verb))
                << verb << " on " << object << ", " << path << ":" << step.line;
          }
        }
      }
    }
  }
  EXPECT_GT(seen, 500U);
}

}  // namespace
}  // namespace azcoll::statements
