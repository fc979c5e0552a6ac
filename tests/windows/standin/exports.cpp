// The stand-in as an in-process server under ADO's ProgIDs, for a scratch Wine prefix only.

#include <array>
#include <new>
#include <string>

#include "windows/standin/objects.h"

namespace azcoll::test {
namespace {

struct StandInClass {
  const wchar_t* progId;
  const wchar_t* identifier;
  IDispatch* (*create)();
};

template <typename Class>
IDispatch* make() {
  return new Class;
}

constexpr std::array kClasses{
    StandInClass{L"ADODB.Connection", L"{5B0C1C5E-6E0B-4A44-9B3B-2F0E6E0D0A01}",
                 &make<StandInConnection>},
    StandInClass{L"ADODB.Recordset", L"{5B0C1C5E-6E0B-4A44-9B3B-2F0E6E0D0A02}",
                 &make<StandInRecordset>},
    StandInClass{L"ADODB.Command", L"{5B0C1C5E-6E0B-4A44-9B3B-2F0E6E0D0A03}",
                 &make<StandInCommand>}};

class StandInFactory final : public IClassFactory {
 public:
  explicit StandInFactory(const StandInClass& made) : made_{made} {}
  virtual ~StandInFactory() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID identifier, void** result) override {
    if (!IsEqualGUID(identifier, IID_IUnknown) && !IsEqualGUID(identifier, IID_IClassFactory)) {
      *result = nullptr;
      return E_NOINTERFACE;
    }
    *result = this;
    return S_OK;
  }
  // One per class, for as long as the module is loaded.
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID identifier,
                                           void** result) override {
    *result = nullptr;
    if (outer != nullptr) {
      return CLASS_E_NOAGGREGATION;
    }
    return ado::ComPtr<IDispatch>::adopt(made_.create())->QueryInterface(identifier, result);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  const StandInClass& made_;
};

LSTATUS writeText(const std::wstring& key, const std::wstring& text) {
  return RegSetKeyValueW(HKEY_LOCAL_MACHINE, (L"Software\\Classes\\" + key).c_str(), nullptr,
                         REG_SZ, text.c_str(),
                         static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

}  // namespace
}  // namespace azcoll::test

STDAPI DllGetClassObject(REFCLSID clsid, REFIID identifier, LPVOID* result) {
  using namespace azcoll::test;
  static std::array<StandInFactory, 3> factories{
      StandInFactory{kClasses[0]}, StandInFactory{kClasses[1]}, StandInFactory{kClasses[2]}};
  for (std::size_t index = 0; index < kClasses.size(); ++index) {
    CLSID known{};
    if (SUCCEEDED(CLSIDFromString(kClasses[index].identifier, &known)) &&
        IsEqualGUID(known, clsid)) {
      return factories[index].QueryInterface(identifier, result);
    }
  }
  *result = nullptr;
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return azcoll::test::liveObjects() == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
  using namespace azcoll::test;
  std::array<wchar_t, MAX_PATH> path{};
  GetModuleFileNameW(GetModuleHandleW(L"ado_standin.dll"), path.data(), MAX_PATH);
  for (const StandInClass& entry : kClasses) {
    const std::wstring server = L"CLSID\\" + std::wstring{entry.identifier} + L"\\InprocServer32";
    if (writeText(server, path.data()) != ERROR_SUCCESS ||
        writeText(std::wstring{entry.progId} + L"\\CLSID", entry.identifier) != ERROR_SUCCESS) {
      return E_FAIL;
    }
  }
  return S_OK;
}
