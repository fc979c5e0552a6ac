#pragma once

#include "component/call.h"

/// The configuration screens of the user-interface library: what they are given, and showing them.
/// Every function throws `Error`.
namespace azcoll::linked {

/// Shows the screen of the links between companies. Does nothing without the caller's interface.
void configureLinks(Call& call);

/// Shows the screen of the company's activities. Does nothing without the caller's interface.
void configureActivities(Call& call);

}  // namespace azcoll::linked
