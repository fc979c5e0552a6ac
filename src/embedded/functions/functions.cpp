#include "embedded/functions/functions.h"

#include <array>
#include <string>

#include "data/powers_of_ten.h"
#include "embedded/sqlite/handle.h"
#include "embedded/values/collation.h"
#include "embedded/values/conversions.h"
#include "embedded/values/number_values.h"

namespace azcoll::embedded {

namespace {

int collate(void*, int leftSize, const void* left, int rightSize, const void* right) {
  return compareText({static_cast<const char*>(left), static_cast<std::size_t>(leftSize)},
                     {static_cast<const char*>(right), static_cast<std::size_t>(rightSize)});
}

void castValue(const FunctionCallFrame& frame) {
  if (frame.isNull(0)) {
    frame.giveNull();
    return;
  }
  frame.give(convert(frame.value(0), frame.type(1), frame.type(2),
                     static_cast<Conversion>(frame.integer(3))));
}

void readVariable(const FunctionCallFrame& frame) {
  frame.give(frame.state().variables->at(static_cast<std::size_t>(frame.integer(0))));
}

/// The value of a subquery of which at most one row is allowed.
/// The first argument is the number of rows, two at most: the query inside stops at the second.
void single(const FunctionCallFrame& frame) {
  if (frame.integer(0) > 1) {
    throw SqlError(512,
                   "Subquery returned more than 1 value. This is not permitted when the "
                   "subquery follows =, !=, <, <= , >, >= or when the subquery is used as an "
                   "expression.");
  }
  frame.giveArgument(1);
}

/// SQLite takes a negative LIMIT for none at all.
void top(const FunctionCallFrame& frame) {
  if (frame.isNull(0) || frame.integer(0) < 0) {
    throw SqlError(1060,
                   "The number of rows provided for a TOP or FETCH clauses row count "
                   "parameter must be an integer.");
  }
  frame.giveArgument(0);
}

constexpr std::array<FunctionEntry, 4> kGeneral{{
    {"ts_cast", 4, reportingErrors<castValue>},
    // Not deterministic: the variable changes from row to row.
    {"ts_var", 1, reportingErrors<readVariable>, false},
    {"ts_single", 2, reportingErrors<single>},
    {"ts_top", 1, reportingErrors<top>},
}};

void require(sqlite3* database, int code) {
  if (code != SQLITE_OK) {
    throw SqliteFailure{code, sqlite3_errmsg(database)};
  }
}

void add(sqlite3* database, RuntimeState& state, const FunctionEntry& entry) {
  // INNOCUOUS: the others are forbidden to a file's CHECK constraints (TRUSTED_SCHEMA is off).
  // DETERMINISTIC: only such functions may stand there, and SQLite evaluates one of constant
  // arguments once.
  const int flags =
      SQLITE_UTF8 | SQLITE_INNOCUOUS | (entry.deterministic ? SQLITE_DETERMINISTIC : 0);
  require(database, sqlite3_create_function_v2(database, entry.name, entry.arguments, flags, &state,
                                               entry.call, nullptr, nullptr, nullptr));
}

}  // namespace

void registerFunctions(sqlite3* database, RuntimeState& state) {
  require(database, sqlite3_create_collation_v2(database, kCollationName, SQLITE_UTF8, nullptr,
                                                collate, nullptr));
  for (const FunctionEntry& entry : kGeneral) {
    add(database, state, entry);
  }
  for (const auto* const functions : {&numberFunctions(), &textFunctions(), &dateFunctions()}) {
    for (const FunctionEntry& entry : *functions) {
      add(database, state, entry);
    }
  }
  registerAggregates(database, state);
}

bool FunctionCallFrame::anyNull() const {
  for (int i = 0; i < count_; ++i) {
    if (isNull(i)) {
      return true;
    }
  }
  return false;
}

std::string_view FunctionCallFrame::text(int index) const {
  const unsigned char* const text = sqlite3_value_text(arguments_[index]);
  if (text == nullptr) {
    return {};
  }
  return {reinterpret_cast<const char*>(text),
          static_cast<std::size_t>(sqlite3_value_bytes(arguments_[index]))};
}

void FunctionCallFrame::give(std::string_view text) const {
  // A null pointer would give NULL in the place of an empty text.
  sqlite3_result_text64(context_, text.empty() ? "" : text.data(), text.size(), SQLITE_TRANSIENT,
                        SQLITE_UTF8);
}

void FunctionCallFrame::give(const Value& value) const {
  switch (value.tag) {
    case Value::Tag::Null:
      giveNull();
      break;
    case Value::Tag::Integer:
      give(value.integer);
      break;
    case Value::Tag::Real:
      give(value.real);
      break;
    case Value::Tag::Text:
      give(std::string_view(value.text));
      break;
    case Value::Tag::Wide: {
      std::array<unsigned char, kWideBytes> bytes{};
      storeWide(value.wide, bytes.data());
      sqlite3_result_blob(context_, bytes.data(), kWideBytes, SQLITE_TRANSIENT);
      break;
    }
  }
}

/// Checked here for all of them: 128 bits hold more than 38 digits.
void FunctionCallFrame::giveWide(Int128 digits) const {
  const Int128 limit = powerOfTen(Decimal::kMaxDigits);
  if (digits >= limit || digits <= -limit) {
    failDecimalOverflow();
  }
  give(Value::ofDigits(digits, Decimal::kMaxDigits));
}

RuntimeState& FunctionCallFrame::state() const {
  return *static_cast<RuntimeState*>(sqlite3_user_data(context_));
}

void failDecimalOverflow() {
  throw SqlError(8115, "Arithmetic overflow error converting expression to data type numeric.");
}

}  // namespace azcoll::embedded
