// How long objects and the module itself live.

#include <gtest/gtest.h>
#include <string>

#include "ado/wide_text.h"
#include "windows/client.h"

namespace azcoll::test {
namespace {

using CanUnload = HRESULT(STDMETHODCALLTYPE*)();

HRESULT canUnload() {
  HMODULE const module = GetModuleHandleW(L"AZCOLLSRV.dll");
  EXPECT_NE(module, nullptr);
  const FARPROC address = GetProcAddress(module, "DllCanUnloadNow");
  return reinterpret_cast<CanUnload>(reinterpret_cast<void*>(address))();
}

TEST(LifetimeOfTheDll, MayBeUnloadedWhenNothingOfItIsHeld) {
  {
    ado::Dispatch service = created(kService);
    EXPECT_EQ(canUnload(), S_FALSE);
    const ado::Dispatch input{service.getObject(L"CPInput")};
    service = created(kOutput);
    EXPECT_EQ(canUnload(), S_FALSE);
  }
  EXPECT_EQ(canUnload(), S_OK);
}

TEST(LifetimeOfTheDll, CountsReferencesOfBothInterfacesTogether) {
  const ado::ComPtr<IDispatch> object = ado::createObject(kInput);
  const auto count = [&object] {
    object.get()->AddRef();
    return object.get()->Release();
  };
  EXPECT_EQ(count(), 1U);
  {
    const auto errors = object.as<ISupportErrorInfo>(IID_ISupportErrorInfo);
    ASSERT_TRUE(errors);
    EXPECT_EQ(count(), 2U);
    EXPECT_TRUE(ado::sameObject(object, errors));
  }
  EXPECT_EQ(count(), 1U);
}

TEST(LifetimeOfTheDll, HoldsNothingAfterAHundredThousandObjects) {
  for (int round = 0; round < 100000; ++round) {
    ado::Dispatch service = created(kService);
    ado::Dispatch input{service.getObject(L"CPInput")};
    input.put(L"Pvar_Ditta", round);
    service.call(L"DuplicaCliFor");
    ASSERT_EQ(read(service, L"Stato"), Variant{std::int16_t{1}});
  }
  EXPECT_EQ(canUnload(), S_OK);
}

TEST(LifetimeOfTheDll, ParameterObjectsOutliveTheirService) {
  ado::ComPtr<IDispatch> service = ado::createObject(kService);
  ado::Dispatch input{ado::Dispatch{service}.getObject(L"CPInput")};
  service = {};
  input.put(L"Pvar_Ditta", 5);
  EXPECT_EQ(input.getNumber(L"Pvar_Ditta"), 5);
}

TEST(LifetimeOfTheDll, RefusesAggregation) {
  CLSID identifier{};
  ASSERT_EQ(CLSIDFromProgID(kInput, &identifier), S_OK);
  const ado::ComPtr<IDispatch> outer = ado::createObject(kInput);
  void* made = nullptr;
  EXPECT_EQ(CoCreateInstance(identifier, outer.get(), CLSCTX_INPROC_SERVER, IID_IUnknown, &made),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(made, nullptr);
}

TEST(LifetimeOfTheDll, CanBeUsedThroughItsManifestAlone) {
  std::wstring path(MAX_PATH, L'\0');
  path.resize(GetModuleFileNameW(GetModuleHandleW(L"AZCOLLSRV.dll"), path.data(), MAX_PATH));
  const std::wstring folder = path.substr(0, path.rfind(L'\\') + 1);
  ACTCTXW context{};
  context.cbSize = sizeof(context);
  const std::wstring manifest = folder + L"AZCOLLSRV.manifest";
  context.lpSource = manifest.c_str();
  HANDLE const handle = CreateActCtxW(&context);
  ASSERT_NE(handle, INVALID_HANDLE_VALUE) << GetLastError();
  ULONG_PTR cookie = 0;
  ASSERT_TRUE(ActivateActCtx(handle, &cookie));
  ACTCTX_SECTION_KEYED_DATA found{};
  found.cbSize = sizeof(found);
  CLSID identifier{};
  EXPECT_EQ(CLSIDFromProgID(kService, &identifier), S_OK);
  EXPECT_TRUE(FindActCtxSectionGuid(0, nullptr, ACTIVATION_CONTEXT_SECTION_COM_SERVER_REDIRECTION,
                                    &identifier, &found));
  EXPECT_EQ(read(*std::make_unique<ado::Dispatch>(ado::createObject(kService)), L"Stato"),
            Variant{std::int16_t{0}});
  DeactivateActCtx(0, cookie);
  ReleaseActCtx(handle);
}

}  // namespace
}  // namespace azcoll::test
