// Which companies of the example lack their configuration, and what a Yes brings about.

#include <functional>
#include <map>

#include "scenarios/company_database.h"

namespace azcoll::test {
namespace {

class Framework final : public Object {};

/// Keeps what it is given.
class Screen final : public NamedMembers {
 public:
  void set(std::string_view member, const Variant& value) override {
    values_[std::string{member}] = value;
  }
  [[nodiscard]] Variant get(std::string_view member) override {
    return values_[std::string{member}];
  }

 private:
  std::map<std::string, Variant> values_;
};

/// A user who says Yes as often as told, and then No; `onShow` is what is done on the screen.
class User final : public Platform {
 public:
  int yes = 0;
  int asked = 0;
  std::function<void(NamedMembers&)> onShow = [](NamedMembers&) {};

  [[nodiscard]] std::shared_ptr<Connection> newConnection(std::string_view text) override {
    return newConnectionFor(text);
  }
  [[nodiscard]] Answer messageBox(std::string_view /*text*/, int /*style*/,
                                  std::string_view /*title*/) override {
    ++asked;
    return yes-- > 0 ? Answer::Yes : Answer::No;
  }
  [[nodiscard]] std::shared_ptr<NamedMembers> createObject(std::string_view /*progId*/) override {
    return std::make_shared<Screen>();
  }
  void show(NamedMembers& screen, const std::shared_ptr<Object>& activeInterface) override {
    EXPECT_NE(activeInterface, nullptr);
    EXPECT_EQ(screen.get("ActiveInterface").object(), activeInterface);
    onShow(screen);
  }
};

class Configuration : public CompanyDatabase {
 protected:
  Configuration() {
    checks.CPInput->Connessione = connection;
    checks.CPInput->ActiveInterface = std::make_shared<Framework>();
  }
  void ask(int company, const Variant& year) {
    checks.CPInput->Pvar_Ditta = company;
    checks.CPInput->AnnoSolare = year;
  }
  bool linksAreThere(int company, int year) {
    ask(company, year);
    const bool result = checks.ControllaDittaNonCollegata();
    expectSuccess();
    return result;
  }
  bool activitiesAreThere(int company, int year, const Variant& activity = {}) {
    ask(company, year);
    checks.CPInput->CodiceAttività = activity;
    const bool result = checks.ControllaAttivitaNonCollegata();
    expectSuccess();
    return result;
  }
  bool yearTouched(int company, int year) {
    ask(company, year);
    const bool result = checks.VerificaAnnoIvaEsercizioContabile();
    expectSuccess();
    return result;
  }
  void expectSuccess() {
    EXPECT_EQ(checks.Stato, Variant{std::int16_t{0}}) << checks.Errore.text();
  }

  std::shared_ptr<User> user = std::make_shared<User>();
  CLSCO_AZIENDECOLL checks{user};
};

TEST_F(Configuration, TheCompaniesOfAGroupAreConfiguredInItsYears) {
  for (const int company : {5, 10, 12, 15}) {
    EXPECT_TRUE(linksAreThere(company, 2024)) << company;
    EXPECT_TRUE(linksAreThere(company, 2025)) << company;
  }
  EXPECT_EQ(user->asked, 0);
  for (const int company : {5, 10, 12, 15}) {
    EXPECT_FALSE(linksAreThere(company, 2026)) << company;
  }
  EXPECT_EQ(user->asked, 4);
}

TEST_F(Configuration, AMainCompanyCountsByItsOwnActivityRows) {
  // Company 30 has one in 2024 only; that it has a linked company in 2025 does not count.
  EXPECT_TRUE(linksAreThere(30, 2024));
  EXPECT_FALSE(linksAreThere(30, 2025));
}

TEST_F(Configuration, ACompanyOfAnotherRegimeOrWithoutVatDataIsNeverAsked) {
  for (const int company : {20, 31, 40}) {
    EXPECT_TRUE(linksAreThere(company, 2030)) << company;
  }
  for (const int company : {5, 10, 20, 31}) {
    EXPECT_TRUE(activitiesAreThere(company, 2030)) << company;
  }
  EXPECT_EQ(user->asked, 0);
}

TEST_F(Configuration, TheActivitiesOfASingleCompanyAreLookedForByYearAndCode) {
  EXPECT_TRUE(activitiesAreThere(40, 2024));
  EXPECT_TRUE(activitiesAreThere(40, 2025));
  EXPECT_FALSE(activitiesAreThere(40, 2026));
  EXPECT_TRUE(activitiesAreThere(40, 2024, 4003));
  EXPECT_TRUE(activitiesAreThere(40, 2025, 4001));
  EXPECT_FALSE(activitiesAreThere(40, 2025, 4003));
}

TEST_F(Configuration, AYesLeadsToTheLinksThatTheUserEnters) {
  user->yes = 2;
  user->onShow = [this](NamedMembers& screen) {
    // The year before has links, so it is offered; the user copies it at the second attempt only.
    EXPECT_EQ(screen.get("AnnoSolareDaDuplicare").text(), "2025");
    EXPECT_EQ(screen.get("CodiceAzienda").text(), "5");
    if (user->asked == 2) {
      run("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT, "
          "CG86_DITTA_CG18, CG86_DITTACOLL_CG18) VALUES (0, 2026, 0, 10, 5)");
    }
  };
  EXPECT_TRUE(linksAreThere(5, 2026));
  EXPECT_EQ(user->asked, 2);
  EXPECT_EQ(checks.CPInput->AnnoSolare, Variant{2026});
}

TEST_F(Configuration, WithoutLinksInTheYearBeforeTheScreenGetsTheYearToEnter) {
  user->yes = 1;
  user->onShow = [](NamedMembers& screen) {
    EXPECT_TRUE(screen.get("AnnoSolareDaDuplicare").isEmpty());
    EXPECT_EQ(screen.get("AnnoIva").text(), "2030");
  };
  EXPECT_FALSE(linksAreThere(5, 2030));
  EXPECT_EQ(user->asked, 2);
}

TEST_F(Configuration, AYesLeadsToTheActivitiesThatTheUserEnters) {
  user->yes = 1;
  user->onShow = [this](NamedMembers& screen) {
    EXPECT_EQ(screen.get("CodDitta").text(), "40");
    EXPECT_EQ(screen.get("AnnoSolareDaDuplicare").text(), "2026");
    EXPECT_EQ(screen.get("CodiceAttività").text(), "4001");
    run("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT, "
        "CG86_DITTA_CG18, CG86_DITTACOLL_CG18, CG86_CODATTIVITA) VALUES (0, 2026, 0, 40, 40, "
        "4001)");
  };
  EXPECT_TRUE(activitiesAreThere(40, 2026, 4001));
  EXPECT_EQ(user->asked, 1);
}

TEST_F(Configuration, AYearToDuplicateWithoutLinksIsAnsweredUnasked) {
  checks.CPInput->AnnoSolareDaDuplicare = 2023;
  EXPECT_FALSE(linksAreThere(5, 2024));
  EXPECT_EQ(user->asked, 0);
  checks.CPInput->AnnoSolareDaDuplicare = 2025;
  EXPECT_TRUE(linksAreThere(5, 2024));
  EXPECT_FALSE(linksAreThere(5, 2026));
  EXPECT_EQ(user->asked, 1);
}

TEST_F(Configuration, AFinancialYearTouchesEveryCalendarYearThatItReaches) {
  // Company 20: July 2024 to June 2025. Company 40: November 2023 to February 2025.
  EXPECT_FALSE(yearTouched(20, 2023));
  EXPECT_TRUE(yearTouched(20, 2024));
  EXPECT_TRUE(yearTouched(20, 2025));
  EXPECT_FALSE(yearTouched(20, 2026));
  EXPECT_FALSE(yearTouched(40, 2022));
  EXPECT_TRUE(yearTouched(40, 2023));
  EXPECT_TRUE(yearTouched(40, 2024));
  EXPECT_TRUE(yearTouched(40, 2025));
  EXPECT_FALSE(yearTouched(40, 2026));
}

TEST_F(Configuration, AFinancialYearThatIsTheCalendarYearTouchesNoOther) {
  EXPECT_FALSE(yearTouched(15, 2023));
  EXPECT_TRUE(yearTouched(15, 2024));
  EXPECT_FALSE(yearTouched(15, 2025));
  EXPECT_FALSE(yearTouched(31, 2024));
}

}  // namespace
}  // namespace azcoll::test
