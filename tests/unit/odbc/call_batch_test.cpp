#include "odbc/call_batch.h"

#include "gtest/gtest.h"

#include "data/error.h"

namespace azcoll::odbc {
namespace {

DeclaredParameter input(std::string name, SQLSMALLINT type = SQL_INTEGER) {
  return {.name = std::move(name), .direction = ParameterDirection::Input, .sqlType = type};
}

DeclaredParameter output(std::string name, SQLSMALLINT type, SQLULEN size, SQLSMALLINT digits = 0) {
  return {.name = std::move(name),
          .direction = ParameterDirection::InputOutput,
          .sqlType = type,
          .size = size,
          .digits = digits};
}

TEST(CallBatch, NamesTheParametersThatHaveAValue) {
  const CallBatch batch{" dbo.P ",
                        {input("@a"), input("@b"), input("@c")},
                        {Variant{std::int32_t{1}}, Variant{}, kNull}};
  EXPECT_EQ(batch.text(), "EXEC dbo.P @a = ?, @c = ?");
}

TEST(CallBatch, WithoutAnyValueCallsTheProcedureByItsName) {
  CallBatch batch{"P", {input("@a")}, {Variant{}}};
  EXPECT_EQ(batch.text(), "EXEC P");
  EXPECT_TRUE(batch.parameters().empty());
  ExecutionResult execution;
  std::vector<Variant> values{Variant{}};
  batch.takeOutputs(execution, values);
  EXPECT_TRUE(values[0].isEmpty());
}

TEST(CallBatch, TakesOutputsThroughVariablesOfTheirTypes) {
  CallBatch batch{"P",
                  {input("@a"), output("@b", SQL_VARCHAR, 8000), output("@c", SQL_WVARCHAR, 0),
                   output("@d", SQL_DECIMAL, 18, 4), input("@e")},
                  {Variant{std::int32_t{1}}, Variant{}, Variant{"x"}, kNull, Variant{}}};
  EXPECT_EQ(batch.text(),
            "DECLARE @azcoll_0 VARCHAR(8000) SET @azcoll_0 = ? "
            "DECLARE @azcoll_1 NVARCHAR(MAX) SET @azcoll_1 = ? "
            "DECLARE @azcoll_2 DECIMAL(18, 4) SET @azcoll_2 = ? "
            "EXEC P @a = ?, @b = @azcoll_0 OUTPUT, @c = @azcoll_1 OUTPUT, @d = @azcoll_2 OUTPUT"
            " SELECT @azcoll_0 AS azcoll_0, @azcoll_1 AS azcoll_1, @azcoll_2 AS azcoll_2");
  EXPECT_EQ(batch.parameters().size(), 4U);
}

TEST(CallBatch, AnAnswerWithoutTheOutputsIsAFailure) {
  const CallBatch batch{"P", {output("@b", SQL_INTEGER, 10)}, {Variant{}}};
  ExecutionResult execution;
  std::vector<Variant> values{Variant{}};
  EXPECT_THROW(batch.takeOutputs(execution, values), DriverFailure);
}

TEST(CallBatch, RefusesAValueThatDoesNotConvert) {
  EXPECT_THROW((CallBatch{"P", {input("@a")}, {Variant{"dodici"}}}), Error);
}

TEST(CallBatch, IsForADriverThatRefusesDefaults) {
  EXPECT_TRUE(isRefusedDefault(DriverFailure{"07S01", ""}));
  EXPECT_FALSE(isRefusedDefault(DriverFailure{"42000", 201, "expects parameter"}));
}

}  // namespace
}  // namespace azcoll::odbc
