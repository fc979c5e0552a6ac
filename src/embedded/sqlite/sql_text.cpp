#include "embedded/sqlite/sql_text.h"

#include <array>
#include <charconv>
#include <limits>

#include "embedded/values/number_values.h"
#include "text/quoting.h"

namespace azcoll::embedded {

namespace {

template <typename Bytes>
std::string blobConstant(const Bytes& bytes) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string text = "x'";
  for (const auto byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    text += kHex[code >> 4U];
    text += kHex[code & 0xFU];
  }
  return text + "'";
}

}  // namespace

std::string quoteName(std::string_view name) { return inQuotes(name, '"'); }

std::string quoteText(std::string_view text) { return inQuotes(text, '\''); }

std::string sqliteConstant(const Value& value) {
  switch (value.tag) {
    case Value::Tag::Null:
      return "NULL";
    case Value::Tag::Integer:
      // The least 64-bit number has no constant of its own.
      return value.integer == std::numeric_limits<std::int64_t>::min()
                 ? "(-9223372036854775807 - 1)"
                 : std::to_string(value.integer);
    // 17 digits are read as the same double again; the exponent keeps SQLite from reading a whole
    // number as an integer.
    case Value::Tag::Real: {
      std::array<char, 40> buffer{};
      const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value.real,
                                         std::chars_format::scientific, 17);
      return {buffer.data(), written.ptr};
    }
    case Value::Tag::Wide: {
      std::array<unsigned char, kWideBytes> bytes{};
      storeWide(value.wide, bytes.data());
      return blobConstant(bytes);
    }
    case Value::Tag::Text:
      break;
  }
  // SQLite reads a statement up to its first zero byte.
  return value.text.find('\0') == std::string::npos
             ? quoteText(value.text)
             : "CAST(" + blobConstant(value.text) + " AS TEXT)";
}

}  // namespace azcoll::embedded
