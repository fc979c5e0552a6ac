#include "activities/year_pairing.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <string_view>

#include "data/text.h"

namespace azcoll::activities {
namespace {

/// What identifies a row, which no copy touches, and what is computed.
constexpr std::array<std::string_view, 7> kNotCarried{
    "CG86_INDTIPO",        "CG86_ANNOIVA",    "CG86_INDTIPOCONT",  "CG86_DITTA_CG18",
    "CG86_DITTACOLL_CG18", "CG86_IDATTIVITA", "ATTIVITAPRINCIPALE"};

/// A value as a filter compares it.
std::string criterion(Fields& row, std::string_view column) {
  const Variant value = row.item(column).value();
  return value.isNull() ? "NULL" : join(value);
}

/// The filter for the rows of the year `year` that agree with `row` in the other keys.
std::string partnersOf(Fields& row, const Variant& year) {
  return join("CG86_INDTIPO = ", criterion(row, "CG86_INDTIPO"),               //
              " AND CG86_ANNOIVA = ", year,                                    //
              " AND CG86_INDTIPOCONT = ", criterion(row, "CG86_INDTIPOCONT"),  //
              " AND CG86_DITTA_CG18 = ", criterion(row, "CG86_DITTA_CG18"),    //
              " AND CG86_DITTACOLL_CG18 = ", criterion(row, "CG86_DITTACOLL_CG18"));
}

/// Positions `fresh` on the `ordinal`-th shown row (from 0) of the activity `code`; false when
/// there is none.
bool moveToPartner(Recordset& fresh, const Variant& code, std::size_t ordinal) {
  for (; !fresh.atEnd(); fresh.moveNext()) {
    if (sameValue(fresh.fields().item("CG86_CODATTIVITA").value(), code)) {
      if (ordinal == 0) {
        return true;
      }
      --ordinal;
    }
  }
  return false;
}

void copyRow(Fields& from, Recordset& fresh) {
  bool changed = false;
  for (std::size_t index = 0; index < from.count(); ++index) {
    const Field& source = from.item(index);
    const std::string name = source.name();
    if (std::ranges::find(kNotCarried, name) != kNotCarried.end()) {
      continue;
    }
    Field& target = fresh.fields().item(name);
    const Variant value = source.value();
    if (!sameValue(target.value(), value)) {
      target.setValue(value);
      changed = true;
    }
  }
  if (changed) {
    fresh.update();
  }
}

}  // namespace

void carryValues(Recordset& old, Recordset& fresh, const Variant& company, const Variant& from,
                 const Variant& to) {
  // Other companies' rows are shown as well; their years are not being duplicated.
  old.setFilter(join("CG86_ANNOIVA = ", from, " AND CG86_DITTA_CG18 = ", company));
  std::map<std::string, std::size_t> met;
  for (; !old.atEnd(); old.moveNext()) {
    Fields& row = old.fields();
    const Variant code = row.item("CG86_CODATTIVITA").value();
    const std::string partners = partnersOf(row, to);
    const std::size_t ordinal = met[join(partners, " ", code)]++;
    fresh.setFilter(partners);
    if (moveToPartner(fresh, code, ordinal)) {
      copyRow(row, fresh);
    }
  }
  fresh.setFilter("");
  fresh.updateBatch(Affect::All);
}

}  // namespace azcoll::activities
