#pragma once

#include <functional>
#include <string_view>

#include "statements/method_calls.h"

namespace azcoll::statements {

/// Who is told what the methods compose.
struct Listener {
  /// A statement, one for each shape of a method: sent to the database, sent by a batch update (its
  /// values are `?` then), or handed out for the caller to run.
  std::function<void(std::string_view method, std::string_view text)> statement;
  /// The name of a procedure called.
  std::function<void(std::string_view name)> procedure;
  /// The call that comes next; may be empty.
  std::function<void(const MethodCall& call)> calling{};
};

/// Every method for every company of the example, in several years, with every setting, for
/// customers and suppliers in every state. Each method starts from the example anew, on the
/// embedded engine.
void composeEverything(const Listener& listener);

}  // namespace azcoll::statements
