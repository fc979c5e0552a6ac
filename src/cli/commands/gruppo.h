#pragma once

#include <optional>
#include <string>

#include "cli/commands/company_options.h"
#include "cli/commands/database_options.h"
#include "cli/console.h"

namespace CLI {
class App;
}

namespace azcoll::cli {

/// `azcoll gruppo`: shows the group of linked companies of a company.
struct CommandGruppo {
  CompanyOptions what;
  DatabaseOptions database;
  bool json = false;
  bool dot = false;
  std::optional<std::string> svg;

  CLI::App* setup(CLI::App& parent);
  ExitCode run(Console& console) const;
};

}  // namespace azcoll::cli
