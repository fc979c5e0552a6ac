// A change of a row that somebody else has changed, on a connection that the tests break.

#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "data/messages.h"
#include "faults/faulty_connection.h"
#include "support/test_database.h"

namespace azcoll::test {
namespace {

TEST(RowConflict, LeavesItsEntryInTheErrorsOfAFaultyConnection) {
  const std::shared_ptr<Connection> inner = openExample();
  const FaultyConnection faulty{inner};
  const std::shared_ptr<Connection> connection = faulty.connection();
  const std::shared_ptr<Recordset> rows = connection->newRecordset();
  rows->open("SELECT * FROM CG28_TABCODIVA WHERE CG28_DITTA_CG18 = 10 AND CG28_CODICE = N'22'",
             connection, CursorType::Keyset, LockType::BatchOptimistic, CommandOption::Text);
  ASSERT_EQ(rows->recordCount(), 1);
  rows->fields().item("CG28_DESCR").setValue(Variant{"mia"});
  std::int64_t affected = 0;
  inner->execute(
      "UPDATE CG28_TABCODIVA SET CG28_DESCR = N'altrui' WHERE CG28_DITTA_CG18 = 10 AND CG28_CODICE "
      "= N'22'",
      affected, CommandOption::Text);
  ASSERT_EQ(affected, 1);
  connection->errors().clear();
  try {
    rows->updateBatch(Affect::All);
    FAIL() << "no failure";
  } catch (const Error& error) {
    EXPECT_TRUE(error.fromProvider());
    EXPECT_EQ(error.description(), messages::kRowConflict);
    ASSERT_EQ(connection->errors().count(), 1U);
    EXPECT_EQ(connection->errors().item(0).description, messages::kRowConflict);
  }
}

}  // namespace
}  // namespace azcoll::test
