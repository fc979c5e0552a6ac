// Reading the activities of the example companies.

#include "scenarios/activity_database.h"

namespace azcoll::test {
namespace {

class ActivityQuery : public ActivityDatabase {
 protected:
  Lines codes() {
    service.RecordsetAttivitaCollegate();
    expectState(0);
    return column(*out().Grst_AttivitaCollegate, "CG86_CODATTIVITA");
  }
  std::string text() {
    service.StringaSQLAttivitaCollegate();
    return out().GstrSQL_AttivitaCollegate;
  }
};

TEST_F(ActivityQuery, ShowsTheOwnActivitiesFirstAndTheMainOneBeforeTheOthers) {
  ask(10, 2024);
  EXPECT_EQ(codes(), (Lines{"10", "1001", "1002", "1201"}));
  ask(12, 2024);
  EXPECT_EQ(codes(), (Lines{"12", "1201", "10", "1001", "1002"}));
  ask(40, 2024);
  EXPECT_EQ(codes(), (Lines{"4001", "40", "4002", "4003"}));
}

TEST_F(ActivityQuery, HandsOutTheFirstRowAndStaysOnIt) {
  ask(40, 2024);
  service.RecordsetAttivitaCollegate();
  EXPECT_TRUE(sameValue(out().IndTipoCont, 0));
  EXPECT_TRUE(sameValue(out().CodiceAttività, 4001));
  EXPECT_EQ(out().DescrAttività, Variant{"Agriturismo"});
  EXPECT_TRUE(sameValue(out().IdAttività, 12));
  EXPECT_TRUE(
      sameValue(out().Grst_AttivitaCollegate->fields().item("CG86_IDATTIVITA").value(), 12));
}

TEST_F(ActivityQuery, TheMainActivityIsComputedForMainCompaniesOnly) {
  ask(10, 2025);
  service.RecordsetAttivitaCollegate();
  Recordset& found = *out().Grst_AttivitaCollegate;
  EXPECT_EQ(column(found, "CG86_CODATTIVITA"), (Lines{"10", "1201"}));
  // Company 12 is linked in 2025, never main.
  EXPECT_EQ(column(found, "ATTIVITAPRINCIPALE"), (Lines{"1", "0"}));
}

TEST_F(ActivityQuery, NamesTheYearAndTheYearToDuplicate) {
  ask(40, 2025);
  in().AnnoSolareDaDuplicare = 2024;
  EXPECT_EQ(codes(), (Lines{"4001", "40", "4002", "4003", "4001", "40"}));
  in().AnnoSolareDaDuplicare = {};
  EXPECT_NE(text().find(" AND CG86_AZIENDECOLL.CG86_ANNOIVA IN(2025, 0)\r\n"), std::string::npos);
}

TEST_F(ActivityQuery, LeavesTheYearOutWhenItIsBelowZero) {
  ask(40, -1);
  EXPECT_EQ(text().find("CG86_ANNOIVA IN("), std::string::npos);
}

TEST_F(ActivityQuery, AYearOfZeroIsNoYear) {
  ask(40, 0);
  in().DataInizioElaborazione = "30/06/2024";
  EXPECT_NE(text().find("CG86_ANNOIVA IN(2024, 0)"), std::string::npos);
}

TEST_F(ActivityQuery, FiltersByCompanyCodeIdentityAndMainActivity) {
  ask(10, 2024);
  in().MultiAziendaEscludiCollegate = true;
  EXPECT_EQ(codes(), (Lines{"10", "1001", "1002"}));
  in().MultiAziendaEscludiCollegate = false;
  in().SelezionaAttivitàSingolaAzienda = true;
  EXPECT_EQ(codes(), (Lines{"10", "1001", "1002"}));
  in().SelezionaAttivitàSingolaAzienda = false;
  in().CodiceAttività = 1201;
  EXPECT_EQ(codes(), (Lines{"1201"}));
  in().CodiceAttività = "";
  in().IdAttività = 6;
  EXPECT_EQ(codes(), (Lines{"1002"}));
  in().IdAttività = kNull;
  in().SelezionaAttivitàPrincipale = true;
  EXPECT_EQ(codes(), (Lines{"10"}));
}

TEST_F(ActivityQuery, ACallersColumnsAreOrderedByTheComputedMainActivity) {
  ask(10, 2024);
  in().StrSelectSQLAttività =
      "CG86_CODATTIVITA, CG86_INDTIPOCONT, CG96_DESCRATTIVITA, CG86_IDATTIVITA";
  EXPECT_EQ(codes(), (Lines{"10", "1001", "1002", "1201"}));
  EXPECT_EQ(out().Grst_AttivitaCollegate->fields().count(), 4U);
  EXPECT_NE(text().find(" THEN CG86_AZIENDECOLL.ATTIVITAPRINCIPALE ELSE -1 END DESC"),
            std::string::npos);
  EXPECT_TRUE(text().starts_with(" SELECT CG86_CODATTIVITA, CG86_INDTIPOCONT,"));
}

TEST_F(ActivityQuery, TheRegistryAloneShowsActivitiesThatNoYearUses) {
  ask(10, 2024);
  in().SelezionaSoloAnagraficheAttività = true;
  service.RecordsetAttivitaCollegate();
  expectState(0);
  Lines found = column(*out().Grst_AttivitaCollegate, "CG96_CODATTIVITA");
  std::ranges::sort(found);
  EXPECT_EQ(found, (Lines{"10", "1001", "1002", "1099"}));
  EXPECT_TRUE(out().CodiceAttività.isEmpty());
  in().CodiceAttività = 1099;
  service.RecordsetAttivitaCollegate();
  EXPECT_EQ(column(*out().Grst_AttivitaCollegate, "CG96_DESCRATTIVITA"),
            (Lines{"Attività cessata"}));
  EXPECT_EQ(text().find("ORDER BY"), std::string::npos);
}

TEST_F(ActivityQuery, DecodesWithTheCompanysOwnParametersBeforeTheGeneralOnes) {
  ask(10, 2024);
  in().Pbol_AggiungiCampiDecodificheAttività = true;
  EXPECT_EQ(codes(), (Lines{"10", "1001", "1002", "1201"}));
  Recordset& found = *out().Grst_AttivitaCollegate;
  EXPECT_EQ(column(found, "CG38_PERCACCIVA"), (Lines{"97.00", "97.00", "97.00", "88.00"}));
  EXPECT_EQ(column(found, "CG38_GGCALACCIVA"), (Lines{"15", "15", "15", "25"}));
  EXPECT_EQ(column(found, "RAGSOCDITTA").back(), "Gamma Città di Castello S.r.l.");
  EXPECT_EQ(column(found, "DESCRCODIVAPREF"),
            (Lines{"Aliquota 22%", "Aliquota 4%", "", "IVA ridotta"}));
  EXPECT_EQ(column(found, "DESCRCODIVA2"), (Lines{"Aliquota 4%", "", "", ""}));
}

TEST_F(ActivityQuery, DecodesTheRegistryAloneThroughItsOwnCompany) {
  ask(12, 2024);
  in().SelezionaSoloAnagraficheAttività = true;
  in().Pbol_AggiungiCampiDecodificheAttività = true;
  service.RecordsetAttivitaCollegate();
  expectState(0);
  EXPECT_EQ(column(*out().Grst_AttivitaCollegate, "CG38_GGCALACCIVA"), (Lines{"25", "25"}));
  EXPECT_EQ(column(*out().Grst_AttivitaCollegate, "DESCRCODIVAPREF"), (Lines{"", ""}));
}

TEST_F(ActivityQuery, TheSectionalRegistersAreTheNextResult) {
  ask(10, 2024);
  in().Pbol_ValorizzaRecordsetSezionali = true;
  service.RecordsetAttivitaCollegate();
  expectState(0);
  const std::shared_ptr<Recordset> registers = out().Grst_AttivitaCollegate->nextRecordset();
  ASSERT_NE(registers, nullptr);
  EXPECT_EQ(column(*registers, "CG32_SEZIONALE"), (Lines{"01", "02", "A "}));
  EXPECT_EQ(registers->recordCount(), 3);
  const Lines codes = column(*registers, "CG86_CODATTIVITA");
  EXPECT_EQ(codes[0], "1001");
  EXPECT_EQ(codes[1], "1002");
}

TEST_F(ActivityQuery, TheTextAloneOpensNoConnectionAndKeepsTheState) {
  in().Connessione = nullptr;
  ask(10, 2024);
  service.Stato = std::int16_t{99};
  EXPECT_NE(text(), "");
  expectState(99);
  EXPECT_TRUE(operations.empty());
}

TEST_F(ActivityQuery, AYearThatIsNoNumberIsRefusedAndNoEarlierTextIsRun) {
  ask(10, 2024);
  service.StringaSQLAttivitaCollegate();
  in().AnnoSolare = "duemila";
  service.StringaSQLAttivitaCollegate();
  expectState(99, "Tipo non corrispondente in StringaSQLAttivitaCollegate");
  operations.clear();
  service.RecordsetAttivitaCollegate();
  expectState(99);
  EXPECT_EQ(count("Open"), 0U);
  EXPECT_EQ(out().Grst_AttivitaCollegate, nullptr);
}

TEST_F(ActivityQuery, AnUnknownColumnOfTheCallerIsTheDatabasesRefusal) {
  ask(10, 2024);
  in().StrSelectSQLAttività = "CG86_COLORE";
  service.RecordsetAttivitaCollegate();
  expectFailure(" in RecordsetAttivitaCollegate");
}

TEST_F(ActivityQuery, ReadingSeedsAYearWithoutActivitiesFirst) {
  ask(20, 2024);
  EXPECT_EQ(codes(), (Lines{"20"}));
  EXPECT_EQ(out().DescrAttività, Variant{"Attività 20 (azienda 20)"});
  // Company 12 is in regime 1: nothing is made up for it.
  ask(12, 2023);
  EXPECT_EQ(codes(), Lines{});
}

}  // namespace
}  // namespace azcoll::test
