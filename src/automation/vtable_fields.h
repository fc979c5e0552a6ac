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
struct FieldEntries {
  static constexpr FieldKind kKind = kFields[kField].kind();
  static constexpr auto kMember = std::get<static_cast<std::size_t>(kKind)>(kFields[kField].member);
  using Wire = WireType<kKind>;

  static HRESULT STDMETHODCALLTYPE get(Object* self, Wire* value) {
    if (value == nullptr) {
      return E_POINTER;
    }
    *value = Wire{};
    return atBoundary(self->origin(), [&] { writeOut(self->members().data().*kMember, value); });
  }
  static HRESULT STDMETHODCALLTYPE put(Object* self, Wire value) {
    return atBoundary(self->origin(), [&] { readIn(self->members().data().*kMember, value); });
  }

  static void append(std::vector<VtableEntry>& entries) {
    entries.push_back(entryOf(&get));
    constexpr Assignment kAssignment = assignmentOf(kKind);
    if (kAssignment.byValue) {
      entries.push_back(entryOf(&put));
    }
    if (kAssignment.byReference) {
      entries.push_back(entryOf(&put));
    }
  }
};

/// The accessors of all fields, in interface order.
template <typename Object, const auto& kFields>
std::vector<VtableEntry> fieldEntries() {
  std::vector<VtableEntry> entries;
  [&]<std::size_t... kIndexes>(std::index_sequence<kIndexes...>) {
    (FieldEntries<Object, kFields, kIndexes>::append(entries), ...);
  }
  (std::make_index_sequence<kFields.size()>{});
  return entries;
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
