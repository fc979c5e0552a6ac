#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace azcoll::tsql {

/// One batch of a script and the line on which it starts in the script.
struct ScriptBatch {
  std::string text;
  std::uint32_t firstLine = 1;
};

/// Splits a script at its lines that hold nothing but GO (any letter case, blanks around it);
/// batches without a statement are left out. A GO inside a comment or a quoted text does not count.
/// A mark of the byte order at the start is dropped.
[[nodiscard]] std::vector<ScriptBatch> splitScript(std::string_view script);

}  // namespace azcoll::tsql
