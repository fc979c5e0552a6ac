#include "embedded/plan/guards.h"

#include <algorithm>
#include <string_view>

#include "data/decimal.h"
#include "embedded/values/literals.h"

namespace azcoll::embedded {

namespace {

// Numbers of so many digits fit, whichever they are.
constexpr std::size_t kInt32Digits = 9;
constexpr std::size_t kInt64Digits = 18;

bool guardHolds(const Guard& guard, const tsql::LiteralToken& token) {
  switch (guard.kind) {
    case Guard::Kind::SmallInteger:
      return token.raw.size() <= kInt64Digits;
    case Guard::Kind::Scale: {
      const std::size_t point = token.raw.find('.');
      return point == std::string_view::npos ||
             token.raw.size() - point - 1 <= std::size_t{guard.type.scale};
    }
    case Guard::Kind::SameType:
      // Nearly all whole numbers: no need to find their type.
      if (guard.type == kInt && token.raw.size() <= kInt32Digits &&
          token.kind == tsql::LiteralKind::Integer) {
        return true;
      }
      return literalType(token.kind, token.raw) == guard.type;
    case Guard::Kind::SameText:
      break;
  }
  // The token is the text as written, the guard holds its value.
  return token.hasDoubledQuotes ? literalText(token) == guard.text : token.raw == guard.text;
}

}  // namespace

bool guardsHold(const std::vector<Guard>& guards, const tsql::Shape& shape) {
  return std::all_of(guards.begin(), guards.end(), [&shape](const Guard& guard) {
    return guardHolds(guard, shape.literals[guard.ordinal]);
  });
}

void checkConstants(const tsql::Shape& shape) {
  for (const tsql::LiteralToken& token : shape.literals) {
    const bool exact =
        token.kind == tsql::LiteralKind::Integer || token.kind == tsql::LiteralKind::Decimal;
    if (token.kind == tsql::LiteralKind::Binary || token.kind == tsql::LiteralKind::Float ||
        (exact && token.raw.size() > Decimal::kMaxDigits)) {
      // For what it throws; the value is made again where it is bound.
      static_cast<void>(literalValue(token.kind, token.raw, literalType(token.kind, token.raw)));
    }
  }
}

std::string literalText(const tsql::LiteralToken& token) {
  std::string text(token.raw);
  if (token.hasDoubledQuotes) {
    std::size_t kept = 0;
    for (std::size_t at = 0; at < text.size(); ++at, ++kept) {
      text[kept] = text[at];
      if (text[at] == '\'') {
        ++at;  // the second of the two
      }
    }
    text.resize(kept);
  }
  return text;
}

}  // namespace azcoll::embedded
