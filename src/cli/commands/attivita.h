#pragma once

#include "cli/commands/company_options.h"
#include "cli/commands/database_options.h"
#include "cli/console.h"

namespace CLI {
class App;
}

namespace azcoll::cli {

/// `azcoll attivita`: shows the VAT activities of a company in a year.
struct CommandAttivita {
  CompanyOptions what;
  DatabaseOptions database;
  bool json = false;

  CLI::App* setup(CLI::App& parent);
  ExitCode run(Console& console) const;
};

}  // namespace azcoll::cli
