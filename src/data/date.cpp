#include "data/date.h"

#include <array>
#include <chrono>
#include <cstddef>

namespace azcoll {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr int kFirstYear = 1;
constexpr int kLastYear = 9999;

constexpr year_month_day calendarDay(int year, int month, int day) {
  return {std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
          std::chrono::day{static_cast<unsigned>(day)}};
}

constexpr sys_days kDayZero = calendarDay(1900, 1, 1);

constexpr bool within(int value, int lowest, int highest) {
  return value >= lowest && value <= highest;
}

constexpr bool isInCalendar(int year, int month, int day) {
  // The calendar's own types are narrower than the numbers that callers have.
  return within(year, kFirstYear, kLastYear) && within(month, 1, 12) && within(day, 1, 31) &&
         calendarDay(year, month, day).ok();
}

/// Reads a text from left to right; every step says whether it found what it wanted.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_{text} {}

  [[nodiscard]] bool done() const { return rest_.empty(); }

  bool take(char wanted) {
    if (!rest_.starts_with(wanted)) {
      return false;
    }
    rest_.remove_prefix(1);
    return true;
  }

  /// A number of `least` to `most` digits, with no digit after them.
  bool number(std::size_t least, std::size_t most, int& value) {
    const std::size_t digits = digitsAhead();
    if (digits < least || digits > most) {
      return false;
    }
    value = takeDigits(digits);
    return true;
  }

  [[nodiscard]] std::size_t digitsAhead() const {
    const std::size_t end = rest_.find_first_not_of("0123456789");
    return end == std::string_view::npos ? rest_.size() : end;
  }

  /// The next `count` digits, which must be there.
  int takeDigits(std::size_t count) {
    int value = 0;
    for (const char digit : rest_.substr(0, count)) {
      value = value * 10 + (digit - '0');
    }
    rest_.remove_prefix(count);
    return value;
  }

 private:
  std::string_view rest_;
};

struct DateParts {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
};

bool readTime(Reader& reader, DateParts& fields) {
  if (!reader.number(2, 2, fields.hour) || !reader.take(':') ||
      !reader.number(2, 2, fields.minute)) {
    return false;
  }
  if (!reader.take(':')) {
    return true;
  }
  if (!reader.number(2, 2, fields.second)) {
    return false;
  }
  if (!reader.take('.')) {
    return true;
  }
  const std::size_t digits = reader.digitsAhead();
  if (!reader.number(1, 3, fields.millisecond)) {
    return false;
  }
  for (std::size_t missing = digits; missing < 3; ++missing) {
    fields.millisecond *= 10;
  }
  return true;
}

/// The date part. `dashed`: whether it was written with dashes.
bool readDay(Reader& reader, DateParts& fields, bool& dashed) {
  switch (reader.digitsAhead()) {
    case 8:
      fields.year = reader.takeDigits(4);
      fields.month = reader.takeDigits(2);
      fields.day = reader.takeDigits(2);
      return true;
    case 4:
      dashed = true;
      return reader.number(4, 4, fields.year) && reader.take('-') &&
             reader.number(2, 2, fields.month) && reader.take('-') &&
             reader.number(2, 2, fields.day);
    default:
      return reader.number(1, 2, fields.day) && reader.take('/') &&
             reader.number(1, 2, fields.month) && reader.take('/') &&
             reader.number(4, 4, fields.year);
  }
}

void appendDigits(std::string& target, int value, int digits) {
  std::array<char, 4> buffer{};
  for (int index = digits - 1; index >= 0; --index) {
    buffer[static_cast<std::size_t>(index)] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
  target.append(buffer.data(), static_cast<std::size_t>(digits));
}

void appendTime(std::string& target, const Date& date) {
  target += ' ';
  appendDigits(target, date.hour, 2);
  target += ':';
  appendDigits(target, date.minute, 2);
  target += ':';
  appendDigits(target, date.second, 2);
}

}  // namespace

std::optional<Date> Date::of(int year, int month, int day, int hour, int minute, int second,
                             int millisecond) {
  if (!isInCalendar(year, month, day) || !within(hour, 0, 23) || !within(minute, 0, 59) ||
      !within(second, 0, 59) || !within(millisecond, 0, 999)) {
    return std::nullopt;
  }
  return Date{static_cast<std::int16_t>(year),       static_cast<std::int8_t>(month),
              static_cast<std::int8_t>(day),         static_cast<std::int8_t>(hour),
              static_cast<std::int8_t>(minute),      static_cast<std::int8_t>(second),
              static_cast<std::int16_t>(millisecond)};
}

std::optional<Date> Date::ofDayNumber(std::int64_t days) {
  constexpr std::int64_t kFirst = (sys_days{calendarDay(kFirstYear, 1, 1)} - kDayZero).count();
  constexpr std::int64_t kLast = (sys_days{calendarDay(kLastYear, 12, 31)} - kDayZero).count();
  // Compared before it is added to: the number comes from a caller and may be any.
  if (days < kFirst || days > kLast) {
    return std::nullopt;
  }
  const year_month_day day{kDayZero + std::chrono::days{days}};
  return Date{static_cast<std::int16_t>(int{day.year()}),
              static_cast<std::int8_t>(unsigned{day.month()}),
              static_cast<std::int8_t>(unsigned{day.day()})};
}

std::optional<Date> Date::parse(std::string_view text) {
  Reader reader{text};
  DateParts fields;
  bool dashed = false;
  if (!readDay(reader, fields, dashed)) {
    return std::nullopt;
  }
  if (!reader.done()) {
    const bool timeFollows = reader.take(' ') || (dashed && reader.take('T'));
    if (!timeFollows || !readTime(reader, fields) || !reader.done()) {
      return std::nullopt;
    }
  }
  return of(fields.year, fields.month, fields.day, fields.hour, fields.minute, fields.second,
            fields.millisecond);
}

std::int64_t Date::dayNumber() const {
  return (sys_days{calendarDay(year, month, day)} - kDayZero).count();
}

bool Date::hasTime() const { return hour != 0 || minute != 0 || second != 0 || millisecond != 0; }

std::string Date::text() const {
  std::string result;
  appendTo(result);
  return result;
}

void Date::appendTo(std::string& target) const {
  appendDigits(target, day, 2);
  target += '/';
  appendDigits(target, month, 2);
  target += '/';
  appendDigits(target, year, 4);
  if (hasTime()) {
    appendTime(target, *this);
  }
}

std::string Date::databaseText() const {
  std::string result;
  appendDigits(result, year, 4);
  appendDigits(result, month, 2);
  appendDigits(result, day, 2);
  if (hasTime()) {
    appendTime(result, *this);
  }
  return result;
}

std::string Date::isoText() const {
  std::string result;
  result.reserve(23);
  appendDigits(result, year, 4);
  result += '-';
  appendDigits(result, month, 2);
  result += '-';
  appendDigits(result, day, 2);
  appendTime(result, *this);
  result += '.';
  appendDigits(result, millisecond, 3);
  return result;
}

}  // namespace azcoll
