// What a server demands of the schema scripts and the embedded engine does not.

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "support/test_database.h"
#include "tsql/parser.h"
#include "tsql/script.h"

namespace azcoll::statements {
namespace {

using tsql::ConstraintDefinition;
using tsql::ConstraintKind;
using tsql::CreateTableStatement;

/// The parsed batches of a script.
std::vector<tsql::Batch> batchesOf(std::string_view name) {
  std::vector<tsql::Batch> batches;
  for (const auto& batch : tsql::splitScript(test::readFile(test::schemaPath(name)))) {
    batches.push_back(tsql::parse(batch.text));
  }
  return batches;
}

template <typename Node, typename Visit>
void forEach(const std::vector<tsql::Batch>& batches, Visit visit) {
  for (const tsql::Batch& batch : batches) {
    for (const tsql::StatementPtr& statement : batch.statements) {
      if (const auto* const node = std::get_if<Node>(&statement->node)) {
        visit(*node);
      }
    }
  }
}

const tsql::ColumnDefinition& columnOf(const CreateTableStatement& table, const std::string& name) {
  const auto found = std::ranges::find(table.columns, name, &tsql::ColumnDefinition::name);
  if (found == table.columns.end()) {
    throw std::runtime_error{table.name.parts.back() + " has no column " + name};
  }
  return *found;
}

std::string typeText(const tsql::TypeName& type) {
  return type.name + " " + std::to_string(type.length.value_or(0)) + " " +
         std::to_string(type.scale.value_or(0));
}

TEST(SchemaOnAServer, HasARoutineAloneInItsBatch) {
  for (const tsql::Batch& batch : batchesOf("procedure.sql")) {
    EXPECT_EQ(batch.statements.size(), 1U);
  }
  forEach<tsql::CreateProcedureStatement>(batchesOf("tabelle.sql"),
                                          [](const auto&) { ADD_FAILURE(); });
}

TEST(SchemaOnAServer, NamesEveryConstraintOnce) {
  std::set<std::string> names;
  const auto take = [&names](const std::string& name) {
    EXPECT_FALSE(name.empty());
    EXPECT_LE(name.size(), 128U);
    EXPECT_TRUE(names.insert(name).second) << name;
  };
  forEach<CreateTableStatement>(batchesOf("tabelle.sql"), [&](const CreateTableStatement& table) {
    take(table.name.parts.back());
    for (const ConstraintDefinition& constraint : table.constraints) {
      take(constraint.name);
    }
    for (const tsql::ColumnDefinition& column : table.columns) {
      if (column.defaultValue) {
        take(column.defaultName);
      }
    }
  });
}

TEST(SchemaOnAServer, SaysOfEveryColumnWhetherItTakesNull) {
  forEach<CreateTableStatement>(batchesOf("tabelle.sql"), [](const CreateTableStatement& table) {
    for (const tsql::ColumnDefinition& column : table.columns) {
      EXPECT_TRUE(column.nullable.has_value()) << column.name;
    }
    for (const ConstraintDefinition& constraint : table.constraints) {
      if (constraint.kind == ConstraintKind::PrimaryKey) {
        for (const std::string& column : constraint.columns) {
          EXPECT_EQ(columnOf(table, column).nullable, false) << column;
        }
      }
    }
  });
}

TEST(SchemaOnAServer, RefersToKeysOfTablesThatAreThereWithColumnsOfTheSameTypes) {
  const std::vector<tsql::Batch> batches = batchesOf("tabelle.sql");
  std::map<std::string, const CreateTableStatement*> made;
  std::size_t references = 0;
  forEach<CreateTableStatement>(batches, [&](const CreateTableStatement& table) {
    for (const ConstraintDefinition& constraint : table.constraints) {
      if (constraint.kind != ConstraintKind::ForeignKey) {
        continue;
      }
      ++references;
      const auto found = made.find(constraint.referencedTable.parts.back());
      ASSERT_NE(found, made.end()) << constraint.name;
      const CreateTableStatement& target = *found->second;
      EXPECT_TRUE(std::ranges::any_of(target.constraints, [&](const ConstraintDefinition& key) {
        return (key.kind == ConstraintKind::PrimaryKey || key.kind == ConstraintKind::Unique) &&
               key.columns == constraint.referencedColumns;
      })) << constraint.name;
      ASSERT_EQ(constraint.columns.size(), constraint.referencedColumns.size());
      for (std::size_t i = 0; i < constraint.columns.size(); ++i) {
        EXPECT_EQ(typeText(columnOf(table, constraint.columns[i]).type),
                  typeText(columnOf(target, constraint.referencedColumns[i]).type))
            << constraint.name;
      }
    }
    made[table.name.parts.back()] = &table;
  });
  EXPECT_GT(references, 30U);
}

/// A text that could hold other than the code page's characters loses them on a server without N.
TEST(SchemaOnAServer, WritesTextsBeyondAsciiAsNationalTexts) {
  std::size_t beyond = 0;
  const auto check = [&beyond](const tsql::ExpressionPtr& value) {
    const auto* const literal = value ? std::get_if<tsql::Literal>(&value->node) : nullptr;
    if (literal == nullptr || std::ranges::all_of(literal->text, [](char c) {
          return static_cast<unsigned char>(c) < 0x80U;
        })) {
      return;
    }
    ++beyond;
    EXPECT_EQ(literal->kind, tsql::LiteralKind::NationalText) << literal->text;
  };
  forEach<tsql::InsertStatement>(batchesOf("esempio.sql"), [&](const tsql::InsertStatement& node) {
    for (const auto& row : node.rows) {
      std::ranges::for_each(row, check);
    }
  });
  EXPECT_GT(beyond, 20U);
}

/// The rows of one INSERT meet as in a UNION: a number in one row and a text in another of the same
/// column is a conversion of the text, which fails.
TEST(SchemaOnAServer, MixesNoTextsAndNumbersInAColumnOfOneInsert) {
  const auto classOf = [](const tsql::Expression& value) {
    const auto* const literal = std::get_if<tsql::Literal>(&value.node);
    const bool negative = std::get_if<tsql::Unary>(&value.node) != nullptr;
    if (literal == nullptr) {
      return negative ? 'n' : '?';
    }
    switch (literal->kind) {
      case tsql::LiteralKind::Null:
        return ' ';
      case tsql::LiteralKind::Text:
      case tsql::LiteralKind::NationalText:
        return 't';
      default:
        return 'n';
    }
  };
  forEach<tsql::InsertStatement>(batchesOf("esempio.sql"), [&](const tsql::InsertStatement& node) {
    EXPECT_LE(node.rows.size(), 1000U);
    for (std::size_t column = 0; column < node.columns.size(); ++column) {
      std::set<char> classes;
      for (const auto& row : node.rows) {
        ASSERT_EQ(row.size(), node.columns.size());
        classes.insert(classOf(*row[column]));
      }
      classes.erase(' ');
      EXPECT_LE(classes.size(), 1U) << node.columns[column];
      EXPECT_FALSE(classes.contains('?')) << node.columns[column];
    }
  });
}

}  // namespace
}  // namespace azcoll::statements
