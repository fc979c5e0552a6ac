#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace azcoll::statements {

/// Rights by object: `"CG44_CLIFOR"` → `{"SELECT", "UPDATE"}`.
using Rights = std::map<std::string, std::set<std::string>>;

/// Adds what a user must be granted to run one batch on SQL Server, by the names as written:
///
/// - SELECT on every table and every function that rows are read from, wherever the query stands;
/// - INSERT, UPDATE, DELETE on the target of a change, and SELECT on it as well when the change
///   looks at its columns (a WHERE, a value computed from a column);
/// - EXECUTE on a procedure called.
///
/// Table variables and #tables need nothing: they are the session's own. What a procedure or a
/// function does inside needs nothing either, because its owner is the tables' owner. Throws
/// `tsql::SyntaxError`.
void addNeededRights(Rights& rights, std::string_view batch);

/// Adds the right to call a procedure by name.
void addProcedureRight(Rights& rights, std::string_view procedure);

}  // namespace azcoll::statements
