#pragma once

#include <memory>

#include "data/command.h"

namespace azcoll::embedded {

/// An empty command of the embedded engine; it works on the engine's connections only.
[[nodiscard]] std::shared_ptr<Command> newEmbeddedCommand();

}  // namespace azcoll::embedded
