#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "service_fixture.h"

namespace azcoll::test {

/// A question that was put to the user.
struct Prompt {
  std::string text{};
  int style = 0;
  std::string title{};
};

/// A configuration screen that writes down what it is given, and when it is shown.
class Screen final : public NamedMembers {
 public:
  void set(std::string_view member, const Variant& value) override {
    const bool object = value.kind() == Variant::Kind::Object;
    log.push_back(std::string{member} + "=" +
                  (object           ? "object"
                   : value.isNull() ? "Null"
                                    : value.text()));
    values[std::string{member}] = value;
  }
  [[nodiscard]] Variant get(std::string_view member) override {
    log.push_back("get " + std::string{member});
    const auto own = answers.find(std::string{member});
    return own != answers.end() ? own->second : values[std::string{member}];
  }

  Lines log;
  std::map<std::string, Variant> values;
  std::map<std::string, Variant> answers;  ///< what it gives whatever it was given
};

/// A platform with a person in front of it: answers from a list (No when it is exhausted) and
/// screens that are shown.
class PromptPlatform final : public Platform {
 public:
  std::shared_ptr<ScriptedConnection> connection = std::make_shared<ScriptedConnection>();
  std::vector<Prompt> prompts;
  std::vector<Answer> answers;  ///< to the prompts, in order
  std::vector<std::pair<std::string, std::shared_ptr<Screen>>> created;  ///< with their ProgIDs
  std::vector<std::shared_ptr<Object>> shownThrough;
  std::map<std::string, Variant> screenAnswers;
  std::function<void()> onCreate = [] {};
  std::function<void()> onShow = [] {};
  std::function<std::unique_ptr<DateConverter>()> converter;
  Date now{.year = 2024, .month = 3, .day = 15};

  [[nodiscard]] std::shared_ptr<Connection> newConnection(std::string_view) override {
    return connection;
  }
  [[nodiscard]] Date today() override { return now; }
  [[nodiscard]] std::unique_ptr<DateConverter> newDateConverter() override {
    return converter ? converter() : Platform::newDateConverter();
  }
  [[nodiscard]] Answer messageBox(std::string_view text, int style,
                                  std::string_view title) override {
    prompts.push_back({std::string{text}, style, std::string{title}});
    connection->report({.name = "Prompt"});
    return prompts.size() <= answers.size() ? answers[prompts.size() - 1] : Answer::No;
  }
  [[nodiscard]] std::shared_ptr<NamedMembers> createObject(std::string_view progId) override {
    onCreate();
    auto screen = std::make_shared<Screen>();
    screen->answers = screenAnswers;
    created.emplace_back(std::string{progId}, screen);
    return screen;
  }
  void show(NamedMembers& screen, const std::shared_ptr<Object>& activeInterface) override {
    EXPECT_EQ(&screen, created.back().second.get());
    connection->report({.name = "Show"});
    created.back().second->log.emplace_back("shown");
    shownThrough.push_back(activeInterface);
    onShow();
  }
};

/// The framework object of the caller; the service only hands it on.
class Framework final : public Object {};

/// The checks for company 20 in the year 2024.
class ConfigurationTest : public ::testing::Test {
 protected:
  ConfigurationTest() {
    input().Connessione = connection;
    input().Pvar_Ditta = std::int32_t{20};
    input().AnnoSolare = std::int32_t{2024};
  }

  [[nodiscard]] CLSCO_INPUTAZCOLL& input() const { return *service.CPInput; }
  [[nodiscard]] CLSCO_OUTPUTAZCOLL& output() const { return *service.CPOutput; }

  /// Every count of the missing configuration gives `found`.
  void missing(int found) {
    connection->answerPrefix(" SELECT COUNT(1) AS NUM", rowSet({"NUM"}, {found}));
  }
  /// Company 20 takes part in a link in `year`.
  void linkedIn(const std::string& year) {
    connection->answer(linkStatement(year),
                       rowSet({"CG86_DITTA_CG18", "CG86_INDTIPOCONT"}, {10, std::int16_t{3}}));
  }
  static std::string linkStatement(const std::string& year) {
    return "SELECT * FROM CG86_AZIENDECOLL WHERE CG86_INDTIPO = 0 AND CG86_DITTA_CG18 <> "
           "CG86_DITTACOLL_CG18 AND CG86_ANNOIVA = " +
           year + " AND (CG86_DITTA_CG18 = 20 OR CG86_DITTACOLL_CG18 = 20)";
  }
  /// What happened, in order: statements as they are, the rest by name.
  [[nodiscard]] Lines steps() const {
    Lines lines;
    for (const Operation& operation : connection->operations) {
      if (operation.name == "Execute" || operation.name == "Open") {
        lines.push_back(operation.sql);
      } else if (operation.name == "Prompt" || operation.name == "Show") {
        lines.push_back(operation.name);
      }
    }
    return lines;
  }
  void expectState(std::int16_t stato, const std::string& message) const {
    EXPECT_EQ(service.Stato, Variant{stato});
    EXPECT_EQ(service.Errore, Variant{message});
  }
  void expectSilentSuccess() const {
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
    EXPECT_TRUE(service.Errore.isEmpty());
  }

  std::shared_ptr<PromptPlatform> platform = std::make_shared<PromptPlatform>();
  std::shared_ptr<ScriptedConnection> connection = platform->connection;
  std::shared_ptr<Framework> framework = std::make_shared<Framework>();
  CLSCO_AZIENDECOLL service{platform};
};

}  // namespace azcoll::test
