#include <array>
#include <string>
#include <vector>

#include "service_fixture.h"

namespace azcoll::test {
namespace {

constexpr std::array<const char*, 13> kCallOrder{
    "MG1C_CLIFORAGEMUL", "MG22_CLIFORDEST",   "MG24_CLIFORRAG",  "MG27_CLIFORACC", "MG28_CLIFORINT",
    "MG26_CLIFORNOTE",   "MG41_CLIFORVETT",   "MG23_CLIFORNCOP", "MG35_CLIFORCC",  "MG29_CLIFORRID",
    "MG20_CLIFORSCPAG",  "MG21_CLIFORSALPAG", "MG19_CLIFORVA"};

std::string ofCustomer(const std::string& verb, const std::string& table, const std::string& code) {
  const std::string prefix = table.substr(0, 4);
  return verb + " FROM " + table + " WHERE " + prefix + "_DITTA_CG18 = 20 AND " + prefix +
         "_TIPOCF_CG44 = 0 AND " + prefix + "_CLIFOR_CG44 = " + code;
}

std::string search(const std::string& code, const std::string& list = "30, 40, 10") {
  return "SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 IN(" + list +
         ") AND CG44_TIPOCF = 0 AND CG44_CLIFOR = " + code;
}

constexpr const char* kLastNumber =
    "SELECT MAX(CG70_ULTNUMDOC) AS CG70_ULTNUMDOC FROM CG70_NUMERDOC WHERE CG70_DITTA_CG18 IN(30, "
    "40, 10, 20) AND CG70_SEZ_CG68 = '00' AND CG70_ANNO = 0AND CG70_TIPODOCINT = 901";
constexpr const char* kMove =
    "UPDATE CG44_CLIFOR  SET CG44_CLIFOR = 101 WHERE CG44_DITTA_CG18 = 20 AND CG44_TIPOCF = 0 AND "
    "CG44_CLIFOR = 100";

class CodeChangeTest : public DuplicationTest {
 protected:
  CodeChangeTest() {
    connection->answerPrefix("SELECT MAX(", rowSet({"CG70_ULTNUMDOC"}, {std::int32_t{555}}));
    take("100");
  }

  /// Gives the customer rows in `table`: the three key columns between two others.
  void subRows(const std::string& table, const std::vector<Variant>& notes) {
    const std::string prefix = table.substr(0, 4);
    const std::vector<std::string> names{prefix + "_ID", prefix + "_DITTA_CG18",
                                         prefix + "_TIPOCF_CG44", prefix + "_CLIFOR_CG44",
                                         prefix + "_NOTE"};
    std::vector<Variant> values;
    for (std::size_t row = 0; row < notes.size(); ++row) {
      for (const Variant& value :
           {Variant{static_cast<std::int32_t>(row) + 1}, Variant{std::int32_t{20}},
            Variant{std::int16_t{0}}, Variant{std::int32_t{100}}, notes[row]}) {
        values.push_back(value);
      }
    }
    connection->columns(table, names);
    connection->answer(ofCustomer("SELECT *", table, "100"), rowSet(names, values, table));
  }

  /// Values of the rows sent in batches, in order.
  [[nodiscard]] std::vector<std::vector<Variant>> sent() const {
    std::vector<std::vector<Variant>> rows;
    for (const Operation& change : named("Change")) {
      rows.emplace_back();
      for (const auto& [name, value] : change.parameters) {
        rows.back().push_back(value);
      }
    }
    return rows;
  }
};

TEST_F(CodeChangeTest, AFreeCodeIsKept) {
  connection->answer(search("100"), rowSet({"CG44_CLIFOR"}, {}));
  service.DuplicaCliFor();
  EXPECT_EQ(lines("SELECT CG44_CLIFOR FROM"), Lines{search("100")});
  EXPECT_TRUE(lines("SELECT MAX(").empty());
  EXPECT_TRUE(lines("UPDATE").empty());
  EXPECT_EQ(service.CPInput->Pvar_CliFor, Variant{std::int32_t{100}});
  expectSuccess();
}

TEST_F(CodeChangeTest, ARowWithoutACodeLeavesTheCodeFree) {
  connection->answer(search("100"), rowSet({"CG44_CLIFOR"}, {kNull}));
  service.DuplicaCliFor();
  EXPECT_TRUE(lines("UPDATE").empty());
  expectSuccess();
}

TEST_F(CodeChangeTest, ATakenCodeIsCountedUpByOneWhateverTheLastNumberIs) {
  service.DuplicaCliFor();
  EXPECT_EQ(lines("SELECT CG44_CLIFOR FROM"), (Lines{search("100"), search("101")}));
  EXPECT_EQ(lines("SELECT MAX("), Lines{kLastNumber});
  EXPECT_EQ(service.CPInput->Pvar_CliFor.text(), "101");
  expectSuccess();
}

TEST_F(CodeChangeTest, ThreeTakenCodesAskForTheLastNumberOnce) {
  take("101");
  take("102");
  service.DuplicaCliFor();
  const Lines all = transcript();
  EXPECT_EQ(Lines(all.begin() + 3, all.begin() + 8),
            (Lines{search("100"), kLastNumber, search("101"), search("102"), search("103")}));
  EXPECT_EQ(service.CPInput->Pvar_CliFor.text(), "103");
  expectOnly("UPDATE",
             "UPDATE CG44_CLIFOR  SET CG44_CLIFOR = 103 WHERE CG44_DITTA_CG18 = 20 AND "
             "CG44_TIPOCF = 0 AND CG44_CLIFOR = 100");
  expectSuccess();
}

TEST_F(CodeChangeTest, ASuppliersLastNumberIsOfItsOwnKind) {
  service.CPInput->Pint_TipoCF = Fornitore;
  connection->answer(
      "SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 IN(30, 40, 10) AND CG44_TIPOCF = "
      "1 AND CG44_CLIFOR = 100",
      rowSet({"CG44_CLIFOR"}, {100}));
  service.DuplicaCliFor();
  expectOnly("SELECT MAX(",
             "SELECT MAX(CG70_ULTNUMDOC) AS CG70_ULTNUMDOC FROM CG70_NUMERDOC WHERE "
             "CG70_DITTA_CG18 IN(30, 40, 10, 20) AND CG70_SEZ_CG68 = '00' AND CG70_ANNO = 0AND "
             "CG70_TIPODOCINT = 902");
  expectOnly("SELECT * FROM MG22",
             "SELECT * FROM MG22_CLIFORDEST WHERE MG22_DITTA_CG18 = 20 AND MG22_TIPOCF_CG44 = 1 "
             "AND MG22_CLIFOR_CG44 = 100");
  expectSuccess();
}

TEST_F(CodeChangeTest, WithoutLinkedCompaniesTheMainCompanyAloneIsSearched) {
  group("10", {}, "");
  connection->answer(search("100", "10"), rowSet({"CG44_CLIFOR"}, {100}));
  service.DuplicaCliFor();
  EXPECT_EQ(lines("SELECT CG44_CLIFOR FROM"), (Lines{search("100", "10"), search("101", "10")}));
  expectOnly("SELECT MAX(",
             "SELECT MAX(CG70_ULTNUMDOC) AS CG70_ULTNUMDOC FROM CG70_NUMERDOC WHERE "
             "CG70_DITTA_CG18 IN(10, 20) AND CG70_SEZ_CG68 = '00' AND CG70_ANNO = 0AND "
             "CG70_TIPODOCINT = 901");
  expectSuccess();
}

TEST_F(CodeChangeTest, ACodeGivenAsTextIsCountedUpAsANumber) {
  service.CPInput->Pvar_CliFor = "100";
  service.DuplicaCliFor();
  EXPECT_EQ(service.CPInput->Pvar_CliFor.text(), "101");
  expectOnly("UPDATE", kMove);
}

TEST_F(CodeChangeTest, EverythingAfterTheMoveUsesTheNewCode) {
  master.set("CG44_CLIFOR", std::int32_t{101});
  script();
  service.DuplicaCliFor();

  expectOnly("SELECT * FROM CG44_CLIFOR",
             "SELECT * FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 20 AND CG44_TIPOCF = 0 AND "
             "CG44_CLIFOR = 101");
  EXPECT_EQ(lines("SELECT * FROM MG19"), (Lines{ofCustomer("SELECT *", "MG19_CLIFORVA", "100"),
                                                ofCustomer("SELECT *", "MG19_CLIFORVA", "101")}));
  for (const std::string& insert : lines("INSERT INTO CG44_CLIFOR")) {
    EXPECT_NE(insert.find(" VALUES ("), std::string::npos);
    EXPECT_NE(insert.find("0, 101, 5001,"), std::string::npos) << insert;
  }
  for (const Numbering& numbering : platform->numberings) {
    EXPECT_EQ(numbering.Codice, "101");
  }
  expectSuccess();
}

TEST_F(CodeChangeTest, CustomersWithoutSubRowsAreMovedByTheMasterRowAlone) {
  service.DuplicaCliFor();
  const Lines all = transcript();
  Lines expected;
  for (const char* const table : kCallOrder) {
    expected.push_back(ofCustomer("SELECT *", table, "100"));
  }
  expected.push_back(kMove);
  ASSERT_GT(all.size(), 20U);
  EXPECT_EQ(Lines(all.begin() + 6, all.begin() + 20), expected);
  EXPECT_TRUE(lines("DELETE").empty());
  EXPECT_TRUE(lines("OpenWithSource").empty());
  EXPECT_EQ(count("UpdateBatch"), 0U);
}

TEST_F(CodeChangeTest, ThirteenTablesAreStagedDeletedMovedAndSentInReverse) {
  Lines expected;
  Lines batches;
  for (const std::string table : kCallOrder) {
    subRows(table, {Variant{"riga"}});
    expected.push_back(ofCustomer("SELECT *", table, "100"));
    expected.push_back("OpenWithSource SELECT * FROM " + table + " WHERE 1=2");
    expected.push_back(ofCustomer("DELETE", table, "100"));
    batches.insert(batches.begin(), "UpdateBatch SELECT * FROM " + table + " WHERE 1=2");
  }
  expected.push_back(kMove);
  expected.insert(expected.end(), batches.begin(), batches.end());
  service.DuplicaCliFor();

  const Lines all = transcript();
  ASSERT_GT(all.size(), 6U + expected.size());
  EXPECT_EQ(Lines(all.begin() + 6, all.begin() + 6 + std::ssize(expected)), expected);
  expectSuccess();
}

TEST_F(CodeChangeTest, OneSubTableIsMovedByTheseStatements) {
  subRows("MG22_CLIFORDEST", {Variant{"riga"}});
  service.DuplicaCliFor();
  EXPECT_EQ(lines("SELECT * FROM MG22"),
            Lines{"SELECT * FROM MG22_CLIFORDEST WHERE MG22_DITTA_CG18 = 20 AND MG22_TIPOCF_CG44 = "
                  "0 AND MG22_CLIFOR_CG44 = 100"});
  EXPECT_EQ(lines("DELETE"), Lines{"DELETE FROM MG22_CLIFORDEST WHERE MG22_DITTA_CG18 = 20 AND "
                                   "MG22_TIPOCF_CG44 = 0 AND MG22_CLIFOR_CG44 = 100"});
  EXPECT_EQ(lines("UpdateBatch"), Lines{"UpdateBatch SELECT * FROM MG22_CLIFORDEST WHERE 1=2"});
}

TEST_F(CodeChangeTest, StagedRecordsetsAreKeysetAndBatchOptimisticAndSentWhole) {
  subRows("MG22_CLIFORDEST", {Variant{"riga"}});
  service.DuplicaCliFor();
  ASSERT_EQ(count("OpenWithSource"), 1U);
  EXPECT_EQ(named("OpenWithSource").front().options, (std::vector<int>{1, 4, 1}));
  ASSERT_EQ(count("UpdateBatch"), 1U);
  EXPECT_EQ(named("UpdateBatch").front().options, std::vector<int>{3});
}

TEST_F(CodeChangeTest, EveryRowIsCopiedWholeUnderTheNewCode) {
  const Variant amount{*Decimal::parse("12.50")};
  const Variant moment{Date{.year = 2020, .month = 2, .day = 29, .hour = 8, .minute = 30}};
  subRows("MG28_CLIFORINT", {amount, kNull, moment});
  service.DuplicaCliFor();

  const std::vector<Variant> notes{amount, kNull, moment};
  const auto rows = sent();
  ASSERT_EQ(rows.size(), notes.size());
  for (std::size_t row = 0; row < rows.size(); ++row) {
    ASSERT_EQ(rows[row].size(), 5U);
    EXPECT_TRUE(sameValue(rows[row][0], static_cast<std::int32_t>(row) + 1));
    EXPECT_TRUE(sameValue(rows[row][1], 20));
    EXPECT_TRUE(sameValue(rows[row][2], 0));
    EXPECT_TRUE(sameValue(rows[row][3], 101));
    EXPECT_EQ(rows[row][4], notes[row]);
  }
  expectSuccess();
}

TEST_F(CodeChangeTest, AColumnOfTheSameNameInOtherLettersIsCopied) {
  const std::vector<std::string> names{"MG26_DITTA_CG18", "MG26_Clifor_CG44"};
  connection->columns("MG26_CLIFORNOTE", names);
  connection->answer(ofCustomer("SELECT *", "MG26_CLIFORNOTE", "100"),
                     rowSet(names, {20, 100}, "MG26_CLIFORNOTE"));
  service.DuplicaCliFor();
  const auto rows = sent();
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_TRUE(sameValue(rows[0][1], 100));
}

TEST_F(CodeChangeTest, ColumnsAreMatchedByPosition) {
  connection->columns("MG26_CLIFORNOTE", {"PRIMA", "SECONDA"});
  connection->answer(ofCustomer("SELECT *", "MG26_CLIFORNOTE", "100"),
                     rowSet({"SECONDA", "MG26_CLIFOR_CG44"}, {"a", 100}, "MG26_CLIFORNOTE"));
  service.DuplicaCliFor();
  const auto rows = sent();
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_TRUE(sameValue(rows[0][0], "a"));
  EXPECT_TRUE(sameValue(rows[0][1], 101));
}

TEST_F(CodeChangeTest, AFailingLastNumberIsSkipped) {
  connection->fail("SELECT MAX(", Failure::Provider, "Incorrect syntax");
  service.DuplicaCliFor();
  EXPECT_EQ(service.CPInput->Pvar_CliFor.text(), "101");
  expectSuccess();
}

}  // namespace
}  // namespace azcoll::test
