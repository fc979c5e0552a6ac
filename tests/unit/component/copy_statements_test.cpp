#include "unit/component/copies_fixture.h"

namespace azcoll::testing {
namespace {

class CopyStatements : public CopiesTest {
 protected:
  /// Text of the full copy after a run with a fresh log.
  [[nodiscard]] std::string fullCopy() const {
    forget();
    service->DuplicaCliFor();
    const Lines texts = inserts("CG44_CLIFOR");
    return texts.empty() ? "" : texts.front();
  }
  [[nodiscard]] std::string reducedCopy() const {
    forget();
    service->DuplicaCliFor();
    const Lines texts = inserts("CG44_CLIFOR");
    return texts.empty() ? "" : texts.back();
  }
  [[nodiscard]] std::string salesCopy() const {
    forget();
    service->DuplicaCliFor();
    const Lines texts = inserts("MG19_CLIFORVA");
    return texts.empty() ? "" : texts.front();
  }
};

const std::vector<Variant>& emptyValues() {
  static const std::vector<Variant> values{kNull, Variant{}, ""};
  return values;
}

TEST_F(CopyStatements, EmptyMasterValuesAreNull) {
  for (const Variant& empty : emptyValues()) {
    for (const char* const column :
         {"CG44_GRUPPO_CG10", "CG44_CONTO_CG24", "CG44_CONTOR_CG24", "CG44_CODPAG_CG62",
          "CG44_GGSCADFIX", "CG44_CODABI_CG12", "CG44_CODCAB_CG13", "CG44_TIPOCF_CG40",
          "CG44_INTERMEDIO_CG40", "CG44_CODICE_CG08", "CG44_CODICE_CG28", "CG44_IDAGENTE_MG17",
          "CG44_CODSEDE_CG31", "CG44_IDMEDIA_CG99"}) {
      set(column, empty);
    }
    EXPECT_EQ(fullCopy(),
              masterStatement("10, 0, 120, 3005, Null, Null, Null, Null, Null, Null, Null, Null, "
                              "Null, Null, Null, Null, Null, Null, 1"))
        << shown(empty);
    EXPECT_EQ(reducedCopy(),
              masterStatement("15, 0, 120, 3005, Null,  Null, Null, Null, Null, Null, Null, Null, "
                              "Null, Null, Null,  Null,Null,  Null, 0"))
        << shown(empty);
  }
}

TEST_F(CopyStatements, ZerosAndBlanksAreValues) {
  set("CG44_GRUPPO_CG10", std::int16_t{0});
  set("CG44_CONTO_CG24", " ");
  set("CG44_GGSCADFIX", std::int16_t{0});
  set("CG44_CODSEDE_CG31", std::int32_t{0});
  EXPECT_EQ(fullCopy(), masterStatement("10, 0, 120, 3005, 0, N' ', N'0401999', N'BB30', 0, 1030, "
                                        "14200, 0, 7, N'AT', N'E15', 510, 0, 808, 1"));
}

TEST_F(CopyStatements, ApostrophesAreNotDoubled) {
  set("CG44_CONTO_CG24", "L'Aquila");
  set("CG44_CODICE_CG08", "''");
  EXPECT_EQ(fullCopy(),
            masterStatement("10, 0, 120, 3005, 2, N'L'Aquila', N'0401999', N'BB30', 15, 1030, "
                            "14200, 0, 7, N'''', N'E15', 510, 3, 808, 1"));
}

TEST_F(CopyStatements, AccentsAndOtherLettersPassUnchanged) {
  set("CG44_CONTO_CG24", "Forlì è – 漢€");
  EXPECT_NE(fullCopy().find(", N'Forlì è – 漢€', "), std::string::npos);
}

TEST_F(CopyStatements, NumbersAreWrittenWithAllTheirDecimals) {
  set("CG44_GRUPPO_CG10", *Decimal::parse("2.50"));
  set("CG44_CODABI_CG12", *Decimal::parse("1030.0000"));
  set("CG44_CODCAB_CG13", *Decimal::parse("12345678901234567890123456789012345.678"));
  set("CG44_GGSCADFIX", std::int16_t{-3});
  EXPECT_EQ(fullCopy(),
            masterStatement("10, 0, 120, 3005, 2.50, N'0401120', N'0401999', N'BB30', -3, "
                            "1030.0000, 12345678901234567890123456789012345.678, 0, 7, N'AT', "
                            "N'E15', 510, 3, 808, 1"));
}

TEST_F(CopyStatements, ANumberInATextColumnIsQuotedAndATextInANumberColumnIsNot) {
  set("CG44_CODPAG_CG62", std::int32_t{60});
  set("CG44_CODABI_CG12", "01030");
  EXPECT_EQ(fullCopy(),
            masterStatement("10, 0, 120, 3005, 2, N'0401120', N'0401999', N'60', 15, 01030, 14200, "
                            "0, 7, N'AT', N'E15', 510, 3, 808, 1"));
}

TEST_F(CopyStatements, TheKeyComesFromTheRowAndTheActiveFlagIsFixed) {
  set("CG44_TIPOCF", std::int16_t{1});
  set("CG44_CLIFOR", std::int32_t{777});
  set("CG44_CODICE_CG16", std::int32_t{9});
  set("CG44_FLGATTIVO", std::int16_t{0});
  EXPECT_TRUE(fullCopy().find("VALUES (10, 1, 777, 9, 2,") != std::string::npos);
  EXPECT_TRUE(fullCopy().ends_with(", 808, 1)"));
  set("CG44_FLGATTIVO", std::int16_t{1});
  EXPECT_TRUE(reducedCopy().find("VALUES (15, 1, 777, 9, 2,") != std::string::npos);
  EXPECT_TRUE(reducedCopy().ends_with("3,  Null, 0)"));
}

TEST_F(CopyStatements, TheMappedAgentIsWrittenAsFound) {
  connection->answerPrefix(" SELECT     DST.MG17_IDAGENTE",
                           rowSet({"IDAGENTE"}, {std::int32_t{42}, std::int32_t{43}}));
  EXPECT_NE(fullCopy().find("N'E15', 42, 3, 808, 1)"), std::string::npos);
  connection->answerPrefix(" SELECT     DST.MG17_IDAGENTE", rowSet({"IDAGENTE"}, {kNull}));
  EXPECT_NE(fullCopy().find("N'E15', Null, 3, 808, 1)"), std::string::npos);
}

TEST_F(CopyStatements, AllSalesColumnsAreCopiedInOrder) {
  ASSERT_EQ(salesValues().size(), 65U);
  sales(salesValues());
  EXPECT_EQ(salesCopy(), salesStatement(salesValues()));
}

TEST_F(CopyStatements, TheOrderOfTheSourcesColumnsDoesNotMatter) {
  std::vector<SalesValue> reversed = salesValues();
  std::reverse(reversed.begin(), reversed.end());
  sales(reversed);
  EXPECT_EQ(salesCopy(), salesStatement(salesValues()));
}

TEST_F(CopyStatements, EmptySalesValuesAreNullButForTheTwoUntestedDates) {
  for (const Variant& empty : emptyValues()) {
    std::vector<SalesValue> row = salesValues();
    for (std::size_t i = 3; i < row.size(); ++i) {
      const bool untested = row[i].name == "MG19_DATACREAZ" || row[i].name == "MG19_DATAULTVAR";
      row[i].value = empty;
      row[i].written = untested ? "''" : "Null";
    }
    sales(row);
    EXPECT_EQ(salesCopy(), salesStatement(row)) << shown(empty);
    expectSuccess();
  }
}

TEST_F(CopyStatements, DatesGivenAsTextAreRead) {
  std::vector<SalesValue> row = salesValues();
  row[36].value = "5/4/2023";
  row[36].written = "'20230405'";
  row[44].value = "2023-04-05 10:11:12";
  row[44].written = "'20230405 10:11:12'";
  row[45].value = "mai";
  row[45].written = "''";
  row[46].value = "30/02/2023";
  row[46].written = "''";
  sales(row);
  EXPECT_EQ(salesCopy(), salesStatement(row));
  expectSuccess();
}

TEST_F(CopyStatements, ApostrophesInSalesTextsAreNotDoubled) {
  std::vector<SalesValue> row = salesValues();
  row[5].value = "L'Aquila";
  row[5].written = "N'L'Aquila'";
  sales(row);
  EXPECT_EQ(salesCopy(), salesStatement(row));
}

TEST_F(CopyStatements, AMissingSourceColumnIsAFailure) {
  std::vector<SalesValue> row = salesValues();
  row.erase(row.begin() + 11);
  sales(row);
  forget();
  service->DuplicaCliFor();
  EXPECT_EQ(shown(service->Stato), "Int16 99");
  EXPECT_TRUE(service->Errore.text().ends_with(" in DuplicaClifor")) << service->Errore.text();
  EXPECT_TRUE(inserts("MG19_CLIFORVA").empty());
}

}  // namespace
}  // namespace azcoll::testing
