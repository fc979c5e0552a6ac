#include "data/connection_pairs.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "text/trimming.h"

namespace azcoll {
namespace {

/// Reads the value in quotes at the start of `text`; returns where it ends, after its closing
/// mark, or npos when it is open.
std::size_t readQuoted(std::string_view text, std::string& value) {
  const char close = text.front() == '{' ? '}' : text.front();
  for (std::size_t at = 1; at < text.size(); ++at) {
    if (text[at] != close) {
      value += text[at];
    } else if (at + 1 < text.size() && text[at + 1] == close) {
      value += close;
      ++at;
    } else {
      return at + 1;
    }
  }
  return std::string_view::npos;
}

/// Reads the value at the start of `text`, which no blank precedes; returns the length of it, up to
/// the `;` or the end.
std::size_t readValue(std::string_view text, std::string_view quotes, ConnectionPair& pair) {
  const bool isQuoted = !text.empty() && quotes.find(text.front()) != std::string_view::npos;
  const std::size_t behind = isQuoted ? readQuoted(text, pair.value) : 0;
  const std::size_t end = std::min(text.find(';', behind), text.size());
  pair.raw = trim(text.substr(0, end));
  if (!isQuoted) {
    pair.value = pair.raw;
  } else if (behind == std::string_view::npos) {
    pair.flaw = PairFlaw::OpenQuote;
  } else if (!trim(text.substr(behind, end - behind)).empty()) {
    pair.flaw = PairFlaw::TextBehindQuote;
  }
  return end;
}

}  // namespace

std::vector<ConnectionPair> readConnectionPairs(std::string_view text, std::string_view quotes) {
  std::vector<ConnectionPair> pairs;
  while (!text.empty()) {
    ConnectionPair pair;
    const std::size_t mark = std::min(text.find_first_of("=;"), text.size());
    const bool hasValue = text.substr(mark).starts_with('=');
    pair.key = trim(text.substr(0, mark));
    text.remove_prefix(mark);
    if (hasValue) {
      text.remove_prefix(std::min(text.find_first_not_of(' ', 1), text.size()));
      text.remove_prefix(readValue(text, quotes, pair));
    } else {
      pair.flaw = PairFlaw::NoEquals;
    }
    if (hasValue || !pair.key.empty()) {
      pairs.push_back(std::move(pair));
    }
    text.remove_prefix(std::min<std::size_t>(text.size(), 1));  // the `;`
  }
  return pairs;
}

}  // namespace azcoll
