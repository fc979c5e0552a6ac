// Callers that are compiled against the type library call through the interface table itself.

#include <gtest/gtest.h>
#include <string>

#include "ado/wide_text.h"
#include "windows/client.h"

namespace azcoll::test {
namespace {

// Places in the interface tables, after the seven of IDispatch.
constexpr int kGetDitta = 7 + 4;
constexpr int kPutDitta = 7 + 5;
constexpr int kPutTipoCF = 7 + 8;
constexpr int kPutInput = 7 + 1;
constexpr int kGetErrore = 7 + 7;
constexpr int kDuplicaCliFor = 7 + 10;

template <typename... Arguments>
HRESULT callSlot(IDispatch* object, int slot, Arguments... arguments) {
  using Function = HRESULT STDMETHODCALLTYPE(IDispatch*, Arguments...);
  void* const* const table = *reinterpret_cast<void* const**>(object);
  return reinterpret_cast<Function*>(table[slot])(object, arguments...);
}

/// Description and source of the error that the last call left, as "source: description".
std::string lastError() {
  ado::ComPtr<IErrorInfo> error;
  if (GetErrorInfo(0, error.receive()) != S_OK) {
    return "";
  }
  BSTR source = nullptr;
  BSTR description = nullptr;
  error->GetSource(&source);
  error->GetDescription(&description);
  const std::string text = ado::textOf(source) + ": " + ado::textOf(description);
  SysFreeString(source);
  SysFreeString(description);
  return text;
}

TEST(EarlyBoundCallers, SetFieldsCallMethodsAndReadResults) {
  ado::Dispatch service = created(kService);
  const ado::ComPtr<IDispatch> input = service.getObject(L"CPInput");
  const ado::ScopedVariant company = ado::toVariant(5);
  EXPECT_EQ(callSlot(input.get(), kPutDitta, company.value()), S_OK);
  EXPECT_EQ(callSlot(input.get(), kPutTipoCF, 1), S_OK);
  ado::ScopedVariant back;
  EXPECT_EQ(callSlot(input.get(), kGetDitta, &back.raw()), S_OK);
  EXPECT_EQ(ado::fromVariant(back.value()), Variant{5});
  EXPECT_EQ(callSlot(service.object().get(), kDuplicaCliFor), S_OK);
  ado::ScopedVariant message;
  EXPECT_EQ(callSlot(service.object().get(), kGetErrore, &message.raw()), S_OK);
  EXPECT_EQ(ado::fromVariant(message.value()), Variant{"Stringa di connessione mancante!"});
}

TEST(EarlyBoundCallers, FindTheReasonOfARefusalInTheErrorObject) {
  const ado::ComPtr<IDispatch> input = ado::createObject(kInput);
  const auto errors = input.as<ISupportErrorInfo>(IID_ISupportErrorInfo);
  ASSERT_TRUE(errors);
  ado::ComPtr<ITypeInfo> members;
  ASSERT_EQ(input->GetTypeInfo(0, LOCALE_USER_DEFAULT, members.receive()), S_OK);
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(members->GetTypeAttr(&attributes), S_OK);
  EXPECT_EQ(errors->InterfaceSupportsErrorInfo(attributes->guid), S_OK);
  EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IUnknown), S_FALSE);
  members->ReleaseTypeAttr(attributes);

  SAFEARRAYBOUND bound{2, 0};
  ado::ScopedVariant array;
  array.raw().parray = SafeArrayCreate(VT_I4, 1, &bound);
  array.raw().vt = VT_ARRAY | VT_I4;
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(callSlot(input.get(), kPutDitta, array.value()), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(lastError(), "AZCOLLSRV.CLSCO_INPUTAZCOLL: Tipo non corrispondente");
}

TEST(EarlyBoundCallers, AreToldThatAnotherClassesObjectIsRefused) {
  const ado::ComPtr<IDispatch> service = ado::createObject(kService);
  const ado::ComPtr<IDispatch> output = ado::createObject(kOutput);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(callSlot(service.get(), kPutInput, output.get()), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(lastError(), "AZCOLLSRV.CLSCO_AZIENDECOLL: Tipo non corrispondente");
}

TEST(EarlyBoundCallers, FindNoErrorObjectAfterACallThatFailed) {
  // The outcome of a call is in Stato and Errore, never in the automation error.
  const ado::ComPtr<IDispatch> service = ado::createObject(kService);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(callSlot(service.get(), kDuplicaCliFor), S_OK);
  EXPECT_EQ(lastError(), "");
  EXPECT_EQ(ado::Dispatch{service}.getNumber(L"Stato"), 1);
}

TEST(EarlyBoundCallers, GetAnErrorCodeForAMissingPlaceToWriteTo) {
  const ado::ComPtr<IDispatch> input = ado::createObject(kInput);
  VARIANT* const nowhere = nullptr;
  EXPECT_EQ(callSlot(input.get(), kGetDitta, nowhere), E_POINTER);
}

}  // namespace
}  // namespace azcoll::test
