#pragma once

#include <iosfwd>
#include <stdexcept>

namespace azcoll::cli {

/// What the process reports to its caller when it ends.
enum class ExitCode : int {
  Ok = 0,          ///< done; for a method call, `Stato` 0
  Failed = 1,      ///< another `Stato`, or a statement that the database refused
  Usage = 2,       ///< wrong usage: nothing was done
  CannotOpen = 3,  ///< the database cannot be opened, or the connection was lost
};

/// The streams of one run of the command.
struct Console {
  std::istream& in;
  std::ostream& out;         ///< data
  std::ostream& err;         ///< messages
  bool interactive = false;  ///< a person at a terminal is behind `in`
};

/// Wrong usage; the message says what to change.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A database that cannot be opened, or whose connection was lost; the message says what to check.
class OpenError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace azcoll::cli
