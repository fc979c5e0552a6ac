// The T-SQL front end on any bytes: what is refused is refused with a place and a fragment that can
// be shown; what is accepted prints as a text that means the same and prints as itself; tokens,
// shape and tree agree about the constants, which the plan cache relies on.

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "fuzz/constants.h"
#include "fuzz/targets.h"
#include "text/utf8.h"
#include "tsql/lexer.h"
#include "tsql/parser.h"
#include "tsql/printer.h"
#include "tsql/script.h"
#include "tsql/shape.h"
#include "tsql/syntax_error.h"

namespace azcoll::fuzz {
namespace {

using tsql::Batch;
using tsql::kNotLifted;
using tsql::Shape;
using tsql::SyntaxError;
using tsql::Token;
using tsql::TokenKind;

void checkRefusal(const SyntaxError& error, std::string_view text) {
  require(error.position().offset <= text.size(), "an error lies inside the text", text);
  require(error.position().line >= 1 && error.position().column >= 1, "lines count from 1", text);
  require(error.fragment().find("»") != std::string::npos, "a fragment marks the place", text);
  constexpr std::size_t kLongestFragment = 1000;
  require(error.fragment().size() <= kLongestFragment, "a fragment is short", error.fragment());
  require(findMalformedUtf8(error.located()) == std::string_view::npos, "a message can be shown",
          text);
}

std::optional<Batch> parsed(std::string_view text) {
  try {
    return tsql::parse(text);
  } catch (const SyntaxError& error) {
    checkRefusal(error, text);
    return std::nullopt;
  }
}

Shape shapeOf(std::string_view text) {
  Shape shape;
  tsql::scanShape(text, shape);
  return shape;
}

bool isMistake(const Token& token) {
  return token.kind == TokenKind::UnclosedQuote || token.kind == TokenKind::UnclosedComment ||
         token.kind == TokenKind::Unexpected;
}

/// Tokens lie one behind the other and do not overlap.
std::vector<Token> tokensOf(std::string_view text) {
  tsql::Lexer lexer(text);
  std::vector<Token> tokens;
  std::size_t end = 0;
  for (Token token = lexer.next(); token.kind != TokenKind::End; token = lexer.next()) {
    const auto start = static_cast<std::size_t>(token.raw.data() - text.data());
    require(!token.raw.empty() && start >= end && start + token.raw.size() <= text.size(),
            "tokens follow one another", text);
    require(token.position.offset == start, "a token knows its place", text);
    end = start + token.raw.size();
    static_cast<void>(token.value());
    tokens.push_back(token);
  }
  require(lexer.next().kind == TokenKind::End, "the end stays the end", text);
  return tokens;
}

/// The numbered tokens are the constants of the shape. The shape of a text that the parser refuses
/// for a token alone tells nothing.
void checkTokens(std::string_view text) {
  const std::vector<Token> tokens = tokensOf(text);
  const Shape shape = shapeOf(text);
  if (std::any_of(tokens.begin(), tokens.end(), isMistake)) {
    return;
  }
  std::size_t constants = 0;
  for (const Token& token : tokens) {
    if (token.kind == TokenKind::Marker || token.ordinal == kNotLifted) {
      continue;
    }
    require(token.ordinal == constants && constants < shape.literals.size(),
            "the shape numbers constants as the lexer does", text);
    const std::string_view raw = shape.literals[constants++].raw;
    require(raw.empty() || token.raw.find(raw) != std::string_view::npos,
            "the shape holds the token's constant", text);
  }
  require(constants == shape.literals.size(), "the shape has no more constants", text);
}

/// Texts of one shape have trees that differ in their constants only.
void checkSameShape(std::string_view text, const Batch& batch) {
  const std::string other = withOtherConstants(text, hashOf(text), batch.structuralLiterals);
  const Shape shape = shapeOf(text);
  if (!shape.cacheable || shapeOf(other).key != shape.key) {
    return;
  }
  const std::optional<Batch> twin = parsed(other);
  require(twin.has_value(), "texts of one shape are understood alike", other);
  require(twin->literalCount == batch.literalCount &&
              twin->structuralLiterals == batch.structuralLiterals,
          "texts of one shape have the same constants", other);
  const Shape printed = shapeOf(tsql::print(batch));
  const Shape twinPrinted = shapeOf(tsql::print(*twin));
  requireSame(twinPrinted.key, printed.key, "texts of one shape have one tree");
}

void checkRoundTrip(std::string_view text, const Batch& batch) {
  const std::string canonical = tsql::print(batch);
  require(canonical.find('\n') == std::string::npos || text.find('\n') != std::string_view::npos,
          "printing adds no line break", canonical);
  const std::optional<Batch> again = parsed(canonical);
  require(again.has_value(), "what is printed is understood", canonical);
  requireSame(tsql::print(*again), canonical, "a printed text prints as itself");
  // An alias in quotes is printed as a name: constants that are part of something else may go.
  require(again->statements.size() == batch.statements.size() &&
              again->markerCount == batch.markerCount &&
              again->literalCount - again->structuralLiterals.size() ==
                  batch.literalCount - batch.structuralLiterals.size(),
          "a printed text has the same statements, constants and markers", canonical);
  for (std::size_t i = 0; i < batch.statements.size(); ++i) {
    require(again->statements[i]->node.index() == batch.statements[i]->node.index(),
            "a printed statement is of its kind", canonical);
    requireSame(tsql::print(*again->statements[i]), tsql::print(*batch.statements[i]),
                "a statement prints alone as in its batch");
  }
}

void checkScript(std::string_view script) {
  std::size_t at = 0;
  std::uint32_t line = 1;
  for (const tsql::ScriptBatch& batch : tsql::splitScript(script)) {
    at = script.find(batch.text, at);
    require(at != std::string_view::npos, "a batch is a part of its script", batch.text);
    require(batch.firstLine >= line, "batches follow one another", batch.text);
    line = batch.firstLine;
    const auto again = tsql::splitScript(batch.text);
    const bool marked = batch.text.starts_with("\xEF\xBB\xBF");
    require(marked || (again.size() == 1 && again.front().text == batch.text),
            "a batch is a script of one batch", batch.text);
  }
}

}  // namespace

void tsqlFrontEnd(std::string_view input) {
  checkTokens(input);
  checkScript(input);
  const std::optional<Batch> batch = parsed(input);
  if (!batch) {
    return;
  }
  require(findMalformedUtf8(input) == std::string_view::npos, "what is understood is UTF-8", input);
  require(shapeOf(input).literals.size() == batch->literalCount,
          "shape and tree count the same constants", input);
  require(std::is_sorted(batch->structuralLiterals.begin(), batch->structuralLiterals.end()),
          "ordinals rise", input);
  checkRoundTrip(input, *batch);
  checkSameShape(input, *batch);
}

}  // namespace azcoll::fuzz
