#pragma once

#include <memory>
#include <string_view>

#include "data/connection.h"

namespace azcoll {

/// A closed connection of the provider that `connectionString` chooses, with the string already
/// set: the embedded engine for `Provider=embedded;…`, ODBC for everything else. Throws `Error` when
/// the provider is not part of this build.
[[nodiscard]] std::shared_ptr<Connection> newConnectionFor(std::string_view connectionString);

}  // namespace azcoll
