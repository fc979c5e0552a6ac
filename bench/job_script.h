#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench_database.h"
#include "data/tracing.h"
#include "service/service.h"

/// The main job as the component does it, and its operations to be done again without it.
namespace azcoll::bench {

inline constexpr std::int64_t kFirstCode = 1'000'000;

inline void spread(CLSCO_AZIENDECOLL& service, const std::shared_ptr<Connection>& connection,
                   std::int64_t code) {
  service.CPInput->Connessione = connection;
  service.CPInput->Pvar_Ditta = kMainCompany;
  service.CPInput->AnnoSolare = 2025;
  service.CPInput->Pvar_CliFor = code;
  service.DuplicaCliFor();
}

/// The operations of one job, with the code cut out of the texts.
struct Script {
  struct Step {
    TraceEntry entry;
    std::vector<std::string> parts;  ///< of the text, around the code
  };
  std::vector<Step> steps;

  /// Does the job twice, with the codes `first` and the one after it, which nobody else uses.
  explicit Script(const std::shared_ptr<Connection>& connection,
                  std::int64_t first = kFirstCode - 1) {
    const auto traced =
        std::make_shared<ConnessioneTracciata>(connection, [this](const TraceEntry& entry) {
          steps.push_back({entry, {}});
        });
    CLSCO_AZIENDECOLL service;
    const std::int64_t last = first + 1;
    for (const std::int64_t code : {first, last}) {
      steps.clear();  // the first number is inserted, later ones are updated
      addCustomer(*connection, code);
      spread(service, traced, code);
    }
    const std::string code = std::to_string(last);
    for (Step& step : steps) {
      std::string_view rest = step.entry.sql;
      for (std::size_t at = rest.find(code); at != std::string_view::npos; at = rest.find(code)) {
        step.parts.emplace_back(rest.substr(0, at));
        rest = rest.substr(at + code.size());
      }
      step.parts.emplace_back(rest);
    }
  }

  /// The texts for a code.
  [[nodiscard]] std::vector<std::string> texts(std::int64_t code) const {
    std::vector<std::string> all;
    for (const Step& step : steps) {
      std::string text;
      for (std::size_t i = 0; i < step.parts.size(); ++i) {
        text += i == 0 ? "" : std::to_string(code);
        text += step.parts[i];
      }
      all.push_back(std::move(text));
    }
    return all;
  }

  void replay(const std::shared_ptr<Connection>& connection,
              const std::vector<std::string>& texts) const {
    std::int64_t affected = 0;
    for (std::size_t i = 0; i < steps.size(); ++i) {
      const std::string& operation = steps[i].entry.operation;
      if (operation == "Execute") {
        connection->execute(texts[i], affected, CommandOption::Text);
      } else if (operation == "CommandExecute") {
        const std::shared_ptr<Command> command = connection->newCommand();
        command->setActiveConnection(connection);
        command->setCommandText(texts[i]);
        command->setCommandType(CommandOption::StoredProcedure);
        Parameters& parameters = command->parameters();
        for (const auto& [name, value] : steps[i].entry.parameters) {
          parameters.item(name).setValue(value);
        }
        command->execute(affected, CommandOption::StoredProcedure);
      } else if (operation == "BeginTrans") {
        connection->beginTrans();
      } else if (operation == "CommitTrans") {
        connection->commitTrans();
      }
    }
  }
};

}  // namespace azcoll::bench
