#include "support/scripted_connection.h"

#include <stdexcept>

#include "cursor/client_cursor.h"

namespace azcoll::test {
namespace {

/// A recordset of the client-side cursor that reports how it is configured, opened, searched,
/// detached and sent.
class ScriptedRecordset final : public Recordset {
 public:
  ScriptedRecordset(std::shared_ptr<ScriptedConnection> owner, std::shared_ptr<Recordset> inner,
                    std::string source)
      : owner_{std::move(owner)}, inner_{std::move(inner)}, source_{std::move(source)} {}

  void setActiveConnection(std::shared_ptr<Connection> connection) override;
  void setSource(std::string text) override {
    source_ = text;
    inner_->setSource(std::move(text));
  }
  void setCursorLocation(CursorLocation location) override;
  void setCursorType(CursorType type) override;
  void setLockType(LockType type) override;
  void open(CursorType type, LockType lock, CommandOption options) override;
  void open(std::string source, std::shared_ptr<Connection> connection, CursorType type,
            LockType lock, CommandOption options) override;
  void close() override { inner_->close(); }
  [[nodiscard]] bool isOpen() const override { return inner_->isOpen(); }
  [[nodiscard]] std::int64_t recordCount() const override { return inner_->recordCount(); }
  [[nodiscard]] bool atStart() const override { return inner_->atStart(); }
  [[nodiscard]] bool atEnd() const override { return inner_->atEnd(); }
  void moveFirst() override { inner_->moveFirst(); }
  void moveNext() override { inner_->moveNext(); }
  [[nodiscard]] Fields& fields() override { return inner_->fields(); }
  void setFilter(std::string_view criteria) override { inner_->setFilter(criteria); }
  void find(std::string_view criteria, std::int64_t skip, SearchDirection direction,
            Bookmark start) override;
  void addNew() override { inner_->addNew(); }
  void update() override { inner_->update(); }
  void cancelUpdate() override { inner_->cancelUpdate(); }
  void updateBatch(Affect affect) override;
  [[nodiscard]] std::shared_ptr<Recordset> nextRecordset() override {
    return inner_->nextRecordset();
  }

 private:
  void report(std::string name, std::string sql, std::vector<int> options);

  std::shared_ptr<ScriptedConnection> owner_;
  std::shared_ptr<Recordset> inner_;
  std::string source_;
};

/// A parameter of a scripted procedure.
class ScriptedParameter final : public Parameter {
 public:
  ScriptedParameter(std::string name, ParameterDirection direction)
      : name_{std::move(name)}, direction_{direction} {}
  [[nodiscard]] std::string name() const override { return name_; }
  [[nodiscard]] ParameterDirection direction() const override { return direction_; }
  [[nodiscard]] Variant value() const override { return value_; }
  void setValue(const Variant& value) override { value_ = value; }

 private:
  std::string name_;
  ParameterDirection direction_;
  Variant value_;
};

/// The parameters that the procedure `PC_GetDitteCollegate` declares.
class ScriptedParameters final : public Parameters {
 public:
  ScriptedParameters() {
    list_.push_back(
        std::make_unique<ScriptedParameter>("@RETURN_VALUE", ParameterDirection::ReturnValue));
    for (const char* const name :
         {"@CodiceDitta", "@DataInizioElaborazione", "@GestioneDuplicazioneCliFor",
          "@EscludiDittaPrincipale", "@EscludiDittaCorrente", "@TipoCF", "@CodIntermedio",
          "@CodSede"}) {
      list_.push_back(std::make_unique<ScriptedParameter>(name, ParameterDirection::Input));
    }
    list_.push_back(
        std::make_unique<ScriptedParameter>("@DitteCollegate", ParameterDirection::Output));
  }
  [[nodiscard]] std::size_t count() override { return list_.size(); }
  [[nodiscard]] Parameter& item(std::string_view name) override {
    for (const auto& parameter : list_) {
      if (parameter->name() == name) {
        return *parameter;
      }
    }
    throw Error{"Parametro non dichiarato: " + std::string{name}};
  }
  [[nodiscard]] Parameter& item(std::size_t index) override { return *list_.at(index); }

 private:
  std::vector<std::unique_ptr<ScriptedParameter>> list_;
};

/// A command that reports its settings in one `CommandExecute` and its release in `CommandRelease`.
class ScriptedCommand final : public Command {
 public:
  explicit ScriptedCommand(std::shared_ptr<ScriptedConnection> owner) : owner_{std::move(owner)} {}

  void setActiveConnection(std::shared_ptr<Connection> connection) override;
  void setCommandText(std::string text) override { text_ = std::move(text); }
  void setCommandType(CommandOption type) override { type_ = type; }
  void setCommandTimeout(int seconds) override { timeout_ = seconds; }
  void setPrepared(bool prepared) override { prepared_ = prepared; }
  [[nodiscard]] Parameters& parameters() override;
  std::shared_ptr<Recordset> execute(std::int64_t& recordsAffected, CommandOption options) override;

 private:
  std::shared_ptr<ScriptedConnection> owner_;
  std::shared_ptr<Connection> connection_;
  std::string text_;
  CommandOption type_ = CommandOption::Unspecified;
  int timeout_ = -1;
  bool prepared_ = false;
  ScriptedParameters parameters_;
};

void ScriptedRecordset::report(std::string name, std::string sql, std::vector<int> options) {
  owner_->report({.name = std::move(name), .sql = std::move(sql), .options = std::move(options)});
}

void ScriptedRecordset::setActiveConnection(std::shared_ptr<Connection> connection) {
  report(connection ? "RecordsetConnection" : "Detach", source_, {});
  inner_->setActiveConnection(std::move(connection));
}

void ScriptedRecordset::setCursorLocation(CursorLocation location) {
  report("CursorLocation", {}, {static_cast<int>(location)});
  inner_->setCursorLocation(location);
}

void ScriptedRecordset::setCursorType(CursorType type) {
  report("CursorType", {}, {static_cast<int>(type)});
  inner_->setCursorType(type);
}

void ScriptedRecordset::setLockType(LockType type) {
  report("LockType", {}, {static_cast<int>(type)});
  inner_->setLockType(type);
}

void ScriptedRecordset::open(CursorType type, LockType lock, CommandOption options) {
  report("Open", source_,
         {static_cast<int>(type), static_cast<int>(lock), static_cast<int>(options)});
  inner_->open(type, lock, options);
}

void ScriptedRecordset::open(std::string source, std::shared_ptr<Connection> connection,
                             CursorType type, LockType lock, CommandOption options) {
  source_ = source;
  report("OpenWithSource", source_,
         {static_cast<int>(type), static_cast<int>(lock), static_cast<int>(options)});
  inner_->open(std::move(source), std::move(connection), type, lock, options);
}

void ScriptedRecordset::find(std::string_view criteria, std::int64_t skip,
                             SearchDirection direction, Bookmark start) {
  report("Find", std::string{criteria},
         {static_cast<int>(skip), static_cast<int>(direction), static_cast<int>(start)});
  inner_->find(criteria, skip, direction, start);
}

void ScriptedRecordset::updateBatch(Affect affect) {
  report("UpdateBatch", source_, {static_cast<int>(affect)});
  owner_->obey("UpdateBatch " + source_);
  inner_->updateBatch(affect);
}

void ScriptedCommand::setActiveConnection(std::shared_ptr<Connection> connection) {
  if (!connection) {
    owner_->report({.name = "CommandRelease", .sql = text_});
    owner_->obey("CommandRelease");
  }
  connection_ = std::move(connection);
}

Parameters& ScriptedCommand::parameters() {
  if (owner_->procedureIsUnknown) {
    throw Error{"Procedura sconosciuta"};
  }
  return parameters_;
}

std::shared_ptr<Recordset> ScriptedCommand::execute(std::int64_t& recordsAffected,
                                                    CommandOption options) {
  Operation operation{
      .name = "CommandExecute",
      .sql = text_,
      .options = {static_cast<int>(type_), timeout_, prepared_ ? 1 : 0, static_cast<int>(options),
                  connection_.get() == static_cast<Connection*>(owner_.get()) ? 1 : 0}};
  for (std::size_t index = 0; index < parameters_.count(); ++index) {
    Parameter& parameter = parameters_.item(index);
    if (parameter.direction() == ParameterDirection::Input) {
      operation.parameters.emplace_back(parameter.name(), parameter.value());
    }
  }
  owner_->report(std::move(operation));
  ProcedureAnswer answer = owner_->onProcedure(parameters_);
  for (const auto& [name, value] : answer.outputs) {
    parameters_.item(name).setValue(value);
  }
  recordsAffected = -1;
  auto rows = std::make_shared<ScriptedRecordset>(
      owner_, openClientCursor(ExecutionResult{{std::move(answer.rows)}, -1}, owner_), text_);
  owner_->onProcedureRows(*rows);
  return rows;
}

}  // namespace

ResultSet rowSet(const std::vector<std::string>& names, std::vector<Variant> values,
                 const std::string& table) {
  ResultSet set;
  for (const std::string& name : names) {
    set.columns.push_back(ColumnInfo{.name = name, .baseTable = table, .baseColumn = name});
  }
  set.values = std::move(values);
  return set;
}

ErrorInfo ScriptedErrors::item(std::size_t index) const {
  if (index >= entries_.size()) {
    throw Error{"Elemento non trovato"};
  }
  return entries_[index];
}

void ScriptedErrors::clear() {
  entries_.clear();
  ++clears_;
}

// ---------------------------------------------------------------- connection

void ScriptedConnection::columns(const std::string& table, const std::vector<std::string>& names) {
  columns_[table] = rowSet(names, {}, table).columns.all();
}

void ScriptedConnection::raise(Failure failure, const std::string& description,
                               const std::string& statement) {
  if (failure == Failure::Provider || failure == Failure::Lost) {
    const ErrorInfo info{.description = description,
                         .sqlState = "HY000",
                         .nativeNumber = 50000,
                         .source = "Scripted",
                         .statement = statement,
                         .connectionLost = failure == Failure::Lost};
    failWith({info});
  }
  if (failure == Failure::Own) {
    throw Error{description};
  }
  throw std::runtime_error{description};
}

void ScriptedConnection::report(Operation operation) {
  onOperation(operation);
  operations.push_back(std::move(operation));
}

const ScriptedConnection::Rule* ScriptedConnection::obey(std::string_view text) {
  const Rule* rule = nullptr;
  if (const auto found = exact_.find(std::string{text}); found != exact_.end()) {
    rule = &found->second;
  }
  for (auto entry = prefixes_.rbegin(); rule == nullptr && entry != prefixes_.rend(); ++entry) {
    if (text.starts_with(entry->first)) {
      rule = &entry->second;
    }
  }
  if (rule != nullptr && rule->failure) {
    raise(*rule->failure, rule->description, std::string{text});
  }
  return rule;
}

void ScriptedConnection::setConnectionString(std::string text) {
  report({.name = "ConnectionString", .sql = text});
  text_ = std::move(text);
}

void ScriptedConnection::setCommandTimeout(int seconds) {
  report({.name = "CommandTimeout", .options = {seconds}});
}

void ScriptedConnection::setCursorLocation(CursorLocation location) {
  report({.name = "ConnectionCursorLocation", .options = {static_cast<int>(location)}});
}

void ScriptedConnection::open(std::string_view user, std::string_view password,
                              CommandOption options) {
  report({.name = "ConnectionOpen",
          .sql = std::string{user} + std::string{password},
          .options = {static_cast<int>(options)}});
  obey("ConnectionOpen");
  open_ = true;
}

void ScriptedConnection::close() {
  report({.name = "ConnectionClose"});
  open_ = false;
}

std::shared_ptr<Recordset> ScriptedConnection::execute(std::string_view commandText,
                                                       std::int64_t& recordsAffected,
                                                       CommandOption options) {
  report(
      {.name = "Execute", .sql = std::string{commandText}, .options = {static_cast<int>(options)}});
  ExecutionResult result = run(commandText);
  recordsAffected = result.recordsAffected;
  if (result.results.empty()) {
    return nullptr;
  }
  return std::make_shared<ScriptedRecordset>(
      self(), openClientCursor(std::move(result), shared_from_this()), std::string{commandText});
}

std::shared_ptr<Recordset> ScriptedConnection::newRecordset() {
  return std::make_shared<ScriptedRecordset>(self(), newClientCursor(), "");
}

std::shared_ptr<Command> ScriptedConnection::newCommand() {
  return std::make_shared<ScriptedCommand>(self());
}

ExecutionResult ScriptedConnection::run(std::string_view text) {
  const Rule* const rule = obey(text);
  const bool isSelect = text.find("SELECT") != std::string_view::npos;
  ExecutionResult result;
  if (!isSelect) {
    result.recordsAffected = 1;
  } else if (rule != nullptr) {
    result.results.push_back(rule->rows);
  } else {
    result.results.push_back(noRows(text));
  }
  return result;
}

std::int64_t ScriptedConnection::runChange(std::string_view text,
                                           const std::vector<Variant>& parameters) {
  Operation change{.name = "Change", .sql = std::string{text}};
  for (const Variant& value : parameters) {
    change.parameters.emplace_back("?", value);
  }
  report(std::move(change));
  obey(text);
  return 1;
}

std::shared_ptr<NativeProcedure> ScriptedConnection::findProcedure(std::string_view /*name*/) {
  throw std::logic_error("no procedure is looked for here");
}

std::shared_ptr<ScriptedConnection> ScriptedConnection::self() {
  return std::static_pointer_cast<ScriptedConnection>(shared_from_this());
}

void ScriptedConnection::transaction(const char* name) {
  report({.name = name, .options = {static_cast<int>(errors_.count())}});
  obey(name);
}

ResultSet ScriptedConnection::noRows(std::string_view text) const {
  constexpr std::string_view from = " FROM ";
  std::string table;
  if (const auto at = text.find(from); at != std::string_view::npos) {
    const std::string_view rest = text.substr(at + from.size());
    table = std::string{rest.substr(0, rest.find(' '))};
  }
  const auto known = columns_.find(table);
  return known != columns_.end() ? ResultSet{.columns = known->second, .values = {}}
                                 : rowSet({table + "_SENZA_COLONNE"}, {}, table);
}

}  // namespace azcoll::test
