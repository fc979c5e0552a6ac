#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "data/connection.h"
#include "data/error.h"

namespace CLI {
class App;
}

namespace azcoll {
namespace tsql {
struct ScriptBatch;
}

namespace cli {

/// The database that a subcommand works on.
struct DatabaseOptions {
  std::string file;              ///< `--db`
  std::string connectionString;  ///< `--connessione`

  /// Declares the two options.
  void setup(CLI::App& command);
};

/// Connection string of the embedded engine for a file. Throws `UsageError` for a name that is no
/// file's.
[[nodiscard]] std::string embeddedConnectionString(std::string_view file);

/// Opens a connection with a client-side cursor. Throws `OpenError`; its message says what to check
/// and does not repeat the string, which may hold a password.
[[nodiscard]] std::shared_ptr<Connection> openConnection(const std::string& connectionString);

/// Opens the database that the options name. Throws `UsageError` unless exactly one is given, and
/// `OpenError`.
[[nodiscard]] std::shared_ptr<Connection> openDatabase(const DatabaseOptions& options);

/// Line of the script on which the failure of a batch lies, as near as it can be told: the place of
/// a syntax error, the start of the failing statement, or the start of the batch.
[[nodiscard]] std::uint32_t failureLine(const tsql::ScriptBatch& batch, const Error& error);

/// `Errore NUMERO (SQLSTATE), riga N: descrizione`, with what is known of it.
[[nodiscard]] std::string describeFailure(const Error& error,
                                          std::optional<std::uint32_t> line = std::nullopt);

/// The same for what is known of a failure.
[[nodiscard]] std::string describeFailure(const ErrorInfo& info,
                                          std::optional<std::uint32_t> line = std::nullopt);

/// Where to learn that tables, columns or rights are missing.
inline constexpr std::string_view kAskDiagnosis =
    "Se mancano tabelle, colonne o diritti lo dice: azcoll diagnosi";

/// Whether the database refused something because a table or a procedure is not there.
[[nodiscard]] bool isMissingObject(const ErrorInfo& info);

/// `describeFailure`, followed by `kAskDiagnosis` when something is not there or not allowed.
[[nodiscard]] std::string withDiagnosisHint(const ErrorInfo& info);

/// That the connection was lost, with the failure that showed it and what to check.
[[nodiscard]] std::string describeLoss(const ErrorInfo& info);

}  // namespace cli
}  // namespace azcoll
