#include "tsql/script.h"

#include "text/letter_case.h"
#include "tsql/characters.h"
#include "tsql/position.h"

namespace azcoll::tsql {

namespace {

std::size_t skipSpaces(std::string_view text, std::size_t at) {
  while (byteAt(text, at) == ' ' || byteAt(text, at) == '\t') {
    ++at;
  }
  return at;
}

/// Whether the line that starts at `at` holds nothing but GO; then `end` is the start of the next.
bool isGoLine(std::string_view script, std::size_t at, std::size_t& end) {
  at = skipSpaces(script, at);
  if (!ascii::equalsIgnoringCase(script.substr(at, 2), "GO")) {
    return false;
  }
  at = skipSpaces(script, at + 2);
  if (at < script.size() && !isLineBreak(script[at])) {
    return false;
  }
  if (byteAt(script, at) == '\r' && byteAt(script, at + 1) == '\n') {
    ++at;
  }
  end = at < script.size() ? at + 1 : at;
  return true;
}

class ScriptSplitter {
 public:
  explicit ScriptSplitter(std::string_view script) : script_(script) {}

  std::vector<ScriptBatch> run() {
    bool atLineStart = true;
    while (at_ < script_.size()) {
      std::size_t next = 0;
      if (atLineStart && isGoLine(script_, at_, next)) {
        finishBatch(next);
        continue;
      }
      const std::size_t before = at_;
      step();
      // CR LF is one line break.
      atLineStart = isLineBreak(script_[before]) &&
                    !(script_[before] == '\r' && byteAt(script_, at_) == '\n');
    }
    finishBatch(at_);
    return std::move(batches_);
  }

 private:
  /// Passes one character, or a comment or quoted text as a whole.
  void step() {
    const char c = script_[at_];
    if (hasClass(c, kBlank) || c == ';') {
      ++at_;
      return;
    }
    if (startsComment(script_, at_)) {
      const CommentSpan comment = scanComment(script_, at_);
      at_ = comment.end;
      hasStatement_ = hasStatement_ || !comment.closed;  // the parser reports what is wrong
      return;
    }
    hasStatement_ = true;
    if (c == '\'' || c == '"' || c == '[') {
      at_ = scanQuoted(script_, at_, c == '[' ? ']' : c).end;
    } else {
      ++at_;
    }
  }

  /// Ends the batch at the current place; the next one starts at `next`.
  void finishBatch(std::size_t next) {
    start_ = positionAt(script_, batchStart_, start_);
    if (hasStatement_) {
      batches_.push_back(
          {std::string(script_.substr(batchStart_, at_ - batchStart_)), start_.line});
    }
    hasStatement_ = false;
    at_ = batchStart_ = next;
  }

  std::string_view script_;
  std::vector<ScriptBatch> batches_;
  std::size_t at_ = 0;
  std::size_t batchStart_ = 0;
  Position start_;
  bool hasStatement_ = false;
};

}  // namespace

std::vector<ScriptBatch> splitScript(std::string_view script) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (script.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    script.remove_prefix(kByteOrderMark.size());
  }
  return ScriptSplitter(script).run();
}

}  // namespace azcoll::tsql
