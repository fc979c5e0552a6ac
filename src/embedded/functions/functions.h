#pragma once

#include <optional>
#include <sqlite3.h>
#include <string_view>
#include <vector>

#include "data/decimal.h"
#include "embedded/sqlite/column_values.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "embedded/values/value.h"

namespace azcoll::embedded {

/// What the functions of a connection share with the engine that runs its statements.
struct RuntimeState {
  std::optional<SqlError> failure;                ///< why the running statement failed
  const std::vector<Value>* variables = nullptr;  ///< of the running batch or procedure
};

/// Gives the connection the collation and the functions that translated statements use. `state`
/// must live as long as the connection. Throws `SqliteFailure`.
void registerFunctions(sqlite3* database, RuntimeState& state);

/// One call of a function: its arguments and where its result goes.
class FunctionCallFrame {
 public:
  FunctionCallFrame(sqlite3_context* context, int count, sqlite3_value** arguments)
      : context_(context), count_(count), arguments_(arguments) {}

  [[nodiscard]] int count() const { return count_; }
  [[nodiscard]] bool isNull(int index) const {
    return sqlite3_value_type(arguments_[index]) == SQLITE_NULL;
  }
  [[nodiscard]] bool anyNull() const;
  [[nodiscard]] std::int64_t integer(int index) const {
    return sqlite3_value_int64(arguments_[index]);
  }
  [[nodiscard]] double real(int index) const { return sqlite3_value_double(arguments_[index]); }
  [[nodiscard]] bool isReal(int index) const {
    return sqlite3_value_type(arguments_[index]) == SQLITE_FLOAT;
  }
  [[nodiscard]] std::string_view text(int index) const;
  [[nodiscard]] Type type(int index) const { return decodeType(integer(index)); }
  [[nodiscard]] Value value(int index) const { return valueOf(arguments_[index]); }
  /// The digits of a whole number or decimal of either form.
  [[nodiscard]] Int128 digits(int index) const { return value(index).digits(); }

  void giveNull() const { sqlite3_result_null(context_); }
  void give(std::int64_t number) const { sqlite3_result_int64(context_, number); }
  void give(double number) const { sqlite3_result_double(context_, number); }
  void give(std::string_view text) const;
  void give(const Value& value) const;
  void giveArgument(int index) const { sqlite3_result_value(context_, arguments_[index]); }
  /// A wide decimal; throws `SqlError` 8115 beyond 38 digits.
  void giveWide(Int128 digits) const;

  [[nodiscard]] sqlite3_context* context() const { return context_; }
  [[nodiscard]] RuntimeState& state() const;

 private:
  sqlite3_context* context_;
  int count_;
  sqlite3_value** arguments_;
};

/// A function of SQLite: its name, its number of arguments (-1: any) and what it does.
struct FunctionEntry {
  const char* name;
  int arguments;
  void (*call)(sqlite3_context*, int, sqlite3_value**);
  bool deterministic = true;
};

/// Runs `Body` and turns what it throws into an error of the statement.
template <void (*Body)(const FunctionCallFrame&)>
void reportingErrors(sqlite3_context* context, int count, sqlite3_value** arguments) {
  const FunctionCallFrame frame(context, count, arguments);
  try {
    Body(frame);
  } catch (const SqlError& error) {
    // SQLite passes on a text only; the error itself, with its number, waits in the state.
    frame.state().failure = error;
    sqlite3_result_error(context, error.what(), -1);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  }
}

/// The functions by subject.
[[nodiscard]] const std::vector<FunctionEntry>& numberFunctions();
[[nodiscard]] const std::vector<FunctionEntry>& textFunctions();
[[nodiscard]] const std::vector<FunctionEntry>& dateFunctions();
/// Throws `SqliteFailure`.
void registerAggregates(sqlite3* database, RuntimeState& state);

/// The refusal of a decimal of more than 38 digits.
[[noreturn]] void failDecimalOverflow();

}  // namespace azcoll::embedded
