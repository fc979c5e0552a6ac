#include "embedded/values/date_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>

#include "text/trimming.h"

namespace azcoll::embedded {

namespace {

constexpr std::int64_t kDayMilliseconds = 86'400'000;
constexpr std::int64_t kMinuteMilliseconds = 60'000;

struct Cursor {
  std::string_view rest;

  std::size_t digits() const {
    const std::size_t end = rest.find_first_not_of("0123456789");
    return end == std::string_view::npos ? rest.size() : end;
  }
  int take(std::size_t count) {
    int number = 0;
    std::from_chars(rest.data(), rest.data() + count, number);
    rest.remove_prefix(count);
    return number;
  }
  bool accept(char wanted) {
    if (!rest.starts_with(wanted)) {
      return false;
    }
    rest.remove_prefix(1);
    return true;
  }
};

struct Clock {
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;
  bool tooFine = false;
};

/// `hh:mm[:ss[.f…]]`; false when it is not a time.
bool readClock(Cursor& cursor, Clock& clock) {
  if (cursor.digits() < 1 || cursor.digits() > 2) {
    return false;
  }
  clock.hour = cursor.take(cursor.digits());
  if (!cursor.accept(':') || cursor.digits() < 1 || cursor.digits() > 2) {
    return false;
  }
  clock.minute = cursor.take(cursor.digits());
  if (cursor.accept(':')) {
    if (cursor.digits() < 1 || cursor.digits() > 2) {
      return false;
    }
    clock.second = cursor.take(cursor.digits());
    if (cursor.accept('.')) {
      const std::size_t digits = cursor.digits();
      constexpr std::size_t kMilliseconds = 3;
      constexpr std::size_t kFinest = 7;
      if (digits < 1 || digits > kFinest) {
        return false;
      }
      clock.tooFine = digits > kMilliseconds;
      clock.millisecond = cursor.take(digits);
      for (std::size_t i = digits; i < kMilliseconds; ++i) {
        clock.millisecond *= 10;
      }
    }
  }
  return cursor.rest.empty();
}

struct Day {
  int year = 1900;
  int month = 1;
  int day = 1;
  bool dashed = false;
};

/// The day in front; false when there is none.
bool readDay(Cursor& cursor, Day& day) {
  switch (cursor.digits()) {
    case 8:
      day = {cursor.take(4), cursor.take(2), cursor.take(2), false};
      return true;
    case 6: {
      const int year = cursor.take(2);
      // SQL Server's default: two digits mean 1950 to 2049.
      day = {year < 50 ? 2000 + year : 1900 + year, cursor.take(2), cursor.take(2), false};
      return true;
    }
    case 4:
      // Four digits alone are the first day of that year.
      day.year = cursor.take(4);
      if (!cursor.accept('-')) {
        return true;
      }
      if (cursor.digits() < 1 || cursor.digits() > 2) {
        return false;
      }
      day.month = cursor.take(cursor.digits());
      if (!cursor.accept('-') || cursor.digits() < 1 || cursor.digits() > 2) {
        return false;
      }
      day.day = cursor.take(cursor.digits());
      day.dashed = true;
      return true;
    default:
      return false;
  }
}

std::string format(const char* pattern, int a, int b, int c) {
  std::array<char, 48> buffer{};
  const int length = std::snprintf(buffer.data(), buffer.size(), pattern, a, b, c);
  return {buffer.data(), static_cast<std::size_t>(length)};
}

std::string clockText(const Date& date) {
  return format("%02d:%02d:%02d", date.hour, date.minute, date.second);
}

std::string milliseconds(const Date& date) { return format("%03d", date.millisecond, 0, 0); }

/// `Jan  2 2024  9:05AM`, the style 0.
std::string longStyle(const Date& date, bool withClock) {
  constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  std::string text = kMonths[static_cast<std::size_t>(date.month - 1)];
  text += format(" %2d %04d", date.day, date.year, 0);
  if (withClock) {
    const int hour = date.hour % 12 == 0 ? 12 : date.hour % 12;
    text += format(" %2d:%02d", hour, date.minute, 0) + (date.hour < 12 ? "AM" : "PM");
  }
  return text;
}

}  // namespace

ParsedDate parseDateText(std::string_view text) {
  Cursor cursor{trim(text)};
  Day day;
  Clock clock;
  // A time without a day is on 1 January 1900.
  const bool clockAlone = cursor.rest.find(':') != std::string_view::npos && cursor.digits() <= 2;
  if (!cursor.rest.empty() && !clockAlone) {
    if (!readDay(cursor, day)) {
      return {DateOutcome::Malformed, {}};
    }
    if (!cursor.rest.empty()) {
      // The `T` of ISO 8601 belongs to the form with dashes.
      const bool joined = day.dashed && cursor.accept('T');
      if (!joined && !cursor.rest.starts_with(' ')) {
        return {DateOutcome::Malformed, {}};
      }
      cursor.rest = trim(cursor.rest);
      if (!readClock(cursor, clock)) {
        return {DateOutcome::Malformed, {}};
      }
    }
  } else if (clockAlone && !readClock(cursor, clock)) {
    return {DateOutcome::Malformed, {}};
  }
  if (clock.tooFine) {
    return {DateOutcome::TooFine, {}};
  }
  const auto date = Date::of(day.year, day.month, day.day, clock.hour, clock.minute, clock.second,
                             clock.millisecond);
  return date ? ParsedDate{DateOutcome::Good, *date} : ParsedDate{DateOutcome::OutOfRange, {}};
}

std::int64_t timeOfDay(const Date& date) {
  return ((date.hour * 60 + date.minute) * 60 + date.second) * 1000 + date.millisecond;
}

Date withTime(Date date, std::int64_t milliseconds) {
  date.hour = static_cast<std::int8_t>(milliseconds / 3'600'000);
  date.minute = static_cast<std::int8_t>(milliseconds / kMinuteMilliseconds % 60);
  date.second = static_cast<std::int8_t>(milliseconds / 1000 % 60);
  date.millisecond = static_cast<std::int16_t>(milliseconds % 1000);
  return date;
}

std::optional<Date> fitDate(const Date& date, const Type& type) {
  std::int64_t time = timeOfDay(date);
  int firstYear = 1;
  int lastYear = 9999;
  switch (type.kind) {
    case TypeKind::Date:
      time = 0;
      break;
    case TypeKind::SmallDateTime:
      // Up to 29.998 seconds round down, from 29.999 on up.
      time = (time + kMinuteMilliseconds - 29'999) / kMinuteMilliseconds * kMinuteMilliseconds;
      firstYear = 1900;
      lastYear = 2079;
      break;
    case TypeKind::DateTime: {
      // DATETIME counts in 1/300 second: rounded to a tick, and back to the millisecond (…0, …3,
      // …7).
      const std::int64_t ticks = (time * 3 + 5) / 10;
      time = (ticks * 10 + 1) / 3;
      firstYear = 1753;
      break;
    }
    default: {
      std::int64_t step = 1;
      for (int i = type.scale; i < 3; ++i) {
        step *= 10;
      }
      time = (time + step / 2) / step * step;
      break;
    }
  }
  std::optional<Date> fitted = withTime(date, 0);
  if (time >= kDayMilliseconds) {
    time -= kDayMilliseconds;
    fitted = Date::ofDayNumber(date.dayNumber() + 1);
  }
  // SMALLDATETIME ends with 6 June 2079.
  const bool pastSmall = type.kind == TypeKind::SmallDateTime && fitted && fitted->year == 2079 &&
                         *fitted >= Date{2079, 6, 7, 0, 0, 0, 0};
  if (!fitted || fitted->year < firstYear || fitted->year > lastYear || pastSmall) {
    return std::nullopt;
  }
  return withTime(*fitted, time);
}

std::string storedDate(const Date& date, const Type& type) {
  std::string text = date.isoText();
  if (type.kind == TypeKind::Date) {
    text.resize(10);
  }
  return text;
}

Date dateFromStored(std::string_view text) {
  // The places are fixed. A DATE ends after the day, so what lies beyond counts as 0.
  const auto number = [text](std::size_t at, std::size_t length) {
    int value = 0;
    if (at + length <= text.size()) {
      std::from_chars(text.data() + at, text.data() + at + length, value);
    }
    return value;
  };
  return Date::of(number(0, 4), number(5, 2), number(8, 2), number(11, 2), number(14, 2),
                  number(17, 2), number(20, 3))
      .value_or(Date{});
}

bool isDateStyle(std::int64_t style) {
  constexpr std::array<std::int64_t, 6> kStyles{0, 103, 112, 120, 121, 126};
  return std::find(kStyles.begin(), kStyles.end(), style) != kStyles.end();
}

std::string styledDate(const Date& date, const Type& type, int style) {
  const bool clock = type.kind != TypeKind::Date;
  const std::string day = format("%04d-%02d-%02d", date.year, date.month, date.day);
  switch (style) {
    case 0:
      return longStyle(date, clock);
    case 103:
      return format("%02d/%02d/%04d", date.day, date.month, date.year);
    case 112:
      return format("%04d%02d%02d", date.year, date.month, date.day);
    case 120:
      return day + (clock ? " " + clockText(date) : "");
    case 121:
      return day + (clock ? " " + clockText(date) + "." + milliseconds(date) : "");
    default:
      return day + (!clock ? ""
                           : "T" + clockText(date) +
                                 (date.millisecond == 0 ? "" : "." + milliseconds(date)));
  }
}

Date currentDate() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  const auto fraction =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm local{};
#ifdef _WIN32
  localtime_s(&local, &seconds);
#else
  localtime_r(&seconds, &local);
#endif
  return Date::of(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                  local.tm_min, local.tm_sec > 59 ? 59 : local.tm_sec, static_cast<int>(fraction))
      .value_or(Date{});
}

}  // namespace azcoll::embedded
