#include "embedded/bind/ast_walk.h"

#include <array>

#include "embedded/values/collation.h"
#include "tsql/characters.h"
#include "tsql/printer.h"

namespace azcoll::embedded {

namespace {

template <typename... Visitors>
struct Overloaded : Visitors... {
  using Visitors::operator()...;
};
template <typename... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

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
    if (tsql::equalsIgnoringCase(call.name.parts.front(), name)) {
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
  const std::string text = foldText(tsql::print(expression));
  for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + 1)) {
    const std::size_t end = at + name.size();
    if (end == text.size() || !tsql::hasClass(text[end], tsql::kWordPart)) {
      return true;
    }
  }
  return false;
}

}  // namespace azcoll::embedded
