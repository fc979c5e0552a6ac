#include "cli/print/terminal_text.h"

#include "gtest/gtest.h"

namespace azcoll::cli {
namespace {

TEST(Utf8, DecodesCharactersOfEveryLength) {
  EXPECT_EQ(decodeUtf8("aà€😀"), U"aà€😀");
  EXPECT_EQ(encodeUtf8(U"aà€😀"), "aà€😀");
  EXPECT_EQ(decodeUtf8(std::string_view{"\0", 1}), (std::u32string{U'\0'}));
}

TEST(Utf8, ReplacesEveryMalformedByte) {
  EXPECT_EQ(decodeUtf8("a\x80z"), U"a\uFFFDz");
  EXPECT_EQ(decodeUtf8("\xC3"), U"\uFFFD");
  EXPECT_EQ(decodeUtf8("\xC3z"), U"\uFFFDz");
  EXPECT_EQ(decodeUtf8("\xC0\xAF"), U"\uFFFD\uFFFD");
  EXPECT_EQ(decodeUtf8("\xE0\x80\x80"), U"\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(decodeUtf8("\xED\xA0\x80"), U"\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(decodeUtf8("\xF4\x90\x80\x80"), U"\uFFFD\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(decodeUtf8("\xFF"), U"\uFFFD");
}

TEST(Utf8, CountsAccentsAsOneColumn) {
  EXPECT_EQ(columnWidth("perché"), 6U);
  EXPECT_EQ(columnWidth("perche\xCC\x81"), 6U);
  EXPECT_EQ(columnWidth(""), 0U);
}

TEST(Utf8, ShowsControlCharacters) {
  EXPECT_EQ(visible("a\r\nb\tc"), "a␍␊b␉c");
  EXPECT_EQ(visible("\x1B[2J"), "␛[2J");
  EXPECT_EQ(visible("\x7F"), "␡");
  EXPECT_EQ(visible("\xC2\x9B"), "\uFFFD");
  EXPECT_EQ(visible("città"), "città");
}

}  // namespace
}  // namespace azcoll::cli
