#include "automation/type_library.h"

#include <string>
#include <utility>

#include "ado/hresult.h"
#include "ado/wide_text.h"
#include "data/error.h"
#include "data/text.h"

namespace azcoll::automation {
namespace {

using ado::check;
using ado::ComPtr;

/// The description of a type, freed at the end.
class TypeAttributes {
 public:
  explicit TypeAttributes(ITypeInfo* info) : info_{info} { check(info->GetTypeAttr(&attributes_)); }
  TypeAttributes(const TypeAttributes&) = delete;
  TypeAttributes(TypeAttributes&&) = delete;
  TypeAttributes& operator=(const TypeAttributes&) = delete;
  TypeAttributes& operator=(TypeAttributes&&) = delete;
  ~TypeAttributes() { info_->ReleaseTypeAttr(attributes_); }

  const TYPEATTR* operator->() const { return attributes_; }

 private:
  ITypeInfo* info_;
  TYPEATTR* attributes_ = nullptr;
};

std::wstring nameOf(ITypeLib* library, UINT index) {
  BSTR name = nullptr;
  check(library->GetDocumentation(static_cast<INT>(index), &name, nullptr, nullptr, nullptr));
  std::wstring result{name, SysStringLen(name)};
  SysFreeString(name);
  return result;
}

ComPtr<ITypeInfo> typeAt(ITypeLib* library, UINT index) {
  ComPtr<ITypeInfo> info;
  check(library->GetTypeInfo(index, info.receive()));
  return info;
}

ComPtr<ITypeInfo> reference(ITypeInfo* info, HREFTYPE handle) {
  ComPtr<ITypeInfo> result;
  check(info->GetRefTypeInfo(handle, result.receive()));
  return result;
}

/// Identifiers of the aliases that stand for the interface `target`.
std::vector<IID> aliasesOf(ITypeLib* library, const IID& target) {
  std::vector<IID> identifiers;
  const UINT count = library->GetTypeInfoCount();
  for (UINT index = 0; index < count; ++index) {
    const ComPtr<ITypeInfo> info = typeAt(library, index);
    const TypeAttributes attributes{info.get()};
    if (attributes->typekind != TKIND_ALIAS || attributes->tdescAlias.vt != VT_USERDEFINED) {
      continue;
    }
    const ComPtr<ITypeInfo> meant = reference(info.get(), attributes->tdescAlias.hreftype);
    if (IsEqualGUID(
            TypeAttributes { meant.get() } -> guid, target)) {
      identifiers.push_back(attributes->guid);
    }
  }
  return identifiers;
}

ComPtr<ITypeInfo> defaultInterface(ITypeInfo* coclass) {
  HREFTYPE handle = 0;
  check(coclass->GetRefTypeOfImplType(0, &handle));
  return reference(coclass, handle);
}

}  // namespace

std::wstring modulePath() {
  HMODULE module = nullptr;
  // Any address inside this module names it.
  static const char inside = 0;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&inside), &module);
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

TypeLibrary::TypeLibrary() {
  check(LoadTypeLibEx(modulePath().c_str(), REGKIND_NONE, library_.receive()));
}

GUID TypeLibrary::identifier() const {
  TLIBATTR* attributes = nullptr;
  check(library_->GetLibAttr(&attributes));
  const GUID result = attributes->guid;
  library_->ReleaseTLibAttr(attributes);
  return result;
}

ClassInfo TypeLibrary::classNamed(std::wstring_view name) const {
  const UINT count = library_->GetTypeInfoCount();
  for (UINT index = 0; index < count; ++index) {
    TYPEKIND kind = TKIND_MAX;
    check(library_->GetTypeInfoType(index, &kind));
    if (kind != TKIND_COCLASS || nameOf(library_.get(), index) != name) {
      continue;
    }
    const ComPtr<ITypeInfo> coclass = typeAt(library_.get(), index);
    ComPtr<ITypeInfo> members = defaultInterface(coclass.get());
    const IID interfaceIdentifier = TypeAttributes { members.get() } -> guid;
    return {.identifier = TypeAttributes{coclass.get()} -> guid,
            .interfaceIdentifier = interfaceIdentifier,
            .earlierIdentifiers = aliasesOf(library_.get(), interfaceIdentifier),
            .members = std::move(members)};
  }
  throw Error(join("Classe non presente nella libreria dei tipi: ", ado::narrowText(name)));
}

}  // namespace azcoll::automation
