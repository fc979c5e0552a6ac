#pragma once

#include "cli/console.h"

namespace CLI {
class App;
}

namespace azcoll::cli {

/// `azcoll campi`: the fields of the three objects.
struct CommandCampi {
  bool json = false;

  CLI::App* setup(CLI::App& parent);
  ExitCode run(Console& console) const;
};

}  // namespace azcoll::cli
