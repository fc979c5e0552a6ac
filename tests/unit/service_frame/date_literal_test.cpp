#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "data/text.h"
#include "unit/service_frame/support.h"

namespace azcoll::frame_tests {
namespace {

class DateLiteral : public ServiceTest {
 protected:
  [[nodiscard]] Variant literal(const Variant& date) const { return call().DataDB(date); }
};

TEST_F(DateLiteral, ReadsEveryFormOfADate) {
  for (const char* text : {"05/03/2024", "5/3/2024", "2024-03-05", "20240305"}) {
    EXPECT_EQ(literal(text), Variant{"20240305"}) << text;
  }
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(DateLiteral, ReadsEveryFormWithATime) {
  for (const char* text : {"05/03/2024 14:07:09", "5/3/2024 14:07:09", "2024-03-05 14:07:09",
                           "2024-03-05T14:07:09", "20240305 14:07:09"}) {
    EXPECT_EQ(literal(text), Variant{"20240305 14:07:09"}) << text;
  }
  for (const char* text : {"05/03/2024 14:07", "2024-03-05 14:07", "20240305 14:07"}) {
    EXPECT_EQ(literal(text), Variant{"20240305 14:07:00"}) << text;
  }
}

TEST_F(DateLiteral, MidnightIsNoTime) {
  EXPECT_EQ(literal("05/03/2024 00:00:00"), Variant{"20240305"});
}

TEST_F(DateLiteral, TakesADateValue) {
  EXPECT_EQ(literal(Date{.year = 2024, .month = 3, .day = 5}), Variant{"20240305"});
  EXPECT_EQ(literal(Date{.year = 2024, .month = 3, .day = 5, .hour = 14, .minute = 7, .second = 9}),
            Variant{"20240305 14:07:09"});
  EXPECT_EQ(literal(Date{.year = 1, .month = 1, .day = 1}), Variant{"00010101"});
}

TEST_F(DateLiteral, ChecksTheCalendar) {
  EXPECT_EQ(literal("29/02/2024"), Variant{"20240229"});
  EXPECT_EQ(literal("29/02/2000"), Variant{"20000229"});
  for (const char* text :
       {"29/02/2023", "29/02/1900", "31/04/2024", "00/01/2024", "01/13/2024", "32/01/2024",
        "01/01/0000", "2024-02-30", "20240230", "05/03/2024 24:00:00", "05/03/2024 10:60"}) {
    EXPECT_EQ(literal(text), Variant{kNull}) << text;
  }
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(DateLiteral, WhatIsNoDateIsNull) {
  for (const char* text : {"domani", "05-03-2024x", "5/3/24/1", "'; DROP TABLE X --", "2024", "//",
                           "05/03/2024 ore 10", "-", "è"}) {
    EXPECT_EQ(literal(text), Variant{kNull}) << text;
  }
  EXPECT_EQ(literal(std::string(100000, '1')), Variant{kNull});
  EXPECT_EQ(literal(true), Variant{kNull});
  EXPECT_EQ(literal(12.5), Variant{kNull});
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(DateLiteral, NoDateIsNull) {
  for (const Variant& missing : {Variant{}, Variant{kNull}, Variant{""}, Variant{"   "}}) {
    EXPECT_EQ(literal(missing), Variant{kNull});
  }
  expectOutcome(kSucceeded, Variant{});
}

TEST_F(DateLiteral, NullJoinsAsNothingInAStatement) {
  EXPECT_EQ(join("'", literal("31/02/2024"), "'"), "''");
}

TEST_F(DateLiteral, AnObjectIsAFailure) {
  EXPECT_EQ(join(literal(anObject())), "");
  EXPECT_EQ(service->Stato, kTrappedFailure);
  EXPECT_TRUE(service->Errore.text().ends_with(" in DataDB")) << service->Errore.text();
}

/// A converter that writes down what it is asked and fails where the test says so.
class ScriptedConverter final : public DateConverter {
 public:
  struct Script {
    int validation = 0;
    Failures failures{};
    std::vector<std::string> asked{};
  };

  explicit ScriptedConverter(Script& script) : script_{script} {}
  ScriptedConverter(const ScriptedConverter&) = delete;
  ScriptedConverter(ScriptedConverter&&) = delete;
  ScriptedConverter& operator=(const ScriptedConverter&) = delete;
  ScriptedConverter& operator=(ScriptedConverter&&) = delete;
  ~ScriptedConverter() override { script_.asked.emplace_back("released"); }

  void setText(std::string_view text) override {
    script_.asked.push_back("text <" + std::string{text} + ">");
    failIfAsked(script_.failures, "text");
  }
  [[nodiscard]] int validationResult() const override {
    script_.asked.emplace_back("validation");
    failIfAsked(script_.failures, "validation");
    return script_.validation;
  }
  [[nodiscard]] std::string databaseForm() const override {
    script_.asked.emplace_back("form");
    failIfAsked(script_.failures, "form");
    return "FORM";
  }

 private:
  Script& script_;
};

class ForeignConverter : public DateLiteral {
 protected:
  void SetUp() override {
    platform->converter = [this] { return std::make_unique<ScriptedConverter>(script); };
  }
  ScriptedConverter::Script script;
};

TEST_F(ForeignConverter, IsAskedForValidationBeforeTheForm) {
  EXPECT_EQ(literal("whatever"), Variant{"FORM"});
  EXPECT_EQ(script.asked,
            (std::vector<std::string>{"text <whatever>", "validation", "form", "released"}));
}

TEST_F(ForeignConverter, IsNotAskedForTheFormOfAnInvalidDate) {
  for (const int result : {1, -1, 99}) {
    script = {};
    script.validation = result;
    EXPECT_EQ(literal("05/03/2024"), Variant{kNull});
    EXPECT_EQ(script.asked,
              (std::vector<std::string>{"text <05/03/2024>", "validation", "released"}));
  }
}

TEST_F(ForeignConverter, GetsTheTextFormOfTheValue) {
  const std::vector<std::pair<Variant, std::string>> values{
      {Variant{}, ""},
      {Variant{kNull}, ""},
      {Variant{Date{.year = 2024, .month = 3, .day = 5}}, "05/03/2024"},
      {Variant{std::int32_t{20240305}}, "20240305"}};
  for (const auto& [value, text] : values) {
    script = {};
    EXPECT_EQ(literal(value), Variant{"FORM"});
    ASSERT_FALSE(script.asked.empty());
    EXPECT_EQ(script.asked.front(), "text <" + text + ">");
  }
}

TEST_F(ForeignConverter, AFailureOfAnyStepIsReportedAndTheObjectReleased) {
  for (const char* step : {"text", "validation", "form"}) {
    service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
    script = {};
    script.failures[step] = [] { throw Error{"data illeggibile"}; };
    EXPECT_EQ(join(literal("05/03/2024")), "") << step;
    expectOutcome(kTrappedFailure, Variant{"data illeggibile in DataDB"});
    EXPECT_EQ(script.asked.back(), "released") << step;
  }
}

TEST_F(ForeignConverter, AStandardExceptionIsReportedWithItsText) {
  script.failures["validation"] = [] { throw std::runtime_error{"out of order"}; };
  EXPECT_EQ(join(literal("05/03/2024")), "");
  expectOutcome(kTrappedFailure, Variant{"out of order in DataDB"});
}

TEST_F(ForeignConverter, AnythingElseThrownIsReported) {
  script.failures["form"] = [] { throw 5; };
  EXPECT_EQ(join(literal("05/03/2024")), "");
  EXPECT_EQ(service->Stato, kTrappedFailure);
  EXPECT_TRUE(service->Errore.text().ends_with(" in DataDB"));
  EXPECT_GT(service->Errore.text().size(), std::string{" in DataDB"}.size());
}

TEST_F(ForeignConverter, AConverterThatCannotBeCreatedIsAFailure) {
  platform->failures["newDateConverter"] = [] { throw Error{"oggetto non registrato"}; };
  EXPECT_EQ(join(literal("05/03/2024")), "");
  expectOutcome(kTrappedFailure, Variant{"oggetto non registrato in DataDB"});
}

TEST_F(ForeignConverter, APlatformWithoutAConverterIsAFailureWithoutACrash) {
  platform->converter = []() -> std::unique_ptr<DateConverter> { return nullptr; };
  EXPECT_EQ(join(literal("05/03/2024")), "");
  EXPECT_EQ(service->Stato, kTrappedFailure);
  EXPECT_TRUE(service->Errore.text().ends_with(" in DataDB"));
}

}  // namespace
}  // namespace azcoll::frame_tests
