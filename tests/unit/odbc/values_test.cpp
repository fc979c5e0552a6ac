#include "odbc/values.h"

#include "gtest/gtest.h"

#include "data/error.h"
#include "odbc/diagnostics.h"

namespace azcoll::odbc {
namespace {

Variant roundTrip(Carrier carrier, const Variant& value) {
  return decode(carrier, encode(carrier, value));
}

TEST(Values, EveryCarrierGoesBothWays) {
  EXPECT_EQ(roundTrip(Carrier::Bit, true), Variant{true});
  EXPECT_EQ(roundTrip(Carrier::Bit, false), Variant{false});
  EXPECT_EQ(roundTrip(Carrier::Int16, std::int16_t{-32768}), Variant{std::int16_t{-32768}});
  EXPECT_EQ(roundTrip(Carrier::Int32, "2147483647"), Variant{std::int32_t{2147483647}});
  EXPECT_EQ(roundTrip(Carrier::Int64, std::int64_t{-5}), Variant{std::int64_t{-5}});
  EXPECT_EQ(roundTrip(Carrier::Double, 0.1), Variant{0.1});
  EXPECT_EQ(roundTrip(Carrier::Text, "però 😀"), Variant{"però 😀"});
  EXPECT_EQ(roundTrip(Carrier::Text, ""), Variant{""});
  EXPECT_EQ(roundTrip(Carrier::Binary, "0x00ffA1"), Variant{"0x00FFA1"});
  EXPECT_EQ(roundTrip(Carrier::Binary, "0x"), Variant{"0x"});
  const Date moment = Date::of(2024, 2, 29, 23, 59, 58, 997).value();
  EXPECT_EQ(roundTrip(Carrier::Timestamp, moment), Variant{moment});
  const Decimal money = Decimal::parse("-99999999999999999999999999999999999999").value();
  EXPECT_EQ(roundTrip(Carrier::Decimal, money), Variant{money});
}

TEST(Values, WhatDoesNotConvertIsRefused) {
  EXPECT_THROW(static_cast<void>(encode(Carrier::Int32, "dodici")), Error);
  EXPECT_THROW(static_cast<void>(encode(Carrier::Int16, std::int32_t{40000})), Error);
  EXPECT_THROW(static_cast<void>(encode(Carrier::Timestamp, "30/02/2024")), Error);
  EXPECT_THROW(static_cast<void>(encode(Carrier::Text, "\xFF")), Error);
  for (const char* const text : {"00", "0x0", "0xZZ", "0x0G", ""}) {
    EXPECT_THROW(static_cast<void>(encode(Carrier::Binary, text)), Error) << text;
  }
}

TEST(Values, AnswersThatHoldNoValueAreFailures) {
  const auto decimal = [](std::string_view text) {
    return decode(Carrier::Decimal, std::as_bytes(std::span{text}));
  };
  EXPECT_EQ(decimal(" 12.50 "), Variant{Decimal::parse("12.50").value()});
  for (const char* const text : {"", "NaN", "1e5", "1,5", "Infinity"}) {
    EXPECT_THROW(static_cast<void>(decimal(text)), DriverFailure) << text;
  }
  SQL_TIMESTAMP_STRUCT moment{};
  moment.year = 2023;
  moment.month = 2;
  moment.day = 29;
  EXPECT_THROW(static_cast<void>(decode(Carrier::Timestamp, std::as_bytes(std::span{&moment, 1}))),
               DriverFailure);
  const char odd[] = {'a', '\0', 'b'};
  EXPECT_THROW(static_cast<void>(decode(Carrier::Text, std::as_bytes(std::span{odd}))),
               DriverFailure);
  EXPECT_THROW(static_cast<void>(decode(Carrier::Int32, {})), DriverFailure);
}

TEST(Values, WhatIsFinerThanAMillisecondIsLeftOut) {
  SQL_TIMESTAMP_STRUCT moment{};
  moment.year = 2024;
  moment.month = 12;
  moment.day = 31;
  moment.hour = 23;
  moment.minute = 59;
  moment.second = 59;
  moment.fraction = 999'999'900;  // rounding up would be another year
  EXPECT_EQ(decode(Carrier::Timestamp, std::as_bytes(std::span{&moment, 1})),
            Variant{Date::of(2024, 12, 31, 23, 59, 59, 999).value()});
}

TEST(Values, TypesWithoutAFormOfTheirOwnCrossAsText) {
  EXPECT_EQ(carrierOf(SQL_GUID), Carrier::Text);
  EXPECT_EQ(carrierOf(-154), Carrier::Text);  // SQL Server's TIME
  EXPECT_EQ(carrierOf(SQL_TINYINT), Carrier::Int16);
  EXPECT_EQ(carrierOf(SQL_TYPE_DATE), Carrier::Timestamp);
  EXPECT_EQ(carrierOf(SQL_NUMERIC), Carrier::Decimal);
}

}  // namespace
}  // namespace azcoll::odbc
