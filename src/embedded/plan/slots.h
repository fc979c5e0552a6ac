#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "embedded/catalogue/catalogue.h"
#include "embedded/values/conversions.h"
#include "embedded/values/types.h"

namespace azcoll::embedded {

/// Where the value of a parameter of an SQLite statement comes from.
enum class SlotSource : std::uint8_t {
  Literal,   ///< constant number `index` of the batch's text
  Variable,  ///< variable number `index` of the frame
  Marker,    ///< parameter number `index` of the caller
  Now,
  RowCount,
  Identity,
  TransactionCount
};

/// A parameter of an SQLite statement; its value is converted to `target` when it is bound.
struct Slot {
  SlotSource source = SlotSource::Literal;
  bool negate = false;
  Conversion conversion = Conversion::Compare;
  std::uint32_t index = 0;
  Type target;
};

/// What a plan took for granted of a constant; a text of the same shape whose constant differs
/// needs a plan of its own.
struct Guard {
  enum class Kind : std::uint8_t {
    SameText,      ///< it is part of the plan: an ordinal of ORDER BY, the length of a type
    SameType,      ///< its own type is that of a result, or decides about conversions
    SmallInteger,  ///< a whole number of at most 18 digits
    Scale          ///< a decimal of at most `type.scale` fractional digits
  };
  Kind kind = Kind::SameText;
  std::size_t ordinal = 0;
  Type type;
  std::string text;  ///< without quotes
};

/// A scalar variable of a batch or procedure.
struct VariableInfo {
  std::string name;
  Type type;
};

/// The variables declared so far.
struct VariableTable {
  std::vector<VariableInfo> scalars;
  std::unordered_map<std::string, std::size_t> scalarByName;
  std::unordered_map<std::string, std::shared_ptr<const Table>> tables;
};

/// A variable that a query gives a value to.
struct AssignTarget {
  std::size_t variable = 0;
  Type type;  ///< of the value
};

}  // namespace azcoll::embedded
