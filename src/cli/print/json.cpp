#include "cli/print/json.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <utility>

#include "views/value_text.h"

namespace azcoll::cli {

using views::Rows;

Json toJson(const Variant& value) {
  switch (value.kind()) {
    case Variant::Kind::Empty:
    case Variant::Kind::Null:
    case Variant::Kind::Object:
      return nullptr;
    case Variant::Kind::Boolean:
      return *value.get<bool>();
    case Variant::Kind::Int16:
    case Variant::Kind::Int32:
    case Variant::Kind::Int64:
      return value.toInt64();
    case Variant::Kind::Double:
      return *value.get<double>();
    case Variant::Kind::Decimal:
    case Variant::Kind::Date:
    case Variant::Kind::Text:
      break;
  }
  return views::exchangeText(value);
}

Json toJson(const Rows& rows) {
  Json lines = Json::array();
  for (const std::vector<Variant>& row : rows.rows) {
    Json& line = lines.emplace_back(Json::array());
    for (const Variant& value : row) {
      line.push_back(toJson(value));
    }
  }
  Json result;
  result["colonne"] = rows.columns;
  result["righe"] = std::move(lines);
  return result;
}

Json toJson(const std::vector<Rows>& results) {
  if (results.empty()) {
    return nullptr;
  }
  Json first = toJson(results.front());
  for (std::size_t i = 1; i < results.size(); ++i) {
    first["seguenti"].push_back(toJson(results[i]));
  }
  return first;
}

std::string dump(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace azcoll::cli
