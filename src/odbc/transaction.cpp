#include "odbc/transaction.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "data/text.h"
#include "odbc/diagnostics.h"
#include "odbc/execution.h"

namespace azcoll::odbc {
namespace {

constexpr const char* kInvalidState = "25000";
constexpr int kNothingToCommit = 3902;
constexpr int kNothingToUndo = 3903;
constexpr int kUndone = 3930;  // the server's own number for a transaction that takes nothing more
constexpr int kDeadlockVictim = 1205;
constexpr int kLockTimeout = 1222;

// The answers to these are small and come at once.
constexpr int kQuestionSeconds = 30;
constexpr int kMillisecondsPerSecond = 1000;

bool isNothingToUndo(const std::vector<ErrorInfo>& entries) {
  return std::ranges::any_of(
      entries, [](const ErrorInfo& entry) { return entry.nativeNumber == kNothingToUndo; });
}

void run(const Session& session, std::string_view text) {
  static_cast<void>(runToEnd(*session.newStatement(kQuestionSeconds, Escapes::LeftAlone), text,
                             session.reread(), Reading::Once));
}

/// The one number that a query gives, as its last result.
std::int64_t numberOf(const Session& session, std::string_view text, int timeoutSeconds) {
  const ExecutionResult answer = runToEnd(*session.newStatement(timeoutSeconds, Escapes::LeftAlone),
                                          text, session.reread(), Reading::Once);
  if (answer.results.empty() || answer.results.back().packed->rowCount() == 0) {
    throw DriverFailure{"HY000", join("Il server non risponde a: ", text)};
  }
  Variant number;
  answer.results.back().packed->read(0, std::span{&number, 1});
  try {
    return number.toInt64();
  } catch (const Error& error) {
    throw DriverFailure{
        "HY000", join("Il server non risponde con un numero a: ", text, " (", error.what(), ")")};
  }
}

std::int64_t openTransactions(const Session& session) {
  return numberOf(session, "SELECT @@TRANCOUNT AS N", kQuestionSeconds);
}

/// What has ended has ended, whatever comes of `action`: the next statement tries it again, and
/// reports it.
template <typename Action>
void tryTo(Action action) {
  try {
    action();
  } catch (const DriverFailure&) {
    return;
  }
}

}  // namespace

void Transaction::begin(int timeoutSeconds) {
  if (state_ != State::None) {
    throw DriverFailure{"25001", "Cannot start more transactions on this session."};
  }
  leaveManualCommit();
  session_.setAutocommit(false);
  state_ = State::Open;
  hasWorked_ = false;
  try {
    beginAsTheDriverDoes();
    if (lock_ == GroupLock::PerDatabase) {
      takeGroupLock(timeoutSeconds);
    }
  } catch (...) {
    state_ = State::None;
    tryTo([&] { leaveManualCommit(); });
    throw;
  }
}

/// Some drivers begin a transaction when autocommit goes off, others leave it to the first
/// statement that touches a table: asked once, because it says what a count of 0 means later.
void Transaction::beginAsTheDriverDoes() {
  if (session_.speaksTSql() && !knowsTheStart_) {
    startsAtOnce_ = openTransactions(session_) > 0;
    knowsTheStart_ = true;
  }
}

void Transaction::takeGroupLock(int timeoutSeconds) {
  if (!session_.speaksTSql()) {
    throw DriverFailure{"HYC00", "Blocco=Gruppo vale solo con un server che parla T-SQL"};
  }
  // The lock belongs to the transaction, so there has to be one.
  const std::string_view start =
      startsAtOnce_ ? "" : "DECLARE @n INT SELECT @n = COUNT(*) FROM sys.schemas ";
  const std::int64_t limit =
      timeoutSeconds > 0 ? std::int64_t{timeoutSeconds} * kMillisecondsPerSecond : -1;
  const std::int64_t answer =
      numberOf(session_,
               join(start,
                    "DECLARE @r INT EXEC @r = sp_getapplock @Resource = N'AZCOLLSRV',"
                    " @LockMode = N'Exclusive', @LockOwner = N'Transaction', @LockTimeout = ",
                    limit, " SELECT @r AS R"),
               timeoutSeconds > 0 ? timeoutSeconds + kQuestionSeconds : 0);
  if (answer < 0) {
    throw DriverFailure{"HYT00", kLockTimeout,
                        join("Lock request time out period exceeded. Un'altra chiamata lavora sul "
                             "gruppo (Blocco=Gruppo, sp_getapplock: ",
                             answer, ").")};
  }
  hasWorked_ = true;
}

void Transaction::commit() {
  if (state_ == State::None) {
    throw DriverFailure{kInvalidState, kNothingToCommit,
                        "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."};
  }
  if (state_ == State::Undone) {
    throw DriverFailure{
        kInvalidState, kNothingToCommit,
        join("La transazione non si può confermare: il server l'ha annullata (", reason_, ")")};
  }
  session_.endTransaction(SQL_COMMIT);
  state_ = State::None;
  tryTo([&] { switchAutocommitOn(); });
}

void Transaction::rollback() {
  if (state_ == State::None && !session_.isDead()) {
    throw DriverFailure{kInvalidState, kNothingToUndo,
                        "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION."};
  }
  // Autocommit stays off when this fails: switching it on would commit what is to be undone.
  undoWhatIsThere();
  state_ = State::None;
  reason_.clear();
  tryTo([&] { switchAutocommitOn(); });
}

void Transaction::beforeStatement() {
  if (state_ == State::Undone) {
    throw DriverFailure{kInvalidState, kUndone,
                        join("La transazione è già stata annullata dal server (", reason_,
                             "): va chiusa prima di altre istruzioni")};
  }
  if (state_ == State::None) {
    leaveManualCommit();
  }
}

bool Transaction::examine(const std::vector<ErrorInfo>& entries, bool connectionLost) {
  if (state_ != State::Open) {
    return state_ == State::Undone;
  }
  if (connectionLost) {
    state_ = State::None;  // the server undoes what a client that is gone has left
    return true;
  }
  const bool reported = std::ranges::any_of(entries, [&](const ErrorInfo& entry) {
    // Not every driver gives a deadlock its class.
    return entry.sqlState.starts_with("40") ||
           (session_.speaksTSql() && entry.nativeNumber == kDeadlockVictim);
  });
  if (!reported && !isGone()) {
    return false;
  }
  state_ = State::Undone;
  reason_ = entries.front().description;
  return true;
}

bool Transaction::isGone() {
  if (!session_.speaksTSql()) {
    return false;
  }
  try {
    return openTransactions(session_) == 0 && (startsAtOnce_ || hasWorked_);
  } catch (const DriverFailure&) {
    return true;  // whoever cannot say that it is there must not be sent more
  }
}

void Transaction::undoWhatIsThere() {
  try {
    session_.endTransaction(SQL_ROLLBACK);
  } catch (const DriverFailure& failure) {
    if (session_.isDead() || !isNothingToUndo(failure.entries())) {
      throw;
    }
  }
}

void Transaction::switchAutocommitOn() {
  try {
    session_.setAutocommit(true);
  } catch (const DriverFailure&) {
    if (session_.isDead() || !session_.speaksTSql() || openTransactions(session_) > 0) {
      throw;
    }
    // FreeTDS undoes once more here, and fails when there is nothing.
    run(session_, "BEGIN TRANSACTION");
    session_.setAutocommit(true);
  }
}

/// Outside a transaction every statement counts at once. Whatever is still open belongs to a
/// transaction that has ended for its owner.
void Transaction::leaveManualCommit() {
  if (!session_.isAutocommit()) {
    undoWhatIsThere();
    switchAutocommitOn();
  }
}

}  // namespace azcoll::odbc
