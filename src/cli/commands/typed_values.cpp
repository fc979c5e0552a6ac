#include "cli/commands/typed_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fmt/format.h>
#include <limits>
#include <optional>
#include <vector>

#include "cli/console.h"
#include "cli/print/names.h"

namespace azcoll::cli {
namespace {

bool isWholeNumber(std::string_view text) {
  if (text.starts_with('-') || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  const bool leadingZero = text.size() > 1 && text.front() == '0';
  return !text.empty() && !leadingZero &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::optional<Variant> wholeNumber(std::string_view text) {
  if (!isWholeNumber(text)) {
    return std::nullopt;
  }
  const std::optional<Decimal> number = Decimal::parse(text);
  if (!number) {
    return std::nullopt;
  }
  const std::optional<std::int64_t> integer = number->toInteger();
  if (!integer) {
    return Variant{*number};
  }
  if (*integer >= std::numeric_limits<std::int32_t>::min() &&
      *integer <= std::numeric_limits<std::int32_t>::max()) {
    return Variant{static_cast<std::int32_t>(*integer)};
  }
  return Variant{*integer};
}

bool booleanNamed(const InputField& field, std::string_view text) {
  const std::string folded = foldName(text);
  if (folded == "true" || folded == "1") {
    return true;
  }
  if (folded == "false" || folded == "0") {
    return false;
  }
  throw UsageError(fmt::format("Il campo {} vuole true o false, non «{}».", field.name, text));
}

std::int32_t enumerationValue(const InputField& field, std::string_view text) {
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc{} && end == text.data() + text.size()) {
    return number;
  }
  std::vector<std::string_view> names;
  std::vector<std::int32_t> numbers;
  for (const EnumMember& member : kEnumMembers) {
    if (member.enumeration == typeName(field.kind())) {
      names.push_back(member.name);
      numbers.push_back(member.value);
    }
  }
  if (const std::optional<std::size_t> found = findName(text, names)) {
    return numbers[*found];
  }
  throw UsageError(fmt::format("Il campo {} non ammette il valore «{}».{} Valori: {}.", field.name,
                               text, suggestion(text, names), fmt::join(names, ", ")));
}

template <typename... Cases>
struct Overload : Cases... {
  using Cases::operator()...;
};
template <typename... Cases>
Overload(Cases...) -> Overload<Cases...>;

void assign(CLSCO_INPUTAZCOLL& input, const InputField& field, std::string_view text) {
  using Input = CLSCO_INPUTAZCOLL;
  std::visit(Overload{[&](Variant Input::*member) { input.*member = typedValue(text, field.use); },
                      [&](std::string Input::*member) { input.*member = text; },
                      [&](bool Input::*member) { input.*member = booleanNamed(field, text); },
                      [&](EnumTipoCF Input::*member) {
                        input.*member = static_cast<EnumTipoCF>(enumerationValue(field, text));
                      },
                      [&](EnumTipoMsgAziendeColl Input::*member) {
                        input.*member =
                            static_cast<EnumTipoMsgAziendeColl>(enumerationValue(field, text));
                      },
                      [&](auto) {
                        throw UsageError(fmt::format(
                            "Il campo {} è un oggetto: non si può impostare dalla riga di comando.",
                            field.name));
                      }},
             field.member);
}

}  // namespace

Variant typedValue(std::string_view text, FieldUse use) {
  if (use == FieldUse::Date) {
    if (const std::optional<Date> date = Date::parse(text)) {
      return *date;
    }
  }
  if (const std::optional<Variant> number = wholeNumber(text)) {
    return *number;
  }
  const std::string folded = foldName(text);
  if (folded == "true" || folded == "false") {
    return folded == "true";
  }
  return text;
}

std::optional<std::int32_t> wholeNumberIn(std::string_view text, std::int32_t least,
                                          std::int32_t most) {
  std::int32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  const bool digits = !text.empty() && text.front() != '-' && error == std::errc{} && stop == end;
  return digits && number >= least && number <= most ? std::optional{number} : std::nullopt;
}

const InputField& inputFieldNamed(std::string_view name) {
  std::array<std::string_view, kInputFields.size()> names;
  std::transform(kInputFields.begin(), kInputFields.end(), names.begin(),
                 [](const InputField& field) { return field.name; });
  if (const std::optional<std::size_t> found = findName(name, names)) {
    return kInputFields[*found];
  }
  throw UsageError(
      fmt::format("Il campo «{}» non esiste.{} L'elenco dei campi è dato da: azcoll campi", name,
                  suggestion(name, names)));
}

void setField(CLSCO_INPUTAZCOLL& input, std::string_view assignment) {
  const std::size_t equals = assignment.find('=');
  if (equals == std::string_view::npos) {
    throw UsageError(fmt::format("--imposta vuole CAMPO=VALORE, non «{}».", assignment));
  }
  assign(input, inputFieldNamed(assignment.substr(0, equals)), assignment.substr(equals + 1));
}

void setFieldNull(CLSCO_INPUTAZCOLL& input, std::string_view name) {
  const InputField& field = inputFieldNamed(name);
  const auto* member = std::get_if<Variant CLSCO_INPUTAZCOLL::*>(&field.member);
  if (member == nullptr) {
    throw UsageError(fmt::format("Il campo {} è di tipo {}: solo i campi Variant ammettono Null.",
                                 field.name, typeName(field.kind())));
  }
  input.*(*member) = kNull;
}

}  // namespace azcoll::cli
