#include "cursor/row_store.h"

#include <algorithm>

#include "cursor/native_connection.h"

namespace azcoll::cursor {
namespace {

RowStore::Originals::const_iterator entryOf(const RowStore::Originals& entries,
                                            std::size_t column) {
  return std::find_if(entries.begin(), entries.end(),
                      [&](const auto& entry) { return entry.first == column; });
}

/// Whole rows of `width` values. An incomplete last row is left out: it would shift added ones.
std::shared_ptr<const PackedRows> packedOf(const std::vector<Variant>& values, std::size_t width) {
  auto rows = std::make_shared<PackedRows>();
  const std::size_t count = width == 0 ? 0 : values.size() / width;
  for (std::size_t row = 0; row < count; ++row) {
    for (std::size_t column = 0; column < width; ++column) {
      rows->append(values[row * width + column]);
    }
    rows->endRow();
  }
  return rows;
}

}  // namespace

RowStore::RowStore(ResultSet set)
    : columns_{std::move(set.columns)},
      origin_{std::move(set.origin)},
      packed_{set.packed ? std::move(set.packed) : packedOf(set.values, columns_.size())},
      rowCount_{columns_.empty() ? 0 : packed_->rowCount()} {}

void RowStore::completeColumns(NativeConnection& connection) {
  if (origin_) {
    columns_ = connection.completeColumns(columns_.all(), *origin_);
    origin_.reset();
  }
}

std::span<const Variant> RowStore::row(std::size_t row) const {
  if (const auto changed = changed_.find(row); changed != changed_.end()) {
    return changed->second;
  }
  // Fields are read row by row, so one unpacked row serves them all.
  if (unpackedRow_ != row) {
    unpacked_.resize(columns_.size());
    packed_->read(row, unpacked_);
    unpackedRow_ = row;
  }
  return unpacked_;
}

Variant& RowStore::at(std::size_t row, std::size_t column) {
  // From now on the row is the unpacked one: packed rows are never rewritten.
  const auto [changed, isNew] = changed_.try_emplace(row);
  if (isNew) {
    changed->second.resize(columns_.size());
    packed_->read(row, changed->second);
  }
  return changed->second[column];
}

void RowStore::add() {
  given_.assign(columns_.size(), false);
  changed_[rowCount_].assign(columns_.size(), Variant{kNull});
  edit_ = Edit::Adding;
  editedRow_ = rowCount_;
}

void RowStore::set(std::size_t row, std::size_t column, const Variant& value) {
  Variant stored = value.isEmpty() ? Variant{kNull} : value;
  if (edit_ == Edit::Adding) {
    given_[column] = true;
    at(row, column) = std::move(stored);
    return;
  }
  // Nothing changes. For a row that waits to be inserted the value counts as given all the same.
  if (sameValue(this->row(row)[column], stored)) {
    const auto pending = pending_.find(row);
    if (pending == pending_.end() || !pending->second.added) {
      return;
    }
  }
  edit_ = Edit::Changing;
  editedRow_ = row;
  // The first value of the edit is the one to go back to.
  if (entryOf(undo_, column) == undo_.end()) {
    undo_.emplace_back(column, std::move(at(row, column)));
  }
  at(row, column) = std::move(stored);
}

void RowStore::finishEdit() {
  switch (edit_) {
    case Edit::None:
      return;
    case Edit::Adding:
      finishAdded();
      break;
    case Edit::Changing:
      finishChanged();
      break;
  }
  edit_ = Edit::None;
}

void RowStore::finishAdded() {
  pending_[rowCount_] = Pending{.added = true, .given = std::move(given_)};
  ++rowCount_;
}

void RowStore::finishChanged() {
  Pending& pending = pending_[editedRow_];
  for (auto& [column, before] : undo_) {
    if (pending.added) {
      pending.given[column] = true;
    } else if (entryOf(pending.originals, column) == pending.originals.end()) {
      // The first value of all edits is the one that the database has.
      pending.originals.emplace_back(column, std::move(before));
    }
  }
  undo_.clear();
  // A value that is back to what the database has is not a change any more.
  std::erase_if(pending.originals, [&](const auto& entry) {
    return sameValue(entry.second, at(editedRow_, entry.first));
  });
  if (!pending.added && pending.originals.empty()) {
    pending_.erase(editedRow_);
  }
}

void RowStore::cancel() {
  if (edit_ == Edit::Adding) {
    changed_.erase(rowCount_);
  }
  for (auto& [column, before] : undo_) {
    at(editedRow_, column) = std::move(before);
  }
  undo_.clear();
  edit_ = Edit::None;
}

const Variant& RowStore::original(std::size_t row, std::size_t column) const {
  if (const auto pending = pending_.find(row); pending != pending_.end()) {
    const auto entry = entryOf(pending->second.originals, column);
    if (entry != pending->second.originals.end()) {
      return entry->second;
    }
  }
  return this->row(row)[column];
}

void RowStore::sent(std::size_t row) {
  const auto pending = pending_.find(row);
  if (pending->second.added) {
    for (std::size_t column = 0; column < columns_.size(); ++column) {
      // The database chose its own number; a copied one would later address another row.
      if (columns_[column].isIdentity) {
        at(row, column) = kNull;
      }
    }
  }
  pending_.erase(pending);
}

}  // namespace azcoll::cursor
