#include "tsql/printer_core.h"

namespace azcoll::tsql {

void Printer::write(const CreateTableStatement& table) {
  out_ += "CREATE TABLE ";
  objectName(table.name);
  out_ += ' ';
  tableElements(table);
}

/// The columns, then the constraints, in parentheses.
void Printer::tableElements(const CreateTableStatement& table) {
  out_ += '(';
  list(table.columns, [this](const ColumnDefinition& one) { column(one); });
  if (!table.columns.empty() && !table.constraints.empty()) {
    out_ += ", ";
  }
  list(table.constraints, [this](const ConstraintDefinition& one) { constraint(one); });
  out_ += ')';
}

void Printer::column(const ColumnDefinition& column) {
  name(column.name);
  out_ += ' ';
  type(column.type);
  if (!column.collation.empty()) {
    out_ += " COLLATE ";
    name(column.collation);
  }
  if (column.identity) {
    out_ += " IDENTITY(" + std::to_string(column.identitySeed) + ", " +
            std::to_string(column.identityIncrement) + ')';
  }
  if (column.nullable) {
    out_ += *column.nullable ? " NULL" : " NOT NULL";
  }
  if (column.defaultValue) {
    if (!column.defaultName.empty()) {
      out_ += " CONSTRAINT ";
      name(column.defaultName);
    }
    out_ += " DEFAULT (";
    expression(*column.defaultValue);
    out_ += ')';
  }
}

void Printer::constraint(const ConstraintDefinition& constraint) {
  if (!constraint.name.empty()) {
    out_ += "CONSTRAINT ";
    name(constraint.name);
    out_ += ' ';
  }
  switch (constraint.kind) {
    case ConstraintKind::PrimaryKey:
      out_ += "PRIMARY KEY ";
      nameList(constraint.columns);
      break;
    case ConstraintKind::Unique:
      out_ += "UNIQUE ";
      nameList(constraint.columns);
      break;
    case ConstraintKind::ForeignKey:
      out_ += "FOREIGN KEY ";
      nameList(constraint.columns);
      out_ += " REFERENCES ";
      objectName(constraint.referencedTable);
      if (!constraint.referencedColumns.empty()) {
        out_ += ' ';
        nameList(constraint.referencedColumns);
      }
      break;
    case ConstraintKind::Check:
      out_ += "CHECK (";
      expression(*constraint.check);
      out_ += ')';
      break;
  }
}

void Printer::write(const CreateIndexStatement& index) {
  out_ += index.unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ";
  name(index.name);
  out_ += " ON ";
  objectName(index.table);
  out_ += " (";
  auto descending = index.descending.begin();
  list(index.columns, [&](const std::string& column) {
    name(column);
    out_ += *descending++ ? " DESC" : "";
  });
  out_ += ')';
}

void Printer::write(const DropStatement& drop) {
  out_ += "DROP " + drop.kind + (drop.ifExists ? " IF EXISTS " : " ");
  if (drop.kind != "INDEX" || drop.name.parts.size() < 2) {
    objectName(drop.name);
    return;
  }
  ObjectName table = drop.name;
  table.parts.pop_back();
  name(drop.name.parts.back());
  out_ += " ON ";
  objectName(table);
}

void Printer::parameters(const std::vector<ParameterDefinition>& parameters) {
  list(parameters, [this](const ParameterDefinition& parameter) {
    out_ += parameter.name + ' ';
    type(parameter.type);
    if (parameter.defaultValue) {
      out_ += " = ";
      expression(*parameter.defaultValue);
    }
    out_ += parameter.output ? " OUTPUT" : "";
  });
}

void Printer::write(const CreateProcedureStatement& procedure) {
  out_ += "CREATE PROCEDURE ";
  objectName(procedure.name);
  if (!procedure.parameters.empty()) {
    out_ += ' ';
    parameters(procedure.parameters);
  }
  out_ += " AS ";
  statements(procedure.body);
}

void Printer::write(const CreateFunctionStatement& function) {
  out_ += "CREATE FUNCTION ";
  objectName(function.name);
  out_ += " (";
  parameters(function.parameters);
  out_ += ") RETURNS TABLE AS RETURN (";
  query(*function.body);
  out_ += ')';
}

}  // namespace azcoll::tsql
