#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "embedded/catalogue/catalogue.h"
#include "embedded/plan/slots.h"
#include "embedded/values/sql_error.h"

namespace azcoll::embedded {

/// What the translation of one statement gathers: shared by the binders of the statement and of
/// the functions that are written out in it.
struct Translation {
  std::vector<Slot> slots;
  std::vector<Guard>* guards = nullptr;
  std::size_t nextAlias = 1;
  std::size_t functionDepth = 0;
  std::size_t queries = 0;  ///< SELECTs bound so far
  /// A constant that does not convert: reported when the statement runs, not when it is compiled.
  std::optional<SqlError> failure{};
};

/// Everything that names and constants are looked up in.
struct BindContext {
  const Catalogue* catalogue = nullptr;
  const VariableTable* variables = nullptr;
  std::string_view text;         ///< the batch, for messages
  bool constantsInside = false;  ///< write constants into the SQLite text instead of binding them
  bool rewriteIn = true;         ///< turn correlated IN into uncorrelated row values where allowed
};

}  // namespace azcoll::embedded
