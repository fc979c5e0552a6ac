#include "engines/drawn_call.h"

#include <array>

#include "data/text.h"
#include "engines/drawn_group.h"

namespace azcoll::test {
namespace {

const Variant kNothings[]{Variant{}, Variant{kNull}, Variant{""}};

}  // namespace

std::string shown(const Variant& value) {
  constexpr std::array<std::string_view, 11> kinds{"Empty", "Null",  "Boolean", "Int16",
                                                   "Int32", "Int64", "Double",  "Decimal",
                                                   "Date",  "Text",  "Object"};
  const std::string_view kind = kinds.at(static_cast<std::size_t>(value.kind()));
  if (value.isEmpty() || value.isNull() || value.kind() == Variant::Kind::Object) {
    return std::string{kind};
  }
  return join(kind, "[", value.text(), "]");
}

std::string DrawnCall::shown() const {
  std::string text = join(method->name, "(");
  for (std::size_t index = 0; index < inputs.size(); ++index) {
    const Variant& value = inputs[index];
    const bool isFalse = value == Variant{false};
    if (!value.isEmpty() && !isFalse && !(value == Variant{""})) {
      text += join("\n  ", kInputFields[index].name, " = ", test::shown(value));
    }
  }
  constexpr std::array<std::string_view, 3> transactions{"none", "rolled back", "committed"};
  return join(text, ")\n  transaction of the caller: ",
              transactions.at(static_cast<std::size_t>(transaction)), ", answers Yes: ", yes,
              screens ? "" : ", no screens");
}

DrawnCall CallDice::call(const MethodEntry& method, const KnownRows& rows) {
  rows_ = &rows;
  DrawnCall call{.method = &method, .inputs = {}};
  for (const InputField& field : kInputFields) {
    call.inputs.push_back(valueOf(field));
  }
  if (dice_.in(75) && !rows.customers.empty()) {
    nameCustomer(call);
  }
  const int transaction = dice_.below(20);
  call.transaction = transaction == 0   ? CallerTransaction::RolledBack
                     : transaction == 1 ? CallerTransaction::Committed
                                        : CallerTransaction::None;
  call.yes = dice_.below(3);
  call.screens = !dice_.in(10);
  return call;
}

/// The call is about a customer or supplier that is there.
void CallDice::nameCustomer(DrawnCall& call) {
  const KnownRows::Customer& customer = dice_.anyOf(rows_->customers);
  for (std::size_t index = 0; index < kInputFields.size(); ++index) {
    const std::string_view name = kInputFields[index].name;
    if (name == "Pvar_Ditta") {
      call.inputs[index] = customer.company;
    } else if (name == "Pint_TipoCF") {
      call.inputs[index] = customer.kind;
    } else if (name == "Pvar_CliFor") {
      call.inputs[index] = customer.code;
    }
  }
}

Variant CallDice::valueOf(const InputField& field) {
  switch (field.kind()) {
    case FieldKind::Variant:
      return variantOf(field.name);
    case FieldKind::Text:
      if (field.name == "StrSelectSQLAttività") {
        constexpr std::array lists{"*",
                                   "CG86_ANNOIVA, CG86_CODATTIVITA, CG86_INDTIPOCONT,"
                                   " CG86_IDATTIVITA, CG86_DITTACOLL_CG18, CG96_DESCRATTIVITA",
                                   "CG86_CODATTIVITA AS CODICE, N'L''età' AS NOTA",
                                   "COLONNA_CHE_MANCA", "CG86_CODATTIVITA,"};
        return dice_.in(75) ? "" : dice_.anyOf(lists);
      }
      return dice_.in(50) ? "" : "Provider=prova";
    case FieldKind::Boolean:
      return dice_.in(35);
    case FieldKind::TipoCF:
      return dice_.in(4) ? 7 : dice_.below(2);
    case FieldKind::TipoMsg:
      return dice_.below(2);
    case FieldKind::Connection:
      return !dice_.in(6);
    case FieldKind::Recordset:
    case FieldKind::Object:
      return dice_.in(60);
  }
  return {};
}

Variant CallDice::variantOf(std::string_view name) {
  if (name == "Pvar_Ditta") {
    return company();
  }
  if (name == "AnnoSolare" || name == "AnnoSolareDaDuplicare") {
    return name == "AnnoSolareDaDuplicare" && dice_.in(20) ? dice_.anyOf(kNothings) : year();
  }
  if (name == "CodiceAttività") {
    return activityCode();
  }
  if (name == "IdAttività") {
    if (dice_.in(8) && !rows_->activities.empty()) {
      return dice_.anyOf(rows_->activities);
    }
    return dice_.in(4) ? strange() : dice_.anyOf(kNothings);
  }
  if (name == "Pvar_CliFor") {
    const int code = DrawnGroup::kFirstCustomer + dice_.below(DrawnGroup::kCustomersPerKind + 1);
    if (dice_.in(6)) {
      return dice_.anyOf(kNothings);
    }
    return dice_.in(6) ? strange() : dice_.in(10) ? Variant{std::to_string(code)} : Variant{code};
  }
  if (name == "DataInizioElaborazione") {
    const Variant dates[]{Variant{*Date::of(2024, 3, 1)},
                          Variant{*Date::of(2025, 12, 31, 23, 59, 59)},
                          "01/03/2024",
                          "2024-02-31",
                          "01-03-2025",
                          "29/02/2023",
                          "20250101",
                          "ieri",
                          2024,
                          Variant{},
                          Variant{kNull},
                          ""};
    return dice_.anyOf(dates);
  }
  if (name == "Sezionale") {
    const Variant codes[]{"00", "1", "A1", "a1", "A1 ", "  ", "x'y", 1, Variant{}};
    return dice_.anyOf(codes);
  }
  if (name == "AttivaGestioneDuplicazioneCliFor") {
    const Variant flags[]{Variant{}, 0, 1, -1, true, false, "1", "si", Variant{kNull}, 40000};
    return dice_.anyOf(flags);
  }
  return small(5);  // branch, intermediary, and whatever field is added
}

Variant CallDice::company() {
  const int code = 1 + dice_.below(DrawnGroup::kCompanies);
  switch (dice_.below(25)) {
    case 0:
      return std::to_string(code);
    case 1:
      return join(code, " ");
    case 2:
      return static_cast<std::int16_t>(code);
    case 3:
      return dice_.anyOf(kNothings);
    case 4:
      return strange();
    default:
      return code;
  }
}

Variant CallDice::year() {
  const int year = dice_.in(6) ? 2026 : 2022 + dice_.below(4);
  switch (dice_.below(20)) {
    case 0:
      return std::to_string(year);
    case 1:
      return static_cast<std::int16_t>(year);
    case 2:
    case 3:
      return dice_.anyOf(kNothings);
    case 4: {
      const Variant years[]{0,         "0",     -1,   10000, 99999,
                            "duemila", "2024 ", 1752, 9999,  Decimal::parse("2024.0").value()};
      return dice_.anyOf(years);
    }
    default:
      return year;
  }
}

Variant CallDice::activityCode() {
  if (dice_.in(50)) {
    return dice_.anyOf(kNothings);
  }
  if (dice_.in(10)) {
    return strange();
  }
  const int company = 1 + dice_.below(DrawnGroup::kCompanies);
  const int codes[]{7, company, company * 100, company * 100 + 1, company * 100 + 2};
  return dice_.anyOf(codes);
}

Variant CallDice::small(int limit) {
  const int number = dice_.below(limit);
  if (dice_.in(15)) {
    return std::to_string(number);
  }
  return dice_.in(10) ? strange() : dice_.in(25) ? dice_.anyOf(kNothings) : Variant{number};
}

Variant CallDice::strange() {
  const Variant values[]{0,
                         -1,
                         99,
                         "abc",
                         "l'età",
                         std::int64_t{3'000'000'000},
                         std::int32_t{2'147'483'647},
                         Decimal::parse("3.5").value(),
                         2.5,
                         true,
                         Variant{*Date::of(2024, 1, 2)}};
  return dice_.anyOf(values);
}

}  // namespace azcoll::test
