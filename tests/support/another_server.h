#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "data/connection.h"
#include "data/error.h"
#include "platform/provider_factory.h"
#include "support/test_database.h"

/// What may differ on a server that speaks T-SQL and is not SQL Server: how it words its messages,
/// the numbers of failures that T-SQL leaves to SQL Server, the name of a column that has none, and
/// the letter case of a constraint's name. On the embedded engine and on SQL Server nothing may.
namespace azcoll::test {

/// Whether the tests run on a T-SQL server that is not SQL Server; asked once.
inline bool onAnotherServer() {
  static const bool another = [] {
    const std::string& server = serverConnectionString();
    if (server.empty()) {
      return false;
    }
    const std::shared_ptr<Connection> connection = newConnectionFor(server);
    connection->setCursorLocation(CursorLocation::Client);
    connection->open("", "", CommandOption::Unspecified);
    std::int64_t affected = 0;
    const std::string version =
        connection->execute("SELECT @@VERSION AS V", affected, CommandOption::Text)
            ->fields()
            .item(std::size_t{0})
            .value()
            .text();
    return !version.starts_with("Microsoft");
  }();
  return another;
}

namespace detail {

/// Numbers that T-SQL fixes, whatever server speaks it.
constexpr std::array<std::int64_t, 5> kFixedNumbers{515, 547, 2627, 2628, 8152};

inline std::string lowered(std::string_view text) {
  std::string result{text};
  std::ranges::transform(result, result.begin(), [](char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
  });
  return result;
}

/// The names of keys in a text, lowered: words that begin as such names do.
inline std::vector<std::string> keyNames(std::string_view text) {
  constexpr std::string_view kLetters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
  std::vector<std::string> names;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find_first_not_of(kLetters), text.size());
    const std::string word = lowered(text.substr(0, length));
    if (word.starts_with("fk_") || word.starts_with("pk_") || word.starts_with("uq_")) {
      names.push_back(word);
    }
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  return names;
}

}  // namespace detail

/// Whether a failure is the one with one of these numbers. Another server may give a failure whose
/// number T-SQL does not fix a number of its own, above a million, with SQLSTATE 42000.
inline bool isFailure(const ErrorInfo& info, const std::vector<std::int64_t>& numbers) {
  if (std::ranges::find(numbers, info.nativeNumber) != numbers.end()) {
    return true;
  }
  constexpr std::int64_t kOwnNumbers = 1'000'000;
  return onAnotherServer() && info.sqlState == "42000" && info.nativeNumber > kOwnNumbers &&
         std::ranges::none_of(numbers, [](std::int64_t number) {
           return std::ranges::find(detail::kFixedNumbers, number) != detail::kFixedNumbers.end();
         });
}

/// Whether a message holds what it must: the part itself; on another server the names of keys in
/// it.
inline bool holdsPart(std::string_view message, std::string_view part) {
  if (!onAnotherServer()) {
    return message.find(part) != std::string_view::npos;
  }
  const std::string lowered = detail::lowered(message);
  return std::ranges::all_of(detail::keyNames(part), [&lowered](const std::string& name) {
    return lowered.find(name) != std::string::npos;
  });
}

/// Whether a column has this name. Another server may name a column that has none ("").
inline bool isColumnName(std::string_view found, std::string_view expected) {
  return found == expected || (expected.empty() && onAnotherServer());
}

}  // namespace azcoll::test
