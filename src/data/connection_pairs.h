#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace azcoll {

/// What is odd about a piece of a connection string. Drivers pass over it, a provider of our own
/// may refuse it.
enum class PairFlaw : std::uint8_t {
  None,            ///< nothing; an empty key counts as one
  NoEquals,        ///< no `=`: the piece is the key, without a value
  OpenQuote,       ///< a value in quotes without their end: it goes on to the end of the string
  TextBehindQuote  ///< text between the end of a quoted value and the `;`
};

/// One `key=value` of a connection string; the views are into it.
struct ConnectionPair {
  std::string_view key{};  ///< without the blanks around it
  std::string_view raw{};  ///< the value as written, braces or quotes included, no blanks around it
  std::string value{};     ///< the value meant
  PairFlaw flaw = PairFlaw::None;
};

/// The pairs of a connection string in their order. Between `;` and `;` with nothing but blanks is
/// no pair. A value that begins with one of `quotes` (`{`, which `}` closes, `"`, `'`) may hold any
/// character, its closing one twice. Never complains: see `ConnectionPair::flaw`.
[[nodiscard]] std::vector<ConnectionPair> readConnectionPairs(std::string_view text,
                                                              std::string_view quotes);

}  // namespace azcoll
