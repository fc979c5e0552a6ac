#include "windows/standin/classes.h"

#include "windows/standin/objects.h"

namespace azcoll::test {

HRESULT LateFactory::QueryInterface(REFIID identifier, void** result) {
  if (!IsEqualGUID(identifier, IID_IUnknown) && !IsEqualGUID(identifier, IID_IClassFactory)) {
    *result = nullptr;
    return E_NOINTERFACE;
  }
  *result = this;
  return S_OK;
}

HRESULT LateFactory::CreateInstance(IUnknown* outer, REFIID identifier, void** result) {
  *result = nullptr;
  if (outer != nullptr) {
    return CLASS_E_NOAGGREGATION;
  }
  const auto made = ado::ComPtr<IDispatch>::adopt(create_());
  return made ? made->QueryInterface(identifier, result) : E_FAIL;
}

CLSID StandInClass::identifier() const {
  CLSID result{};
  CLSIDFromString(identifierText.c_str(), &result);
  return result;
}

namespace {

/// Creation is entered into the register too.
template <typename Class>
IDispatch* make() {
  auto* const made = new Class;
  callRegister().push_back("new " + made->kind());
  return made;
}

}  // namespace

std::array<StandInClass, 3>& standInClasses() {
  static std::array<StandInClass, 3> classes{
      StandInClass{L"ADODB.Connection", L"{5B0C1C5E-6E0B-4A44-9B3B-2F0E6E0D0A01}",
                   LateFactory{&make<StandInConnection>}},
      StandInClass{L"ADODB.Recordset", L"{5B0C1C5E-6E0B-4A44-9B3B-2F0E6E0D0A02}",
                   LateFactory{&make<StandInRecordset>}},
      StandInClass{L"ADODB.Command", L"{5B0C1C5E-6E0B-4A44-9B3B-2F0E6E0D0A03}",
                   LateFactory{&make<StandInCommand>}}};
  return classes;
}

}  // namespace azcoll::test
