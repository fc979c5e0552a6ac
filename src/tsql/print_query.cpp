#include "tsql/printer_core.h"

namespace azcoll::tsql {

namespace {

/// Whether an operand of `op` needs parentheses; operands on the right group less.
bool needsParentheses(const Query& operand, SetOperator op, bool onTheRight) {
  if (!operand.orderBy.empty()) {
    return true;
  }
  const auto* const inner = std::get_if<SetOperation>(&operand.body);
  if (inner == nullptr) {
    return false;
  }
  const bool bindsMore = inner->op == SetOperator::Intersect && op != SetOperator::Intersect;
  const bool bindsLess = inner->op != SetOperator::Intersect && op == SetOperator::Intersect;
  return bindsLess || (onTheRight && !bindsMore);
}

std::string_view wordsOf(SetOperator op) {
  switch (op) {
    case SetOperator::Union:
      return " UNION ";
    case SetOperator::UnionAll:
      return " UNION ALL ";
    case SetOperator::Except:
      return " EXCEPT ";
    default:
      return " INTERSECT ";
  }
}

std::string_view wordsOf(JoinKind kind) {
  switch (kind) {
    case JoinKind::Inner:
      return " INNER JOIN ";
    case JoinKind::Left:
      return " LEFT JOIN ";
    case JoinKind::Right:
      return " RIGHT JOIN ";
    case JoinKind::Full:
      return " FULL JOIN ";
    case JoinKind::Cross:
      return " CROSS JOIN ";
    case JoinKind::CrossApply:
      return " CROSS APPLY ";
    default:
      return " OUTER APPLY ";
  }
}

}  // namespace

void Printer::query(const Query& query) {
  std::visit([this](const auto& body) { this->body(body); }, query.body);
  orderBy(query.orderBy);
}

void Printer::body(const QuerySpecification& specification) {
  out_ += specification.distinct ? "SELECT DISTINCT " : "SELECT ";
  if (specification.top) {
    out_ += "TOP (";
    expression(*specification.top->count);
    out_ += ") ";
  }
  list(specification.items, [this](const SelectItem& item) { selectItem(item); });
  from(specification.from);
  where(specification.where);
  if (!specification.groupBy.empty()) {
    out_ += " GROUP BY ";
    expressions(specification.groupBy);
  }
  if (specification.having) {
    out_ += " HAVING ";
    expression(*specification.having);
  }
}

void Printer::body(const SetOperation& operation) {
  setOperand(*operation.left, needsParentheses(*operation.left, operation.op, false));
  out_ += wordsOf(operation.op);
  setOperand(*operation.right, needsParentheses(*operation.right, operation.op, true));
}

void Printer::setOperand(const Query& query, bool inParentheses) {
  if (inParentheses) {
    out_ += '(';
  }
  this->query(query);
  if (inParentheses) {
    out_ += ')';
  }
}

void Printer::selectItem(const SelectItem& item) {
  if (!item.assignTo.empty()) {
    out_ += item.assignTo + " = ";
  }
  expression(*item.expression);
  if (item.hasAlias) {
    out_ += " AS ";
    name(item.alias);
  }
}

void Printer::orderBy(const std::vector<OrderItem>& items) {
  if (items.empty()) {
    return;
  }
  out_ += " ORDER BY ";
  list(items, [this](const OrderItem& item) {
    expression(*item.expression);
    if (item.descending) {
      out_ += " DESC";
    }
  });
}

void Printer::from(const std::vector<TableSourcePtr>& sources) {
  if (sources.empty()) {
    return;
  }
  out_ += " FROM ";
  list(sources, [this](const TableSourcePtr& one) { source(*one); });
}

void Printer::where(const ExpressionPtr& condition) {
  if (condition) {
    out_ += " WHERE ";
    expression(*condition);
  }
}

void Printer::source(const TableSource& source) {
  std::visit([&](const auto& node) { this->source(node, source.alias); }, source.node);
}

void Printer::source(const NamedTable& table, const std::string& alias) {
  tableName(table.name);
  this->alias(alias);
  hints(table.hints);
}

void Printer::source(const DerivedTable& table, const std::string& alias) {
  out_ += '(';
  query(*table.query);
  out_ += ')';
  this->alias(alias);
}

void Printer::source(const FunctionTable& table, const std::string& alias) {
  objectName(table.name);
  out_ += '(';
  expressions(table.arguments);
  out_ += ')';
  this->alias(alias);
}

void Printer::source(const Join& join, const std::string& /*alias*/) {
  source(*join.left);
  out_ += wordsOf(join.kind);
  joined(*join.right);
  if (join.on) {
    out_ += " ON ";
    expression(*join.on);
  }
}

/// What stands on the right of a join: a join there is put in parentheses.
void Printer::joined(const TableSource& source) {
  const bool inParentheses = std::holds_alternative<Join>(source.node);
  if (inParentheses) {
    out_ += '(';
  }
  this->source(source);
  if (inParentheses) {
    out_ += ')';
  }
}

void Printer::alias(const std::string& alias) {
  if (!alias.empty()) {
    out_ += " AS ";
    name(alias);
  }
}

void Printer::hints(const std::vector<std::string>& hints) {
  if (hints.empty()) {
    return;
  }
  out_ += " WITH (";
  list(hints, [this](const std::string& hint) { out_ += hint; });
  out_ += ')';
}

}  // namespace azcoll::tsql
