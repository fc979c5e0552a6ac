#pragma once

#include <variant>

#include "service/members.h"
#include "service/service.h"

namespace azcoll::test {

/// A method of the service that gives nothing back, for tests that put several through the same.
using Method = void (CLSCO_AZIENDECOLL::*)() noexcept;

/// Calls the method behind an entry of the table of members and drops its result.
inline void callMethod(CLSCO_AZIENDECOLL& service, const MethodEntry& method) {
  std::visit([&service](auto member) { static_cast<void>((service.*member)()); }, method.member);
}

}  // namespace azcoll::test
