#include "automation/wire.h"

#include "ado/automated.h"
#include "ado/connection.h"
#include "ado/variants.h"
#include "ado/wide_text.h"

namespace azcoll::automation {
namespace {

void writeObject(IDispatch* object, IDispatch** target) {
  if (object != nullptr) {
    object->AddRef();
  }
  *target = object;
}

/// Whether `stored` already stands for the object of the caller.
template <typename Class>
bool standsFor(const std::shared_ptr<Class>& stored, const ado::ComPtr<IDispatch>& given) {
  return stored && given &&
         ado::sameObject(ado::ComPtr<IDispatch>::share(ado::dispatchOf(stored)), given);
}

/// Late-bound objects whose given interface is another one than their dispatch interface are asked
/// for it, so that what is kept is what will be called.
ado::ComPtr<IDispatch> dispatchInterface(IDispatch* given) {
  return ado::ComPtr<IDispatch>::share(given).as<IDispatch>(IID_IDispatch);
}

}  // namespace

void writeOut(const Variant& stored, VARIANT* target) { *target = ado::toVariant(stored).detach(); }
void writeOut(const std::string& stored, BSTR* target) { *target = ado::newBstr(stored); }
void writeOut(bool stored, VARIANT_BOOL* target) {
  *target = stored ? VARIANT_TRUE : VARIANT_FALSE;
}
void writeOut(EnumTipoCF stored, LONG* target) { *target = stored; }
void writeOut(EnumTipoMsgAziendeColl stored, LONG* target) { *target = stored; }
void writeOut(const std::shared_ptr<Connection>& stored, IDispatch** target) {
  writeObject(ado::dispatchOf(stored), target);
}
void writeOut(const std::shared_ptr<Recordset>& stored, IDispatch** target) {
  writeObject(ado::dispatchOf(stored), target);
}
void writeOut(const std::shared_ptr<Object>& stored, IDispatch** target) {
  writeObject(ado::dispatchOf(stored), target);
}

void readIn(Variant& stored, const VARIANT& given) { stored = ado::fromVariant(given); }
void readIn(std::string& stored, BSTR given) { stored = ado::textOf(given); }
void readIn(bool& stored, VARIANT_BOOL given) { stored = given != VARIANT_FALSE; }
void readIn(EnumTipoCF& stored, LONG given) { stored = static_cast<EnumTipoCF>(given); }
void readIn(EnumTipoMsgAziendeColl& stored, LONG given) {
  stored = static_cast<EnumTipoMsgAziendeColl>(given);
}
void readIn(std::shared_ptr<Connection>& stored, IDispatch* given) {
  const ado::ComPtr<IDispatch> object = dispatchInterface(given);
  if (!standsFor(stored, object)) {
    stored = ado::wrapConnection(object);
  }
}
void readIn(std::shared_ptr<Recordset>& stored, IDispatch* given) {
  const ado::ComPtr<IDispatch> object = dispatchInterface(given);
  if (!standsFor(stored, object)) {
    stored = ado::wrapRecordset(object);
  }
}
void readIn(std::shared_ptr<Object>& stored, IDispatch* given) {
  const ado::ComPtr<IDispatch> object = dispatchInterface(given);
  stored = object ? std::make_shared<ado::HostObject>(object) : nullptr;
}

}  // namespace azcoll::automation
