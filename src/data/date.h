#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace azcoll {

/// Calendar date with an optional time of day, without time zone (Gregorian, years 1 to 9999).
struct Date {
  std::int16_t year = 1900;
  std::int8_t month = 1;
  std::int8_t day = 1;
  std::int8_t hour = 0;
  std::int8_t minute = 0;
  std::int8_t second = 0;
  std::int16_t millisecond = 0;

  /// The date of these parts; empty when the calendar or the clock has no such moment.
  static std::optional<Date> of(int year, int month, int day, int hour = 0, int minute = 0,
                                int second = 0, int millisecond = 0);

  /// The day `days` after 1 January 1900, at midnight; empty outside the years 1 to 9999.
  static std::optional<Date> ofDayNumber(std::int64_t days);

  /// Reads `dd/mm/yyyy`, `d/m/yyyy`, `yyyy-mm-dd` and `yyyymmdd`, each with an optional time
  /// ` hh:mm[:ss[.fff]]` (a `T` may stand before the time in the dashed form). The calendar is
  /// checked; anything else gives nothing.
  static std::optional<Date> parse(std::string_view text);

  /// Days since 1 January 1900, below zero before it. The time of day does not count.
  [[nodiscard]] std::int64_t dayNumber() const;

  [[nodiscard]] bool hasTime() const;

  /// `dd/mm/yyyy`, followed by ` hh:mm:ss` only when there is a time.
  [[nodiscard]] std::string text() const;

  /// Appends what `text` gives to `target`.
  void appendTo(std::string& target) const;

  /// `yyyymmdd`, followed by ` hh:mm:ss` only when there is a time: the form that SQL Server reads
  /// the same under every language setting.
  [[nodiscard]] std::string databaseText() const;

  /// `yyyy-mm-dd hh:mm:ss.fff`, always 23 characters: sorts as the dates do.
  [[nodiscard]] std::string isoText() const;

  // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the defaulted comparison for a 0
  friend constexpr auto operator<=>(const Date&, const Date&) = default;
};

}  // namespace azcoll
