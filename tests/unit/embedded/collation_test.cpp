#include "embedded/values/collation.h"

#include <algorithm>
#include <vector>

#include "gtest/gtest.h"

#include "text/letter_case.h"

namespace azcoll::embedded {
namespace {

TEST(Collation, IgnoresLetterCaseAndTrailingBlanks) {
  EXPECT_EQ(compareText("Abc", "aBC  "), 0);
  EXPECT_EQ(compareText("", "   "), 0);
  EXPECT_EQ(compareText("ÀÉ", "àé "), 0);
  EXPECT_EQ(compareText("Ŝ", "ŝ"), 0);
  EXPECT_EQ(compareText("ΑΒΓ", "αβγ"), 0);
  EXPECT_EQ(compareText("ЖЯЁ", "жяё"), 0);
  EXPECT_NE(compareText(" a", "a"), 0);
}

TEST(Collation, KeepsAccentsApartBehindThePlainLetter) {
  const std::vector<std::string> ordered{"-", "_", "0", "9", "a", "à", "ab", "b",
                                         "è", "f", "s", "ß", "t", "z", "Ω"};
  for (std::size_t i = 0; i < ordered.size(); ++i) {
    for (std::size_t j = 0; j < ordered.size(); ++j) {
      const int expected = i < j ? -1 : i > j ? 1 : 0;
      EXPECT_EQ(compareText(ordered[i], ordered[j]), expected) << ordered[i] << " " << ordered[j];
    }
  }
}

TEST(Collation, PutsControlCharactersInFrontOfTheEndOfTheText) {
  EXPECT_LT(compareText("a\t", "a"), 0);
  EXPECT_GT(compareText("a", "a\t"), 0);
  EXPECT_GT(compareText("aé", "a"), 0);
  EXPECT_LT(compareText("a", "aé"), 0);
}

TEST(Collation, IsAConsistentOrder) {
  std::vector<std::string> texts;
  for (const char* first : {"a", "A", "à", "À", "ß", "s", "é", "\t", " ", "z", "\xff", "œ"}) {
    for (const char* second : {"", "a", "À", " ", "ß", "\xc3", "1"}) {
      texts.push_back(std::string(first) + second);
    }
  }
  for (const std::string& a : texts) {
    for (const std::string& b : texts) {
      EXPECT_EQ(compareText(a, b), -compareText(b, a));
      for (const std::string& c : texts) {
        if (compareText(a, b) <= 0 && compareText(b, c) <= 0) {
          EXPECT_LE(compareText(a, c), 0) << a << "," << b << "," << c;
        }
      }
    }
  }
}

TEST(Collation, ChangesCaseThereAndBack) {
  EXPECT_EQ(upperText("perché Ž ŕ ÿ ω ё ß x÷"), "PERCHÉ Ž Ŕ Ÿ Ω Ё ß X÷");
  EXPECT_EQ(foldCase("PERCHÉ Ž Ŕ Ÿ Ω Ё ß X×"), "perché ž ŕ ÿ ω ё ß x×");
  EXPECT_EQ(foldCase("ATTIVITÀ"), foldCase("attività"));
}

TEST(Collation, CountsUtf16Units) {
  EXPECT_EQ(utf16Length("aè€"), 3U);
  EXPECT_EQ(utf16Length("\xF0\x9F\x98\x80"), 2U);
}

}  // namespace
}  // namespace azcoll::embedded
