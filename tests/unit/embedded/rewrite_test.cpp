// The activity query's shape with every kind of condition: the same rows with and without taking
// the correlation out of IN, with and without SQLite's own optimiser.

#include <random>

#include "gtest/gtest.h"

#include "data/text.h"
#include "engine_fixture.h"

namespace azcoll::embedded::test {
namespace {

/// A query whose conditions are drawn at random.
std::string randomQuery(std::mt19937& random) {
  const auto pick = [&random](int below) { return static_cast<int>(random() % unsigned(below)); };
  const auto condition = [&](const char* alias) {
    const std::string a(alias);
    switch (pick(6)) {
      case 0:
        return join(" AND ", a, ".X > ", pick(4));
      case 1:
        return join(" AND (", a, ".D = ", pick(4), " OR ", a, ".X = ", pick(4), ")");
      case 2:
        return join(" AND ", a, ".X IS NULL");
      case 3:
        return join(" AND ", a, ".N <> 'B'");
      default:
        return std::string();
    }
  };
  const char* const correlations[]{
      "C.T = O.T AND C.Y = O.Y", "C.T = O.T", "O.Y = C.Y", "C.N = O.N AND C.T = O.T",
      "C.T = O.T AND C.Y > O.Y", "1 = 1"};
  const std::string in =
      join("O.D IN (SELECT C.D FROM R AS C WHERE ", correlations[pick(6)], condition("C"), ")");
  const char* const shapes[]{"", "NOT ", "O.X = 1 OR "};
  const std::string query =
      join("SELECT O.I, O.N FROM R AS O WHERE ", shapes[pick(3)], in, condition("O"));
  return pick(4) == 0
             ? join("SELECT I, CASE WHEN ", in, " THEN 1 ELSE 0 END FROM R AS O ORDER BY I")
             : query + " ORDER BY O.I";
}

std::shared_ptr<EmbeddedConnection> openRandom(const EngineOptions& options) {
  auto connection = openMemory(options);
  connection->run(
      "CREATE TABLE R (I INT NOT NULL PRIMARY KEY, T SMALLINT NULL, Y INT NULL, D INT NULL, "
      "X INT NULL, N VARCHAR(3) NULL) CREATE INDEX IX_R ON R (T, Y, D)");
  std::mt19937 random(4711);  // NOLINT(cert-msc51-cpp): the same rows on every run
  for (int i = 0; i < 60; ++i) {
    const auto value = [&random] {
      const unsigned number = static_cast<unsigned>(random() % 5);
      return number == 4 ? std::string("NULL") : std::to_string(number);
    };
    const char* const names[]{"'A'", "'a '", "'B'", "NULL"};
    connection->run(join("INSERT INTO R VALUES (", i, ", ", value(), ", ", value(), ", ", value(),
                         ", ", value(), ", ", names[random() % 4], ")"));
  }
  return connection;
}

TEST(InRewrite, GivesTheRowsOfTheQueryAsWritten) {
  const auto rewritten = openRandom({});
  const auto plain = openRandom({.rewriteIn = false});
  const auto unoptimised = openRandom({.rewriteIn = false, .optimizer = false});
  const auto rewrittenUnoptimised = openRandom({.optimizer = false});
  std::mt19937 random(2024);  // NOLINT(cert-msc51-cpp): the same queries on every run
  std::size_t found = 0;
  for (int i = 0; i < 700; ++i) {
    const std::string query = randomQuery(random);
    const std::string expected = rows(*unoptimised, query);
    found += expected.empty() ? 0U : 1U;
    EXPECT_EQ(rows(*rewritten, query), expected) << query;
    EXPECT_EQ(rows(*plain, query), expected) << query;
    EXPECT_EQ(rows(*rewrittenUnoptimised, query), expected) << query;
  }
  EXPECT_GT(found, 300U);
}

}  // namespace
}  // namespace azcoll::embedded::test
