// The 128-bit integers of 32-bit builds against the compiler's own.

#include "data/int128.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <random>

namespace azcoll {
namespace {

#ifdef __SIZEOF_INT128__

__extension__ using Wide = unsigned __int128;
__extension__ using SignedWide = __int128;

Wide builtIn(const portable::UInt128& value) {
  return Wide{static_cast<std::uint64_t>(value >> 64)} << 64U | static_cast<std::uint64_t>(value);
}

portable::UInt128 portableOf(Wide value) {
  return {static_cast<std::uint64_t>(value >> 64U), static_cast<std::uint64_t>(value)};
}

SignedWide builtIn(const portable::Int128& value) {
  return static_cast<SignedWide>(builtIn(static_cast<portable::UInt128>(value)));
}

portable::Int128 signedOf(Wide value) { return portable::Int128{portableOf(value)}; }

/// Numbers of every length, so that short divisors and carries between the halves come up.
class Numbers {
 public:
  Wide next() {
    const Wide number = Wide{random_()} << 64U | random_();
    return number >> (random_() % 128);
  }

 private:
  std::mt19937_64 random_{20260101};
};

TEST(PortableInt128, CalculatesAsTheCompilersOwn) {
  Numbers numbers;
  for (int round = 0; round < 20000; ++round) {
    const Wide a = numbers.next();
    const Wide b = numbers.next() | 1U;
    const portable::UInt128 x = portableOf(a);
    const portable::UInt128 y = portableOf(b);
    ASSERT_TRUE(builtIn(x + y) == a + b);
    ASSERT_TRUE(builtIn(x - y) == a - b);
    ASSERT_TRUE(builtIn(x * y) == a * b);
    ASSERT_TRUE(builtIn(x / y) == a / b);
    ASSERT_TRUE(builtIn(x % y) == a % b);
    ASSERT_EQ(x < y, a < b);
    ASSERT_EQ(x == y, a == b);
    ASSERT_DOUBLE_EQ(static_cast<double>(x), static_cast<double>(a));
  }
}

TEST(PortableInt128, CalculatesWithSignsAsTheCompilersOwn) {
  Numbers numbers;
  for (int round = 0; round < 20000; ++round) {
    // One bit less: an overflow of the compiler's own signed type has no defined result.
    const Wide a = numbers.next() >> 2U;
    const Wide b = (numbers.next() >> 2U) | 1U;
    const auto p = static_cast<SignedWide>(round % 2 == 0 ? a : 0 - a);
    const auto q = static_cast<SignedWide>(round % 3 == 0 ? b : 0 - b);
    const portable::Int128 x = signedOf(static_cast<Wide>(p));
    const portable::Int128 y = signedOf(static_cast<Wide>(q));
    ASSERT_TRUE(builtIn(x + y) == p + q);
    ASSERT_TRUE(builtIn(x - y) == p - q);
    ASSERT_TRUE(builtIn(x / y) == p / q);
    ASSERT_TRUE(builtIn(x % y) == p % q);
    ASSERT_TRUE(builtIn(-x) == -p);
    ASSERT_EQ(x < y, p < q);
    ASSERT_EQ(x > y, p > q);
    ASSERT_DOUBLE_EQ(static_cast<double>(x), static_cast<double>(p));
  }
}

TEST(PortableInt128, NoticesSumsAndProductsThatDoNotFit) {
  Numbers numbers;
  int fitting = 0;
  const auto agree = [&](const std::optional<portable::Int128>& got,
                         const std::optional<SignedWide>& expected) {
    ASSERT_EQ(got.has_value(), expected.has_value());
    if (got) {
      ++fitting;
      ASSERT_TRUE(builtIn(*got) == *expected);
    }
  };
  const Wide least = Wide{1} << 127U;
  for (int round = 0; round < 20000; ++round) {
    const Wide p = round % 50 == 0 ? least - static_cast<Wide>(round % 100 / 50) : numbers.next();
    const Wide q = round % 70 == 0 ? Wide{0} - static_cast<Wide>(round % 140 / 70) : numbers.next();
    const auto a = static_cast<SignedWide>(p);
    const auto b = static_cast<SignedWide>(q);
    agree(sumWithin(signedOf(p), signedOf(q)), sumWithin(a, b));
    agree(productWithin(signedOf(p), signedOf(q)), productWithin(a, b));
  }
  EXPECT_GT(fitting, 10000);
  EXPECT_LT(fitting, 40000);
}

TEST(PortableInt128, ShiftsByEveryCount) {
  const Wide pattern = Wide{0x0123456789ABCDEFU} << 64U | 0xFEDCBA9876543210U;
  for (int count = 0; count < 128; ++count) {
    EXPECT_TRUE(builtIn(portableOf(pattern) << count) == pattern << count) << count;
    EXPECT_TRUE(builtIn(portableOf(pattern) >> count) == pattern >> count) << count;
  }
}

#endif

TEST(PortableInt128, TakesNegativeNumbersWhole) {
  EXPECT_EQ(static_cast<std::int64_t>(portable::Int128{-5}), -5);
  EXPECT_TRUE(portable::Int128{-5} < portable::Int128{0});
  EXPECT_TRUE(portable::Int128{-5} * portable::Int128{3} == portable::Int128{-15});
}

}  // namespace
}  // namespace azcoll
