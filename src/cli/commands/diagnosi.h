#pragma once

#include "cli/commands/database_options.h"
#include "cli/console.h"

namespace CLI {
class App;
}

namespace azcoll::cli {

/// `azcoll diagnosi`: says what a company database lacks for the service, and what fixes it.
struct CommandDiagnosi {
  DatabaseOptions database;
  bool json = false;

  CLI::App* setup(CLI::App& parent);
  ExitCode run(Console& console) const;
};

}  // namespace azcoll::cli
