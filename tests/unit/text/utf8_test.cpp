#include "text/utf8.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace azcoll {
namespace {

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

TEST(Utf8, EveryCodePointIsReadAsItWasWritten) {
  for (std::uint32_t point = 1; point <= 0x10FFFF; point += point < 0x3000 ? 1 : 97) {
    if (point >= 0xD800 && point <= 0xDFFF) {
      continue;
    }
    std::string text;
    appendUtf8(text, point);
    const CodePoint read = decodeUtf8(text, 0);
    ASSERT_EQ(read.value, point);
    ASSERT_EQ(read.length, text.size());
  }
}

TEST(Utf8, MalformedBytesAreFoundWhereTheyStand) {
  for (const char* const bad :
       {"\x80", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80",
        "\xC3", "\xE2\x82", "\xFF"}) {
    EXPECT_EQ(decodeUtf8(bad, 0).length, 0U);
    EXPECT_EQ(findMalformedUtf8("long enough " + std::string(bad)), 12U);
  }
  EXPECT_EQ(findMalformedUtf8("plain text, \u00E8 and \u8868"), std::string_view::npos);
  EXPECT_EQ(findMalformedUtf8(""), std::string_view::npos);
}

}  // namespace
}  // namespace azcoll
