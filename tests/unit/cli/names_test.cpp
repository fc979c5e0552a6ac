#include "cli/print/names.h"

#include <array>

#include "gtest/gtest.h"

namespace azcoll::cli {
namespace {

constexpr std::array<std::string_view, 5> kNames{"DuplicaCliFor", "EliminaCliFor",
                                                 "DuplicaAttività", "Pvar_Ditta", "IdAttività"};

TEST(Names, FoldsLetterCaseAndAccents) {
  EXPECT_EQ(foldName("DuplicaAttività"), "duplicaattivita");
  EXPECT_EQ(foldName("ÈÉÒÙÌ"), "eeoui");
  EXPECT_EQ(foldName("ÇÐß"), "çðß");
}

TEST(Names, FoldsCombiningAccents) { EXPECT_EQ(foldName("Attivita\xCC\x80"), "attivita"); }

TEST(Names, CountsInsertionsDeletionsReplacementsAndSwaps) {
  EXPECT_EQ(editDistance(U"", U""), 0U);
  EXPECT_EQ(editDistance(U"ditta", U"ditta"), 0U);
  EXPECT_EQ(editDistance(U"", U"ditta"), 5U);
  EXPECT_EQ(editDistance(U"ditta", U""), 5U);
  EXPECT_EQ(editDistance(U"dita", U"ditta"), 1U);
  EXPECT_EQ(editDistance(U"dittta", U"ditta"), 1U);
  EXPECT_EQ(editDistance(U"dotta", U"ditta"), 1U);
  EXPECT_EQ(editDistance(U"idtta", U"ditta"), 1U);
  EXPECT_EQ(editDistance(U"crea", U"sql"), 4U);
}

TEST(Names, FindsTheVerySameName) { EXPECT_EQ(findName("EliminaCliFor", kNames), 1U); }

TEST(Names, FindsANameTypedWithoutAccentsOrLetterCase) {
  EXPECT_EQ(findName("DuplicaAttivita", kNames), 2U);
  EXPECT_EQ(findName("pvar_ditta", kNames), 3U);
}

TEST(Names, FindsNothingForAnotherName) {
  EXPECT_EQ(findName("DuplicaClifo", kNames), std::nullopt);
  EXPECT_EQ(findName("", kNames), std::nullopt);
}

TEST(Names, TakesNoNameThatTwoOthersFoldTo) {
  constexpr std::array<std::string_view, 2> names{"Perù", "Peru"};
  EXPECT_EQ(findName("Peru", names), 1U);
  EXPECT_EQ(findName("peru", names), std::nullopt);
}

TEST(Names, NamesTheNearest) {
  EXPECT_EQ(nearestName("DuplicaCliente", kNames), "DuplicaCliFor");
  EXPECT_EQ(nearestName("Ditta", kNames), "Pvar_Ditta");
  EXPECT_EQ(nearestName("IdAtivita", kNames), "IdAttività");
}

TEST(Names, NamesNothingThatIsFarAway) {
  EXPECT_EQ(nearestName("qwxyz", kNames), std::nullopt);
  EXPECT_EQ(nearestName("", kNames), std::nullopt);
  EXPECT_EQ(nearestName(std::string(1'000'000, 'D'), kNames), std::nullopt);
}

TEST(Names, WordsTheSuggestion) {
  EXPECT_EQ(suggestion("DuplicaCliFr", kNames), " Forse intendevi «DuplicaCliFor»?");
  EXPECT_EQ(suggestion("qwxyz", kNames), "");
}

}  // namespace
}  // namespace azcoll::cli
