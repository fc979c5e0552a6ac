#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "data/variant.h"
#include "views/rows.h"

namespace azcoll::cli {

/// JSON with its keys in the order in which they were added.
using Json = nlohmann::ordered_json;

/// Null and Empty are null, decimals and dates are texts (no digit is lost), an object is null.
[[nodiscard]] Json toJson(const Variant& value);

/// `{"colonne": […], "righe": [[…]]}`.
[[nodiscard]] Json toJson(const views::Rows& rows);

/// The first result, with the further ones under `seguenti` when there are any; null without
/// results.
[[nodiscard]] Json toJson(const std::vector<views::Rows>& results);

/// One line of JSON without its end; bytes that are not UTF-8 are replaced.
[[nodiscard]] std::string dump(const Json& json);

}  // namespace azcoll::cli
