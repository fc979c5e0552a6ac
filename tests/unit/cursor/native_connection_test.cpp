#include "cursor/native_connection.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cursor/client_cursor.h"
#include "data/tracing.h"
#include "fake_connection.h"

namespace azcoll::cursor {
namespace {

std::shared_ptr<ConnessioneTracciata> traced(std::shared_ptr<Connection> inner) {
  return std::make_shared<ConnessioneTracciata>(std::move(inner), TraceSink{});
}

TEST(NativeConnection, IsFoundBehindEveryDecorator) {
  const auto native = std::make_shared<FakeConnection>();
  EXPECT_EQ(nativeOf(native), native);
  EXPECT_EQ(nativeOf(traced(native)), native);
  EXPECT_EQ(nativeOf(traced(traced(native))), native);
  EXPECT_EQ(nativeOf(nullptr), nullptr);
}

TEST(NativeConnection, IsNotBehindAConnectionOfAnotherProvider) {
  const auto foreign = std::make_shared<ForeignConnection>();
  EXPECT_EQ(failureOf([&] { static_cast<void>(nativeOf(foreign)); }),
            "Connessione di un altro fornitore");
  EXPECT_EQ(failureOf([&] { static_cast<void>(nativeOf(traced(foreign))); }),
            "Connessione di un altro fornitore");
}

TEST(NativeConnection, LivesAsLongAsWhatIsKeptOfIt) {
  auto native = std::make_shared<FakeConnection>();
  const std::weak_ptr<FakeConnection> watched = native;
  std::shared_ptr<NativeConnection> kept = nativeOf(traced(std::move(native)));
  EXPECT_FALSE(watched.expired()) << "the decorator is gone for its caller, but not for the cursor";
  kept.reset();
  EXPECT_TRUE(watched.expired());
}

/// A native connection whose errors are no `ErrorList`, as those of a connection around another
/// one.
class OtherErrors final : public Errors {
 public:
  [[nodiscard]] std::size_t count() const override { return entries.size(); }
  [[nodiscard]] ErrorInfo item(std::size_t index) const override { return entries.at(index); }
  void clear() override { entries.clear(); }

  std::vector<ErrorInfo> entries;
};
class ConnectionOfOtherErrors final : public FakeConnection {
 public:
  [[nodiscard]] Errors& errors() override { return others_; }
  void record(std::vector<ErrorInfo> entries) override { others_.entries = std::move(entries); }

 private:
  OtherErrors others_;
};

/// Changes a row that somebody else has changed; what the failure and `connection` say of it.
void meetAConflict(Recordset& rows, Connection& connection) {
  rows.fields().item("RAGSOC1").setValue(Variant{"Verdi"});
  try {
    rows.updateBatch(Affect::All);
    FAIL() << "no failure";
  } catch (const Error& error) {
    EXPECT_TRUE(error.fromProvider());
    ASSERT_EQ(connection.errors().count(), 1U);
    EXPECT_EQ(connection.errors().item(0).description, error.description());
    EXPECT_EQ(connection.errors().item(0).sqlState, "01001");
  }
}

TEST(RowConflict, HasItsEntryOnATracedConnection) {
  const auto native = std::make_shared<FakeConnection>();
  native->results.push_back(resultOf(customers()));
  native->rowsChanged = {0};
  const auto connection = traced(native);
  const auto rows = connection->newRecordset();
  rows->open("SELECT * FROM T1", connection, CursorType::Keyset, LockType::BatchOptimistic,
             CommandOption::Text);
  meetAConflict(*rows, *connection);
}

TEST(RowConflict, HasItsEntryWhenTheCursorItselfIsOnTheTracedConnection) {
  const auto native = std::make_shared<FakeConnection>();
  native->rowsChanged = {0};
  const auto connection = traced(native);
  const auto rows = openClientCursor(resultOf(customers()), connection);
  meetAConflict(*rows, *connection);
}

TEST(RowConflict, HasItsEntryWhateverTheErrorsOfTheConnectionAre) {
  const auto connection = std::make_shared<ConnectionOfOtherErrors>();
  connection->rowsChanged = {0};
  const auto rows = openClientCursor(resultOf(customers()), connection);
  meetAConflict(*rows, *connection);
}

/// A native connection that completes the columns of results when it is asked.
class SettlingConnection final : public FakeConnection {
 public:
  [[nodiscard]] std::vector<ColumnInfo> completeColumns(const std::vector<ColumnInfo>& columns,
                                                        const ResultOrigin& origin) override {
    asked.push_back(*origin.batch + " " + std::to_string(origin.index) + "/" +
                    std::to_string(origin.count));
    std::vector<ColumnInfo> complete = columns;
    complete[0].isKey = true;
    complete[1].isKey = true;
    return complete;
  }

  std::vector<std::string> asked;
};

/// Customers whose key is not known yet: the second of three results.
ResultSet incompleteCustomers() {
  ResultSet set = customers();
  std::vector<ColumnInfo> columns = set.columns.all();
  columns[0].isKey = false;
  columns[1].isKey = false;
  set.columns = std::move(columns);
  set.origin = ResultOrigin{std::make_shared<const std::string>("batch"), 1, 3};
  return set;
}

TEST(Settling, IsAskedOnceWhenTheFirstChangeIsSent) {
  const auto connection = std::make_shared<SettlingConnection>();
  const auto rows = openClientCursor(resultOf(incompleteCustomers()), connection);
  rows->updateBatch(Affect::All);
  EXPECT_EQ(connection->asked, std::vector<std::string>{}) << "nothing was changed";
  for (const char* const name : {"Verdi", "Neri"}) {
    rows->fields().item("RAGSOC1").setValue(Variant{name});
    rows->updateBatch(Affect::All);
  }
  EXPECT_EQ(connection->asked, std::vector<std::string>{"batch 1/3"});
  EXPECT_EQ(connection->changes.size(), 2U);
}

TEST(Settling, IsRefusedByAProviderWhoseResultsComeComplete) {
  const auto connection = std::make_shared<FakeConnection>();
  const auto rows = openClientCursor(resultOf(incompleteCustomers()), connection);
  rows->fields().item("RAGSOC1").setValue(Variant{"Verdi"});
  EXPECT_EQ(failureOf([&] { rows->updateBatch(Affect::All); }),
            "Connessione di un altro fornitore");
  EXPECT_EQ(connection->list.count(), 0U);
}

}  // namespace
}  // namespace azcoll::cursor
