#include "fuzz/constants.h"

#include <algorithm>
#include <array>
#include <span>

#include "fuzz/check.h"
#include "tsql/shape.h"

namespace azcoll::fuzz {
namespace {

using Constants = std::span<const std::string_view>;

constexpr std::array<std::string_view, 9> kIntegers{"0",
                                                    "1",
                                                    "2",
                                                    "3",
                                                    "12",
                                                    "2147483647",
                                                    "2147483648",
                                                    "123456789012345678",
                                                    "99999999999999999999"};
constexpr std::array<std::string_view, 7> kDecimals{
    "0.5", "1.25", "12.345", "1.50000000", "0.0000001", "100.", "99999999999999999999.5"};
constexpr std::array<std::string_view, 4> kFloats{"1E0", "2.5E-3", "1e20", "1.5e300"};
constexpr std::array<std::string_view, 10> kTexts{
    "''",    "'1'",    "'x'",          "'it''s'", "'20240229'",
    "' 7 '", "'1.50'", "'abcdefghij'", "'A%'",    "'\xC3\xA8'"};
constexpr std::array<std::string_view, 5> kNationalTexts{"N''", "N'x'", "N'\xC3\xA8'", "N'12'",
                                                         "N'20240101'"};
constexpr std::array<std::string_view, 2> kBinaries{"0x", "0x1F"};
constexpr std::array<std::string_view, 7> kValues{"NULL", "1",           "-3",        "1.25",
                                                  "'x'",  "N'\xC3\xA8'", "'20240229'"};

Constants constantsOf(tsql::LiteralKind kind) {
  switch (kind) {
    case tsql::LiteralKind::Integer:
      return kIntegers;
    case tsql::LiteralKind::Decimal:
      return kDecimals;
    case tsql::LiteralKind::Float:
      return kFloats;
    case tsql::LiteralKind::Text:
      return kTexts;
    case tsql::LiteralKind::NationalText:
      return kNationalTexts;
    case tsql::LiteralKind::Binary:
      return kBinaries;
    default:
      return kValues;
  }
}

/// The constant as it is written.
std::string written(const tsql::LiteralToken& token) {
  const std::string raw(token.raw);
  switch (token.kind) {
    case tsql::LiteralKind::Text:
      return "'" + raw + "'";
    case tsql::LiteralKind::NationalText:
      return "N'" + raw + "'";
    case tsql::LiteralKind::Null:
      return "NULL";
    default:
      return raw;
  }
}

}  // namespace

std::uint64_t hashOf(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325U;
  for (const char c : text) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
  }
  return hash;
}

std::string withOtherConstants(std::string_view text, std::uint64_t seed,
                               const std::vector<std::size_t>& kept) {
  constexpr char kLastClass = 7;  // the key has a byte of 1 to 7 in the place of every constant
  tsql::Shape shape;
  tsql::scanShape(text, shape);
  if (!shape.cacheable) {
    return std::string(text);
  }
  std::string other;
  std::size_t ordinal = 0;
  for (const char c : shape.key) {
    if (static_cast<unsigned char>(c) > kLastClass) {
      other += c;
      continue;
    }
    const tsql::LiteralToken& token = shape.literals.at(ordinal);
    seed = seed * 6364136223846793005U + 1442695040888963407U;
    const std::uint64_t dice = seed >> 33U;
    if (std::find(kept.begin(), kept.end(), ordinal) != kept.end() || dice % 4 == 0) {
      other += written(token);
    } else {
      // What stands alone in a row of VALUES may become anything; else the kind stays.
      const Constants choice = c == kLastClass ? Constants{kValues} : constantsOf(token.kind);
      other += choice[dice / 4 % choice.size()];
    }
    ++ordinal;
  }
  require(ordinal == shape.literals.size(), "every constant has a byte in the key", text);
  return other;
}

}  // namespace azcoll::fuzz
