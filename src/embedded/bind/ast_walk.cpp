#include "embedded/bind/ast_walk.h"

#include <algorithm>
#include <array>

#include "text/letter_case.h"

namespace azcoll::embedded {

namespace {

template <typename... Visitors>
struct Overloaded : Visitors... {
  using Visitors::operator()...;
};
template <typename... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

bool mentions(const tsql::ExpressionPtr& expression, std::string_view name) {
  return expression != nullptr && mentionsVariable(*expression, name);
}

bool queryMentions(const tsql::Query& query, std::string_view name);

bool sourceMentions(const tsql::TableSource& source, std::string_view name) {
  return std::visit(
      Overloaded{
          [](const tsql::NamedTable&) { return false; },
          [&](const tsql::DerivedTable& derived) { return queryMentions(*derived.query, name); },
          [&](const tsql::FunctionTable& function) {
            return std::any_of(
                function.arguments.begin(), function.arguments.end(),
                [&](const tsql::ExpressionPtr& argument) { return mentions(argument, name); });
          },
          [&](const tsql::Join& join) {
            return sourceMentions(*join.left, name) || sourceMentions(*join.right, name) ||
                   mentions(join.on, name);
          },
      },
      source.node);
}

bool specificationMentions(const tsql::QuerySpecification& specification, std::string_view name) {
  const auto inItem = [&](const tsql::SelectItem& item) { return mentions(item.expression, name); };
  const auto inSource = [&](const tsql::TableSourcePtr& source) {
    return sourceMentions(*source, name);
  };
  const auto inKey = [&](const tsql::ExpressionPtr& key) { return mentions(key, name); };
  return (specification.top && mentions(specification.top->count, name)) ||
         std::any_of(specification.items.begin(), specification.items.end(), inItem) ||
         std::any_of(specification.from.begin(), specification.from.end(), inSource) ||
         mentions(specification.where, name) ||
         std::any_of(specification.groupBy.begin(), specification.groupBy.end(), inKey) ||
         mentions(specification.having, name);
}

bool queryMentions(const tsql::Query& query, std::string_view name) {
  const bool inBody = std::visit(Overloaded{
                                     [&](const tsql::QuerySpecification& specification) {
                                       return specificationMentions(specification, name);
                                     },
                                     [&](const tsql::SetOperation& operation) {
                                       return queryMentions(*operation.left, name) ||
                                              queryMentions(*operation.right, name);
                                     },
                                 },
                                 query.body);
  return inBody ||
         std::any_of(query.orderBy.begin(), query.orderBy.end(),
                     [&](const tsql::OrderItem& item) { return mentions(item.expression, name); });
}

/// Whether the query that the expression itself is, or looks into, mentions the variable.
bool ownQueryMentions(const tsql::Expression& expression, std::string_view name) {
  if (const auto* const in = std::get_if<tsql::InQuery>(&expression.node)) {
    return queryMentions(*in->query, name);
  }
  if (const auto* const exists = std::get_if<tsql::Exists>(&expression.node)) {
    return queryMentions(*exists->query, name);
  }
  const auto* const scalar = std::get_if<tsql::ScalarQuery>(&expression.node);
  return scalar != nullptr && queryMentions(*scalar->query, name);
}

}  // namespace

void forEachOperand(const tsql::Expression& expression,
                    const std::function<void(const tsql::Expression&)>& visit) {
  const auto each = [&visit](const tsql::ExpressionPtr& operand) {
    if (operand) {
      visit(*operand);
    }
  };
  std::visit(
      Overloaded{
          [&](const tsql::Unary& node) { each(node.operand); },
          [&](const tsql::Binary& node) { each(node.left), each(node.right); },
          [&](const tsql::Between& node) { each(node.operand), each(node.low), each(node.high); },
          [&](const tsql::Like& node) {
            each(node.operand), each(node.pattern), each(node.escape);
          },
          [&](const tsql::InList& node) {
            each(node.operand);
            for (const auto& item : node.items) {
              each(item);
            }
          },
          [&](const tsql::InQuery& node) { each(node.operand); },
          [&](const tsql::IsNull& node) { each(node.operand); },
          [&](const tsql::Case& node) {
            each(node.operand);
            for (const auto& branch : node.branches) {
              each(branch.when);
              each(branch.then);
            }
            each(node.otherwise);
          },
          [&](const tsql::FunctionCall& node) {
            for (const auto& argument : node.arguments) {
              each(argument);
            }
          },
          [&](const tsql::Cast& node) { each(node.operand); },
          [](const auto&) {},
      },
      expression.node);
}

bool isAggregate(const tsql::FunctionCall& call) {
  constexpr std::array<std::string_view, 6> kNames{"COUNT", "COUNT_BIG", "SUM",
                                                   "MIN",   "MAX",       "AVG"};
  if (call.name.parts.size() != 1) {
    return false;
  }
  for (const std::string_view name : kNames) {
    if (ascii::equalsIgnoringCase(call.name.parts.front(), name)) {
      return true;
    }
  }
  return false;
}

bool containsAggregate(const tsql::Expression& expression) {
  const auto* const call = std::get_if<tsql::FunctionCall>(&expression.node);
  if (call != nullptr && isAggregate(*call)) {
    return true;
  }
  bool found = false;
  forEachOperand(expression, [&found](const tsql::Expression& operand) {
    found = found || containsAggregate(operand);
  });
  return found;
}

/// A query counts, too: it may refer to the row.
bool dependsOnRow(const tsql::Expression& expression) {
  const auto& node = expression.node;
  bool found = std::holds_alternative<tsql::ColumnReference>(node) ||
               std::holds_alternative<tsql::ScalarQuery>(node) ||
               std::holds_alternative<tsql::InQuery>(node) ||
               std::holds_alternative<tsql::Exists>(node);
  forEachOperand(expression, [&found](const tsql::Expression& operand) {
    found = found || dependsOnRow(operand);
  });
  return found;
}

bool mentionsVariable(const tsql::Expression& expression, std::string_view name) {
  if (const auto* const variable = std::get_if<tsql::Variable>(&expression.node)) {
    return foldCase(variable->name) == name;
  }
  bool found = ownQueryMentions(expression, name);
  forEachOperand(expression, [&](const tsql::Expression& operand) {
    found = found || mentionsVariable(operand, name);
  });
  return found;
}

bool queryInsideMentions(const tsql::Expression& expression, std::string_view name) {
  bool found = ownQueryMentions(expression, name);
  forEachOperand(expression, [&](const tsql::Expression& operand) {
    found = found || queryInsideMentions(operand, name);
  });
  return found;
}

}  // namespace azcoll::embedded
