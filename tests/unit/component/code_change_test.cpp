#include <array>

#include "unit/component/fixture.h"

namespace azcoll::testing {
namespace {

/// The sub-tables in the order in which their rows are taken away; they are sent in reverse.
const Lines kTables{"MG1C_CLIFORAGEMUL", "MG22_CLIFORDEST", "MG24_CLIFORRAG",   "MG27_CLIFORACC",
                    "MG28_CLIFORINT",    "MG26_CLIFORNOTE", "MG41_CLIFORVETT",  "MG23_CLIFORNCOP",
                    "MG35_CLIFORCC",     "MG29_CLIFORRID",  "MG20_CLIFORSCPAG", "MG21_CLIFORSALPAG",
                    "MG19_CLIFORVA"};

std::string rowsOf(const std::string& table, const std::string& verb,
                   const std::string& kind = "0") {
  const std::string prefix = table.substr(0, 4);
  return verb + " FROM " + table + " WHERE " + prefix + "_DITTA_CG18 = 5 AND " + prefix +
         "_TIPOCF_CG44 = " + kind + " AND " + prefix + "_CLIFOR_CG44 = 120";
}

Lines columnsOf(const std::string& table) {
  const std::string prefix = table.substr(0, 4);
  return {prefix + "_DITTA_CG18", prefix + "_TIPOCF_CG44", prefix + "_CLIFOR_CG44",
          prefix + "_PROGR", prefix + "_VALORE"};
}

class CodeChange : public ComponentTest {
 protected:
  CodeChange() {
    in().Pvar_CliFor = std::int32_t{120};
    for (const std::string& table : kTables) {
      connection->columns(table, columnsOf(table));
    }
  }
  void rows(const std::string& table, const std::vector<Variant>& values) const {
    std::vector<Variant> cells;
    std::int16_t number = 0;
    for (const Variant& value : values) {
      for (const Variant& cell : {Variant{std::int32_t{5}}, Variant{std::int16_t{0}},
                                  Variant{std::int32_t{120}}, Variant{++number}, value}) {
        cells.push_back(cell);
      }
    }
    connection->answer(rowsOf(table, "SELECT *"), rowSet(columnsOf(table), cells, table));
  }
  void change() const { ServiceProbe::AggiornaCodiceCliFor(*service, std::int32_t{122}); }
  [[nodiscard]] Lines sent() const { return log({"Change"}); }
};

const std::string kMaster =
    "Execute 1: UPDATE CG44_CLIFOR  SET CG44_CLIFOR = 122 WHERE CG44_DITTA_CG18 = 5 AND "
    "CG44_TIPOCF = 0 AND CG44_CLIFOR = 120";

TEST_F(CodeChange, WithoutSubRowsOnlyTheMasterRowMoves) {
  change();
  Lines expected;
  for (const std::string& table : kTables) {
    expected.push_back("Execute 1: " + rowsOf(table, "SELECT *"));
  }
  expected.push_back(kMaster);
  EXPECT_EQ(log(), expected);
}

TEST_F(CodeChange, AllTablesLeaveInOrderTheMasterMovesAndTheyArriveInReverse) {
  Lines expected;
  for (const std::string& table : kTables) {
    rows(table, {"x"});
    expected.push_back("Execute 1: " + rowsOf(table, "SELECT *"));
    expected.push_back("OpenWithSource 1,4,1: SELECT * FROM " + table + " WHERE 1=2");
    expected.push_back("Execute 1: " + rowsOf(table, "DELETE"));
  }
  expected.push_back(kMaster);
  for (auto table = kTables.rbegin(); table != kTables.rend(); ++table) {
    expected.push_back("UpdateBatch 3: SELECT * FROM " + *table + " WHERE 1=2");
  }
  change();
  EXPECT_EQ(log({"Execute", "Open", "UpdateBatch"}), expected);
  EXPECT_EQ(sent().size(), kTables.size());
}

TEST_F(CodeChange, TheKindStandsInEveryStatement) {
  in().Pint_TipoCF = Fornitore;
  change();
  EXPECT_EQ(log().front(), "Execute 1: " + rowsOf("MG1C_CLIFORAGEMUL", "SELECT *", "1"));
  EXPECT_EQ(log().back(),
            "Execute 1: UPDATE CG44_CLIFOR  SET CG44_CLIFOR = 122 WHERE CG44_DITTA_CG18 = 5 AND "
            "CG44_TIPOCF = 1 AND CG44_CLIFOR = 120");
}

TEST_F(CodeChange, EveryRowIsCopiedWithItsValuesUnderTheNewCode) {
  const std::string table = "MG27_CLIFORACC";
  rows(table, {*Decimal::parse("0.3333"), kNull, *Date::of(2024, 2, 29, 8, 15, 30)});
  change();
  const Lines texts = sent();
  ASSERT_EQ(texts.size(), 3U);
  const std::string keys = " | ? Int32 5 | ? Int16 0 | ? Int32 122 | ? Int16 ";
  EXPECT_NE(texts[0].find(keys + "1 | ? Decimal 0.3333"), std::string::npos) << texts[0];
  EXPECT_NE(texts[1].find(keys + "2"), std::string::npos) << texts[1];
  EXPECT_NE(texts[2].find(keys + "3 | ? Date 29/02/2024 08:15:30"), std::string::npos) << texts[2];
}

TEST_F(CodeChange, TheNewCodeIsStagedAsItStands) {
  rows("MG24_CLIFORRAG", {"x"});
  const std::shared_ptr<Recordset> staged =
      ServiceProbe::AggiornaCodice(*service, "MG24_CLIFORRAG", "0122");
  ASSERT_NE(staged, nullptr);
  EXPECT_TRUE(staged->isOpen());
  EXPECT_EQ(staged->recordCount(), 1);
  staged->moveFirst();
  EXPECT_EQ(shown(staged->fields().item("MG24_CLIFOR_CG44").value()), "'0122'");
  EXPECT_TRUE(sent().empty());  // staged only
}

TEST_F(CodeChange, ATableWithoutRowsGivesNoStagedRecordsetAndDeletesNothing) {
  EXPECT_EQ(ServiceProbe::AggiornaCodice(*service, "MG24_CLIFORRAG", std::int32_t{122}), nullptr);
  EXPECT_EQ(log(), (Lines{"Execute 1: " + rowsOf("MG24_CLIFORRAG", "SELECT *")}));
}

TEST_F(CodeChange, AColumnThatDiffersInLetterCaseIsCopied) {
  const std::string table = "MG26_CLIFORNOTE";
  const Lines names{"MG26_clifor_CG44", "MG26_CLIFOR_CG44_", "MG26_CLIFOR_CG44"};
  connection->columns(table, names);
  connection->answer(
      rowsOf(table, "SELECT *"),
      rowSet(names, {std::int32_t{120}, std::int32_t{121}, std::int32_t{120}}, table));
  const std::shared_ptr<Recordset> staged =
      ServiceProbe::AggiornaCodice(*service, table, std::int32_t{122});
  ASSERT_NE(staged, nullptr);
  staged->moveFirst();
  EXPECT_EQ(shown(staged->fields().item(0).value()), "Int32 120");
  EXPECT_EQ(shown(staged->fields().item(1).value()), "Int32 121");
  EXPECT_EQ(shown(staged->fields().item(2).value()), "Int32 122");
}

TEST_F(CodeChange, ColumnsAreMatchedByPosition) {
  const std::string table = "MG26_CLIFORNOTE";
  connection->columns(table, {"PRIMA", "SECONDA", "TERZA"});
  connection->answer(rowsOf(table, "SELECT *"), rowSet({"TERZA", "MG26_CLIFOR_CG44", "PRIMA"},
                                                       {"a", std::int32_t{120}, "c"}, table));
  const std::shared_ptr<Recordset> staged =
      ServiceProbe::AggiornaCodice(*service, table, std::int32_t{122});
  ASSERT_NE(staged, nullptr);
  staged->moveFirst();
  EXPECT_EQ(shown(staged->fields().item(0).value()), "'a'");
  EXPECT_EQ(shown(staged->fields().item(1).value()), "Int32 122");
  EXPECT_EQ(shown(staged->fields().item(2).value()), "'c'");
}

TEST_F(CodeChange, FailuresReachTheCallerAndLeaveTheOutcomeAlone) {
  rows("MG22_CLIFORDEST", {"x"});
  for (const std::string start :
       {"UpdateBatch", "UPDATE CG44_CLIFOR", "DELETE FROM MG22_CLIFORDEST",
        "SELECT * FROM MG22_CLIFORDEST WHERE 1=2", "SELECT * FROM MG1C_CLIFORAGEMUL"}) {
    connection->fail(start, Failure::Provider, "Rifiutato");
    EXPECT_THROW(change(), Error) << start;
    expectSuccess();
  }
  EXPECT_TRUE(sent().empty());
}

TEST_F(CodeChange, ARefusedDeletionSendsNothing) {
  rows("MG1C_CLIFORAGEMUL", {"x"});
  connection->fail("DELETE", Failure::Provider, "Rifiutato");
  EXPECT_THROW(change(), Error);
  EXPECT_TRUE(log({"UpdateBatch", "Execute 1: UPDATE"}).empty());
}

}  // namespace
}  // namespace azcoll::testing
