#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "data/variant.h"

namespace azcoll::cursor {

/// Rows in a form that takes little more room than their data: a byte for the kind before
/// each value, and texts without allocations of their own. Rows are written once, value after
/// value, and read row by row.
class PackedRows {
 public:
  PackedRows() = default;
  PackedRows(const PackedRows&) = delete;
  PackedRows(PackedRows&&) = delete;
  PackedRows& operator=(const PackedRows&) = delete;
  PackedRows& operator=(PackedRows&&) = delete;
  ~PackedRows() = default;

  /// Adds a value to the row being written. Empty becomes Null; objects throw `Error`.
  void append(const Variant& value);
  void appendNull();
  void append(bool value);
  void append(std::int16_t value);
  void append(std::int32_t value);
  void append(std::int64_t value);
  void append(double value);
  void append(const Decimal& value);
  void append(const Date& value);
  void append(std::string_view text);

  /// Adds a text that `write` puts into the room given, at most `most` bytes; it returns how many
  /// they are.
  template <typename Write>
  void appendWritten(std::size_t most, Write write) {
    const TextRoom room = beginText(most);
    endText(room, write(room.text));
  }

  /// Ends the row being written; every row has the same number of values.
  void endRow();

  /// Rows that were ended.
  [[nodiscard]] std::size_t rowCount() const { return starts_.size(); }

  /// Reads the values of a row, as many as it was written with.
  void read(std::size_t row, std::span<Variant> values) const;

 private:
  struct TextRoom {
    std::byte* tag;
    char* text;
  };

  [[nodiscard]] std::byte* take(std::size_t size) {
    if (static_cast<std::size_t>(end_ - at_) < size) {
      grow(size);
    }
    std::byte* const place = at_;
    at_ += size;
    return place;
  }
  void grow(std::size_t size);
  template <typename T>
  void store(std::uint8_t tag, const T& value);
  [[nodiscard]] TextRoom beginText(std::size_t most);
  void endText(const TextRoom& room, std::size_t size);

  std::vector<std::unique_ptr<std::byte[]>> blocks_;
  std::size_t blockSize_ = 0;  // of the last one
  std::vector<const std::byte*> starts_;
  std::byte* row_ = nullptr;  // being written
  std::byte* at_ = nullptr;
  std::byte* end_ = nullptr;
};

}  // namespace azcoll::cursor
