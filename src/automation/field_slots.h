#pragma once

#include <cstddef>
#include <utility>
#include <variant>
#include <vector>

#include "ado/wide_text.h"
#include "automation/automation_object.h"
#include "automation/wire.h"
#include "service/members.h"

namespace azcoll::automation {

/// The accessors of one field of `kFields`, working on `self->members().data()`.
template <typename Object, const auto& kFields, std::size_t kField>
struct FieldSlots {
  static constexpr FieldKind kKind = kFields[kField].kind();
  static constexpr auto kMember = std::get<static_cast<std::size_t>(kKind)>(kFields[kField].member);
  using Wire = WireType<kKind>;

  static HRESULT STDMETHODCALLTYPE get(Object* self, Wire* value) {
    if (value == nullptr) {
      return E_POINTER;
    }
    *value = Wire{};
    return guarded(self->origin(), [&] { writeOut(self->members().data().*kMember, value); });
  }
  static HRESULT STDMETHODCALLTYPE put(Object* self, Wire value) {
    return guarded(self->origin(), [&] { readIn(self->members().data().*kMember, value); });
  }

  static void append(std::vector<Slot>& slots) {
    slots.push_back(slotOf(&get));
    constexpr Assignment kAssignment = assignmentOf(kKind);
    if (kAssignment.byValue) {
      slots.push_back(slotOf(&put));
    }
    if (kAssignment.byReference) {
      slots.push_back(slotOf(&put));
    }
  }
};

/// The accessors of all fields, in interface order.
template <typename Object, const auto& kFields>
std::vector<Slot> fieldSlots() {
  std::vector<Slot> slots;
  [&]<std::size_t... kIndexes>(std::index_sequence<kIndexes...>) {
    (FieldSlots<Object, kFields, kIndexes>::append(slots), ...);
  }
  (std::make_index_sequence<kFields.size()>{});
  return slots;
}

/// The fields as members of the interface.
template <typename Fields>
MemberList fieldList(const Fields& fields) {
  MemberList list;
  for (const auto& field : fields) {
    list.push_back({.name = ado::wideText(field.name), .assignment = assignmentOf(field.kind())});
  }
  return list;
}

}  // namespace azcoll::automation
