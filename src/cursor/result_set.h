#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "cursor/packed_rows.h"
#include "data/variant.h"

namespace azcoll {

/// What a provider knows of one result column.
///
/// Changes are written back with it, so a provider says nothing rather than something uncertain:
/// `baseTable` stays empty when the query names the table more than once, and `isKey` is only set
/// when the result holds the table's whole primary key.
struct ColumnInfo {
  std::string name{};       ///< empty for an unnamed column
  std::string baseTable{};  ///< table the value comes from unchanged, or empty (computed, constant)
  std::string baseColumn{};  ///< column of that table, or empty
  bool isKey = false;        ///< part of the primary key of `baseTable`
  bool isIdentity = false;   ///< numbered by the database: left out of inserts
};

/// The columns of a result. Copies share them: a provider hands the columns of a plan to every
/// result of it without copying a name.
class ColumnList {
 public:
  ColumnList() = default;
  ColumnList(std::initializer_list<ColumnInfo> columns)
      : shared_{std::make_shared<const std::vector<ColumnInfo>>(columns)} {}
  // NOLINTNEXTLINE(google-explicit-constructor): the same thing, handed over
  ColumnList(std::vector<ColumnInfo> columns)
      : shared_{std::make_shared<const std::vector<ColumnInfo>>(std::move(columns))} {}

  [[nodiscard]] const std::vector<ColumnInfo>& all() const {
    static const std::vector<ColumnInfo> none;
    return shared_ ? *shared_ : none;
  }
  [[nodiscard]] std::size_t size() const { return shared_ ? shared_->size() : 0; }
  [[nodiscard]] bool empty() const { return size() == 0; }
  [[nodiscard]] const ColumnInfo& operator[](std::size_t index) const { return all()[index]; }
  [[nodiscard]] auto begin() const { return all().begin(); }
  [[nodiscard]] auto end() const { return all().end(); }
  /// Adds a column to this list alone. Costs a copy of the list: to be used for short ones.
  void push_back(ColumnInfo column) {
    std::vector<ColumnInfo> columns = all();
    columns.push_back(std::move(column));
    *this = std::move(columns);
  }

 private:
  std::shared_ptr<const std::vector<ColumnInfo>> shared_;
};

/// Where a result comes from, when its columns do not yet say what a change needs to know of the
/// tables behind them. `NativeConnection::completeColumns` is asked when a first change is sent:
/// most results are only read, and the answer may cost questions to the database.
struct ResultOrigin {
  std::shared_ptr<const std::string> batch;  ///< the text that gave it
  std::size_t index = 0;                     ///< its place among the results of the batch
  std::size_t count = 0;                     ///< results of the batch
};

/// One result of an execution, all rows in memory: in `packed`, as providers hand them over, or in
/// `values` row after row, `columns.size()` values each, where code reads the values directly
/// (a catalogue's answer, rows made by hand). `allValues` reads both.
struct ResultSet {
  ColumnList columns;
  std::vector<Variant> values;
  std::shared_ptr<const cursor::PackedRows> packed{};
  std::optional<ResultOrigin> origin{};  ///< empty: the columns are complete

  [[nodiscard]] std::size_t rowCount() const {
    if (packed) {
      return packed->rowCount();
    }
    return columns.empty() ? 0 : values.size() / columns.size();
  }

  /// The values of all rows, row after row, in whichever form they are held.
  [[nodiscard]] std::vector<Variant> allValues() const {
    if (!packed) {
      return values;
    }
    std::vector<Variant> all(rowCount() * columns.size());
    for (std::size_t row = 0; row < rowCount(); ++row) {
      packed->read(row, std::span{all}.subspan(row * columns.size(), columns.size()));
    }
    return all;
  }
};

/// Everything one execution gave: its results in order and the rows changed by its statements (-1
/// when no statement reports a count).
struct ExecutionResult {
  std::vector<ResultSet> results;
  std::int64_t recordsAffected = -1;
};

}  // namespace azcoll
