#include "cli/print/json.h"

#include <limits>
#include <nlohmann/json.hpp>

#include "gtest/gtest.h"

namespace azcoll::cli {
namespace {

using views::Rows;

std::string text(const Variant& value) { return dump(toJson(value)); }

TEST(ToJson, GivesEveryKindOfValue) {
  EXPECT_EQ(text({}), "null");
  EXPECT_EQ(text(kNull), "null");
  EXPECT_EQ(text(std::make_shared<Object>()), "null");
  EXPECT_EQ(text(true), "true");
  EXPECT_EQ(text(std::int16_t{-3}), "-3");
  EXPECT_EQ(text(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(text(0.5), "0.5");
  EXPECT_EQ(text(*Decimal::parse("922337203685477.5807")), "\"922337203685477.5807\"");
  EXPECT_EQ(text(*Date::of(2024, 1, 31)), "\"2024-01-31\"");
  EXPECT_EQ(text(*Date::of(2024, 1, 31, 23, 59, 1)), "\"2024-01-31 23:59:01\"");
  EXPECT_EQ(text("L'\"è\"\r\n"), R"("L'\"è\"\r\n")");
}

TEST(ToJson, ReplacesBytesThatAreNoUtf8) { EXPECT_EQ(text("a\xFFz"), "\"a\uFFFDz\""); }

TEST(ToJson, GivesColumnsAndRows) {
  const Rows rows{{"A", "A"}, {{1, kNull}, {2, "x"}}};
  EXPECT_EQ(dump(toJson(rows)), R"({"colonne":["A","A"],"righe":[[1,null],[2,"x"]]})");
  EXPECT_EQ(dump(toJson(Rows{{"A"}, {}})), R"({"colonne":["A"],"righe":[]})");
}

TEST(ToJson, PutsFurtherResultsUnderTheFirst) {
  const Rows one{{"A"}, {}};
  EXPECT_EQ(dump(toJson(std::vector<Rows>{})), "null");
  EXPECT_EQ(dump(toJson(std::vector<Rows>{one, {{"B"}, {{1}}}, {{"C"}, {}}})),
            R"({"colonne":["A"],"righe":[],"seguenti":[{"colonne":["B"],"righe":[[1]]},)"
            R"({"colonne":["C"],"righe":[]}]})");
}

}  // namespace
}  // namespace azcoll::cli
