#include "cursor/column_index.h"

#include <bit>

#include "text/letter_case.h"

namespace azcoll::cursor {
namespace {

/// A hash that letter case does not change: ASCII letters count as small ones, all other letters
/// not at all.
std::size_t hashOf(std::string_view name) {
  std::uint64_t hash = 14695981039346656037ULL;  // FNV-1a
  for (const char character : name) {
    auto byte = static_cast<unsigned char>(character);
    if (byte >= 0x80) {
      continue;
    }
    if (byte >= 'A' && byte <= 'Z') {
      byte = static_cast<unsigned char>(byte + ('a' - 'A'));
    }
    hash = (hash ^ byte) * 1099511628211ULL;
  }
  return static_cast<std::size_t>(hash ^ (hash >> 32U));
}

}  // namespace

std::optional<std::size_t> ColumnIndex::find(const std::vector<ColumnInfo>& columns,
                                             std::string_view name) {
  if (columns.empty()) {
    return std::nullopt;
  }
  if (places_.empty()) {
    build(columns);
  }
  const std::size_t mask = places_.size() - 1;
  for (std::size_t place = hashOf(name) & mask; places_[place] != 0; place = (place + 1) & mask) {
    const std::size_t position = places_[place] - 1;
    if (equalsIgnoringCase(columns[position].name, name)) {
      return position;
    }
  }
  return std::nullopt;
}

void ColumnIndex::build(const std::vector<ColumnInfo>& columns) {
  // Never more than half full, so that a search ends soon; a power of two makes the remainder a
  // mask.
  places_.assign(std::bit_ceil(columns.size() * 2), 0);
  const std::size_t mask = places_.size() - 1;
  for (std::size_t position = 0; position < columns.size(); ++position) {
    std::size_t place = hashOf(columns[position].name) & mask;
    while (places_[place] != 0) {
      place = (place + 1) & mask;
    }
    // Later columns of the same name lie further on, where a search no longer comes.
    places_[place] = static_cast<std::uint32_t>(position + 1);
  }
}

}  // namespace azcoll::cursor
