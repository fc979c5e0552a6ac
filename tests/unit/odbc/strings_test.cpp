#include "odbc/strings.h"

#include "gtest/gtest.h"

#include "data/error.h"

namespace azcoll::odbc {
namespace {

TEST(Strings, EveryLengthOfCharacterGoesBothWays) {
  const std::string text = std::string{"aà€😀\0z", 12};
  const std::u16string wide = wideOf(text);
  EXPECT_EQ(wide, (std::u16string{u'a', u'à', u'€', 0xD83D, 0xDE00, u'\0', u'z'}));
  EXPECT_EQ(narrowOf(wide), text);
  EXPECT_EQ(narrowOf(u""), "");
}

TEST(Strings, TheEndsOfTheRangesGoBothWays) {
  for (const char* const text :
       {"\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
        "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_EQ(narrowOf(wideOf(text)), text);
  }
}

TEST(Strings, WhatIsNoUtf8IsRefused) {
  for (const char* const text :
       {"\x80", "a\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x80\x80", "\xE0\x9F\xBF",
        "\xE2\x82", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF",
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xF0\x9F\x98"}) {
    EXPECT_THROW(static_cast<void>(wideOf(text)), Error);
  }
}

TEST(Strings, TheErrorNamesThePlace) {
  try {
    static_cast<void>(wideOf("ab\xFF"));
    FAIL();
  } catch (const Error& error) {
    EXPECT_NE(error.description().find("byte 3"), std::string::npos);
  }
}

TEST(Strings, LoneSurrogatesAreNoText) {
  for (const std::u16string& text :
       {std::u16string{u'a', 0xD800}, std::u16string{0xDC00, u'a'}, std::u16string{0xD800, 0xD800},
        std::u16string{0xDC00, 0xD800}}) {
    EXPECT_EQ(narrowOf(text), std::nullopt);
  }
  EXPECT_EQ(readableOf(std::u16string{u'a', 0xD800, u'b'}),
            "a\xEF\xBF\xBD"
            "b");
}

}  // namespace
}  // namespace azcoll::odbc
