#include "text/letter_case.h"

#include <gtest/gtest.h>
#include <string_view>

namespace azcoll {
namespace {

TEST(Fold, MakesLatinCapitalsSmall) {
  EXPECT_EQ(foldCase("AZ az 09_[@`{"), "az az 09_[@`{");
  EXPECT_EQ(foldCase("ATTIVIT\u00C0"), "attivit\u00E0");
  EXPECT_EQ(foldCase("\u00C7\u00D1\u00DE"), "\u00E7\u00F1\u00FE");
  EXPECT_EQ(foldCase("\u0100\u0136\u0139\u013D"), "\u0101\u0137\u013A\u013E");
  EXPECT_EQ(foldCase("\u0141\u0147\u014A\u0160\u0176\u0179\u017D"),
            "\u0142\u0148\u014B\u0161\u0177\u017A\u017E");
}

TEST(Fold, LeavesAloneWhatHasNoSmallForm) {
  for (const char* text : {"\u00D7", "\u00F7", "\u00DF", "\u0130", "\u0131", "\u0138", "\u0149",
                           "\u017F", "\u20AC", "\xC3", "\x80\xFF", ""}) {
    EXPECT_EQ(foldCase(text), text);
  }
  EXPECT_EQ(foldCase("\xC3"
                     "A"),
            "\xC3"
            "a");
}

TEST(Fold, ComparesWithoutRegardToCase) {
  EXPECT_EQ(compareIgnoringCase("Rossi", "ROSSI"), std::strong_ordering::equal);
  EXPECT_EQ(compareIgnoringCase("Rossa", "ROSSI"), std::strong_ordering::less);
  EXPECT_EQ(compareIgnoringCase("Rossi", "ROSS"), std::strong_ordering::greater);
  EXPECT_EQ(compareIgnoringCase("", "a"), std::strong_ordering::less);
  EXPECT_TRUE(equalsIgnoringCase("Attivit\u00E0", "ATTIVIT\u00C0"));
  EXPECT_FALSE(equalsIgnoringCase("A", "AB"));
  EXPECT_FALSE(equalsIgnoringCase("A", "B"));
}

TEST(Fold, KnowsGreekAndCyrillic) {
  EXPECT_EQ(foldCase("\u0391\u03A9\u0410\u042F\u0401"), "\u03B1\u03C9\u0430\u044F\u0451");
  EXPECT_EQ(foldCase("\u0178\u013F"), "\u00FF\u0140");
}

TEST(Fold, AMalformedByteIsLikeNoCharacter) {
  EXPECT_NE(compareIgnoringCase("\xE9", "\u00E9"), std::strong_ordering::equal);
  EXPECT_EQ(compareIgnoringCase("\xE9", "\xE9"), std::strong_ordering::equal);
  EXPECT_FALSE(equalsIgnoringCase("\xC0", "\xE0"));
}

TEST(Ascii, KnowsTheLettersAToZOnly) {
  EXPECT_TRUE(ascii::equalsIgnoringCase("Select", "SELECT"));
  EXPECT_FALSE(ascii::equalsIgnoringCase("Select", "SELECTS"));
  EXPECT_FALSE(ascii::equalsIgnoringCase("citt\u00E0", "CITT\u00C0"));
  EXPECT_FALSE(ascii::equalsIgnoringCase("[", "{"));
}

TEST(Ascii, MakesCapitalsOfTheLettersAToZOnly) {
  EXPECT_EQ(ascii::upper("azAZ 09_@`{"), "AZAZ 09_@`{");
  EXPECT_EQ(ascii::upper("citt\u00E0"), "CITT\u00E0");
  EXPECT_EQ(ascii::upper(std::string_view{"a\0\xE9z", 4}), (std::string_view{"A\0\xE9Z", 4}));
  EXPECT_EQ(ascii::upper(""), "");
}

}  // namespace
}  // namespace azcoll
