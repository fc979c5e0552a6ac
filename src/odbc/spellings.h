#pragma once

#include <array>
#include <string>
#include <string_view>

namespace azcoll::odbc {

/// The name as it is, in small and in capital letters: catalogues differ in how they keep names
/// that were written without quotes.
[[nodiscard]] inline std::array<std::string, 3> spellingsOf(std::string_view name) {
  std::array<std::string, 3> spellings{std::string{name}, std::string{name}, std::string{name}};
  for (char& byte : spellings[1]) {
    byte = byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
  }
  for (char& byte : spellings[2]) {
    byte = byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
  }
  return spellings;
}

}  // namespace azcoll::odbc
