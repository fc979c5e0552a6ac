#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace azcoll::cli {

/// The command `azcoll`. `args` are the arguments without the program's name; data go to `out`,
/// messages to `err`. `in` is read where a subcommand says so; it counts as a person at a terminal
/// only when it is standard input and that is one. Returns the process's exit code (`ExitCode`); no
/// exception leaves it.
[[nodiscard]] int run(const std::vector<std::string>& args, std::istream& in, std::ostream& out,
                      std::ostream& err);

}  // namespace azcoll::cli
