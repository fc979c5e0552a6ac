#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <sqlite3.h>
#include <stdexcept>
#include <string>
#include <string_view>

#include "embedded/functions/functions.h"

/// The floor: SQLite as a program uses it that has prepared its statements by hand.
namespace azcoll::bench {

/// A statement that is prepared once, and bound and run many times.
class RawStatement {
 public:
  RawStatement(sqlite3* database, std::string_view sql) {
    if (sqlite3_prepare_v3(database, sql.data(), static_cast<int>(sql.size()),
                           SQLITE_PREPARE_PERSISTENT, &statement_, nullptr) != SQLITE_OK) {
      throw std::runtime_error(std::string("prepare: ") + sqlite3_errmsg(database));
    }
  }
  RawStatement(const RawStatement&) = delete;
  RawStatement(RawStatement&&) = delete;
  RawStatement& operator=(const RawStatement&) = delete;
  RawStatement& operator=(RawStatement&&) = delete;
  ~RawStatement() { sqlite3_finalize(statement_); }

  void bind(int index, std::int64_t value) { sqlite3_bind_int64(statement_, index, value); }
  void bind(int index, std::string_view value) {
    sqlite3_bind_text(statement_, index, value.data(), static_cast<int>(value.size()),
                      SQLITE_STATIC);
  }
  void bindNull(int index) { sqlite3_bind_null(statement_, index); }

  /// The next row, or false behind the last one, when the statement is ready to run again.
  bool step() {
    const int result = sqlite3_step(statement_);
    if (result == SQLITE_ROW) {
      return true;
    }
    sqlite3_reset(statement_);
    if (result != SQLITE_DONE) {
      throw std::runtime_error(std::string("step: ") +
                               sqlite3_errmsg(sqlite3_db_handle(statement_)));
    }
    return false;
  }
  std::int64_t integer(int column) { return sqlite3_column_int64(statement_, column); }

  /// Reads every column of every row as a program does that keeps the result; returns the rows.
  int readAll() {
    int rows = 0;
    while (step()) {
      ++rows;
      const int columns = sqlite3_column_count(statement_);
      for (int i = 0; i < columns; ++i) {
        switch (sqlite3_column_type(statement_, i)) {
          case SQLITE_INTEGER:
            sum_ += sqlite3_column_int64(statement_, i);
            break;
          case SQLITE_TEXT:
            sum_ += *sqlite3_column_text(statement_, i);
            break;
          default:
            break;
        }
      }
    }
    return rows;
  }

 private:
  sqlite3_stmt* statement_ = nullptr;
  std::int64_t sum_ = 0;
};

/// A database in memory with the content of a file that the engine has written.
class RawDatabase {
 public:
  explicit RawDatabase(const std::string& file) {
    sqlite3* source = nullptr;
    if (sqlite3_open_v2(":memory:", &database_,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                        nullptr) != SQLITE_OK ||
        sqlite3_open(file.c_str(), &source) != SQLITE_OK) {
      throw std::runtime_error("the database cannot be opened");
    }
    sqlite3_backup* const backup = sqlite3_backup_init(database_, "main", source, "main");
    sqlite3_backup_step(backup, -1);
    const bool copied = sqlite3_backup_finish(backup) == SQLITE_OK;
    sqlite3_close(source);
    if (!copied) {
      throw std::runtime_error("the database cannot be copied");
    }
    embedded::registerFunctions(database_, state_);
    run("PRAGMA foreign_keys = ON");
  }
  RawDatabase(const RawDatabase&) = delete;
  RawDatabase(RawDatabase&&) = delete;
  RawDatabase& operator=(const RawDatabase&) = delete;
  RawDatabase& operator=(RawDatabase&&) = delete;
  ~RawDatabase() { sqlite3_close(database_); }

  [[nodiscard]] sqlite3* handle() const { return database_; }
  [[nodiscard]] std::unique_ptr<RawStatement> prepare(std::string_view sql) const {
    return std::make_unique<RawStatement>(database_, sql);
  }
  void run(const std::string& sql) {
    char* message = nullptr;
    if (sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
      const std::string text = message == nullptr ? "exec" : message;
      sqlite3_free(message);
      throw std::runtime_error(text);
    }
  }

 private:
  sqlite3* database_ = nullptr;
  embedded::RuntimeState state_;
};

}  // namespace azcoll::bench
