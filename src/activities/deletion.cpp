// Removing the activity rows of a year.

#include "activities/fragments.h"
#include "component/service.h"
#include "component/values.h"
#include "data/text.h"

namespace azcoll {

using activities::lines;

/// The condition that a row is a company's own while in its year the company is linked under
/// another one as well, with `prefisso` before the columns of the row itself.
///
/// Callers rely on it: without a prefix the names inside EXISTS are those of A, so that the
/// condition holds as soon as there is a link of any company.
std::string CLSCO_AZIENDECOLL::ComponiExistsMultiAzienda(std::string_view prefisso) {
  return join(
      lines(join(" AND  ", prefisso, "CG86_DITTA_CG18 = ", prefisso, "CG86_DITTACOLL_CG18"),
            " AND EXISTS (SELECT 1", "             FROM   CG86_AZIENDECOLL AS A",
            join("             WHERE A.CG86_INDTIPO = ", prefisso, "CG86_INDTIPO"),
            join("               AND  A.CG86_ANNOIVA = ", prefisso, "CG86_ANNOIVA"),
            join("               AND  A.CG86_DITTACOLL_CG18 = ", prefisso, "CG86_DITTACOLL_CG18"),
            "               AND  A.CG86_DITTA_CG18 <> A.CG86_DITTACOLL_CG18", "            )"),
      kLineBreak);
}

void CLSCO_AZIENDECOLL::StringaSQLEliminazioneAttività() noexcept {
  // Callers rely on it: both methods that compose a text report under this name.
  metodoTesto(" in EliminaAttività", [this] {
    output().GstrSQL_AttivitaCollegate =
        lines(" DELETE", " FROM   CG86_AZIENDECOLL", ComponiWhereAttività("", true));
  });
}

void CLSCO_AZIENDECOLL::StringaSQLAttivitàSingolaCollegamentoMultiAzienda() noexcept {
  metodoTesto(" in EliminaAttività", [this] {
    output().GstrSQL_AttivitaCollegate =
        join(ComponiWhereAttività("", true), ComponiExistsMultiAzienda(""));
  });
}

void CLSCO_AZIENDECOLL::EliminaAttivitàSingolaCollegamentoMultiAzienda() noexcept {
  metodo(" in EliminaAttivitàSingolaCollegamentoMultiAzienda", [this] {
    StringaSQLEliminazioneAttività();
    if (!riuscito()) {
      return;  // the text there is that of an earlier call
    }
    // The statement alone would delete rows of a company that was never linked.
    constexpr std::string_view row = "CG86_AZIENDECOLL.";
    const std::shared_ptr<Recordset> meant =
        leggi(join(lines(" SELECT COUNT(1) AS NUM", " FROM   CG86_AZIENDECOLL",
                         ComponiWhereAttività(row, true)),
                   ComponiExistsMultiAzienda(row)));
    if (!meant->atEnd() && isPositive(meant->fields().item("NUM").value())) {
      esegui(join(output().GstrSQL_AttivitaCollegate, ComponiExistsMultiAzienda("")));
    }
  });
}

}  // namespace azcoll
