// Removing the activity rows of a year.

#include "activities/deletion.h"

#include "activities/fragments.h"
#include "activities/query.h"
#include "component/frame.h"
#include "component/values.h"
#include "data/text.h"

namespace azcoll::activities {
namespace {

/// The condition that a row is a company's own while in its year the company is linked under
/// another one as well, with `prefix` before the columns of the row itself.
///
/// Callers rely on it: without a prefix the names inside EXISTS are those of A, so that the
/// condition holds as soon as there is a link of any company.
std::string ComponiExistsMultiAzienda(std::string_view prefix) {
  return join(
      lines(join(" AND  ", prefix, "CG86_DITTA_CG18 = ", prefix, "CG86_DITTACOLL_CG18"),
            " AND EXISTS (SELECT 1", "             FROM   CG86_AZIENDECOLL AS A",
            join("             WHERE A.CG86_INDTIPO = ", prefix, "CG86_INDTIPO"),
            join("               AND  A.CG86_ANNOIVA = ", prefix, "CG86_ANNOIVA"),
            join("               AND  A.CG86_DITTACOLL_CG18 = ", prefix, "CG86_DITTACOLL_CG18"),
            "               AND  A.CG86_DITTA_CG18 <> A.CG86_DITTACOLL_CG18", "            )"),
      kLineBreak);
}

}  // namespace

void StringaSQLEliminazioneAttività(Call& call) noexcept {
  // Callers rely on it: both methods that compose a text report under this name.
  textMethod(call, " in EliminaAttività", [&] {
    call.output().GstrSQL_AttivitaCollegate =
        lines(" DELETE", " FROM   CG86_AZIENDECOLL", ComponiWhereAttività(call));
  });
}

void StringaSQLAttivitàSingolaCollegamentoMultiAzienda(Call& call) noexcept {
  textMethod(call, " in EliminaAttività", [&] {
    call.output().GstrSQL_AttivitaCollegate =
        join(ComponiWhereAttività(call), ComponiExistsMultiAzienda(""));
  });
}

void EliminaAttivitàSingolaCollegamentoMultiAzienda(Call& call) noexcept {
  method(call, " in EliminaAttivitàSingolaCollegamentoMultiAzienda", [&] {
    StringaSQLEliminazioneAttività(call);
    if (!call.succeeded()) {
      return;  // the text there is that of an earlier call
    }
    // The statement alone would delete rows of a company that was never linked.
    constexpr std::string_view row = "CG86_AZIENDECOLL.";
    const std::shared_ptr<Recordset> meant =
        call.read(join(lines(" SELECT COUNT(1) AS NUM", " FROM   CG86_AZIENDECOLL",
                             ComponiWhereAttività(call, row)),
                       ComponiExistsMultiAzienda(row)));
    if (!meant->atEnd() && isPositive(meant->fields().item("NUM").value())) {
      call.run(join(call.output().GstrSQL_AttivitaCollegate, ComponiExistsMultiAzienda("")));
    }
  });
}

}  // namespace azcoll::activities
