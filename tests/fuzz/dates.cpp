// Dates on any text: the date conversion that statements embed, the dates of the data layer, the
// dates of the engine. What one of them reads means the same to the others.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "component/platform.h"
#include "data/date.h"
#include "data/error.h"
#include "embedded/values/date_values.h"
#include "fuzz/check.h"
#include "fuzz/targets.h"
#include "text/trimming.h"

namespace azcoll::fuzz {
namespace {

using embedded::DateOutcome;
using embedded::Type;
using embedded::TypeKind;

constexpr Type kDate{TypeKind::Date, 0, 0, 0};
constexpr Type kSmallDateTime{TypeKind::SmallDateTime, 0, 0, 0};
constexpr Type kDateTime2{TypeKind::DateTime2, 0, 0, 3};

Date withoutMilliseconds(Date date) {
  date.millisecond = 0;
  return date;
}

/// The date that the engine reads, nothing when it reads none.
std::optional<Date> readByEngine(std::string_view text) {
  const embedded::ParsedDate parsed = embedded::parseDateText(text);
  return parsed.outcome == DateOutcome::Good ? std::optional(parsed.date) : std::nullopt;
}

/// Whole days by the rule of leap years, since the implementation asks the standard library.
std::int64_t daysSince1900(const Date& date) {
  constexpr std::array<int, 12> kBehind{0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  constexpr std::int64_t kBefore1900 = 693'595;
  const bool leap = date.year % 4 == 0 && (date.year % 100 != 0 || date.year % 400 == 0);
  const std::int64_t years = date.year - 1;
  return 365 * years + years / 4 - years / 100 + years / 400 +
         kBehind[static_cast<std::size_t>(date.month - 1)] + (leap && date.month > 2 ? 1 : 0) +
         date.day - 1 - kBefore1900;
}

void checkTexts(const Date& date) {
  const std::string about = date.isoText();
  require(Date::of(date.year, date.month, date.day, date.hour, date.minute, date.second,
                   date.millisecond) == date,
          "a date is in the calendar", about);
  require(Date::parse(date.text()) == withoutMilliseconds(date), "a date reads back", about);
  require(Date::parse(about) == date, "a sorting text reads back whole", about);
  const std::string database = date.databaseText();
  require(Date::parse(database) == withoutMilliseconds(date), "a database text reads back", about);
  require(readByEngine(database) == withoutMilliseconds(date), "the engine reads it alike", about);
  require(readByEngine(about) == date, "the engine reads a sorting text", about);
}

void checkDays(const Date& date) {
  const std::string about = date.isoText();
  const std::int64_t days = date.dayNumber();
  require(days == daysSince1900(date), "days are those of the calendar", about);
  const Date midnight = embedded::withTime(date, 0);
  require(Date::ofDayNumber(days) == midnight, "a day's number gives the day", about);
  require(embedded::withTime(midnight, embedded::timeOfDay(date)) == date, "a time of day", about);
  const auto next = Date::ofDayNumber(days + 1);
  require(!next || date.isoText().substr(0, 10) < next->isoText().substr(0, 10), "days sort",
          about);
}

/// A value of a type fits it for good, and is read as it was stored.
void checkTypes(const Date& date) {
  for (const Type& type : {kDate, kSmallDateTime, embedded::kDateTime, kDateTime2}) {
    const std::string about = date.isoText();
    const std::optional<Date> fitted = embedded::fitDate(date, type);
    if (!fitted) {
      require(type.kind != TypeKind::Date && type.kind != TypeKind::DateTime2,
              "these types reach every date", about);
      continue;
    }
    require(embedded::fitDate(*fitted, type) == fitted, "fitting twice changes nothing", about);
    const std::string stored = embedded::storedDate(*fitted, type);
    require(stored.size() == (type.kind == TypeKind::Date ? 10U : 23U), "stored texts sort",
            stored);
    require(embedded::dateFromStored(stored) == *fitted, "a stored date reads back", stored);
    const std::int64_t distance = (fitted->dayNumber() - date.dayNumber()) * 86'400'000 +
                                  embedded::timeOfDay(*fitted) - embedded::timeOfDay(date);
    const std::int64_t most = type.kind == TypeKind::DateTime        ? 2
                              : type.kind == TypeKind::DateTime2     ? 0
                              : type.kind == TypeKind::SmallDateTime ? 30'001
                                                                     : 86'399'999;
    require(distance <= most && distance >= -most, "fitting moves a date a little", about);
  }
}

/// The text of every style can be made; those that name the whole date read back.
void checkStyles(const Date& date) {
  constexpr int kMostStyle = 140;
  for (int style = -1; style <= kMostStyle; ++style) {
    if (!embedded::isDateStyle(style)) {
      continue;
    }
    const std::string text = embedded::styledDate(date, embedded::kDateTime, style);
    switch (style) {
      case 112:
        require(readByEngine(text) == embedded::withTime(date, 0), "style 112", text);
        break;
      case 120:
        require(readByEngine(text) == withoutMilliseconds(date), "style 120", text);
        break;
      case 121:
      case 126:
        require(readByEngine(text) == date, "the ISO styles", text);
        break;
      case 103:
        require(Date::parse(text) == embedded::withTime(date, 0), "style 103", text);
        break;
      default:
        break;
    }
  }
}

/// A platform whose only service is the date conversion.
class DatesOnly final : public Platform {
 public:
  [[nodiscard]] std::shared_ptr<Connection> newConnection(std::string_view /*text*/) override {
    throw Error("no provider here");
  }
};

void checkConverter(std::string_view text, const std::optional<Date>& expected) {
  DatesOnly platform;
  const auto converter = platform.newDateConverter();
  converter->setText(text);
  require((converter->validationResult() == 0) == expected.has_value(), "a date is valid", text);
  if (!expected) {
    require(converter->databaseForm().empty(), "what is no date has no form", text);
    return;
  }
  const std::string form = converter->databaseForm();
  require(form.find_first_not_of("0123456789 :") == std::string::npos, "a form needs no quoting",
          form);
  require(readByEngine(form) == withoutMilliseconds(*expected), "a form means the date", form);
  converter->setText("");
  require(converter->validationResult() != 0, "nothing is left of the date before", text);
}

}  // namespace

void dates(std::string_view input) {
  const std::optional<Date> date = Date::parse(input);
  const std::optional<Date> trimmed = Date::parse(trim(input));
  checkConverter(input, trimmed);
  const std::optional<Date> engineDate = readByEngine(input);
  require(!trimmed || !engineDate || *trimmed == *engineDate, "a date is read alike", input);
  for (const std::optional<Date>& read : {date, trimmed, engineDate}) {
    if (read) {
      checkTexts(*read);
      checkDays(*read);
      checkTypes(*read);
      checkStyles(*read);
    }
  }
  if (date && engineDate) {
    require((*date <=> *engineDate) == (date->isoText() <=> engineDate->isoText()),
            "sorting texts sort", input);
  }
}

}  // namespace azcoll::fuzz
