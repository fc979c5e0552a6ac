#pragma once

#include "cli/console.h"

namespace CLI {
class App;
}

namespace azcoll::cli {

/// `azcoll metodi`: the methods of the service.
struct CommandMetodi {
  bool json = false;

  CLI::App* setup(CLI::App& parent);
  ExitCode run(Console& console) const;
};

}  // namespace azcoll::cli
