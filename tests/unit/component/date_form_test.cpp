#include "unit/component/fixture.h"

namespace azcoll::testing {
namespace {

class DateForm : public ComponentTest {
 protected:
  [[nodiscard]] std::string form(const Variant& date) const {
    return shown(ServiceProbe::DataDB(*service, date));
  }
};

TEST_F(DateForm, EveryWrittenFormGivesTheSameLiteral) {
  for (const char* const text : {"05/04/2023", "5/4/2023", "05/4/2023", "2023-04-05", "20230405"}) {
    EXPECT_EQ(form(text), "'20230405'") << text;
    EXPECT_EQ(form(std::string{text} + " 06:07:08"), "'20230405 06:07:08'") << text;
    EXPECT_EQ(form(std::string{text} + " 06:07"), "'20230405 06:07:00'") << text;
    EXPECT_EQ(form(std::string{text} + " 00:00:00"), "'20230405'") << text;
  }
  expectSuccess();
}

TEST_F(DateForm, ADateValueIsWrittenWithItsTimeOnlyWhenItHasOne) {
  EXPECT_EQ(form(*Date::of(2024, 2, 29)), "'20240229'");
  EXPECT_EQ(form(*Date::of(2024, 2, 29, 0, 0, 1)), "'20240229 00:00:01'");
  EXPECT_EQ(form(*Date::of(1, 1, 1)), "'00010101'");
  EXPECT_EQ(form(*Date::of(9999, 12, 31, 23, 59, 59)), "'99991231 23:59:59'");
}

TEST_F(DateForm, WhatTheCalendarDoesNotHaveIsNull) {
  for (const char* const text :
       {"29/02/2023", "31/04/2024", "00/01/2024", "32/01/2024", "01/13/2024", "01/00/2024",
        "2024-02-30", "20240230", "29/02/1900", "01/01/0000", "20230405 24:00:00",
        "20230405 12:60:00", "20230405 12:00:60"}) {
    EXPECT_EQ(form(text), "Null") << text;
  }
  EXPECT_EQ(form("29/02/2000"), "'20000229'");
  expectSuccess();
}

TEST_F(DateForm, WhatIsNoDateIsNull) {
  for (const char* const text :
       {"oggi", "1/2", "1.2.2024", "2024/01/02", "2024-1", "202401", "05/04/2023x", "05/04/2023 6",
        "'; DROP TABLE X --", "-1/1/2024", "1/1/24", "99999999999999999999"}) {
    EXPECT_EQ(form(text), "Null") << text;
  }
  EXPECT_EQ(form(""), "Null");
  EXPECT_EQ(form(kNull), "Null");
  EXPECT_EQ(form(Variant{}), "Null");
  EXPECT_EQ(form(true), "Null");
  expectSuccess();
}

TEST_F(DateForm, AFailureIsReportedUnderItsOwnName) {
  try {
    std::ignore =
        ServiceProbe::DataDB(*service, std::shared_ptr<Object>{std::make_shared<Object>()});
  } catch (const std::exception&) {
    ADD_FAILURE() << "the failure is reported, not raised";
  }
  EXPECT_EQ(shown(service->Stato), "Int16 99");
  EXPECT_TRUE(service->Errore.text().ends_with(" in DataDB")) << shown(service->Errore);
}

/// A platform without a way to convert dates.
class NoConverter final : public Platform {
 public:
  [[nodiscard]] std::shared_ptr<Connection> newConnection(std::string_view) override {
    throw Error{"nessun fornitore"};
  }
  [[nodiscard]] std::unique_ptr<DateConverter> newDateConverter() override {
    throw Error{"libreria assente"};
  }
};

TEST(PlatformServices, AConverterThatCannotBeCreatedIsReported) {
  CLSCO_AZIENDECOLL service{std::make_shared<NoConverter>()};
  std::ignore = ServiceProbe::DataDB(service, "01/01/2024");
  EXPECT_EQ(shown(service.Stato), "Int16 99");
  EXPECT_EQ(shown(service.Errore), "'libreria assente in DataDB'");
}

TEST(PlatformServices, PromptsAreAnsweredNoAndObjectsAreNotFound) {
  ScriptPlatform platform;
  EXPECT_EQ(platform.messageBox("Aprire?", 4, "Aziende"), Answer::No);
  EXPECT_THROW(std::ignore = platform.createObject("AZCOLLUI.CLSCO_AZIENDECOLL"), Error);
}

}  // namespace
}  // namespace azcoll::testing
