#pragma once

#include "ado/com.h"

namespace azcoll::automation {

/// For whom the classes are registered.
enum class Registration { Machine, User };

/// Enters classes, ProgIDs, interfaces with their earlier identifiers, and the type library into
/// the registry, pointing at this module. What was entered is taken away again when one part fails.
HRESULT registerServer(Registration scope) noexcept;

/// Takes all of it away. The other word size's part of the type library entry stays.
HRESULT unregisterServer(Registration scope) noexcept;

}  // namespace azcoll::automation
