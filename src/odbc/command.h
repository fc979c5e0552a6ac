#pragma once

#include <memory>

#include "data/command.h"

namespace azcoll::odbc {

/// An empty command; it works on the connections of this provider only.
[[nodiscard]] std::shared_ptr<Command> newOdbcCommand();

}  // namespace azcoll::odbc
