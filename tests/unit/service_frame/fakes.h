#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "component/platform.h"
#include "data/connection.h"
#include "data/error_list.h"

namespace azcoll::frame_tests {

/// What happens when an operation of a fake is called, by the operation's name: usually a throw.
using Failures = std::map<std::string, std::function<void()>, std::less<>>;

inline void failIfAsked(const Failures& failures, std::string_view operation) {
  const auto found = failures.find(operation);
  if (found != failures.end()) {
    found->second();
  }
}

/// Refusal as a database reports it.
[[noreturn]] void refuse(std::string_view description);

/// Rows in memory: column names and values.
struct Rows {
  std::vector<std::string> columns{};
  std::vector<std::vector<Variant>> values{};
};

class FakeField final : public Field {
 public:
  FakeField(std::string name, Variant value) : name_{std::move(name)}, value_{std::move(value)} {}
  [[nodiscard]] std::string name() const override { return name_; }
  [[nodiscard]] Variant value() const override { return value_; }
  void setValue(const Variant& value) override { value_ = value; }

 private:
  std::string name_;
  Variant value_;
};

class FakeFields final : public Fields {
 public:
  [[nodiscard]] std::size_t count() const override { return row_.size(); }
  [[nodiscard]] Field& item(std::string_view name) override;
  [[nodiscard]] Field& item(std::size_t index) override;
  void load(const Rows& rows, std::size_t position);

 private:
  std::vector<std::unique_ptr<FakeField>> row_;
};

class FakeConnection;

/// A forward-reading recordset over `rows`; the changes of a batch are not its business.
class FakeRecordset final : public Recordset {
 public:
  explicit FakeRecordset(Rows content = {}, bool opened = true)
      : rows{std::move(content)}, open_{opened} {}

  Rows rows;
  Failures failures;
  std::shared_ptr<FakeConnection> home;  ///< the connection that made it, the only one it opens on

  void setActiveConnection(std::shared_ptr<Connection> connection) override;
  void setSource(std::string text) override { source_ = std::move(text); }
  void setCursorLocation(CursorLocation /*location*/) override {}
  void setCursorType(CursorType /*type*/) override {}
  void setLockType(LockType /*type*/) override {}
  void open(CursorType type, LockType lock, CommandOption options) override;
  void open(std::string source, std::shared_ptr<Connection> connection, CursorType type,
            LockType lock, CommandOption options) override;
  void close() override { open_ = false; }
  [[nodiscard]] bool isOpen() const override { return open_; }
  [[nodiscard]] std::int64_t recordCount() const override;
  [[nodiscard]] bool atStart() const override;
  [[nodiscard]] bool atEnd() const override;
  void moveFirst() override;
  void moveNext() override;
  [[nodiscard]] Fields& fields() override;
  void setFilter(std::string_view criteria) override;
  void find(std::string_view criteria, std::int64_t skip, SearchDirection direction,
            Bookmark start) override;
  void addNew() override { refuse("not expected: addNew"); }
  void update() override { refuse("not expected: update"); }
  void cancelUpdate() override { refuse("not expected: cancelUpdate"); }
  void updateBatch(Affect /*affect*/) override { refuse("not expected: updateBatch"); }
  [[nodiscard]] std::shared_ptr<Recordset> nextRecordset() override { return nullptr; }

 private:
  std::shared_ptr<Connection> connection_;
  std::string source_;
  FakeFields fields_;
  std::size_t position_ = 0;
  bool open_;
};

class FakeParameter final : public Parameter {
 public:
  explicit FakeParameter(std::string name) : name_{std::move(name)} {}
  [[nodiscard]] std::string name() const override { return name_; }
  [[nodiscard]] ParameterDirection direction() const override {
    return ParameterDirection::InputOutput;
  }
  [[nodiscard]] Variant value() const override { return value_; }
  void setValue(const Variant& value) override { value_ = value; }

 private:
  std::string name_;
  Variant value_;
};

/// The parameters that `PC_GetDitteCollegate` declares.
class FakeParameters final : public Parameters {
 public:
  FakeParameters();
  [[nodiscard]] std::size_t count() override { return parameters_.size(); }
  [[nodiscard]] Parameter& item(std::string_view name) override;
  [[nodiscard]] Parameter& item(std::size_t index) override;

 private:
  std::vector<std::unique_ptr<FakeParameter>> parameters_;
};

/// Runs the one procedure: its rows are those that the connection holds in `procedureRows`.
class FakeCommand final : public Command {
 public:
  explicit FakeCommand(FakeConnection& home) : home_{home} {}
  void setActiveConnection(std::shared_ptr<Connection> connection) override;
  void setCommandText(std::string /*text*/) override {}
  void setCommandType(CommandOption /*type*/) override {}
  void setCommandTimeout(int /*seconds*/) override {}
  void setPrepared(bool /*prepared*/) override {}
  [[nodiscard]] Parameters& parameters() override { return parameters_; }
  std::shared_ptr<Recordset> execute(std::int64_t& recordsAffected, CommandOption options) override;

 private:
  FakeConnection& home_;
  std::shared_ptr<Connection> connection_;
  FakeParameters parameters_;
};

/// A connection without a database: it writes down what is asked of it, in order, and answers from
/// the rows that the test put in. On a closed one every statement fails, as on a real one.
class FakeConnection final : public Connection,
                             public std::enable_shared_from_this<FakeConnection> {
 public:
  explicit FakeConnection(bool opened = false) : open_{opened} {}

  std::vector<std::string> log;  ///< configuration, opening and closing
  std::vector<std::string> statements;
  Failures failures;
  Rows rows;           ///< answer to every query
  Rows procedureRows;  ///< answer of the procedure
  /// Failures that the next recordsets carry.
  Failures recordsetFailures;
  std::function<std::int64_t(std::string_view)> affected = [](std::string_view) { return 1; };

  [[nodiscard]] bool touched() const { return !log.empty() || !statements.empty(); }
  [[nodiscard]] std::shared_ptr<FakeRecordset> query(std::string_view text);
  void requireOpen() const;

  void setConnectionString(std::string text) override;
  [[nodiscard]] std::string connectionString() const override { return string_; }
  void setCommandTimeout(int seconds) override;
  void setCursorLocation(CursorLocation location) override;
  void open(std::string_view user, std::string_view password, CommandOption options) override;
  void close() override;
  [[nodiscard]] bool isOpen() const override { return open_; }
  std::shared_ptr<Recordset> execute(std::string_view commandText, std::int64_t& recordsAffected,
                                     CommandOption options) override;
  void beginTrans() override;
  void commitTrans() override { log.emplace_back("commit"); }
  void rollbackTrans() override { log.emplace_back("rollback"); }
  [[nodiscard]] Errors& errors() override { return errors_; }
  [[nodiscard]] std::shared_ptr<Recordset> newRecordset() override;
  [[nodiscard]] std::shared_ptr<Command> newCommand() override;

 private:
  std::string string_;
  ErrorList errors_;
  bool open_;
};

/// A platform that hands out one prepared connection and a fixed day.
class FakePlatform final : public Platform {
 public:
  std::shared_ptr<FakeConnection> connection = std::make_shared<FakeConnection>();
  std::vector<std::string> requested;  ///< connection strings that were asked for
  Failures failures;
  Date day = Date{.year = 2031, .month = 7, .day = 9};
  std::function<std::unique_ptr<DateConverter>()> converter;

  [[nodiscard]] std::shared_ptr<Connection> newConnection(
      std::string_view connectionString) override;
  [[nodiscard]] std::unique_ptr<DateConverter> newDateConverter() override;
  [[nodiscard]] Date today() override;
};

/// An object that has no text form.
inline Variant anObject() { return Variant{std::shared_ptr<Object>{std::make_shared<Object>()}}; }

}  // namespace azcoll::frame_tests
