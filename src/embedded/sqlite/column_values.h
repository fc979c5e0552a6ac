#pragma once

#include <sqlite3.h>

#include "data/variant.h"
#include "embedded/values/types.h"
#include "embedded/values/value.h"

namespace azcoll::embedded {

/// A value of SQLite as one of the engine.
[[nodiscard]] Value valueOf(sqlite3_value* value);

/// The value in a column of a row, as callers see it.
[[nodiscard]] Variant readColumn(sqlite3_stmt* statement, int column, const Type& type);
/// The same in the engine's form.
[[nodiscard]] Value readValue(sqlite3_stmt* statement, int column);
/// Binds a value; texts are copied.
void bindValue(sqlite3_stmt* statement, int position, const Value& value);

}  // namespace azcoll::embedded
