#include "unit/component/fixture.h"

namespace azcoll::testing {
namespace {

const std::string kIntermediaryInsert =
    "INSERT INTO CG40_ANADITTAINTER (CG40_DITTA_CG18, CG40_TIPOCF, CG40_INTERMEDIO, CG40_DESCR, "
    "CG40_IDMEDIA_CG99) VALUES (";
const std::string kBranchInsert =
    "INSERT INTO CG31_ANADITTASEDI (CG31_DITTA_CG18, CG31_CODICE, CG31_INDIRIZZO, CG31_CAP, "
    "CG31_CITTA, CG31_PROV, CG31_IDMEDIA_CG99) VALUES (";

std::string intermediary(const std::string& ditta, const std::string& kind = "0") {
  return "SELECT * FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = " + ditta +
         " AND CG40_TIPOCF = " + kind + " AND CG40_INTERMEDIO = 7";
}
std::string branch(const std::string& ditta) {
  return "SELECT * FROM CG31_ANADITTASEDI WHERE CG31_DITTA_CG18 = " + ditta +
         " AND CG31_CODICE = 3";
}

class Prerequisites : public ComponentTest {
 protected:
  void sourceIntermediary(const Variant& description, const Variant& media) const {
    connection->answer(
        intermediary("5"),
        rowSet({"CG40_DITTA_CG18", "CG40_TIPOCF", "CG40_INTERMEDIO", "CG40_DESCR",
                "CG40_IDMEDIA_CG99"},
               {std::int32_t{5}, std::int16_t{0}, std::int32_t{7}, description, media}));
  }
  void sourceBranch(const std::vector<Variant>& address, const Variant& media) const {
    std::vector<Variant> values{std::int32_t{5}, std::int32_t{3}};
    values.insert(values.end(), address.begin(), address.end());
    values.push_back(media);
    connection->answer(branch("5"),
                       rowSet({"CG31_DITTA_CG18", "CG31_CODICE", "CG31_INDIRIZZO", "CG31_CAP",
                               "CG31_CITTA", "CG31_PROV", "CG31_IDMEDIA_CG99"},
                              values));
  }
  void checkIntermediary() const {
    ServiceProbe::ControllaIntermedio(*service, "12", std::int32_t{0}, std::int32_t{7});
  }
  void checkBranch() const {
    ServiceProbe::ControllaSedi(*service, std::int32_t{12}, std::int32_t{3});
  }
};

TEST_F(Prerequisites, AnEmptyIntermediaryOrBranchAsksNothing) {
  for (const Variant& empty : {Variant{kNull}, Variant{}, Variant{""}}) {
    ServiceProbe::ControllaIntermedio(*service, std::int32_t{12}, std::int32_t{0}, empty);
    ServiceProbe::ControllaSedi(*service, std::int32_t{12}, empty);
  }
  EXPECT_TRUE(log().empty());
}

TEST_F(Prerequisites, WhatIsThereIsLeftAlone) {
  connection->answer(intermediary("12"), rowSet({"X"}, {std::int16_t{1}}));
  connection->answer(branch("12"), rowSet({"X"}, {std::int16_t{1}}));
  checkIntermediary();
  checkBranch();
  EXPECT_EQ(log(), (Lines{"Execute 1: " + intermediary("12"), "Execute 1: " + branch("12")}));
}

TEST_F(Prerequisites, AMissingIntermediaryIsCopiedFromTheCurrentCompany) {
  sourceIntermediary("Studio Rossi", std::int32_t{900});
  checkIntermediary();
  EXPECT_EQ(log(),
            (Lines{"Execute 1: " + intermediary("12"), "Execute 1: " + intermediary("5"),
                   "Execute 1: " + kIntermediaryInsert + "12, 0, 7, N'Studio Rossi', 900)"}));
}

TEST_F(Prerequisites, ApostrophesAreDoubledInTheIntermediary) {
  sourceIntermediary("Dell'Aquila 'd'oro'", kNull);
  checkIntermediary();
  EXPECT_EQ(log().back(),
            "Execute 1: " + kIntermediaryInsert + "12, 0, 7, N'Dell''Aquila ''d''oro''', Null)");
}

TEST_F(Prerequisites, EmptyValuesOfTheIntermediaryAreNull) {
  for (const Variant& empty : {Variant{kNull}, Variant{}, Variant{""}}) {
    sourceIntermediary(empty, empty);
    checkIntermediary();
    EXPECT_EQ(log().back(), "Execute 1: " + kIntermediaryInsert + "12, 0, 7, Null, Null)");
  }
}

TEST_F(Prerequisites, TheKindOfTheIntermediaryIsAsPassed) {
  connection->answer(intermediary("12", "1"), rowSet({"X"}, {std::int16_t{1}}));
  ServiceProbe::ControllaIntermedio(*service, std::int32_t{12}, std::int32_t{1}, std::int32_t{7});
  EXPECT_EQ(log().front(), "Execute 1: " + intermediary("12", "1"));
}

TEST_F(Prerequisites, AMissingBranchIsCopiedFromTheCurrentCompany) {
  sourceBranch({"Via dell'Arco 3", "06012", "Città", "PG"}, std::int32_t{31});
  checkBranch();
  EXPECT_EQ(log(), (Lines{"Execute 1: " + branch("12"), "Execute 1: " + branch("5"),
                          "Execute 1: " + kBranchInsert +
                              "12, 3, N'Via dell''Arco 3', N'06012', N'Città', N'PG', 31)"}));
}

TEST_F(Prerequisites, EmptyValuesOfTheBranchAreNullEachOnItsOwn) {
  sourceBranch({kNull, "", "Sant'Agata", Variant{}}, kNull);
  checkBranch();
  EXPECT_EQ(log().back(),
            "Execute 1: " + kBranchInsert + "12, 3, Null, Null, N'Sant''Agata', Null, Null)");
}

TEST_F(Prerequisites, AFailureNamesItsRoutineAndReachesTheCaller) {
  connection->fail("SELECT * FROM CG40_ANADITTAINTER", Failure::Provider, "Tabella assente");
  connection->fail("SELECT * FROM CG31_ANADITTASEDI", Failure::Own, "Guasto");
  EXPECT_THROW(checkIntermediary(), Error);
  EXPECT_EQ(shown(service->Errore), "'Tabella assente in ControllaIntermedio'");
  EXPECT_THROW(checkBranch(), Error);
  EXPECT_EQ(shown(service->Errore), "'Guasto in ControllaSedi'");
}

TEST_F(Prerequisites, ARowThatTheSourceLacksIsAFailureWithoutAnInsertion) {
  EXPECT_THROW(checkIntermediary(), std::exception);
  EXPECT_TRUE(service->Errore.text().ends_with(" in ControllaIntermedio"));
  EXPECT_THROW(checkBranch(), std::exception);
  EXPECT_TRUE(service->Errore.text().ends_with(" in ControllaSedi"));
  EXPECT_TRUE(log({"Execute 1: INSERT"}).empty());
}

TEST_F(Prerequisites, AnAgentOrACompanyThatIsEmptyAsksNothing) {
  for (const Variant& empty : {Variant{kNull}, Variant{}, Variant{""}}) {
    EXPECT_EQ(shown(ServiceProbe::AgenteCollegato(*service, empty, std::int32_t{10})), "''");
    EXPECT_EQ(shown(ServiceProbe::AgenteCollegato(*service, std::int32_t{501}, empty)), "''");
  }
  EXPECT_TRUE(log().empty());
}

TEST_F(Prerequisites, TheAgentIsSearchedThroughItsRegistryEntry) {
  const std::string text =
      " SELECT     DST.MG17_IDAGENTE AS IDAGENTE FROM       MG17_AGENTI AS SRC WITH(NOLOCK) INNER "
      "JOIN MG17_AGENTI AS DST WITH(NOLOCK)         ON DST.MG17_DITTA_CG18 = 10        AND "
      "DST.MG17_ANAGEN_CG16 = SRC.MG17_ANAGEN_CG16 WHERE      SRC.MG17_IDAGENTE = 501";
  connection->answer(text, rowSet({"IDAGENTE"}, {std::int32_t{510}}));
  EXPECT_EQ(shown(ServiceProbe::AgenteCollegato(*service, std::int32_t{501}, "10")), "Int32 510");
  EXPECT_EQ(log(), (Lines{"Execute 1: " + text}));
  connection->answer(text, rowSet({"IDAGENTE"}, {}));
  EXPECT_EQ(shown(ServiceProbe::AgenteCollegato(*service, std::int32_t{501}, "10")), "''");
  connection->answer(text, rowSet({"IDAGENTE"}, {kNull}));
  EXPECT_EQ(shown(ServiceProbe::AgenteCollegato(*service, std::int32_t{501}, "10")), "''");
}

TEST_F(Prerequisites, AFailingSearchForTheAgentReachesTheCaller) {
  connection->fail(" SELECT", Failure::Provider, "Tabella assente");
  EXPECT_THROW(std::ignore = ServiceProbe::AgenteCollegato(*service, std::int32_t{501}, "10"),
               Error);
}

// The document numbering.

TEST_F(Prerequisites, EveryCompanyButTheCurrentOneIsNumberedInTurn) {
  in().StringaConnessione = "Provider=x";
  ServiceProbe::NumeraCliFor(*service, "5", "10", "12, 15", std::int32_t{120});
  EXPECT_EQ(platform->numbered, (Lines{"901 12 3 '00' 0 30/09/2024 120 'Provider=x'",
                                       "901 15 3 '00' 0 30/09/2024 120 'Provider=x'",
                                       "901 10 3 '00' 0 30/09/2024 120 'Provider=x'"}));
  EXPECT_EQ(platform->mostNumberingsAlive, 1);
  EXPECT_EQ(platform->numberingsAlive, 0);
  expectSuccess();
}

TEST_F(Prerequisites, SuppliersAreNumberedAsAnotherDocumentType) {
  in().Pint_TipoCF = Fornitore;
  ServiceProbe::NumeraCliFor(*service, "5", "", "12", "0012");
  EXPECT_EQ(platform->numbered, (Lines{"902 12 3 '00' 0 30/09/2024 0012 ''"}));
}

TEST_F(Prerequisites, ZerosAndGapsInTheListAreSkipped) {
  ServiceProbe::NumeraCliFor(*service, "5", "10", "0,12,,15", std::int32_t{120});
  EXPECT_EQ(platform->numbered.size(), 3U);
  platform->numbered.clear();
  ServiceProbe::NumeraCliFor(*service, "5", "10", "", std::int32_t{120});
  EXPECT_EQ(platform->numbered.size(), 1U);
  platform->numbered.clear();
  ServiceProbe::NumeraCliFor(*service, "5", "", "", std::int32_t{120});
  ServiceProbe::NumeraCliFor(*service, "5", "", "0", std::int32_t{120});
  EXPECT_TRUE(platform->numbered.empty());
  expectSuccess();
}

TEST_F(Prerequisites, AFailingStatusIsReportedAndTheNextCompanyFollows) {
  platform->numberingStatus = [](const NumerazioneDocumenti& numbering) {
    return numbering.Ditta.toInt64() == 10 ? 0
                                           : -static_cast<std::int32_t>(numbering.Ditta.toInt64());
  };
  ServiceProbe::NumeraCliFor(*service, "5", "10", "12, 15", std::int32_t{120});
  EXPECT_EQ(platform->numbered.size(), 3U);
  expectOutcome(99, "Errore in Pcls_NumDoc.ElaboraNumerazione - Stato: -15");
}

}  // namespace
}  // namespace azcoll::testing
