#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cursor/client_cursor.h"
#include "cursor/native_connection.h"
#include "data/error.h"
#include "data/error_list.h"

namespace azcoll::cursor {

/// A connection without a database, of the kind `Base`.
template <typename Base>
class Idle : public Base {
 public:
  ErrorList list;

  void setConnectionString(std::string) override {}
  [[nodiscard]] std::string connectionString() const override { return {}; }
  void setCommandTimeout(int) override {}
  void setCursorLocation(CursorLocation) override {}
  void open(std::string_view, std::string_view, CommandOption) override {}
  void close() override {}
  [[nodiscard]] bool isOpen() const override { return true; }
  std::shared_ptr<Recordset> execute(std::string_view, std::int64_t&, CommandOption) override {
    return nullptr;
  }
  void beginTrans() override {}
  void commitTrans() override {}
  void rollbackTrans() override {}
  [[nodiscard]] Errors& errors() override { return list; }
};

/// That of a provider which is not known here.
class ForeignConnection final : public Idle<Connection> {
 public:
  [[nodiscard]] std::shared_ptr<Recordset> newRecordset() override { return newClientCursor(); }
  [[nodiscard]] std::shared_ptr<Command> newCommand() override { return nullptr; }
};

/// A native one: gives prepared results and keeps what it is sent.
class FakeConnection : public Idle<NativeConnection> {
 public:
  struct Change {
    std::string text;
    std::vector<Variant> parameters;
  };

  std::string providerName = "fake";
  std::deque<ExecutionResult> results;       ///< answers of `run`, one each
  std::deque<std::int64_t> rowsChanged;      ///< answers of `runChange`; 1 when none is left
  std::optional<std::size_t> failingChange;  ///< number of the change that fails
  std::vector<std::string> texts;            ///< what `run` received
  std::vector<Change> changes;               ///< what `runChange` received

  [[nodiscard]] std::string_view provider() const override { return providerName; }
  ExecutionResult run(std::string_view text) override {
    texts.emplace_back(text);
    if (results.empty()) {
      failWith({ErrorInfo{.description = "Invalid object name", .nativeNumber = 208}});
    }
    ExecutionResult result = std::move(results.front());
    results.pop_front();
    return result;
  }

  std::int64_t runChange(std::string_view text, const std::vector<Variant>& parameters) override {
    if (failingChange == changes.size()) {
      failingChange.reset();
      failWith({ErrorInfo{.description = "Violation", .nativeNumber = 2627}});
    }
    changes.push_back({std::string{text}, parameters});
    if (rowsChanged.empty()) {
      return 1;
    }
    const std::int64_t changed = rowsChanged.front();
    rowsChanged.pop_front();
    return changed;
  }

  [[nodiscard]] std::shared_ptr<NativeProcedure> findProcedure(std::string_view) override {
    failWith({ErrorInfo{.description = "Could not find stored procedure", .nativeNumber = 2812}});
  }
  void record(std::vector<ErrorInfo> entries) override { list.record(std::move(entries)); }
};

/// A column of table `table`, or of none.
inline ColumnInfo column(std::string name, std::string table = {}, bool isKey = false) {
  ColumnInfo info;
  info.baseColumn = table.empty() ? std::string{} : name;
  info.baseTable = std::move(table);
  info.name = std::move(name);
  info.isKey = isKey;
  return info;
}

/// Three customers of table T1: key DITTA1, CLIFOR1; text RAGSOC1; number SCONTO1 (Null in one).
inline ResultSet customers() {
  ResultSet set;
  set.columns = {column("DITTA1", "T1", true), column("CLIFOR1", "T1", true),
                 column("RAGSOC1", "T1"), column("SCONTO1", "T1")};
  set.values = {Variant{1}, Variant{10}, Variant{"Rossi"},   Variant{*Decimal::parse("5.50")},
                Variant{1}, Variant{11}, Variant{"Bianchi"}, Variant{kNull},
                Variant{2}, Variant{10}, Variant{"ROSSI"},   Variant{*Decimal::parse("0.00")}};
  return set;
}

inline ExecutionResult resultOf(ResultSet set) {
  ExecutionResult result;
  result.results.push_back(std::move(set));
  return result;
}

/// Description of the `Error` that `work` throws, or "no failure".
template <typename Work>
std::string failureOf(const Work& work) {
  try {
    work();
  } catch (const Error& error) {
    return error.description();
  }
  return "no failure";
}

inline std::string textOf(Recordset& recordset, std::string_view name) {
  return recordset.fields().item(name).value().text();
}

}  // namespace azcoll::cursor
