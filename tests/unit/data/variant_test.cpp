#include "data/variant.h"

#include <cstdint>
#include <limits>
#include <locale>
#include <memory>
#include <string>

#include "gtest/gtest.h"

#include "data/error.h"

namespace azcoll {
namespace {

template <typename Work>
std::string failureOf(const Work& work) {
  try {
    static_cast<void>(work());
  } catch (const Error& error) {
    EXPECT_FALSE(error.fromProvider());
    return error.description();
  }
  return "no failure";
}

const std::string kMismatch = "Tipo non corrispondente";
const std::string kNullUse = "Uso non valido di Null";
const std::string kOverflow = "Overflow";

Decimal decimal(std::string_view text) { return Decimal::parse(text).value_or(Decimal{}); }

class Thing final : public Object {};

TEST(Variant, NumbersItsKindsAsTheStorageDoes) {
  EXPECT_EQ(Variant{}.kind(), Variant::Kind::Empty);
  EXPECT_EQ(Variant{kNull}.kind(), Variant::Kind::Null);
  EXPECT_EQ(Variant{true}.kind(), Variant::Kind::Boolean);
  EXPECT_EQ(Variant{std::int16_t{1}}.kind(), Variant::Kind::Int16);
  EXPECT_EQ(Variant{1}.kind(), Variant::Kind::Int32);
  EXPECT_EQ(Variant{std::int64_t{1}}.kind(), Variant::Kind::Int64);
  EXPECT_EQ(Variant{1.5}.kind(), Variant::Kind::Double);
  EXPECT_EQ(Variant{decimal("1")}.kind(), Variant::Kind::Decimal);
  EXPECT_EQ(Variant{Date{}}.kind(), Variant::Kind::Date);
  EXPECT_EQ(Variant{"a"}.kind(), Variant::Kind::Text);
  EXPECT_EQ(Variant{std::string_view{"a"}}.kind(), Variant::Kind::Text);
  EXPECT_EQ(Variant{std::shared_ptr<Object>{}}.kind(), Variant::Kind::Object);
}

TEST(Variant, HasATextFormForEveryValue) {
  EXPECT_EQ(Variant{}.text(), "");
  EXPECT_EQ(Variant{true}.text(), "True");
  EXPECT_EQ(Variant{false}.text(), "False");
  EXPECT_EQ(Variant{std::int16_t{-32768}}.text(), "-32768");
  EXPECT_EQ(Variant{std::numeric_limits<std::int64_t>::min()}.text(), "-9223372036854775808");
  EXPECT_EQ(Variant{decimal("1234.50")}.text(), "1234.50");
  EXPECT_EQ(Variant{*Date::of(2024, 2, 1)}.text(), "01/02/2024");
  EXPECT_EQ(Variant{*Date::of(2024, 2, 1, 13, 5)}.text(), "01/02/2024 13:05:00");
  EXPECT_EQ(Variant{"Attivit\u00E0"}.text(), "Attivit\u00E0");
}

TEST(Variant, WritesADoubleShortAndWithoutExponentWhereDigitsServe) {
  EXPECT_EQ(Variant{0.1}.text(), "0.1");
  EXPECT_EQ(Variant{-0.0}.text(), "0");
  EXPECT_EQ(Variant{100000.0}.text(), "100000");
  EXPECT_EQ(Variant{1e20}.text(), "100000000000000000000");
  EXPECT_EQ(Variant{0.0000001}.text(), "0.0000001");
  EXPECT_EQ(Variant{1e-8}.text(), "1e-08");
  EXPECT_EQ(Variant{1e21}.text(), "1e+21");
  EXPECT_EQ(Variant{1.7976931348623157e308}.text(), "1.7976931348623157e+308");
}

/// Writes and reads numbers as an Italian locale does; not every machine has one installed.
class CommaAndGrouping final : public std::numpunct<char> {
 protected:
  [[nodiscard]] char do_decimal_point() const override { return ','; }
  [[nodiscard]] char do_thousands_sep() const override { return '.'; }
  [[nodiscard]] std::string do_grouping() const override { return "\3"; }
};

TEST(Variant, IgnoresTheLocale) {
  const std::locale before =
      std::locale::global(std::locale{std::locale::classic(), new CommaAndGrouping});
  EXPECT_EQ(Variant{1234.5}.text(), "1234.5");
  EXPECT_EQ(Variant{123456}.text(), "123456");
  EXPECT_EQ(Variant{decimal("1234.5")}.text(), "1234.5");
  EXPECT_EQ(Variant{"1234.5"}.toDecimal(), decimal("1234.5"));
  EXPECT_EQ(decimal("1234.5").toDouble(), 1234.5);
  std::locale::global(before);
}

TEST(Variant, HasNoTextForNullAndObjects) {
  EXPECT_EQ(failureOf([] { return Variant{kNull}.text(); }), kNullUse);
  const Variant object{std::make_shared<Thing>()};
  EXPECT_EQ(failureOf([&] { return object.text(); }), kMismatch);
  std::string target = "a";
  Variant{kNull}.appendTo(target);
  Variant{}.appendTo(target);
  EXPECT_EQ(target, "a");
  EXPECT_EQ(failureOf([&] { return object.appendTo(target), 0; }), kMismatch);
}

TEST(Variant, ConvertsToIntegers) {
  EXPECT_EQ(Variant{}.toInt64(), 0);
  EXPECT_EQ(Variant{true}.toInt64(), -1);
  EXPECT_EQ(Variant{false}.toInt64(), 0);
  EXPECT_EQ(Variant{std::int16_t{7}}.toInt32(), 7);
  EXPECT_EQ(Variant{2.5}.toInt64(), 2);
  EXPECT_EQ(Variant{3.5}.toInt64(), 4);
  EXPECT_EQ(Variant{-2.5}.toInt64(), -2);
  EXPECT_EQ(Variant{decimal("2.5")}.toInt64(), 2);
  EXPECT_EQ(Variant{decimal("2.51")}.toInt64(), 3);
  EXPECT_EQ(Variant{" 12 "}.toInt64(), 12);
  EXPECT_EQ(Variant{"12.5"}.toInt64(), 12);
}

TEST(Variant, RefusesWhatIsNoInteger) {
  EXPECT_EQ(failureOf([] { return Variant{kNull}.toInt64(); }), kNullUse);
  EXPECT_EQ(failureOf([] { return Variant{Date{}}.toInt64(); }), kMismatch);
  EXPECT_EQ(failureOf([] { return Variant{""}.toInt64(); }), kMismatch);
  EXPECT_EQ(failureOf([] { return Variant{"1e3"}.toInt64(); }), kMismatch);
  EXPECT_EQ(failureOf([] { return Variant{"dieci"}.toInt64(); }), kMismatch);
  EXPECT_EQ(failureOf([] { return Variant{std::make_shared<Thing>()}.toInt64(); }), kMismatch);
  EXPECT_EQ(failureOf([] { return Variant{9.3e18}.toInt64(); }), kOverflow);
  EXPECT_EQ(failureOf([] { return Variant{-1e300}.toInt64(); }), kOverflow);
  EXPECT_EQ(failureOf([] { return Variant{std::numeric_limits<double>::quiet_NaN()}.toInt64(); }),
            kOverflow);
  EXPECT_EQ(failureOf([] { return Variant{decimal("9223372036854775808")}.toInt64(); }), kOverflow);
}

TEST(Variant, KeepsNarrowIntegersInTheirRange) {
  EXPECT_EQ(Variant{32767}.toInt16(), 32767);
  EXPECT_EQ(Variant{-32768}.toInt16(), -32768);
  EXPECT_EQ(failureOf([] { return Variant{32768}.toInt16(); }), kOverflow);
  EXPECT_EQ(failureOf([] { return Variant{-32769}.toInt16(); }), kOverflow);
  EXPECT_EQ(failureOf([] { return Variant{"2147483648"}.toInt32(); }), kOverflow);
}

TEST(Variant, ConvertsToExactDecimals) {
  EXPECT_EQ(Variant{0.1}.toDecimal().text(), "0.1");
  EXPECT_EQ(Variant{1e22}.toDecimal().text(), "10000000000000000000000");
  EXPECT_EQ(Variant{"12.50"}.toDecimal().text(), "12.50");
  EXPECT_EQ(Variant{decimal("1.20")}.toDecimal().text(), "1.20");
  EXPECT_EQ(Variant{5}.toDecimal().text(), "5");
  EXPECT_EQ(Variant{}.toDecimal().text(), "0");
  EXPECT_EQ(failureOf([] { return Variant{1e39}.toDecimal(); }), kOverflow);
  EXPECT_EQ(failureOf([] { return Variant{5e-324}.toDecimal(); }), kOverflow);
  EXPECT_EQ(failureOf([] { return Variant{std::numeric_limits<double>::infinity()}.toDecimal(); }),
            kOverflow);
  EXPECT_EQ(failureOf([] { return Variant{"x"}.toDecimal(); }), kMismatch);
}

TEST(Variant, TellsTruth) {
  EXPECT_TRUE(Variant{true}.toBool());
  EXPECT_TRUE(Variant{2}.toBool());
  EXPECT_TRUE(Variant{0.5}.toBool());
  EXPECT_TRUE(Variant{1e-300}.toBool());
  EXPECT_TRUE(Variant{"tRUE"}.toBool());
  EXPECT_TRUE(Variant{"-1"}.toBool());
  EXPECT_FALSE(Variant{"FALSE"}.toBool());
  EXPECT_FALSE(Variant{"0.0"}.toBool());
  EXPECT_FALSE(Variant{decimal("0.00")}.toBool());
  EXPECT_FALSE(Variant{}.toBool());
  EXPECT_EQ(failureOf([] { return Variant{"vero"}.toBool(); }), kMismatch);
  EXPECT_EQ(failureOf([] { return Variant{kNull}.toBool(); }), kNullUse);
}

TEST(Variant, ConvertsToDates) {
  EXPECT_EQ(Variant{"01/02/2024"}.toDate(), *Date::of(2024, 2, 1));
  EXPECT_EQ(Variant{*Date::of(2024, 2, 1)}.toDate(), *Date::of(2024, 2, 1));
  EXPECT_EQ(failureOf([] { return Variant{"31/02/2024"}.toDate(); }), kMismatch);
  EXPECT_EQ(failureOf([] { return Variant{45000}.toDate(); }), kMismatch);
  EXPECT_EQ(failureOf([] { return Variant{}.toDate(); }), kMismatch);
  EXPECT_EQ(failureOf([] { return Variant{kNull}.toDate(); }), kNullUse);
}

TEST(Variant, AddsOneInItsOwnKindWhileItFits) {
  EXPECT_EQ(Variant{std::int16_t{1}}.plusOne(), Variant{std::int16_t{2}});
  EXPECT_EQ(Variant{std::int16_t{32767}}.plusOne(), Variant{32768});
  EXPECT_EQ(Variant{2147483647}.plusOne(), Variant{std::int64_t{2147483648}});
  EXPECT_EQ(Variant{std::int64_t{5}}.plusOne(), Variant{std::int64_t{6}});
  EXPECT_EQ(Variant{std::numeric_limits<std::int64_t>::max()}.plusOne(),
            Variant{decimal("9223372036854775808")});
  EXPECT_EQ(Variant{1.5}.plusOne(), Variant{2.5});
  EXPECT_EQ(Variant{decimal("1.50")}.plusOne(), Variant{decimal("2.50")});
  EXPECT_EQ(Variant{}.plusOne(), Variant{std::int16_t{1}});
  EXPECT_EQ(Variant{true}.plusOne(), Variant{std::int16_t{0}});
}

TEST(Variant, AddsOneToATextThatHoldsANumber) {
  EXPECT_EQ(Variant{"41"}.plusOne(), Variant{42});
  EXPECT_EQ(Variant{" 2147483647 "}.plusOne(), Variant{std::int64_t{2147483648}});
  EXPECT_EQ(Variant{"1.5"}.plusOne(), Variant{decimal("2.5")});
  EXPECT_EQ(Variant{"9223372036854775807"}.plusOne(), Variant{decimal("9223372036854775808")});
  EXPECT_EQ(failureOf([] { return Variant{"A1"}.plusOne(); }), kMismatch);
  EXPECT_EQ(failureOf([] { return Variant{kNull}.plusOne(); }), kNullUse);
  EXPECT_EQ(failureOf([] { return Variant{Date{}}.plusOne(); }), kMismatch);
  EXPECT_EQ(failureOf([] { return Variant{decimal(std::string(38, '9'))}.plusOne(); }), kOverflow);
}

TEST(Variant, HandsOutItsObject) {
  const auto thing = std::make_shared<Thing>();
  EXPECT_EQ(Variant{thing}.object(), thing);
  EXPECT_EQ(Variant{5}.object(), nullptr);
}

TEST(Variant, IsEqualOnlyToTheSameKind) {
  EXPECT_EQ(Variant{5}, Variant{5});
  EXPECT_NE(Variant{5}, Variant{std::int64_t{5}});
  EXPECT_NE(Variant{}, Variant{kNull});
  EXPECT_NE(Variant{"a"}, Variant{"A"});
}

TEST(SameValue, ComparesNumbersAcrossKinds) {
  EXPECT_TRUE(sameValue(Variant{std::int16_t{5}}, Variant{std::int64_t{5}}));
  EXPECT_TRUE(sameValue(Variant{5}, Variant{decimal("5.00")}));
  EXPECT_TRUE(sameValue(Variant{0.1}, Variant{decimal("0.10")}));
  EXPECT_TRUE(sameValue(Variant{5}, Variant{5.0}));
  EXPECT_FALSE(sameValue(Variant{5}, Variant{decimal("5.01")}));
  EXPECT_FALSE(sameValue(Variant{1e300}, Variant{5}));
}

TEST(SameValue, KeepsOtherKindsApart) {
  EXPECT_TRUE(sameValue(Variant{kNull}, Variant{kNull}));
  EXPECT_TRUE(sameValue(Variant{}, Variant{}));
  EXPECT_FALSE(sameValue(Variant{kNull}, Variant{}));
  EXPECT_FALSE(sameValue(Variant{"5"}, Variant{5}));
  EXPECT_FALSE(sameValue(Variant{true}, Variant{-1}));
  EXPECT_FALSE(sameValue(Variant{"a"}, Variant{"a "}));
}

}  // namespace
}  // namespace azcoll
