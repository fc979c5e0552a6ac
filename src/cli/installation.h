#pragma once

#include <span>

#include "data/connection.h"

namespace azcoll::cli {

struct Script;

/// Runs a script batch by batch. Throws `Error` that names script, line and statement.
void runScript(Connection& connection, const Script& script);

/// Runs scripts on an open database, each in a transaction of its own: a script is there as a whole
/// or not at all. Throws `UsageError`, with nothing changed, when the database already has a table,
/// a procedure or a function of the company's; `Error` for a script that failed, with what is
/// installed and what is not.
void install(Connection& connection, std::span<const Script* const> scripts);

}  // namespace azcoll::cli
