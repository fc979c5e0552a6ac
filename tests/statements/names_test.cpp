#include <algorithm>
#include <array>
#include <cctype>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "data/tables.h"
#include "statements/composed_statements.h"
#include "statements/statement_file.h"
#include "support/test_database.h"
#include "tsql/parser.h"
#include "tsql/script.h"
#include "tsql/syntax_error.h"

namespace azcoll::statements {
namespace {

/// Columns of every table of the schema script.
std::map<std::string, std::set<std::string>> schemaColumns() {
  std::map<std::string, std::set<std::string>> tables;
  for (const auto& batch : tsql::splitScript(test::readFile(test::schemaPath("tabelle.sql")))) {
    const tsql::Batch parsed = tsql::parse(batch.text);
    for (const auto& statement : parsed.statements) {
      const auto* table = std::get_if<tsql::CreateTableStatement>(&statement->node);
      if (table == nullptr) {
        continue;
      }
      for (const auto& column : table->columns) {
        tables[table->name.parts.back()].insert(column.name);
      }
    }
  }
  return tables;
}

/// Names of the suite's pattern (two letters, two characters, an underscore) outside quoted texts.
std::set<std::string> suiteNames(std::string_view statement) {
  std::set<std::string> names;
  std::string word;
  bool quoted = false;
  for (const char character : std::string{statement} + ' ') {
    if (character == '\'') {
      quoted = !quoted;
    }
    const bool inWord =
        !quoted && (std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_');
    if (inWord) {
      word += character;
      continue;
    }
    if ((word.starts_with("CG") || word.starts_with("MG")) && word.size() > 4 && word[4] == '_') {
      names.insert(word);
    }
    word.clear();
  }
  return names;
}

// Aliases that look like names of the suite.
constexpr std::array<std::string_view, 6> kAliases{"CG28_A", "CG28_B", "CG28_C",
                                                   "CG28_D", "CG28_E", "CG86_2"};

bool isAlias(std::string_view name) {
  return std::find(kAliases.begin(), kAliases.end(), name) != kAliases.end();
}

/// Every column that is declared with the component's tables.
std::vector<std::string> declaredColumns() {
  std::vector<std::string> columns;
  columns.insert(columns.end(), tables::kMasterColumns.begin(), tables::kMasterColumns.end());
  columns.insert(columns.end(), tables::kActivityColumns.begin(), tables::kActivityColumns.end());
  columns.insert(columns.end(), tables::kRegistryColumns.begin(), tables::kRegistryColumns.end());
  columns.insert(columns.end(), tables::kOtherColumns.begin(), tables::kOtherColumns.end());
  for (const auto& column : tables::kSalesColumns) {
    columns.emplace_back(column.name);
  }
  for (const std::string_view setting : tables::kVatSettings) {
    columns.push_back("CG25_" + std::string{setting});
    columns.push_back("CG86_" + std::string{setting});
  }
  for (const std::string_view date : tables::kRegisterDates) {
    columns.push_back("CG30_" + std::string{date});
    columns.push_back("CG96_" + std::string{date});
  }
  for (const std::string_view table : tables::kSubTables) {
    for (const std::string_view ending : tables::kSubTableKeyEndings) {
      columns.push_back(std::string{tables::prefix(table)} + std::string{ending});
    }
  }
  // The joint holders have the key of a sub-table.
  for (const std::string_view ending : tables::kSubTableKeyEndings) {
    columns.push_back("CG4E" + std::string{ending});
  }
  return columns;
}

/// Tables and columns that are declared, all of them.
std::set<std::string> declaredNames() {
  std::set<std::string> names;
  for (const std::string& column : declaredColumns()) {
    names.insert(column);
  }
  names.insert(tables::kTables.begin(), tables::kTables.end());
  names.insert(tables::kSubTables.begin(), tables::kSubTables.end());
  return names;
}

/// The names in the statements that the methods compose. What a batch update sends is left out: it
/// takes the columns of its rows, which are the database's own.
std::set<std::string> composedNames() {
  std::set<std::string> names;
  composeEverything({.statement =
                         [&names](std::string_view /*method*/, std::string_view text) {
                           if (text.find('?') == std::string_view::npos) {
                             names.merge(suiteNames(text));
                           }
                         },
                     .procedure = [](std::string_view /*name*/) {}});
  return names;
}

bool isSyntaxRefusal(const Step& step) {
  const std::int64_t number = step.kind == StepKind::Error ? step.numbers.front() : 0;
  return number == 102 || number == 105 || number == 156;
}

bool namesAnUnknownColumn(const Step& step) {
  return step.kind == StepKind::Error && step.numbers.front() == 207;
}

TEST(StatementNames, AreDeclaredWithTheTablesAndColumnsOfTheComponent) {
  std::size_t seen = 0;
  for (const std::string& path : statementFilePaths()) {
    for (const Case& entry : readStatementFile(path).cases) {
      for (const Step& step : entry.steps) {
        if (step.kind == StepKind::Call || namesAnUnknownColumn(step)) {
          continue;
        }
        for (const std::string& name : suiteNames(step.text)) {
          ++seen;
          EXPECT_TRUE(tables::isKnownName(name) || isAlias(name))
              << name << " in " << path << ":" << step.line;
        }
      }
    }
  }
  EXPECT_GT(seen, 1000U);
}

TEST(ComposedNames, AreDeclaredAndEveryDeclaredNameIsComposed) {
  const std::set<std::string> declared = declaredNames();
  const std::set<std::string> composed = composedNames();
  for (const std::string& name : composed) {
    EXPECT_TRUE(declared.contains(name) || isAlias(name)) << name << " is not declared";
    EXPECT_TRUE(tables::isKnownName(name) || isAlias(name)) << name << " is not known";
  }
  for (const std::string& name : declared) {
    EXPECT_TRUE(composed.contains(name)) << name << " stands in no statement";
  }
  for (const std::string_view alias : kAliases) {
    EXPECT_TRUE(composed.contains(std::string{alias})) << alias << " stands in no statement";
  }
}

TEST(StatementTexts, ParseUnlessTheyAreExpectedToBeRefused) {
  for (const std::string& path : statementFilePaths()) {
    for (const Case& entry : readStatementFile(path).cases) {
      for (const Step& step : entry.steps) {
        if (step.kind == StepKind::Call || isSyntaxRefusal(step)) {
          continue;
        }
        try {
          static_cast<void>(tsql::parse(step.text));
        } catch (const tsql::SyntaxError& error) {
          ADD_FAILURE() << path << ":" << step.line << ": " << error.located();
        }
      }
    }
  }
}

TEST(SchemaScripts, Parse) {
  for (const std::string_view name : {"tabelle.sql", "procedure.sql", "esempio.sql"}) {
    const auto batches = tsql::splitScript(test::readFile(test::schemaPath(name)));
    EXPECT_FALSE(batches.empty());
    for (const auto& batch : batches) {
      try {
        EXPECT_FALSE(tsql::parse(batch.text).statements.empty());
      } catch (const tsql::SyntaxError& error) {
        ADD_FAILURE() << name << ", batch of line " << batch.firstLine << ": " << error.located();
      }
    }
  }
}

TEST(SchemaScripts, GiveEveryColumnThePrefixOfItsTable) {
  const auto tables = schemaColumns();
  ASSERT_FALSE(tables.empty());
  for (const auto& [table, columns] : tables) {
    for (const std::string& column : columns) {
      EXPECT_TRUE(column.starts_with(std::string{tables::prefix(table)} + "_")) << column;
    }
  }
}

TEST(SchemaScripts, DeclareEveryTableAndColumnThatTheComponentNames) {
  const auto tables = schemaColumns();
  const auto declared = [&](std::string_view column) {
    for (const auto& [table, columns] : tables) {
      if (columns.contains(std::string{column})) {
        return true;
      }
    }
    return false;
  };
  for (const std::string_view table : tables::kTables) {
    EXPECT_TRUE(tables.contains(std::string{table})) << table;
  }
  for (const std::string_view table : tables::kSubTables) {
    EXPECT_TRUE(tables.contains(std::string{table})) << table;
  }
  for (const std::string& column : declaredColumns()) {
    EXPECT_TRUE(declared(column)) << column;
  }
}

TEST(SchemaScripts, GiveTheSalesDataExactlyTheirCopiedColumns) {
  const auto tables = schemaColumns();
  EXPECT_EQ(tables.at("MG19_CLIFORVA").size(), tables::kSalesColumns.size());
  EXPECT_EQ(tables.at("CG44_CLIFOR").size(), tables::kMasterColumns.size());
  EXPECT_EQ(tables.at("CG86_AZIENDECOLL").size(), tables::kActivityColumns.size() + 1);
}

}  // namespace
}  // namespace azcoll::statements
