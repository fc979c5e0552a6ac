#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "data/error.h"
#include "tsql/script.h"

namespace azcoll::deployment {

/// Line of the script on which the failure of a batch lies, as near as it can be determined: the
/// place of a syntax error, the start of the failing statement, or the start of the batch.
[[nodiscard]] std::uint32_t failureLine(const tsql::ScriptBatch& batch, const Error& error);

/// `Errore NUMERO (SQLSTATE), riga N: descrizione`, with what is known of it.
[[nodiscard]] std::string describeFailure(const ErrorInfo& info,
                                          std::optional<std::uint32_t> line = std::nullopt);

/// The same for a failure as it was thrown.
[[nodiscard]] std::string describeFailure(const Error& error,
                                          std::optional<std::uint32_t> line = std::nullopt);

}  // namespace azcoll::deployment
