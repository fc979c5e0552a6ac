#pragma once

#include <string>
#include <vector>

#include "cli/commands/database_options.h"
#include "cli/console.h"

namespace CLI {
class App;
}

namespace azcoll::cli {

/// `azcoll esegui`: calls a method of the service and prints what came out.
struct CommandEsegui {
  std::string metodo;
  DatabaseOptions database;
  std::vector<std::string> imposta;
  std::vector<std::string> nullo;
  std::string rispondi;
  std::string rispondiVolte;
  std::string traccia;
  bool json = false;

  CLI::App* setup(CLI::App& parent);
  ExitCode run(Console& console) const;
};

}  // namespace azcoll::cli
