#include <algorithm>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "data/connection.h"
#include "data/date.h"
#include "data/decimal.h"
#include "data/variant.h"
#include "statements/statement_file.h"
#include "support/test_database.h"

namespace azcoll::statements {
namespace {

// A value as the files write it: the kind shows, so that a number handed out as text is a failure.
std::string written(const Variant& value) {
  switch (value.kind()) {
    case Variant::Kind::Null:
      return "NULL";
    case Variant::Kind::Empty:
      return "(empty)";
    case Variant::Kind::Text:
      return '"' + value.text() + '"';
    case Variant::Kind::Boolean:
      return "(boolean) " + value.text();
    case Variant::Kind::Double:
      return "(double) " + value.text();
    default:
      return value.text();
  }
}

// A parameter's value as a file writes it.
Variant read(const std::string& text) {
  if (text == "NULL") {
    return kNull;
  }
  if (text.size() >= 2 && text.front() == '"') {
    return text.substr(1, text.size() - 2);
  }
  if (text.starts_with("small ")) {
    return static_cast<std::int16_t>(std::stoi(text.substr(6)));
  }
  if (const auto date = Date::parse(text); date && text.find('/') != std::string::npos) {
    return *date;
  }
  return static_cast<std::int32_t>(std::stoi(text));
}

using Rows = std::vector<std::string>;

std::string joinCells(const std::vector<std::string>& cells) {
  std::string line;
  for (const std::string& cell : cells) {
    line += (line.empty() ? "" : " | ") + cell;
  }
  return line;
}

Rows readRows(Recordset& recordset, const Step& step, const ExpectedResult& expected) {
  Rows rows;
  if (recordset.recordCount() != 0) {
    recordset.moveFirst();
  }
  for (; !recordset.atEnd(); recordset.moveNext()) {
    std::vector<std::string> cells;
    if (step.someColumns) {
      for (const std::string& name : expected.columns) {
        cells.push_back(written(recordset.fields().item(name).value()));
      }
    } else {
      for (std::size_t i = 0; i < recordset.fields().count(); ++i) {
        cells.push_back(written(recordset.fields().item(i).value()));
      }
    }
    rows.push_back(joinCells(cells));
  }
  return rows;
}

void checkResult(Recordset& recordset, const Step& step, const ExpectedResult& expected) {
  if (step.fieldCount != 0) {
    EXPECT_EQ(recordset.fields().count(), step.fieldCount);
  }
  if (step.someColumns) {
    // Also when there is no row to read them from.
    for (const std::string& name : expected.columns) {
      EXPECT_NO_THROW(static_cast<void>(recordset.fields().item(name))) << name;
    }
  } else if (!expected.columns.empty()) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < recordset.fields().count(); ++i) {
      const std::string name = recordset.fields().item(i).name();
      names.push_back(name.empty() ? "\"\"" : name);
    }
    EXPECT_EQ(joinCells(names), joinCells(expected.columns));
  }
  Rows wanted;
  for (const auto& row : expected.rows) {
    wanted.push_back(joinCells(row));
  }
  EXPECT_EQ(recordset.recordCount(), static_cast<std::int64_t>(wanted.size()));
  Rows found = readRows(recordset, step, expected);
  if (step.rowSort) {
    std::ranges::sort(wanted);
    std::ranges::sort(found);
  }
  EXPECT_EQ(found, wanted);
}

void checkResults(std::shared_ptr<Recordset> recordset, const Step& step) {
  for (const ExpectedResult& expected : step.results) {
    ASSERT_NE(recordset, nullptr) << "a result is missing";
    checkResult(*recordset, step, expected);
    recordset = recordset->nextRecordset();
  }
  EXPECT_EQ(recordset, nullptr) << "one result too many";
}

void runQuery(const std::shared_ptr<Connection>& connection, const Step& step) {
  {
    SCOPED_TRACE("through a recordset");
    const std::shared_ptr<Recordset> recordset = connection->newRecordset();
    recordset->setActiveConnection(connection);
    recordset->setSource(step.text);
    recordset->setCursorLocation(CursorLocation::Client);
    recordset->setCursorType(CursorType::Keyset);
    recordset->setLockType(LockType::BatchOptimistic);
    recordset->open(CursorType::Unspecified, LockType::Unspecified, CommandOption::Text);
    checkResults(recordset, step);
  }
  SCOPED_TRACE("through the connection");
  std::int64_t affected = 0;
  checkResults(connection->execute(step.text, affected, CommandOption::Text), step);
}

void runCall(const std::shared_ptr<Connection>& connection, const Step& step) {
  const std::shared_ptr<Command> command = connection->newCommand();
  command->setActiveConnection(connection);
  command->setCommandText(step.text);
  command->setCommandType(CommandOption::StoredProcedure);
  command->setCommandTimeout(0);
  command->setPrepared(true);
  for (const auto& [name, value] : step.parameters) {
    command->parameters().item(name).setValue(read(value));
  }
  std::int64_t affected = 0;
  checkResults(command->execute(affected, CommandOption::StoredProcedure), step);
  for (const auto& [name, value] : step.outputs) {
    EXPECT_EQ(written(command->parameters().item(name).value()), value) << name;
  }
}

void runRefused(const std::shared_ptr<Connection>& connection, const Step& step) {
  try {
    std::int64_t affected = 0;
    connection->execute(step.text, affected, CommandOption::Text);
    ADD_FAILURE() << "accepted";
  } catch (const Error& error) {
    EXPECT_TRUE(error.fromProvider());
    EXPECT_NE(std::ranges::find(step.numbers, error.info().nativeNumber), step.numbers.end())
        << "message " << error.info().nativeNumber << ": " << error.description();
    EXPECT_NE(connection->errors().count(), 0U);
    for (const std::string& part : step.messageParts) {
      EXPECT_NE(error.description().find(part), std::string::npos)
          << "message: " << error.description() << "\nexpected part: " << part;
    }
  }
}

void runStep(const std::shared_ptr<Connection>& connection, const Step& step) {
  std::int64_t affected = 0;
  switch (step.kind) {
    case StepKind::Ok:
      connection->execute(step.text, affected, CommandOption::Text);
      break;
    case StepKind::Count:
      connection->execute(step.text, affected, CommandOption::Text);
      EXPECT_EQ(affected, step.numbers.front()) << "rows changed";
      break;
    case StepKind::Error:
      runRefused(connection, step);
      break;
    case StepKind::Query:
      runQuery(connection, step);
      break;
    case StepKind::Call:
      runCall(connection, step);
      break;
  }
}

// A server undoes the whole transaction at some refusals (conversions); there is nothing left to
// roll back then.
void rollBack(Connection& connection, const Case& entry) {
  try {
    connection.rollbackTrans();
  } catch (const Error& error) {
    const bool refused = std::ranges::any_of(
        entry.steps, [](const Step& step) { return step.kind == StepKind::Error; });
    EXPECT_TRUE(refused && !test::serverConnectionString().empty()) << error.description();
  }
}

class Statements : public testing::TestWithParam<std::string> {};

TEST_P(Statements, GiveTheExpectedResults) {
  const StatementFile file = readStatementFile(GetParam());
  const std::shared_ptr<Connection> connection = test::openExample();
  for (const Case& entry : file.cases) {
    SCOPED_TRACE(entry.title);
    connection->beginTrans();
    for (const Step& step : entry.steps) {
      SCOPED_TRACE(file.path + ":" + std::to_string(step.line));
      try {
        runStep(connection, step);
      } catch (const Error& error) {
        ADD_FAILURE() << error.description();
      }
    }
    rollBack(*connection, entry);
  }
  connection->close();
}

std::string testName(const testing::TestParamInfo<std::string>& file) {
  std::string name = std::filesystem::path{file.param}.stem().stem();
  std::ranges::replace_if(
      name, [](unsigned char character) { return std::isalnum(character) == 0; }, '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Files, Statements, testing::ValuesIn(statementFilePaths()), testName);

}  // namespace
}  // namespace azcoll::statements
