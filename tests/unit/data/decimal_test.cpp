#include "data/decimal.h"

#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include "gtest/gtest.h"

namespace azcoll {
namespace {

Decimal number(std::string_view text) {
  const std::optional<Decimal> value = Decimal::parse(text);
  EXPECT_TRUE(value.has_value()) << text;
  return value.value_or(Decimal{});
}

std::string textOf(const std::optional<Decimal>& value) {
  return value ? value->text() : "nothing";
}

const std::string kLargest(38, '9');

TEST(Decimal, KeepsTheScaleThatItWasWrittenWith) {
  EXPECT_EQ(number("12.50").text(), "12.50");
  EXPECT_EQ(number("12.50").scale(), 2);
  EXPECT_EQ(number("-0.05").text(), "-0.05");
  EXPECT_EQ(number("0.00").text(), "0.00");
  EXPECT_EQ(number("7").text(), "7");
  EXPECT_EQ(Decimal{}.text(), "0");
}

TEST(Decimal, ReadsSignsBlanksAndLonePoints) {
  EXPECT_EQ(number("  +12.5 ").text(), "12.5");
  EXPECT_EQ(number(".5").text(), "0.5");
  EXPECT_EQ(number("-.5").text(), "-0.5");
  EXPECT_EQ(number("5.").text(), "5");
  EXPECT_EQ(number("-0").text(), "0");
  EXPECT_FALSE(number("-0").isNegative());
  EXPECT_TRUE(number("-0").isZero());
  EXPECT_EQ(number("000012").text(), "12");
}

TEST(Decimal, RefusesWhatIsNoNumber) {
  for (const char* text : {"", " ", ".", "-", "+", "--1", "1-", "1e5", "1,5", "1.2.3", "1 2", "0x1",
                           "abc", "1\t", "- 1"}) {
    EXPECT_FALSE(Decimal::parse(text).has_value()) << '"' << text << '"';
  }
}

TEST(Decimal, HoldsThirtyEightDigitsAndNoMore) {
  EXPECT_EQ(number(kLargest).text(), kLargest);
  EXPECT_EQ(number("-" + kLargest).text(), "-" + kLargest);
  EXPECT_EQ(number("0." + kLargest).text(), "0." + kLargest);
  EXPECT_EQ(number("-0." + kLargest).text(), "-0." + kLargest);
  EXPECT_EQ(number("922337203685477.5807").text(), "922337203685477.5807");
  EXPECT_FALSE(Decimal::parse(kLargest + "0").has_value());
  EXPECT_FALSE(Decimal::parse("0." + std::string(39, '0')).has_value());
  EXPECT_FALSE(Decimal::parse(std::string(100000, '1')).has_value());
  EXPECT_EQ(number(std::string(100000, '0') + "1").text(), "1");
}

TEST(Decimal, RefusesThirtyNineDigitsWhateverTheyAre) {
  // Ten times this, cut to 128 bits, is a number of 38 digits again.
  const std::string digits = "68547700000000000000014471134863163078";
  EXPECT_TRUE(Decimal::parse(digits).has_value());
  for (const char last : {'0', '1', '7', '9'}) {
    EXPECT_EQ(Decimal::parse(digits + last), std::nullopt) << last;
    EXPECT_EQ(Decimal::parse("-" + digits + last), std::nullopt) << last;
    EXPECT_EQ(Decimal::parse(digits + "." + last), std::nullopt) << last;
  }
}

TEST(Decimal, ChecksTheBoundsOfItsParts) {
  const Int128 largest = number(kLargest).unscaled();
  EXPECT_TRUE(Decimal::fromUnscaled(largest, 38).has_value());
  EXPECT_TRUE(Decimal::fromUnscaled(-largest, 0).has_value());
  EXPECT_FALSE(Decimal::fromUnscaled(largest + 1, 0).has_value());
  EXPECT_FALSE(Decimal::fromUnscaled(-largest - 1, 0).has_value());
  EXPECT_FALSE(Decimal::fromUnscaled(1, -1).has_value());
  EXPECT_FALSE(Decimal::fromUnscaled(1, 39).has_value());
}

TEST(Decimal, RoundsHalfAwayFromZeroWhenRescaled) {
  EXPECT_EQ(textOf(number("2.345").rescaled(2)), "2.35");
  EXPECT_EQ(textOf(number("-2.345").rescaled(2)), "-2.35");
  EXPECT_EQ(textOf(number("2.344").rescaled(2)), "2.34");
  EXPECT_EQ(textOf(number("0.5").rescaled(0)), "1");
  EXPECT_EQ(textOf(number("-0.4").rescaled(0)), "0");
  EXPECT_EQ(textOf(number("9.99").rescaled(1)), "10.0");
  EXPECT_EQ(textOf(number("0." + kLargest).rescaled(0)), "1");
}

TEST(Decimal, GainsZerosWhenRescaledUpwards) {
  EXPECT_EQ(textOf(number("5").rescaled(2)), "5.00");
  EXPECT_EQ(textOf(number("0").rescaled(38)), "0." + std::string(38, '0'));
  EXPECT_EQ(textOf(number(kLargest).rescaled(1)), "nothing");
  EXPECT_EQ(textOf(number("19").rescaled(37)), "nothing");
  EXPECT_EQ(textOf(number("1").rescaled(39)), "nothing");
  EXPECT_EQ(textOf(number("1").rescaled(-1)), "nothing");
}

TEST(Decimal, BecomesAnIntegerOnlyWhenItIsOne) {
  EXPECT_EQ(number("5.00").toInteger(), 5);
  EXPECT_EQ(number("-12").toInteger(), -12);
  EXPECT_EQ(number("5.01").toInteger(), std::nullopt);
  EXPECT_EQ(number("9223372036854775807").toInteger(), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(number("-9223372036854775808").toInteger(), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(number("9223372036854775808").toInteger(), std::nullopt);
  EXPECT_EQ(number(kLargest).toInteger(), std::nullopt);
}

TEST(Decimal, RoundsToTheNearestIntegerHalfToEven) {
  EXPECT_EQ(number("2.5").toNearestInteger(), 2);
  EXPECT_EQ(number("3.5").toNearestInteger(), 4);
  EXPECT_EQ(number("-2.5").toNearestInteger(), -2);
  EXPECT_EQ(number("2.51").toNearestInteger(), 3);
  EXPECT_EQ(number("9223372036854775807.5").toNearestInteger(), std::nullopt);
}

TEST(Decimal, GivesTheNearestDouble) {
  EXPECT_EQ(number("0.1").toDouble(), 0.1);
  EXPECT_EQ(number("-123.456").toDouble(), -123.456);
  EXPECT_EQ(number(kLargest).toDouble(), 1e38);
}

TEST(Decimal, ComparesByValueWhateverTheScale) {
  EXPECT_EQ(number("1.5"), number("1.50"));
  EXPECT_EQ(number("0"), number("0.000"));
  EXPECT_LT(number("-1.51"), number("-1.5"));
  EXPECT_LT(number("-1"), number("0.5"));
  EXPECT_GT(number("1"), number("-2"));
  EXPECT_GT(number("1.0000001"), number("1"));
  EXPECT_LT(number("0." + kLargest), number(kLargest));
  EXPECT_GT(number("-0." + kLargest), number("-" + kLargest));
}

TEST(Decimal, AddsAndSubtractsExactly) {
  EXPECT_EQ(textOf(number("0.1").plus(number("0.2"))), "0.3");
  EXPECT_EQ(textOf(number("1.50").plus(number("-0.5"))), "1.00");
  EXPECT_EQ(textOf(number("1").minus(number("1.25"))), "-0.25");
  EXPECT_EQ(textOf(number("-1").minus(number("-1"))), "0");
  EXPECT_EQ(textOf(number("-3").plus(number("-4.5"))), "-7.5");
}

TEST(Decimal, RefusesASumThatDoesNotFit) {
  EXPECT_EQ(textOf(number(kLargest).plus(number("1"))), "nothing");
  EXPECT_EQ(textOf(number("-" + kLargest).minus(number("1"))), "nothing");
  EXPECT_EQ(textOf(number(kLargest).plus(number("0.5"))), "nothing");
  EXPECT_EQ(textOf(number(kLargest).plus(number("0." + kLargest))), "nothing");
}

TEST(Decimal, DropsTrailingZerosWhenASumNeedsTheRoom) {
  EXPECT_EQ(textOf(number(kLargest).plus(number("0.0"))), kLargest);
  EXPECT_EQ(textOf(number(kLargest).minus(number("1.000"))), std::string(37, '9') + "8");
  const std::string half = std::string(37, '9') + ".5";
  EXPECT_EQ(textOf(number(half).plus(number("0.5"))), "1" + std::string(37, '0'));
}

TEST(Decimal, SubtractsAcrossTheLimitOfItsDigits) {
  // One more digit than allowed on the way, 38 digits in the end.
  const std::string power = "1" + std::string(37, '0');
  EXPECT_EQ(textOf(number(power).minus(number("1.5"))), std::string(36, '9') + "8.5");
}

TEST(Decimal, MultipliesExactly) {
  EXPECT_EQ(textOf(number("1.5").times(number("-2.50"))), "-3.750");
  EXPECT_EQ(textOf(number("0").times(number(kLargest))), "0");
  EXPECT_EQ(textOf(number("0.00").times(number("0." + kLargest))), "0." + std::string(38, '0'));
  EXPECT_EQ(textOf(number(kLargest).times(number("-1"))), "-" + kLargest);
}

TEST(Decimal, RefusesAProductThatDoesNotFit) {
  EXPECT_EQ(textOf(number(kLargest).times(number("2"))), "nothing");
  EXPECT_EQ(textOf(number("0." + kLargest).times(number("0.1"))), "nothing");
  EXPECT_EQ(textOf(number("10000000000000000000").times(number("10000000000000000000"))),
            "nothing");
}

TEST(Decimal, DropsTrailingZerosWhenAProductNeedsTheRoom) {
  EXPECT_EQ(textOf(number(kLargest).times(number("1.0"))), kLargest);
  // 2^100 times 5^20 scaled down: the zeros arise only in the product.
  const Decimal left = number("1267650600228229401496703205376");
  const Decimal right = number("0.00000095367431640625");
  EXPECT_EQ(textOf(left.times(right)), "1208925819614629174706176.0000000000000");
  EXPECT_EQ(textOf(number("0.00000000000000000002").times(number("0.50000000000000000000"))),
            "0.00000000000000000001000000000000000000");
}

TEST(Decimal, AgreesWithIntegerArithmeticOnRandomNumbers) {
  std::mt19937_64 random{20240229};
  for (int round = 0; round < 2000; ++round) {
    const auto left = static_cast<std::int64_t>(random()) >> (random() % 60);
    const auto right = static_cast<std::int64_t>(random()) >> (random() % 60);
    const Decimal a = *Decimal::fromUnscaled(left, 3);
    const Decimal b = *Decimal::fromUnscaled(right, 3);
    EXPECT_EQ(a.plus(b)->unscaled(), Int128{left} + Int128{right});
    EXPECT_EQ(a.minus(b)->unscaled(), Int128{left} - Int128{right});
    EXPECT_EQ(*a.times(b), *Decimal::fromUnscaled(Int128{left} * Int128{right}, 6));
    EXPECT_EQ(a <=> b, left <=> right);
    EXPECT_EQ(number(a.text()), a);
  }
}

}  // namespace
}  // namespace azcoll
