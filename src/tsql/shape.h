#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tsql/ast.h"

namespace azcoll::tsql {

/// One constant of a batch as the scanner sees it, in textual order: the values for the `Literal`
/// nodes of a tree parsed from another text of the same shape.
struct LiteralToken {
  LiteralKind kind = LiteralKind::Null;
  std::string_view raw;  ///< text between the quotes, or a number as written; of NULL empty
  bool hasDoubledQuotes = false;  ///< `raw` still holds apostrophes written twice
};

/// The shape of a text: the text with every constant replaced by a byte for its class, and
/// the constants taken out. Two texts with equal shapes have equal trees but for their constants.
///
/// Constants are all numbers, quoted texts and binary constants, wherever they stand (lengths of
/// types and aliases in quotes too), and the word NULL where it opens a value of a VALUES row:
/// right after the row's opening parenthesis or one of the row's own commas. The n-th of them is
/// `literals[n]` here and has the ordinal n in the tree; other words NULL are part of the shape.
///
/// Classes: integer, decimal, float, text (with or without N), binary, NULL. A constant that is a
/// value of a VALUES row all by itself has one class whatever it is, so that an INSERT has one
/// shape whatever its missing values.
///
/// Malformed texts have a shape too (the parser then refuses them). Not cacheable, which means that
/// the key says nothing, are texts with comments, with an open quote, with bytes that are not UTF-8
/// (in constants too), or with the control characters that mark the classes.
struct Shape {
  std::string key;
  std::vector<LiteralToken> literals;
  bool cacheable = true;
};

/// Computes the shape of `text` into `shape`, whose buffers are reused. Linear in the text.
void scanShape(std::string_view text, Shape& shape);

}  // namespace azcoll::tsql
