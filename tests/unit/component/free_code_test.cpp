#include "unit/component/fixture.h"

namespace azcoll::testing {
namespace {

std::string search(const std::string& list, const std::string& code,
                   const std::string& kind = "0") {
  return "SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 IN(" + list +
         ") AND CG44_TIPOCF = " + kind + " AND CG44_CLIFOR = " + code;
}
std::string lastNumber(const std::string& list, const std::string& type) {
  return "SELECT MAX(CG70_ULTNUMDOC) AS CG70_ULTNUMDOC FROM CG70_NUMERDOC WHERE CG70_DITTA_CG18 "
         "IN(" +
         list + ") AND CG70_SEZ_CG68 = '00' AND CG70_ANNO = 0AND CG70_TIPODOCINT = " + type;
}

class FreeCode : public ComponentTest {
 protected:
  FreeCode() {
    connection->answerPrefix("SELECT MAX(", rowSet({"CG70_ULTNUMDOC"}, {std::int32_t{9000}}));
  }
  void take(const std::string& list, const std::string& code, const std::string& kind = "0") const {
    connection->answer(search(list, code, kind),
                       rowSet({"CG44_CLIFOR"}, {static_cast<std::int32_t>(std::stoi(code))}));
  }
  bool isFree(Variant& code, const std::string& main = "10", const Variant& list = "12, 15",
              bool first = true) const {
    return ServiceProbe::CodiceCliForLibero(*service, "5", main, list, code, first);
  }
  [[nodiscard]] Lines statements() const {
    Lines texts;
    for (const Operation& operation : connection->operations) {
      texts.push_back(operation.sql);
    }
    return texts;
  }
};

TEST_F(FreeCode, AFreeCodeIsKeptAfterOneStatement) {
  for (const Variant& code : {Variant{std::int32_t{100}}, Variant{"0100"}}) {
    forget();
    Variant kept = code;
    EXPECT_TRUE(isFree(kept));
    EXPECT_EQ(shown(kept), shown(code));
    EXPECT_EQ(statements(), (Lines{search("12, 15, 10", code.text())}));
  }
  EXPECT_EQ(log().front(), "Execute 1: " + search("12, 15, 10", "0100"));
}

TEST_F(FreeCode, ATakenCodeIsCountedUpByOne) {
  take("12, 15, 10", "100");
  Variant code = std::int32_t{100};
  EXPECT_FALSE(isFree(code));
  EXPECT_EQ(shown(code), "Int32 101");
  EXPECT_EQ(statements(), (Lines{search("12, 15, 10", "100"), lastNumber("12, 15, 10, 5", "901"),
                                 search("12, 15, 10", "101")}));
}

TEST_F(FreeCode, TheLastNumberOfSuppliersIsAnotherDocumentType) {
  in().Pint_TipoCF = Fornitore;
  take("12, 15, 10", "100", "1");
  Variant code = std::int32_t{100};
  EXPECT_FALSE(isFree(code));
  EXPECT_EQ(statements().at(1), lastNumber("12, 15, 10, 5", "902"));
}

TEST_F(FreeCode, SeveralTakenCodesAskForTheLastNumberOnce) {
  for (const char* const code : {"100", "101", "102"}) {
    take("12, 15, 10", code);
  }
  Variant code = std::int32_t{100};
  EXPECT_FALSE(isFree(code));
  EXPECT_EQ(shown(code), "Int32 103");
  EXPECT_EQ(statements().size(), 5U);
}

TEST_F(FreeCode, ThousandsOfTakenCodesAreCountedThrough) {
  for (int code = 100; code < 20100; ++code) {
    take("12, 15, 10", std::to_string(code));
  }
  Variant code = std::int32_t{100};
  EXPECT_FALSE(isFree(code));
  EXPECT_EQ(shown(code), "Int32 20100");
}

TEST_F(FreeCode, CodesPastTheRangeOfTheirKindWiden) {
  for (const char* const code : {"32767", "32768"}) {
    take("12, 15, 10", code);
  }
  Variant code = std::int16_t{32767};
  EXPECT_FALSE(isFree(code));
  EXPECT_TRUE(sameValue(code, std::int32_t{32769})) << shown(code);
}

TEST_F(FreeCode, ACodeGivenAsTextBecomesANumber) {
  take("12, 15, 10", "100");
  Variant code = "100";
  EXPECT_FALSE(isFree(code));
  EXPECT_TRUE(sameValue(code, std::int32_t{101})) << shown(code);
}

TEST_F(FreeCode, WithoutAMainCompanyTheListIsTheLinkedOnes) {
  Variant code = std::int32_t{100};
  take("12, 15", "100");
  EXPECT_FALSE(isFree(code, ""));
  EXPECT_EQ(statements(), (Lines{search("12, 15", "100"), lastNumber("12, 15, 5", "901"),
                                 search("12, 15", "101")}));
}

TEST_F(FreeCode, WithoutLinkedCompaniesTheListIsTheMainOne) {
  Variant code = std::int32_t{100};
  take("10", "100");
  EXPECT_FALSE(isFree(code, "10", ""));
  EXPECT_EQ(statements(),
            (Lines{search("10", "100"), lastNumber("10, 5", "901"), search("10", "101")}));
}

TEST_F(FreeCode, TheMainCompanysOwnCodeIsNotTakenByItself) {
  Variant code = std::int32_t{100};
  EXPECT_TRUE(ServiceProbe::CodiceCliForLibero(*service, "10", "10", "5, 12", code, true));
  EXPECT_EQ(statements(), (Lines{search("5, 12", "100")}));
  forget();
  take("5, 12", "100");
  EXPECT_FALSE(ServiceProbe::CodiceCliForLibero(*service, "10", "10", "5, 12", code, true));
  EXPECT_EQ(statements(), (Lines{search("5, 12", "100"), lastNumber("5, 12, 10", "901"),
                                 search("5, 12", "101")}));
}

TEST_F(FreeCode, ALaterCallNeitherAddsTheMainCompanyNorAsksForTheLastNumber) {
  Variant code = std::int32_t{100};
  take("12, 15", "100");
  EXPECT_FALSE(isFree(code, "10", "12, 15", false));
  EXPECT_EQ(shown(code), "Int32 101");
  EXPECT_EQ(statements(), (Lines{search("12, 15", "100"), search("12, 15", "101")}));
}

TEST_F(FreeCode, ARowWithoutACodeTakesNothing) {
  for (const Variant& empty : {Variant{kNull}, Variant{""}}) {
    connection->answer(search("12, 15, 10", "100"), rowSet({"CG44_CLIFOR"}, {empty}));
    Variant code = std::int32_t{100};
    EXPECT_TRUE(isFree(code)) << shown(empty);
  }
}

TEST_F(FreeCode, AFailingLastNumberIsSkipped) {
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    take("12, 15, 10", "100");
    connection->fail("SELECT MAX(", failure, "rotto");
    Variant code = std::int32_t{100};
    EXPECT_FALSE(isFree(code));
    EXPECT_EQ(shown(code), "Int32 101");
    expectSuccess();
  }
}

TEST_F(FreeCode, AFailingSearchIsSkippedAndEnds) {
  connection->fail("SELECT CG44_CLIFOR", Failure::Provider, "rotto");
  Variant code = std::int32_t{100};
  std::ignore = isFree(code);
  expectSuccess();
  EXPECT_LT(statements().size(), 5U);
}

// Counting up is impossible: the search must end all the same.
TEST_F(FreeCode, ATakenCodeThatIsNoNumberEndsTheSearch) {
  connection->answerPrefix("SELECT CG44_CLIFOR", rowSet({"CG44_CLIFOR"}, {"ABC"}));
  for (const Variant& stuck : {Variant{"ABC"}, Variant{kNull}, Variant{""}}) {
    forget();
    Variant code = stuck;
    std::ignore = isFree(code);
    EXPECT_LT(statements().size(), 10U) << shown(stuck);
  }
}

}  // namespace
}  // namespace azcoll::testing
