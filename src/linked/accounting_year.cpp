// Financial years of a company against a calendar year.

#include "linked/accounting_year.h"

#include <optional>

#include "component/frame.h"
#include "component/values.h"
#include "data/text.h"

namespace azcoll::linked {
namespace {

constexpr int kDecember = 12;
constexpr int kLastOfDecember = 31;

/// Counts the financial years that open or close between the two days, or span them. Callers rely
/// on it: the lines of this text are separated by carriage returns alone.
std::string touchingYears(const Variant& company, std::string_view first, std::string_view last) {
  constexpr std::string_view cr = "\r";
  return join(" SELECT COUNT(1)", cr,                                                            //
              " FROM   CG19_ANADITTAESER WITH (NOLOCK)", cr,                                     //
              " WHERE  CG19_DITTA_CG18 = ", company, cr,                                         //
              "   AND (CG19_DATAAPE BETWEEN  '", first, "' AND '", last, "'", cr,                //
              "        OR CG19_DATACHIU BETWEEN  '", first, "' AND '", last, "'", cr,            //
              "        OR (CG19_DATAAPE < '", first, "' AND CG19_DATACHIU > '", last, "')", cr,  //
              "       ) ");
}

}  // namespace

bool VerificaAnnoIvaEsercizioContabile(Call& call) noexcept {
  bool touched = false;
  method(call, " in VerificaAnnoIvaEsercizioContabile", [&] {
    const Variant year = call.requiredYear(ZeroYear::IsAYear);
    // A year outside the calendar has no days: the texts hold nothing, and no row is found.
    const auto text = [&](int month, int day) {
      const std::optional<Date> date = dayOf(year, month, day);
      return join(call.DataDB(date ? Variant{*date} : Variant{kNull}));
    };
    const std::string first = text(1, 1);
    const std::string last = text(kDecember, kLastOfDecember);
    const std::shared_ptr<Recordset> count =
        call.read(touchingYears(call.input().Pvar_Ditta, first, last));
    touched = count->fields().item(std::size_t{0}).value().toInt64() != 0;
  });
  return touched;
}

}  // namespace azcoll::linked
