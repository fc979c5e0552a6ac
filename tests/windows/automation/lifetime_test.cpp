// How long objects and the module itself live.

#include <gtest/gtest.h>
#include <string>

#include "ado/wide_text.h"
#include "windows/client.h"
#include "windows/module.h"

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

/// References that are held on an object besides the one that is looked through.
ULONG references(IDispatch* object) {
  object->AddRef();
  return object->Release();
}

// A copy of the library under another name: the system keeps the registered one loaded.
TEST(LifetimeOfTheDll, HoldsNothingAfterAHundredThousandObjectsAndUnloads) {
  const std::wstring copy = programFolder() + L"copia.dll";
  ASSERT_TRUE(CopyFileW((libraryFolder() + L"AZCOLLSRV.dll").c_str(), copy.c_str(), FALSE));
  LoadedModule module{copy};
  {
    using GetFactory = HRESULT STDMETHODCALLTYPE(REFCLSID, REFIID, LPVOID*);
    CLSID identifier{};
    ASSERT_EQ(CLSIDFromProgID(kService, &identifier), S_OK);
    ado::ComPtr<IClassFactory> factory;
    ASSERT_EQ(module.function<GetFactory>("DllGetClassObject")(
                  identifier, IID_IClassFactory, reinterpret_cast<void**>(factory.receive())),
              S_OK);
    for (int round = 0; round < 100000; ++round) {
      ado::ComPtr<IDispatch> object;
      ASSERT_EQ(factory->CreateInstance(nullptr, IID_IDispatch,
                                        reinterpret_cast<void**>(object.receive())),
                S_OK);
      ado::ComPtr<IDispatch> parameters;
      {
        ado::Dispatch service{object};
        ado::Dispatch input{service.getObject(L"CPInput")};
        input.put(L"Pvar_Ditta", round);
        service.call(L"DuplicaCliFor");
        ASSERT_EQ(read(service, L"Stato"), Variant{std::int16_t{1}});
        parameters = input.object();
      }
      ASSERT_EQ(references(object.get()), 1U);
      ASSERT_EQ(references(parameters.get()), 2U);  // the service's and ours
      ASSERT_EQ(object.detach()->Release(), 0U);
      ASSERT_EQ(parameters.detach()->Release(), 0U);
    }
    EXPECT_EQ(module.canUnload(), S_FALSE);  // the factory
  }
  EXPECT_EQ(module.canUnload(), S_OK);
  module.free();
  EXPECT_EQ(GetModuleHandleW(L"copia.dll"), nullptr);
  EXPECT_TRUE(DeleteFileW(copy.c_str()));
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

// The runner of the tests runs this one again when nothing is registered.
TEST(ManifestOfTheDll, IsEnoughToCreateItsObjects) {
  const std::wstring manifest = libraryFolder() + L"AZCOLLSRV.manifest";
  ACTCTXW context{};
  context.cbSize = sizeof(context);
  context.lpSource = manifest.c_str();
  HANDLE const handle = CreateActCtxW(&context);
  ASSERT_NE(handle, INVALID_HANDLE_VALUE) << GetLastError();
  ULONG_PTR cookie = 0;
  ASSERT_TRUE(ActivateActCtx(handle, &cookie));
  for (const wchar_t* const progId : {kService, kInput, kOutput}) {
    CLSID identifier{};
    ACTCTX_SECTION_KEYED_DATA found{};
    found.cbSize = sizeof(found);
    EXPECT_EQ(CLSIDFromProgID(progId, &identifier), S_OK);
    EXPECT_TRUE(FindActCtxSectionGuid(0, nullptr, ACTIVATION_CONTEXT_SECTION_COM_SERVER_REDIRECTION,
                                      &identifier, &found));
  }
  {
    ado::Dispatch service = created(kService);
    service.call(L"DuplicaCliFor");
    EXPECT_EQ(service.getText(L"Errore"), "Stringa di connessione mancante!");
    ado::Dispatch input = created(kInput);
    input.put(L"CodiceAttività", 4711);
    service.putRef(L"CPInput", input.object().get());
    EXPECT_EQ(created(kOutput).getText(L"DitteCollegate"), "");
  }
  DeactivateActCtx(0, cookie);
  ReleaseActCtx(handle);
}

}  // namespace
}  // namespace azcoll::test
