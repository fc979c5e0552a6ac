#pragma once

#include <ostream>

#include "cli/commands/connection_watch.h"
#include "cli/commands/database_options.h"
#include "cli/commands/failure_advice.h"
#include "cli/console.h"
#include "data/error.h"

namespace azcoll::cli {

/// Runs a command that looks something up: `read` gives what it finds over the connection, `print`
/// shows that. What was found while the connection was lost is not shown. Failed, with the reason
/// on `console.err`, when the database or the printing reports an `Error`; throws `UsageError` and
/// `OpenError` as `openDatabase` does, `OpenError` too when the connection was lost.
template <typename Read, typename Print>
[[nodiscard]] ExitCode lookUp(const DatabaseOptions& database, Console& console, const Read& read,
                              const Print& print) {
  const ConnectionWatch watch{openDatabase(database)};
  try {
    const auto found = read(watch.connection());
    watch.requireAlive();
    print(found);
  } catch (const Error& error) {
    watch.requireAlive();
    console.err << withDiagnosisHint(error.info()) << '\n';
    return ExitCode::Failed;
  }
  return ExitCode::Ok;
}

}  // namespace azcoll::cli
