#include "statements/needed_rights.h"

#include <algorithm>
#include <cctype>
#include <variant>
#include <vector>

#include "tsql/ast.h"
#include "tsql/parser.h"

namespace azcoll::statements {
namespace {

std::string upper(std::string_view name) {
  std::string text{name};
  std::ranges::transform(text, text.begin(),
                         [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

class RightsCollector {
 public:
  explicit RightsCollector(Rights& rights) : rights_{rights} {}

  void statement(const tsql::Statement& statement) {
    std::visit([this](const auto& node) { (*this)(node); }, statement.node);
  }

  void operator()(const tsql::SelectStatement& node) { query(*node.query); }
  void operator()(const tsql::InsertStatement& node) {
    add(node.target.name, "INSERT");
    for (const auto& row : node.rows) {
      all(row);
    }
    if (node.query) {
      query(*node.query);
    }
  }
  void operator()(const tsql::UpdateStatement& node) {
    const tsql::ObjectName& target = targetOf(node.target.name, node.from);
    add(target, "UPDATE");
    sawColumn_ = false;
    for (const tsql::Assignment& assignment : node.assignments) {
      maybe(assignment.value);
    }
    finishChange(target, node.from, node.where);
  }
  void operator()(const tsql::DeleteStatement& node) {
    const tsql::ObjectName& target = targetOf(node.target.name, node.from);
    add(target, "DELETE");
    sawColumn_ = false;
    finishChange(target, node.from, node.where);
  }
  void operator()(const tsql::DeclareStatement& node) {
    for (const tsql::VariableDeclaration& variable : node.variables) {
      maybe(variable.initial);
    }
  }
  void operator()(const tsql::SetVariableStatement& node) { maybe(node.value); }
  void operator()(const tsql::IfStatement& node) {
    maybe(node.condition);
    statement(*node.then);
    if (node.otherwise) {
      statement(*node.otherwise);
    }
  }
  void operator()(const tsql::WhileStatement& node) {
    maybe(node.condition);
    statement(*node.body);
  }
  void operator()(const tsql::BlockStatement& node) {
    for (const tsql::StatementPtr& each : node.statements) {
      statement(*each);
    }
  }
  void operator()(const tsql::ReturnStatement& node) { maybe(node.value); }
  void operator()(const tsql::ExecuteStatement& node) {
    add(node.procedure, "EXECUTE");
    for (const tsql::ExecuteArgument& argument : node.arguments) {
      maybe(argument.value);
    }
  }
  void operator()(const tsql::SetOptionStatement& /*node*/) {}
  void operator()(const tsql::BreakStatement& /*node*/) {}
  void operator()(const tsql::ContinueStatement& /*node*/) {}
  void operator()(const tsql::TransactionStatement& /*node*/) {}
  // Definitions need rights of another kind, and no statement of the component holds one.
  template <typename Definition>
  void operator()(const Definition& /*node*/) {
    rights_["(definitions)"].insert("ALTER");
  }

 private:
  void add(const tsql::ObjectName& name, const char* right) {
    const std::string& object = name.parts.back();
    if (!object.starts_with('@') && !object.starts_with('#')) {
      rights_[upper(object)].insert(right);
    }
  }

  /// The table that a change concerns: its target may be an alias of the FROM clause.
  static const tsql::ObjectName& targetOf(const tsql::ObjectName& target,
                                          const std::vector<tsql::TableSourcePtr>& from) {
    for (const tsql::TableSourcePtr& source : from) {
      if (const tsql::ObjectName* const found = tableOf(*source, target.parts.back())) {
        return *found;
      }
    }
    return target;
  }
  static const tsql::ObjectName* tableOf(const tsql::TableSource& source,
                                         const std::string& alias) {
    if (const auto* const join = std::get_if<tsql::Join>(&source.node)) {
      const tsql::ObjectName* const left = tableOf(*join->left, alias);
      return left != nullptr ? left : tableOf(*join->right, alias);
    }
    const auto* const table = std::get_if<tsql::NamedTable>(&source.node);
    return table != nullptr && upper(source.alias) == upper(alias) ? &table->name : nullptr;
  }

  void finishChange(const tsql::ObjectName& target, const std::vector<tsql::TableSourcePtr>& from,
                    const tsql::ExpressionPtr& where) {
    for (const tsql::TableSourcePtr& each : from) {
      source(*each);
    }
    maybe(where);
    if (sawColumn_ || !from.empty()) {
      add(target, "SELECT");
    }
  }

  void query(const tsql::Query& query) {
    if (const auto* const both = std::get_if<tsql::SetOperation>(&query.body)) {
      this->query(*both->left);
      this->query(*both->right);
    } else {
      select(std::get<tsql::QuerySpecification>(query.body));
    }
    for (const tsql::OrderItem& item : query.orderBy) {
      maybe(item.expression);
    }
  }

  void select(const tsql::QuerySpecification& select) {
    if (select.top) {
      maybe(select.top->count);
    }
    for (const tsql::SelectItem& item : select.items) {
      maybe(item.expression);
    }
    for (const tsql::TableSourcePtr& each : select.from) {
      source(*each);
    }
    maybe(select.where);
    all(select.groupBy);
    maybe(select.having);
  }

  void source(const tsql::TableSource& source) {
    if (const auto* const table = std::get_if<tsql::NamedTable>(&source.node)) {
      add(table->name, "SELECT");
    } else if (const auto* const derived = std::get_if<tsql::DerivedTable>(&source.node)) {
      query(*derived->query);
    } else if (const auto* const function = std::get_if<tsql::FunctionTable>(&source.node)) {
      add(function->name, "SELECT");
      all(function->arguments);
    } else {
      const auto& join = std::get<tsql::Join>(source.node);
      this->source(*join.left);
      this->source(*join.right);
      maybe(join.on);
    }
  }

  void all(const std::vector<tsql::ExpressionPtr>& expressions) {
    for (const tsql::ExpressionPtr& each : expressions) {
      maybe(each);
    }
  }
  void maybe(const tsql::ExpressionPtr& expression) {
    if (expression) {
      std::visit([this](const auto& node) { this->node(node); }, expression->node);
    }
  }

  void node(const tsql::Literal& /*node*/) {}
  void node(const tsql::Variable& /*node*/) {}
  void node(const tsql::Marker& /*node*/) {}
  void node(const tsql::Star& /*node*/) { sawColumn_ = true; }
  void node(const tsql::ColumnReference& /*node*/) { sawColumn_ = true; }
  void node(const tsql::Unary& node) { maybe(node.operand); }
  void node(const tsql::Binary& node) {
    maybe(node.left);
    maybe(node.right);
  }
  void node(const tsql::Between& node) {
    maybe(node.operand);
    maybe(node.low);
    maybe(node.high);
  }
  void node(const tsql::Like& node) {
    maybe(node.operand);
    maybe(node.pattern);
    maybe(node.escape);
  }
  void node(const tsql::InList& node) {
    maybe(node.operand);
    all(node.items);
  }
  void node(const tsql::InQuery& node) {
    maybe(node.operand);
    query(*node.query);
  }
  void node(const tsql::IsNull& node) { maybe(node.operand); }
  void node(const tsql::Exists& node) { query(*node.query); }
  void node(const tsql::ScalarQuery& node) { query(*node.query); }
  void node(const tsql::Case& node) {
    maybe(node.operand);
    for (const tsql::CaseBranch& branch : node.branches) {
      maybe(branch.when);
      maybe(branch.then);
    }
    maybe(node.otherwise);
  }
  void node(const tsql::FunctionCall& node) {
    // A function of two parts is one of the database; all others are the server's own.
    if (node.name.parts.size() > 1) {
      add(node.name, "EXECUTE");
    }
    all(node.arguments);
  }
  void node(const tsql::Cast& node) { maybe(node.operand); }

  Rights& rights_;
  bool sawColumn_ = false;  ///< a column was met since the start of the change
};

}  // namespace

void addNeededRights(Rights& rights, std::string_view batch) {
  const tsql::Batch parsed = tsql::parse(batch);
  RightsCollector collector{rights};
  for (const tsql::StatementPtr& statement : parsed.statements) {
    collector.statement(*statement);
  }
}

void addProcedureRight(Rights& rights, std::string_view procedure) {
  rights[upper(procedure.substr(procedure.rfind('.') + 1))].insert("EXECUTE");
}

}  // namespace azcoll::statements
