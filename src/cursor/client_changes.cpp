#include <utility>

#include "cursor/batch.h"
#include "cursor/client_recordset.h"
#include "data/error.h"
#include "data/messages.h"
#include "data/text.h"

// The part of the client-side recordset that changes rows and sends them.

namespace azcoll::cursor {
namespace {

/// The failure of an update that did not change exactly one row. It counts as one of the
/// connection's own, because callers decide by the connection's errors whether to undo.
[[noreturn]] void failUpdate(NativeConnection& connection, const ChangeStatement& statement,
                             std::int64_t changed) {
  ErrorInfo info;
  info.description = changed > 1 ? join(messages::kSeveralRowsChanged, statement.table)
                                 : std::string{messages::kRowConflict};
  info.sqlState = "01001";
  info.source = "AZCOLLSRV";
  info.statement = statement.text;
  connection.failWith({std::move(info)});
}

}  // namespace

void ClientRecordset::requireWritable() const {
  requireOpen();
  if (lock_ != LockType::BatchOptimistic) {
    throw Error(messages::kReadOnly);
  }
}

void ClientRecordset::finishEdit() {
  const bool added = adding();
  rows_.finishEdit();
  if (!added) {
    return;
  }
  // The filter is not asked: a new row is shown until a filter is set again.
  if (shown_) {
    shown_->push_back(rows_.rowCount() - 1);
  }
  position_ = shownCount() - 1;
}

void ClientRecordset::addNew() {
  requireWritable();
  finishEdit();
  rows_.add();
}

void ClientRecordset::update() {
  requireWritable();
  finishEdit();
}

void ClientRecordset::cancelUpdate() {
  requireOpen();
  rows_.cancel();
}

std::vector<std::size_t> ClientRecordset::rowsToSend(Affect affect) const {
  std::vector<std::size_t> rows;
  const auto addIfPending = [&](std::size_t row) {
    if (rows_.pending().contains(row)) {
      rows.push_back(row);
    }
  };
  // Group means the rows that the filter shows; without one, all.
  if (affect == Affect::Current) {
    addIfPending(currentRow());
  } else if (affect == Affect::Group && shown_) {
    for (const std::size_t row : *shown_) {
      addIfPending(row);
    }
  } else {
    for (const auto& [row, pending] : rows_.pending()) {
      rows.push_back(row);
    }
  }
  return rows;
}

void ClientRecordset::updateBatch(Affect affect) {
  requireWritable();
  finishEdit();
  if (!connection_) {
    throw Error(messages::kDetached);
  }
  const std::vector<std::size_t> rows = rowsToSend(affect);
  // Only now, because it may cost questions to the database.
  if (!rows.empty()) {
    rows_.completeColumns(*connection_);
  }
  // All statements first: a change that cannot be written at all sends nothing.
  std::vector<ChangeStatement> statements;
  statements.reserve(rows.size());
  for (const std::size_t row : rows) {
    statements.push_back(changeStatement(rows_, row));
  }
  for (const ChangeStatement& statement : statements) {
    send(statement);
  }
}

void ClientRecordset::send(const ChangeStatement& statement) {
  const std::int64_t changed = connection_->runChange(statement.text, statement.parameters);
  // An INSERT that adds no row fails by itself.
  if (statement.isUpdate && changed != 1) {
    failUpdate(*connection_, statement, changed);
  }
  // One by one: what was sent before a failure is not sent again.
  rows_.sent(statement.row);
}

const std::vector<ColumnInfo>& ClientRecordset::columns() const {
  requireOpen();
  return rows_.columns();
}

std::optional<std::size_t> ClientRecordset::columnNamed(std::string_view name) {
  return index_.find(columns(), name);
}

std::size_t ClientRecordset::requiredColumn(std::string_view name) {
  const std::optional<std::size_t> column = columnNamed(name);
  if (!column) {
    throw Error(join(messages::kItemNotFound, name));
  }
  return *column;
}

const Variant& ClientRecordset::value(std::size_t column) const {
  requireOpen();
  return rows_.row(currentRow())[column];
}

void ClientRecordset::setValue(std::size_t column, const Variant& value) {
  requireWritable();
  if (value.kind() == Variant::Kind::Object) {
    throw Error(messages::kTypeMismatch);
  }
  rows_.set(currentRow(), column, value);
}

Fields& ClientRecordset::fields() {
  requireOpen();
  return fields_;
}

}  // namespace azcoll::cursor
