// The stand-in as an in-process server under ADO's ProgIDs, for a scratch Wine prefix only.

#include <array>
#include <string>

#include "windows/standin/classes.h"
#include "windows/standin/late_object.h"

namespace azcoll::test {
namespace {

LSTATUS writeText(const std::wstring& key, const std::wstring& text) {
  return RegSetKeyValueW(HKEY_LOCAL_MACHINE, (L"Software\\Classes\\" + key).c_str(), nullptr,
                         REG_SZ, text.c_str(),
                         static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

}  // namespace
}  // namespace azcoll::test

STDAPI DllGetClassObject(REFCLSID clsid, REFIID identifier, LPVOID* result) {
  for (azcoll::test::StandInClass& entry : azcoll::test::standInClasses()) {
    if (IsEqualGUID(entry.identifier(), clsid)) {
      return entry.factory.QueryInterface(identifier, result);
    }
  }
  *result = nullptr;
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return azcoll::test::liveObjects().empty() ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
  using namespace azcoll::test;
  std::array<wchar_t, MAX_PATH> path{};
  GetModuleFileNameW(GetModuleHandleW(L"ado_standin.dll"), path.data(), MAX_PATH);
  for (const StandInClass& entry : standInClasses()) {
    const std::wstring server = L"CLSID\\" + entry.identifierText + L"\\InprocServer32";
    if (writeText(server, path.data()) != ERROR_SUCCESS ||
        writeText(entry.progId + L"\\CLSID", entry.identifierText) != ERROR_SUCCESS) {
      return E_FAIL;
    }
  }
  return S_OK;
}
