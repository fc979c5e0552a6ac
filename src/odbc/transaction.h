#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "data/error.h"
#include "odbc/connection_string.h"
#include "odbc/session.h"

namespace azcoll::odbc {

/// The transaction of a session, and what has become of it.
///
/// A server may undo a transaction by itself, after a failure or as the victim of a deadlock. The
/// driver does not report it, and what is sent afterwards would be committed statement by
/// statement; so after every failure inside a transaction the server is asked, and when the
/// transaction is gone nothing more is sent until its owner has ended it. Every operation throws
/// `DriverFailure`.
class Transaction {
 public:
  Transaction(Session& session, GroupLock lock) : session_{session}, lock_{lock} {}

  /// Begins one. With `GroupLock::PerDatabase` it waits, `timeoutSeconds` at most (0: without
  /// limit), until no other transaction that does the same is open in the database.
  void begin(int timeoutSeconds);

  /// A transaction that could not be committed is still there, for `rollback`. What the server has
  /// confirmed is committed, whatever goes wrong afterwards.
  void commit();

  /// That the server has nothing left to undo is not a failure.
  void rollback();

  /// To be called before a statement: refuses it in a transaction that the server has undone, and
  /// outside a transaction sees to it that it counts at once.
  void beforeStatement();

  /// To be called when a statement ended well.
  void statementDone() { hasWorked_ = hasWorked_ || state_ == State::Open; }

  /// Looks, after the failure `entries`, whether the transaction is still there. Returns whether
  /// it, or the connection that it was on, is lost.
  bool examine(const std::vector<ErrorInfo>& entries, bool connectionLost);

 private:
  enum class State : std::uint8_t { None, Open, Undone };

  [[nodiscard]] bool isGone();
  void beginAsTheDriverDoes();
  void takeGroupLock(int timeoutSeconds);
  void undoWhatIsThere();
  void switchAutocommitOn();
  void leaveManualCommit();

  Session& session_;
  GroupLock lock_;
  State state_ = State::None;
  bool hasWorked_ = false;     ///< a statement has ended well in it
  bool startsAtOnce_ = false;  ///< the server has a transaction as soon as autocommit is off
  bool knowsTheStart_ = false;
  std::string reason_;  ///< the failure with which the server has undone it
};

}  // namespace azcoll::odbc
