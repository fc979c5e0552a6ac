#include "odbc/fetch.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "odbc/diagnostics.h"

namespace azcoll::odbc {
namespace {

constexpr std::size_t kBlockBytes = std::size_t{128} * 1024;
constexpr std::size_t kFirstRows = 32;  // most results are small, and buffers are not for nothing
constexpr std::size_t kMostRows = 512;
constexpr std::size_t kLongestBoundText = 4000;  // beyond it a column has in fact no limit

constexpr std::size_t kFirstPiece = std::size_t{8} * 1024;
constexpr std::size_t kLargestPiece = std::size_t{1024} * 1024;
constexpr std::size_t kLongestValue = std::size_t{1024} * 1024 * 1024;

/// A bound column: where its values and their lengths arrive.
struct BoundColumn {
  Carrier carrier = Carrier::Text;
  std::size_t width = 0;
  std::size_t fixed = 0;  ///< bytes of every value, when they are always the same
  std::size_t room = 0;   ///< bytes of the longest value that is whole
  std::unique_ptr<std::byte[]> values;
  std::vector<SQLLEN> lengths;

  [[nodiscard]] std::span<const std::byte> value(std::size_t row) const {
    return {values.get() + row * width, width};
  }
};

/// Whether a value may be longer than its column was said to be.
bool mayOutgrow(const Column& column) {
  return column.carrier == Carrier::Text || column.carrier == Carrier::Binary;
}

bool isBindable(const Column& column) {
  return !mayOutgrow(column) || (column.size > 0 && column.size <= kLongestBoundText);
}

std::size_t widthOf(const Column& column) {
  switch (column.carrier) {
    case Carrier::Text:
      // Some drivers count characters, and one of them may take two units.
      return (2 * column.size + 1) * sizeof(char16_t);
    case Carrier::Binary:
      return column.size;
    case Carrier::Decimal:
      return kDecimalBytes;
    default:
      return fixedWidth(column.carrier);
  }
}

/// Whether a fetch brought rows. Throws `DriverFailure` for a failure, and for one that the driver
/// reports beside the rows before it: FreeTDS gives the part of a block that came before the
/// statement failed as a success with information, and the end of the rows next.
bool fetchRows(const Handle& statement) {
  const SQLRETURN result = SQLFetch(statement.get());
  if (result == SQL_NO_DATA) {
    return false;
  }
  statement.require(result, "SQLFetch");
  if (result == SQL_SUCCESS_WITH_INFO) {
    std::vector<ErrorInfo> reported = recordsOf(SQL_HANDLE_STMT, statement.get());
    const auto warnings = std::stable_partition(
        reported.begin(), reported.end(),
        [](const ErrorInfo& entry) { return !entry.sqlState.starts_with("01"); });
    if (warnings != reported.begin()) {
      throw DriverFailure{std::move(reported)};
    }
  }
  return true;
}

[[noreturn]] void failLength() {
  throw DriverFailure{"HY000", "Il driver ODBC ha dato una lunghezza impossibile"};
}

Variant readFixed(const Handle& statement, SQLUSMALLINT number, Carrier carrier) {
  std::array<std::byte, 32> buffer{};
  SQLLEN length = 0;
  statement.require(SQLGetData(statement.get(), number, cTypeOf(carrier), buffer.data(),
                               static_cast<SQLLEN>(buffer.size()), &length),
                    "SQLGetData");
  if (length == SQL_NULL_DATA) {
    return kNull;
  }
  return decode(carrier, std::span{buffer}.first(fixedWidth(carrier)));
}

/// One value of the current row, whatever its length, read in pieces with SQLGetData; `number`
/// counts columns from 1. What the driver says about the length is used, but never believed. Throws
/// `DriverFailure`, also for a value without an end (more than 1 GiB).
Variant readInPieces(const Handle& statement, SQLUSMALLINT number, Carrier carrier) {
  if (fixedWidth(carrier) != 0) {
    return readFixed(statement, number, carrier);
  }
  const std::size_t terminator = terminatorWidth(carrier);
  Bytes value;
  std::size_t used = 0;
  for (std::size_t piece = kFirstPiece;; piece = std::min(piece * 2, kLargestPiece)) {
    if (used > kLongestValue) {
      failLength();
    }
    value.resize(used + piece);
    SQLLEN length = 0;
    const SQLRETURN result = SQLGetData(statement.get(), number, cTypeOf(carrier),
                                        value.data() + used, static_cast<SQLLEN>(piece), &length);
    if (result == SQL_NO_DATA) {  // the piece before was the last one
      break;
    }
    statement.require(result, "SQLGetData");
    if (length == SQL_NULL_DATA) {
      return kNull;
    }
    const bool fits = length >= 0 && static_cast<std::size_t>(length) <= piece - terminator;
    if (fits) {
      used += static_cast<std::size_t>(length);
      break;
    }
    if (length < 0 && length != SQL_NO_TOTAL) {
      failLength();
    }
    if (result == SQL_SUCCESS) {  // whole, it says, and longer than what it wrote
      failLength();
    }
    used += piece - terminator;
  }
  return decode(carrier, std::span<const std::byte>{value}.first(used));
}

/// Fetches through bound columns. The bindings end with the object, before the buffers do.
class BlockReader {
 public:
  BlockReader(const Handle& statement, const std::vector<Column>& columns, std::size_t mostRows,
              bool repeatable)
      : statement_{statement}, columns_{columns}, repeatable_{repeatable} {
    std::size_t rowBytes = 0;
    for (const Column& column : columns) {
      rowBytes += widthOf(column) + sizeof(SQLLEN);
    }
    rows_ = std::clamp<std::size_t>(kBlockBytes / rowBytes, 1, mostRows);
    if (rows_ > 1 && !succeeded(setAttribute(SQL_ATTR_ROW_ARRAY_SIZE, rows_))) {
      rows_ = 1;
    }
    status_.resize(rows_);
    bind();
  }
  BlockReader(const BlockReader&) = delete;
  BlockReader(BlockReader&&) = delete;
  BlockReader& operator=(const BlockReader&) = delete;
  BlockReader& operator=(BlockReader&&) = delete;
  ~BlockReader() {
    SQLFreeStmt(statement_.get(), SQL_UNBIND);
    setPointer(SQL_ATTR_ROWS_FETCHED_PTR, nullptr);
    setPointer(SQL_ATTR_ROW_STATUS_PTR, nullptr);
    if (rows_ > 1) {
      setAttribute(SQL_ATTR_ROW_ARRAY_SIZE, 1);
    }
  }

  /// Appends the next block to `rows`; the rows it has, 0 after the last one.
  std::size_t next(cursor::PackedRows& rows) {
    fetched_ = 0;
    if (!fetchRows(statement_)) {
      return 0;
    }
    // A driver that knows no blocks fetches one row and does not count.
    const std::size_t count = std::clamp<std::size_t>(fetched_, 1, rows_);
    for (std::size_t row = 0; row < count; ++row) {
      if (rows_ > 1 && status_[row] == SQL_ROW_ERROR) {
        throw DriverFailure{diagnosticsOf(SQL_HANDLE_STMT, statement_.get(), "SQLFetch")};
      }
      for (std::size_t column = 0; column < bound_.size(); ++column) {
        append(rows, row, column);
      }
      rows.endRow();
    }
    return count;
  }

  /// Rows of a block.
  [[nodiscard]] std::size_t size() const { return rows_; }

 private:
  SQLRETURN setAttribute(SQLINTEGER attribute, SQLULEN value) {
    return SQLSetStmtAttrW(statement_.get(), attribute, attributeValue(value), SQL_IS_UINTEGER);
  }
  SQLRETURN setPointer(SQLINTEGER attribute, void* target) {
    return SQLSetStmtAttrW(statement_.get(), attribute, target, SQL_IS_POINTER);
  }

  void bind() {
    if (rows_ > 1) {
      statement_.require(setPointer(SQL_ATTR_ROWS_FETCHED_PTR, &fetched_), "SQLSetStmtAttr");
      statement_.require(setPointer(SQL_ATTR_ROW_STATUS_PTR, status_.data()), "SQLSetStmtAttr");
    }
    bound_.resize(columns_.size());
    for (std::size_t index = 0; index < columns_.size(); ++index) {
      BoundColumn& bound = bound_[index];
      bound.carrier = columns_[index].carrier;
      bound.width = widthOf(columns_[index]);
      bound.fixed = fixedWidth(bound.carrier);
      bound.room = bound.width - terminatorWidth(bound.carrier);
      bound.values = std::make_unique_for_overwrite<std::byte[]>(bound.width * rows_);
      bound.lengths.assign(rows_, 0);
      statement_.require(
          SQLBindCol(statement_.get(), static_cast<SQLUSMALLINT>(index + 1), cTypeOf(bound.carrier),
                     bound.values.get(), static_cast<SQLLEN>(bound.width), bound.lengths.data()),
          "SQLBindCol");
    }
  }

  void append(cursor::PackedRows& rows, std::size_t row, std::size_t column) {
    const BoundColumn& bound = bound_[column];
    const SQLLEN length = bound.lengths[row];
    if (length == SQL_NULL_DATA) {
      return rows.appendNull();
    }
    if (bound.fixed != 0) {
      return decodeInto(rows, bound.carrier, bound.value(row));
    }
    if (length >= 0 && static_cast<std::size_t>(length) <= bound.room) {
      return decodeInto(rows, bound.carrier,
                        bound.value(row).first(static_cast<std::size_t>(length)));
    }
    if (repeatable_) {
      throw CutValue{};
    }
    rows.append(again(row, column));
  }

  /// The value of a column that did not fit.
  Variant again(std::size_t row, std::size_t column) {
    if (rows_ > 1) {
      statement_.require(SQLSetPos(statement_.get(), row + 1, SQL_POSITION, SQL_LOCK_NO_CHANGE),
                         "SQLSetPos");
    }
    return readInPieces(statement_, static_cast<SQLUSMALLINT>(column + 1), bound_[column].carrier);
  }

  const Handle& statement_;
  const std::vector<Column>& columns_;
  bool repeatable_;
  std::size_t rows_ = 1;
  SQLULEN fetched_ = 0;
  std::vector<SQLUSMALLINT> status_;
  std::vector<BoundColumn> bound_;
};

void fetchInPieces(const Handle& statement, const std::vector<Column>& columns,
                   cursor::PackedRows& rows) {
  while (fetchRows(statement)) {
    for (std::size_t index = 0; index < columns.size(); ++index) {
      rows.append(
          readInPieces(statement, static_cast<SQLUSMALLINT>(index + 1), columns[index].carrier));
    }
    rows.endRow();
  }
}

}  // namespace

std::shared_ptr<const cursor::PackedRows> fetchAll(const Handle& statement,
                                                   const std::vector<Column>& columns,
                                                   RereadAbilities reread, Reading reading) {
  auto rows = std::make_shared<cursor::PackedRows>();
  const bool bindable = std::all_of(columns.begin(), columns.end(), isBindable);
  const bool outgrowing = std::any_of(columns.begin(), columns.end(), mayOutgrow);
  const bool repeatable = reading == Reading::Repeatable && !reread.bound;
  if (!bindable || (outgrowing && !reread.bound && !repeatable)) {
    fetchInPieces(statement, columns, *rows);
    return rows;
  }
  const bool inBlocks = !outgrowing || reread.inBlock || repeatable;
  if (inBlocks) {
    BlockReader first{statement, columns, kFirstRows, repeatable};
    std::size_t count = 0;
    do {
      count = first.next(*rows);
    } while (count > 0 && count < first.size());
    if (count == 0) {
      return rows;
    }
  }
  BlockReader others{statement, columns, inBlocks ? kMostRows : 1, repeatable};
  while (others.next(*rows) > 0) {
  }
  return rows;
}

}  // namespace azcoll::odbc
