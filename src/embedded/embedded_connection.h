#pragma once

#include <memory>
#include <string_view>

#include "data/connection.h"

namespace azcoll::embedded {

/// Whether a connection string chooses this provider: its `Provider` key is `embedded` (letter case
/// and blanks around keys and values do not count).
[[nodiscard]] bool isEmbeddedConnectionString(std::string_view connectionString);

/// A closed connection of the embedded engine.
///
/// Connection string: `Provider=embedded;Data Source=FILE`, with `:memory:` for a database that
/// ends with the connection; further keys: `Create=True` (make the file when it is missing;
/// otherwise a missing file is an error), `Read Only=True`, `Timeout=SECONDS` (wait for another
/// process's lock, default 30; a database still busy then is an error that says so). Unknown keys
/// are errors, and so is a file that is not a database.
[[nodiscard]] std::shared_ptr<Connection> newConnection();

}  // namespace azcoll::embedded
