#include "cursor/packed_rows.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "data/error.h"
#include "data/messages.h"

namespace azcoll::cursor {
namespace {

constexpr std::size_t kFirstBlock = 512;
constexpr std::size_t kLargestBlock = std::size_t{256} * 1024;
constexpr std::size_t kShortText = 255;

/// What follows the byte for the kind.
enum Tag : std::uint8_t {
  kNullTag,
  kFalse,
  kTrue,
  kInt16,
  kInt32,
  kInt64,
  kDouble,
  kDecimal64,   // scale, 64 bits
  kDecimal128,  // scale, 128 bits
  kDay,         // a date without a time
  kMoment,
  kText8,  // length in one byte, text
  kText32
};

struct Day {
  std::int16_t year;
  std::int8_t month;
  std::int8_t day;
};

template <typename T>
T load(const std::byte*& at) {
  T value{};
  // Values lie side by side, whatever alignment they would need.
  std::memcpy(&value, at, sizeof value);
  at += sizeof value;
  return value;
}

template <typename Number>
Variant loadDecimal(const std::byte*& at) {
  const int scale = load<std::uint8_t>(at);
  // It was a decimal when it was written.
  return Decimal::fromUnscaled(Int128{load<Number>(at)}, scale).value_or(Decimal{});
}

template <typename Length>
Variant loadText(const std::byte*& at) {
  const std::size_t length = load<Length>(at);
  std::string text(reinterpret_cast<const char*>(at), length);
  at += length;
  return text;
}

Variant loadValue(const std::byte*& at) {
  switch (load<std::uint8_t>(at)) {
    case kFalse:
      return false;
    case kTrue:
      return true;
    case kInt16:
      return load<std::int16_t>(at);
    case kInt32:
      return load<std::int32_t>(at);
    case kInt64:
      return load<std::int64_t>(at);
    case kDouble:
      return load<double>(at);
    case kDecimal64:
      return loadDecimal<std::int64_t>(at);
    case kDecimal128:
      return loadDecimal<Int128>(at);
    case kDay: {
      const Day day = load<Day>(at);
      return Date{.year = day.year, .month = day.month, .day = day.day};
    }
    case kMoment:
      return load<Date>(at);
    case kText8:
      return loadText<std::uint8_t>(at);
    case kText32:
      return loadText<std::uint32_t>(at);
    default:
      return kNull;
  }
}

}  // namespace

void PackedRows::grow(std::size_t size) {
  const auto written = static_cast<std::size_t>(at_ - row_);
  // Blocks grow with the result: a short one takes little, a long one few of them.
  blockSize_ = std::max(std::clamp(2 * blockSize_, kFirstBlock, kLargestBlock), written + size);
  auto block = std::make_unique_for_overwrite<std::byte[]>(blockSize_);
  // A row lies in one block, so the one being written moves along.
  if (written > 0) {
    std::memcpy(block.get(), row_, written);
  }
  if (!blocks_.empty() && row_ == blocks_.back().get()) {
    blocks_.pop_back();  // it held nothing but this row
  }
  row_ = block.get();
  at_ = row_ + written;
  end_ = row_ + blockSize_;
  blocks_.push_back(std::move(block));
}

template <typename T>
void PackedRows::store(std::uint8_t tag, const T& value) {
  std::byte* const place = take(1 + sizeof value);
  place[0] = std::byte{tag};
  std::memcpy(place + 1, &value, sizeof value);
}

void PackedRows::appendNull() { *take(1) = std::byte{kNullTag}; }
void PackedRows::append(bool value) { *take(1) = std::byte{value ? kTrue : kFalse}; }
void PackedRows::append(std::int16_t value) { store(kInt16, value); }
void PackedRows::append(std::int32_t value) { store(kInt32, value); }
void PackedRows::append(std::int64_t value) { store(kInt64, value); }
void PackedRows::append(double value) { store(kDouble, value); }

void PackedRows::append(const Decimal& value) {
  const auto scale = static_cast<std::uint8_t>(value.scale());
  const auto small = static_cast<std::int64_t>(value.unscaled());
  // Nearly all decimals: half the size.
  const bool isSmall = Int128{small} == value.unscaled();
  std::byte* const place = take(2 + (isSmall ? sizeof small : sizeof(Int128)));
  place[0] = std::byte{isSmall ? kDecimal64 : kDecimal128};
  place[1] = std::byte{scale};
  if (isSmall) {
    std::memcpy(place + 2, &small, sizeof small);
  } else {
    const Int128 large = value.unscaled();
    std::memcpy(place + 2, &large, sizeof large);
  }
}

void PackedRows::append(const Date& value) {
  const Day day{value.year, value.month, value.day};
  // Most dates have no time: four bytes are enough.
  if (value == Date{.year = day.year, .month = day.month, .day = day.day}) {
    store(kDay, day);
  } else {
    store(kMoment, value);
  }
}

void PackedRows::append(std::string_view text) {
  appendWritten(text.size(), [&](char* room) {
    std::copy(text.begin(), text.end(), room);
    return text.size();
  });
}

PackedRows::TextRoom PackedRows::beginText(std::size_t most) {
  // By the room, not by the text: its length is known only when it has been written.
  const bool isShort = most <= kShortText;
  const std::size_t before = 1 + (isShort ? sizeof(std::uint8_t) : sizeof(std::uint32_t));
  std::byte* const place = take(before + most);
  place[0] = std::byte{isShort ? kText8 : kText32};
  return {place, reinterpret_cast<char*>(place) + before};
}

void PackedRows::endText(const TextRoom& room, std::size_t size) {
  std::byte* const text = reinterpret_cast<std::byte*>(room.text);
  if (*room.tag == std::byte{kText8}) {
    room.tag[1] = static_cast<std::byte>(size);
  } else {
    const auto length = static_cast<std::uint32_t>(size);
    std::memcpy(room.tag + 1, &length, sizeof length);
  }
  // What the text did not need goes to the next value.
  at_ = text + size;
}

void PackedRows::append(const Variant& value) {
  switch (value.kind()) {
    case Variant::Kind::Empty:
    case Variant::Kind::Null:
      return appendNull();
    case Variant::Kind::Boolean:
      return append(*value.get<bool>());
    case Variant::Kind::Int16:
      return append(*value.get<std::int16_t>());
    case Variant::Kind::Int32:
      return append(*value.get<std::int32_t>());
    case Variant::Kind::Int64:
      return append(*value.get<std::int64_t>());
    case Variant::Kind::Double:
      return append(*value.get<double>());
    case Variant::Kind::Decimal:
      return append(*value.get<Decimal>());
    case Variant::Kind::Date:
      return append(*value.get<Date>());
    case Variant::Kind::Text:
      return append(std::string_view{*value.get<std::string>()});
    default:
      throw Error(messages::kTypeMismatch);
  }
}

void PackedRows::endRow() {
  // Rows are not moved from here on.
  starts_.push_back(row_);
  row_ = at_;
}

void PackedRows::read(std::size_t row, std::span<Variant> values) const {
  const std::byte* at = starts_[row];
  for (Variant& value : values) {
    value = loadValue(at);
  }
}

}  // namespace azcoll::cursor
