#include <algorithm>
#include <cstring>

#include "providers/fault_driver/driver.h"

namespace azcoll::fault {
namespace {

std::string ascii(const std::u16string& text) {
  std::string result;
  for (const char16_t unit : text) {
    result += static_cast<char>(unit < 0x80 ? unit : u'?');
  }
  return result;
}

template <typename T>
Written writeFixed(const std::u16string& text, const Binding& target, std::size_t index) {
  const T value = static_cast<T>(std::stoll(ascii(text)));
  std::memcpy(static_cast<std::byte*>(target.target) + index * sizeof value, &value, sizeof value);
  return {sizeof value, sizeof value, false};
}

Written writeBytes(const void* bytes, std::size_t size, std::size_t terminator,
                   const Binding& target, std::size_t index, std::size_t offset) {
  const auto room = static_cast<std::size_t>(target.room);
  std::byte* const place = static_cast<std::byte*>(target.target) + index * room;
  const std::size_t left = size - std::min(offset, size);
  const std::size_t fits = room < terminator ? 0 : (room - terminator) / terminator * terminator;
  const std::size_t taken = std::min(left, fits);
  if (taken > 0) {
    std::memcpy(place, static_cast<const std::byte*>(bytes) + offset, taken);
  }
  std::memset(place + taken, 0, std::min(terminator, room));
  return {static_cast<SQLLEN>(left), taken, taken < left};
}

}  // namespace

Written writeValue(const Cell& cell, const Binding& target, std::size_t index, std::size_t offset) {
  if (!cell) {
    return {SQL_NULL_DATA, 0, false};
  }
  switch (target.type) {
    case SQL_C_SLONG:
      return writeFixed<std::int32_t>(*cell, target, index);
    case SQL_C_SSHORT:
      return writeFixed<std::int16_t>(*cell, target, index);
    case SQL_C_CHAR: {
      const std::string text = ascii(*cell);
      return writeBytes(text.data(), text.size(), 1, target, index, offset);
    }
    default:
      return writeBytes(cell->data(), cell->size() * sizeof(char16_t), sizeof(char16_t), target,
                        index, offset);
  }
}

std::u16string shownParameters(const Statement& statement) {
  std::u16string shown;
  for (const auto& [number, parameter] : statement.parameters) {
    const std::string type = std::to_string(parameter.sqlType);
    shown += u" " + std::u16string{type.begin(), type.end()} + u":";
    if (*parameter.indicator == SQL_NULL_DATA) {
      shown += u"NULL";
    } else if (parameter.type == SQL_C_WCHAR) {
      shown.append(static_cast<const char16_t*>(parameter.target),
                   static_cast<std::size_t>(*parameter.indicator) / sizeof(char16_t));
    } else if (parameter.type == SQL_C_SLONG) {
      std::int32_t value = 0;
      std::memcpy(&value, parameter.target, sizeof value);
      const std::string digits = std::to_string(value);
      shown.append(digits.begin(), digits.end());
    } else {
      shown += u"?";
    }
  }
  return shown;
}

void fillOutputs(Statement& statement) {
  std::u16string input = u"(nullo)";
  for (auto& [number, parameter] : statement.parameters) {
    const SQLLEN length = *parameter.indicator;
    if (parameter.type == SQL_C_WCHAR && length >= 0) {
      input.assign(static_cast<const char16_t*>(parameter.target),
                   static_cast<std::size_t>(length) / sizeof(char16_t));
    } else if (parameter.type == SQL_C_SLONG && length >= 0) {
      std::int32_t value = 0;
      std::memcpy(&value, parameter.target, sizeof value);
      const std::string digits = std::to_string(value);
      input.assign(digits.begin(), digits.end());
    }
    if (parameter.direction == SQL_PARAM_INPUT) {
      continue;
    }
    const bool cut = statement.connection.has(u"Outputs", u"cut");
    const Cell value = cut ? std::u16string(500'000, u'c') : u"uscita di " + input;
    *parameter.indicator = writeValue(value, parameter, 0, 0).indicator;
  }
}

}  // namespace azcoll::fault
