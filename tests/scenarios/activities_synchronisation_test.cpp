// Company data, activities and registry entries kept in step.

#include "scenarios/activity_database.h"

namespace azcoll::test {
namespace {

class ActivitySynchronisation : public ActivityDatabase {
 protected:
  Difference changesOf(void (CLSCO_AZIENDECOLL::*method)() noexcept) {
    const Lines before = activityPicture();
    (service.*method)();
    return difference(before, activityPicture());
  }
};

using Service = CLSCO_AZIENDECOLL;

TEST_F(ActivitySynchronisation, TheCompanysDataReachItsActivitiesAndItsRegistry) {
  ask(12, 2024);
  service.AggiornaAttività();
  expectState(0);
  EXPECT_EQ(
      rows("SELECT CG86_ANNOIVA, CG86_CODATTIVITA, CG86_INDBENIUS, CG86_PERCDETRIVA,"
           " CG86_PERCDETRRED, CG86_DATAINPLAFOND, CG86_CODICE_CG28, CG86_FLGIVAPER"
           " FROM CG86_AZIENDECOLL WHERE CG86_DITTACOLL_CG18 = 12"
           " ORDER BY CG86_ANNOIVA, CG86_CODATTIVITA"),
      (Lines{"2024|12|1|50.00|40.00|01/02/2024|22|1", "2024|1201|1|50.00|40.00|01/02/2024|22|1",
             "2025|1201|NULL|60.00|NULL|NULL|10|NULL"}));
  EXPECT_EQ(rows("SELECT CG96_CODATTIVITA, CG96_CODICE_CG6A, CG96_INDCATPART, CG96_FLGIVAEDIT,"
                 " CG96_INDAGRIC, CG96_DATASTPREGACQ FROM CG96_ANAGATTIVITA"
                 " WHERE CG96_DITTA_CG18 = 12 ORDER BY CG96_CODATTIVITA"),
            (Lines{"12|10.71.10|0|1|0|30/09/2024", "1201|10.71.10|0|1|0|NULL"}));
  EXPECT_EQ(count("BeginTrans"), 0U);
}

TEST_F(ActivitySynchronisation, OneActivityAloneTakesTheCompanysData) {
  ask(10, 2024);
  in().CodiceAttività = 1001;
  service.AggiornaAttività();
  expectState(0);
  EXPECT_EQ(rows("SELECT CG86_CODATTIVITA, CG86_PERCPRORATA FROM CG86_AZIENDECOLL"
                 " WHERE CG86_DITTACOLL_CG18 = 10 AND CG86_ANNOIVA = 2024 AND CG86_INDTIPO = 0"
                 " ORDER BY CG86_CODATTIVITA"),
            (Lines{"10|85.00", "1001|85.00", "1002|NULL"}));
}

TEST_F(ActivitySynchronisation, ACompanyWithoutActivitiesGetsThem) {
  ask(20, 2024);
  service.AggiornaAttività();
  expectState(0);
  EXPECT_EQ(rows("SELECT CG86_CODATTIVITA FROM CG86_AZIENDECOLL WHERE CG86_DITTACOLL_CG18 = 20"
                 " AND CG86_INDTIPO = 0"),
            (Lines{"20"}));
  EXPECT_EQ(statements(" UPDATE"), Lines{});
}

TEST_F(ActivitySynchronisation, TheRegisterDatesReachTheRegistry) {
  ask(10, 2024);
  service.AggiornaDateRegistriAnagraficaAttività();
  expectState(0);
  EXPECT_EQ(rows("SELECT COUNT(1) FROM CG96_ANAGATTIVITA WHERE CG96_DATASTPREGACQ = '20241130'"
                 " AND CG96_DATASTPREGVENGLOB = '20240929' AND CG96_ANNOLIQ = 2024"),
            (Lines{"4"}));
  ask(12, 2024);
  in().CodiceAttività = 1201;
  service.AggiornaDateRegistriAnagraficaAttività();
  EXPECT_EQ(rows("SELECT CG96_DATASTPREGUNICANAL FROM CG96_ANAGATTIVITA"
                 " WHERE CG96_DITTA_CG18 = 12 ORDER BY CG96_CODATTIVITA"),
            (Lines{"NULL", "31/08/2024"}));
}

TEST_F(ActivitySynchronisation, ACompanyWithoutRegistryEntryGetsOne) {
  ask(20, 2024);
  service.AggiornaDateRegistriAnagraficaAttività();
  expectState(0);
  EXPECT_EQ(rows("SELECT CG96_DATASTPREGACQ FROM CG96_ANAGATTIVITA WHERE CG96_DITTA_CG18 = 20"),
            (Lines{"31/07/2024"}));
}

TEST_F(ActivitySynchronisation, RegimeTwoIsNotTouchedFromTheCompanysSide) {
  ask(40, 2024);
  for (const auto method :
       {&Service::AggiornaAttività, &Service::AggiornaDateRegistriAnagraficaAttività}) {
    const Difference changes = changesOf(method);
    expectState(0);
    EXPECT_EQ(changes.gone, Lines{});
    EXPECT_EQ(changes.come, Lines{});
  }
}

TEST_F(ActivitySynchronisation, TheMainActivityOfTheNewestYearReachesTheCompany) {
  ask(40, 2025);
  in().CodiceAttività = 4001;
  service.AggiornaDatiGestionaliPerAttività();
  expectState(0);
  EXPECT_EQ(rows("SELECT CG25_PERCDETRIVA, CG25_INDTIPODEN, CG25_CODICE_CG28, CG25_FLGIVAQUATER"
                 " FROM CG25_ANADITTAGEST WHERE CG25_DITTA_CG18 = 40"),
            (Lines{"11.00|2|NULL|2"}));
}

TEST_F(ActivitySynchronisation, InRegimeTwoNeitherAnOlderYearNorAnotherActivityReachesTheCompany) {
  const auto expectNothing = [&](int year, int code) {
    ask(40, year);
    in().CodiceAttività = code;
    const Difference changes = changesOf(&Service::AggiornaDatiGestionaliPerAttività);
    expectState(0);
    EXPECT_EQ(changes.come, Lines{}) << year << " " << code;
  };
  expectNothing(2024, 4001);
  expectNothing(2025, 40);
}

TEST_F(ActivitySynchronisation, InTheOtherRegimesEverySelectedActivityReachesTheCompany) {
  ask(10, 2024);
  in().CodiceAttività = 1001;
  service.AggiornaDatiGestionaliPerAttività();
  expectState(0);
  EXPECT_EQ(rows("SELECT CG25_PERCDETRIVA, CG25_DATAINPLAFOND FROM CG25_ANADITTAGEST"
                 " WHERE CG25_DITTA_CG18 = 10"),
            (Lines{"75.25|01/03/2024"}));
}

TEST_F(ActivitySynchronisation, TheRegistryOfTheMainActivityReachesTheCompany) {
  ask(40, 2025);
  in().CodiceAttività = 4001;
  service.AggiornaDatiGestionaliPerAnagraficaAttività();
  expectState(0);
  EXPECT_EQ(rows("SELECT CG25_FLGIVAEDIT, CG25_INDAGRIC, CG25_INDCATPART, CG18_ATECOCOD_CG6A,"
                 " CG30_DATASTPREGACQ, CG30_ANNOLIQ, CG30_DATASTPLIQIVA FROM CG25_ANADITTAGEST"
                 " INNER JOIN CG18_ANADITTABASE ON CG18_DITTA = CG25_DITTA_CG18"
                 " INNER JOIN CG30_ANADITTADATE ON CG30_DITTA_CG18 = CG18_DITTA"
                 " WHERE CG18_DITTA = 40"),
            (Lines{"1|2|6|69.20.11|01/11/2024|2023|NULL"}));
}

TEST_F(ActivitySynchronisation, TheRegistryOfAnotherActivityChangesNothing) {
  ask(40, 2025);
  in().CodiceAttività = 40;
  EXPECT_EQ(changesOf(&Service::AggiornaDatiGestionaliPerAnagraficaAttività).come, Lines{});
  expectState(0);
  in().CodiceAttività = {};
  operations.clear();
  EXPECT_EQ(changesOf(&Service::AggiornaDatiGestionaliPerAnagraficaAttività).come, Lines{});
  EXPECT_TRUE(operations.empty());
}

TEST_F(ActivitySynchronisation, FailuresNameTheirMethod) {
  ask(10, 2024);
  in().CodiceAttività = "1 +";
  service.AggiornaAttività();
  expectFailure(" in AggiornaAttività");
  service.AggiornaDateRegistriAnagraficaAttività();
  expectFailure(" in AggiornaDateRegistriAnagraficaAttività");
  service.AggiornaDatiGestionaliPerAttività();
  expectFailure(" in AggiornaDatiGestionaliPerAttività");
  service.AggiornaDatiGestionaliPerAnagraficaAttività();
  expectFailure(" in AggiornaDatiGestionaliPerAnagraficaAttività");
}

}  // namespace
}  // namespace azcoll::test
