#include "component/values.h"

#include <exception>
#include <optional>

#include "data/error.h"

namespace azcoll {

std::string currentDescription() {
  try {
    throw;
  } catch (const Error& error) {
    return error.description();
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    return "Errore non riconosciuto";
  }
}

bool isNumber(const Variant& value, std::int64_t number) noexcept {
  bool same = false;
  if (!value.isNull() && !value.isEmpty()) {
    ignoreErrors([&] { same = value.toDecimal() == Decimal::fromInteger(number); });
  }
  return same;
}

Date dayOf(const Variant& year, int month, int day) {
  const std::optional<Date> date = Date::of(static_cast<int>(year.toInt16()), month, day);
  if (!date) {
    throw Error("Anno di riferimento non valido");
  }
  return *date;
}

bool isPositive(const Variant& value) { return value.toDecimal() > Decimal::fromInteger(0); }

}  // namespace azcoll
