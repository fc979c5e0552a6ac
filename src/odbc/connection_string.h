#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace azcoll::odbc {

/// Whether callers of one database take turns in their transactions.
enum class GroupLock : std::uint8_t { None, PerDatabase };

/// Passwords that must not be shown to anybody.
class Secrets {
 public:
  /// Adds the passwords of a connection string, as meant and as written.
  void addFrom(std::string_view connectionString);

  /// A further password; an empty one is none.
  void add(std::string_view password);

  /// `text` with every password replaced by asterisks. A password of one to three characters is
  /// replaced only where it stands alone, because it may be part of any word.
  [[nodiscard]] std::string masked(std::string text) const;

 private:
  std::vector<std::string> values_;  // the longest first
};

/// The string with the values of its password keys (`PWD`, `Password`) replaced by asterisks.
[[nodiscard]] std::string maskedConnectionString(std::string_view text);

/// The string as the driver manager gets it: user and password, where given, override its own.
[[nodiscard]] std::string withCredentials(std::string_view text, std::string_view user,
                                          std::string_view password);

/// Seconds to wait for a connection: the key `Connect Timeout`, `Connection Timeout`,
/// `LoginTimeout` or `Timeout`; 15 without one of them.
[[nodiscard]] int loginTimeout(std::string_view text);

/// The server that the string names, as people call it: `HOST`, `HOST:PORT`, or its data source;
/// empty when it names none.
[[nodiscard]] std::string serverOf(std::string_view text);

/// Whether transactions of one database take turns: the key `Blocco`, whose one value is `Gruppo`.
/// Throws `Error` for another one.
[[nodiscard]] GroupLock groupLock(std::string_view text);

/// The string without the keys that are this provider's own (`Blocco`).
[[nodiscard]] std::string withoutOwnKeys(std::string_view text);

}  // namespace azcoll::odbc
