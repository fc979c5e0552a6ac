#pragma once

#include <sqlite3.h>

#include "cursor/packed_rows.h"
#include "embedded/values/types.h"
#include "embedded/values/value.h"

namespace azcoll::embedded {

/// A value of SQLite as one of the engine.
[[nodiscard]] Value valueOf(sqlite3_value* value);

/// Adds the value in a column of a row, as callers see it, to the row being written.
void appendColumn(cursor::PackedRows& rows, sqlite3_stmt* statement, int column, const Type& type);
/// The value in the engine's form.
[[nodiscard]] Value readValue(sqlite3_stmt* statement, int column);
/// Binds a value; texts are copied.
void bindValue(sqlite3_stmt* statement, int position, const Value& value);

}  // namespace azcoll::embedded
