#include "component/platform.h"

#include <chrono>
#include <ctime>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "component/numerazione_cg70.h"
#include "data/error.h"

namespace azcoll::frame_tests {
namespace {

/// A platform that changes nothing of what every platform offers.
class PlainPlatform final : public Platform {
 public:
  [[nodiscard]] std::shared_ptr<Connection> newConnection(
      std::string_view /*connectionString*/) override {
    return nullptr;
  }
};

class NoScreen final : public NamedMembers {
 public:
  void set(std::string_view /*member*/, const Variant& /*value*/) override {}
  [[nodiscard]] Variant get(std::string_view /*member*/) override { return Variant{}; }
};

TEST(PlatformDefaults, AnswersEveryQuestionWithNo) {
  PlainPlatform platform;
  EXPECT_EQ(platform.messageBox("Aprire la configurazione?", 36, "Aziende collegate"), Answer::No);
  EXPECT_EQ(platform.messageBox("", 0, ""), Answer::No);
}

TEST(PlatformDefaults, AnswersHaveTheValuesOfTheMessageBox) {
  EXPECT_EQ(static_cast<int>(Answer::Yes), 6);
  EXPECT_EQ(static_cast<int>(Answer::No), 7);
}

TEST(PlatformDefaults, KnowsNoObjectByName) {
  PlainPlatform platform;
  for (const char* progId : {"AZCOLLUI.CLSCO_AZIENDECOLL", "AZCOLLUI.CLSCO_ATTIVITACOLL", ""}) {
    try {
      static_cast<void>(platform.createObject(progId));
      ADD_FAILURE() << progId;
    } catch (const Error& error) {
      EXPECT_FALSE(error.description().empty());
      EXPECT_FALSE(error.fromProvider());
    }
  }
}

TEST(PlatformDefaults, ShowsNoScreen) {
  PlainPlatform platform;
  NoScreen screen;
  try {
    platform.show(screen, nullptr);
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_FALSE(error.description().empty());
  }
}

TEST(PlatformDefaults, TodayIsTheDayOfTheSystemClock) {
  const auto systemDay = [] {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm parts{};
    parts = *std::localtime(&now);
    return Date::of(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday).value();
  };
  PlainPlatform platform;
  const Date before = systemDay();
  Date today = platform.today();
  const Date after = systemDay();
  today = Date::of(today.year, today.month, today.day).value();
  EXPECT_TRUE(today == before || today == after) << today.text();
}

TEST(PlatformDefaults, EveryConverterIsANewOne) {
  PlainPlatform platform;
  const auto first = platform.newDateConverter();
  const auto second = platform.newDateConverter();
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
  first->setText("05/03/2024");
  second->setText("06/03/2024 10:20");
  EXPECT_EQ(first->databaseForm(), "20240305");
  EXPECT_EQ(second->databaseForm(), "20240306 10:20:00");
}

TEST(PlatformDefaults, TheConverterTellsDatesFromOtherTexts) {
  PlainPlatform platform;
  const auto converter = platform.newDateConverter();
  for (const char* text : {"05/03/2024", "5/3/2024", "2024-03-05", "20240305"}) {
    converter->setText(text);
    EXPECT_EQ(converter->validationResult(), 0) << text;
    EXPECT_EQ(converter->databaseForm(), "20240305") << text;
  }
  for (const char* text : {"", "31/02/2024", "domani", "5.3.2024"}) {
    converter->setText(text);
    EXPECT_NE(converter->validationResult(), 0) << text;
  }
  converter->setText("05/03/2024");
  EXPECT_EQ(converter->validationResult(), 0);
}

TEST(PlatformDefaults, AConverterWithoutATextHoldsNoDate) {
  PlainPlatform platform;
  EXPECT_NE(platform.newDateConverter()->validationResult(), 0);
}

TEST(PlatformDefaults, NumbersDocumentsInTheNumberingTable) {
  PlainPlatform platform;
  const auto first = platform.newNumbering();
  const auto second = platform.newNumbering();
  ASSERT_NE(first, nullptr);
  EXPECT_NE(first, second);
  EXPECT_NE(dynamic_cast<NumerazioneCG70*>(first.get()), nullptr);
}

TEST(PlatformDefaults, ANewNumberingHoldsNothing) {
  const NumerazioneCG70 numbering;
  EXPECT_EQ(numbering.TipoDocumento, 0);
  EXPECT_TRUE(numbering.Ditta.isEmpty());
  EXPECT_EQ(numbering.Modo, 0);
  EXPECT_EQ(numbering.Sezione, "");
  EXPECT_EQ(numbering.Anno, 0);
  EXPECT_TRUE(numbering.Codice.isEmpty());
  EXPECT_EQ(numbering.Connessione, nullptr);
  EXPECT_EQ(numbering.StringaConnessione, "");
}

}  // namespace
}  // namespace azcoll::frame_tests
