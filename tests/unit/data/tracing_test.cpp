#include "data/tracing.h"

#include <chrono>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "data/error_list.h"
#include "mock_provider.h"

namespace azcoll {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::Invoke;
using testing::IsEmpty;
using testing::NiceMock;
using testing::Return;
using testing::ReturnRef;
using testing::Throw;

Error duplicateKey() {
  ErrorInfo info;
  info.description = "Violation of PRIMARY KEY constraint";
  info.nativeNumber = 2627;
  return Error::provider(info);
}

class Tracing : public testing::Test {
 protected:
  std::vector<TraceEntry> entries;
  std::shared_ptr<NiceMock<MockConnection>> inner = std::make_shared<NiceMock<MockConnection>>();
  std::shared_ptr<ConnessioneTracciata> connection = std::make_shared<ConnessioneTracciata>(
      inner, [this](const TraceEntry& entry) { entries.push_back(entry); });

  // Breaks the ring of a connection that gives a recordset which expects that connection.
  void TearDown() override { EXPECT_TRUE(testing::Mock::VerifyAndClear(inner.get())); }

  static std::shared_ptr<NiceMock<MockRecordset>> openRecordset(std::int64_t rows) {
    auto recordset = std::make_shared<NiceMock<MockRecordset>>();
    ON_CALL(*recordset, isOpen()).WillByDefault(Return(true));
    ON_CALL(*recordset, recordCount()).WillByDefault(Return(rows));
    return recordset;
  }

  /// A traced recordset over a mock.
  std::shared_ptr<Recordset> traced(const std::shared_ptr<NiceMock<MockRecordset>>& mock) {
    ON_CALL(*inner, newRecordset()).WillByDefault(Return(mock));
    return connection->newRecordset();
  }

  std::shared_ptr<Command> traced(const std::shared_ptr<NiceMock<MockCommand>>& mock) {
    ON_CALL(*inner, newCommand()).WillByDefault(Return(mock));
    return connection->newCommand();
  }

  [[nodiscard]] std::vector<std::string> operations() const {
    std::vector<std::string> names;
    for (const TraceEntry& entry : entries) {
      names.push_back(entry.operation);
    }
    return names;
  }
};

TEST_F(Tracing, NeedsAConnectionUnderneath) {
  EXPECT_THROW(ConnessioneTracciata(nullptr, [](const TraceEntry&) {}), Error);
}

TEST_F(Tracing, ReportsOpeningWithoutTheTextsThatHoldAPassword) {
  EXPECT_CALL(*inner, open(std::string_view{"user"}, std::string_view{"secret"},
                           CommandOption::Unspecified));
  connection->setConnectionString("Password=secret");
  connection->open("user", "secret", CommandOption::Unspecified);
  ASSERT_THAT(operations(), ElementsAre("Open"));
  EXPECT_EQ(entries[0].sql, "");
  EXPECT_THAT(entries[0].options, ElementsAre(-1));
  EXPECT_EQ(entries[0].rows, std::nullopt);
  EXPECT_FALSE(entries[0].error.has_value());
}

TEST_F(Tracing, PassesTheSettingsOnWithoutReportingThem) {
  ErrorList errors;
  EXPECT_CALL(*inner, setConnectionString("X=1"));
  EXPECT_CALL(*inner, connectionString()).WillOnce(Return("X=1"));
  EXPECT_CALL(*inner, setCommandTimeout(100));
  EXPECT_CALL(*inner, setCursorLocation(CursorLocation::Client));
  EXPECT_CALL(*inner, isOpen()).WillOnce(Return(true));
  EXPECT_CALL(*inner, errors()).WillOnce(ReturnRef(errors));
  connection->setConnectionString("X=1");
  EXPECT_EQ(connection->connectionString(), "X=1");
  connection->setCommandTimeout(100);
  connection->setCursorLocation(CursorLocation::Client);
  EXPECT_TRUE(connection->isOpen());
  EXPECT_EQ(&connection->errors(), &errors);
  EXPECT_EQ(connection->decorated(), inner);
  EXPECT_THAT(entries, IsEmpty());
}

TEST_F(Tracing, ReportsTransactionsAndClosing) {
  testing::InSequence order;
  EXPECT_CALL(*inner, beginTrans());
  EXPECT_CALL(*inner, commitTrans());
  EXPECT_CALL(*inner, rollbackTrans());
  EXPECT_CALL(*inner, close());
  connection->beginTrans();
  connection->commitTrans();
  connection->rollbackTrans();
  connection->close();
  EXPECT_THAT(operations(), ElementsAre("BeginTrans", "CommitTrans", "RollbackTrans", "Close"));
}

TEST_F(Tracing, ReportsTheRowsThatAStatementReturned) {
  EXPECT_CALL(*inner, execute(std::string_view{"SELECT 1"}, _, CommandOption::Text))
      .WillOnce(Return(openRecordset(3)));
  std::int64_t affected = -1;
  const auto result = connection->execute("SELECT 1", affected, CommandOption::Text);
  ASSERT_NE(result, nullptr);
  ASSERT_THAT(operations(), ElementsAre("Execute"));
  EXPECT_EQ(entries[0].sql, "SELECT 1");
  EXPECT_THAT(entries[0].options, ElementsAre(1));
  EXPECT_EQ(entries[0].rows, 3);
}

TEST_F(Tracing, ReportsTheRowsThatAStatementChanged) {
  EXPECT_CALL(*inner, execute(_, _, _))
      .WillOnce(Invoke([](std::string_view, std::int64_t& affected, CommandOption) {
        affected = 7;
        return nullptr;
      }))
      .WillOnce(Invoke([](std::string_view, std::int64_t& affected, CommandOption) {
        affected = -1;
        return nullptr;
      }));
  std::int64_t affected = 0;
  EXPECT_EQ(connection->execute("DELETE FROM T", affected, CommandOption::Text), nullptr);
  EXPECT_EQ(affected, 7);
  EXPECT_EQ(connection->execute("SET NOCOUNT ON", affected, CommandOption::Text), nullptr);
  EXPECT_EQ(entries[0].rows, 7);
  EXPECT_EQ(entries[1].rows, std::nullopt);
}

TEST_F(Tracing, AsksNoClosedResultForItsRows) {
  const auto closed = std::make_shared<NiceMock<MockRecordset>>();
  EXPECT_CALL(*closed, isOpen()).WillRepeatedly(Return(false));
  EXPECT_CALL(*closed, recordCount()).Times(0);
  EXPECT_CALL(*inner, execute(_, _, _)).WillOnce(Return(closed));
  std::int64_t affected = -1;
  static_cast<void>(connection->execute("EXEC P", affected, CommandOption::Text));
  EXPECT_EQ(entries[0].rows, std::nullopt);
}

TEST_F(Tracing, PassesAFailureOnUnchangedAfterReportingIt) {
  EXPECT_CALL(*inner, execute(_, _, _)).WillOnce(Throw(duplicateKey()));
  std::int64_t affected = 0;
  try {
    static_cast<void>(connection->execute("INSERT", affected, CommandOption::Text));
    FAIL() << "no failure";
  } catch (const Error& error) {
    EXPECT_TRUE(error.fromProvider());
    EXPECT_EQ(error.info().nativeNumber, 2627);
  }
  ASSERT_THAT(operations(), ElementsAre("Execute"));
  ASSERT_TRUE(entries[0].error.has_value());
  EXPECT_EQ(entries[0].error->nativeNumber, 2627);
}

TEST_F(Tracing, ReportsAForeignExceptionToo) {
  EXPECT_CALL(*inner, beginTrans()).WillOnce(Throw(std::runtime_error{"out of order"}));
  EXPECT_THROW(connection->beginTrans(), std::runtime_error);
  ASSERT_THAT(operations(), ElementsAre("BeginTrans"));
  EXPECT_EQ(entries[0].error->description, "out of order");
}

TEST_F(Tracing, LetsTheOperationsFailureWinOverTheSinks) {
  EXPECT_CALL(*inner, beginTrans()).WillOnce(Throw(duplicateKey())).WillOnce(Return());
  const auto failing = std::make_shared<ConnessioneTracciata>(
      inner, [](const TraceEntry&) { throw std::runtime_error{"sink"}; });
  EXPECT_THROW(failing->beginTrans(), Error);
  EXPECT_THROW(failing->beginTrans(), std::runtime_error);
}

TEST_F(Tracing, WorksWithoutASink) {
  EXPECT_CALL(*inner, beginTrans()).WillOnce(Return()).WillOnce(Throw(duplicateKey()));
  const auto silent = std::make_shared<ConnessioneTracciata>(inner, TraceSink{});
  EXPECT_NO_THROW(silent->beginTrans());
  EXPECT_THROW(silent->beginTrans(), Error);
}

TEST_F(Tracing, MeasuresTheTime) {
  EXPECT_CALL(*inner, commitTrans()).WillOnce(Invoke([] {
    std::this_thread::sleep_for(std::chrono::milliseconds{5});
  }));
  connection->commitTrans();
  EXPECT_GE(entries[0].milliseconds, 5.0);
}

TEST_F(Tracing, ConnectsItsRecordsetsToTheConnectionUnderneath) {
  const auto mock = openRecordset(2);
  const auto recordset = traced(mock);
  EXPECT_CALL(*mock, setActiveConnection(std::shared_ptr<Connection>{inner}));
  EXPECT_CALL(*mock, setSource("SELECT * FROM T"));
  EXPECT_CALL(*mock, setCursorLocation(CursorLocation::Client));
  EXPECT_CALL(*mock, setCursorType(CursorType::Keyset));
  EXPECT_CALL(*mock, setLockType(LockType::BatchOptimistic));
  EXPECT_CALL(*mock, open(CursorType::Unspecified, LockType::Unspecified, CommandOption::Text));
  recordset->setActiveConnection(connection);
  recordset->setSource("SELECT * FROM T");
  recordset->setCursorLocation(CursorLocation::Client);
  recordset->setCursorType(CursorType::Keyset);
  recordset->setLockType(LockType::BatchOptimistic);
  recordset->open(CursorType::Unspecified, LockType::Unspecified, CommandOption::Text);
  ASSERT_THAT(operations(), ElementsAre("Open"));
  EXPECT_EQ(entries[0].sql, "SELECT * FROM T");
  EXPECT_THAT(entries[0].options, ElementsAre(-1, -1, 1));
  EXPECT_EQ(entries[0].rows, 2);
}

TEST_F(Tracing, OpensARecordsetInOneCall) {
  const auto mock = openRecordset(0);
  const auto recordset = traced(mock);
  EXPECT_CALL(*mock, open("SELECT 1", std::shared_ptr<Connection>{inner}, CursorType::Keyset,
                          LockType::BatchOptimistic, CommandOption::Text));
  recordset->open("SELECT 1", connection, CursorType::Keyset, LockType::BatchOptimistic,
                  CommandOption::Text);
  ASSERT_THAT(operations(), ElementsAre("Open"));
  EXPECT_EQ(entries[0].sql, "SELECT 1");
  EXPECT_THAT(entries[0].options, ElementsAre(1, 4, 1));
  EXPECT_EQ(entries[0].rows, 0);
}

TEST_F(Tracing, DetachesAndTakesOtherConnectionsAsTheyAre) {
  const auto mock = openRecordset(0);
  const auto recordset = traced(mock);
  const auto other = std::make_shared<NiceMock<MockConnection>>();
  EXPECT_CALL(*mock, setActiveConnection(std::shared_ptr<Connection>{}));
  EXPECT_CALL(*mock, setActiveConnection(std::shared_ptr<Connection>{other}));
  recordset->setActiveConnection(nullptr);
  recordset->setActiveConnection(other);
}

TEST_F(Tracing, WorksUnderAnotherTracer) {
  std::vector<std::string> outerOperations;
  const auto outer = std::make_shared<ConnessioneTracciata>(
      connection, [&](const TraceEntry& entry) { outerOperations.push_back(entry.operation); });
  const auto mock = openRecordset(1);
  ON_CALL(*inner, newRecordset()).WillByDefault(Return(mock));
  EXPECT_CALL(*mock, setActiveConnection(std::shared_ptr<Connection>{inner}));
  const auto recordset = outer->newRecordset();
  recordset->setActiveConnection(outer);
  recordset->open(CursorType::Unspecified, LockType::Unspecified, CommandOption::Text);
  EXPECT_THAT(operations(), ElementsAre("Open"));
  EXPECT_THAT(outerOperations, ElementsAre("Open"));
}

TEST_F(Tracing, ReportsChangesOfARecordset) {
  const auto mock = openRecordset(0);
  const auto recordset = traced(mock);
  testing::InSequence order;
  EXPECT_CALL(*mock, addNew());
  EXPECT_CALL(*mock, update());
  EXPECT_CALL(*mock, cancelUpdate());
  EXPECT_CALL(*mock, updateBatch(Affect::All));
  EXPECT_CALL(*mock, close());
  recordset->addNew();
  recordset->update();
  recordset->cancelUpdate();
  recordset->updateBatch(Affect::All);
  recordset->close();
  EXPECT_THAT(operations(),
              ElementsAre("AddNew", "Update", "CancelUpdate", "UpdateBatch", "Close"));
  EXPECT_THAT(entries[3].options, ElementsAre(3));
}

TEST_F(Tracing, ReportsTheFailureOfARecordset) {
  const auto mock = openRecordset(0);
  const auto recordset = traced(mock);
  EXPECT_CALL(*mock, updateBatch(_)).WillOnce(Throw(duplicateKey()));
  EXPECT_THROW(recordset->updateBatch(Affect::All), Error);
  EXPECT_EQ(entries[0].error->nativeNumber, 2627);
}

TEST_F(Tracing, ReportsFiltersAndSearches) {
  const auto mock = openRecordset(0);
  const auto recordset = traced(mock);
  EXPECT_CALL(*mock, setFilter(std::string_view{"A = 1"}));
  EXPECT_CALL(*mock, find(std::string_view{"B = 2"}, 5'000'000'000, SearchDirection::Forward,
                          Bookmark::First));
  recordset->setFilter("A = 1");
  recordset->find("B = 2", 5'000'000'000, SearchDirection::Forward, Bookmark::First);
  ASSERT_THAT(operations(), ElementsAre("Filter", "Find"));
  EXPECT_EQ(entries[0].sql, "A = 1");
  EXPECT_EQ(entries[1].sql, "B = 2");
  EXPECT_THAT(entries[1].options, ElementsAre(std::numeric_limits<int>::max(), 1, 1));
}

TEST_F(Tracing, DoesNotReportReadingAndMoving) {
  const auto mock = openRecordset(4);
  const auto recordset = traced(mock);
  NiceMock<MockFields> fields;
  EXPECT_CALL(*mock, moveFirst());
  EXPECT_CALL(*mock, moveNext());
  EXPECT_CALL(*mock, atStart()).WillOnce(Return(true));
  EXPECT_CALL(*mock, atEnd()).WillOnce(Return(false));
  EXPECT_CALL(*mock, fields()).WillOnce(ReturnRef(fields));
  recordset->moveFirst();
  recordset->moveNext();
  EXPECT_TRUE(recordset->atStart());
  EXPECT_FALSE(recordset->atEnd());
  EXPECT_EQ(recordset->recordCount(), 4);
  EXPECT_TRUE(recordset->isOpen());
  EXPECT_EQ(&recordset->fields(), &fields);
  EXPECT_THAT(entries, IsEmpty());
}

TEST_F(Tracing, TracesTheNextRecordset) {
  const auto mock = openRecordset(1);
  const auto second = openRecordset(2);
  const auto recordset = traced(mock);
  EXPECT_CALL(*mock, nextRecordset()).WillOnce(Return(second)).WillOnce(Return(nullptr));
  const auto next = recordset->nextRecordset();
  ASSERT_NE(next, nullptr);
  next->close();
  EXPECT_EQ(recordset->nextRecordset(), nullptr);
  EXPECT_THAT(operations(), ElementsAre("NextRecordset", "Close", "NextRecordset"));
  EXPECT_EQ(entries[0].rows, 2);
  EXPECT_EQ(entries[2].rows, std::nullopt);
}

TEST_F(Tracing, ListsACommandsParametersAsTheyWereBeforeItRan) {
  const auto mock = std::make_shared<NiceMock<MockCommand>>();
  const auto command = traced(mock);
  NiceMock<MockParameter> input;
  NiceMock<MockParameter> output;
  NiceMock<MockParameters> parameters;
  Variant outputValue{kNull};
  ON_CALL(input, name()).WillByDefault(Return("@CodiceDitta"));
  ON_CALL(input, value()).WillByDefault(Return(Variant{12}));
  ON_CALL(output, name()).WillByDefault(Return("@DitteCollegate"));
  ON_CALL(output, value()).WillByDefault(Invoke([&] { return outputValue; }));
  ON_CALL(parameters, count()).WillByDefault(Return(2));
  ON_CALL(parameters, item(testing::TypedEq<std::size_t>(0))).WillByDefault(ReturnRef(input));
  ON_CALL(parameters, item(testing::TypedEq<std::size_t>(1))).WillByDefault(ReturnRef(output));
  ON_CALL(*mock, parameters()).WillByDefault(ReturnRef(parameters));
  EXPECT_CALL(*mock, execute(_, CommandOption::StoredProcedure))
      .WillOnce(Invoke([&](std::int64_t& affected, CommandOption) {
        affected = -1;
        outputValue = Variant{"12, 15"};
        return openRecordset(2);
      }));

  EXPECT_EQ(&command->parameters(), &parameters);
  command->setCommandText("PC_GetDitteCollegate");
  std::int64_t affected = 0;
  ASSERT_NE(command->execute(affected, CommandOption::StoredProcedure), nullptr);
  ASSERT_THAT(operations(), ElementsAre("CommandExecute"));
  EXPECT_EQ(entries[0].sql, "PC_GetDitteCollegate");
  EXPECT_THAT(entries[0].options, ElementsAre(4));
  EXPECT_EQ(entries[0].rows, 2);
  ASSERT_EQ(entries[0].parameters.size(), 2U);
  EXPECT_EQ(entries[0].parameters[0].first, "@CodiceDitta");
  EXPECT_EQ(entries[0].parameters[0].second, Variant{12});
  EXPECT_EQ(entries[0].parameters[1].second, Variant{kNull});
}

TEST_F(Tracing, AsksNoCommandForParametersThatItsOwnerDidNotWant) {
  const auto mock = std::make_shared<NiceMock<MockCommand>>();
  const auto command = traced(mock);
  EXPECT_CALL(*mock, parameters()).Times(0);
  EXPECT_CALL(*mock, execute(_, _)).WillOnce(Return(nullptr));
  std::int64_t affected = -1;
  EXPECT_EQ(command->execute(affected, CommandOption::StoredProcedure), nullptr);
  EXPECT_THAT(entries[0].parameters, IsEmpty());
}

TEST_F(Tracing, PassesACommandsSettingsOn) {
  const auto mock = std::make_shared<NiceMock<MockCommand>>();
  const auto command = traced(mock);
  EXPECT_CALL(*mock, setActiveConnection(std::shared_ptr<Connection>{inner}));
  EXPECT_CALL(*mock, setActiveConnection(std::shared_ptr<Connection>{}));
  EXPECT_CALL(*mock, setCommandText("P"));
  EXPECT_CALL(*mock, setCommandType(CommandOption::StoredProcedure));
  EXPECT_CALL(*mock, setCommandTimeout(0));
  EXPECT_CALL(*mock, setPrepared(true));
  command->setActiveConnection(connection);
  command->setCommandText("P");
  command->setCommandType(CommandOption::StoredProcedure);
  command->setCommandTimeout(0);
  command->setPrepared(true);
  command->setActiveConnection(nullptr);
}

TEST_F(Tracing, GivesNothingWhereTheProviderGivesNothing) {
  ON_CALL(*inner, newRecordset()).WillByDefault(Return(nullptr));
  ON_CALL(*inner, newCommand()).WillByDefault(Return(nullptr));
  EXPECT_EQ(connection->newRecordset(), nullptr);
  EXPECT_EQ(connection->newCommand(), nullptr);
}

}  // namespace
}  // namespace azcoll
