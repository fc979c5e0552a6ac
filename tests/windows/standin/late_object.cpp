#include "windows/standin/late_object.h"

#include <algorithm>
#include <cwchar>

#include "ado/variants.h"
#include "ado/wide_text.h"
#include "data/error.h"

namespace azcoll::test {
namespace {

// What ADO answers: its own failures, and those that a provider reports.
constexpr HRESULT kOwnFailure = static_cast<HRESULT>(0x800A0BB9);
constexpr HRESULT kProviderFailure = static_cast<HRESULT>(0x80040E14);

std::string kindOf(const IDispatch* object) {
  if (object == nullptr) {
    return "Nothing";
  }
  return liveObjects().contains(object) ? static_cast<const LateObject*>(object)->kind() : "Object";
}

}  // namespace

std::vector<std::string>& callRegister() {
  static std::vector<std::string> calls;
  return calls;
}

std::set<const IDispatch*>& liveObjects() {
  // Never destroyed: some objects end after everything else.
  static auto* const objects = new std::set<const IDispatch*>;
  return *objects;
}

VARIANT* CallArguments::at(std::size_t index) const {
  if (index >= count()) {
    return nullptr;
  }
  VARIANT* const given = &parameters_.rgvarg[count() - 1 - index];
  return given->vt == VT_ERROR ? nullptr : given;
}

Variant CallArguments::value(std::size_t index, const Variant& fallback) const {
  const VARIANT* const given = at(index);
  return given == nullptr ? fallback : ado::fromVariant(*given);
}

int CallArguments::number(std::size_t index, int fallback) const {
  return value(index, fallback).toInt32();
}

std::string CallArguments::text(std::size_t index) const {
  std::string text;
  value(index).appendTo(text);
  return text;
}

IDispatch* CallArguments::object(std::size_t index) const {
  const VARIANT* given = at(index);
  if (given == nullptr) {
    return nullptr;
  }
  if (given->vt == (VT_BYREF | VT_VARIANT)) {
    given = given->pvarVal;
  }
  return given->vt == VT_DISPATCH ? given->pdispVal : nullptr;
}

bool CallArguments::assigns() const {
  return (flags_ & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
}

bool CallArguments::byReference() const { return (flags_ & DISPATCH_PROPERTYPUTREF) != 0; }

void CallArguments::write(std::size_t index, std::int64_t number) const {
  VARIANT* const given = at(index);
  if (given == nullptr) {
    return;
  }
  if (given->vt == (VT_BYREF | VT_VARIANT)) {
    VariantClear(given->pvarVal);
    given->pvarVal->vt = VT_I4;
    given->pvarVal->lVal = static_cast<LONG>(number);
  } else if (given->vt == (VT_BYREF | VT_I4)) {
    *given->plVal = static_cast<LONG>(number);
  }
}

std::string CallArguments::shown() const {
  std::string all;
  for (std::size_t index = 0; index < count(); ++index) {
    const VARIANT* const given = at(index);
    all += index == 0 ? "" : "|";
    if (given == nullptr) {
      all += "-";
    } else if (given->vt == VT_DISPATCH) {
      all += kindOf(given->pdispVal);
    } else if ((given->vt & VT_BYREF) != 0) {
      all += "out";
    } else if (given->vt == VT_NULL) {
      all += "Null";
    } else {
      ado::fromVariant(*given).appendTo(all);
    }
  }
  // One call, one line.
  std::ranges::replace_if(
      all, [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return all;
}

LateObject::LateObject(std::string kind) : kind_{std::move(kind)} { liveObjects().insert(this); }

LateObject::~LateObject() { liveObjects().erase(this); }

HRESULT LateObject::QueryInterface(REFIID identifier, void** result) {
  if (!IsEqualGUID(identifier, IID_IUnknown) && !IsEqualGUID(identifier, IID_IDispatch)) {
    *result = nullptr;
    return E_NOINTERFACE;
  }
  *result = this;
  AddRef();
  return S_OK;
}

ULONG LateObject::Release() {
  const ULONG left = --references_;
  if (left == 0) {
    delete this;
  }
  return left;
}

HRESULT LateObject::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

HRESULT LateObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* identifiers) {
  for (std::size_t index = 0; count == 1 && index < members_.size(); ++index) {
    if (_wcsicmp(names[0], members_[index].name.c_str()) == 0) {
      *identifiers = static_cast<DISPID>(index + 1);
      return S_OK;
    }
  }
  if (count == 1) {
    if (std::optional<LateMember> further = furtherMember(names[0])) {
      members_.push_back(std::move(*further));
      *identifiers = static_cast<DISPID>(members_.size());
      return S_OK;
    }
  }
  return DISP_E_UNKNOWNNAME;
}

HRESULT LateObject::Invoke(DISPID identifier, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                           VARIANT* result, EXCEPINFO* exception, UINT*) {
  const std::size_t index = identifier == DISPID_VALUE ? 1 : static_cast<std::size_t>(identifier);
  if (index < 1 || index > members_.size()) {
    return DISP_E_MEMBERNOTFOUND;
  }
  const LateMember member = members_[index - 1];  // a copy: the object may end during the call
  const CallArguments arguments{*parameters, flags};
  HRESULT code = S_OK;
  std::string description;
  try {
    const bool reference = (flags & DISPATCH_PROPERTYPUTREF) != 0;
    callRegister().push_back(kind_ + "." + ado::narrowText(member.name) +
                             (reference             ? " set("
                              : arguments.assigns() ? " let("
                                                    : "(") +
                             arguments.shown() + ")");
    ado::ScopedVariant value = member.run(arguments);
    if (result != nullptr) {
      *result = value.detach();
    }
    return S_OK;
  } catch (const Error& error) {
    description = error.description();
    code = error.fromProvider() ? kProviderFailure : kOwnFailure;
  } catch (const std::exception& error) {
    description = error.what();
    code = kOwnFailure;
  }
  if (exception != nullptr) {
    *exception = {};
    exception->scode = code;
    exception->bstrSource = SysAllocString(L"ADODB di prova");
    exception->bstrDescription = ado::newBstr(description);
  }
  return DISP_E_EXCEPTION;
}

ado::ScopedVariant nothing() { return {}; }

ado::ScopedVariant result(const Variant& value) { return ado::toVariant(value); }

ado::ScopedVariant result(IDispatch* object) {
  ado::ScopedVariant value;
  value.raw().vt = VT_DISPATCH;
  value.raw().pdispVal = object;
  return value;
}

}  // namespace azcoll::test
