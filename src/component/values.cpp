#include "component/values.h"

#include <exception>

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

}  // namespace azcoll
