// Changes that a recordset sends back: only where it is certain which row is meant.

#include <gtest/gtest.h>

#include "engine_fixture.h"

namespace azcoll::embedded::test {
namespace {

class BatchUpdate : public ::testing::Test {
 protected:
  std::shared_ptr<EmbeddedConnection> db = openMemory();

  BatchUpdate() {
    db->run(
        "CREATE TABLE T (A INT NOT NULL, B INT NOT NULL, V INT NULL, F BIT NULL,"
        " CONSTRAINT PK_T PRIMARY KEY (A, B))");
    db->run("INSERT INTO T (A, B, V, F) VALUES (1, 1, 10, 1), (1, 2, 10, 0), (2, 1, 20, NULL)");
  }

  std::shared_ptr<Recordset> open(const std::string& sql) {
    const auto rows = db->newRecordset();
    rows->open(sql, db, CursorType::Keyset, LockType::BatchOptimistic, CommandOption::Text);
    return rows;
  }
  /// Changes `column` of the first row and sends it.
  void change(const std::string& sql, const std::string& column, const Variant& value) {
    const auto rows = open(sql);
    rows->fields().item(column).setValue(value);
    rows->update();
    rows->updateBatch(Affect::All);
  }
  std::int64_t count(const std::string& condition) {
    return open("SELECT COUNT(*) AS N FROM T WHERE " + condition)
        ->fields()
        .item("N")
        .value()
        .toInt64();
  }
};

TEST_F(BatchUpdate, NeedsTheWholeKeyInTheResult) {
  EXPECT_THROW(change("SELECT A, V FROM T ORDER BY B", "V", 11), Error);
  EXPECT_EQ(count("V = 11"), 0);
  change("SELECT A, B, V FROM T ORDER BY A, B", "V", 11);
  EXPECT_EQ(count("V = 11 AND A = 1 AND B = 1"), 1);
}

TEST_F(BatchUpdate, RefusesATableThatStandsThereTwice) {
  EXPECT_THROW(change("SELECT X.A, X.B, Y.V FROM T AS X INNER JOIN T AS Y ON Y.A = X.A AND Y.B = "
                      "3 - X.B ORDER BY X.A, X.B",
                      "V", 11),
               Error);
  EXPECT_THROW(change("SELECT D.A, D.B, Y.V FROM (SELECT A, B FROM T) AS D INNER JOIN T AS Y ON "
                      "Y.A = D.A AND Y.B = 3 - D.B",
                      "V", 11),
               Error);
  EXPECT_EQ(count("V = 11"), 0);
}

TEST_F(BatchUpdate, TakesATableThatSubqueriesNameAsWell) {
  change("SELECT A, B, V FROM T WHERE V = (SELECT MAX(V) FROM T)", "V", 21);
  EXPECT_EQ(count("V = 21 AND A = 2"), 1);
}

TEST_F(BatchUpdate, ChangesABitInItsOwnRow) {
  change("SELECT * FROM T ORDER BY A, B", "F", false);
  EXPECT_EQ(count("F = 0"), 2);
  change("SELECT * FROM T ORDER BY A, B", "F", true);
  EXPECT_EQ(count("F = 1"), 1);
  change("SELECT * FROM T WHERE F = 1", "V", 12);
  EXPECT_EQ(count("F = 1 AND V = 12"), 1);
}

}  // namespace
}  // namespace azcoll::embedded::test
