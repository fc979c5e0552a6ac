// Values of automation and of this system, in both directions.

#include "ado/variants.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <string>

#include "ado/wide_text.h"
#include "data/error.h"

namespace azcoll::ado {
namespace {

/// A VARIANT of a type, its content set by `fill`.
template <typename Fill>
ScopedVariant made(VARTYPE type, const Fill& fill) {
  ScopedVariant value;
  fill(value.raw());
  value.raw().vt = type;
  return value;
}

Variant read(const ScopedVariant& value) { return fromVariant(value.value()); }

Decimal decimal(const char* text) { return Decimal::parse(text).value(); }

Variant thereAndBack(const Variant& value) { return read(toVariant(value)); }

TEST(AutomationValues, ReadsIntegersOfEverySize) {
  EXPECT_EQ(read(made(VT_I1, [](VARIANT& v) { v.cVal = -5; })), Variant{std::int16_t{-5}});
  EXPECT_EQ(read(made(VT_UI1, [](VARIANT& v) { v.bVal = 200; })), Variant{std::int16_t{200}});
  EXPECT_EQ(read(made(VT_I2, [](VARIANT& v) { v.iVal = -32768; })), Variant{std::int16_t{-32768}});
  EXPECT_EQ(read(made(VT_UI2, [](VARIANT& v) { v.uiVal = 65535; })), Variant{65535});
  EXPECT_EQ(read(made(VT_I4, [](VARIANT& v) { v.lVal = -7; })), Variant{-7});
  EXPECT_EQ(read(made(VT_UI4, [](VARIANT& v) { v.ulVal = 4294967295U; })),
            Variant{std::int64_t{4294967295}});
  EXPECT_EQ(read(made(VT_I8, [](VARIANT& v) { v.llVal = std::numeric_limits<LONGLONG>::min(); })),
            Variant{std::numeric_limits<std::int64_t>::min()});
  EXPECT_EQ(read(made(VT_UI8, [](VARIANT& v) { v.ullVal = 5; })), Variant{std::int64_t{5}});
  EXPECT_EQ(read(made(VT_UI8, [](VARIANT& v) { v.ullVal = 18446744073709551615U; })),
            Variant{decimal("18446744073709551615")});
  EXPECT_EQ(read(made(VT_INT, [](VARIANT& v) { v.intVal = 9; })), Variant{9});
  EXPECT_EQ(read(made(VT_UINT, [](VARIANT& v) { v.uintVal = 9; })), Variant{std::int64_t{9}});
}

TEST(AutomationValues, ReadsEmptyNullAndTruth) {
  EXPECT_TRUE(read(ScopedVariant{}).isEmpty());
  EXPECT_TRUE(read(made(VT_NULL, [](VARIANT&) {})).isNull());
  EXPECT_EQ(read(made(VT_BOOL, [](VARIANT& v) { v.boolVal = VARIANT_TRUE; })), Variant{true});
  EXPECT_EQ(read(made(VT_BOOL, [](VARIANT& v) { v.boolVal = VARIANT_FALSE; })), Variant{false});
}

TEST(AutomationValues, ReadsFloatingPointAndASinglesShortestText) {
  EXPECT_EQ(read(made(VT_R8, [](VARIANT& v) { v.dblVal = 0.1; })), Variant{0.1});
  EXPECT_EQ(read(made(VT_R4, [](VARIANT& v) { v.fltVal = 0.1F; })), Variant{0.1});
}

TEST(AutomationValues, ReadsCurrencyExactlyAndWithoutItsZeros) {
  const auto currency = [](std::int64_t units) {
    return read(made(VT_CY, [units](VARIANT& v) { v.cyVal.int64 = units; }));
  };
  EXPECT_EQ(currency(125000).text(), "12.5");
  EXPECT_EQ(currency(-1).text(), "-0.0001");
  EXPECT_EQ(currency(0).text(), "0");
  EXPECT_EQ(currency(std::numeric_limits<std::int64_t>::max()).text(), "922337203685477.5807");
}

TEST(AutomationValues, CarriesDecimalsExactlyBothWays) {
  for (const char* text : {"0", "12.50", "-12.50", "79228162514264337593543950335",
                           "-7.9228162514264337593543950335", "0.0000000000000000000000000001"}) {
    EXPECT_EQ(thereAndBack(decimal(text)).text(), text);
  }
  const ScopedVariant written = toVariant(decimal("12.50"));
  EXPECT_EQ(written.value().vt, VT_DECIMAL);
  ScopedVariant asText;
  ASSERT_TRUE(SUCCEEDED(VariantChangeTypeEx(&asText.raw(), const_cast<VARIANT*>(&written.value()),
                                            LOCALE_INVARIANT, 0, VT_R8)));
  EXPECT_EQ(asText.value().dblVal, 12.5);
}

TEST(AutomationValues, DropsOnlyZerosFromADecimalThatIsTooLong) {
  EXPECT_EQ(thereAndBack(decimal("1.00000000000000000000000000000")), Variant{decimal("1")});
}

TEST(AutomationValues, WritesADecimalBeyondAutomationsRangeAsItsText) {
  for (const char* text : {"79228162514264337593543950336", "0.00000000000000000000000000001",
                           "1234567890123456789012345678.0123456789"}) {
    EXPECT_EQ(thereAndBack(decimal(text)), Variant{text});
  }
}

TEST(AutomationValues, AgreesWithTheSystemOnDates) {
  for (const Date& date :
       {Date::of(1899, 12, 30).value(), Date::of(1900, 3, 1).value(),
        Date::of(2024, 2, 29, 23, 59, 59).value(), Date::of(100, 1, 1).value(),
        Date::of(9999, 12, 31, 12, 0, 0).value(), Date::of(1800, 6, 15, 6, 30, 15).value()}) {
    SYSTEMTIME parts{};
    parts.wYear = static_cast<WORD>(date.year);
    parts.wMonth = static_cast<WORD>(date.month);
    parts.wDay = static_cast<WORD>(date.day);
    parts.wHour = static_cast<WORD>(date.hour);
    parts.wMinute = static_cast<WORD>(date.minute);
    parts.wSecond = static_cast<WORD>(date.second);
    DATE expected = 0;
    ASSERT_TRUE(SystemTimeToVariantTime(&parts, &expected)) << date.text();
    const ScopedVariant written = toVariant(date);
    EXPECT_NEAR(written.value().date, expected, 1e-9) << date.text();
    EXPECT_EQ(read(written), Variant{date}) << date.text();
  }
}

TEST(AutomationValues, KeepsMillisecondsAndRoundsUpToTheNextDay) {
  const Date date = Date::of(2025, 1, 31, 23, 59, 59, 997).value();
  EXPECT_EQ(thereAndBack(date), Variant{date});
  const ScopedVariant almost = made(VT_DATE, [](VARIANT& v) { v.date = 45688.9999999999; });
  EXPECT_EQ(read(almost), Variant{Date::of(2025, 2, 1).value()});
}

TEST(AutomationValues, RefusesDatesOutsideTheCalendar) {
  EXPECT_THROW(static_cast<void>(toVariant(Date::of(99, 12, 31).value())), Error);
  for (const double day : {-700000.0, 3000000.0, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_THROW(static_cast<void>(read(made(VT_DATE, [day](VARIANT& v) { v.date = day; }))),
                 Error);
  }
}

TEST(AutomationValues, CarriesTextWithZerosAndBeyondTheBasicPlane) {
  const std::string text{"Città\0di 𝄞", 14};
  EXPECT_EQ(thereAndBack(text), Variant{text});
  EXPECT_EQ(thereAndBack(""), Variant{""});
  EXPECT_EQ(SysStringLen(toVariant("𝄞").value().bstrVal), 2U);
}

TEST(AutomationValues, ReadsANullTextAsEmptyAndHalfAPairAsReplacement) {
  EXPECT_EQ(read(made(VT_BSTR, [](VARIANT& v) { v.bstrVal = nullptr; })), Variant{""});
  const wchar_t half[] = {L'a', 0xD834, 0};
  EXPECT_EQ(read(made(VT_BSTR, [&](VARIANT& v) { v.bstrVal = SysAllocString(half); })),
            Variant{"a\xEF\xBF\xBD"});
  EXPECT_EQ(thereAndBack("a\xFF"), Variant{"a\xEF\xBF\xBD"});
}

TEST(AutomationValues, FollowsReferencesOfEveryKind) {
  LONG number = 42;
  EXPECT_EQ(read(made(VT_BYREF | VT_I4, [&](VARIANT& v) { v.plVal = &number; })), Variant{42});
  DATE date = 2;
  EXPECT_EQ(read(made(VT_BYREF | VT_DATE, [&](VARIANT& v) { v.pdate = &date; })),
            Variant{Date::of(1900, 1, 1).value()});
  CY currency{};
  currency.int64 = 15000;
  EXPECT_EQ(read(made(VT_BYREF | VT_CY, [&](VARIANT& v) { v.pcyVal = &currency; })).text(), "1.5");
  const ScopedVariant inner = toVariant("città");
  EXPECT_EQ(read(made(VT_BYREF | VT_VARIANT,
                      [&](VARIANT& v) { v.pvarVal = const_cast<VARIANT*>(&inner.value()); })),
            Variant{"città"});
}

TEST(AutomationValues, FollowsAReferenceToWhateverItReads) {
  const ScopedVariant number = toVariant(decimal("-12.50"));
  const ScopedVariant text = toVariant("città 𝄞");
  for (const ScopedVariant* const given : {&number, &text}) {
    EXPECT_EQ(read(made(VT_BYREF | VT_VARIANT,
                        [&](VARIANT& v) { v.pvarVal = const_cast<VARIANT*>(&given->value()); })),
              read(*given));
  }
  DECIMAL amount = number.value().decVal;
  EXPECT_EQ(read(made(VT_BYREF | VT_DECIMAL, [&](VARIANT& v) { v.pdecVal = &amount; })).text(),
            "-12.50");
  BSTR word = text.value().bstrVal;
  EXPECT_EQ(read(made(VT_BYREF | VT_BSTR, [&](VARIANT& v) { v.pbstrVal = &word; })),
            Variant{"città 𝄞"});
  VARIANT_BOOL truth = VARIANT_TRUE;
  EXPECT_EQ(read(made(VT_BYREF | VT_BOOL, [&](VARIANT& v) { v.pboolVal = &truth; })),
            Variant{true});
  SHORT small = -3;
  EXPECT_EQ(read(made(VT_BYREF | VT_I2, [&](VARIANT& v) { v.piVal = &small; })),
            Variant{std::int16_t{-3}});
  LONGLONG large = 5'000'000'000;
  EXPECT_EQ(read(made(VT_BYREF | VT_I8, [&](VARIANT& v) { v.pllVal = &large; })),
            Variant{std::int64_t{5'000'000'000}});
  FLOAT single = 0.1F;
  EXPECT_EQ(read(made(VT_BYREF | VT_R4, [&](VARIANT& v) { v.pfltVal = &single; })), Variant{0.1});
  DOUBLE twice = 0.5;
  EXPECT_EQ(read(made(VT_BYREF | VT_R8, [&](VARIANT& v) { v.pdblVal = &twice; })), Variant{0.5});
  BYTE byte = 200;
  EXPECT_EQ(read(made(VT_BYREF | VT_UI1, [&](VARIANT& v) { v.pbVal = &byte; })),
            Variant{std::int16_t{200}});
  IDispatch* nobody = nullptr;
  EXPECT_EQ(read(made(VT_BYREF | VT_DISPATCH, [&](VARIANT& v) { v.ppdispVal = &nobody; })).object(),
            nullptr);
}

TEST(AutomationValues, RefusesErrorsMissingArgumentsAndArrays) {
  EXPECT_THROW(
      static_cast<void>(read(made(VT_ERROR, [](VARIANT& v) { v.scode = DISP_E_PARAMNOTFOUND; }))),
      Error);
  EXPECT_THROW(static_cast<void>(read(made(VT_ERROR, [](VARIANT& v) { v.scode = E_FAIL; }))),
               Error);
  const ScopedVariant array = made(VT_ARRAY | VT_I4, [](VARIANT& v) {
    SAFEARRAYBOUND bound{3, 0};
    v.parray = SafeArrayCreate(VT_I4, 1, &bound);
  });
  EXPECT_THROW(static_cast<void>(read(array)), Error);
  SAFEARRAY* behind = array.value().parray;
  EXPECT_THROW(static_cast<void>(read(
                   made(VT_BYREF | VT_ARRAY | VT_I4, [&](VARIANT& v) { v.pparray = &behind; }))),
               Error);
  SCODE code = E_FAIL;
  EXPECT_THROW(
      static_cast<void>(read(made(VT_BYREF | VT_ERROR, [&](VARIANT& v) { v.pscode = &code; }))),
      Error);
}

TEST(AutomationValues, NothingIsTheNullObject) {
  const Variant nothing = read(made(VT_DISPATCH, [](VARIANT& v) { v.pdispVal = nullptr; }));
  EXPECT_EQ(nothing.kind(), Variant::Kind::Object);
  EXPECT_EQ(nothing.object(), nullptr);
  const ScopedVariant written = toVariant(nothing);
  EXPECT_EQ(written.value().vt, VT_DISPATCH);
  EXPECT_EQ(written.value().pdispVal, nullptr);
}

TEST(AutomationValues, KeepsTheKindOfEveryOtherValue) {
  for (const Variant& value : {Variant{}, Variant{kNull}, Variant{true}, Variant{std::int16_t{-3}},
                               Variant{70000}, Variant{std::int64_t{1} << 40}, Variant{-0.5}}) {
    EXPECT_EQ(thereAndBack(value), value);
  }
}

}  // namespace
}  // namespace azcoll::ado
