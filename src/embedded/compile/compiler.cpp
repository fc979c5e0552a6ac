#include "embedded/compile/compiler.h"

#include <array>
#include <utility>

#include "embedded/bind/translation.h"
#include "embedded/compile/table_definition.h"
#include "embedded/plan/slots.h"
#include "embedded/sqlite/sql_text.h"
#include "embedded/values/sql_error.h"
#include "embedded/values/types.h"
#include "text/letter_case.h"
#include "tsql/parser.h"

namespace azcoll::embedded {

/// What is being compiled.
struct Compiler::Work {
  Plan& plan;
  std::string_view text;
  bool putOff = false;  ///< the batch defines objects: later statements wait until they exist
  bool inProcedure = false;
};

namespace {

bool defines(const tsql::Statement& statement) {
  const auto& node = statement.node;
  return std::holds_alternative<tsql::CreateTableStatement>(node) ||
         std::holds_alternative<tsql::CreateIndexStatement>(node) ||
         std::holds_alternative<tsql::DropStatement>(node) ||
         std::holds_alternative<tsql::CreateProcedureStatement>(node) ||
         std::holds_alternative<tsql::CreateFunctionStatement>(node);
}

/// Whether an object is made or dropped anywhere in the statement.
bool containsDefinition(const tsql::Statement& statement) {
  if (const auto* const block = std::get_if<tsql::BlockStatement>(&statement.node)) {
    for (const tsql::StatementPtr& each : block->statements) {
      if (containsDefinition(*each)) {
        return true;
      }
    }
    return false;
  }
  if (const auto* const branch = std::get_if<tsql::IfStatement>(&statement.node)) {
    return containsDefinition(*branch->then) ||
           (branch->otherwise && containsDefinition(*branch->otherwise));
  }
  if (const auto* const loop = std::get_if<tsql::WhileStatement>(&statement.node)) {
    return containsDefinition(*loop->body);
  }
  return defines(statement);
}

bool assigns(const tsql::SelectStatement& statement) {
  const auto* const specification = std::get_if<tsql::QuerySpecification>(&statement.query->body);
  if (specification == nullptr) {
    return false;
  }
  for (const tsql::SelectItem& item : specification->items) {
    if (!item.assignTo.empty()) {
      return true;
    }
  }
  return false;
}

void addVariable(VariableTable& variables, const std::string& name, const Type& type) {
  const auto found = variables.scalarByName.find(foldCase(name));
  const bool taken = found != variables.scalarByName.end();
  if (taken || variables.tables.contains(foldCase(name))) {
    throw SqlError(134, "The variable name '" +
                            (taken ? variables.scalars[found->second].name : name) +
                            "' has already been declared. Variable names must be unique within a "
                            "query batch or stored procedure.");
  }
  variables.scalarByName.emplace(foldCase(name), variables.scalars.size());
  variables.scalars.push_back({name, type});
}

Node asNode(BlockNode block) {
  Node node;
  node.node = std::move(block);
  return node;
}

}  // namespace

std::shared_ptr<Plan> Compiler::compileBatch(std::string text, bool constantsInside) const {
  auto plan = std::make_shared<Plan>();
  plan->text = std::move(text);
  plan->tree = std::make_shared<const tsql::Batch>(tsql::parse(plan->text));
  plan->constantsInside = constantsInside;
  // Constants that no node of the tree holds are part of the plan; their texts come from the shape.
  Work work{*plan, plan->text};
  for (const tsql::StatementPtr& statement : plan->tree->statements) {
    work.putOff = work.putOff || containsDefinition(*statement);
  }
  // A definition throws all plans away, the one that runs it included.
  plan->cacheable = !work.putOff && !constantsInside;
  // Before anything but one SELECT the engine looks whether the schema is still the one that was
  // compiled, and never runs it twice.
  plan->changesData =
      plan->tree->statements.size() != 1 ||
      !std::holds_alternative<tsql::SelectStatement>(plan->tree->statements.front()->node);
  compileAll(work, plan->tree->statements, plan->body);
  return plan;
}

std::shared_ptr<Plan> Compiler::compileProcedure(const Routine& routine) const {
  auto plan = std::make_shared<Plan>();
  plan->text = routine.source;
  plan->tree = routine.tree;
  // A body has one text, so its constants need no slots.
  plan->constantsInside = true;
  Work work{*plan, plan->text};
  work.inProcedure = true;
  for (const RoutineParameter& parameter : routine.parameters) {
    addVariable(plan->variables, parameter.name, parameter.type);
  }
  for (const tsql::StatementPtr& statement : routine.procedure().body) {
    work.putOff = work.putOff || containsDefinition(*statement);
  }
  compileAll(work, routine.procedure().body, plan->body);
  return plan;
}

void Compiler::checkRoutine(const Routine& routine) const {
  if (!routine.isFunction) {
    static_cast<void>(compileProcedure(routine));
    return;
  }
  // No plan is kept: what would guard one is dropped.
  std::vector<Guard> guards;
  Translation translation;
  translation.guards = &guards;
  const BindContext context{&catalogue_, nullptr, routine.source, true, settings_.rewriteIn};
  Binder(context, translation).checkFunction(routine);
}

Node Compiler::compileDeferred(Plan& plan, const tsql::Statement& statement) const {
  Work work{plan, plan.text};
  return compileNode(work, statement);
}

template <typename Bind>
PreparedStatement Compiler::prepare(Work& work, Bind bind) const {
  Translation translation;
  translation.guards = &work.plan.guards;
  const BindContext context{&catalogue_, &work.plan.variables, work.text, work.plan.constantsInside,
                            settings_.rewriteIn};
  Binder binder(context, translation);
  PreparedStatement prepared;
  prepared.sql = bind(binder);
  prepared.statement = database_.prepare(prepared.sql);
  // Complete only now: binding the text has filled them, in the order of its parameters.
  prepared.slots = std::move(translation.slots);
  prepared.failure = std::move(translation.failure);
  return prepared;
}

void Compiler::compileAll(Work& work, const std::vector<tsql::StatementPtr>& statements,
                          BlockNode& block) const {
  for (const tsql::StatementPtr& statement : statements) {
    if (const auto* const declaration = std::get_if<tsql::DeclareStatement>(&statement->node)) {
      declare(work, *declaration, block);
    } else {
      block.statements.push_back(compile(work, *statement));
    }
  }
}

Node Compiler::compile(Work& work, const tsql::Statement& statement) const {
  const bool runs = std::holds_alternative<tsql::SelectStatement>(statement.node) ||
                    std::holds_alternative<tsql::InsertStatement>(statement.node) ||
                    std::holds_alternative<tsql::UpdateStatement>(statement.node) ||
                    std::holds_alternative<tsql::DeleteStatement>(statement.node) ||
                    std::holds_alternative<tsql::ExecuteStatement>(statement.node);
  Node deferred;
  deferred.node = DeferredNode{&statement};
  if (defines(statement) || (runs && work.putOff)) {
    return deferred;
  }
  try {
    return compileNode(work, statement);
  } catch (const SqlError& error) {
    constexpr int kInvalidObject = 208;
    constexpr int kNoProcedure = 2812;
    if (!runs || (error.number() != kInvalidObject && error.number() != kNoProcedure)) {
      throw;
    }
    // An object that is not there is missed when the statement is reached, and not before.
    work.plan.cacheable = false;
    return deferred;
  }
}

template <typename Bind>
Node Compiler::compileChange(Work& work, ChangeKind kind, Bind bind) const {
  ChangeNode change;
  change.kind = kind;
  change.prepared = prepare(work, [&](Binder& binder) {
    BoundChange bound = bind(binder);
    change.table = std::move(bound.table);
    change.computed = std::move(bound.computed);
    return std::move(bound.sql);
  });
  Node node;
  node.node = std::move(change);
  return node;
}

Node Compiler::compileNode(Work& work, const tsql::Statement& statement) const {
  Node node;
  if (const auto* const select = std::get_if<tsql::SelectStatement>(&statement.node)) {
    return compileSelect(work, *select);
  }
  if (const auto* const insert = std::get_if<tsql::InsertStatement>(&statement.node)) {
    return compileChange(work, ChangeKind::Insert,
                         [&](Binder& binder) { return binder.bindInsert(*insert); });
  }
  if (const auto* const update = std::get_if<tsql::UpdateStatement>(&statement.node)) {
    return compileChange(work, ChangeKind::Update,
                         [&](Binder& binder) { return binder.bindUpdate(*update); });
  }
  if (const auto* const removal = std::get_if<tsql::DeleteStatement>(&statement.node)) {
    return compileChange(work, ChangeKind::Delete,
                         [&](Binder& binder) { return binder.bindDelete(*removal); });
  }
  if (const auto* const set = std::get_if<tsql::SetVariableStatement>(&statement.node)) {
    return assign(work, set->name, *set->value);
  } else if (const auto* const branch = std::get_if<tsql::IfStatement>(&statement.node)) {
    IfNode result;
    result.condition =
        prepare(work, [&](Binder& binder) { return binder.bindTest(*branch->condition); });
    // Each branch may be deferred by itself: one that is not taken misses no object.
    result.then = std::make_unique<Node>(compile(work, *branch->then));
    if (branch->otherwise) {
      result.otherwise = std::make_unique<Node>(compile(work, *branch->otherwise));
    }
    node.node = std::move(result);
  } else if (const auto* const loop = std::get_if<tsql::WhileStatement>(&statement.node)) {
    WhileNode result;
    result.condition =
        prepare(work, [&](Binder& binder) { return binder.bindTest(*loop->condition); });
    result.body = std::make_unique<Node>(compile(work, *loop->body));
    node.node = std::move(result);
  } else if (const auto* const block = std::get_if<tsql::BlockStatement>(&statement.node)) {
    BlockNode result;
    compileAll(work, block->statements, result);
    return asNode(std::move(result));
  } else if (const auto* const declaration = std::get_if<tsql::DeclareStatement>(&statement.node)) {
    BlockNode result;
    declare(work, *declaration, result);
    return asNode(std::move(result));
  } else {
    return compileOption(work, statement);
  }
  return node;
}

Node Compiler::compileOption(Work& work, const tsql::Statement& statement) const {
  Node node;
  if (const auto* const call = std::get_if<tsql::ExecuteStatement>(&statement.node)) {
    return compileExecute(work, *call);
  }
  if (const auto* const transaction = std::get_if<tsql::TransactionStatement>(&statement.node)) {
    node.node = TransactionNode{transaction->verb};
  } else if (std::holds_alternative<tsql::BreakStatement>(statement.node)) {
    node.node = BreakNode{};
  } else if (std::holds_alternative<tsql::ContinueStatement>(statement.node)) {
    node.node = ContinueNode{};
  } else if (const auto* const back = std::get_if<tsql::ReturnStatement>(&statement.node)) {
    if (back->value && !work.inProcedure) {
      throw SqlError(178, "A RETURN statement with a return value cannot be used in this context.");
    }
    // Nobody can take the value (the parser refuses EXECUTE with one), so a constant has no effect,
    // but an expression could fail.
    if (back->value && !std::holds_alternative<tsql::Literal>(back->value->node)) {
      refuse(work.text, back->value->position, "RETURN with anything but a constant");
    }
    node.node = ReturnNode{};
  } else if (const auto* const option = std::get_if<tsql::SetOptionStatement>(&statement.node)) {
    // The options that only confirm how the engine works anyway.
    constexpr std::array<std::pair<std::string_view, bool>, 8> kAsItIs{
        {{"ANSI_NULLS", true},
         {"QUOTED_IDENTIFIER", true},
         {"ANSI_PADDING", true},
         {"ANSI_WARNINGS", true},
         {"CONCAT_NULL_YIELDS_NULL", true},
         {"ARITHABORT", true},
         {"NUMERIC_ROUNDABORT", false},
         {"XACT_ABORT", false}}};
    if (option->option == "NOCOUNT") {
      node.node = NoCountNode{option->on};
      return node;
    }
    for (const auto& [name, on] : kAsItIs) {
      if (option->option == name && option->on == on) {
        return node;
      }
    }
    refuse(work.text, statement.position, "SET " + option->option + (option->on ? " ON" : " OFF"));
  } else {
    refuse(work.text, statement.position, "this statement at this place");
  }
  return node;
}

Node Compiler::compileSelect(Work& work, const tsql::SelectStatement& statement) const {
  Node node;
  if (assigns(statement)) {
    AssignNode assignment;
    assignment.prepared = prepare(work, [&](Binder& binder) {
      return binder.bindAssignments(*statement.query, assignment.targets);
    });
    node.node = std::move(assignment);
    return node;
  }
  SelectNode select;
  select.prepared = prepare(
      work, [&](Binder& binder) { return binder.bindSelect(*statement.query, select.columns); });
  node.node = std::move(select);
  return node;
}

// ---------------------------------------------------------------- variables and calls

void Compiler::declare(Work& work, const tsql::DeclareStatement& statement,
                       BlockNode& block) const {
  // Messages about a type count the variables of the statement.
  std::size_t ordinal = 0;
  for (const tsql::VariableDeclaration& declaration : statement.variables) {
    if (declaration.table) {
      declareTable(work, declaration);
      continue;
    }
    addVariable(work.plan.variables, declaration.name,
                declaredType(declaration.type, work.text, ++ordinal));
    // The declaration itself does nothing at run time; its first value is a statement in its place.
    if (declaration.initial) {
      block.statements.push_back(assign(work, declaration.name, *declaration.initial));
    }
  }
}

/// A table variable is a temporary table that is made once with the plan and emptied whenever the
/// plan runs: making it anew each time would cost more than all that is done with it.
void Compiler::declareTable(Work& work, const tsql::VariableDeclaration& declaration) const {
  VariableTable& variables = work.plan.variables;
  const std::string folded = foldCase(declaration.name);
  if (variables.scalarByName.contains(folded) || variables.tables.contains(folded)) {
    throw SqlError(134, "The variable name '" + declaration.name +
                            "' has already been declared. Variable names must be unique within a "
                            "query batch or stored procedure.");
  }
  // Shares the ownership of the whole tree: the table keeps pointers to its defaults.
  const std::shared_ptr<const tsql::CreateTableStatement> definition(work.plan.tree,
                                                                     declaration.table.get());
  const std::shared_ptr<Table> table = describeTable(definition, work.text);
  // Counted over the whole connection: plans stay side by side in the cache.
  table->storeName = "variable_" + std::to_string(++tempTables_);
  table->sqlName = "temp." + quoteName(table->storeName);
  for (const std::string& sql : tableDefinition(*table, catalogue_, work.text)) {
    database_.execute(sql);
  }
  work.plan.makesTempTables = true;
  PreparedStatement clearing;
  clearing.sql = "DELETE FROM " + table->sqlName;
  clearing.statement = database_.prepare(clearing.sql);
  work.plan.clearings.push_back(std::move(clearing));
  variables.tables.emplace(folded, table);
}

Node Compiler::assign(Work& work, const std::string& name, const tsql::Expression& value) const {
  AssignNode assignment;
  assignment.isSet = true;
  const auto& variables = work.plan.variables;
  const auto found = variables.scalarByName.find(foldCase(name));
  if (found == variables.scalarByName.end()) {
    throw SqlError(137, "Must declare the scalar variable \"" + name + "\".");
  }
  const Type& type = variables.scalars[found->second].type;
  assignment.targets.push_back({found->second, type});
  assignment.prepared =
      prepare(work, [&](Binder& binder) { return binder.bindValue(value, type); });
  Node node;
  node.node = std::move(assignment);
  return node;
}

Node Compiler::compileExecute(Work& work, const tsql::ExecuteStatement& statement) const {
  ExecuteNode call;
  call.routine = catalogue_.findRoutine(objectName(statement.procedure, work.text));
  // compile() defers the call for this number: the procedure may yet be made.
  if (!call.routine || call.routine->isFunction) {
    throw SqlError(2812,
                   "Could not find stored procedure '" + statement.procedure.parts.back() + "'.");
  }
  const auto& parameters = call.routine->parameters;
  std::size_t position = 0;
  for (const tsql::ExecuteArgument& argument : statement.arguments) {
    ExecuteNode::Argument bound;
    bound.value = argument.value.get();
    bound.output = argument.output;
    bound.parameter = position++;
    if (!argument.name.empty()) {
      bound.parameter = 0;
      while (bound.parameter < parameters.size() &&
             foldCase(parameters[bound.parameter].name) != foldCase(argument.name)) {
        ++bound.parameter;
      }
      if (bound.parameter == parameters.size()) {
        throw SqlError(
            8145, argument.name + " is not a parameter for procedure " + call.routine->name + ".");
      }
    }
    if (bound.parameter >= parameters.size()) {
      throw SqlError(8144, "Procedure or function " + call.routine->name +
                               " has too many arguments specified.");
    }
    if (argument.output && !parameters[bound.parameter].output) {
      throw SqlError(8162, "The formal parameter \"" + parameters[bound.parameter].name +
                               "\" was not declared as an OUTPUT parameter, but the actual "
                               "parameter passed in requested output.");
    }
    if (bound.value != nullptr) {
      const auto* const variable = std::get_if<tsql::Variable>(&bound.value->node);
      if (variable != nullptr &&
          !work.plan.variables.scalarByName.contains(foldCase(variable->name))) {
        throw SqlError(137, "Must declare the scalar variable \"" + variable->name + "\".");
      }
    }
    call.arguments.push_back(bound);
  }
  // The arguments' constants are read from the tree: another text needs a plan of its own.
  work.plan.cacheable = false;
  Node node;
  node.node = std::move(call);
  return node;
}

}  // namespace azcoll::embedded
