#pragma once

#include <string>
#include <string_view>

namespace azcoll::embedded {

/// What a connection string of this provider says.
struct ConnectionSettings {
  std::string dataSource;
  bool create = false;
  bool readOnly = false;
  int timeoutSeconds = 30;
};

/// Whether the `Provider` key is `embedded`; false for what is not a connection string at all.
[[nodiscard]] bool choosesEmbedded(std::string_view text);

/// Reads the keys; throws `Error` (not of the provider) for an unknown key, a key given twice, a
/// value that does not fit, a missing `Data Source`.
[[nodiscard]] ConnectionSettings readConnectionString(std::string_view text);

}  // namespace azcoll::embedded
