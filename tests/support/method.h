#pragma once

#include "component/service.h"

namespace azcoll::test {

/// A method of the service that gives nothing back, for tests that put several through the same.
using Method = void (CLSCO_AZIENDECOLL::*)() noexcept;

}  // namespace azcoll::test
