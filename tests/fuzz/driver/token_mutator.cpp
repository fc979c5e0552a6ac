// Changes of T-SQL texts that a fuzzer makes by tokens: most of them stay statements, where changes
// of bytes seldom do. libFuzzer finds the two functions by their names.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/lexer.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace azcoll::fuzz {
namespace {

using tsql::TokenKind;

struct Piece {
  TokenKind kind = TokenKind::End;
  std::string text;  ///< with the blanks in front of it
};
using Pieces = std::vector<Piece>;

constexpr std::array<std::string_view, 26> kConstants{
    "0",        "1",         "-1",    "2",      "12",     "2147483648", "99999999999999999999",
    "1.5",      "1.25",      "-0.01", "12.345", "1E2",    "'1'",        "'x'",
    "''",       "'It''s'",   "N'è'",  "' 7 '",  "'1.50'", "'20240229'", "'20240101 10:20'",
    "'abcdef'", "'a%[b-d]'", "NULL",  "0x1F",   "@A"};
constexpr std::array<std::string_view, 22> kNames{
    "I", "S",   "D",   "W",   "T",   "C",   "F",   "A", "N", "B",   "K",
    "Y", "V.I", "V.T", "R.I", "R.T", "V.D", "R.Y", "V", "R", "[T]", "X.I"};
constexpr std::array<std::string_view, 14> kOperators{"=", "<>", "<", ">", "<=",  ">=", "+",
                                                      "-", "*",  "/", "%", "AND", "OR", ","};
constexpr std::array<std::string_view, 48> kPhrases{
    "ISNULL(T, 'x')",
    "COALESCE(S, D, 1)",
    "NULLIF(I, 2)",
    "(SELECT MAX(K) FROM R WHERE R.I = V.I)",
    "(SELECT TOP 1 T FROM R ORDER BY K DESC)",
    "CASE WHEN I = 1 THEN 'a' ELSE T END",
    "CASE S WHEN 1 THEN 1.5 ELSE D END",
    "IIF(D > 0, I, NULL)",
    "CAST(D AS DECIMAL(9, 1))",
    "CAST(T AS VARCHAR(2))",
    "CAST(I AS NVARCHAR(10))",
    "CONVERT(VARCHAR(10), A, 112)",
    "COUNT(*)",
    "COUNT(DISTINCT T)",
    "SUM(D)",
    "MIN(A)",
    "AVG(W)",
    "LEN(T)",
    "UPPER(N)",
    "SUBSTRING(T, 1, 2)",
    "REPLACE(T, 't', 'x')",
    "YEAR(A)",
    "DATEADD(month, 1, A)",
    "DATEDIFF(day, A, '20240301')",
    "ROUND(D, 1)",
    "ABS(W)",
    "NOT",
    "DISTINCT",
    "TOP 2",
    "IS NULL",
    "IS NOT NULL",
    "IN (1, 2, NULL)",
    "NOT IN (SELECT I FROM R)",
    "BETWEEN 1 AND 2.5",
    "LIKE '%t%'",
    "EXISTS (SELECT 1 FROM R WHERE R.I = V.I AND Y = 2024)",
    "WHERE V.I IN (SELECT R.I FROM R WHERE R.T = V.T AND R.Y > 2023)",
    "GROUP BY S",
    "HAVING COUNT(*) > 1",
    "ORDER BY 1",
    "ORDER BY T DESC, I",
    "UNION SELECT 1, 'x'",
    "UNION ALL",
    "LEFT JOIN R ON R.I = V.I AND R.T = 'x'",
    "CROSS JOIN (SELECT 1 AS Q) AS Z",
    "OUTER APPLY DBO.FN(V.I, V.T) AS Y1",
    "-- remark\n",
    "\nGO\n"};

class Mutator {
 public:
  explicit Mutator(unsigned seed) : random_(seed) {}

  static Pieces cut(std::string_view text) {
    Pieces pieces;
    tsql::Lexer lexer(text);
    std::size_t end = 0;
    for (tsql::Token token = lexer.next(); token.kind != TokenKind::End; token = lexer.next()) {
      const auto next = static_cast<std::size_t>(token.raw.data() - text.data()) + token.raw.size();
      pieces.push_back({token.kind, std::string(text.substr(end, next - end))});
      end = next;
    }
    return pieces;
  }

  static std::string join(const Pieces& pieces) {
    std::string text;
    for (const Piece& piece : pieces) {
      text += piece.text;
    }
    return text;
  }

  void change(Pieces& pieces) {
    switch (below(7)) {
      case 0: {
        const Pieces part = somePart(pieces);
        insert(pieces, part);
        break;
      }
      case 1:
        erase(pieces);
        break;
      case 2:
        swapAlike(pieces);
        break;
      case 3:
        insert(pieces, {{TokenKind::Word, " " + std::string(anyOf(kPhrases)) + " "}});
        break;
      default:
        replace(pieces);
        break;
    }
  }

  /// A part of the second text goes into the first, or comes behind it as a batch of its own.
  void cross(Pieces& pieces, const Pieces& other) {
    if (below(4) == 0) {
      pieces.push_back({TokenKind::Word, "\nGO\n"});
      pieces.insert(pieces.end(), other.begin(), other.end());
    } else {
      insert(pieces, somePart(other));
    }
  }

  std::size_t below(std::size_t limit) { return limit == 0 ? 0 : random_() % limit; }

 private:
  template <typename Values>
  std::string_view anyOf(const Values& values) {
    return values[below(values.size())];
  }

  /// A whole group in parentheses when there is one at the place chosen, else some tokens.
  Pieces somePart(const Pieces& pieces) {
    if (pieces.empty()) {
      return {};
    }
    const std::size_t start = below(pieces.size());
    std::size_t end = start + 1;
    if (pieces[start].text.ends_with('(')) {
      for (int depth = 1; depth > 0 && end < pieces.size(); ++end) {
        depth += pieces[end].text.ends_with('(') ? 1 : pieces[end].text.ends_with(')') ? -1 : 0;
      }
    } else {
      end = std::min(pieces.size(), end + below(6));
    }
    return {pieces.begin() + static_cast<std::ptrdiff_t>(start),
            pieces.begin() + static_cast<std::ptrdiff_t>(end)};
  }

  void insert(Pieces& pieces, const Pieces& part) {
    const auto at = static_cast<std::ptrdiff_t>(below(pieces.size() + 1));
    pieces.insert(pieces.begin() + at, part.begin(), part.end());
  }

  void erase(Pieces& pieces) {
    const std::size_t start = below(pieces.size());
    const std::size_t end = std::min(pieces.size(), start + 1 + below(4));
    pieces.erase(pieces.begin() + static_cast<std::ptrdiff_t>(start),
                 pieces.begin() + static_cast<std::ptrdiff_t>(end));
  }

  void swapAlike(Pieces& pieces) {
    if (pieces.empty()) {
      return;
    }
    const std::size_t left = below(pieces.size());
    for (std::size_t tries = 0; tries < 8; ++tries) {
      const std::size_t right = below(pieces.size());
      if (pieces[left].kind == pieces[right].kind) {
        std::swap(pieces[left], pieces[right]);
        return;
      }
    }
  }

  void replace(Pieces& pieces) {
    if (pieces.empty()) {
      return;
    }
    Piece& piece = pieces[below(pieces.size())];
    switch (piece.kind) {
      case TokenKind::Word:
      case TokenKind::QuotedName:
        piece.text = " " + std::string(below(6) == 0 ? anyOf(kPhrases) : anyOf(kNames));
        break;
      case TokenKind::Symbol:
        piece.text = " " + std::string(anyOf(kOperators)) + " ";
        break;
      case TokenKind::Reserved:
        piece.text += below(2) == 0 ? " " + std::string(anyOf(kPhrases)) : "";
        break;
      default:
        piece.text = " " + std::string(below(4) == 0 ? anyOf(kNames) : anyOf(kConstants));
        break;
    }
  }

  std::mt19937 random_;
};

std::size_t give(const std::string& text, std::uint8_t* data, std::size_t maxSize) {
  const std::size_t size = std::min(text.size(), maxSize);
  std::memcpy(data, text.data(), size);
  return size;
}

std::string_view viewOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace
}  // namespace azcoll::fuzz

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned int seed) {
  using azcoll::fuzz::Mutator;
  Mutator mutator(seed);
  if (mutator.below(6) == 0) {
    return LLVMFuzzerMutate(data, size, maxSize);
  }
  azcoll::fuzz::Pieces pieces = Mutator::cut(azcoll::fuzz::viewOf(data, size));
  for (std::size_t changes = 1 + mutator.below(3); changes > 0; --changes) {
    mutator.change(pieces);
  }
  return azcoll::fuzz::give(Mutator::join(pieces), data, maxSize);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* left, std::size_t leftSize,
                                                 const std::uint8_t* right, std::size_t rightSize,
                                                 std::uint8_t* out, std::size_t maxSize,
                                                 unsigned int seed) {
  using azcoll::fuzz::Mutator;
  Mutator mutator(seed);
  azcoll::fuzz::Pieces pieces = Mutator::cut(azcoll::fuzz::viewOf(left, leftSize));
  mutator.cross(pieces, Mutator::cut(azcoll::fuzz::viewOf(right, rightSize)));
  return azcoll::fuzz::give(Mutator::join(pieces), out, maxSize);
}
