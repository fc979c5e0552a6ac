#pragma once

#include "cursor/result_set.h"
#include "embedded/values/types.h"

namespace azcoll::embedded {

/// A column of a result: what callers learn of it, and how its values are read.
struct ResultColumn {
  ColumnInfo info;
  Type type;
};

}  // namespace azcoll::embedded
