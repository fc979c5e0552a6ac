#include "activities/fragments.h"

#include "data/text.h"
#include "text/joining.h"

namespace azcoll::activities {

std::string mainActivity(std::string_view row) {
  return lines(
      join("CASE WHEN ", row, ".CG86_CODATTIVITA = (SELECT TOP 1 A.CG86_CODATTIVITA"),
      "                                           FROM   CG86_AZIENDECOLL AS A WITH(NOLOCK)",
      join("                                           WHERE  A.CG86_INDTIPO = ", row,
           ".CG86_INDTIPO"),
      join("                                             AND  A.CG86_ANNOIVA = ", row,
           ".CG86_ANNOIVA"),
      join("                                             AND  A.CG86_DITTACOLL_CG18 = ", row,
           ".CG86_DITTACOLL_CG18"),
      "                                             AND EXISTS (SELECT 1",
      "                                                         FROM   CG86_AZIENDECOLL AS B "
      "WITH(NOLOCK)",
      "                                                         WHERE  B.CG86_INDTIPO = "
      "A.CG86_INDTIPO",
      "                                                           AND  B.CG86_ANNOIVA = "
      "A.CG86_ANNOIVA",
      "                                                           AND  B.CG86_DITTA_CG18 = "
      "A.CG86_DITTACOLL_CG18",
      "                                                         )",
      "                                           ORDER BY A.CG86_FLGATTIVITAPRINC DESC, "
      "A.CG86_CODATTIVITA)",
      "             THEN 1",  //
      "             ELSE 0",  //
      "        END");
}

std::string groupFilter(std::string_view row, std::string_view company) {
  return lines(
      join("   AND  ", row, ".CG86_DITTA_CG18 IN (SELECT C.CG86_DITTA_CG18"),
      "FROM",  //
      "CG86_AZIENDECOLL AS C WITH(NOLOCK)",
      join("                                 WHERE  C.CG86_INDTIPO = ", row, ".CG86_INDTIPO"),
      join("                                   AND  C.CG86_ANNOIVA = ", row, ".CG86_ANNOIVA"),
      join("                                   AND ( C.CG86_DITTACOLL_CG18 = ", company),
      join("                                         OR C.CG86_DITTA_CG18 = ", company, ")"),
      "                                 )");
}

std::string assignments(std::string_view target, std::string_view source, tables::Names names,
                        std::string_view indent, std::string_view ending) {
  const auto assignment = [&](std::string_view name) {
    return join(target, name, " = ", source, name);
  };
  return joinAll(names, join(",", ending, kLineBreak, indent), assignment).append(ending);
}

}  // namespace azcoll::activities
