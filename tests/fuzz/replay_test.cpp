// The inputs that the fuzzing programs start from, and every input that ever broke something, put
// through the same functions in every build.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "gtest/gtest.h"

#include "fuzz/check.h"
#include "fuzz/exact_number.h"
#include "fuzz/targets.h"

namespace azcoll::fuzz {
namespace {

std::vector<std::filesystem::path> filesOf(const std::string& folder, std::string_view target) {
  std::vector<std::filesystem::path> files;
  const std::filesystem::path path =
      std::filesystem::path(AZCOLL_SOURCE_DIR) / "tests/fuzz" / folder / target;
  if (std::filesystem::exists(path)) {
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
      files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string contentOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.good()) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

void replay(const Target& target, const std::vector<std::filesystem::path>& files) {
  for (const std::filesystem::path& file : files) {
    SCOPED_TRACE(file);
    const std::string input = contentOf(file);
    EXPECT_NO_THROW(target.entry(input));
    // Halves of it, as a fuzzer would try them.
    EXPECT_NO_THROW(target.entry(std::string_view(input).substr(0, input.size() / 2)));
    EXPECT_NO_THROW(target.entry(std::string_view(input).substr(input.size() / 2)));
  }
}

class Replay : public testing::TestWithParam<Target> {};

TEST_P(Replay, TheCorpusBreaksNothing) {
  const auto files = filesOf("corpus", GetParam().name);
  ASSERT_GE(files.size(), 5U);
  replay(GetParam(), files);
}

TEST_P(Replay, WhatOnceBrokeSomethingNoLongerDoes) {
  replay(GetParam(), filesOf("crashes", GetParam().name));
}

TEST_P(Replay, NothingAtAllBreaksNothing) {
  EXPECT_NO_THROW(GetParam().entry({}));
  EXPECT_NO_THROW(GetParam().entry(std::string_view("\0\xFF\n\0", 4)));
}

INSTANTIATE_TEST_SUITE_P(Targets, Replay, testing::ValuesIn(kTargets),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(Crashes, BelongToATarget) {
  const std::filesystem::path root = std::filesystem::path(AZCOLL_SOURCE_DIR) / "tests/fuzz";
  for (const char* folder : {"corpus", "crashes"}) {
    for (const auto& entry : std::filesystem::directory_iterator(root / folder)) {
      EXPECT_TRUE(std::any_of(kTargets.begin(), kTargets.end(), [&](const Target& target) {
        return entry.path().filename() == target.name;
      })) << entry.path();
    }
  }
}

TEST(Invariants, AreBrokenByWhatDiffers) {
  EXPECT_THROW(require(false, "something"), BrokenInvariant);
  EXPECT_THROW(requireSame("a", "b", "something"), BrokenInvariant);
  EXPECT_NO_THROW(require(true, "something"));
  EXPECT_NO_THROW(requireSame("a", "a", "something"));
}

TEST(ExactNumbers, ReckonAsOnPaper) {
  const auto exact = [](const char* text) { return ExactNumber(text); };
  EXPECT_EQ(exact("1.50"), exact("+01.5"));
  EXPECT_EQ(exact("-0.0"), exact("0"));
  EXPECT_EQ(exact("99.5") + exact("0.5"), exact("100"));
  EXPECT_EQ(exact("1") - exact("1.001"), exact("-0.001"));
  EXPECT_EQ(exact("-1.5") + exact("2"), exact("0.5"));
  EXPECT_EQ(exact("-12.5") * exact("0.08"), exact("-1"));
  EXPECT_LT(exact("-2"), exact("-1.9"));
  EXPECT_GT(exact("10"), exact("9.99"));
  EXPECT_TRUE(exact("99999999999999999999999999999999999999").fits());
  EXPECT_FALSE(exact("99999999999999999999999999999999999999.1").fits());
}

}  // namespace
}  // namespace azcoll::fuzz
