#include "faults/faulty_connection.h"

#include <utility>

#include "cursor/native_connection.h"
#include "support/picture.h"

namespace azcoll::test {

std::string nameOf(Way way) {
  switch (way) {
    case Way::Provider:
      return "refused by the database";
    case Way::Foreign:
      return "failed outside the database";
    case Way::LostBefore:
      return "connection lost before it";
    case Way::LostAfter:
      return "connection lost after it";
  }
  return {};
}

FaultyConnection::FaultyConnection(std::shared_ptr<Connection> inner) : inner_{std::move(inner)} {
  outer_ = std::make_shared<ConnessioneTracciata>(
      inner_, TraceHooks{.after = [this](const TraceEntry& entry) { after(entry); },
                         .before = [this](const TraceEntry& entry) { before(entry); }});
}

void FaultyConnection::failAt(std::size_t number, Way way) {
  failNowhere();
  number_ = number;
  way_ = way;
}

void FaultyConnection::failNowhere() {
  operations_.clear();
  number_ = kNowhere;
  failed_ = false;
  lost_ = false;
}

void FaultyConnection::before(const TraceEntry& entry) {
  operations_.push_back(entry);
  if (listener_) {
    listener_();
  }
  if (lost_) {
    fail();
  }
  if (operations_.size() - 1 != number_ || way_ == Way::LostAfter) {
    return;
  }
  failed_ = true;
  if (way_ == Way::Foreign) {
    throw Error(kDescription);
  }
  if (way_ == Way::LostBefore) {
    lose();
  }
  fail();
}

void FaultyConnection::after(const TraceEntry& entry) {
  operations_.back().error = entry.error;
  if (operations_.size() - 1 == number_ && way_ == Way::LostAfter) {
    failed_ = true;
    lose();
    if (!entry.error) {
      fail();  // an operation that was refused keeps its own failure
    }
  }
}

void FaultyConnection::lose() {
  lost_ = true;
  endOpenTransaction(*inner_);
}

void FaultyConnection::fail() {
  ErrorInfo info{.description = kDescription, .connectionLost = lost_, .transactionLost = lost_};
  nativeOf(inner_)->failWith({std::move(info)});
}

}  // namespace azcoll::test
