#pragma once

#include <memory>

#include "automation/automation_object.h"
#include "automation/parameter_objects.h"
#include "service/service.h"

namespace azcoll::automation {

/// The service: its four fields, then its methods, which are those of the table of members.
class ServiceMembers {
 public:
  static constexpr ClassIndex kIndex = ClassIndex::Service;

  /// A service on the platform of this build.
  explicit ServiceMembers(const Classes& classes);
  ServiceMembers(const Classes& classes, std::shared_ptr<Platform> platform);

  static const MemberList& list();
  template <typename Object>
  static std::vector<VtableEntry> entries();

  [[nodiscard]] CLSCO_AZIENDECOLL& service() { return service_; }

  /// The parameter objects, as callers see them; none when a caller took them away.
  ado::ComPtr<IDispatch> input;
  ado::ComPtr<IDispatch> output;
  void setInput(IDispatch* given);
  void setOutput(IDispatch* given);

 private:
  CLSCO_AZIENDECOLL service_;
};

using ServiceObject = AutomationObject<ServiceMembers>;

/// A new service object on `platform`.
[[nodiscard]] ado::ComPtr<IDispatch> newService(std::shared_ptr<Platform> platform);
/// New objects of the three classes, on the platform of this build.
[[nodiscard]] ado::ComPtr<IDispatch> newService();
[[nodiscard]] ado::ComPtr<IDispatch> newInput();
[[nodiscard]] ado::ComPtr<IDispatch> newOutput();

}  // namespace azcoll::automation
