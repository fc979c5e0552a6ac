#include "views/value_text.h"

#include <memory>

#include "gtest/gtest.h"

#include "data/date.h"
#include "data/decimal.h"
#include "data/object.h"

namespace azcoll::views {
namespace {

TEST(ValueText, ShowsTheMissingValueToPeople) {
  EXPECT_EQ(displayText(kNull), "NULL");
  EXPECT_EQ(displayText({}), "");
  EXPECT_EQ(displayText(*Date::of(2024, 1, 31)), "31/01/2024");
  EXPECT_EQ(displayText(true), "True");
  EXPECT_EQ(displayText(std::make_shared<Object>()), "(oggetto)");
  EXPECT_EQ(displayText(std::shared_ptr<Object>{}), "");
}

TEST(ValueText, ExchangesDatesInOneForm) {
  EXPECT_EQ(exchangeText(*Date::of(2024, 1, 31)), "2024-01-31");
  EXPECT_EQ(exchangeText(*Date::of(2024, 1, 31, 8, 5)), "2024-01-31 08:05:00");
  EXPECT_EQ(exchangeText(*Date::of(2024, 1, 31, 0, 0, 0, 7)), "2024-01-31 00:00:00.007");
  EXPECT_EQ(exchangeText(kNull), "");
  EXPECT_EQ(exchangeText(*Decimal::parse("-12.50")), "-12.50");
}

}  // namespace
}  // namespace azcoll::views
