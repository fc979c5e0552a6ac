#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace azcoll::fuzz {

/// What an entry function found: something that must hold of every input does not.
class BrokenInvariant : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

/// Throws `BrokenInvariant` when `holds` is false; `about` is the value that shows it.
inline void require(bool holds, std::string_view what, std::string_view about = {}) {
  if (!holds) {
    throw BrokenInvariant(std::string(what) + ": " + std::string(about));
  }
}

/// Throws `BrokenInvariant` when two texts differ.
inline void requireSame(std::string_view found, std::string_view expected, std::string_view what) {
  if (found != expected) {
    throw BrokenInvariant(std::string(what) + "\n   found: " + std::string(found) +
                          "\nexpected: " + std::string(expected));
  }
}

}  // namespace azcoll::fuzz
