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
#include "support/another_server.h"
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
    ASSERT_EQ(recordset.fields().count(), expected.columns.size());
    for (std::size_t i = 0; i < expected.columns.size(); ++i) {
      const std::string& column = expected.columns[i];
      const std::string name = recordset.fields().item(i).name();
      EXPECT_TRUE(test::isColumnName(name, column == "\"\"" ? "" : column))
          << "column " << i << ": " << name << ", expected " << column;
    }
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

/// Whether the refusal has undone the transaction.
bool runRefused(const std::shared_ptr<Connection>& connection, const Step& step) {
  try {
    std::int64_t affected = 0;
    connection->execute(step.text, affected, CommandOption::Text);
    ADD_FAILURE() << "accepted";
  } catch (const Error& error) {
    EXPECT_TRUE(error.fromProvider());
    EXPECT_TRUE(test::isFailure(error.info(), step.numbers))
        << "message " << error.info().nativeNumber << ": " << error.description();
    EXPECT_NE(connection->errors().count(), 0U);
    for (const std::string& part : step.messageParts) {
      EXPECT_TRUE(test::holdsPart(error.description(), part))
          << "message: " << error.description() << "\nexpected part: " << part;
    }
    return error.info().transactionLost;
  }
  return false;
}

/// Whether the step has undone the transaction.
bool runStep(const std::shared_ptr<Connection>& connection, const Step& step) {
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
      return runRefused(connection, step);
    case StepKind::Query:
      runQuery(connection, step);
      break;
    case StepKind::Call:
      runCall(connection, step);
      break;
  }
  return false;
}

/// Some refusals undo the whole transaction on a server: what the case had changed in front of one
/// is changed anew before it goes on.
void runCase(const std::shared_ptr<Connection>& connection, const StatementFile& file,
             const Case& entry) {
  connection->beginTrans();
  for (auto step = entry.steps.begin(); step != entry.steps.end(); ++step) {
    SCOPED_TRACE(file.path + ":" + std::to_string(step->line));
    try {
      if (runStep(connection, *step)) {
        connection->rollbackTrans();
        connection->beginTrans();
        for (auto earlier = entry.steps.begin(); earlier != step; ++earlier) {
          if (earlier->kind == StepKind::Ok || earlier->kind == StepKind::Count) {
            runStep(connection, *earlier);
          }
        }
      }
    } catch (const Error& error) {
      ADD_FAILURE() << error.description();
    }
  }
  connection->rollbackTrans();
}

class Statements : public testing::TestWithParam<std::string> {};

TEST_P(Statements, GiveTheExpectedResults) {
  const StatementFile file = readStatementFile(GetParam());
  const std::shared_ptr<Connection> connection = test::openExample();
  for (const Case& entry : file.cases) {
    SCOPED_TRACE(entry.title);
    runCase(connection, file, entry);
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
