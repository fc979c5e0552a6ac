#pragma once

#include <string>
#include <string_view>

namespace azcoll {

/// `text` with every `mark` written twice, for use inside marks.
[[nodiscard]] std::string doubled(std::string_view text, char mark);

/// `text` between marks, with every closing one inside it written twice. `open` is `'` or `"`,
/// which close themselves, or `[` or `{`, which `]` and `}` close.
[[nodiscard]] std::string quoted(std::string_view text, char open);

}  // namespace azcoll
