#pragma once

#include <memory>

#include "ado/com.h"
#include "component/platform.h"
#include "windows/standin/late_object.h"

namespace azcoll::test {

/// Makes the program a host as callers of the suite are: ADO's classes, the configuration screens
/// and a numbering object can be created by ProgID while it runs. Once for the whole program.
class HostClasses {
 public:
  HostClasses();
  HostClasses(const HostClasses&) = delete;
  HostClasses(HostClasses&&) = delete;
  HostClasses& operator=(const HostClasses&) = delete;
  HostClasses& operator=(HostClasses&&) = delete;
  ~HostClasses();
};

/// While it lives, a test's platform stands behind what the library meets on Windows: it answers
/// the message boxes that come up, gives the objects created by ProgID, does the numbering. None
/// answers No and has no objects.
class HostInUse {
 public:
  explicit HostInUse(std::shared_ptr<Platform> platform);
  HostInUse(const HostInUse&) = delete;
  HostInUse(HostInUse&&) = delete;
  HostInUse& operator=(const HostInUse&) = delete;
  HostInUse& operator=(HostInUse&&) = delete;
  ~HostInUse();

 private:
  HHOOK hook_;
};

/// The framework's object for `ActiveInterface`: shows a screen through the platform in use.
[[nodiscard]] ado::ComPtr<IDispatch> frameworkObject(std::shared_ptr<Object> activeInterface);

}  // namespace azcoll::test
