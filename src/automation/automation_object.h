#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "automation/boundary.h"
#include "automation/dispatch_names.h"
#include "automation/module.h"

namespace azcoll::automation {

/// An entry of an interface table: the address of a function.
using VtableEntry = const void*;

template <typename Function>
VtableEntry entryOf(Function* function) {
  return reinterpret_cast<VtableEntry>(function);
}

/// One object of the library: its interface table is built from the members that `Members`
/// describes, in interface order, so that nothing lists them again.
///
/// `Members` has: `kIndex`, its class; `list()`, its members; `entries<Object>()`, their functions
/// in the order of the interface, each `HRESULT STDMETHODCALLTYPE f(Object* self, …)`; and whatever
/// data the object holds. An object is made by `create` with one reference and ends with its last.
template <typename Members>
class AutomationObject {
 public:
  AutomationObject(const AutomationObject&) = delete;
  AutomationObject(AutomationObject&&) = delete;
  AutomationObject& operator=(const AutomationObject&) = delete;
  AutomationObject& operator=(AutomationObject&&) = delete;

  /// A new object; throws what the construction of `Members` throws.
  template <typename... Arguments>
  static ado::ComPtr<IDispatch> create(Arguments&&... arguments) {
    auto* const object = new AutomationObject(std::forward<Arguments>(arguments)...);
    return ado::ComPtr<IDispatch>::adopt(object->dispatch());
  }

  /// The object behind an interface of this class and module; null for anything else.
  static AutomationObject* behind(IDispatch* given) {
    if (given == nullptr || *reinterpret_cast<VtableEntry const* const*>(given) != table()) {
      return nullptr;
    }
    return reinterpret_cast<AutomationObject*>(given);
  }

  [[nodiscard]] IDispatch* dispatch() { return reinterpret_cast<IDispatch*>(this); }
  [[nodiscard]] Members& members() { return members_; }
  [[nodiscard]] const Classes& library() const { return *classes_; }
  [[nodiscard]] Origin origin() const { return {Members::kIndex, classInfo().interfaceIdentifier}; }

 private:
  template <typename... Arguments>
  explicit AutomationObject(Arguments&&... arguments)
      : classes_{classes()}, members_{*classes_, std::forward<Arguments>(arguments)...} {}
  ~AutomationObject() = default;

  [[nodiscard]] const ClassInfo& classInfo() const { return classes_->info(Members::kIndex); }

  // The second interface: failures of every interface of the object come with an error object.
  struct ErrorSupport {
    static HRESULT STDMETHODCALLTYPE queryInterface(ErrorSupport* self, REFIID identifier,
                                                    void** result) {
      return AutomationObject::queryInterface(self->owner, identifier, result);
    }
    static ULONG STDMETHODCALLTYPE addRef(ErrorSupport* self) {
      return AutomationObject::addRef(self->owner);
    }
    static ULONG STDMETHODCALLTYPE release(ErrorSupport* self) {
      return AutomationObject::release(self->owner);
    }
    static HRESULT STDMETHODCALLTYPE supports(ErrorSupport* self, REFIID identifier) {
      return self->owner->answersTo(identifier) ? S_OK : S_FALSE;
    }
    static const VtableEntry* table() {
      static const std::array<VtableEntry, 4> entries{entryOf(&queryInterface), entryOf(&addRef),
                                                      entryOf(&release), entryOf(&supports)};
      return entries.data();
    }

    const VtableEntry* entries;  // first: what callers see
    AutomationObject* owner;
  };

  [[nodiscard]] bool answersTo(REFIID identifier) const {
    const ClassInfo& info = classInfo();
    if (IsEqualGUID(identifier, info.interfaceIdentifier)) {
      return true;
    }
    for (const IID& earlier : info.earlierIdentifiers) {
      if (IsEqualGUID(identifier, earlier)) {
        return true;
      }
    }
    return false;
  }

  static HRESULT STDMETHODCALLTYPE queryInterface(AutomationObject* self, REFIID identifier,
                                                  void** result) {
    if (result == nullptr) {
      return E_POINTER;
    }
    if (IsEqualGUID(identifier, IID_ISupportErrorInfo)) {
      *result = &self->errorSupport_;
    } else if (IsEqualGUID(identifier, IID_IUnknown) || IsEqualGUID(identifier, IID_IDispatch) ||
               self->answersTo(identifier)) {
      *result = self;
    } else {
      *result = nullptr;
      return E_NOINTERFACE;
    }
    addRef(self);
    return S_OK;
  }
  static ULONG STDMETHODCALLTYPE addRef(AutomationObject* self) { return ++self->references_; }
  static ULONG STDMETHODCALLTYPE release(AutomationObject* self) {
    const ULONG left = --self->references_;
    if (left == 0) {
      delete self;
    }
    return left;
  }

  static HRESULT STDMETHODCALLTYPE getTypeInfoCount(AutomationObject*, UINT* count) {
    if (count == nullptr) {
      return E_POINTER;
    }
    *count = 1;
    return S_OK;
  }
  static HRESULT STDMETHODCALLTYPE getTypeInfo(AutomationObject* self, UINT index, LCID,
                                               ITypeInfo** result) {
    if (result == nullptr) {
      return E_POINTER;
    }
    *result = nullptr;
    if (index != 0) {
      return DISP_E_BADINDEX;
    }
    *result = ado::ComPtr<ITypeInfo>{self->classInfo().members}.detach();
    return S_OK;
  }
  static HRESULT STDMETHODCALLTYPE getIdsOfNames(AutomationObject* self, REFIID, LPOLESTR* names,
                                                 UINT count, LCID, DISPID* identifiers) {
    if (names == nullptr || identifiers == nullptr || count == 0) {
      return E_INVALIDARG;
    }
    if (count == 1) {
      if (const std::optional<DISPID> own = memberIdentifier(Members::list(), names[0])) {
        *identifiers = *own;
        return S_OK;
      }
    }
    return self->classInfo().members->GetIDsOfNames(names, count, identifiers);
  }
  static HRESULT STDMETHODCALLTYPE invoke(AutomationObject* self, DISPID identifier, REFIID, LCID,
                                          WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                          EXCEPINFO* exception, UINT* badArgument) {
    return invokeMember(self->origin(), Members::list(), self->classInfo().members.get(), self,
                        identifier, flags, parameters, result, exception, badArgument);
  }

  static const VtableEntry* table() {
    static const std::vector<VtableEntry> entries = [] {
      std::vector<VtableEntry> all{entryOf(&queryInterface), entryOf(&addRef),
                                   entryOf(&release),        entryOf(&getTypeInfoCount),
                                   entryOf(&getTypeInfo),    entryOf(&getIdsOfNames),
                                   entryOf(&invoke)};
      const std::vector<VtableEntry> own = Members::template entries<AutomationObject>();
      all.insert(all.end(), own.begin(), own.end());
      return all;
    }();
    return entries.data();
  }

  // First of all members: an interface is a pointer to a pointer to its table.
  const VtableEntry* table_ = table();
  ErrorSupport errorSupport_{ErrorSupport::table(), this};
  std::atomic<ULONG> references_{1};
  ModuleUse use_;
  std::shared_ptr<const Classes> classes_;
  Members members_;
};

}  // namespace azcoll::automation
