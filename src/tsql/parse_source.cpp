#include <array>

#include "text/letter_case.h"
#include "tsql/parser_core.h"

namespace azcoll::tsql {

namespace {

// The hints without arguments: they say how rows are locked and read, never which rows there are.
constexpr std::array<std::string_view, 23> kHints = {"FORCESCAN",
                                                     "FORCESEEK",
                                                     "HOLDLOCK",
                                                     "IGNORE_CONSTRAINTS",
                                                     "KEEPDEFAULTS",
                                                     "KEEPIDENTITY",
                                                     "IGNORE_TRIGGERS",
                                                     "NOEXPAND",
                                                     "NOLOCK",
                                                     "NOWAIT",
                                                     "PAGLOCK",
                                                     "READCOMMITTED",
                                                     "READPAST",
                                                     "REPEATABLEREAD",
                                                     "READCOMMITTEDLOCK",
                                                     "READUNCOMMITTED",
                                                     "ROWLOCK",
                                                     "SERIALIZABLE",
                                                     "SNAPSHOT",
                                                     "TABLOCK",
                                                     "TABLOCKX",
                                                     "UPDLOCK",
                                                     "XLOCK"};

bool isHint(std::string_view word) {
  return std::any_of(kHints.begin(), kHints.end(), [word](std::string_view hint) {
    return ascii::equalsIgnoringCase(word, hint);
  });
}

TableSourcePtr makeSource(const Position& position) {
  auto source = std::make_unique<TableSource>();
  source->position = position;
  return source;
}

}  // namespace

/// The sources after the word FROM.
std::vector<TableSourcePtr> Parser::parseFrom() {
  std::vector<TableSourcePtr> sources;
  do {
    // Sources side by side are no higher than the highest of them.
    const Part part(*this);
    sources.push_back(parseJoins(parseSource()));
  } while (accept(Symbol::Comma));
  return sources;
}

bool Parser::atJoin() const {
  switch (current_.keyword) {
    case Keyword::Join:
    case Keyword::Inner:
    case Keyword::Left:
    case Keyword::Right:
    case Keyword::Full:
    case Keyword::Cross:
    case Keyword::Outer:
      return true;
    default:
      return false;
  }
}

/// `left` and all that is joined to it, up to an ON that belongs to a join further out.
TableSourcePtr Parser::parseJoins(TableSourcePtr left) {
  while (atJoin()) {
    Join join;
    join.kind = takeJoinWords();
    if (join.kind == JoinKind::CrossApply || join.kind == JoinKind::OuterApply) {
      join.right = parseApplied();
    } else {
      join.right = parseSource();
    }
    // The kinds before Cross have an ON.
    if (join.kind < JoinKind::Cross) {
      if (atJoin()) {  // `A JOIN B JOIN C ON … ON …`
        const Nesting nesting(*this);
        join.right = parseJoins(std::move(join.right));
      }
      expect(Keyword::On);
      join.on = parseCondition();
    }
    const Position position = left->position;
    join.left = std::move(left);
    left = makeSource(position);
    left->node = std::move(join);
    addLink();
  }
  return left;
}

JoinKind Parser::takeJoinWords() {
  JoinKind kind = JoinKind::Inner;
  switch (current_.keyword) {
    case Keyword::Cross:
    case Keyword::Outer: {
      const bool cross = is(Keyword::Cross);
      advance();
      if (acceptWord("APPLY")) {
        return cross ? JoinKind::CrossApply : JoinKind::OuterApply;
      }
      // OUTER by itself opens OUTER APPLY only.
      if (!cross) {
        fail();
      }
      expect(Keyword::Join);
      return JoinKind::Cross;
    }
    case Keyword::Left:
      kind = JoinKind::Left;
      break;
    case Keyword::Right:
      kind = JoinKind::Right;
      break;
    case Keyword::Full:
      kind = JoinKind::Full;
      break;
    default:
      break;
  }
  if (!is(Keyword::Join)) {
    advance();
    if (kind != JoinKind::Inner) {
      accept(Keyword::Outer);
    }
  }
  if (is(Keyword::Merge) || isWord("LOOP") || isWord("HASH") || isWord("REMOTE")) {
    failOutside("join hints");
  }
  expect(Keyword::Join);
  return kind;
}

TableSourcePtr Parser::parseSource() {
  TableSourcePtr source;
  if (is(Symbol::LeftParenthesis)) {
    SourceOrQuery inner = parseInParentheses();
    source = inner.query ? finishDerived(std::move(inner.query), inner.position)
                         : std::move(inner.source);
  } else {
    source = parseNamedSource();
  }
  if (is(Keyword::Pivot) || is(Keyword::Unpivot)) {
    failOutside("PIVOT and UNPIVOT");
  }
  if (is(Keyword::Tablesample)) {
    failOutside("TABLESAMPLE");
  }
  if (is(Keyword::For)) {
    failOutside("FOR behind a table");
  }
  return source;
}

/// What APPLY takes: a call or a derived table.
TableSourcePtr Parser::parseApplied() {
  TableSourcePtr source = parseSource();
  if (std::holds_alternative<NamedTable>(source->node)) {
    failOutside("APPLY with a table");
  }
  return source;
}

TableSourcePtr Parser::parseNamedSource() {
  TableSourcePtr source = makeSource(current_.position);
  if (is(Keyword::OtherFunction)) {
    failOutside("the function " + nearText());
  }
  ObjectName name = parseTableName();
  if (is(Symbol::LeftParenthesis) && !atBareHints()) {
    const Nesting nesting(*this);
    advance();
    FunctionTable function{std::move(name), {}};
    if (!is(Symbol::RightParenthesis)) {
      function.arguments = parseScalarList();
    }
    expect(Symbol::RightParenthesis);
    source->node = std::move(function);
    parseSourceAlias(*source, false);
    return source;
  }
  NamedTable table{std::move(name), {}};
  if (atBareHints()) {
    parseHintList(table.hints);
  }
  parseSourceAlias(*source, false);
  parseTableHints(table.hints);
  source->node = std::move(table);
  return source;
}

/// From an opening parenthesis on. Only what follows the closing one shows whether a query in
/// parentheses is a derived table or an operand of UNION: that is left to the caller.
Parser::SourceOrQuery Parser::parseInParentheses() {
  const Nesting nesting(*this);
  SourceOrQuery result;
  result.position = current_.position;
  advance();
  if (is(Keyword::Values)) {
    failOutside("VALUES as a table");
  }
  if (is(Keyword::Select)) {
    result.query = parseSubquery();
  } else if (is(Symbol::LeftParenthesis)) {
    SourceOrQuery inner = parseInParentheses();
    // Still a query: more parentheses around it, or an operand of a set operation.
    if (inner.query && (atSetOperator() || is(Symbol::RightParenthesis))) {
      result.query = std::move(inner.query);
      if (atSetOperator()) {
        if (!result.query->orderBy.empty()) {
          fail();
        }
        ++subqueries_;
        result.query = parseUnion(std::move(result.query));
        --subqueries_;
      }
    } else {
      result.source = inner.query ? finishDerived(std::move(inner.query), inner.position)
                                  : std::move(inner.source);
      result.source = parseJoins(std::move(result.source));
    }
  } else {
    result.source = parseJoins(parseSource());
  }
  expect(Symbol::RightParenthesis);
  return result;
}

TableSourcePtr Parser::finishDerived(QueryPtr query, Position position) {
  TableSourcePtr source = makeSource(position);
  source->node = DerivedTable{std::move(query)};
  parseSourceAlias(*source, true);
  return source;
}

void Parser::parseSourceAlias(TableSource& source, bool required) {
  const bool announced = accept(Keyword::As);
  if (isName()) {
    source.alias = takeName();
    refuseColumnAliases();
  } else if (announced || required) {
    fail();
  }
}

void Parser::refuseColumnAliases() {
  if (is(Symbol::LeftParenthesis) && !atBareHints()) {
    failOutside("column aliases behind a table alias");
  }
}

/// Whether hints in parentheses without WITH begin here: `T (NOLOCK)`.
bool Parser::atBareHints() {
  if (!is(Symbol::LeftParenthesis)) {
    return false;
  }
  const Token& word = peek(1);
  const Symbol behind = peek(2).symbol;
  return isHint(word.raw) && (behind == Symbol::RightParenthesis || behind == Symbol::Comma);
}

void Parser::parseTableHints(std::vector<std::string>& hints) {
  if (atBareHints()) {
    parseHintList(hints);
  } else if (is(Keyword::With) && peek().symbol == Symbol::LeftParenthesis) {
    advance();
    parseHintList(hints);
  }
}

/// `(hint [,] hint …)`.
void Parser::parseHintList(std::vector<std::string>& hints) {
  expect(Symbol::LeftParenthesis);
  while (true) {
    if (is(Keyword::Index)) {
      failOutside("index hints");
    }
    if (!isHint(current_.raw)) {
      if (current_.kind != TokenKind::Word) {
        fail();
      }
      failAt(321,
             "\"" + nearText() +
                 "\" is not a recognized table hints option. If it is intended as a parameter to "
                 "a table-valued function or to the CHANGETABLE function, ensure that your "
                 "database compatibility mode is set to 90.",
             current_);
    }
    hints.push_back(ascii::upper(current_.raw));
    advance();
    if (accept(Symbol::RightParenthesis)) {
      return;
    }
    // Hints may follow each other without a comma.
    accept(Symbol::Comma);
  }
}

}  // namespace azcoll::tsql
