#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tsql/ast.h"

namespace azcoll::tsql {

/// Writes a tree as canonical T-SQL. The definitions stand in printer.cpp (names, types, lists),
/// print_expression.cpp, print_query.cpp, print_statement.cpp and print_definition.cpp.
class Printer {
 public:
  void batch(const Batch& batch);
  void statement(const Statement& statement);
  void query(const Query& query);
  void expression(const Expression& expression);

  [[nodiscard]] std::string take() { return std::move(out_); }

 private:
  template <typename Items, typename Write>
  void list(const Items& items, Write write, std::string_view separator = ", ") {
    bool first = true;
    for (const auto& item : items) {
      if (!std::exchange(first, false)) {
        out_ += separator;
      }
      write(item);
    }
  }

  // Names and types.
  void name(std::string_view name);
  void objectName(const ObjectName& name);
  void tableName(const ObjectName& name);
  void functionName(const ObjectName& name);
  void nameList(const std::vector<std::string>& names);
  void type(const TypeName& type);
  void text(std::string_view value);

  // Expressions.
  void expressions(const std::vector<ExpressionPtr>& expressions);
  void enclosed(const Expression& expression, bool inParentheses);
  void operand(const Expression& expression, int minimum);
  void node(const Literal& literal);
  void node(const ColumnReference& column);
  void node(const Star& star);
  void node(const Variable& variable);
  void node(const Marker& marker);
  void node(const Unary& unary);
  void node(const Binary& binary);
  void node(const Between& between);
  void node(const Like& like);
  void node(const InList& list);
  void node(const InQuery& query);
  void node(const IsNull& isNull);
  void node(const Exists& exists);
  void node(const ScalarQuery& query);
  void node(const Case& node);
  void node(const FunctionCall& call);
  void node(const Cast& cast);

  // Queries.
  void body(const QuerySpecification& specification);
  void body(const SetOperation& operation);
  void setOperand(const Query& query, bool inParentheses);
  void selectItem(const SelectItem& item);
  void orderBy(const std::vector<OrderItem>& items);
  void from(const std::vector<TableSourcePtr>& sources);
  void where(const ExpressionPtr& condition);
  void source(const TableSource& source);
  void source(const NamedTable& table, const std::string& alias);
  void source(const DerivedTable& table, const std::string& alias);
  void source(const FunctionTable& table, const std::string& alias);
  void source(const Join& join, const std::string& alias);
  void joined(const TableSource& source);
  void alias(const std::string& alias);
  void hints(const std::vector<std::string>& hints);

  // Statements.
  void statements(const std::vector<StatementPtr>& statements);
  void write(const SelectStatement& select);
  void write(const InsertStatement& insert);
  void write(const UpdateStatement& update);
  void write(const DeleteStatement& remove);
  void write(const CreateTableStatement& table);
  void write(const CreateIndexStatement& index);
  void write(const DropStatement& drop);
  void write(const CreateProcedureStatement& procedure);
  void write(const CreateFunctionStatement& function);
  void write(const DeclareStatement& declare);
  void write(const SetVariableStatement& set);
  void write(const SetOptionStatement& set);
  void write(const IfStatement& statement);
  void write(const WhileStatement& statement);
  void write(const BlockStatement& block);
  void write(const ReturnStatement& statement);
  void write(const BreakStatement& statement);
  void write(const ContinueStatement& statement);
  void write(const ExecuteStatement& execute);
  void write(const TransactionStatement& transaction);
  void tableElements(const CreateTableStatement& table);
  void column(const ColumnDefinition& column);
  void constraint(const ConstraintDefinition& constraint);
  void parameters(const std::vector<ParameterDefinition>& parameters);

  std::string out_;
};

}  // namespace azcoll::tsql
