#pragma once

#include <memory>
#include <utility>

#include "automation/automation_object.h"
#include "automation/vtable_fields.h"
#include "service/members.h"

namespace azcoll::automation {

/// An object that holds public fields only: those of `kFields`.
template <typename Data, const auto& kFields, ClassIndex kClass>
class ParameterMembers {
 public:
  static constexpr ClassIndex kIndex = kClass;

  explicit ParameterMembers(const Classes& /*classes*/) : data_{std::make_shared<Data>()} {}

  static const MemberList& list() {
    static const MemberList members = fieldList(kFields);
    return members;
  }
  template <typename Object>
  static std::vector<VtableEntry> entries() {
    return fieldEntries<Object, kFields>();
  }

  [[nodiscard]] Data& data() { return *data_; }
  [[nodiscard]] const std::shared_ptr<Data>& shared() const { return data_; }

 private:
  std::shared_ptr<Data> data_;
};

using InputObject =
    AutomationObject<ParameterMembers<CLSCO_INPUTAZCOLL, kInputFields, ClassIndex::Input>>;
using OutputObject =
    AutomationObject<ParameterMembers<CLSCO_OUTPUTAZCOLL, kOutputFields, ClassIndex::Output>>;

}  // namespace azcoll::automation
