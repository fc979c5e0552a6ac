#pragma once

#include <string>

#include "cli/console.h"

namespace CLI {
class App;
}

namespace azcoll::cli {

/// `azcoll crea`: makes a new database file from the schema scripts, or installs them on a server.
struct CommandCrea {
  std::string file;              ///< `--db`
  std::string connectionString;  ///< `--connessione`
  bool esempio = false;
  bool permessi = false;

  CLI::App* setup(CLI::App& parent);
  ExitCode run(Console& console) const;

 private:
  ExitCode createFile(Console& console) const;
  ExitCode installOn(Console& console) const;
};

}  // namespace azcoll::cli
