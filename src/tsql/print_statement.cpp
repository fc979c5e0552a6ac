#include "tsql/printer_core.h"

namespace azcoll::tsql {

namespace {

/// Whether an ELSE after the statement would belong to an IF inside it.
bool endsInOpenIf(const Statement& statement) {
  if (const auto* branch = std::get_if<IfStatement>(&statement.node)) {
    return !branch->otherwise || endsInOpenIf(*branch->otherwise);
  }
  if (const auto* loop = std::get_if<WhileStatement>(&statement.node)) {
    return endsInOpenIf(*loop->body);
  }
  return false;
}

}  // namespace

void Printer::batch(const Batch& batch) { statements(batch.statements); }

void Printer::statements(const std::vector<StatementPtr>& statements) {
  list(
      statements, [this](const StatementPtr& one) { statement(*one); }, "; ");
}

void Printer::statement(const Statement& statement) {
  std::visit([this](const auto& node) { write(node); }, statement.node);
}

void Printer::write(const SelectStatement& select) { query(*select.query); }

void Printer::write(const InsertStatement& insert) {
  out_ += "INSERT INTO ";
  tableName(insert.target.name);
  hints(insert.target.hints);
  if (!insert.columns.empty()) {
    out_ += ' ';
    nameList(insert.columns);
  }
  if (insert.defaultValues) {
    out_ += " DEFAULT VALUES";
    return;
  }
  if (insert.query) {
    out_ += ' ';
    query(*insert.query);
    return;
  }
  out_ += " VALUES ";
  list(insert.rows, [this](const std::vector<ExpressionPtr>& row) {
    out_ += '(';
    list(row, [this](const ExpressionPtr& value) {
      if (value) {
        expression(*value);
      } else {
        out_ += "DEFAULT";
      }
    });
    out_ += ')';
  });
}

void Printer::write(const UpdateStatement& update) {
  out_ += "UPDATE ";
  tableName(update.target.name);
  hints(update.target.hints);
  out_ += " SET ";
  list(update.assignments, [this](const Assignment& assignment) {
    objectName(assignment.column);
    out_ += " = ";
    expression(*assignment.value);
  });
  from(update.from);
  where(update.where);
}

void Printer::write(const DeleteStatement& remove) {
  out_ += "DELETE FROM ";
  tableName(remove.target.name);
  hints(remove.target.hints);
  from(remove.from);
  where(remove.where);
}

void Printer::write(const DeclareStatement& declare) {
  out_ += "DECLARE ";
  list(declare.variables, [this](const VariableDeclaration& variable) {
    out_ += variable.name + ' ';
    if (variable.table) {
      out_ += "TABLE ";
      tableElements(*variable.table);
      return;
    }
    type(variable.type);
    if (variable.initial) {
      out_ += " = ";
      expression(*variable.initial);
    }
  });
}

void Printer::write(const SetVariableStatement& set) {
  out_ += "SET " + set.name + " = ";
  expression(*set.value);
}

void Printer::write(const SetOptionStatement& set) {
  out_ += "SET " + set.option + (set.on ? " ON" : " OFF");
}

void Printer::write(const IfStatement& statement) {
  out_ += "IF ";
  expression(*statement.condition);
  // The ELSE would go to the IF inside.
  const bool enclose = statement.otherwise && endsInOpenIf(*statement.then);
  out_ += enclose ? " BEGIN " : " ";
  this->statement(*statement.then);
  out_ += enclose ? " END" : "";
  if (statement.otherwise) {
    out_ += " ELSE ";
    this->statement(*statement.otherwise);
  }
}

void Printer::write(const WhileStatement& statement) {
  out_ += "WHILE ";
  expression(*statement.condition);
  out_ += ' ';
  this->statement(*statement.body);
}

void Printer::write(const BlockStatement& block) {
  out_ += "BEGIN ";
  statements(block.statements);
  out_ += " END";
}

void Printer::write(const ReturnStatement& statement) {
  out_ += "RETURN";
  if (statement.value) {
    out_ += ' ';
    expression(*statement.value);
  }
}

void Printer::write(const BreakStatement& /*statement*/) { out_ += "BREAK"; }

void Printer::write(const ContinueStatement& /*statement*/) { out_ += "CONTINUE"; }

void Printer::write(const ExecuteStatement& execute) {
  out_ += "EXEC ";
  objectName(execute.procedure);
  bool first = true;
  for (const ExecuteArgument& argument : execute.arguments) {
    out_ += std::exchange(first, false) ? " " : ", ";
    if (!argument.name.empty()) {
      out_ += argument.name + " = ";
    }
    expression(*argument.value);
    out_ += argument.output ? " OUTPUT" : "";
  }
}

void Printer::write(const TransactionStatement& transaction) {
  switch (transaction.verb) {
    case TransactionVerb::Begin:
      out_ += "BEGIN TRANSACTION";
      break;
    case TransactionVerb::Commit:
      out_ += "COMMIT TRANSACTION";
      break;
    case TransactionVerb::Rollback:
      out_ += "ROLLBACK TRANSACTION";
      break;
  }
}

}  // namespace azcoll::tsql
