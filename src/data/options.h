#pragma once

namespace azcoll {

// The option values are those of ADO, so that a provider that drives ADO passes them on unchanged
// and a trace shows them as callers know them.

enum class CursorLocation : int { Server = 2, Client = 3 };

enum class CursorType : int {
  Unspecified = -1,
  ForwardOnly = 0,
  Keyset = 1,
  Dynamic = 2,
  Static = 3
};

enum class LockType : int {
  Unspecified = -1,
  ReadOnly = 1,
  Pessimistic = 2,
  Optimistic = 3,
  BatchOptimistic = 4
};

/// What a command text is: nothing said, SQL text, or the name of a stored procedure.
enum class CommandOption : int { Unspecified = -1, Text = 1, StoredProcedure = 4 };

/// Which rows a batch update sends.
enum class Affect : int { Current = 1, Group = 2, All = 3 };

enum class SearchDirection : int { Backward = -1, Forward = 1 };

/// Where a search starts.
enum class Bookmark : int { Current = 0, First = 1, Last = 2 };

enum class ParameterDirection : int { Input = 1, Output = 2, InputOutput = 3, ReturnValue = 4 };

}  // namespace azcoll
