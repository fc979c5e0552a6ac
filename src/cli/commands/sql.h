#pragma once

#include <string>

#include "cli/commands/database_options.h"
#include "cli/console.h"

namespace CLI {
class App;
}

namespace azcoll::cli {

/// `azcoll sql`: runs T-SQL and prints its results.
struct CommandSql {
  std::string testo;
  DatabaseOptions database;
  bool json = false;
  bool csv = false;

  CLI::App* setup(CLI::App& parent);
  ExitCode run(Console& console) const;

 private:
  bool fromArgument_ = false;
};

}  // namespace azcoll::cli
