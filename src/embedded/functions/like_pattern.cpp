#include "embedded/functions/like_pattern.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include "embedded/values/collation.h"
#include "text/letter_case.h"

namespace azcoll::embedded {

namespace {

/// One position of a pattern.
struct Element {
  enum class Kind : std::uint8_t { Any, Many, One, Set } kind = Kind::One;
  std::uint32_t character = 0;
  bool negated = false;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> ranges;
};

std::vector<std::uint32_t> characters(std::string_view text) {
  std::vector<std::uint32_t> result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCharacter character = characterAt(text, at);
    result.push_back(foldCase(character.codePoint));
    at += character.length;
  }
  return result;
}

/// Reads `[…]` from after its opening bracket; false when it is not closed.
bool readSet(const std::vector<std::uint32_t>& pattern, std::size_t& at, Element& element) {
  std::size_t i = at;
  element.kind = Element::Kind::Set;
  if (i < pattern.size() && pattern[i] == '^') {
    element.negated = true;
    ++i;
  }
  // Right after the opening bracket `]` is a member of the set.
  const std::size_t first = i;
  while (i < pattern.size() && (pattern[i] != ']' || i == first)) {
    const bool range = i + 2 < pattern.size() && pattern[i + 1] == '-' && pattern[i + 2] != ']';
    element.ranges.emplace_back(pattern[i], range ? pattern[i + 2] : pattern[i]);
    i += range ? 3 : 1;
  }
  if (i >= pattern.size()) {
    return false;
  }
  at = i + 1;
  return true;
}

std::vector<Element> compile(std::string_view text, std::optional<char32_t> escape) {
  const std::vector<std::uint32_t> pattern = characters(text);
  std::vector<Element> elements;
  for (std::size_t at = 0; at < pattern.size();) {
    const std::uint32_t c = pattern[at++];
    Element element;
    element.character = c;
    // The pattern is folded, and so the escape character has to be.
    if (escape && c == foldCase(*escape) && at < pattern.size()) {
      element.character = pattern[at++];
    } else if (c == '%') {
      element.kind = Element::Kind::Many;
    } else if (c == '_') {
      element.kind = Element::Kind::Any;
    } else if (c == '[' && !readSet(pattern, at, element)) {
      element = Element{};  // an open bracket matches nothing
      element.kind = Element::Kind::Set;
      at = pattern.size();
    }
    elements.push_back(std::move(element));
  }
  return elements;
}

bool matchesOne(const Element& element, std::uint32_t c) {
  switch (element.kind) {
    case Element::Kind::Any:
      return true;
    case Element::Kind::Set: {
      bool found = false;
      for (const auto& [low, high] : element.ranges) {
        found = found || (c >= low && c <= high);
      }
      return found != element.negated;
    }
    default:
      return element.character == c;
  }
}

}  // namespace

bool matchesLike(std::string_view text, std::string_view pattern, std::optional<char32_t> escape) {
  const std::vector<std::uint32_t> subject = characters(text);
  const std::vector<Element> elements = compile(pattern, escape);
  // Only the last `%` is ever extended: what an earlier one could take, it can take as well. So the
  // time is at most the text's length times the pattern's.
  constexpr auto kNone = static_cast<std::size_t>(-1);
  std::size_t s = 0;
  std::size_t e = 0;
  std::size_t lastMany = kNone;
  std::size_t resume = 0;
  while (s < subject.size()) {
    if (e < elements.size() && elements[e].kind == Element::Kind::Many) {
      lastMany = e++;
      resume = s;
    } else if (e < elements.size() && matchesOne(elements[e], subject[s])) {
      ++e;
      ++s;
    } else if (lastMany != kNone) {
      e = lastMany + 1;
      s = ++resume;
    } else {
      return false;
    }
  }
  while (e < elements.size() && elements[e].kind == Element::Kind::Many) {
    ++e;
  }
  return e == elements.size();
}

}  // namespace azcoll::embedded
