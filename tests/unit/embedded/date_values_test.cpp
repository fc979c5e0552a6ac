#include "embedded/values/date_values.h"

#include <cstdint>
#include <vector>

#include "gtest/gtest.h"

namespace azcoll::embedded {
namespace {

std::string parsed(std::string_view text) {
  const ParsedDate result = parseDateText(text);
  switch (result.outcome) {
    case DateOutcome::Malformed:
      return "malformed";
    case DateOutcome::OutOfRange:
      return "out of range";
    case DateOutcome::TooFine:
      return "too fine";
    case DateOutcome::Good:
      break;
  }
  return result.date.isoText();
}

TEST(DateText, ReadsTheFormsThatNoLanguageChanges) {
  EXPECT_EQ(parsed(""), "1900-01-01 00:00:00.000");
  EXPECT_EQ(parsed("   "), "1900-01-01 00:00:00.000");
  EXPECT_EQ(parsed("20240229"), "2024-02-29 00:00:00.000");
  EXPECT_EQ(parsed("490101"), "2049-01-01 00:00:00.000");
  EXPECT_EQ(parsed("500101"), "1950-01-01 00:00:00.000");
  EXPECT_EQ(parsed("2024"), "2024-01-01 00:00:00.000");
  EXPECT_EQ(parsed("2024-1-2"), "2024-01-02 00:00:00.000");
  EXPECT_EQ(parsed("2024-01-02T03:04:05.6"), "2024-01-02 03:04:05.600");
  EXPECT_EQ(parsed(" 20240102 03:04:05 "), "2024-01-02 03:04:05.000");
  EXPECT_EQ(parsed("20240102 3:04"), "2024-01-02 03:04:00.000");
  EXPECT_EQ(parsed("12:30"), "1900-01-01 12:30:00.000");
}

TEST(DateText, TellsWhatIsNoDateFromWhatDoesNotExist) {
  for (const char* text :
       {"abc", "01/02/2024", "2024-", "2024-01", "20240101T10:00", "2024-01-01x", "20240101 25",
        "202401012", "20240101 1:2:3:4", "1:", "12:3x", "20240101 111:00", "20240101 10:111",
        "20240101 10:10:100", "2024-111-01", "2024-01-111", "123"}) {
    EXPECT_EQ(parsed(text), "malformed") << text;
  }
  for (const char* text :
       {"20240230", "20241301", "2024-02-30", "20240101 24:00", "20240101 10:60"}) {
    EXPECT_EQ(parsed(text), "out of range") << text;
  }
  EXPECT_EQ(parsed("20240101 10:00:00.1234"), "too fine");
  EXPECT_EQ(parsed("20240101 10:00:00.12345678"), "malformed");
}

TEST(DateText, RoundsDatetimeToThreeHundredthsOfASecond) {
  const auto rounded = [](int milliseconds) {
    return fitDate(*Date::of(2024, 1, 1, 10, 0, 0, milliseconds), kDateTime)->millisecond;
  };
  const int expected[]{0, 0, 3, 3, 3, 7, 7, 7, 7, 10, 10, 10, 13};
  for (int i = 0; i < 13; ++i) {
    EXPECT_EQ(rounded(i), expected[i]) << i;
  }
  EXPECT_EQ(fitDate(*Date::of(2023, 12, 31, 23, 59, 59, 999), kDateTime)->isoText(),
            "2024-01-01 00:00:00.000");
}

TEST(DateText, FitsTheOtherTypes) {
  const Date date = *Date::of(2024, 1, 31, 23, 59, 30, 126);
  EXPECT_EQ(storedDate(*fitDate(date, {TypeKind::Date, 0, 0, 0}), {TypeKind::Date, 0, 0, 0}),
            "2024-01-31");
  EXPECT_EQ(fitDate(date, {TypeKind::SmallDateTime, 0, 0, 0})->isoText(),
            "2024-02-01 00:00:00.000");
  EXPECT_EQ(
      fitDate(*Date::of(2024, 1, 1, 0, 0, 29, 998), {TypeKind::SmallDateTime, 0, 0, 0})->isoText(),
      "2024-01-01 00:00:00.000");
  EXPECT_EQ(fitDate(date, {TypeKind::DateTime2, 0, 0, 2})->millisecond, 130);
  EXPECT_FALSE(fitDate(*Date::of(1752, 12, 31), kDateTime));
  EXPECT_FALSE(fitDate(*Date::of(2079, 6, 7), {TypeKind::SmallDateTime, 0, 0, 0}));
  EXPECT_FALSE(fitDate(*Date::of(9999, 12, 31, 23, 59, 59, 999), kDateTime));
}

TEST(DateText, WritesTheStyles) {
  const Date date = *Date::of(2024, 3, 5, 13, 7, 9, 40);
  const auto styled = [&](int style) { return styledDate(date, kDateTime, style); };
  EXPECT_EQ(styled(0), "Mar  5 2024  1:07PM");
  EXPECT_EQ(styled(103), "05/03/2024");
  EXPECT_EQ(styled(112), "20240305");
  EXPECT_EQ(styled(120), "2024-03-05 13:07:09");
  EXPECT_EQ(styled(121), "2024-03-05 13:07:09.040");
  EXPECT_EQ(styled(126), "2024-03-05T13:07:09.040");
  std::vector<int> known;
  for (int style = -1; style < 1000; ++style) {
    if (isDateStyle(style)) {
      known.push_back(style);
    }
  }
  EXPECT_EQ(known, (std::vector<int>{0, 103, 112, 120, 121, 126}));
  EXPECT_EQ(styledDate(date, {TypeKind::Date, 0, 0, 0}, 0), "Mar  5 2024");
  EXPECT_EQ(styledDate(date, {TypeKind::Date, 0, 0, 0}, 126), "2024-03-05");
}

}  // namespace
}  // namespace azcoll::embedded
