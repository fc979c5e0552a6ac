#include "support/server_database.h"

#include "providers/provider.h"

namespace azcoll::test {
namespace {

TEST(ServerDatabase, TheOtherSettingsOfTheStringStay) {
  EXPECT_EQ(withDatabase("Driver=X;Database=prima;UID=u", "mia"), "Driver=X;UID=u;Database=mia;");
  EXPECT_EQ(withDatabase("PWD={a;Database=b};initial catalog = c;", "mia"),
            "PWD={a;Database=b};Database=mia;");
  EXPECT_EQ(withDatabase("", "mia"), "Database=mia;");
  EXPECT_EQ(withUser("Driver=X;User Id=sa;Database=d;Password={a;b}", "io", "mia"),
            "Driver=X;Database=d;UID=io;PWD=mia;");
}

// The database that the suites make for themselves on a server, on one that can make databases.
class OwnDatabase : public testing::TestWithParam<std::string> {};

TEST_P(OwnDatabase, IsThereWhileItIsNeededAndGoneAfterwards) {
  const Provider& provider = providerNamed(GetParam());
  if (!provider.absent.empty()) {
    GTEST_SKIP() << provider.name << ": " << provider.absent;
  }
  std::string connectionString;
  {
    const ServerDatabase first{provider.connectionString};
    const ServerDatabase second{provider.connectionString};
    EXPECT_NE(first.name(), second.name());
    connectionString = first.connectionString();
    const auto connection = newConnectionFor(connectionString);
    connection->open("", "", CommandOption::Unspecified);
    std::int64_t affected = 0;
    connection->execute("CREATE TABLE T9_PROVA (C1 INT)", affected, CommandOption::Text);
    const auto other = newConnectionFor(second.connectionString());
    other->open("", "", CommandOption::Unspecified);
    EXPECT_TRUE(failureOf([&] {
                  other->execute("SELECT * FROM T9_PROVA", affected, CommandOption::Text);
                }).fromProvider());
    connection->close();
    other->close();
  }
  const auto connection = newConnectionFor(connectionString);
  EXPECT_TRUE(
      failureOf([&] { connection->open("", "", CommandOption::Unspecified); }).fromProvider());
}

INSTANTIATE_TEST_SUITE_P(Providers, OwnDatabase, testing::Values("postgresql", "server"),
                         nameOfCase);

}  // namespace
}  // namespace azcoll::test
