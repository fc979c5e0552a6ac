#include "statements/statement_file.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace azcoll::statements {
namespace {

StatementFile readText(const std::string& text) {
  const std::string path = testing::TempDir() + "statement_file_test_" +
                           testing::UnitTest::GetInstance()->current_test_info()->name();
  std::ofstream{path} << text;
  StatementFile file = readStatementFile(path);
  std::filesystem::remove(path);
  return file;
}

TEST(StatementFiles, KeepBlanksJoinedLinesAndLineEnds) {
  const StatementFile file =
      readText("== a\nok\nSELECT\\s\\\n 1\\s\n FROM\\r\\\\T\n\nok eol=cr\nA\nB\n");
  ASSERT_EQ(file.cases.size(), 1U);
  ASSERT_EQ(file.cases[0].steps.size(), 2U);
  EXPECT_EQ(file.cases[0].steps[0].text, "SELECT  1 \r\n FROM\r\\T");
  EXPECT_EQ(file.cases[0].steps[1].text, "A\rB");
}

TEST(StatementFiles, PartResultsHeadersRowsAndOutputs) {
  const StatementFile file = readText(
      "== a\ncall P\n@X = small 1\n----\n: A | B\n1 | \"x | y\"\n---- next\n2\n@L = \"\"\n");
  const Step& step = file.cases.at(0).steps.at(0);
  EXPECT_EQ(step.text, "P");
  ASSERT_EQ(step.results.size(), 2U);
  EXPECT_EQ(step.results[0].rows, (std::vector<std::vector<std::string>>{{"1", "\"x | y\""}}));
  EXPECT_EQ(step.results[1].rows, (std::vector<std::vector<std::string>>{{"2"}}));
  ASSERT_EQ(step.outputs.size(), 1U);
  EXPECT_EQ(step.outputs[0].second, "\"\"");
}

TEST(StatementFiles, RefuseWhatTheFormatDoesNotKnow) {
  for (const std::string text :
       {"ok\nSELECT 1\n", "== a\n", "== a\nmaybe\nSELECT 1\n", "== a\nquery\nSELECT 1\n",
        "== a\nok\n\n", "== a\ncount x\nSELECT 1\n", "== a\nok\nSELECT \\q\n",
        "== a\nok\nSELECT 1\n----\n1\n", "== a\nquery some\nSELECT 1\n----\n1\n",
        "== a\nquery\nSELECT 1\n----\n: A | B\n1\n", "== a\ncall P\nX = 1\n----\n",
        "== a\nok maybe\nSELECT 1\n"}) {
    EXPECT_THROW(readText(text), std::runtime_error) << text;
  }
  EXPECT_THROW(static_cast<void>(readStatementFile("/nonexistent")), std::runtime_error);
}

}  // namespace
}  // namespace azcoll::statements
