#pragma once

#include <string>

#include "cli/console.h"

namespace CLI {
class App;
}

namespace azcoll {
class Connection;

namespace cli {
struct Script;

/// `azcoll crea`: makes a new database from the schema scripts.
struct CommandCrea {
  std::string file;
  bool esempio = false;

  CLI::App* setup(CLI::App& parent);
  ExitCode run(Console& console) const;
};

/// Runs a script batch by batch. Throws `Error` that names script, line and statement.
void runScript(Connection& connection, const Script& script);

}  // namespace cli
}  // namespace azcoll
