#pragma once

#include <fstream>
#include <memory>
#include <ostream>
#include <string>

#include "data/tracing.h"

namespace azcoll::cli {

/// Writes every operation of a connection as a line of JSON: `op`, `sql` as passed (null when the
/// operation has none), `opzioni`, `parametri` of a command, `righe` (null when not known), `ms`,
/// and `errore` when it failed.
class TraceWriter {
 public:
  /// Writes to the file of this name, or to `err` when it is `-`. Throws `UsageError` when the file
  /// cannot be written.
  TraceWriter(const std::string& target, std::ostream& err);

  /// `connection` with everything that passes through it written down. The writer must outlive it.
  [[nodiscard]] std::shared_ptr<Connection> traced(std::shared_ptr<Connection> connection);

  /// Writes nothing more: what follows is not the method's doing. Returns whether all was written.
  [[nodiscard]] bool finish();

 private:
  void write(const TraceEntry& entry);

  std::ofstream file_;
  std::ostream* stream_;
  bool active_ = true;
};

/// The line of one operation, without its end.
[[nodiscard]] std::string traceLine(const TraceEntry& entry);

}  // namespace azcoll::cli
