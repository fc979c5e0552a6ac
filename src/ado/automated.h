#pragma once

#include <memory>

#include "ado/com.h"
#include "data/object.h"

namespace azcoll::ado {

/// What stands for an object of automation in this system: it gives the very object back.
class Automated {
 public:
  Automated() = default;
  Automated(const Automated&) = delete;
  Automated(Automated&&) = delete;
  Automated& operator=(const Automated&) = delete;
  Automated& operator=(Automated&&) = delete;
  virtual ~Automated() = default;

  [[nodiscard]] virtual const ComPtr<IDispatch>& dispatch() const = 0;
};

/// Any object of the caller, kept and passed on.
class HostObject final : public Object, public Automated {
 public:
  explicit HostObject(ComPtr<IDispatch> dispatch) : dispatch_{std::move(dispatch)} {}
  [[nodiscard]] const ComPtr<IDispatch>& dispatch() const override { return dispatch_; }

 private:
  ComPtr<IDispatch> dispatch_;
};

/// The automation object behind `object`; null when `object` is null. Throws `Error` when the
/// object does not come from automation.
[[nodiscard]] IDispatch* dispatchOf(const Object* object);
template <typename Class>
[[nodiscard]] IDispatch* dispatchOf(const std::shared_ptr<Class>& object) {
  return dispatchOf(static_cast<const Object*>(object.get()));
}

}  // namespace azcoll::ado
