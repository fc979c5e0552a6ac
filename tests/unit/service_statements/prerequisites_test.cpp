#include <string>
#include <vector>

#include "service_fixture.h"

namespace azcoll::test {
namespace {

class PrerequisitesTest : public DuplicationTest {
 protected:
  PrerequisitesTest() { group("10", {}, ""); }

  static std::string intermediaryRead(const std::string& company) {
    return "SELECT * FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = " + company +
           " AND CG40_TIPOCF = 0 AND CG40_INTERMEDIO = 7";
  }
  static std::string branchRead(const std::string& company) {
    return "SELECT * FROM CG31_ANADITTASEDI WHERE CG31_DITTA_CG18 = " + company +
           " AND CG31_CODICE = 2";
  }
  /// The intermediary exists in the source company only, with this description and media id.
  void intermediary(const Variant& description, const Variant& media) {
    connection->answerPrefix("SELECT * FROM CG40_ANADITTAINTER", rowSet({"X"}, {}));
    connection->answer(intermediaryRead("20"),
                       rowSet({"CG40_DITTA_CG18", "CG40_TIPOCF", "CG40_INTERMEDIO", "CG40_DESCR",
                               "CG40_IDMEDIA_CG99"},
                              {20, std::int16_t{0}, 7, description, media}));
  }
  /// The branch exists in the source company only.
  void branch(const Variant& address, const Variant& zip, const Variant& city,
              const Variant& province, const Variant& media) {
    connection->answerPrefix("SELECT * FROM CG31_ANADITTASEDI", rowSet({"X"}, {}));
    connection->answer(branchRead("20"),
                       rowSet({"CG31_DITTA_CG18", "CG31_CODICE", "CG31_INDIRIZZO", "CG31_CAP",
                               "CG31_CITTA", "CG31_PROV", "CG31_IDMEDIA_CG99"},
                              {20, std::int16_t{2}, address, zip, city, province, media}));
  }
  void expectIntermediary(const std::string& values) {
    service.DuplicaCliFor();
    expectOnly("INSERT INTO CG40",
               "INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF, CG40_INTERMEDIO, "
               "CG40_DESCR, CG40_IDMEDIA_CG99) VALUES (" +
                   values);
    expectSuccess();
  }
  void expectBranch(const std::string& values) {
    service.DuplicaCliFor();
    expectOnly("INSERT INTO CG31",
               "INSERT INTO CG31_ANADITTASEDI (CG31_DITTA_CG18, CG31_CODICE, CG31_INDIRIZZO, "
               "CG31_CAP, CG31_CITTA, CG31_PROV, CG31_IDMEDIA_CG99) VALUES (" +
                   values);
    expectSuccess();
  }
};

TEST_F(PrerequisitesTest, WhatExistsInTheTargetIsNotWritten) {
  service.DuplicaCliFor();
  EXPECT_EQ(lines("SELECT * FROM CG40"), Lines{intermediaryRead("10")});
  EXPECT_EQ(lines("SELECT * FROM CG31"), Lines{branchRead("10")});
  EXPECT_TRUE(lines("INSERT INTO CG40").empty());
  EXPECT_TRUE(lines("INSERT INTO CG31").empty());
}

TEST_F(PrerequisitesTest, WhatIsNotGivenIsNotLookedFor) {
  for (const Variant& missing : {Variant{kNull}, Variant{""}}) {
    connection->operations.clear();
    master.set("CG44_INTERMEDIO_CG40", missing).set("CG44_CODSEDE_CG31", missing);
    script();
    service.DuplicaCliFor();
    EXPECT_TRUE(lines("SELECT * FROM CG40").empty());
    EXPECT_TRUE(lines("SELECT * FROM CG31").empty());
    expectSuccess();
  }
}

TEST_F(PrerequisitesTest, CodeZeroIsLookedFor) {
  master.set("CG44_INTERMEDIO_CG40", std::int32_t{0}).set("CG44_CODSEDE_CG31", std::int32_t{0});
  script();
  service.DuplicaCliFor();
  EXPECT_EQ(lines("SELECT * FROM CG40").size(), 1U);
  EXPECT_EQ(lines("SELECT * FROM CG31").size(), 1U);
}

TEST_F(PrerequisitesTest, AMissingIntermediaryAndBranchAreCopiedInOrder) {
  intermediary("Rossi", 5);
  branch("Via Po 1", "10121", "Torino", "TO", 6);
  service.DuplicaCliFor();
  const Lines all = transcript();
  ASSERT_GT(all.size(), 12U);
  const std::string intermediaryCopy =
      "INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF, CG40_INTERMEDIO, CG40_DESCR, "
      "CG40_IDMEDIA_CG99) VALUES (10, 0, 7, N'Rossi', 5)";
  const std::string branchCopy =
      "INSERT INTO CG31_ANADITTASEDI (CG31_DITTA_CG18, CG31_CODICE, CG31_INDIRIZZO, CG31_CAP, "
      "CG31_CITTA, CG31_PROV, CG31_IDMEDIA_CG99) VALUES (10, 2, N'Via Po 1', N'10121', N'Torino', "
      "N'TO', 6)";
  EXPECT_EQ(Lines(all.begin() + 6, all.begin() + 12),
            (Lines{intermediaryRead("10"), intermediaryRead("20"), intermediaryCopy,
                   branchRead("10"), branchRead("20"), branchCopy}));
  expectSuccess();
}

TEST_F(PrerequisitesTest, ApostrophesOfADescriptionAreDoubled) {
  intermediary("L'Unità dell''Ovest", 5);
  expectIntermediary("10, 0, 7, N'L''Unità dell''''Ovest', 5)");
}

TEST_F(PrerequisitesTest, AMissingDescriptionAndMediaIdAreNull) {
  intermediary(kNull, kNull);
  expectIntermediary("10, 0, 7, Null, Null)");
}

TEST_F(PrerequisitesTest, AnEmptyDescriptionAndMediaIdAreNull) {
  intermediary("", "");
  expectIntermediary("10, 0, 7, Null, Null)");
}

TEST_F(PrerequisitesTest, ApostrophesOfAnAddressAreDoubled) {
  branch("Via dell'Orso 'A'", "0'1", "L'Aquila", "A'", 6);
  expectBranch("10, 2, N'Via dell''Orso ''A''', N'0''1', N'L''Aquila', N'A''', 6)");
}

TEST_F(PrerequisitesTest, MissingPartsOfAnAddressAreNull) {
  branch(kNull, "", kNull, "", kNull);
  expectBranch("10, 2, Null, Null, Null, Null, Null)");
}

TEST_F(PrerequisitesTest, EveryLinkedCompanyReceivesThem) {
  group("10", {30, 40}, "30, 40");
  intermediary("Rossi", kNull);
  branch("Via Po 1", kNull, kNull, kNull, kNull);
  service.DuplicaCliFor();
  Lines targets;
  for (const std::string& insert : lines("INSERT INTO CG")) {
    const std::size_t at = insert.find(" VALUES (") + 9;
    targets.push_back(insert.substr(12, 4) + " " + insert.substr(at, 2));
  }
  EXPECT_EQ(targets, (Lines{"CG40 10", "CG31 10", "CG44 10", "CG40 30", "CG31 30", "CG44 30",
                            "CG40 40", "CG31 40", "CG44 40"}));
  expectSuccess();
}

TEST_F(PrerequisitesTest, WithoutAMainCompanyNoAgentIsLookedFor) {
  group("", {30}, "30");
  service.DuplicaCliFor();
  EXPECT_TRUE(lines(" SELECT     DST").empty());
  const Lines copies = lines("INSERT INTO CG44_CLIFOR");
  ASSERT_FALSE(copies.empty());
  // The agent's place stands between the VAT code and the branch.
  EXPECT_NE(copies.front().find("N'I22', Null, 2, "), std::string::npos) << copies.front();
}

TEST_F(PrerequisitesTest, OneMissingInTheSourceTooEndsTheCallWithoutARollback) {
  for (const std::string table : {"CG40_ANADITTAINTER", "CG31_ANADITTASEDI"}) {
    connection->operations.clear();
    connection->answerPrefix("SELECT * FROM CG40_ANADITTAINTER", rowSet({"X"}, {1}));
    connection->answerPrefix("SELECT * FROM " + table, rowSet({"X"}, {}));
    service.DuplicaCliFor();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
    EXPECT_TRUE(errore().ends_with(" in DuplicaClifor")) << errore();
    EXPECT_TRUE(lines("INSERT").empty());
    EXPECT_EQ(count("CommitTrans") + count("RollbackTrans"), 0U);
  }
}

}  // namespace
}  // namespace azcoll::test
