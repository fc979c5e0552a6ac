#pragma once

#include <cstdint>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>

namespace azcoll::embedded {

/// A call of SQLite that failed: its (extended) result code and its message.
struct SqliteFailure {
  int code = SQLITE_OK;
  std::string message;
};

/// A prepared SQLite statement; movable, finalised with the object. Not usable when empty.
class SqliteStatement {
 public:
  SqliteStatement() = default;
  explicit SqliteStatement(sqlite3_stmt* statement) : handle_(statement) {}

  [[nodiscard]] sqlite3_stmt* get() const { return handle_.get(); }
  [[nodiscard]] explicit operator bool() const { return handle_ != nullptr; }

  void bind(int index, std::int64_t value) const;
  /// The text must stay as it is until the statement is run to its end.
  void bind(int index, std::string_view text) const;

  /// One step. True: a row is there. Throws `SqliteFailure`.
  [[nodiscard]] bool step() const;
  /// Runs to the end without looking at rows. Throws `SqliteFailure`.
  void run() const;
  void reset() const { sqlite3_reset(handle_.get()); }

  [[nodiscard]] std::int64_t integer(int column) const {
    return sqlite3_column_int64(handle_.get(), column);
  }
  /// Valid until the next step or reset.
  [[nodiscard]] std::string_view text(int column) const;

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  std::unique_ptr<sqlite3_stmt, Finalize> handle_;
};

/// An open SQLite database.
class SqliteDatabase {
 public:
  SqliteDatabase() = default;
  /// Opens `path` with the flags of sqlite3_open_v2. Throws `SqliteFailure`.
  SqliteDatabase(const std::string& path, int flags);

  [[nodiscard]] sqlite3* get() const { return handle_.get(); }
  [[nodiscard]] explicit operator bool() const { return handle_ != nullptr; }

  /// Throws `SqliteFailure`.
  [[nodiscard]] SqliteStatement prepare(std::string_view sql) const;
  /// Runs statements whose rows do not matter. Throws `SqliteFailure`.
  void execute(const std::string& sql) const;
  /// First column of the first row, 0 without a row. Throws `SqliteFailure`.
  [[nodiscard]] std::int64_t queryInteger(std::string_view sql) const;

  [[nodiscard]] bool inTransaction() const { return sqlite3_get_autocommit(handle_.get()) == 0; }

 private:
  struct Close {
    // A statement that outlives this object keeps the connection open; the last one closes it.
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
  };
  std::unique_ptr<sqlite3, Close> handle_;
};

}  // namespace azcoll::embedded
