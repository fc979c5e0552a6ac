#pragma once

#include "ado/com.h"

namespace azcoll::automation {

/// The factory of the class `clsid`, as `DllGetClassObject` hands it out.
HRESULT getClassFactory(REFCLSID clsid, REFIID identifier, void** result) noexcept;

}  // namespace azcoll::automation
