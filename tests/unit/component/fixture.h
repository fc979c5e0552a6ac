#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "component/service.h"
#include "support/scripted_connection.h"
#include "support/service_probe.h"

namespace azcoll::testing {

using Lines = std::vector<std::string>;

/// Kind and value, so that a parameter of the wrong kind shows.
inline std::string shown(const Variant& value) {
  switch (value.kind()) {
    case Variant::Kind::Empty:
      return "Empty";
    case Variant::Kind::Null:
      return "Null";
    case Variant::Kind::Boolean:
      return "Boolean " + value.text();
    case Variant::Kind::Int16:
      return "Int16 " + value.text();
    case Variant::Kind::Int32:
      return "Int32 " + value.text();
    case Variant::Kind::Int64:
      return "Int64 " + value.text();
    case Variant::Kind::Double:
      return "Double " + value.text();
    case Variant::Kind::Decimal:
      return "Decimal " + value.text();
    case Variant::Kind::Date:
      return "Date " + value.text();
    case Variant::Kind::Text:
      return "'" + value.text() + "'";
    case Variant::Kind::Object:
      return "Object";
  }
  return "?";
}

/// An operation as one line: name, option values, text, parameters.
inline std::string line(const Operation& operation) {
  std::string text = operation.name;
  for (std::size_t i = 0; i < operation.options.size(); ++i) {
    text += (i == 0 ? " " : ",") + std::to_string(operation.options[i]);
  }
  if (!operation.sql.empty()) {
    text += ": " + operation.sql;
  }
  for (const auto& [name, value] : operation.parameters) {
    text += " | " + name + " " + shown(value);
  }
  return text;
}

/// What a numbering object was given, as one line.
inline std::string line(const NumerazioneDocumenti& numbering) {
  return std::to_string(numbering.TipoDocumento) + " " + std::to_string(numbering.Ditta.toInt64()) +
         " " + std::to_string(numbering.Modo) + " '" + numbering.Sezione + "' " +
         std::to_string(numbering.Anno) + " " + numbering.Data.text() + " " +
         numbering.Codice.text() + " '" + numbering.StringaConnessione + "'";
}

/// A platform with a scripted connection, a fixed today and numbering objects that write down what
/// they get. What a test puts into `fails` happens at the service of that name.
class ScriptPlatform final : public Platform {
 public:
  std::shared_ptr<ScriptedConnection> connection = std::make_shared<ScriptedConnection>();
  Lines requested{};        ///< connection strings asked for
  Lines numbered{};         ///< runs of numbering objects
  int numberingsAlive = 0;  ///< numbering objects not yet released
  int mostNumberingsAlive = 0;
  std::function<std::int32_t(const NumerazioneDocumenti&)> numberingStatus =
      [](const NumerazioneDocumenti&) { return 0; };
  std::function<void(std::string_view service)> fails = [](std::string_view) {};

  [[nodiscard]] std::shared_ptr<Connection> newConnection(std::string_view text) override {
    requested.emplace_back(text);
    fails("connection");
    return connection;
  }
  [[nodiscard]] Date today() override {
    fails("today");
    return Date{.year = 2024, .month = 9, .day = 30};
  }
  [[nodiscard]] std::unique_ptr<NumerazioneDocumenti> newNumbering() override {
    fails("numbering");
    return std::make_unique<Numbering>(*this);
  }

 private:
  class Numbering final : public NumerazioneDocumenti {
   public:
    explicit Numbering(ScriptPlatform& platform) : platform_{platform} {
      ++platform_.numberingsAlive;
      platform_.mostNumberingsAlive =
          std::max(platform_.mostNumberingsAlive, platform_.numberingsAlive);
    }
    Numbering(const Numbering&) = delete;
    Numbering(Numbering&&) = delete;
    Numbering& operator=(const Numbering&) = delete;
    Numbering& operator=(Numbering&&) = delete;
    ~Numbering() override { --platform_.numberingsAlive; }

    void ElaboraNumerazione() override {
      platform_.numbered.push_back(line(*this));
      EXPECT_EQ(Connessione.get(), platform_.connection.get());
      platform_.connection->report({.name = "Numera", .sql = std::to_string(Ditta.toInt64())});
      platform_.fails("ElaboraNumerazione");
    }
    [[nodiscard]] std::int32_t Stato() const override { return platform_.numberingStatus(*this); }

   private:
    ScriptPlatform& platform_;
  };
};

/// A service on a scripted connection given by the caller; company 5 in the year 2024.
class ComponentTest : public ::testing::Test {
 protected:
  ComponentTest() {
    in().Connessione = connection;
    in().Pvar_Ditta = std::int32_t{5};
    in().AnnoSolare = std::int16_t{2024};
  }

  [[nodiscard]] CLSCO_INPUTAZCOLL& in() const { return *service->CPInput; }
  [[nodiscard]] CLSCO_OUTPUTAZCOLL& out() const { return *service->CPOutput; }

  /// Every operation whose line begins with one of `starts`, or all of them. The release of a
  /// command comes at a place of its own choice and is left out.
  [[nodiscard]] Lines log(const Lines& starts = {}) const {
    Lines lines;
    for (const Operation& operation : connection->operations) {
      const std::string text = line(operation);
      bool wanted = starts.empty() && operation.name != "CommandRelease";
      for (const std::string& start : starts) {
        wanted = wanted || text.starts_with(start);
      }
      if (wanted) {
        lines.push_back(text);
      }
    }
    return lines;
  }
  void forget() const { connection->operations.clear(); }

  /// Lets the procedure answer for a group: `principale` 0 means that there is no main company;
  /// `others` are the linked companies. The exclusions are taken from the call.
  void group(std::int32_t principale, std::vector<std::int32_t> others,
             Variant indTipoCont = std::int16_t{0}) const {
    connection->onProcedure = [principale, others = std::move(others),
                               indTipoCont = std::move(indTipoCont)](Parameters& parameters) {
      ProcedureAnswer answer;
      answer.rows = rowSet({"DITTA", "PRINCIPALE", "CG86_INDTIPOCONT"}, {});
      std::string list;
      const auto add = [&](std::int32_t ditta, std::int16_t main) {
        for (const Variant& value : {Variant{ditta}, Variant{main}, indTipoCont}) {
          answer.rows.values.push_back(value);
        }
        list += (list.empty() ? "" : ", ") + std::to_string(ditta);
      };
      const bool noMain = parameters.item("@EscludiDittaPrincipale").value().toInt64() == 1;
      const bool noCurrent = parameters.item("@EscludiDittaCorrente").value().toInt64() == 1;
      const std::int64_t current = parameters.item("@CodiceDitta").value().toInt64();
      for (const std::int32_t ditta : others) {
        if (!noCurrent || ditta != current) {
          add(ditta, 0);
        }
      }
      if (principale != 0 && !noMain && !(noCurrent && principale == current)) {
        add(principale, 1);
      }
      answer.outputs["@DitteCollegate"] = list;
      return answer;
    };
  }

  void expectOutcome(std::int16_t stato, const Variant& errore) const {
    EXPECT_EQ(shown(service->Stato), shown(Variant{stato}));
    EXPECT_EQ(shown(service->Errore), shown(errore));
  }
  void expectSuccess() const { expectOutcome(0, Variant{}); }

  std::shared_ptr<ScriptPlatform> platform = std::make_shared<ScriptPlatform>();
  std::shared_ptr<ScriptedConnection> connection = platform->connection;
  std::unique_ptr<CLSCO_AZIENDECOLL> service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
};

}  // namespace azcoll::testing
