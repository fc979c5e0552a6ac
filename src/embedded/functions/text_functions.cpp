#include <algorithm>
#include <string>

#include "embedded/functions/functions.h"
#include "embedded/functions/like_pattern.h"
#include "embedded/values/collation.h"
#include "embedded/values/sql_error.h"
#include "text/letter_case.h"
#include "text/trimming.h"
#include "text/utf8.h"

namespace azcoll::embedded {

namespace {

// Longest text that a function builds: that of VARCHAR outside of MAX.
constexpr std::size_t kLongestBuilt = 8000;

std::string_view skipCharacters(std::string_view text, std::size_t count) {
  return text.substr(leftCharacters(text, count).size());
}

template <void (*Body)(const FunctionCallFrame&)>
void unlessNull(const FunctionCallFrame& frame) {
  if (frame.anyNull()) {
    frame.giveNull();
  } else {
    Body(frame);
  }
}

std::int64_t requireCount(std::int64_t count) {
  if (count < 0) {
    throw SqlError(537, "Invalid length parameter passed to the LEFT or SUBSTRING function.");
  }
  return count;
}

/// LEN does not count blanks at the end.
void length(const FunctionCallFrame& frame) {
  frame.give(static_cast<std::int64_t>(utf16Length(trimEnd(frame.text(0)))));
}

void left(const FunctionCallFrame& frame) {
  const auto count = static_cast<std::size_t>(requireCount(frame.integer(1)));
  frame.give(leftCharacters(frame.text(0), count));
}

void right(const FunctionCallFrame& frame) {
  const std::int64_t count = frame.integer(1);
  if (count < 0) {
    throw SqlError(536, "Invalid length parameter passed to the right function.");
  }
  const auto all = static_cast<std::int64_t>(characterCount(frame.text(0)));
  frame.give(skipCharacters(frame.text(0),
                            static_cast<std::size_t>(std::max(all - count, std::int64_t{0}))));
}

void substring(const FunctionCallFrame& frame) {
  // Within these bounds nothing below overflows; no text reaches them.
  const std::int64_t start =
      std::clamp(frame.integer(1), -std::int64_t{1} << 40U, std::int64_t{1} << 40U);
  const std::int64_t count = std::min(requireCount(frame.integer(2)), std::int64_t{1} << 41U);
  // Positions before the text count as well: SUBSTRING('abc', 0, 2) is 'a'.
  const std::int64_t end = start + count;
  const std::int64_t first = std::max(start, std::int64_t{1});
  const auto skipped = static_cast<std::size_t>(first - 1);
  const auto wanted = static_cast<std::size_t>(std::max(end - first, std::int64_t{0}));
  frame.give(leftCharacters(skipCharacters(frame.text(0), skipped), wanted));
}

void upper(const FunctionCallFrame& frame) {
  frame.give(std::string_view(upperText(frame.text(0))));
}
void lower(const FunctionCallFrame& frame) {
  frame.give(std::string_view(foldCase(frame.text(0))));
}
void leftTrim(const FunctionCallFrame& frame) { frame.give(trimStart(frame.text(0))); }
void rightTrim(const FunctionCallFrame& frame) { frame.give(trimEnd(frame.text(0))); }
void trimBoth(const FunctionCallFrame& frame) { frame.give(trim(frame.text(0))); }

/// Calls `found(position)` for every place of `wanted`, letter case ignored; folding keeps the
/// number of characters but not of bytes, so the places are counted in characters.
std::size_t findFolded(std::string_view text, std::string_view wanted, std::size_t from) {
  const std::string pattern = foldCase(wanted);
  const std::size_t characters = characterCount(wanted);
  for (std::size_t at = from; at < text.size(); at += characterAt(text, at).length) {
    if (foldCase(leftCharacters(text.substr(at), characters)) == pattern) {
      return at;
    }
  }
  return std::string_view::npos;
}

void replace(const FunctionCallFrame& frame) {
  const std::string_view text = frame.text(0);
  const std::string_view wanted = frame.text(1);
  // Nothing is found nowhere: the text stays as it is.
  if (wanted.empty()) {
    frame.giveArgument(0);
    return;
  }
  const std::size_t characters = characterCount(wanted);
  std::string result;
  std::size_t at = 0;
  for (std::size_t found = findFolded(text, wanted, 0); found != std::string_view::npos;
       found = findFolded(text, wanted, at)) {
    result += text.substr(at, found - at);
    result += frame.text(2);
    at = found + leftCharacters(text.substr(found), characters).size();
  }
  frame.give(std::string_view(result += text.substr(at)));
}

void charIndex(const FunctionCallFrame& frame) {
  const std::string_view text = frame.text(1);
  const std::int64_t start = frame.count() > 2 ? std::max(frame.integer(2), std::int64_t{1}) : 1;
  const std::size_t from = leftCharacters(text, static_cast<std::size_t>(start - 1)).size();
  // An empty text is found nowhere: 0.
  const std::size_t found =
      frame.text(0).empty() ? std::string_view::npos : findFolded(text, frame.text(0), from);
  const std::size_t position =
      found == std::string_view::npos ? 0 : characterCount(text.substr(0, found)) + 1;
  frame.give(static_cast<std::int64_t>(position));
}

void replicate(const FunctionCallFrame& frame) {
  const std::string_view text = frame.text(0);
  if (frame.integer(1) < 0) {
    frame.giveNull();
    return;
  }
  std::string result;
  for (std::int64_t i = 0; i < frame.integer(1) && !text.empty(); ++i) {
    if (result.size() + text.size() > kLongestBuilt) {
      // SQL Server would cut the result off without a word.
      throw SqlError(0, "Outside the supported T-SQL: REPLICATE beyond 8000 characters.");
    }
    result += text;
  }
  frame.give(std::string_view(result));
}

void space(const FunctionCallFrame& frame) {
  if (frame.integer(0) < 0) {
    frame.giveNull();
    return;
  }
  const auto count = std::min(static_cast<std::size_t>(frame.integer(0)), kLongestBuilt);
  frame.give(std::string_view(std::string(count, ' ')));
}

void reverse(const FunctionCallFrame& frame) {
  const std::string_view text = frame.text(0);
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t size = characterAt(text, at).length;
    result.insert(0, text.substr(at, size));
    at += size;
  }
  frame.give(std::string_view(result));
}

void concat(const FunctionCallFrame& frame) {
  std::string result;
  for (int i = 0; i < frame.count(); ++i) {
    result += frame.text(i);  // a missing value joins as nothing
  }
  frame.give(std::string_view(result));
}

void character(const FunctionCallFrame& frame) {
  const std::int64_t code = frame.integer(0);
  if (code < 0 || code > 255) {
    frame.giveNull();
    return;
  }
  // SQL Server's code page (1252) has characters of its own there; elsewhere it is Latin-1.
  if (code >= 128 && code < 160) {
    throw SqlError(0, "Outside the supported T-SQL: CHAR between 128 and 159.");
  }
  std::string text;
  appendUtf8(text, static_cast<std::uint32_t>(code));
  frame.give(std::string_view(text));
}

void ascii(const FunctionCallFrame& frame) {
  if (frame.text(0).empty()) {
    frame.giveNull();
    return;
  }
  const std::uint32_t code = characterAt(frame.text(0), 0).codePoint;
  if (code > 0xFF || (code >= 128 && code < 160)) {
    throw SqlError(0, "Outside the supported T-SQL: ASCII of a character beyond Latin-1.");
  }
  frame.give(static_cast<std::int64_t>(code));
}

/// (text, pattern, escape or NULL, whether a Unicode text takes part).
void like(const FunctionCallFrame& frame) {
  if (frame.isNull(0) || frame.isNull(1)) {
    frame.giveNull();
    return;
  }
  std::optional<char32_t> escape;
  if (!frame.isNull(2)) {
    const std::string_view text = frame.text(2);
    // An escape of more than one character, or of none, is an error of its own in T-SQL.
    if (characterCount(text) != 1) {
      throw SqlError(506, "The invalid escape character \"" + std::string(text) +
                              "\" was specified in a LIKE predicate.");
    }
    escape = characterAt(text, 0).codePoint;
  }
  bool matches = matchesLike(frame.text(0), frame.text(1), escape);
  // Blanks at the end of a text that is not Unicode do not count.
  if (!matches && frame.integer(3) == 0 && frame.text(0).ends_with(' ')) {
    matches = matchesLike(trimEnd(frame.text(0)), frame.text(1), escape);
  }
  frame.give(std::int64_t{matches ? 1 : 0});
}

}  // namespace

const std::vector<FunctionEntry>& textFunctions() {
  static const std::vector<FunctionEntry> kFunctions{
      {"ts_len", 1, reportingErrors<unlessNull<length>>},
      {"ts_left", 2, reportingErrors<unlessNull<left>>},
      {"ts_right", 2, reportingErrors<unlessNull<right>>},
      {"ts_substring", 3, reportingErrors<unlessNull<substring>>},
      {"ts_upper", 1, reportingErrors<unlessNull<upper>>},
      {"ts_lower", 1, reportingErrors<unlessNull<lower>>},
      {"ts_ltrim", 1, reportingErrors<unlessNull<leftTrim>>},
      {"ts_rtrim", 1, reportingErrors<unlessNull<rightTrim>>},
      {"ts_trim", 1, reportingErrors<unlessNull<trimBoth>>},
      {"ts_replace", 3, reportingErrors<unlessNull<replace>>},
      {"ts_charindex", -1, reportingErrors<unlessNull<charIndex>>},
      {"ts_replicate", 2, reportingErrors<unlessNull<replicate>>},
      {"ts_space", 1, reportingErrors<unlessNull<space>>},
      {"ts_reverse", 1, reportingErrors<unlessNull<reverse>>},
      {"ts_concat", -1, reportingErrors<concat>},
      {"ts_char", 1, reportingErrors<unlessNull<character>>},
      {"ts_ascii", 1, reportingErrors<unlessNull<ascii>>},
      {"ts_like", 4, reportingErrors<like>},
  };
  return kFunctions;
}

}  // namespace azcoll::embedded
