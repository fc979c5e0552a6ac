#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "data/object.h"
#include "data/options.h"
#include "data/variant.h"

namespace azcoll {

class Connection;

/// One column of a recordset, bound to the recordset's current row.
class Field {
 public:
  Field() = default;
  Field(const Field&) = delete;
  Field(Field&&) = delete;
  Field& operator=(const Field&) = delete;
  Field& operator=(Field&&) = delete;
  virtual ~Field() = default;

  /// Column name as the result gives it; empty for an unnamed result column.
  [[nodiscard]] virtual std::string name() const = 0;
  /// Value in the current row; throws `Error` when there is no current row.
  [[nodiscard]] virtual Variant value() const = 0;
  /// Changes the value in the current row (or in the row being added).
  virtual void setValue(const Variant& value) = 0;
};

/// The columns of a recordset.
class Fields {
 public:
  Fields() = default;
  Fields(const Fields&) = delete;
  Fields(Fields&&) = delete;
  Fields& operator=(const Fields&) = delete;
  Fields& operator=(Fields&&) = delete;
  virtual ~Fields() = default;

  [[nodiscard]] virtual std::size_t count() const = 0;
  /// Column by name, letter case ignored; throws `Error` when the recordset has no such column.
  [[nodiscard]] virtual Field& item(std::string_view name) = 0;
  /// Column by position from 0; throws `Error` when out of range.
  [[nodiscard]] virtual Field& item(std::size_t index) = 0;
};

/// Rows of a query, in ADO's shape: open, walk, read, filter, find, change, send back in a batch.
///
/// A recordset is created by `Connection::newRecordset` (closed, to be configured and opened) or
/// handed out open by an execution. Names of columns are compared without regard to letter case.
/// Every operation throws `Error` when it cannot be done.
class Recordset : public Object {
 public:
  // Configuration, before `open`.
  /// Connection to work on; null detaches an open client-side recordset, whose rows stay readable.
  virtual void setActiveConnection(std::shared_ptr<Connection> connection) = 0;
  virtual void setSource(std::string text) = 0;
  virtual void setCursorLocation(CursorLocation location) = 0;
  virtual void setCursorType(CursorType type) = 0;
  virtual void setLockType(LockType type) = 0;

  /// Runs the source set before and positions on the first row. `Unspecified` keeps what was set.
  virtual void open(CursorType type, LockType lock, CommandOption options) = 0;
  /// Sets source, connection, cursor and lock type, then opens.
  virtual void open(std::string source, std::shared_ptr<Connection> connection, CursorType type,
                    LockType lock, CommandOption options) = 0;
  virtual void close() = 0;
  [[nodiscard]] virtual bool isOpen() const = 0;

  // Position.
  /// Number of rows that the current filter shows.
  [[nodiscard]] virtual std::int64_t recordCount() const = 0;
  /// ADO's BOF: before the first row (also true when there are no rows).
  [[nodiscard]] virtual bool atStart() const = 0;
  /// ADO's EOF: after the last row (also true when there are no rows).
  [[nodiscard]] virtual bool atEnd() const = 0;
  virtual void moveFirst() = 0;
  virtual void moveNext() = 0;

  [[nodiscard]] virtual Fields& fields() = 0;

  /// Shows only the rows that satisfy `criteria` (ADO's grammar: comparisons and LIKE joined by
  /// AND, groups joined by OR); an empty text shows all rows again. Positions on the first row
  /// shown.
  virtual void setFilter(std::string_view criteria) = 0;

  /// Positions on the first row that satisfies one comparison, from `start` after skipping `skip`
  /// rows; after the last row (before the first, when searching backward) when there is none.
  virtual void find(std::string_view criteria, std::int64_t skip, SearchDirection direction,
                    Bookmark start) = 0;

  // Changes. Under batch-optimistic locking they stay here until `updateBatch`.
  virtual void addNew() = 0;
  virtual void update() = 0;
  virtual void cancelUpdate() = 0;
  /// Sends the pending changes; a row changed by someone else since it was read is an error.
  virtual void updateBatch(Affect affect) = 0;

  /// The next result of the same execution, or null when there is none.
  [[nodiscard]] virtual std::shared_ptr<Recordset> nextRecordset() = 0;
};

}  // namespace azcoll
