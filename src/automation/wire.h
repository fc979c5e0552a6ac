#pragma once

#include <string>
#include <type_traits>

#include "ado/com.h"
#include "service/members.h"

namespace azcoll::automation {

/// How the kinds of fields travel through the interface: a stored value is written for the caller,
/// a caller's value is read into the field. Writing throws what the conversions throw.
void writeOut(const Variant& stored, VARIANT* target);
void writeOut(const std::string& stored, BSTR* target);
void writeOut(bool stored, VARIANT_BOOL* target);
void writeOut(EnumTipoCF stored, LONG* target);
void writeOut(EnumTipoMsgAziendeColl stored, LONG* target);
void writeOut(const std::shared_ptr<Connection>& stored, IDispatch** target);
void writeOut(const std::shared_ptr<Recordset>& stored, IDispatch** target);
void writeOut(const std::shared_ptr<Object>& stored, IDispatch** target);

void readIn(Variant& stored, const VARIANT& given);
void readIn(std::string& stored, BSTR given);
void readIn(bool& stored, VARIANT_BOOL given);
void readIn(EnumTipoCF& stored, LONG given);
void readIn(EnumTipoMsgAziendeColl& stored, LONG given);
/// An object that is already there keeps what stands for it here.
void readIn(std::shared_ptr<Connection>& stored, IDispatch* given);
void readIn(std::shared_ptr<Recordset>& stored, IDispatch* given);
void readIn(std::shared_ptr<Object>& stored, IDispatch* given);

/// How a caller may assign a field of a kind.
struct Assignment {
  bool byValue = false;
  bool byReference = false;
};

[[nodiscard]] constexpr Assignment assignmentOf(FieldKind kind) {
  const bool object =
      kind == FieldKind::Connection || kind == FieldKind::Recordset || kind == FieldKind::Object;
  return {.byValue = !object, .byReference = object || kind == FieldKind::Variant};
}

/// The type of a field in the interface.
template <FieldKind kKind>
using WireType = std::conditional_t<
    kKind == FieldKind::Variant, VARIANT,
    std::conditional_t<kKind == FieldKind::Text, BSTR,
                       std::conditional_t<kKind == FieldKind::Boolean, VARIANT_BOOL,
                                          std::conditional_t<kKind == FieldKind::TipoCF ||
                                                                 kKind == FieldKind::TipoMsg,
                                                             LONG, IDispatch*>>>>;

}  // namespace azcoll::automation
