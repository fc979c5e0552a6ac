#pragma once

#include <memory>
#include <string>
#include <vector>

#include "data/connection.h"
#include "service/members.h"
#include "service/service.h"

namespace azcoll::statements {

using Setting = void (*)(CLSCO_INPUTAZCOLL&);

struct CustomerOrSupplier {
  EnumTipoCF kind;
  int code;
};
/// One call of a method, with what its caller sets.
struct MethodCall {
  const MethodEntry* method;
  int company;
  int year;
  Setting setting;
  CustomerOrSupplier one;
};

/// Every call of a method that these tests make: for every company of the example, in several
/// years, with every setting, for customers and suppliers in every state.
[[nodiscard]] std::vector<MethodCall> callsOf(const MethodEntry& method);

/// Makes the call on a connection. Returns the statement that the method hands out for the caller
/// to run, or an empty text; a condition alone is none.
std::string make(const MethodCall& call, const std::shared_ptr<Connection>& connection);

}  // namespace azcoll::statements
