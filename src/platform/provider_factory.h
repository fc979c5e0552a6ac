#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/connection.h"

namespace azcoll {

/// A closed connection of the provider that `connectionString` chooses, with the string already
/// set: the embedded engine for `Provider=embedded;…`, ODBC for everything else. Throws `Error`
/// when the provider is not part of this build.
[[nodiscard]] std::shared_ptr<Connection> newConnectionFor(std::string_view connectionString);

/// The CREATE statements, in the order of creation, of everything in an open database whose engine
/// keeps them as T-SQL text; nothing for a server, whose catalogue is asked by queries. Throws
/// `Error`.
[[nodiscard]] std::optional<std::vector<std::string>> storedDefinitions(Connection& connection);

}  // namespace azcoll
