#pragma once

#include <string_view>

namespace azcoll::embedded {

/// Whether T-SQL has a function of this name (upper case), inside the engine or not.
[[nodiscard]] bool isBuiltinFunction(std::string_view name);

}  // namespace azcoll::embedded
