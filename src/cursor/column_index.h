#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "cursor/result_set.h"

namespace azcoll::cursor {

/// Finds the columns of a result by name, letter case ignored. Of several columns with one name the
/// first is found. Made ready at the first question: many results are never asked.
///
/// A table of its own, because results are small and many: with a `std::unordered_map` of the same
/// hash, reading a few fields of one row takes 1.7 times (20 columns) to 2.8 times (83 columns) as
/// long, for it allocates a node per column, and reading a thousand rows 1.3 times.
class ColumnIndex {
 public:
  /// Forgets the columns seen so far.
  void reset() { places_.clear(); }

  /// Position of the column `name`; empty when there is none. `columns` must be the same at every
  /// call since the last `reset`.
  [[nodiscard]] std::optional<std::size_t> find(const std::vector<ColumnInfo>& columns,
                                                std::string_view name);

 private:
  void build(const std::vector<ColumnInfo>& columns);

  // Open addressing; a place holds a position plus one, 0 when free. The size is a power of two.
  std::vector<std::uint32_t> places_;
};

}  // namespace azcoll::cursor
