#pragma once

#include <iosfwd>

#include "views/rows.h"

namespace azcoll::cli {

/// Prints an aligned table with a header; columns of numbers stand to the right.
void printTable(std::ostream& out, const views::Rows& rows);

/// Prints RFC 4180 lines with a header. Null is an empty field, an empty text a quoted one.
void printCsv(std::ostream& out, const views::Rows& rows);

}  // namespace azcoll::cli
