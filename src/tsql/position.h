#pragma once

#include <cstddef>
#include <string_view>

#include "text/utf8.h"
#include "tsql/ast.h"
#include "tsql/characters.h"

namespace azcoll::tsql {

/// The place `offset` bytes into `text`, counted on from an earlier place `from` of the same text.
/// LF, CR LF and CR alone each end a line.
inline Position positionAt(std::string_view text, std::size_t offset, Position from = {}) {
  for (std::size_t i = from.offset; i < offset; ++i) {
    const char c = text[i];
    if (c == '\n' || (c == '\r' && byteAt(text, i + 1) != '\n')) {
      ++from.line;
      from.column = 1;
    } else if (!isContinuation(c)) {
      ++from.column;
    }
  }
  from.offset = offset;
  return from;
}

}  // namespace azcoll::tsql
