#include "automation/dispatch_names.h"

#include "ado/hresult.h"
#include "ado/wide_text.h"
#include "data/text.h"

namespace azcoll::automation {
namespace {

constexpr WORD kAssign = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;

const MemberInfo* memberOf(const MemberList& members, DISPID identifier) {
  if (identifier < 1 || static_cast<std::size_t>(identifier) > members.size()) {
    return nullptr;
  }
  return &members[static_cast<std::size_t>(identifier) - 1];
}

bool isObject(const VARIANT& value) {
  const VARIANT* inner = &value;
  if (inner->vt == (VT_BYREF | VT_VARIANT)) {
    inner = inner->pvarVal;
  }
  const int type = inner->vt & ~VT_BYREF;
  return type == VT_DISPATCH || type == VT_UNKNOWN;
}

/// Failures that a caller causes by the value that it gave.
bool isValueFailure(HRESULT code) {
  return code == DISP_E_TYPEMISMATCH || code == DISP_E_OVERFLOW || code == DISP_E_BADVARTYPE ||
         code == E_NOINTERFACE;
}

void describeValueFailure(const Origin& origin, const MemberInfo* member, HRESULT code,
                          EXCEPINFO& exception) {
  const std::string name = member != nullptr ? ado::narrowText(member->name) : std::string{};
  exception = {};
  exception.scode = code == E_NOINTERFACE ? DISP_E_TYPEMISMATCH : code;
  exception.bstrSource = SysAllocString(progIdOf(origin.index).c_str());
  exception.bstrDescription = ado::newBstr(join(ado::describe(exception.scode), ": ", name));
}

}  // namespace

std::optional<DISPID> memberIdentifier(const MemberList& members, const wchar_t* name) {
  for (std::size_t index = 0; index < members.size(); ++index) {
    const std::wstring& known = members[index].name;
    if (CompareStringOrdinal(name, -1, known.c_str(), static_cast<int>(known.size()), TRUE) ==
        CSTR_EQUAL) {
      return static_cast<DISPID>(index + 1);
    }
  }
  return std::nullopt;
}

WORD settledFlags(const MemberList& members, DISPID identifier, WORD flags,
                  const DISPPARAMS& parameters) {
  const MemberInfo* const member = memberOf(members, identifier);
  if (member == nullptr || (flags & kAssign) == 0 || parameters.cArgs == 0) {
    return flags;
  }
  const auto others = static_cast<WORD>(flags & ~kAssign);
  if (!member->assignment.byValue) {
    return static_cast<WORD>(others | DISPATCH_PROPERTYPUTREF);
  }
  const bool reference = (flags & DISPATCH_PROPERTYPUTREF) != 0 && member->assignment.byReference &&
                         isObject(parameters.rgvarg[0]);
  return static_cast<WORD>(others | (reference ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT));
}

HRESULT invokeMember(const Origin& origin, const MemberList& members, ITypeInfo* types, void* self,
                     DISPID identifier, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                     EXCEPINFO* exception, UINT* badArgument) noexcept {
  try {
    if (parameters == nullptr) {
      return E_INVALIDARG;
    }
    SetErrorInfo(0, nullptr);  // what is found afterwards belongs to this call
    const WORD settled = settledFlags(members, identifier, flags, *parameters);
    const HRESULT code =
        types->Invoke(self, identifier, settled, parameters, result, exception, badArgument);
    if (isValueFailure(code) && exception != nullptr) {
      describeValueFailure(origin, memberOf(members, identifier), code, *exception);
      return DISP_E_EXCEPTION;
    }
    return code;
  } catch (...) {
    return reportException(origin);
  }
}

}  // namespace azcoll::automation
