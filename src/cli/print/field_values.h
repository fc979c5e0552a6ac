#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>
#include <variant>

#include "data/variant.h"
#include "service/members.h"

namespace azcoll::cli {

/// A field's value as a variant, enumerations as their number.
template <typename Class>
[[nodiscard]] Variant fieldValue(const Class& object, const FieldEntry<Class>& field) {
  return std::visit(
      [&object](auto member) -> Variant {
        const auto& value = object.*member;
        using Value = std::remove_cvref_t<decltype(value)>;
        if constexpr (std::is_enum_v<Value>) {
          return static_cast<std::int32_t>(value);
        } else if constexpr (std::is_convertible_v<Value, std::shared_ptr<Object>>) {
          return std::shared_ptr<Object>{value};
        } else {
          return value;
        }
      },
      field.member);
}

/// Whether the field refers to an object (a connection, a recordset, an object of the host).
[[nodiscard]] constexpr bool isObjectField(FieldKind kind) {
  return kind == FieldKind::Connection || kind == FieldKind::Recordset || kind == FieldKind::Object;
}

}  // namespace azcoll::cli
