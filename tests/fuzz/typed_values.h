#pragma once

#include <string>

namespace azcoll::fuzz {

/// A text converted to every type of the engine: what a type takes, it gives back; a value that a
/// caller reads can be written again. Throws `BrokenInvariant`.
void checkTypedText(const std::string& text);

}  // namespace azcoll::fuzz
