#pragma once

#include <chrono>
#include <string>

namespace azcoll::cli {

/// How long the program `dot` may take for a drawing.
inline constexpr std::chrono::seconds kDrawingTime{60};

/// Writes the SVG drawing of a DOT text with the program `dot` of Graphviz. The file gets its name
/// only when the drawing is whole; a file of that name is replaced then. Throws `UsageError` when
/// the file cannot be written, `std::runtime_error` when the program is not there, fails, or takes
/// longer than `longest`.
void writeSvg(const std::string& dot, const std::string& file,
              std::chrono::milliseconds longest = kDrawingTime);

/// Throws `UsageError` for a name that does not end in .svg.
void requireSvgName(const std::string& file);

}  // namespace azcoll::cli
