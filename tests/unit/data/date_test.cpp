#include "data/date.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "gtest/gtest.h"

namespace azcoll {
namespace {

std::string isoOf(std::string_view text) {
  const std::optional<Date> date = Date::parse(text);
  return date ? date->isoText() : "nothing";
}

TEST(Date, ReadsItsFourForms) {
  EXPECT_EQ(isoOf("29/02/2024"), "2024-02-29 00:00:00.000");
  EXPECT_EQ(isoOf("1/2/2024"), "2024-02-01 00:00:00.000");
  EXPECT_EQ(isoOf("2024-02-29"), "2024-02-29 00:00:00.000");
  EXPECT_EQ(isoOf("20240229"), "2024-02-29 00:00:00.000");
}

TEST(Date, ReadsATimeAfterEachForm) {
  EXPECT_EQ(isoOf("29/02/2024 08:05"), "2024-02-29 08:05:00.000");
  EXPECT_EQ(isoOf("1/2/2024 23:59:59"), "2024-02-01 23:59:59.000");
  EXPECT_EQ(isoOf("2024-02-29 08:05:01.5"), "2024-02-29 08:05:01.500");
  EXPECT_EQ(isoOf("2024-02-29T08:05:01.25"), "2024-02-29 08:05:01.250");
  EXPECT_EQ(isoOf("20240229 08:05:01.007"), "2024-02-29 08:05:01.007");
}

TEST(Date, ChecksTheCalendarAndTheClock) {
  for (const char* text :
       {"29/02/2023", "29/02/1900", "31/04/2024", "0/1/2024", "1/13/2024", "00000101", "20241301",
        "20240132", "2024-00-10", "01/01/2024 24:00", "01/01/2024 12:60", "01/01/2024 12:00:60"}) {
    EXPECT_EQ(isoOf(text), "nothing") << text;
  }
  EXPECT_EQ(isoOf("29/02/2000"), "2000-02-29 00:00:00.000");
  EXPECT_EQ(isoOf("00010101"), "0001-01-01 00:00:00.000");
  EXPECT_EQ(isoOf("99991231"), "9999-12-31 00:00:00.000");
}

TEST(Date, RefusesEveryOtherText) {
  for (const char* text : {"",
                           " ",
                           "abc",
                           "01/01/24",
                           "01-01-2024",
                           "2024/01/01",
                           "2024-1-1",
                           "1/1/2024 ",
                           " 1/1/2024",
                           "001/01/2024",
                           "1/1/02024",
                           "202401011",
                           "2024010",
                           "20240101T08:00",
                           "01/01/2024T08:00",
                           "01/01/2024  08:00",
                           "01/01/2024 8:00",
                           "01/01/2024 08",
                           "01/01/2024 08:",
                           "01/01/2024 08:00:",
                           "01/01/2024 08:00:00.",
                           "01/01/2024 08:00:00.1234",
                           "01/01/2024 08:00x",
                           "1/1",
                           "1/",
                           "2024-",
                           "2024-01",
                           "99999999999999999999",
                           "1/99999999999999999999/2024"}) {
    EXPECT_EQ(isoOf(text), "nothing") << '"' << text << '"';
  }
}

TEST(Date, ShowsTheTimeOnlyWhenThereIsOne) {
  EXPECT_EQ(Date::of(2024, 2, 9)->text(), "09/02/2024");
  EXPECT_EQ(Date::of(2024, 2, 9, 8, 5, 1)->text(), "09/02/2024 08:05:01");
  EXPECT_EQ(Date::of(2024, 2, 9)->databaseText(), "20240209");
  EXPECT_EQ(Date::of(2024, 2, 9, 0, 0, 1)->databaseText(), "20240209 00:00:01");
  EXPECT_EQ(Date::of(476, 9, 4)->text(), "04/09/0476");
  EXPECT_TRUE(Date::of(2024, 2, 9, 0, 0, 0, 1)->hasTime());
  EXPECT_FALSE(Date{}.hasTime());
}

TEST(Date, RefusesPartsOutOfRange) {
  EXPECT_FALSE(Date::of(0, 1, 1).has_value());
  EXPECT_FALSE(Date::of(10000, 1, 1).has_value());
  EXPECT_FALSE(Date::of(2024, -1, 1).has_value());
  EXPECT_FALSE(Date::of(2024, 1, 1, -1).has_value());
  EXPECT_FALSE(Date::of(2024, 1, 1, 0, 0, 0, 1000).has_value());
}

TEST(Date, CountsDays) {
  EXPECT_EQ(Date::of(1900, 1, 1)->dayNumber(), 0);
  EXPECT_EQ(Date::of(1899, 12, 31)->dayNumber(), -1);
  EXPECT_EQ(Date::of(1900, 1, 2, 23, 59, 59, 999)->dayNumber(), 1);
  for (const int day : {-693595, -1, 0, 59, 60, 36523, 36524, 45351, 2958463}) {
    EXPECT_EQ(Date::ofDayNumber(day)->dayNumber(), day);
  }
  EXPECT_EQ(Date::ofDayNumber(-693595), Date::of(1, 1, 1));
  EXPECT_EQ(Date::ofDayNumber(36583), Date::of(2000, 2, 29));
  EXPECT_EQ(Date::ofDayNumber(2958463), Date::of(9999, 12, 31));
  EXPECT_FALSE(Date::ofDayNumber(-693596));
  EXPECT_FALSE(Date::ofDayNumber(2958464));
  EXPECT_FALSE(Date::ofDayNumber(std::numeric_limits<std::int64_t>::max()));
  EXPECT_FALSE(Date::ofDayNumber(std::numeric_limits<std::int64_t>::min()));
}

TEST(Date, OrdersByTime) {
  EXPECT_LT(*Date::of(2023, 12, 31, 23), *Date::of(2024, 1, 1));
  EXPECT_LT(*Date::of(2024, 1, 1), *Date::of(2024, 1, 1, 0, 0, 0, 1));
  EXPECT_EQ(*Date::of(2024, 1, 1), (Date{2024, 1, 1}));
}

}  // namespace
}  // namespace azcoll
