#include <cctype>

#include "gtest/gtest.h"

#include "unit/embedded_language/case_file.h"

namespace azcoll::test {
namespace {

std::string camelCase(const std::string& text) {
  std::string name;
  bool start = true;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) == 0) {
      start = true;
      continue;
    }
    name += start ? static_cast<char>(std::toupper(byte)) : c;
    start = false;
  }
  return name;
}

class Language : public testing::TestWithParam<Section> {};

TEST_P(Language, BehavesAsWritten) {
  for (const std::string& complaint : runSection(GetParam())) {
    ADD_FAILURE() << GetParam().file << ".txt " << complaint;
  }
}

std::string sectionName(const testing::TestParamInfo<Section>& section) {
  return camelCase(section.param.file) + "_" + camelCase(section.param.title);
}

INSTANTIATE_TEST_SUITE_P(Cases, Language, testing::ValuesIn(allSections()), sectionName);

/// Complaints of a section, written with `/` for line breaks.
std::size_t complaintsOf(std::string text) {
  for (char& c : text) {
    c = c == '/' ? '\n' : c;
  }
  const std::vector<Section> sections = readSections("file", "== title\n" + text);
  return sections.size() == 1 ? runSection(sections[0]).size() : 0;
}

TEST(CaseRunner, AcceptsWhatIsAsWritten) {
  EXPECT_EQ(complaintsOf("rows/SELECT 1 AS a, 'x'/----/names: a | -/kinds: Int32 | Text/1 | 'x'"),
            0U);
  EXPECT_EQ(complaintsOf("error 208 Invalid * name 'T'./SELECT * FROM T"), 0U);
  EXPECT_EQ(complaintsOf("rows unordered/SELECT 1 UNION SELECT 2/----/2/~1"), 0U);
  EXPECT_EQ(complaintsOf("outside/SELECT a FROM t FOR XML PATH"), 0U);
}

TEST(CaseRunner, ReadsTheMarksOfWhatAServerAnswersInItsOwnWay) {
  const auto section = [](const std::string& text) {
    return readSections("file", "== title\n" + text).at(0);
  };
  const Section block = section("ok\nSELECT 1\n\nserver: its way\nok\nSELECT 2\n");
  ASSERT_EQ(block.blocks.size(), 2U);
  EXPECT_EQ(block.serverWay + block.blocks[0].serverWay, "");
  EXPECT_EQ(block.blocks[1].serverWay, "its way");
  EXPECT_EQ(block.blocks[1].line, 6U);
  const Section whole = section("server: all of it\n\nok\nSELECT 1\n");
  EXPECT_EQ(whole.serverWay, "all of it");
  EXPECT_EQ(whole.blocks.at(0).serverWay, "");
  EXPECT_FALSE(section("ok\nSELECT 1\n\nserver: too late\n\nok\nSELECT 2\n").problem.empty());
  EXPECT_FALSE(section("server: nothing follows\n").problem.empty());
}

TEST(CaseRunner, NoticesEveryDifference) {
  for (const char* text : {"rows/SELECT 1/----/2",
                           "rows/SELECT 1/----",
                           "rows/SELECT 1/----/1/1",
                           "rows/SELECT 1/----/'1'",
                           "rows/SELECT 1/----/1./",
                           "rows/SELECT 1/----/names: a/1",
                           "rows/SELECT 1/----/kinds: Int64/1",
                           "rows/SELECT 1 SELECT 2/----/1",
                           "rows/SELECT 1/----/1/====/2",
                           "rows/SELECT 1/----/1 | 1",
                           "rows unordered/SELECT 1 UNION SELECT 2/----/2/2",
                           "ok/SELECT 1",
                           "ok/SELECT * FROM T",
                           "ok 1/DECLARE @a INT",
                           "error 208 x/SELECT 1",
                           "error 208 Invalid name 'T'./SELECT * FROM T",
                           "error 207 Invalid object name 'T'./SELECT * FROM T",
                           "terminated 208 Invalid object name 'T'./SELECT * FROM T",
                           "outside/SELECT 1",
                           "outside/SELECT * FROM T",
                           "rows or outside/SELECT * FROM T/----/1"}) {
    EXPECT_EQ(complaintsOf(text), 1U) << text;
  }
}

TEST(CaseRunner, RefusesWhatTheFormatDoesNotKnow) {
  for (const char* text : {"row/SELECT 1", "ok x/SELECT 1", "ok", "rows/SELECT 1",
                           "rows sideways/SELECT 1/----/1", "error x/SELECT 1", ""}) {
    EXPECT_EQ(complaintsOf(text), 1U) << text;
  }
}

}  // namespace
}  // namespace azcoll::test
