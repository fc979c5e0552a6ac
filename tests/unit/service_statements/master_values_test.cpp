#include <string>
#include <vector>

#include "service_fixture.h"

namespace azcoll::test {
namespace {

class MasterValuesTest : public DuplicationTest {
 protected:
  /// Values of the full copy and of the copy into company 30, after their opening.
  void expectCopies(const std::string& full, const std::string& reduced) {
    script();
    service.DuplicaCliFor();
    const std::vector<std::string> inserts = lines("INSERT INTO CG44_CLIFOR");
    ASSERT_EQ(inserts.size(), 3U);
    EXPECT_EQ(inserts[0], std::string{kMasterInsert} + full);
    EXPECT_EQ(inserts[1], std::string{kMasterInsert} + reduced);
  }
  /// Gives every column that is not part of the key the same value.
  void fillWith(const Variant& value) {
    for (const std::string& name : std::vector<std::string>{master.names()}) {
      if (name != "CG44_DITTA_CG18" && name != "CG44_TIPOCF" && name != "CG44_CLIFOR" &&
          name != "CG44_CODICE_CG16") {
        master.set(name, value);
      }
    }
  }
};

TEST_F(MasterValuesTest, NullColumnsAreWrittenAsNull) {
  fillWith(kNull);
  expectCopies(
      "10, 0, 100, 5001, Null, Null, Null, Null, Null, Null, Null, Null, Null, Null, Null, Null, "
      "Null, Null, 1)",
      "30, 0, 100, 5001, Null,  Null, Null, Null, Null, Null, Null, Null, Null, Null, Null,  "
      "Null,Null,  Null, 0)");
  expectSuccess();
}

TEST_F(MasterValuesTest, EmptyTextsAreWrittenAsNull) {
  fillWith("");
  expectCopies(
      "10, 0, 100, 5001, Null, Null, Null, Null, Null, Null, Null, Null, Null, Null, Null, Null, "
      "Null, Null, 1)",
      "30, 0, 100, 5001, Null,  Null, Null, Null, Null, Null, Null, Null, Null, Null, Null,  "
      "Null,Null,  Null, 0)");
}

TEST_F(MasterValuesTest, ZerosAreValues) {
  fillWith(std::int32_t{0});
  expectCopies(
      "10, 0, 100, 5001, 0, N'0', N'0', N'0', 0, 0, 0, 0, 0, N'0', N'0', 91, 0, 0, 1)",
      "30, 0, 100, 5001, 0,  Null, Null, Null, Null, Null, Null, 0, 0, N'0', N'0',  Null,0,  Null, "
      "0)");
}

TEST_F(MasterValuesTest, AKeyIsWrittenAsItStands) {
  master.set("CG44_CODICE_CG16", kNull);
  expectCopies(
      "10, 0, 100, , 3, N'C240', N'R240', N'P60', 15, 1005, 3200, 0, 7, N'IT', N'I22', 91, 2, 88, "
      "1)",
      "30, 0, 100, , 3,  Null, Null, Null, Null, Null, Null, 0, 7, N'IT', N'I22',  Null,2,  Null, "
      "0)");
}

TEST_F(MasterValuesTest, ApostrophesAreNotDoubledAndAccentsStay) {
  master.set("CG44_CONTO_CG24", "D'ANGELO").set("CG44_CODICE_CG08", "Forlì 'è' €");
  expectCopies(
      "10, 0, 100, 5001, 3, N'D'ANGELO', N'R240', N'P60', 15, 1005, 3200, 0, 7, N'Forlì 'è' €', "
      "N'I22', 91, 2, 88, 1)",
      "30, 0, 100, 5001, 3,  Null, Null, Null, Null, Null, Null, 0, 7, N'Forlì 'è' €', N'I22',  "
      "Null,2,  Null, 0)");
}

TEST_F(MasterValuesTest, BlanksOfATextStay) {
  master.set("CG44_CONTO_CG24", " ").set("CG44_CODPAG_CG62", "P  ");
  expectCopies(
      "10, 0, 100, 5001, 3, N' ', N'R240', N'P  ', 15, 1005, 3200, 0, 7, N'IT', N'I22', 91, 2, 88, "
      "1)",
      "30, 0, 100, 5001, 3,  Null, Null, Null, Null, Null, Null, 0, 7, N'IT', N'I22',  Null,2,  "
      "Null, 0)");
}

TEST_F(MasterValuesTest, ExactDecimalsKeepTheirScale) {
  master.set("CG44_GRUPPO_CG10", *Decimal::parse("3.00"));
  master.set("CG44_IDMEDIA_CG99", *Decimal::parse("12345678901234567890.50"));
  expectCopies(
      "10, 0, 100, 5001, 3.00, N'C240', N'R240', N'P60', 15, 1005, 3200, 0, 7, N'IT', N'I22', 91, "
      "2, 12345678901234567890.50, 1)",
      "30, 0, 100, 5001, 3.00,  Null, Null, Null, Null, Null, Null, 0, 7, N'IT', N'I22',  Null,2,  "
      "Null, 0)");
}

class AgentTest : public DuplicationTest {
 protected:
  /// The agent that the full copy is given.
  std::string written() {
    script();
    service.DuplicaCliFor();
    const std::string insert = lines("INSERT INTO CG44_CLIFOR").at(0);
    const std::string before = "N'I22', ";
    const std::size_t start = insert.find(before) + before.size();
    return insert.substr(start, insert.find(", 2, 88, 1)") - start);
  }
};

TEST_F(AgentTest, IsTranslatedIntoTheMainCompanysAgent) {
  EXPECT_EQ(written(), "91");
  expectOnly(" SELECT",
             " SELECT     DST.MG17_IDAGENTE AS IDAGENTE FROM       MG17_AGENTI AS SRC WITH(NOLOCK) "
             "INNER JOIN MG17_AGENTI AS DST WITH(NOLOCK)         ON DST.MG17_DITTA_CG18 = 10       "
             " AND DST.MG17_ANAGEN_CG16 = SRC.MG17_ANAGEN_CG16 WHERE      SRC.MG17_IDAGENTE = 33");
}

TEST_F(AgentTest, IsNullWithoutACounterpart) {
  connection->answerPrefix(" SELECT     DST", rowSet({"IDAGENTE"}, {}));
  EXPECT_EQ(written(), "Null");
}

TEST_F(AgentTest, IsNullWhenTheCounterpartHasNoIdentifier) {
  connection->answerPrefix(" SELECT     DST", rowSet({"IDAGENTE"}, {kNull}));
  EXPECT_EQ(written(), "Null");
}

TEST_F(AgentTest, OfSeveralCounterpartsIsTheFirst) {
  connection->answerPrefix(" SELECT     DST", rowSet({"IDAGENTE"}, {51, 52}));
  EXPECT_EQ(written(), "51");
}

TEST_F(AgentTest, IsNotLookedForWhenNotGiven) {
  for (const Variant& missing : {Variant{kNull}, Variant{""}}) {
    connection->operations.clear();
    master.set("CG44_IDAGENTE_MG17", missing);
    EXPECT_EQ(written(), "Null");
    EXPECT_TRUE(lines(" SELECT").empty());
  }
}

}  // namespace
}  // namespace azcoll::test
