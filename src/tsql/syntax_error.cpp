#include "tsql/syntax_error.h"

#include <algorithm>

#include "text/utf8.h"
#include "tsql/characters.h"

namespace azcoll::tsql {

namespace {

constexpr std::size_t kContext = 40;  // characters shown on either side of the place
constexpr std::size_t kMarked = 32;   // characters shown of the place itself

/// Start of the part shown before `offset`; `cut` says that the line began earlier.
std::size_t contextStart(std::string_view text, std::size_t offset, bool& cut) {
  std::size_t characters = 0;
  std::size_t at = offset;
  while (at > 0 && !isLineBreak(text[at - 1])) {
    if (characters == kContext) {
      cut = true;
      break;
    }
    --at;
    // Bytes that are not UTF-8 have no limit of four a character: they count one by one.
    if (!isContinuation(text[at]) || offset - at > 4 * kContext) {
      ++characters;
    }
  }
  return at;
}

void appendShown(std::string& out, std::string_view part) {
  for (std::size_t at = 0; at < part.size();) {
    const CodePoint point = decodeUtf8(part, at);
    if (point.length == 0) {
      out += "\xEF\xBF\xBD";  // U+FFFD
      ++at;
      continue;
    }
    if (point.value < 0x20 || point.value == 0x7F) {
      out += ' ';
    } else {
      out += part.substr(at, point.length);
    }
    at += point.length;
  }
}

/// At most `limit` characters of `text`, not beyond its first line break; `…` for the rest.
void appendStart(std::string& out, std::string_view text, std::size_t limit) {
  // No character has more than four bytes; bytes that are not UTF-8 could go on without end.
  const std::string_view shown = leftCharacters(text.substr(0, 4 * limit), limit);
  const auto* const lineEnd = std::find_if(shown.begin(), shown.end(), isLineBreak);
  const auto length = static_cast<std::size_t>(lineEnd - shown.begin());
  appendShown(out, shown.substr(0, length));
  if (length < text.size() && !isLineBreak(text[length])) {
    out += "…";
  }
}

}  // namespace

std::string markedFragment(std::string_view text, std::size_t offset, std::size_t length) {
  bool cut = false;
  const std::size_t from = contextStart(text, offset, cut);
  std::string out = cut ? "…" : "";
  appendShown(out, text.substr(from, offset - from));
  out += "»";
  const std::string_view marked = text.substr(offset, length);
  appendStart(out, marked, kMarked);
  out += "«";
  appendStart(out, text.substr(offset + marked.size()), kContext);
  return out;
}

SyntaxError::SyntaxError(int number, const std::string& message, Position position,
                         std::string fragment)
    : std::runtime_error(message),
      number_(number),
      position_(position),
      fragment_(std::move(fragment)) {}

std::string SyntaxError::located() const {
  return std::string(what()) + " Line " + std::to_string(position_.line) + ", column " +
         std::to_string(position_.column) + ": " + fragment_;
}

}  // namespace azcoll::tsql
