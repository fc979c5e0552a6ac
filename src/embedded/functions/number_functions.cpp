#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <optional>

#include "data/decimal.h"
#include "embedded/functions/functions.h"
#include "embedded/sqlite/handle.h"
#include "embedded/values/number_values.h"
#include "embedded/values/sql_error.h"

namespace azcoll::embedded {

namespace {

[[noreturn]] void failDivision() { throw SqlError(8134, "Divide by zero error encountered."); }

[[noreturn]] void failBigInt() {
  throw SqlError(8115, "Arithmetic overflow error converting expression to data type bigint.");
}

/// Holds a whole number within its type. SQLite goes over to floating point where 64 bits end.
void checkInteger(const FunctionCallFrame& frame) {
  if (frame.isNull(0)) {
    frame.giveNull();
    return;
  }
  if (frame.isReal(0)) {
    failBigInt();
  }
  frame.give(checkedResult(frame.integer(0), frame.type(1)));
}

void divide(const FunctionCallFrame& frame) {
  if (frame.isNull(0) || frame.isNull(1)) {
    frame.giveNull();
    return;
  }
  const std::int64_t divisor = frame.integer(1);
  // SQLite's own division by zero gives NULL.
  if (divisor == 0) {
    failDivision();
  }
  // The one quotient that 64 bits do not hold; C++ leaves it undefined.
  if (divisor == -1 && frame.integer(0) == std::numeric_limits<std::int64_t>::min()) {
    failBigInt();
  }
  frame.give(checkedResult(frame.integer(0) / divisor, frame.type(2)));
}

/// A remainder is never larger than the number divided, so the type in the third argument is not
/// asked for.
void modulo(const FunctionCallFrame& frame) {
  if (frame.isNull(0) || frame.isNull(1)) {
    frame.giveNull();
    return;
  }
  const std::int64_t divisor = frame.integer(1);
  if (divisor == 0) {
    failDivision();
  }
  // C++ leaves the least number modulo -1 undefined.
  frame.give(divisor == -1 ? std::int64_t{0} : frame.integer(0) % divisor);
}

void checkFloat(const FunctionCallFrame& frame) {
  if (frame.isNull(0)) {
    frame.giveNull();
    return;
  }
  // SQLite goes on with infinity.
  if (!std::isfinite(frame.real(0))) {
    throw SqlError(8115, "Arithmetic overflow error converting expression to data type float.");
  }
  frame.give(frame.real(0));
}

/// Decided before dividing, because a quotient by zero would be infinity and have the other
/// message.
void divideFloats(const FunctionCallFrame& frame) {
  if (frame.anyNull()) {
    frame.giveNull();
    return;
  }
  if (frame.real(1) == 0) {
    failDivision();
  }
  const double quotient = frame.real(0) / frame.real(1);
  if (!std::isfinite(quotient)) {
    throw SqlError(8115, "Arithmetic overflow error converting expression to data type float.");
  }
  frame.give(quotient);
}

Int128 multiply(Int128 a, Int128 b) {
  const std::optional<Int128> product = productWithin(a, b);
  if (!product) {
    failDecimalOverflow();
  }
  return *product;
}

template <typename Operation>
void wide(const FunctionCallFrame& frame, Operation operation) {
  if (frame.anyNull()) {
    frame.giveNull();
  } else {
    frame.giveWide(operation());
  }
}

// Digits alone are enough here: the binder has brought both sides of a sum to one scale and added
// the scales of a product (evaluateDecimals).
void negateWide(const FunctionCallFrame& frame) {
  wide(frame, [&] { return -frame.digits(0); });
}
void absoluteWide(const FunctionCallFrame& frame) {
  wide(frame, [&] { return frame.digits(0) < 0 ? -frame.digits(0) : frame.digits(0); });
}
// Two numbers of 38 digits never leave 128 bits when they are added.
void addWide(const FunctionCallFrame& frame) {
  wide(frame, [&] { return frame.digits(0) + frame.digits(1); });
}
void subtractWide(const FunctionCallFrame& frame) {
  wide(frame, [&] { return frame.digits(0) - frame.digits(1); });
}
void multiplyWide(const FunctionCallFrame& frame) {
  wide(frame, [&] { return multiply(frame.digits(0), frame.digits(1)); });
}

// ---------------------------------------------------------------- aggregates

/// What SQLite keeps of a sum between two rows. Its memory is aligned for 64 bits only, so that the
/// 128 bits of the total are held as bytes.
struct Sum {
  std::array<unsigned char, sizeof(Int128)> bytes;
  std::int64_t count;

  [[nodiscard]] Int128 total() const {
    Int128 number = 0;
    std::memcpy(&number, bytes.data(), bytes.size());
    return number;
  }
  void setTotal(Int128 number) { std::memcpy(bytes.data(), &number, bytes.size()); }
};

/// The sum of the group; without `create` null when no row has been added. SQLite gives the memory
/// zeroed.
Sum* sumOf(sqlite3_context* context, bool create) {
  return static_cast<Sum*>(
      sqlite3_aggregate_context(context, create ? static_cast<int>(sizeof(Sum)) : 0));
}

void addToSum(const FunctionCallFrame& frame) {
  if (frame.isNull(0)) {
    return;
  }
  Sum* const sum = sumOf(frame.context(), true);
  if (sum == nullptr) {
    throw std::bad_alloc();
  }
  // In 128 bits, so that only the end of a sum decides whether it fits its type, not the order of
  // the rows.
  const std::optional<Int128> total = sumWithin(sum->total(), frame.digits(0));
  if (!total) {
    failDecimalOverflow();
  }
  sum->setTotal(*total);
  ++sum->count;
}

std::int64_t within64Bits(Int128 number) {
  if (number > std::numeric_limits<std::int64_t>::max() ||
      number < std::numeric_limits<std::int64_t>::min()) {
    failBigInt();
  }
  return static_cast<std::int64_t>(number);
}

void finishDecimalSum(const FunctionCallFrame& frame) {
  const Sum* const sum = sumOf(frame.context(), false);
  if (sum == nullptr || sum->count == 0) {
    frame.giveNull();
  } else {
    frame.giveWide(sum->total());
  }
}

void finishSum(const FunctionCallFrame& frame) {
  const Sum* const sum = sumOf(frame.context(), false);
  if (sum == nullptr || sum->count == 0) {
    frame.giveNull();
  } else {
    frame.give(within64Bits(sum->total()));
  }
}

/// The average of whole numbers is a whole number, its fraction cut off.
void finishAverage(const FunctionCallFrame& frame) {
  const Sum* const sum = sumOf(frame.context(), false);
  if (sum == nullptr || sum->count == 0) {
    frame.giveNull();
  } else {
    frame.give(within64Bits(sum->total() / sum->count));
  }
}

/// The end of a group has no arguments.
template <void (*Body)(const FunctionCallFrame&)>
void finish(sqlite3_context* context) {
  reportingErrors<Body>(context, 0, nullptr);
}

}  // namespace

const std::vector<FunctionEntry>& numberFunctions() {
  static const std::vector<FunctionEntry> kFunctions{
      {"ts_integer", 2, reportingErrors<checkInteger>},
      {"ts_divide", 3, reportingErrors<divide>},
      {"ts_modulo", 3, reportingErrors<modulo>},
      {"ts_float", 1, reportingErrors<checkFloat>},
      {"ts_float_divide", 2, reportingErrors<divideFloats>},
      {"ts_wide_negate", 1, reportingErrors<negateWide>},
      {"ts_wide_abs", 1, reportingErrors<absoluteWide>},
      {"ts_wide_add", 2, reportingErrors<addWide>},
      {"ts_wide_subtract", 2, reportingErrors<subtractWide>},
      {"ts_wide_multiply", 2, reportingErrors<multiplyWide>},
  };
  return kFunctions;
}

void registerAggregates(sqlite3* database, RuntimeState& state) {
  struct Aggregate {
    const char* name;
    void (*finish)(sqlite3_context*);
  };
  for (const Aggregate& aggregate :
       {Aggregate{"ts_sum_decimal", finish<finishDecimalSum>},
        Aggregate{"ts_sum", finish<finishSum>}, Aggregate{"ts_average", finish<finishAverage>}}) {
    const int code = sqlite3_create_function_v2(
        database, aggregate.name, 1, SQLITE_UTF8 | SQLITE_INNOCUOUS | SQLITE_DETERMINISTIC, &state,
        nullptr, reportingErrors<addToSum>, aggregate.finish, nullptr);
    if (code != SQLITE_OK) {
      throw SqliteFailure{code, sqlite3_errmsg(database)};
    }
  }
}

}  // namespace azcoll::embedded
