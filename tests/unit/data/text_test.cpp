#include "data/text.h"

#include <cstdint>
#include <limits>
#include <string>

#include "gtest/gtest.h"

#include "data/error.h"
#include "data/error_list.h"

namespace azcoll {
namespace {

TEST(Join, PutsTextsNumbersAndVariantsTogether) {
  const std::string text = "B";
  EXPECT_EQ(join("A", text, std::string_view{"C"}, 1, std::int64_t{-2}, std::size_t{3},
                 Variant{std::int16_t{4}}, Variant{"D"}, Variant{true}),
            "ABC1-234DTrue");
  EXPECT_EQ(join(), "");
}

TEST(Join, TakesNullAndEmptyAsNothing) {
  EXPECT_EQ(join("[", Variant{}, "|", Variant{kNull}, "]"), "[|]");
}

TEST(Join, WritesTheLongestNumbers) {
  EXPECT_EQ(join(std::numeric_limits<std::int64_t>::min(), " ",
                 std::numeric_limits<std::uint64_t>::max()),
            "-9223372036854775808 18446744073709551615");
}

TEST(Join, TakesItsMemoryAtOnce) {
  const std::string part(100, 'x');
  const std::string joined = join(part, Variant{part}, part);
  EXPECT_EQ(joined.size(), 300U);
  EXPECT_EQ(joined.capacity(), 300U);
}

TEST(Join, RefusesAnObject) {
  EXPECT_THROW(static_cast<void>(join(Variant{std::shared_ptr<Object>{}})), Error);
}

TEST(DoubleApostrophes, WritesEachApostropheTwice) {
  EXPECT_EQ(doubleApostrophes("L'Aquila 'd'"), "L''Aquila ''d''");
  EXPECT_EQ(doubleApostrophes(""), "");
  EXPECT_EQ(doubleApostrophes("'"), "''");
}

TEST(Trim, TakesBlanksOffBothEnds) {
  EXPECT_EQ(trim("  a b "), "a b");
  EXPECT_EQ(trim("   "), "");
  EXPECT_EQ(trim(""), "");
  EXPECT_EQ(trim("\ta\t"), "\ta\t");
  EXPECT_EQ(trim(" \xFF "), "\xFF");
}

TEST(Characters, CountsCodePoints) {
  EXPECT_EQ(characterCount(""), 0U);
  EXPECT_EQ(characterCount("Attivit\u00E0"), 8U);
  EXPECT_EQ(characterCount("\u20AC\U0001F600"), 2U);
  EXPECT_EQ(characterCount(std::string_view("a\0b", 3)), 3U);
}

TEST(Characters, CountsAMalformedByteAsOne) {
  EXPECT_EQ(characterCount("\xC3"), 1U);              // cut short
  EXPECT_EQ(characterCount("\x80\xBF"), 2U);          // continuation without a lead
  EXPECT_EQ(characterCount("\xC0\xAF"), 2U);          // overlong
  EXPECT_EQ(characterCount("\xE0\x80\xAF"), 3U);      // overlong
  EXPECT_EQ(characterCount("\xED\xA0\x80"), 3U);      // surrogate
  EXPECT_EQ(characterCount("\xF0\x80\x80\x80"), 4U);  // overlong
  EXPECT_EQ(characterCount("\xF4\x90\x80\x80"), 4U);  // beyond Unicode
  EXPECT_EQ(characterCount("\xF5\x80\x80\x80"), 4U);
  EXPECT_EQ(characterCount("\xE2\x82"
                           "A"),
            3U);                                  // third byte missing
  EXPECT_EQ(characterCount("\xF0\x9F\x98"), 3U);  // fourth byte missing
  EXPECT_EQ(characterCount("\xEE\x80\x80\xF3\x80\x80\x80\xED\x9F\xBF"), 3U);
}

TEST(Characters, CutsBetweenCharacters) {
  EXPECT_EQ(leftCharacters("Attivit\u00E0 1", 8), "Attivit\u00E0");
  EXPECT_EQ(leftCharacters("Attivit\u00E0", 7), "Attivit");
  EXPECT_EQ(leftCharacters("ab", 5), "ab");
  EXPECT_EQ(leftCharacters("ab", 0), "");
  EXPECT_EQ(leftCharacters("", 3), "");
  EXPECT_EQ(leftCharacters("\xE2\x82"
                           "AB",
                           3),
            "\xE2\x82"
            "A");
}

TEST(Error, KeepsItsOwnFailuresApartFromTheProviders) {
  const Error own{"Tipo non corrispondente"};
  EXPECT_FALSE(own.fromProvider());
  EXPECT_STREQ(own.what(), "Tipo non corrispondente");
  EXPECT_EQ(own.info().source, "AZCOLLSRV");

  ErrorInfo info;
  info.description = "Violation of PRIMARY KEY constraint";
  info.nativeNumber = 2627;
  info.sqlState = "23000";
  const Error provider = Error::provider(info);
  EXPECT_TRUE(provider.fromProvider());
  EXPECT_EQ(provider.description(), "Violation of PRIMARY KEY constraint");
  EXPECT_EQ(provider.info().nativeNumber, 2627);
}

TEST(ErrorList, HoldsTheEntriesOfTheLastFailureUntilCleared) {
  ErrorList errors;
  EXPECT_EQ(errors.count(), 0U);
  errors.record({ErrorInfo{.description = "first"}, ErrorInfo{.description = "second"}});
  errors.record({ErrorInfo{.description = "third"}});
  ASSERT_EQ(errors.count(), 1U);
  EXPECT_EQ(errors.item(0).description, "third");
  EXPECT_THROW(static_cast<void>(errors.item(1)), Error);
  errors.clear();
  EXPECT_EQ(errors.count(), 0U);
}

TEST(ErrorList, NamesTheEntryThatIsMissing) {
  const ErrorList errors;
  try {
    static_cast<void>(errors.item(3));
    FAIL() << "no failure";
  } catch (const Error& error) {
    EXPECT_EQ(error.description(), "Elemento non trovato nella raccolta: 3");
  }
}

}  // namespace
}  // namespace azcoll
