#pragma once

#include <memory>

#include "data/connection.h"
#include "windows/standin/late_object.h"

namespace azcoll::test {

/// ADO's classes by their member names, over this system's own data layer and embedded engine.
/// Only what the library and the tests use; every other member is unknown.

class StandInConnection final : public LateObject {
 public:
  StandInConnection();
  /// Over a connection of the tests, whatever it is.
  explicit StandInConnection(std::shared_ptr<Connection> inner);
  [[nodiscard]] const std::shared_ptr<Connection>& inner() const { return inner_; }
  /// The stand-in behind an automation object; throws `Error` when there is none.
  static StandInConnection& from(IDispatch* object);

 private:
  [[nodiscard]] Members properties();
  [[nodiscard]] Members methods();

  std::shared_ptr<Connection> inner_;
  int commandTimeout_ = 30;
  int cursorLocation_ = 2;
};

class StandInRecordset final : public LateObject {
 public:
  StandInRecordset() : StandInRecordset{nullptr, nullptr} {}
  /// Over rows that an execution gave; none makes a closed recordset.
  StandInRecordset(std::shared_ptr<Recordset> rows, IDispatch* connection);

 private:
  [[nodiscard]] Members settings();
  [[nodiscard]] Members rowMembers();
  void setConnection(IDispatch* connection);
  void open(const CallArguments& arguments);
  [[nodiscard]] Recordset& rows();
  [[nodiscard]] bool isOpen() const { return rows_ && rows_->isOpen(); }

  std::shared_ptr<Recordset> rows_;
  ado::ComPtr<IDispatch> connection_;
  std::string source_;
  CursorLocation location_ = CursorLocation::Server;
  CursorType cursor_ = CursorType::ForwardOnly;
  LockType lock_ = LockType::ReadOnly;
};

class StandInCommand final : public LateObject {
 public:
  StandInCommand();

 private:
  void setConnection(IDispatch* connection);
  const std::shared_ptr<Command>& command();
  ado::ScopedVariant execute(const CallArguments& arguments);

  std::shared_ptr<Command> command_;
  ado::ComPtr<IDispatch> connection_;
  std::string text_;
  CommandOption type_ = CommandOption::Text;
  int timeout_ = 30;
  bool prepared_ = false;
};

}  // namespace azcoll::test
