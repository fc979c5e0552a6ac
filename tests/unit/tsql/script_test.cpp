#include "tsql/script.h"

#include "unit/tsql/support.h"

namespace azcoll::tsql::test {
namespace {

/// The batches of a script, each as `line|text`.
std::vector<std::string> split(std::string_view script) {
  std::vector<std::string> batches;
  for (const ScriptBatch& batch : splitScript(script)) {
    batches.push_back(std::to_string(batch.firstLine) + "|" + batch.text);
  }
  return batches;
}

using Batches = std::vector<std::string>;

TEST(Script, IsPartedAtLinesThatHoldOnlyGo) {
  EXPECT_EQ(split("SELECT 1\nGO\nSELECT 2\n  go \t\nSELECT 3"),
            (Batches{"1|SELECT 1\n", "3|SELECT 2\n", "5|SELECT 3"}));
  EXPECT_EQ(split("SELECT 1\r\nGo\r\nSELECT 2\rGO\rSELECT 3"),
            (Batches{"1|SELECT 1\r\n", "3|SELECT 2\r", "5|SELECT 3"}));
  EXPECT_EQ(split("GO\nSELECT 1\nGO"), (Batches{"2|SELECT 1\n"}));
}

TEST(Script, DoesNotTakeOtherLinesForGo) {
  for (const char* script :
       {"SELECT 1\nGO;\nSELECT 2", "SELECT 1\nGO 5\nSELECT 2", "SELECT 1\nGOTO x", "SELECT 1\nG\nO",
        "SELECT 1 GO\n", "SELECT 1\nxGO", "SELECT 1\nG", "SELECT 1\n'a' GO"}) {
    EXPECT_EQ(split(script), (Batches{"1|" + std::string(script)}));
  }
}

TEST(Script, DoesNotSeeGoInsideCommentsAndQuotes) {
  for (const char* script :
       {"SELECT 'a\nGO\nb'", "SELECT [a\nGO\nb]", "SELECT \"a\nGO\nb\"",
        "SELECT /* a /*\nGO\n*/\nGO\n*/ 1", "SELECT 'a''\nGO\nb'", "SELECT /* '\nGO\n*/ 1"}) {
    EXPECT_EQ(split(script), (Batches{"1|" + std::string(script)}));
  }
  EXPECT_EQ(split("SELECT 1 -- it's\nGO\nSELECT 2"),
            (Batches{"1|SELECT 1 -- it's\n", "3|SELECT 2"}));
}

TEST(Script, LeavesOutBatchesWithoutAStatement) {
  EXPECT_EQ(split("-- head\n\nGO\n/* GO */ ;\nGO\n\n\nSELECT 1"), (Batches{"6|\n\nSELECT 1"}));
  EXPECT_TRUE(split("").empty());
  EXPECT_TRUE(split("GO\nGO\n").empty());
}

TEST(Script, KeepsWhatIsNotClosedForTheParserToTell) {
  EXPECT_EQ(split("SELECT 1\nGO\n/* a\nGO\n"), (Batches{"1|SELECT 1\n", "3|/* a\nGO\n"}));
  EXPECT_EQ(split("SELECT 'a\nGO\n"), (Batches{"1|SELECT 'a\nGO\n"}));
}

TEST(Script, DropsTheByteOrderMark) {
  EXPECT_EQ(split("\xEF\xBB\xBFSELECT 1"), (Batches{"1|SELECT 1"}));
}

}  // namespace
}  // namespace azcoll::tsql::test
