#include <string>

#include "embedded/functions/functions.h"
#include "embedded/values/date_values.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"

namespace azcoll::embedded {

namespace {

constexpr std::int64_t kSecond = 1000;
constexpr std::int64_t kMinute = 60 * kSecond;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

/// Milliseconds of a unit of time; 0 for a unit of the calendar.
std::int64_t unitOf(char part) {
  switch (part) {
    case 'd':
    case 'j':
      return kDay;
    case 'h':
      return kHour;
    case 'i':
      return kMinute;
    case 's':
      return kSecond;
    case 'l':
      return 1;
    default:
      return 0;
  }
}

std::int64_t monthsOf(char part) { return part == 'y' ? 12 : part == 'q' ? 3 : 1; }

void part(const FunctionCallFrame& frame) {
  if (frame.isNull(1)) {
    frame.giveNull();
    return;
  }
  const Date date = dateFromStored(frame.text(1));
  const auto give = [&frame](int number) { frame.give(std::int64_t{number}); };
  switch (frame.text(0).front()) {
    case 'y':
      return give(date.year);
    case 'q':
      return give((date.month + 2) / 3);
    case 'm':
      return give(date.month);
    case 'd':
      return give(date.day);
    case 'h':
      return give(date.hour);
    case 'i':
      return give(date.minute);
    case 's':
      return give(date.second);
    case 'l':
      return give(date.millisecond);
    // The day of the year.
    default:
      return frame.give(date.dayNumber() - Date{date.year, 1, 1}.dayNumber() + 1);
  }
}

std::optional<Date> addMonths(const Date& date, std::int64_t months) {
  const std::int64_t all = std::int64_t{date.year} * 12 + date.month - 1 + months;
  // Months since the year 0: the calendar begins with the year 1 and ends with 9999.
  if (all < 12 || all >= std::int64_t{10000} * 12) {
    return std::nullopt;
  }
  const auto year = static_cast<int>(all / 12);
  const auto month = static_cast<int>(all % 12) + 1;
  int day = date.day;
  while (!Date::of(year, month, day)) {
    --day;  // the last day of a shorter month
  }
  return Date::of(year, month, day, date.hour, date.minute, date.second, date.millisecond);
}

std::optional<Date> addTime(const Date& date, std::int64_t count, std::int64_t unit) {
  // Counts are 32 bits wide, so nothing overflows here.
  const std::int64_t all = timeOfDay(date) + count * unit;
  std::int64_t days = all / kDay;
  std::int64_t rest = all % kDay;
  // C++ divides towards 0; a moment before midnight belongs to the day before.
  if (rest < 0) {
    rest += kDay;
    --days;
  }
  const auto day = Date::ofDayNumber(date.dayNumber() + days);
  return day ? std::optional(withTime(*day, rest)) : std::nullopt;
}

void add(const FunctionCallFrame& frame) {
  if (frame.anyNull()) {
    frame.giveNull();
    return;
  }
  const char unit = frame.text(0).front();
  const Date date = dateFromStored(frame.text(2));
  const std::int64_t milliseconds = unitOf(unit);
  std::optional<Date> sum = milliseconds == 0 ? addMonths(date, frame.integer(1) * monthsOf(unit))
                                              : addTime(date, frame.integer(1), milliseconds);
  const Type type = frame.type(3);
  // A type may end before the calendar does, and rounds to its own step.
  sum = sum ? fitDate(*sum, type) : std::nullopt;
  if (!sum) {
    throw SqlError(517, "Adding a value to a '" + std::string(typeName(type)) +
                            "' column caused an overflow.");
  }
  frame.give(std::string_view(storedDate(*sum, type)));
}

/// Boundaries of the unit that lie between two moments.
void difference(const FunctionCallFrame& frame) {
  if (frame.anyNull()) {
    frame.giveNull();
    return;
  }
  const char unit = frame.text(0).front();
  const std::int64_t milliseconds = unitOf(unit);
  const auto boundary = [&](const Date& date) {
    if (milliseconds == 0) {
      return (std::int64_t{date.year} * 12 + date.month - 1) / monthsOf(unit);
    }
    // Counted from the year 1 on, so that a division always rounds down.
    const std::int64_t days = date.dayNumber() - Date{1, 1, 1}.dayNumber();
    return (days * kDay + timeOfDay(date)) / milliseconds;
  };
  const std::int64_t count =
      boundary(dateFromStored(frame.text(2))) - boundary(dateFromStored(frame.text(1)));
  if (count > INT32_MAX || count < INT32_MIN) {
    throw SqlError(535,
                   "The datediff function resulted in an overflow. The number of dateparts "
                   "separating two date/time instances is too large. Try to use datediff with "
                   "a less precise datepart.");
  }
  frame.give(count);
}

void text(const FunctionCallFrame& frame) {
  if (frame.isNull(0)) {
    frame.giveNull();
    return;
  }
  const std::string styled =
      styledDate(dateFromStored(frame.text(0)), frame.type(1), static_cast<int>(frame.integer(2)));
  frame.give(std::string_view(styled));
}

}  // namespace

const std::vector<FunctionEntry>& dateFunctions() {
  static const std::vector<FunctionEntry> kFunctions{
      {"ts_date_part", 2, reportingErrors<part>},
      {"ts_date_add", 4, reportingErrors<add>},
      {"ts_date_difference", 3, reportingErrors<difference>},
      {"ts_date_text", 3, reportingErrors<text>},
  };
  return kFunctions;
}

}  // namespace azcoll::embedded
