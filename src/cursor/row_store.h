#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "cursor/result_set.h"

namespace azcoll {
class NativeConnection;
}

namespace azcoll::cursor {

/// The rows of a client-side recordset: their values, the edit in progress and what waits for the
/// next batch update.
///
/// An edit writes into the row at once and keeps what it needs to be undone; settling it moves that
/// knowledge to the pending changes. Rows come packed; they are unpacked when they are looked at,
/// one at a time, and for good when they are changed.
class RowStore {
 public:
  /// Values that a column had, by column.
  using Originals = std::vector<std::pair<std::size_t, Variant>>;

  /// A row that the database does not know in its present state.
  struct Pending {
    bool added = false;
    Originals originals{};      ///< of a changed row: the values last known to the database
    std::vector<bool> given{};  ///< of an added row: which columns received a value
  };

  enum class Edit : std::uint8_t { None, Changing, Adding };

  RowStore() = default;
  explicit RowStore(ResultSet set);

  [[nodiscard]] const std::vector<ColumnInfo>& columns() const { return columns_.all(); }
  /// Completes the columns, if that is still to be done, for a change on `connection`.
  void completeColumns(NativeConnection& connection);
  /// Rows without the one being added.
  [[nodiscard]] std::size_t rowCount() const { return rowCount_; }
  /// Values of a row, until another row is asked for; the row being added has the number
  /// `rowCount()`.
  [[nodiscard]] std::span<const Variant> row(std::size_t row) const;

  [[nodiscard]] Edit edit() const { return edit_; }
  /// Starts a row of Nulls after the last one. No edit may be in progress.
  void add();
  /// Changes a value; starts the edit of that row when none is in progress. Empty becomes Null.
  void set(std::size_t row, std::size_t column, const Variant& value);
  /// Ends the edit in progress, if any; its changes are pending from now on.
  void finishEdit();
  /// Undoes the edit in progress, if any.
  void cancel();

  /// Pending rows by number.
  [[nodiscard]] const std::map<std::size_t, Pending>& pending() const { return pending_; }
  /// Value of a row as the database last knew it.
  [[nodiscard]] const Variant& original(std::size_t row, std::size_t column) const;
  /// Notes that the database has received a pending row.
  void sent(std::size_t row);

 private:
  [[nodiscard]] Variant& at(std::size_t row, std::size_t column);
  void finishAdded();
  void finishChanged();

  static constexpr std::size_t kNoRow = static_cast<std::size_t>(-1);

  ColumnList columns_;
  std::optional<ResultOrigin> origin_;  // while the columns are not complete
  std::shared_ptr<const PackedRows> packed_;
  std::map<std::size_t, std::vector<Variant>> changed_;  // changed rows, and added ones
  mutable std::vector<Variant> unpacked_;                // the packed row looked at last
  mutable std::size_t unpackedRow_ = kNoRow;
  std::size_t rowCount_ = 0;
  std::map<std::size_t, Pending> pending_;

  Edit edit_ = Edit::None;
  std::size_t editedRow_ = 0;
  Originals undo_;           // of a row being changed
  std::vector<bool> given_;  // of a row being added
};

}  // namespace azcoll::cursor
