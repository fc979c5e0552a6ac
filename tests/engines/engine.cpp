#include "engines/engine.h"

#include <algorithm>
#include <map>
#include <utility>

#include "data/error.h"
#include "data/text.h"
#include "engines/same_order.h"
#include "support/test_database.h"

namespace azcoll::test {
namespace {

/// A number that a server gives to what has none in T-SQL: such a failure ends the transaction.
constexpr int kNumbersOfTSql = 1'000'000;

/// Keeps what it is given, and tells it.
class Screen final : public NamedMembers {
 public:
  explicit Screen(Lines& log) : log_{log} {}
  void set(std::string_view member, const Variant& value) override {
    log_.push_back(join("screen: ", member, " = ", shown(value)));
    values_[std::string{member}] = value;
  }
  [[nodiscard]] Variant get(std::string_view member) override {
    return values_[std::string{member}];
  }

 private:
  Lines& log_;
  std::map<std::string, Variant> values_;
};

/// A value as a field of the service: objects are there or not, recordsets are told apart.
template <typename Class>
std::string fieldText(const Class& object, const FieldMember<Class>& member) {
  return std::visit(
      [&](auto pointer) -> std::string {
        const auto& value = object.*pointer;
        using Value = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<Value, Variant>) {
          return shown(value);
        } else if constexpr (std::is_same_v<Value, std::string>) {
          return value;
        } else if constexpr (std::is_same_v<Value, bool> || std::is_enum_v<Value>) {
          return std::to_string(static_cast<int>(value));
        } else {
          return value ? "there" : "not there";
        }
      },
      member);
}

/// Names, rows and values of a recordset, and how many rows lay ahead.
void describe(Recordset& rows, std::string_view name, Lines& lines) {
  if (!rows.isOpen()) {
    lines.push_back(join(name, ": closed"));
    return;
  }
  int ahead = 0;
  for (; !rows.atEnd(); rows.moveNext()) {
    ++ahead;
  }
  std::string columns;
  for (std::size_t column = 0; column < rows.fields().count(); ++column) {
    columns += join(column == 0 ? "" : ", ", rows.fields().item(column).name());
  }
  lines.push_back(
      join(name, ": ", rows.recordCount(), " rows, ", ahead, " ahead; ", std::move(columns)));
  if (rows.recordCount() != 0) {
    rows.moveFirst();
  }
  for (; !rows.atEnd(); rows.moveNext()) {
    std::string line = join(name, ":");
    for (std::size_t column = 0; column < rows.fields().count(); ++column) {
      line += " " + shown(rows.fields().item(column).value());
    }
    lines.push_back(std::move(line));
  }
}

}  // namespace

/// The platform of both engines: a fixed day, answers at the prompt, and a record of what was seen.
class ScriptedUser final : public Platform {
 public:
  Lines log;
  int yes = 0;
  bool screens = true;
  std::shared_ptr<Connection> connection;

  [[nodiscard]] std::shared_ptr<Connection> newConnection(std::string_view text) override {
    log.push_back(join("connection: ", text));
    return connection;
  }
  [[nodiscard]] Date today() override { return {.year = 2025, .month = 7, .day = 9}; }
  [[nodiscard]] Answer messageBox(std::string_view text, int style,
                                  std::string_view title) override {
    log.push_back(join("question: ", title, " ", style, " ", text));
    return yes-- > 0 ? Answer::Yes : Answer::No;
  }
  [[nodiscard]] std::shared_ptr<NamedMembers> createObject(std::string_view progId) override {
    log.push_back(join("object: ", progId));
    if (!screens) {
      throw Error(join("Manca ", progId));
    }
    return std::make_shared<Screen>(log);
  }
  void show(NamedMembers& /*screen*/, const std::shared_ptr<Object>& framework) override {
    log.push_back(framework ? "screen shown" : "screen shown without framework");
  }
};

Engine::Engine(std::shared_ptr<Connection> native)
    : native_{std::move(native)},
      connection_{std::make_shared<ConnessioneTracciata>(
          std::make_shared<SameOrderConnection>(native_),
          [this](const TraceEntry& entry) { heard(entry); })} {}

void Engine::run(const std::string& statement) {
  std::int64_t affected = 0;
  native_->execute(statement, affected, CommandOption::Text);
}

void Engine::heard(const TraceEntry& entry) {
  if (entry.operation == "Open" && entry.sql.empty()) {
    return;  // a connection that is open already
  }
  const std::string& operation = entry.operation;
  if (!entry.error && operation.ends_with("Trans")) {
    inTransaction_ = operation == "BeginTrans";
  }
  operations_.push_back(join(entry.operation, " ", entry.sql, entry.error ? " FAILED" : ""));
  if (entry.error) {
    if (!entry.error->description.empty()) {
      wordings_.push_back(entry.error->description);
    }
    undone_ = undone_ || entry.error->transactionLost || entry.error->nativeNumber > kNumbersOfTSql;
  }
}

void Engine::fill(const std::vector<std::string>& statements) {
  service_.reset();
  native_->beginTrans();
  constexpr std::size_t kStatementsAtOnce = 40;  // a server is far away
  for (std::size_t first = 0; first < statements.size(); first += kStatementsAtOnce) {
    std::string batch;
    for (std::size_t at = first; at < std::min(first + kStatementsAtOnce, statements.size());
         ++at) {
      batch += statements[at] + "\n";
    }
    run(batch);
  }
  native_->commitTrans();
  user_ = std::make_shared<ScriptedUser>();
  user_->connection = connection_;
  service_ = std::make_unique<CLSCO_AZIENDECOLL>(user_);
  wordings_.clear();
}

int Engine::useIdentity() {
  run("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_DITTA_CG18,"
      " CG86_DITTACOLL_CG18) VALUES (98, 1, 1, 1)");
  const std::string where = " FROM CG86_AZIENDECOLL WHERE CG86_INDTIPO = 98";
  const int identity = std::stoi(rowsOf(*native_, "SELECT CG86_IDATTIVITA" + where).front());
  run("DELETE" + where);
  return identity;
}

void Engine::skipIdentitiesTo(int identity) {
  while (useIdentity() < identity) {
  }
}

KnownRows Engine::knownRows() {
  std::int64_t affected = 0;
  const std::shared_ptr<Recordset> activities =
      native_->execute("SELECT CG86_IDATTIVITA FROM CG86_AZIENDECOLL ORDER BY CG86_IDATTIVITA",
                       affected, CommandOption::Text);
  const std::shared_ptr<Recordset> customers = native_->execute(
      "SELECT CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR FROM CG44_CLIFOR ORDER BY CG44_DITTA_CG18,"
      " CG44_TIPOCF, CG44_CLIFOR",
      affected, CommandOption::Text);
  const auto number = [](Recordset& rows, std::size_t column) {
    return rows.fields().item(column).value().toInt32();
  };
  KnownRows known;
  for (; !activities->atEnd(); activities->moveNext()) {
    known.activities.push_back(number(*activities, 0));
  }
  for (; !customers->atEnd(); customers->moveNext()) {
    known.customers.push_back({.company = number(*customers, 0),
                               .kind = number(*customers, 1),
                               .code = number(*customers, 2)});
  }
  return known;
}

Lines Engine::tables() {
  std::string batch;
  for (const std::string& table : testTables()) {
    batch += "SELECT * FROM " + table + "\n";
  }
  std::int64_t affected = 0;
  std::shared_ptr<Recordset> rows = native_->execute(batch, affected, CommandOption::Text);
  Lines all;
  for (const std::string& table : testTables()) {
    for (const std::string& line : linesOf(*rows)) {
      all.push_back(join(table, "|", line));
    }
    rows = rows->nextRecordset();
  }
  std::ranges::sort(all);
  return all;
}

void Engine::giveInputs(const DrawnCall& call) {
  service_->CPInput = std::make_shared<CLSCO_INPUTAZCOLL>();
  for (std::size_t index = 0; index < kInputFields.size(); ++index) {
    const Variant& drawn = call.inputs[index];
    std::visit(
        [&](auto pointer) {
          auto& value = *service_->CPInput.*pointer;
          using Value = std::decay_t<decltype(value)>;
          if constexpr (std::is_same_v<Value, Variant>) {
            value = drawn;
          } else if constexpr (std::is_same_v<Value, std::string>) {
            value = drawn.text();
          } else if constexpr (std::is_same_v<Value, bool>) {
            value = drawn.toBool();
          } else if constexpr (std::is_enum_v<Value>) {
            value = static_cast<Value>(drawn.toInt32());
          } else if constexpr (std::is_same_v<Value, std::shared_ptr<Connection>>) {
            value = drawn.toBool() ? connection_ : nullptr;
          } else if constexpr (std::is_same_v<Value, std::shared_ptr<Object>>) {
            value = drawn.toBool() ? framework_ : nullptr;
          }
        },
        kInputFields[index].member);
  }
}

std::string Engine::invoke(const MethodEntry& method) {
  return std::visit(
      [&](auto pointer) -> std::string {
        using Result = decltype((*service_.*pointer)());
        if constexpr (std::is_void_v<Result>) {
          (*service_.*pointer)();
          return "nothing";
        } else if constexpr (std::is_same_v<Result, bool>) {
          return (*service_.*pointer)() ? "true" : "false";
        } else {
          return (*service_.*pointer)();
        }
      },
      method.member);
}

/// Ends whatever transaction the call leaves, as its caller would: one that cannot be committed is
/// rolled back.
std::string Engine::endTransaction(CallerTransaction transaction) {
  const auto works = [&](void (Connection::*end)()) {
    try {
      (*connection_.*end)();
      return true;
    } catch (const Error&) {
      return false;
    }
  };
  if (transaction == CallerTransaction::Committed && works(&Connection::commitTrans)) {
    return "committed";
  }
  return works(&Connection::rollbackTrans) ? "rolled back" : "not open";
}

/// The message without what the database itself says: that is worded differently everywhere.
std::string Engine::withoutDatabaseWording(std::string text) const {
  for (const std::string& wording : wordings_) {
    for (std::size_t at = text.find(wording); at != std::string::npos; at = text.find(wording)) {
      text.replace(at, wording.size(), "<database>");
    }
  }
  return text;
}

void Engine::observeService(Lines& lines) {
  const CLSCO_INPUTAZCOLL& in = *service_->CPInput;
  const CLSCO_OUTPUTAZCOLL& out = *service_->CPOutput;
  lines.push_back(join("Stato: ", shown(service_->Stato)));
  lines.push_back(join("Errore: ", withoutDatabaseWording(shown(service_->Errore))));
  for (const InputField& field : kInputFields) {
    lines.push_back(join("in ", field.name, ": ", fieldText(in, field.member)));
  }
  for (const OutputField& field : kOutputFields) {
    lines.push_back(join("out ", field.name, ": ", fieldText(out, field.member)));
    if (const auto* rows =
            std::get_if<std::shared_ptr<Recordset> CLSCO_OUTPUTAZCOLL::*>(&field.member);
        rows != nullptr && out.**rows) {
      Recordset& set = *(out.**rows);
      describe(set, field.name, lines);
      const std::shared_ptr<Recordset> next = set.isOpen() ? set.nextRecordset() : nullptr;
      if (next) {
        describe(*next, join(field.name, ", next"), lines);
      }
    }
  }
  lines.insert(lines.end(), user_->log.begin(), user_->log.end());
}

Observed Engine::call(const DrawnCall& call) {
  giveInputs(call);
  user_->log.clear();
  user_->yes = call.yes;
  user_->screens = call.screens;
  undone_ = false;
  inTransaction_ = false;
  operations_.clear();
  if (call.transaction != CallerTransaction::None) {
    connection_->beginTrans();
  }
  Observed seen;
  seen.outcome.push_back(join("result: ", invoke(*call.method)));
  seen.outcome.push_back(join("transaction: ", endTransaction(call.transaction)));
  connection_->errors().clear();
  observeService(seen.outcome);
  seen.operations = std::exchange(operations_, {});
  seen.tables = tables();
  seen.undone = undone_;
  return seen;
}

}  // namespace azcoll::test
