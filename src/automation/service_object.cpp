#include "automation/service_object.h"

#include <type_traits>
#include <utility>

#include "data/error.h"
#include "data/messages.h"
#include "data/variant.h"

namespace azcoll::automation {
namespace {

/// What the two object fields of the service have in common.
template <typename Object, typename Data>
void assign(IDispatch* given, ado::ComPtr<IDispatch>& held, std::shared_ptr<Data>& used) {
  if (given == nullptr) {
    held = {};
    used = nullptr;
    return;
  }
  Object* const object = Object::behind(given);
  if (object == nullptr) {
    // Only this library's own objects: the fields of another one could not be reached.
    throw Error(messages::kTypeMismatch);
  }
  held = ado::ComPtr<IDispatch>::share(given);
  used = object->members().shared();
}

HRESULT giveObject(const ado::ComPtr<IDispatch>& held, IDispatch** value) {
  if (value == nullptr) {
    return E_POINTER;
  }
  *value = ado::ComPtr<IDispatch>{held}.detach();
  return S_OK;
}

struct FixedEntries {
  using Object = ServiceObject;

  static HRESULT STDMETHODCALLTYPE getInput(Object* self, IDispatch** value) {
    return giveObject(self->members().input, value);
  }
  static HRESULT STDMETHODCALLTYPE putInput(Object* self, IDispatch* value) {
    return atBoundary(self->origin(), [&] { self->members().setInput(value); });
  }
  static HRESULT STDMETHODCALLTYPE getOutput(Object* self, IDispatch** value) {
    return giveObject(self->members().output, value);
  }
  static HRESULT STDMETHODCALLTYPE putOutput(Object* self, IDispatch* value) {
    return atBoundary(self->origin(), [&] { self->members().setOutput(value); });
  }

  template <Variant CLSCO_AZIENDECOLL::*kField>
  static HRESULT STDMETHODCALLTYPE getVariant(Object* self, VARIANT* value) {
    if (value == nullptr) {
      return E_POINTER;
    }
    *value = VARIANT{};
    return atBoundary(self->origin(), [&] { writeOut(self->members().service().*kField, value); });
  }
  template <Variant CLSCO_AZIENDECOLL::*kField>
  static HRESULT STDMETHODCALLTYPE putVariant(Object* self, VARIANT value) {
    return atBoundary(self->origin(), [&] { readIn(self->members().service().*kField, value); });
  }

  template <Variant CLSCO_AZIENDECOLL::*kField>
  static void appendVariant(std::vector<VtableEntry>& entries) {
    entries.push_back(entryOf(&getVariant<kField>));
    entries.push_back(entryOf(&putVariant<kField>));
    entries.push_back(entryOf(&putVariant<kField>));
  }
};

/// A caller's last reference must not go while one of its calls still runs.
class Kept {
 public:
  explicit Kept(ServiceObject* object)
      : reference_{ado::ComPtr<IDispatch>::share(object->dispatch())} {}

 private:
  ado::ComPtr<IDispatch> reference_;
};

/// The function behind one method of the table, by what the method gives back.
template <std::size_t kMethod>
struct MethodFunction {
  static constexpr const MethodEntry& kEntry = kMethods[kMethod];

  template <typename Result>
  static auto member() {
    return std::get<Result (CLSCO_AZIENDECOLL::*)() noexcept>(kEntry.member);
  }

  static HRESULT STDMETHODCALLTYPE run(ServiceObject* self) {
    const Kept kept{self};
    (self->members().service().*member<void>())();
    return S_OK;
  }
  static HRESULT STDMETHODCALLTYPE runForTruth(ServiceObject* self, VARIANT_BOOL* result) {
    if (result == nullptr) {
      return E_POINTER;
    }
    *result = VARIANT_FALSE;
    const Kept kept{self};
    writeOut((self->members().service().*member<bool>())(), result);
    return S_OK;
  }
  static HRESULT STDMETHODCALLTYPE runForText(ServiceObject* self, BSTR* result) {
    if (result == nullptr) {
      return E_POINTER;
    }
    *result = nullptr;
    const Kept kept{self};
    return atBoundary(self->origin(), [&] {
      writeOut((self->members().service().*member<std::string>())(), result);
    });
  }

  static VtableEntry entry() {
    if constexpr (kEntry.result == MethodResult::Boolean) {
      return entryOf(&runForTruth);
    } else if constexpr (kEntry.result == MethodResult::Text) {
      return entryOf(&runForText);
    } else {
      return entryOf(&run);
    }
  }
};

}  // namespace

ServiceMembers::ServiceMembers(const Classes& classes)
    : ServiceMembers{classes, defaultPlatform()} {}

ServiceMembers::ServiceMembers(const Classes& /*classes*/, std::shared_ptr<Platform> platform)
    : service_{std::move(platform)} {
  setInput(newInput().get());
  setOutput(newOutput().get());
}

void ServiceMembers::setInput(IDispatch* given) {
  assign<InputObject>(given, input, service_.CPInput);
}

void ServiceMembers::setOutput(IDispatch* given) {
  assign<OutputObject>(given, output, service_.CPOutput);
}

const MemberList& ServiceMembers::list() {
  static const MemberList members = [] {
    constexpr Assignment kObject{.byReference = true};
    constexpr Assignment kVariant{.byValue = true, .byReference = true};
    MemberList list;
    for (const std::string_view field : kServiceFields) {
      const bool object = list.size() < 2;
      list.push_back({.name = ado::wideText(field), .assignment = object ? kObject : kVariant});
    }
    for (const MethodEntry& method : kMethods) {
      list.push_back({.name = ado::wideText(method.name), .method = true});
    }
    return list;
  }();
  return members;
}

template <typename Object>
std::vector<VtableEntry> ServiceMembers::entries() {
  std::vector<VtableEntry> entries{
      entryOf(&FixedEntries::getInput), entryOf(&FixedEntries::putInput),
      entryOf(&FixedEntries::getOutput), entryOf(&FixedEntries::putOutput)};
  FixedEntries::appendVariant<&CLSCO_AZIENDECOLL::Stato>(entries);
  FixedEntries::appendVariant<&CLSCO_AZIENDECOLL::Errore>(entries);
  [&]<std::size_t... kIndexes>(std::index_sequence<kIndexes...>) {
    (entries.push_back(MethodFunction<kIndexes>::entry()), ...);
  }
  (std::make_index_sequence<kMethods.size()>{});
  return entries;
}

ado::ComPtr<IDispatch> newService(std::shared_ptr<Platform> platform) {
  return ServiceObject::create(std::move(platform));
}
ado::ComPtr<IDispatch> newService() { return ServiceObject::create(); }
ado::ComPtr<IDispatch> newInput() { return InputObject::create(); }
ado::ComPtr<IDispatch> newOutput() { return OutputObject::create(); }

}  // namespace azcoll::automation
