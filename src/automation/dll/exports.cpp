#include <cwchar>

#include "automation/class_factory.h"
#include "automation/module.h"
#include "automation/registration.h"

// What the system and regsvr32 call.

STDAPI DllGetClassObject(REFCLSID clsid, REFIID identifier, LPVOID* result) {
  return azcoll::automation::getClassFactory(clsid, identifier, result);
}

STDAPI DllCanUnloadNow() { return azcoll::automation::ModuleUse::none() ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
  return azcoll::automation::registerServer(azcoll::automation::Registration::Machine);
}

STDAPI DllUnregisterServer() {
  return azcoll::automation::unregisterServer(azcoll::automation::Registration::Machine);
}

/// `regsvr32 /n /i:user` registers for the current user alone, which needs no administrator.
STDAPI DllInstall(BOOL install, PCWSTR argument) {
  using azcoll::automation::Registration;
  const bool user = argument != nullptr && _wcsicmp(argument, L"user") == 0;
  const Registration scope = user ? Registration::User : Registration::Machine;
  return install != FALSE ? azcoll::automation::registerServer(scope)
                          : azcoll::automation::unregisterServer(scope);
}
