#include "ado/dispatch.h"

#include <algorithm>

#include "ado/hresult.h"
#include "ado/variants.h"
#include "ado/wide_text.h"
#include "data/error.h"
#include "data/messages.h"
#include "data/text.h"

namespace azcoll::ado {
namespace {

constexpr WORD kCallForResult = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

/// What the called object reports about its failure; its texts are ours to free.
class Exception {
 public:
  Exception() = default;
  Exception(const Exception&) = delete;
  Exception(Exception&&) = delete;
  Exception& operator=(const Exception&) = delete;
  Exception& operator=(Exception&&) = delete;
  ~Exception() {
    SysFreeString(info_.bstrSource);
    SysFreeString(info_.bstrDescription);
    SysFreeString(info_.bstrHelpFile);
  }

  EXCEPINFO* receive() { return &info_; }

  [[nodiscard]] Error error(Owner owner) {
    if (info_.pfnDeferredFillIn != nullptr) {
      info_.pfnDeferredFillIn(&info_);
    }
    const HRESULT code = info_.scode != 0 ? info_.scode : E_FAIL;
    std::string description = textOf(info_.bstrDescription);
    if (description.empty()) {
      description = describe(code);
    }
    // Failures with this facility are about the use of the object (a closed recordset, a column
    // that is not there): they did not come from the database.
    if (owner == Owner::Host || HRESULT_FACILITY(code) == FACILITY_CONTROL) {
      return Error{description};
    }
    return Error::provider({.description = description, .source = textOf(info_.bstrSource)});
  }

 private:
  EXCEPINFO info_{};
};

}  // namespace

Argument::Argument(int value) {
  value_.raw().lVal = value;
  value_.raw().vt = VT_I4;
}

Argument::Argument(bool value) {
  value_.raw().boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  value_.raw().vt = VT_BOOL;
}

Argument::Argument(std::string_view text) {
  value_.raw().bstrVal = newBstr(text);
  value_.raw().vt = VT_BSTR;
}

Argument::Argument(const Variant& value) : value_{toVariant(value)} {}

Argument::Argument(IDispatch* object) {
  if (object != nullptr) {
    object->AddRef();
  }
  value_.raw().pdispVal = object;
  value_.raw().vt = VT_DISPATCH;
}

Argument Argument::missing() {
  Argument argument;
  argument.value_.raw().scode = DISP_E_PARAMNOTFOUND;
  argument.value_.raw().vt = VT_ERROR;
  return argument;
}

Argument Argument::out(VARIANT& target) {
  Argument argument;
  argument.value_.raw().pvarVal = &target;
  argument.value_.raw().vt = VT_VARIANT | VT_BYREF;
  return argument;
}

DISPID Dispatch::identifier(std::wstring_view member) {
  const auto known = std::ranges::find_if(
      identifiers_, [member](const auto& entry) { return entry.first == member; });
  if (known != identifiers_.end()) {
    return known->second;
  }
  if (!object_) {
    throw Error(join("Oggetto non impostato: ", narrowText(member)));
  }
  std::wstring name{member};
  LPOLESTR text = name.data();
  DISPID result = 0;
  const HRESULT code = object_->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &result);
  if (FAILED(code)) {
    throw Error(join(describe(code), ": ", narrowText(member)));
  }
  identifiers_.emplace_back(std::move(name), result);
  return result;
}

ScopedVariant Dispatch::invoke(std::wstring_view member, WORD access, const Argument* first,
                               std::size_t count) {
  const DISPID id = identifier(member);
  // The last argument stands first. The content stays the arguments' own: the callee copies.
  std::vector<VARIANT> reversed;
  reversed.reserve(count);
  for (std::size_t index = count; index > 0; --index) {
    reversed.push_back(first[index - 1].value());
  }
  DISPID assigned = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(count), 0};
  if ((access & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) {
    parameters.rgdispidNamedArgs = &assigned;
    parameters.cNamedArgs = 1;
  }
  ScopedVariant result;
  Exception exception;
  const HRESULT code = object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, access, &parameters,
                                       &result.raw(), exception.receive(), nullptr);
  if (code == DISP_E_EXCEPTION) {
    throw exception.error(owner_);
  }
  if (FAILED(code)) {
    throw Error(join(describe(code), ": ", narrowText(member)));
  }
  return result;
}

ScopedVariant Dispatch::call(std::wstring_view member, Arguments arguments) {
  return invoke(member, DISPATCH_METHOD, arguments.begin(), arguments.size());
}

ScopedVariant Dispatch::get(std::wstring_view member, Arguments arguments) {
  return invoke(member, kCallForResult, arguments.begin(), arguments.size());
}

void Dispatch::put(std::wstring_view member, const Argument& value) {
  invoke(member, DISPATCH_PROPERTYPUT, &value, 1);
}

void Dispatch::putRef(std::wstring_view member, IDispatch* object) {
  const Argument value{object};
  invoke(member, DISPATCH_PROPERTYPUTREF, &value, 1);
}

ComPtr<IDispatch> Dispatch::getObject(std::wstring_view member, Arguments arguments) {
  const ScopedVariant result = get(member, arguments);
  const VARIANT& value = result.value();
  if (value.vt == VT_EMPTY) {
    return {};
  }
  if ((value.vt != VT_DISPATCH && value.vt != VT_UNKNOWN)) {
    throw Error(join(messages::kTypeMismatch, ": ", narrowText(member)));
  }
  if (value.punkVal == nullptr) {
    return {};
  }
  ComPtr<IDispatch> object = ComPtr<IUnknown>::share(value.punkVal).as<IDispatch>(IID_IDispatch);
  if (!object) {
    throw Error(join(messages::kTypeMismatch, ": ", narrowText(member)));
  }
  return object;
}

std::int64_t Dispatch::getNumber(std::wstring_view member) {
  return fromVariant(get(member).value()).toInt64();
}

bool Dispatch::getFlag(std::wstring_view member) {
  return fromVariant(get(member).value()).toBool();
}

std::string Dispatch::getText(std::wstring_view member) {
  std::string text;
  fromVariant(get(member).value()).appendTo(text);
  return text;
}

ComPtr<IDispatch> createObject(std::wstring_view progId) {
  const std::wstring name{progId};
  CLSID identifier{};
  ComPtr<IDispatch> object;
  HRESULT code = CLSIDFromProgID(name.c_str(), &identifier);
  if (SUCCEEDED(code)) {
    void* created = nullptr;
    code = CoCreateInstance(identifier, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                            IID_IDispatch, &created);
    object = ComPtr<IDispatch>::adopt(static_cast<IDispatch*>(created));
  }
  if (FAILED(code)) {
    throw Error(join("Impossibile creare l'oggetto ", narrowText(progId), ": ", describe(code)));
  }
  return object;
}

}  // namespace azcoll::ado
