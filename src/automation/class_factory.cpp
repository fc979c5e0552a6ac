#include "automation/class_factory.h"

#include <array>
#include <atomic>

#include "automation/automation_object.h"
#include "automation/boundary.h"
#include "automation/service_object.h"

namespace azcoll::automation {
namespace {

struct Creatable {
  ClassIndex index;
  ado::ComPtr<IDispatch> (*create)();
};

ado::ComPtr<IDispatch> createService() { return newService(); }

constexpr std::array kCreatables{Creatable{ClassIndex::Service, &createService},
                                 Creatable{ClassIndex::Input, &newInput},
                                 Creatable{ClassIndex::Output, &newOutput}};

/// `IClassFactory` of one class.
class Factory {
 public:
  Factory(const Classes& classes, const Creatable& creatable)
      : creatable_{creatable},
        origin_{creatable.index, classes.info(creatable.index).interfaceIdentifier} {}

  static HRESULT STDMETHODCALLTYPE queryInterface(Factory* self, REFIID identifier, void** result) {
    if (result == nullptr) {
      return E_POINTER;
    }
    if (!IsEqualGUID(identifier, IID_IUnknown) && !IsEqualGUID(identifier, IID_IClassFactory)) {
      *result = nullptr;
      return E_NOINTERFACE;
    }
    addRef(self);
    *result = self;
    return S_OK;
  }
  static ULONG STDMETHODCALLTYPE addRef(Factory* self) { return ++self->references_; }
  static ULONG STDMETHODCALLTYPE release(Factory* self) {
    const ULONG left = --self->references_;
    if (left == 0) {
      delete self;
    }
    return left;
  }

 private:
  ~Factory() = default;

  static HRESULT STDMETHODCALLTYPE createInstance(Factory* self, IUnknown* outer, REFIID identifier,
                                                  void** result) {
    if (result == nullptr) {
      return E_POINTER;
    }
    *result = nullptr;
    if (outer != nullptr) {
      return CLASS_E_NOAGGREGATION;
    }
    try {
      return self->creatable_.create()->QueryInterface(identifier, result);
    } catch (...) {
      return reportException(self->origin_);
    }
  }
  static HRESULT STDMETHODCALLTYPE lockServer(Factory*, BOOL on) {
    ModuleUse::lock(on != FALSE);
    return S_OK;
  }

  static const VtableEntry* table() {
    static const std::array<VtableEntry, 5> entries{entryOf(&queryInterface), entryOf(&addRef),
                                                    entryOf(&release), entryOf(&createInstance),
                                                    entryOf(&lockServer)};
    return entries.data();
  }

  const VtableEntry* entries_ = table();  // first: what callers see
  const Creatable& creatable_;
  Origin origin_;
  std::atomic<ULONG> references_{1};
  ModuleUse use_;
};

}  // namespace

HRESULT getClassFactory(REFCLSID clsid, REFIID identifier, void** result) noexcept {
  if (result == nullptr) {
    return E_POINTER;
  }
  *result = nullptr;
  try {
    const std::shared_ptr<const Classes> known = classes();
    for (const Creatable& creatable : kCreatables) {
      if (IsEqualGUID(known->info(creatable.index).identifier, clsid)) {
        auto* const factory = new Factory{*known, creatable};
        const HRESULT code = Factory::queryInterface(factory, identifier, result);
        Factory::release(factory);
        return code;
      }
    }
    return CLASS_E_CLASSNOTAVAILABLE;
  } catch (...) {
    return reportException({ClassIndex::Service, IID_NULL});
  }
}

}  // namespace azcoll::automation
