#include <stdexcept>

#include "configuration_fixture.h"

namespace azcoll::test {
namespace {

/// The user says Yes once, to a service that can show screens.
class ScreensTest : public ConfigurationTest {
 protected:
  ScreensTest() {
    missing(1);
    input().ActiveInterface = framework;
    platform->answers = {Answer::Yes};
  }
  /// A screen's whole life: the caller's framework object, its own members, and then it is shown.
  static Lines shown(Lines members) {
    members.insert(members.begin(), "ActiveInterface=object");
    members.emplace_back("shown");
    return members;
  }
  [[nodiscard]] Screen& screen() const { return *platform->created.at(0).second; }
  /// Values set, without the reads.
  [[nodiscard]] Lines sets() const {
    Lines found;
    for (const std::string& line : screen().log) {
      if (!line.starts_with("get ")) {
        found.push_back(line);
      }
    }
    return found;
  }
};

// ------------------------------------------------------------ links between companies

TEST_F(ScreensTest, AYesShowsTheScreenOfTheLinksThenCountsAnew) {
  platform->onShow = [this] { missing(0); };
  EXPECT_TRUE(service.ControllaDittaNonCollegata());
  ASSERT_EQ(platform->created.size(), 1U);
  EXPECT_EQ(platform->created.front().first, "AZCOLLUI.CLSCO_AZIENDECOLL");
  EXPECT_EQ(platform->shownThrough, std::vector<std::shared_ptr<Object>>{framework});
  const Lines done = steps();
  ASSERT_EQ(done.size(), 5U);
  EXPECT_EQ(done[1], "Prompt");
  EXPECT_EQ(done[2], linkStatement("2023"));
  EXPECT_EQ(done[3], "Show");
  EXPECT_EQ(done[4], done[0]);
  EXPECT_EQ(platform->prompts.size(), 1U);
  expectSilentSuccess();
}

TEST_F(ScreensTest, TheLinksOfTheYearBeforeAreOfferedForCopying) {
  linkedIn("2023");
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(screen().log,
            shown({"CodiceAzienda=20", "AnnoSolareDaDuplicare=2023", "get AnnoSolareDaDuplicare"}));
  EXPECT_EQ(input().AnnoSolare, Variant{std::int32_t{2024}});
}

TEST_F(ScreensTest, WithoutLinksInTheYearBeforeTheScreenGetsTheYearItself) {
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(screen().log, shown({"CodiceAzienda=20", "AnnoSolareDaDuplicare=",
                                 "get AnnoSolareDaDuplicare", "AnnoIva=2024"}));
  EXPECT_TRUE(screen().values["AnnoSolareDaDuplicare"].isEmpty());
}

TEST_F(ScreensTest, TheYearToDuplicateIsOfferedForCopyingUnasked) {
  input().AnnoSolareDaDuplicare = std::int32_t{2021};
  linkedIn("2021");
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(sets(), shown({"CodiceAzienda=20", "AnnoSolareDaDuplicare=2021"}));
  // The only look at a year's links is the one before the count.
  EXPECT_EQ(steps().front(), linkStatement("2021"));
  for (std::size_t step = 1; step < steps().size(); ++step) {
    EXPECT_EQ(steps()[step].find("SELECT * FROM CG86"), std::string::npos);
  }
}

TEST_F(ScreensTest, TheScreensOwnYearToDuplicateDecides) {
  linkedIn("2023");
  platform->screenAnswers["AnnoSolareDaDuplicare"] = "";
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(sets(), shown({"CodiceAzienda=20", "AnnoSolareDaDuplicare=2023", "AnnoIva=2024"}));
  platform->created.clear();
  platform->prompts.clear();
  platform->screenAnswers["AnnoSolareDaDuplicare"] = kNull;
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(sets(), shown({"CodiceAzienda=20", "AnnoSolareDaDuplicare=2023", "AnnoIva=2024"}));
}

TEST_F(ScreensTest, AScreenThatKnowsItsOwnYearToDuplicateGetsNoYear) {
  platform->screenAnswers["AnnoSolareDaDuplicare"] = std::int32_t{2020};
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(sets(), shown({"CodiceAzienda=20", "AnnoSolareDaDuplicare="}));
}

TEST_F(ScreensTest, TheYearBeforeIsCountedFromTheYearOfTheCall) {
  linkedIn("2018");
  for (const Variant& none : {Variant{}, Variant{kNull}, Variant{""}}) {
    input().AnnoSolare = none;
    input().DataInizioElaborazione = Date{.year = 2019, .month = 7, .day = 1};
    platform->created.clear();
    platform->prompts.clear();
    EXPECT_FALSE(service.ControllaDittaNonCollegata());
    EXPECT_EQ(sets(), shown({"CodiceAzienda=20", "AnnoSolareDaDuplicare=2018"}));
    EXPECT_EQ(input().AnnoSolare, none);
  }
  input().AnnoSolare = "2019";
  platform->created.clear();
  platform->prompts.clear();
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(sets(), shown({"CodiceAzienda=20", "AnnoSolareDaDuplicare=2018"}));
  EXPECT_EQ(input().AnnoSolare, Variant{"2019"});
}

TEST_F(ScreensTest, AYearBeforeThatCannotBeLookedUpIsNotOffered) {
  connection->fail("SELECT * FROM CG86", Failure::Provider, "Timeout expired");
  output().Gbol_DittaPrincipale = true;  // from an earlier call
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(sets(), shown({"CodiceAzienda=20", "AnnoSolareDaDuplicare=", "AnnoIva=2024"}));
  EXPECT_EQ(input().AnnoSolare, Variant{std::int32_t{2024}});
  expectState(99, "Timeout expired in ControllaDittaCollegata");
}

TEST_F(ScreensTest, AYearThatIsNoNumberHasNoYearBefore) {
  input().AnnoSolare = "duemila";
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(sets(), shown({"CodiceAzienda=20", "AnnoSolareDaDuplicare=", "AnnoIva=duemila"}));
  EXPECT_EQ(input().AnnoSolare, Variant{"duemila"});
}

TEST_F(ScreensTest, EveryYesShowsAFreshScreen) {
  platform->answers = {Answer::Yes, Answer::Yes, Answer::No};
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(platform->created.size(), 2U);
  EXPECT_EQ(platform->shownThrough.size(), 2U);
  EXPECT_EQ(platform->prompts.size(), 3U);
  expectSilentSuccess();
}

TEST_F(ScreensTest, ANoShowsNothing) {
  platform->answers = {Answer::No};
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
  EXPECT_TRUE(platform->created.empty());
}

TEST_F(ScreensTest, TheScreenIsReleasedWhenItWasShown) {
  for (const bool activity : {false, true}) {
    platform->created.clear();
    platform->prompts.clear();
    EXPECT_FALSE(activity ? service.ControllaAttivitaNonCollegata()
                          : service.ControllaDittaNonCollegata());
    EXPECT_EQ(platform->created.at(0).second.use_count(), 1);
  }
}

// ------------------------------------------------------------ activities of one company

TEST_F(ScreensTest, AYesShowsTheScreenOfTheActivitiesThenCountsAnew) {
  input().CodiceAttività = std::int32_t{4001};
  platform->onShow = [this] { missing(0); };
  EXPECT_TRUE(service.ControllaAttivitaNonCollegata());
  ASSERT_EQ(platform->created.size(), 1U);
  EXPECT_EQ(platform->created.front().first, "AZCOLLUI.CLSCO_ATTIVITACOLL");
  EXPECT_EQ(sets(), shown({"CodDitta=20", "AnnoSolareDaDuplicare=2024", "CodiceAttività=4001"}));
  EXPECT_EQ(platform->shownThrough, std::vector<std::shared_ptr<Object>>{framework});
  const Lines done = steps();
  ASSERT_EQ(done.size(), 4U);
  EXPECT_EQ(Lines(done.begin() + 1, done.begin() + 3), (Lines{"Prompt", "Show"}));
  EXPECT_EQ(done[3], done[0]);
  expectSilentSuccess();
}

TEST_F(ScreensTest, TheScreenOfTheActivitiesGetsTheYearOfTheCallEvenWhenAnotherIsDuplicated) {
  input().AnnoSolareDaDuplicare = std::int32_t{2021};
  EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
  EXPECT_EQ(sets(), shown({"CodDitta=20", "AnnoSolareDaDuplicare=2024", "CodiceAttività="}));
}

TEST_F(ScreensTest, TheScreenOfTheActivitiesNeverGetsAnotherYear) {
  platform->screenAnswers["AnnoSolareDaDuplicare"] = "";
  EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
  EXPECT_EQ(sets(), shown({"CodDitta=20", "AnnoSolareDaDuplicare=2024", "CodiceAttività="}));
}

// ------------------------------------------------------------ the caller's framework object

TEST_F(ScreensTest, EveryScreenGetsTheCallersFrameworkObjectItselfBeforeAnythingElse) {
  for (const bool activity : {false, true}) {
    platform->created.clear();
    platform->shownThrough.clear();
    platform->prompts.clear();
    EXPECT_FALSE(activity ? service.ControllaAttivitaNonCollegata()
                          : service.ControllaDittaNonCollegata());
    ASSERT_FALSE(screen().log.empty());
    EXPECT_EQ(screen().log.front(), "ActiveInterface=object");
    EXPECT_EQ(screen().log.back(), "shown");
    EXPECT_EQ(screen().values["ActiveInterface"].object(), framework);
    EXPECT_EQ(platform->shownThrough, std::vector<std::shared_ptr<Object>>{framework});
  }
}

// ------------------------------------------------------------ failures

TEST_F(ScreensTest, AScreenThatCannotBeCreatedIsAFailure) {
  platform->onCreate = [] { throw Error{"Oggetto non registrato"}; };
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  expectState(99, "Oggetto non registrato in ControllaDittaNonCollegata");
  platform->prompts.clear();
  EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
  expectState(99, "Oggetto non registrato in ControllaAttivitaNonCollegata");
}

TEST_F(ScreensTest, AScreenThatCannotBeShownIsAFailure) {
  platform->onShow = [] { throw std::runtime_error{"Finestra chiusa"}; };
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  expectState(99, "Finestra chiusa in ControllaDittaNonCollegata");
  EXPECT_EQ(platform->prompts.size(), 1U);
  platform->prompts.clear();
  EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
  expectState(99, "Finestra chiusa in ControllaAttivitaNonCollegata");
  EXPECT_EQ(platform->prompts.size(), 1U);
}

}  // namespace
}  // namespace azcoll::test
