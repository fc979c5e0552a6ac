#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace azcoll::odbc {

/// A table that a query names in its FROM; `name` is empty for anything that is not a plain table
/// (a derived table, a function, a table of another database or a qualified one).
struct SelectSource {
  std::string name{};
  std::string alias{};  ///< the name itself where there is none
};

/// One entry of a select list, as far as it can be traced to a table.
struct SelectItem {
  enum class Kind : unsigned char { Computed, Column, AllColumns };

  Kind kind = Kind::Computed;
  std::string qualifier{};  ///< alias of a source, or empty
  std::string column{};     ///< of kind `Column`
};

/// What a query says about where its columns come from.
struct SelectShape {
  std::vector<SelectItem> items;
  std::vector<SelectSource> sources;
};

/// The queries of a batch, in order, when it consists of plain queries separated by semicolons (one
/// query per result). Empty for every other batch, and for queries whose rows are not rows of their
/// tables (UNION and its like, GROUP BY, DISTINCT, INTO). It reads just enough of T-SQL to be sure;
/// of what it does not understand it says nothing.
[[nodiscard]] std::vector<SelectShape> selectShapes(std::string_view batch);

/// Whether a batch does nothing but read or change rows, so that no table looks different after it.
[[nodiscard]] bool leavesTablesAlone(std::string_view batch);

/// Whether a batch of a T-SQL server can be run twice as well as once: it is made of queries, and
/// none of their words can change anything.
[[nodiscard]] bool onlyReads(std::string_view batch);

}  // namespace azcoll::odbc
