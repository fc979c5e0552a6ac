#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cursor/client_cursor.h"
#include "cursor/column_index.h"
#include "cursor/native_connection.h"
#include "cursor/row_store.h"
#include "data/recordset.h"

namespace azcoll::cursor {

struct ChangeStatement;
class ClientRecordset;

/// A column of a client-side recordset; usable as long as the recordset lives.
class ClientField final : public Field {
 public:
  ClientField(ClientRecordset& recordset, std::size_t column)
      : recordset_{recordset}, column_{column} {}

  [[nodiscard]] std::string name() const override;
  [[nodiscard]] Variant value() const override;
  void setValue(const Variant& value) override;

 private:
  ClientRecordset& recordset_;
  std::size_t column_;
};

/// The columns of a client-side recordset.
class ClientFields final : public Fields {
 public:
  explicit ClientFields(ClientRecordset& recordset) : recordset_{recordset} {}

  [[nodiscard]] std::size_t count() const override;
  [[nodiscard]] Field& item(std::string_view name) override;
  [[nodiscard]] Field& item(std::size_t index) override;

 private:
  ClientRecordset& recordset_;
  std::vector<std::unique_ptr<ClientField>> fields_;  // made when asked for; stay where they are
};

/// The Recordset of the native providers: all rows in memory, changes sent in batches.
///
/// A filter decides when it is set which rows are shown; rows changed or added later stay shown.
class ClientRecordset final : public Recordset {
 public:
  /// Results of an execution not yet handed out, shared by the recordsets that came from it.
  using Queue = std::shared_ptr<std::deque<ResultSet>>;

  ClientRecordset() = default;
  /// Open over `rows`; `following` are the results for `nextRecordset`.
  ClientRecordset(ResultSet rows, Queue following, std::shared_ptr<NativeConnection> connection,
                  LockType lock);

  /// Throws `Error` when no native connection is behind `connection`.
  void setActiveConnection(std::shared_ptr<Connection> connection) override;
  void setSource(std::string text) override;
  void setCursorLocation(CursorLocation location) override;
  void setCursorType(CursorType type) override;
  void setLockType(LockType type) override;

  void open(CursorType type, LockType lock, CommandOption options) override;
  void open(std::string source, std::shared_ptr<Connection> connection, CursorType type,
            LockType lock, CommandOption options) override;
  void close() override;
  [[nodiscard]] bool isOpen() const override { return open_; }

  [[nodiscard]] std::int64_t recordCount() const override;
  [[nodiscard]] bool atStart() const override;
  [[nodiscard]] bool atEnd() const override;
  void moveFirst() override;
  void moveNext() override;
  [[nodiscard]] Fields& fields() override;

  void setFilter(std::string_view criteria) override;
  void find(std::string_view criteria, std::int64_t skip, SearchDirection direction,
            Bookmark start) override;

  void addNew() override;
  void update() override;
  void cancelUpdate() override;
  void updateBatch(Affect affect) override;

  [[nodiscard]] std::shared_ptr<Recordset> nextRecordset() override;

  // For the fields.
  [[nodiscard]] const std::vector<ColumnInfo>& columns() const;
  [[nodiscard]] std::optional<std::size_t> columnNamed(std::string_view name);
  [[nodiscard]] const Variant& value(std::size_t column) const;
  void setValue(std::size_t column, const Variant& value);

 private:
  void requireOpen() const;
  void requireClosed() const;
  void requireWritable() const;
  void load(ResultSet rows);

  [[nodiscard]] bool adding() const { return rows_.edit() == RowStore::Edit::Adding; }
  [[nodiscard]] std::int64_t shownCount() const;
  [[nodiscard]] std::size_t shownRow(std::int64_t position) const;
  [[nodiscard]] std::size_t currentRow() const;
  [[nodiscard]] std::size_t requiredColumn(std::string_view name);
  [[nodiscard]] std::int64_t searchStart(Bookmark start) const;
  void finishEdit();
  [[nodiscard]] std::vector<std::size_t> rowsToSend(Affect affect) const;
  void send(const ChangeStatement& statement);

  std::shared_ptr<NativeConnection> connection_;
  std::string source_;
  LockType lock_ = LockType::ReadOnly;

  bool open_ = false;
  RowStore rows_;
  ColumnIndex index_;
  std::optional<std::vector<std::size_t>> shown_;  // rows that the filter shows; empty: all rows
  std::int64_t position_ = 0;                      // among the shown rows; -1 before the first
  Queue following_;
  ClientFields fields_{*this};
};

}  // namespace azcoll::cursor
