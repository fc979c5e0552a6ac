#pragma once

#include "component/call.h"

/// The transaction that a method begins for itself.
namespace azcoll::clifor {

/// Begins it and notes that it is the method's to end. Throws `Error`.
void beginTransaction(Call& call);

/// Commits it, or undoes it. Each throws `Error`.
void commitTransaction(Call& call);
void rollbackTransaction(Call& call);

/// What the trap of such a method does first. Callers rely on it: only a failure that the provider
/// recorded is rolled back. Throws `Error`.
void undoAfterError(Call& call);

}  // namespace azcoll::clifor
