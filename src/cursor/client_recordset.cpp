#include "cursor/client_recordset.h"

#include <utility>

#include "cursor/criteria.h"
#include "data/error.h"
#include "data/messages.h"
#include "data/variant.h"

namespace azcoll::cursor {

ClientRecordset::ClientRecordset(ResultSet rows, Queue following,
                                 std::shared_ptr<NativeConnection> connection, LockType lock)
    : connection_{std::move(connection)}, lock_{lock}, following_{std::move(following)} {
  load(std::move(rows));
}

void ClientRecordset::setActiveConnection(std::shared_ptr<Connection> connection) {
  connection_ = nativeOf(connection);
}

void ClientRecordset::setSource(std::string text) {
  requireClosed();
  source_ = std::move(text);
}

// Location and type ask for nothing that rows in memory do not give.
void ClientRecordset::setCursorLocation(CursorLocation) { requireClosed(); }
void ClientRecordset::setCursorType(CursorType) { requireClosed(); }

void ClientRecordset::setLockType(LockType type) {
  requireClosed();
  switch (type) {
    case LockType::Unspecified:
      break;
    case LockType::ReadOnly:
    case LockType::BatchOptimistic:
      lock_ = type;
      break;
    default:
      throw Error(messages::kUnsupportedLock);
  }
}

void ClientRecordset::open(CursorType type, LockType lock, CommandOption options) {
  setCursorType(type);
  setLockType(lock);
  if (options == CommandOption::StoredProcedure) {
    throw Error(messages::kUnsupportedOption);
  }
  if (!connection_) {
    throw Error(messages::kNoConnection);
  }
  if (source_.empty()) {
    throw Error(messages::kNoSource);
  }
  ExecutionResult result = connection_->run(source_);
  // A text without results leaves the recordset closed, as in ADO.
  if (result.results.empty()) {
    return;
  }
  auto following =
      std::make_shared<std::deque<ResultSet>>(std::make_move_iterator(result.results.begin() + 1),
                                              std::make_move_iterator(result.results.end()));
  load(std::move(result.results.front()));
  following_ = std::move(following);
}

void ClientRecordset::open(std::string source, std::shared_ptr<Connection> connection,
                           CursorType type, LockType lock, CommandOption options) {
  setSource(std::move(source));
  setActiveConnection(std::move(connection));
  open(type, lock, options);
}

void ClientRecordset::close() {
  requireOpen();
  open_ = false;
  rows_ = RowStore{};
  index_.reset();
  shown_.reset();
  following_.reset();
}

void ClientRecordset::load(ResultSet rows) {
  rows_ = RowStore{std::move(rows)};
  index_.reset();
  shown_.reset();
  position_ = 0;
  open_ = true;
}

void ClientRecordset::requireOpen() const {
  if (!open_) {
    throw Error(messages::kRecordsetClosed);
  }
}

void ClientRecordset::requireClosed() const {
  if (open_) {
    throw Error(messages::kRecordsetOpen);
  }
}

std::int64_t ClientRecordset::shownCount() const {
  return static_cast<std::int64_t>(shown_ ? shown_->size() : rows_.rowCount());
}

std::size_t ClientRecordset::shownRow(std::int64_t position) const {
  const auto index = static_cast<std::size_t>(position);
  return shown_ ? (*shown_)[index] : index;
}

std::size_t ClientRecordset::currentRow() const {
  // The row being added lies after all others.
  if (adding()) {
    return rows_.rowCount();
  }
  if (position_ < 0 || position_ >= shownCount()) {
    throw Error(messages::kNoCurrentRow);
  }
  return shownRow(position_);
}

std::int64_t ClientRecordset::recordCount() const {
  requireOpen();
  return shownCount() + (adding() ? 1 : 0);
}

bool ClientRecordset::atStart() const {
  requireOpen();
  return !adding() && (position_ < 0 || shownCount() == 0);
}

bool ClientRecordset::atEnd() const {
  requireOpen();
  return !adding() && position_ >= shownCount();
}

void ClientRecordset::moveFirst() {
  requireOpen();
  finishEdit();
  if (shownCount() == 0) {
    throw Error(messages::kNoCurrentRow);
  }
  position_ = 0;
}

void ClientRecordset::moveNext() {
  requireOpen();
  finishEdit();
  // At the last row it moves to the end, at the end it fails, as in ADO.
  if (position_ >= shownCount()) {
    throw Error(messages::kMoveBeyondEnd);
  }
  ++position_;
}

void ClientRecordset::setFilter(std::string_view criteria) {
  requireOpen();
  finishEdit();
  // Blank criteria take the filter away.
  if (criteria.find_first_not_of(" \t\r\n") == std::string_view::npos) {
    shown_.reset();
    position_ = 0;
    return;
  }
  const Criteria wanted =
      Criteria::filter(criteria, [this](std::string_view name) { return requiredColumn(name); });
  std::vector<std::size_t> shown;
  for (std::size_t row = 0; row < rows_.rowCount(); ++row) {
    if (wanted.matches(rows_.row(row))) {
      shown.push_back(row);
    }
  }
  shown_ = std::move(shown);
  position_ = 0;
}

std::int64_t ClientRecordset::searchStart(Bookmark start) const {
  switch (start) {
    case Bookmark::First:
      return 0;
    case Bookmark::Last:
      return shownCount() - 1;
    default:
      // Throws where there is no row to start from.
      static_cast<void>(currentRow());
      return position_;
  }
}

void ClientRecordset::find(std::string_view criteria, std::int64_t skip, SearchDirection direction,
                           Bookmark start) {
  requireOpen();
  finishEdit();
  const Criteria wanted =
      Criteria::search(criteria, [this](std::string_view name) { return requiredColumn(name); });
  const std::int64_t count = shownCount();
  const std::int64_t step = direction == SearchDirection::Backward ? -1 : 1;
  const std::int64_t from = searchStart(start);
  // Without rows there is one position only, which is both ends.
  std::int64_t position = step > 0 || count == 0 ? count : -1;
  // A larger skip leads out of the rows, and would overflow below.
  if (skip >= -count && skip <= count) {
    for (std::int64_t next = from + step * skip; next >= 0 && next < count; next += step) {
      if (wanted.matches(rows_.row(shownRow(next)))) {
        position = next;
        break;
      }
    }
  }
  position_ = position;
}

std::shared_ptr<Recordset> ClientRecordset::nextRecordset() {
  requireOpen();
  finishEdit();
  if (!following_ || following_->empty()) {
    return nullptr;
  }
  // Taken out of the queue that all recordsets of the execution share: each result is given once.
  ResultSet next = std::move(following_->front());
  following_->pop_front();
  return std::make_shared<ClientRecordset>(std::move(next), following_, connection_, lock_);
}

}  // namespace azcoll::cursor

namespace azcoll {

std::shared_ptr<Recordset> newClientCursor() { return std::make_shared<cursor::ClientRecordset>(); }

std::shared_ptr<Recordset> openClientCursor(ExecutionResult result,
                                            const std::shared_ptr<Connection>& connection) {
  if (result.results.empty()) {
    return nullptr;
  }
  ResultSet first = std::move(result.results.front());
  std::shared_ptr<std::deque<ResultSet>> following;
  if (result.results.size() > 1) {
    following =
        std::make_shared<std::deque<ResultSet>>(std::make_move_iterator(result.results.begin() + 1),
                                                std::make_move_iterator(result.results.end()));
  }
  return std::make_shared<cursor::ClientRecordset>(std::move(first), std::move(following),
                                                   nativeOf(connection), LockType::BatchOptimistic);
}

}  // namespace azcoll
