#include "tsql/condition.h"
#include "tsql/keywords.h"
#include "tsql/printer_core.h"

namespace azcoll::tsql {

namespace {

// How tightly a node binds; an operand that binds less tightly than its place asks for is put in
// parentheses. Signs stand between the two kinds of arithmetic operators.
constexpr int kOr = 1;
constexpr int kAnd = 2;
constexpr int kNot = 3;
constexpr int kPredicate = 4;
constexpr int kAdditive = 5;
constexpr int kSign = 6;
constexpr int kMultiplicative = 7;
constexpr int kPrimary = 8;

int bindingOf(BinaryOperator op) {
  switch (op) {
    case BinaryOperator::Or:
      return kOr;
    case BinaryOperator::And:
      return kAnd;
    case BinaryOperator::Add:
    case BinaryOperator::Subtract:
      return kAdditive;
    case BinaryOperator::Multiply:
    case BinaryOperator::Divide:
    case BinaryOperator::Modulo:
      return kMultiplicative;
    default:
      return kPredicate;
  }
}

int bindingOf(const Expression& expression) {
  if (const auto* const unary = std::get_if<Unary>(&expression.node)) {
    return unary->op == UnaryOperator::Not ? kNot : kSign;
  }
  if (const auto* const binary = std::get_if<Binary>(&expression.node)) {
    return bindingOf(binary->op);
  }
  return isCondition(expression) ? kPredicate : kPrimary;
}

std::string_view symbolOf(BinaryOperator op) {
  switch (op) {
    case BinaryOperator::Add:
      return " + ";
    case BinaryOperator::Subtract:
      return " - ";
    case BinaryOperator::Multiply:
      return " * ";
    case BinaryOperator::Divide:
      return " / ";
    case BinaryOperator::Modulo:
      return " % ";
    case BinaryOperator::Equal:
      return " = ";
    case BinaryOperator::NotEqual:
      return " <> ";
    case BinaryOperator::Less:
      return " < ";
    case BinaryOperator::Greater:
      return " > ";
    case BinaryOperator::LessEqual:
      return " <= ";
    case BinaryOperator::GreaterEqual:
      return " >= ";
    case BinaryOperator::And:
      return " AND ";
    default:
      return " OR ";
  }
}

bool isNiladic(const ObjectName& name) {
  return name.parts.size() == 1 && findKeyword(name.parts[0]) == Keyword::Niladic;
}

}  // namespace

void Printer::expression(const Expression& expression) {
  std::visit([this](const auto& node) { this->node(node); }, expression.node);
}

void Printer::expressions(const std::vector<ExpressionPtr>& expressions) {
  list(expressions, [this](const ExpressionPtr& one) { expression(*one); });
}

void Printer::enclosed(const Expression& expression, bool inParentheses) {
  if (inParentheses) {
    out_ += '(';
  }
  this->expression(expression);
  if (inParentheses) {
    out_ += ')';
  }
}

/// An operand in a place that asks for the binding `minimum`.
void Printer::operand(const Expression& expression, int minimum) {
  enclosed(expression, bindingOf(expression) < minimum);
}

void Printer::node(const Literal& literal) {
  switch (literal.kind) {
    case LiteralKind::Null:
      out_ += "NULL";
      break;
    case LiteralKind::NationalText:
      out_ += 'N';
      [[fallthrough]];
    case LiteralKind::Text:
      text(literal.text);
      break;
    default:
      out_ += literal.text;
      break;
  }
}

void Printer::node(const ColumnReference& column) { objectName(column.name); }

void Printer::node(const Star& star) {
  if (!star.qualifier.parts.empty()) {
    objectName(star.qualifier);
    out_ += '.';
  }
  out_ += '*';
}

void Printer::node(const Variable& variable) { out_ += variable.name; }

void Printer::node(const Marker& /*marker*/) { out_ += '?'; }

void Printer::node(const Unary& unary) {
  if (unary.op == UnaryOperator::Not) {
    out_ += "NOT ";
    operand(*unary.operand, kNot);
    return;
  }
  out_ += unary.op == UnaryOperator::Minus ? '-' : '+';
  // Two minus signs side by side would begin a comment.
  operand(*unary.operand, kMultiplicative);
}

/// A sign takes in the factors after it, so that a signed factor stands in parentheses.
void Printer::node(const Binary& binary) {
  const int binding = bindingOf(binary.op);
  // Comparisons do not chain: both sides are values. The other operators group to the left.
  const int left = binding == kPredicate ? kAdditive : binding;
  operand(*binary.left, left);
  out_ += symbolOf(binary.op);
  operand(*binary.right, binding + 1);
}

void Printer::node(const Between& between) {
  operand(*between.operand, kAdditive);
  out_ += between.negated ? " NOT BETWEEN " : " BETWEEN ";
  operand(*between.low, kAdditive);
  out_ += " AND ";
  operand(*between.high, kAdditive);
}

void Printer::node(const Like& like) {
  operand(*like.operand, kAdditive);
  out_ += like.negated ? " NOT LIKE " : " LIKE ";
  operand(*like.pattern, kAdditive);
  if (like.escape) {
    out_ += " ESCAPE ";
    operand(*like.escape, kAdditive);
  }
}

void Printer::node(const InList& list) {
  operand(*list.operand, kAdditive);
  out_ += list.negated ? " NOT IN (" : " IN (";
  expressions(list.items);
  out_ += ')';
}

void Printer::node(const InQuery& query) {
  operand(*query.operand, kAdditive);
  out_ += query.negated ? " NOT IN (" : " IN (";
  this->query(*query.query);
  out_ += ')';
}

void Printer::node(const IsNull& isNull) {
  operand(*isNull.operand, kAdditive);
  out_ += isNull.negated ? " IS NOT NULL" : " IS NULL";
}

void Printer::node(const Exists& exists) {
  out_ += "EXISTS (";
  query(*exists.query);
  out_ += ')';
}

void Printer::node(const ScalarQuery& query) {
  out_ += '(';
  this->query(*query.query);
  out_ += ')';
}

void Printer::node(const Case& node) {
  out_ += "CASE";
  if (node.operand) {
    out_ += ' ';
    expression(*node.operand);
  }
  for (const CaseBranch& branch : node.branches) {
    out_ += " WHEN ";
    expression(*branch.when);
    out_ += " THEN ";
    expression(*branch.then);
  }
  if (node.otherwise) {
    out_ += " ELSE ";
    expression(*node.otherwise);
  }
  out_ += " END";
}

void Printer::node(const FunctionCall& call) {
  functionName(call.name);
  // CURRENT_TIMESTAMP and its kind take no parentheses.
  if (isNiladic(call.name)) {
    return;
  }
  out_ += call.distinct ? "(DISTINCT " : "(";
  expressions(call.arguments);
  out_ += ')';
}

void Printer::node(const Cast& cast) {
  if (!cast.isConvert) {
    out_ += "CAST(";
    expression(*cast.operand);
    out_ += " AS ";
    type(cast.type);
    out_ += ')';
    return;
  }
  out_ += "CONVERT(";
  type(cast.type);
  out_ += ", ";
  expression(*cast.operand);
  if (cast.style) {
    out_ += ", ";
    expression(*cast.style);
  }
  out_ += ')';
}

}  // namespace azcoll::tsql
