#include <string>
#include <vector>

#include "service_fixture.h"

namespace azcoll::test {
namespace {

class NumberingTest : public DuplicationTest {
 protected:
  [[nodiscard]] Lines companies() const {
    Lines list;
    for (const Numbering& numbering : platform->numberings) {
      list.push_back(numbering.Ditta.text());
    }
    return list;
  }
};

TEST_F(NumberingTest, ReceivesItsNineInputs) {
  service.CPInput->StringaConnessione = "Provider=prova";
  service.DuplicaCliFor();
  ASSERT_EQ(companies(), (Lines{"30", "40", "10"}));
  for (const Numbering& numbering : platform->numberings) {
    EXPECT_EQ(numbering.TipoDocumento, 901);
    EXPECT_EQ(numbering.Modo, 3);
    EXPECT_EQ(numbering.Sezione, "00");
    EXPECT_EQ(numbering.Anno, 0);
    EXPECT_EQ(numbering.Data, (Date{.year = 2024, .month = 3, .day = 15}));
    EXPECT_EQ(numbering.Codice, "100");
    EXPECT_EQ(numbering.Connessione, connection.get());
    EXPECT_EQ(numbering.StringaConnessione, "Provider=prova");
  }
}

TEST_F(NumberingTest, HasANewObjectForEveryElementAndReleasesItBeforeTheNext) {
  platform->numberingStates = {{"40", 7}};
  service.DuplicaCliFor();
  EXPECT_EQ(platform->numberingLife,
            (Lines{"new", "30", "released", "new", "40", "released", "new", "10", "released"}));
}

TEST_F(NumberingTest, GetsItsInputsInTheirOrder) {
  using enum NumerazioneDocumenti::Ingresso;
  group("10", {}, "");
  service.DuplicaCliFor();
  EXPECT_EQ(platform->inputs, (std::vector<NumerazioneDocumenti::Ingresso>{
                                  TipoDocumento, Ditta, Modo, Sezione, Anno, Data, Codice,
                                  Connessione, StringaConnessione}));
}

TEST_F(NumberingTest, GetsEachElementWithoutTheBlanksAroundIt) {
  group("10", {30, 40}, "  30 ,40,  50");
  service.DuplicaCliFor();
  Lines given;
  for (const Numbering& numbering : platform->numberings) {
    ASSERT_EQ(numbering.Ditta.kind(), Variant::Kind::Text);
    given.push_back(numbering.Ditta.text());
  }
  EXPECT_EQ(given, (Lines{"30", "40", "50", "10"}));
}

TEST_F(NumberingTest, LooksUpTodayOnce) {
  service.DuplicaCliFor();
  ASSERT_EQ(platform->numberings.size(), 3U);
  EXPECT_EQ(platform->todays, 1);
}

TEST_F(NumberingTest, OfASupplierIsOfItsOwnType) {
  service.CPInput->Pint_TipoCF = Fornitore;
  service.DuplicaCliFor();
  ASSERT_EQ(platform->numberings.size(), 3U);
  for (const Numbering& numbering : platform->numberings) {
    EXPECT_EQ(numbering.TipoDocumento, 902);
  }
}

TEST_F(NumberingTest, IncludesTheMainCompanyWhichCalls) {
  service.CPInput->Pvar_Ditta = std::int32_t{10};
  service.DuplicaCliFor();
  EXPECT_EQ(companies(), (Lines{"30", "40", "10"}));
}

TEST_F(NumberingTest, LeavesTheCallingLinkedCompanyOut) {
  service.DuplicaCliFor();
  for (const std::string& company : companies()) {
    EXPECT_NE(company, "20");
  }
}

TEST_F(NumberingTest, WithoutLinkedCompaniesIsForTheMainCompanyAlone) {
  group("10", {}, "");
  service.DuplicaCliFor();
  EXPECT_EQ(companies(), Lines{"10"});
}

TEST_F(NumberingTest, SkipsElementsThatAreZeroOrEmpty) {
  group("10", {30, 40}, "0,30,,40");
  service.DuplicaCliFor();
  EXPECT_EQ(companies(), (Lines{"30", "40", "10"}));
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
}

TEST_F(NumberingTest, FollowsTheListNotTheTargetRows) {
  group("10", {30}, "50, 60");
  service.DuplicaCliFor();
  EXPECT_EQ(companies(), (Lines{"50", "60", "10"}));
}

TEST_F(NumberingTest, AFailureIsReportedAndTheOthersAreNumberedAndCommitted) {
  platform->numberingStates = {{"30", 7}};
  service.DuplicaCliFor();
  EXPECT_EQ(companies(), (Lines{"30", "40", "10"}));
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(errore(), "Errore in Pcls_NumDoc.ElaboraNumerazione - Stato: 7");
  EXPECT_EQ(count("CommitTrans"), 1U);
  EXPECT_EQ(count("RollbackTrans"), 0U);
  EXPECT_EQ(connection->operations.back().name, "CommitTrans");
}

TEST_F(NumberingTest, TheLastFailureIsTheOneReported) {
  platform->numberingStates = {{"30", 7}, {"10", -12}};
  service.DuplicaCliFor();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_EQ(errore(), "Errore in Pcls_NumDoc.ElaboraNumerazione - Stato: -12");
}

}  // namespace
}  // namespace azcoll::test
