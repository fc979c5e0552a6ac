#include "cli/commands/trace.h"

#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/print/json.h"
#include "cli_test.h"

namespace azcoll::cli {
namespace {

TEST(TraceLine, TellsOneOperation) {
  TraceEntry entry;
  entry.operation = "Execute";
  entry.sql = "SELECT 1\r\n";
  entry.options = {1, -1};
  entry.rows = 1;
  entry.milliseconds = 0.25;
  EXPECT_EQ(traceLine(entry),
            R"({"op":"Execute","sql":"SELECT 1\r\n","opzioni":[1,-1],"righe":1,"ms":0.25})");
}

TEST(TraceLine, TellsWhatIsNotKnownAsNull) {
  TraceEntry entry;
  entry.operation = "BeginTrans";
  EXPECT_EQ(traceLine(entry),
            R"({"op":"BeginTrans","sql":null,"opzioni":[],"righe":null,"ms":0.0})");
}

TEST(TraceLine, TellsTheParametersOfACommandInOrder) {
  TraceEntry entry;
  entry.operation = "CommandExecute";
  entry.sql = "PC_GetDitteCollegate";
  entry.options = {4};
  entry.parameters = {{"@CodiceDitta", 10}, {"@Anno", *Date::of(2024, 1, 1)}, {"@Altro", kNull}};
  EXPECT_EQ(Json::parse(traceLine(entry))["parametri"].dump(),
            R"({"@CodiceDitta":10,"@Anno":"2024-01-01","@Altro":null})");
  entry.parameters.clear();
  EXPECT_EQ(Json::parse(traceLine(entry))["parametri"].dump(), "{}");
}

TEST(TraceLine, TellsTheFailure) {
  TraceEntry entry;
  entry.operation = "Execute";
  entry.error.emplace();
  entry.error->description = "Invalid object name 'X'.";
  entry.error->sqlState = "42S02";
  entry.error->nativeNumber = 208;
  EXPECT_EQ(Json::parse(traceLine(entry))["errore"].dump(),
            R"({"descrizione":"Invalid object name 'X'.","sqlstate":"42S02","numero":208})");
}

class TraceFile : public FolderTest {};

TEST_F(TraceFile, RefusesAFileThatCannotBeWritten) {
  std::ostringstream err;
  EXPECT_THAT([&] { TraceWriter(path("manca/traccia"), err); },
              testing::ThrowsMessage<UsageError>(testing::HasSubstr("traccia")));
}

TEST_F(TraceFile, ReportsAWriteThatFailed) {
  std::ostringstream err;
  err.setstate(std::ios::badbit);
  TraceWriter writer{"-", err};
  EXPECT_FALSE(writer.finish());
}

}  // namespace
}  // namespace azcoll::cli
