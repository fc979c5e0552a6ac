#pragma once

#include <memory>

#include "data/connection.h"

namespace azcoll::odbc {

/// A closed connection through ODBC to any server that speaks T-SQL.
///
/// The connection string goes to the driver manager as it is (`Driver=FreeTDS;Server=…;UID=…;PWD=…`
/// or `DSN=…`); `Connect Timeout=SECONDS` limits the waiting (15 without it). Once open, the
/// connection gives its string back without the password, and no error shows it.
///
/// Results are fetched whole at once, so that the connection is never busy. Statements are executed
/// directly, never prepared. Changes of a recordset are written when the driver or the query says
/// the table, and the catalogue its primary key.
[[nodiscard]] std::shared_ptr<Connection> newConnection();

}  // namespace azcoll::odbc
