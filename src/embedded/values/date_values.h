#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "data/date.h"
#include "embedded/values/types.h"

namespace azcoll::embedded {

/// What reading a date from a text came to.
enum class DateOutcome : std::uint8_t {
  Good,
  Malformed,   ///< not a date at all
  OutOfRange,  ///< built as a date, but there is no such day or moment
  TooFine  ///< more than three digits of a second: right for DATETIME2 alone, outside the engine
};

struct ParsedDate {
  DateOutcome outcome = DateOutcome::Good;
  Date date;
};

/// Reads the forms that SQL Server takes under every language setting: `yyyymmdd`, `yymmdd`,
/// `yyyy`, `yyyy-mm-dd`, each with an optional time ` hh:mm[:ss[.fff]]` (after a `T` in the dashed
/// form), a time alone, and nothing at all (1 January 1900). What depends on the language
/// (`01/02/2024`) is malformed here: it would be guessed.
[[nodiscard]] ParsedDate parseDateText(std::string_view text);

/// The date as a value of `type` stores it: DATETIME in steps of 1/300 second, SMALLDATETIME in
/// minutes, DATE without time. Nothing when the type does not reach that far.
[[nodiscard]] std::optional<Date> fitDate(const Date& date, const Type& type);

/// The text by which the database stores a date of `type`: 10 characters of a DATE, 23 otherwise.
[[nodiscard]] std::string storedDate(const Date& date, const Type& type);

/// Reads a stored date; 1 January 1900 for a text that is none.
[[nodiscard]] Date dateFromStored(std::string_view text);

/// Milliseconds since midnight.
[[nodiscard]] std::int64_t timeOfDay(const Date& date);
/// `date` with another time of day, below 24 hours.
[[nodiscard]] Date withTime(Date date, std::int64_t milliseconds);

/// Whether CONVERT writes dates in this style: 0 (`Mar  5 2024  1:07PM`), 103 (`05/03/2024`),
/// 112 (`20240305`), 120, 121 (ISO 8601 with a blank, to seconds or milliseconds), 126 (with a
/// `T`).
[[nodiscard]] bool isDateStyle(std::int64_t style);

/// A date of `type` as CONVERT writes it in a style that `isDateStyle` has; a DATE without a time.
[[nodiscard]] std::string styledDate(const Date& date, const Type& type, int style);

/// The clock's present moment.
[[nodiscard]] Date currentDate();

}  // namespace azcoll::embedded
