#include "views/value_text.h"

#include <cstddef>

#include "data/date.h"

namespace azcoll::views {
namespace {

std::string isoText(const Date& date) {
  std::string full = date.isoText();
  constexpr std::size_t dateLength = 10;
  constexpr std::size_t secondsLength = 19;
  if (date.millisecond != 0) {
    return full;
  }
  return full.substr(0, date.hasTime() ? secondsLength : dateLength);
}

}  // namespace

std::string displayText(const Variant& value) {
  switch (value.kind()) {
    case Variant::Kind::Null:
      return "NULL";
    case Variant::Kind::Object:
      return value.object() ? "(oggetto)" : "";
    default:
      return value.text();
  }
}

std::string exchangeText(const Variant& value) {
  if (value.isNull()) {
    return {};
  }
  const Date* date = value.get<Date>();
  return date != nullptr ? isoText(*date) : displayText(value);
}

}  // namespace azcoll::views
