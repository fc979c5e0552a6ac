#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cursor/client_cursor.h"
#include "cursor/native_connection.h"
#include "data/connection.h"

namespace azcoll::test {

/// One operation seen by a scripted connection, in the order in which they came.
struct Operation {
  std::string name{};  ///< `Execute`, `BeginTrans`, `Open`, `UpdateBatch`, `CommandExecute`, …
  std::string sql{};   ///< text of the statement, of the recordset's source, of the criteria
  std::vector<int> options{};                                 ///< option values as passed
  std::vector<std::pair<std::string, Variant>> parameters{};  ///< of a command or a batch change
};

/// How a scripted statement fails.
enum class Failure : std::uint8_t {
  Provider,  ///< the database refuses it: the connection's `Errors` get an entry
  Lost,      ///< the same, because the connection is gone
  Own,       ///< an `Error` that does not come from the database
  Foreign    ///< any other exception
};

/// A row set from column names and values, row after row. Every column belongs to `table`, so that
/// changes can be sent back.
[[nodiscard]] inline ResultSet rowSet(const std::vector<std::string>& names,
                                      std::vector<Variant> values, const std::string& table = {}) {
  ResultSet set;
  for (const std::string& name : names) {
    set.columns.push_back(ColumnInfo{.name = name, .baseTable = table, .baseColumn = name});
  }
  set.values = std::move(values);
  return set;
}

/// Input and output of one call of a stored procedure.
struct ProcedureAnswer {
  ResultSet rows{};
  std::map<std::string, Variant> outputs{};  ///< by parameter name, with its `@`
};

class ScriptedConnection;

/// `Errors` that a scripted failure fills.
class ScriptedErrors final : public Errors {
 public:
  [[nodiscard]] std::size_t count() const override { return entries_.size(); }
  [[nodiscard]] ErrorInfo item(std::size_t index) const override {
    if (index >= entries_.size()) {
      throw Error{"Elemento non trovato"};
    }
    return entries_[index];
  }
  void clear() override {
    entries_.clear();
    ++clears_;
  }
  void record(std::vector<ErrorInfo> entries) { entries_ = std::move(entries); }
  [[nodiscard]] int clears() const { return clears_; }

 private:
  std::vector<ErrorInfo> entries_;
  int clears_ = 0;
};

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

/// A connection whose answers a test writes down beforehand. It reports every operation.
///
/// A statement is answered by the last rule for its exact text, else by the last rule for a prefix
/// of it. Without a rule a SELECT gives no rows and the columns told for its table, anything else
/// is accepted. `CommandExecute` has the options type, time-out, prepared, execute option, and 1
/// when the command works on this connection. The steps of a transaction have the number of errors
/// that the connection holds when they come.
class ScriptedConnection final : public NativeConnection {
 public:
  /// What a statement gives, or how it fails.
  struct Rule {
    ResultSet rows{};
    std::optional<Failure> failure{};
    std::string description{};
  };

  // Script.
  void answer(std::string text, ResultSet rows) { exact_[std::move(text)] = Rule{std::move(rows)}; }
  void answerPrefix(std::string prefix, ResultSet rows) {
    prefixes_.emplace_back(std::move(prefix), Rule{std::move(rows)});
  }
  /// Makes every statement that begins with `prefix` fail; also an operation by name, as
  /// `BeginTrans` or `CommandRelease`, and a batch update as `UpdateBatch` and the recordset's
  /// source.
  void fail(std::string prefix, Failure failure, std::string description) {
    prefixes_.emplace_back(std::move(prefix), Rule{{}, failure, std::move(description)});
  }
  /// Columns that `SELECT *` gives for a table when no rows are scripted.
  void columns(const std::string& table, const std::vector<std::string>& names) {
    columns_[table] = rowSet(names, {}, table).columns.all();
  }
  /// Answers every call of a procedure; reads the call's parameters, may throw by `raise`.
  std::function<ProcedureAnswer(Parameters&)> onProcedure = [](Parameters&) {
    return ProcedureAnswer{};
  };

  /// A database without the procedure: nobody can say what its parameters are.
  bool procedureIsUnknown = false;
  /// Is given the recordset of every procedure call before the caller is.
  std::function<void(Recordset&)> onProcedureRows = [](Recordset&) {};
  /// Sees every operation when it comes, before it is carried out.
  std::function<void(const Operation&)> onOperation = [](const Operation&) {};

  // Record.
  std::vector<Operation> operations;
  [[nodiscard]] const ScriptedErrors& recordedErrors() const { return errors_; }

  [[noreturn]] void raise(Failure failure, const std::string& description,
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
  void report(Operation operation) {
    onOperation(operation);
    operations.push_back(std::move(operation));
  }

  /// The rule for `text`, or null; a rule that fails throws.
  const Rule* obey(std::string_view text) {
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

  // Connection.
  void setConnectionString(std::string text) override {
    report({.name = "ConnectionString", .sql = text});
    text_ = std::move(text);
  }
  [[nodiscard]] std::string connectionString() const override { return text_; }
  void setCommandTimeout(int seconds) override {
    report({.name = "CommandTimeout", .options = {seconds}});
  }
  void setCursorLocation(CursorLocation location) override {
    report({.name = "ConnectionCursorLocation", .options = {static_cast<int>(location)}});
  }
  void open(std::string_view user, std::string_view password, CommandOption options) override {
    report({.name = "ConnectionOpen",
            .sql = std::string{user} + std::string{password},
            .options = {static_cast<int>(options)}});
    obey("ConnectionOpen");
    open_ = true;
  }
  void close() override {
    report({.name = "ConnectionClose"});
    open_ = false;
  }
  [[nodiscard]] bool isOpen() const override { return open_; }
  std::shared_ptr<Recordset> execute(std::string_view commandText, std::int64_t& recordsAffected,
                                     CommandOption options) override {
    report({.name = "Execute",
            .sql = std::string{commandText},
            .options = {static_cast<int>(options)}});
    ExecutionResult result = run(commandText);
    recordsAffected = result.recordsAffected;
    if (result.results.empty()) {
      return nullptr;
    }
    return std::make_shared<ScriptedRecordset>(
        self(), openClientCursor(std::move(result), shared_from_this()), std::string{commandText});
  }
  void beginTrans() override { transaction("BeginTrans"); }
  void commitTrans() override { transaction("CommitTrans"); }
  void rollbackTrans() override { transaction("RollbackTrans"); }
  [[nodiscard]] Errors& errors() override { return errors_; }
  [[nodiscard]] std::shared_ptr<Recordset> newRecordset() override {
    return std::make_shared<ScriptedRecordset>(self(), newClientCursor(), "");
  }
  [[nodiscard]] std::shared_ptr<Command> newCommand() override {
    return std::make_shared<ScriptedCommand>(self());
  }

  // NativeConnection.
  [[nodiscard]] std::string_view provider() const override { return "scripted"; }
  ExecutionResult run(std::string_view text) override {
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
  std::int64_t runChange(std::string_view text, const std::vector<Variant>& parameters) override {
    Operation change{.name = "Change", .sql = std::string{text}};
    for (const Variant& value : parameters) {
      change.parameters.emplace_back("?", value);
    }
    report(std::move(change));
    obey(text);
    return 1;
  }
  /// Commands are the script's own and ask for none.
  [[nodiscard]] std::shared_ptr<NativeProcedure> findProcedure(std::string_view /*name*/) override {
    throw std::logic_error("no procedure is looked for here");
  }
  void record(std::vector<ErrorInfo> entries) override { errors_.record(std::move(entries)); }

 private:
  [[nodiscard]] std::shared_ptr<ScriptedConnection> self() {
    return std::static_pointer_cast<ScriptedConnection>(shared_from_this());
  }
  void transaction(const char* name) {
    report({.name = name, .options = {static_cast<int>(errors_.count())}});
    obey(name);
  }

  [[nodiscard]] ResultSet noRows(std::string_view text) const {
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

  std::map<std::string, Rule> exact_;
  std::vector<std::pair<std::string, Rule>> prefixes_;
  std::map<std::string, std::vector<ColumnInfo>> columns_;
  ScriptedErrors errors_;
  std::string text_;
  bool open_ = true;
};

inline void ScriptedRecordset::report(std::string name, std::string sql, std::vector<int> options) {
  owner_->report({.name = std::move(name), .sql = std::move(sql), .options = std::move(options)});
}

inline void ScriptedRecordset::setActiveConnection(std::shared_ptr<Connection> connection) {
  report(connection ? "RecordsetConnection" : "Detach", source_, {});
  inner_->setActiveConnection(std::move(connection));
}

inline void ScriptedRecordset::setCursorLocation(CursorLocation location) {
  report("CursorLocation", {}, {static_cast<int>(location)});
  inner_->setCursorLocation(location);
}

inline void ScriptedRecordset::setCursorType(CursorType type) {
  report("CursorType", {}, {static_cast<int>(type)});
  inner_->setCursorType(type);
}

inline void ScriptedRecordset::setLockType(LockType type) {
  report("LockType", {}, {static_cast<int>(type)});
  inner_->setLockType(type);
}

inline void ScriptedRecordset::open(CursorType type, LockType lock, CommandOption options) {
  report("Open", source_,
         {static_cast<int>(type), static_cast<int>(lock), static_cast<int>(options)});
  inner_->open(type, lock, options);
}

inline void ScriptedRecordset::open(std::string source, std::shared_ptr<Connection> connection,
                                    CursorType type, LockType lock, CommandOption options) {
  source_ = source;
  report("OpenWithSource", source_,
         {static_cast<int>(type), static_cast<int>(lock), static_cast<int>(options)});
  inner_->open(std::move(source), std::move(connection), type, lock, options);
}

inline void ScriptedRecordset::find(std::string_view criteria, std::int64_t skip,
                                    SearchDirection direction, Bookmark start) {
  report("Find", std::string{criteria},
         {static_cast<int>(skip), static_cast<int>(direction), static_cast<int>(start)});
  inner_->find(criteria, skip, direction, start);
}

inline void ScriptedRecordset::updateBatch(Affect affect) {
  report("UpdateBatch", source_, {static_cast<int>(affect)});
  owner_->obey("UpdateBatch " + source_);
  inner_->updateBatch(affect);
}

inline void ScriptedCommand::setActiveConnection(std::shared_ptr<Connection> connection) {
  if (!connection) {
    owner_->report({.name = "CommandRelease", .sql = text_});
    owner_->obey("CommandRelease");
  }
  connection_ = std::move(connection);
}

inline Parameters& ScriptedCommand::parameters() {
  if (owner_->procedureIsUnknown) {
    throw Error{"Procedura sconosciuta"};
  }
  return parameters_;
}

inline std::shared_ptr<Recordset> ScriptedCommand::execute(std::int64_t& recordsAffected,
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

}  // namespace azcoll::test
