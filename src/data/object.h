#pragma once

namespace azcoll {

/// Root of everything that a variant can refer to: connections, recordsets, objects of the host.
class Object {
 public:
  Object() = default;
  Object(const Object&) = delete;
  Object(Object&&) = delete;
  Object& operator=(const Object&) = delete;
  Object& operator=(Object&&) = delete;
  virtual ~Object() = default;
};

}  // namespace azcoll
