#include "embedded/sqlite/handle.h"

namespace azcoll::embedded {

namespace {

/// Without a connection, for which SQLite had no memory, only the code says what happened.
[[noreturn]] void fail(sqlite3* database, int code) {
  throw SqliteFailure{code, database != nullptr ? sqlite3_errmsg(database) : sqlite3_errstr(code)};
}

}  // namespace

void SqliteStatement::bind(int index, std::int64_t value) const {
  sqlite3_bind_int64(get(), index, value);
}

void SqliteStatement::bind(int index, std::string_view text) const {
  // A null pointer would bind NULL in the place of an empty text.
  sqlite3_bind_text64(get(), index, text.empty() ? "" : text.data(), text.size(), SQLITE_STATIC,
                      SQLITE_UTF8);
}

bool SqliteStatement::step() const {
  const int code = sqlite3_step(get());
  if (code == SQLITE_ROW) {
    return true;
  }
  if (code == SQLITE_DONE) {
    return false;
  }
  // The message is that of the last call, so it is read before the reset, which gives back the
  // statement's locks.
  SqliteFailure failure{code, sqlite3_errmsg(sqlite3_db_handle(get()))};
  reset();
  throw failure;
}

void SqliteStatement::run() const {
  while (step()) {
  }
  reset();
}

std::string_view SqliteStatement::text(int column) const {
  const unsigned char* const text = sqlite3_column_text(get(), column);
  if (text == nullptr) {
    return {};
  }
  return {reinterpret_cast<const char*>(text),
          static_cast<std::size_t>(sqlite3_column_bytes(get(), column))};
}

SqliteDatabase::SqliteDatabase(const std::string& path, int flags) {
  sqlite3* database = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &database, flags, nullptr);
  // Kept before the code is looked at: a file that does not open leaves a handle, too, which has
  // the message and must be closed.
  handle_.reset(database);
  if (code != SQLITE_OK) {
    fail(database, code);
  }
  // The extended codes say which kind of constraint was broken.
  sqlite3_extended_result_codes(database, 1);
}

SqliteStatement SqliteDatabase::prepare(std::string_view sql) const {
  sqlite3_stmt* statement = nullptr;
  // PERSISTENT: plans live long, and so do not use up the memory that SQLite keeps at hand for
  // short-lived statements.
  const int code = sqlite3_prepare_v3(get(), sql.data(), static_cast<int>(sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  if (code != SQLITE_OK) {
    fail(get(), code);
  }
  return SqliteStatement(statement);
}

void SqliteDatabase::execute(const std::string& sql) const {
  const int code = sqlite3_exec(get(), sql.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) {
    fail(get(), code);
  }
}

std::int64_t SqliteDatabase::queryInteger(std::string_view sql) const {
  const SqliteStatement statement = prepare(sql);
  return statement.step() ? statement.integer(0) : 0;
}

}  // namespace azcoll::embedded
