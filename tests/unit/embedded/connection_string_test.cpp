#include "embedded/connection_string.h"

#include "gtest/gtest.h"

#include "data/error.h"
#include "embedded/embedded_connection.h"

namespace azcoll::embedded {
namespace {

std::string complaint(std::string_view text) {
  try {
    static_cast<void>(readConnectionString(text));
  } catch (const Error& error) {
    return error.description();
  }
  return "";
}

TEST(ConnectionStrings, ChooseTheProvider) {
  EXPECT_TRUE(isEmbeddedConnectionString("Provider=embedded;Data Source=x"));
  EXPECT_TRUE(isEmbeddedConnectionString("; data source = x ; PROVIDER = Embedded "));
  EXPECT_FALSE(isEmbeddedConnectionString("Provider=SQLOLEDB;Data Source=embedded"));
  EXPECT_FALSE(isEmbeddedConnectionString(""));
  EXPECT_FALSE(isEmbeddedConnectionString("embedded"));
}

TEST(ConnectionStrings, HoldTheSettings) {
  const ConnectionSettings settings = readConnectionString(
      " provider = EMBEDDED ;DATA SOURCE=\"a;b\"\"c\"; Create = yes ; Timeout=5;;");
  EXPECT_EQ(settings.dataSource, "a;b\"c");
  EXPECT_TRUE(settings.create);
  EXPECT_FALSE(settings.readOnly);
  EXPECT_EQ(settings.timeoutSeconds, 5);
  EXPECT_TRUE(readConnectionString("Provider=embedded;Data Source='x';Read Only=True").readOnly);
}

TEST(ConnectionStrings, AreRefusedWithAReason) {
  EXPECT_NE(complaint("Provider=embedded"), "");
  EXPECT_NE(complaint("Data Source=x"), "");
  EXPECT_NE(complaint("Provider=other;Data Source=x"), "");
  EXPECT_NE(complaint("Provider=embedded;Data Source=x;Foo=1").find("Foo"), std::string::npos);
  EXPECT_NE(complaint("Provider=embedded;Data Source=x;Data Source=y"), "");
  EXPECT_NE(complaint("Provider=embedded;Data Source=x;Create=maybe"), "");
  EXPECT_NE(complaint("Provider=embedded;Data Source=x;Timeout=-1"), "");
  EXPECT_NE(complaint("Provider=embedded;Data Source=x;Timeout=1x"), "");
  EXPECT_NE(complaint("Provider=embedded;Data Source=\"x"), "");
  EXPECT_NE(complaint("Provider=embedded;Data Source=\"x\"y"), "");
  EXPECT_NE(complaint("Provider=embedded;Data Source=x;Create=True;Read Only=True"), "");
  EXPECT_EQ(complaint("Provider=embedded;Data Source=x;Create=False"), "");
}

}  // namespace
}  // namespace azcoll::embedded
