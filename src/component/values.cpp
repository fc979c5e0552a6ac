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

bool equalsNumber(const Variant& value, std::int64_t number) noexcept {
  bool same = false;
  if (!value.isNull() && !value.isEmpty()) {
    ignoreErrors([&] { same = value.toDecimal() == Decimal::fromInteger(number); });
  }
  return same;
}

std::optional<Date> dayOf(const Variant& year, int month, int day) {
  constexpr std::int64_t kLastYear = 9999;
  const std::int64_t number = year.toInt64();
  return number < 1 || number > kLastYear ? std::nullopt
                                          : Date::of(static_cast<int>(number), month, day);
}

bool isPositive(const Variant& value) { return value.toDecimal() > Decimal::fromInteger(0); }

}  // namespace azcoll
