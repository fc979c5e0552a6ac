// Activities at the edges: what stands on one side only, and calls that are made twice.

#include <tuple>

#include "scenarios/activity_database.h"

namespace azcoll::test {
namespace {

class ActivityEdges : public ActivityDatabase {
 protected:
  using Method = void (CLSCO_AZIENDECOLL::*)() noexcept;

  /// The second call finds done what the first one did.
  void expectTheSecondRunChangesNothing(Method method) {
    (service.*method)();
    expectState(0);
    const Lines once = activityPicture();
    (service.*method)();
    expectState(0);
    EXPECT_EQ(activityPicture(), once);
  }
  /// Company 31 has no VAT management data.
  void giveActivityWithoutManagementData() {
    run("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT,"
        " CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_PERCDETRIVA) VALUES"
        " (0, 2024, 0, 31, 31, 3101, 12.50)");
    run("INSERT INTO CG96_ANAGATTIVITA (CG96_DITTA_CG18, CG96_CODATTIVITA, CG96_DESCRATTIVITA,"
        " CG96_DATASTPREGACQ) VALUES (31, 3101, N'Caffè, tè e però', '20240131')");
    ask(31, 2024);
  }
};

// A row of a year without registry entry, and the other way round.

TEST_F(ActivityEdges, AnActivityWithoutRegistryEntryIsFoundButNotListed) {
  run("DELETE FROM CG96_ANAGATTIVITA WHERE CG96_DITTA_CG18 = 40 AND CG96_CODATTIVITA = 4003");
  ask(40, 2024);
  service.RecordsetAttivitaCollegate();
  expectState(0);
  EXPECT_EQ(column(*out().Grst_AttivitaCollegate, "CG86_CODATTIVITA"),
            (Lines{"4001", "40", "4002"}));
  in().CodiceAttività = 4003;
  service.GetCodiceAttività();
  expectState(0);
  EXPECT_TRUE(sameValue(out().CodiceAttività, 4003));
  EXPECT_TRUE(sameValue(out().DescrAttività, ""));
  EXPECT_TRUE(service.VerificaEsistenzaAttivita());
}

TEST_F(ActivityEdges, AnActivityWithoutRegistryEntryIsCopiedWithoutTheCarriedValue) {
  run("DELETE FROM CG96_ANAGATTIVITA WHERE CG96_DITTA_CG18 = 40 AND CG96_CODATTIVITA = 4003");
  run("UPDATE CG86_AZIENDECOLL SET CG86_INDCOMLETTINT = 7 WHERE CG86_DITTA_CG18 = 40"
      " AND CG86_ANNOIVA = 2024");
  ask(40, 2025);
  in().AnnoSolareDaDuplicare = 2024;
  service.DuplicaAttività();
  expectState(0);
  EXPECT_EQ(rows("SELECT CG86_CODATTIVITA, CG86_INDCOMLETTINT FROM CG86_AZIENDECOLL"
                 " WHERE CG86_ANNOIVA = 2025 AND CG86_DITTA_CG18 = 40 ORDER BY CG86_CODATTIVITA"),
            (Lines{"40|7", "4001|7", "4002|7", "4003|0"}));
}

TEST_F(ActivityEdges, ARegistryEntryWithoutActivityIsNoActivityOfTheYear) {
  ask(10, 2024);
  in().CodiceAttività = 1099;
  service.GetCodiceAttività();
  expectState(0);
  EXPECT_TRUE(out().CodiceAttività.isNull());
  // Its activity is made, the entry stays as it is.
  const Lines before = activityPicture();
  service.InserisciAttività();
  expectState(0);
  const Difference changes = difference(before, activityPicture());
  EXPECT_EQ(changes.gone, Lines{});
  EXPECT_EQ(ofTable(changes.come, "CG96_ANAGATTIVITA"), Lines{});
  EXPECT_EQ(ofTable(changes.come, "CG86_AZIENDECOLL").size(), 1U);
}

// A company without VAT management data.

TEST_F(ActivityEdges, WithoutManagementDataThereIsNothingToDecode) {
  giveActivityWithoutManagementData();
  in().MultiAziendaEscludiCollegate = true;
  service.RecordsetAttivitaCollegate();
  expectState(0);
  EXPECT_TRUE(sameValue(out().DescrAttività, "Caffè, tè e però"));
  in().Pbol_AggiungiCampiDecodificheAttività = true;
  service.RecordsetAttivitaCollegate();
  expectState(0);
  EXPECT_EQ(out().Grst_AttivitaCollegate->recordCount(), 0);
}

TEST_F(ActivityEdges, WithoutManagementDataARegisterHasTheActivityThatItNames) {
  giveActivityWithoutManagementData();
  run("INSERT INTO CG32_ANADITTAPSEZ (CG32_DITTA_CG18, CG32_ANNO, CG32_SEZIONALE,"
      " CG32_IDATTIVITA_CG86) VALUES (31, 2024, '01', NULL)");
  in().Sezionale = "01";
  service.GetCodiceAttivitàDaSezionale();
  expectState(0);
  EXPECT_TRUE(out().CodiceAttività.isNull());
  run("UPDATE CG32_ANADITTAPSEZ SET CG32_IDATTIVITA_CG86 = (SELECT MAX(CG86_IDATTIVITA) FROM"
      " CG86_AZIENDECOLL) WHERE CG32_DITTA_CG18 = 31");
  service.GetCodiceAttivitàDaSezionale();
  expectState(0);
  EXPECT_TRUE(sameValue(out().CodiceAttività, 3101));
  EXPECT_TRUE(sameValue(out().DescrAttività, "Caffè, tè e però"));
}

TEST_F(ActivityEdges, WithoutManagementDataThereIsNothingToKeepInStep) {
  giveActivityWithoutManagementData();
  in().CodiceAttività = 3101;
  const Lines before = activityPicture();
  for (const Method method :
       {&CLSCO_AZIENDECOLL::AggiornaAttività, &CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAttività,
        &CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAnagraficaAttività}) {
    (service.*method)();
    expectState(0);
    EXPECT_EQ(activityPicture(), before);
  }
  // The register dates are the company's, which has none.
  service.AggiornaDateRegistriAnagraficaAttività();
  expectState(0);
  EXPECT_EQ(rows("SELECT CG96_DESCRATTIVITA, CG96_DATASTPREGACQ FROM CG96_ANAGATTIVITA"
                 " WHERE CG96_DITTA_CG18 = 31"),
            (Lines{"Caffè, tè e però|NULL"}));
}

TEST_F(ActivityEdges, WithoutManagementDataAYearIsCopiedAllTheSame) {
  giveActivityWithoutManagementData();
  ask(31, 2026);
  in().AnnoSolareDaDuplicare = 2024;
  service.DuplicaAttività();
  expectState(0);
  EXPECT_EQ(rows("SELECT CG86_DITTACOLL_CG18, CG86_CODATTIVITA, CG86_PERCDETRIVA,"
                 " CG86_FLGATTIVITAPRINC FROM CG86_AZIENDECOLL WHERE CG86_ANNOIVA = 2026"),
            (Lines{"31|3101|12.50|1"}));
}

// Existence asks the check of the company's regime.

TEST_F(ActivityEdges, AMissingActivityIsAnsweredByTheCheckOfTheRegime) {
  in().CodiceAttività = 9999;
  // Over several companies the links of the year count, within one company the activity.
  for (const auto& [company, year, answer] :
       {std::tuple{10, 2024, true}, std::tuple{10, 2026, false}, std::tuple{40, 2024, false}}) {
    ask(company, year);
    EXPECT_EQ(service.VerificaEsistenzaAttivita(), answer) << company << " " << year;
    expectState(0);
  }
}

// The text of a deletion.

TEST_F(ActivityEdges, TheDeletionWithoutFilterCoversTheYearAndTheOneToDuplicate) {
  const auto left = [&] {
    return rows(
        "SELECT CG86_ANNOIVA, COUNT(1) FROM CG86_AZIENDECOLL WHERE CG86_INDTIPO = 0"
        " AND CG86_DITTACOLL_CG18 = 40 GROUP BY CG86_ANNOIVA ORDER BY CG86_ANNOIVA");
  };
  EXPECT_EQ(left(), (Lines{"2024|4", "2025|2"}));
  ask(40, 2025);
  service.StringaSQLEliminazioneAttività();
  run("DELETE FROM CG32_ANADITTAPSEZ");
  run(out().GstrSQL_AttivitaCollegate);
  EXPECT_EQ(left(), (Lines{"2024|4"}));
  in().AnnoSolareDaDuplicare = 2024;
  service.StringaSQLEliminazioneAttività();
  const Lines others = rows(
      "SELECT CG86_IDATTIVITA FROM CG86_AZIENDECOLL WHERE"
      " CG86_DITTACOLL_CG18 <> 40 ORDER BY CG86_IDATTIVITA");
  run(out().GstrSQL_AttivitaCollegate);
  EXPECT_EQ(rows("SELECT CG86_IDATTIVITA FROM CG86_AZIENDECOLL ORDER BY CG86_IDATTIVITA"), others);
}

// Once more.

TEST_F(ActivityEdges, InsertingTwiceInsertsOnce) {
  in().InserisciAttivitàDaPeriodoPrecedente = true;
  // A default activity, a copy of the latest year, a whole group.
  for (const auto& [company, year] : {std::pair{20, 2024}, std::pair{10, 2026}}) {
    for (const Method method :
         {&CLSCO_AZIENDECOLL::InserisciAttivitàDaPeriodoPrecedente,
          &CLSCO_AZIENDECOLL::InserisciAttività, &CLSCO_AZIENDECOLL::RecordsetAttivitaCollegate}) {
      ask(company, year);
      expectTheSecondRunChangesNothing(method);
    }
  }
  ask(12, 2026);
  in().AnnoSolareDaDuplicare = 2025;
  in().CodiceAttività = 1201;
  expectTheSecondRunChangesNothing(&CLSCO_AZIENDECOLL::InserisciAttività);
}

TEST_F(ActivityEdges, ARegisterAskedForTwiceSeedsItsYearOnce) {
  ask(20, 2024);
  in().Sezionale = "00";
  expectTheSecondRunChangesNothing(&CLSCO_AZIENDECOLL::GetCodiceAttivitàDaSezionale);
}

TEST_F(ActivityEdges, KeepingInStepTwiceChangesNothingMore) {
  ask(10, 2024);
  in().CodiceAttività = 1001;
  for (const Method method : {&CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAttività,
                              &CLSCO_AZIENDECOLL::AggiornaDatiGestionaliPerAnagraficaAttività,
                              &CLSCO_AZIENDECOLL::AggiornaAttività,
                              &CLSCO_AZIENDECOLL::AggiornaDateRegistriAnagraficaAttività}) {
    expectTheSecondRunChangesNothing(method);
  }
}

}  // namespace
}  // namespace azcoll::test
