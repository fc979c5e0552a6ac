#include "linked/statements.h"

#include <string_view>

#include "data/text.h"

namespace azcoll::linked {
namespace {

/// The links of the year.
std::string links(const CompanyOfYear& of) {
  return join(kLinksOnly, " AND CG86_ANNOIVA = ", of.year);
}

/// The main companies of a linked company.
std::string itsMainCompanies(const CompanyOfYear& of) {
  return join(" AND CG86_DITTA_CG18 IN(",  //
              " SELECT  CG86_DITTA_CG18",  //
              " FROM CG86_AZIENDECOLL",    //
              links(of),                   //
              " AND CG86_DITTACOLL_CG18 = ", of.company, ")");
}

/// Linked companies and main company with a column that distinguishes them, in no order.
std::string markedGroup(const CompanyOfYear& of) {
  return join("SELECT CG86_DITTACOLL_CG18 AS DITTA, CG86_INDTIPOCONT, 0 AS 'ORDINAMENTO'",        //
              " FROM CG86_AZIENDECOLL",                                                           //
              links(of),                                                                          //
              " AND CG86_DITTA_CG18 = ", of.company,                                              //
              " UNION ",                                                                          //
              " SELECT DISTINCT CG86_DITTA_CG18 AS DITTA, CG86_INDTIPOCONT, 1 AS 'ORDINAMENTO'",  //
              " FROM CG86_AZIENDECOLL",                                                           //
              links(of),                                                                          //
              " AND CG86_DITTA_CG18 = ", of.company);
}

/// The companies linked under the main companies of a linked company that `condition` leaves, and
/// those main companies.
std::string groupOfLinked(const CompanyOfYear& of, std::string_view condition) {
  return join("SELECT CG86_DITTACOLL_CG18 AS DITTA, CG86_INDTIPOCONT",  //
              " FROM CG86_AZIENDECOLL",                                 //
              links(of),                                                //
              condition,                                                //
              itsMainCompanies(of),                                     //
              " UNION",                                                 //
              " SELECT  CG86_DITTA_CG18 AS DITTA, CG86_INDTIPOCONT",    //
              " FROM CG86_AZIENDECOLL",                                 //
              links(of),                                                //
              itsMainCompanies(of));
}

}  // namespace

std::string linkedCompanies(const CompanyOfYear& of) {
  return join("SELECT CG86_DITTACOLL_CG18 AS DITTA, CG86_INDTIPOCONT",  //
              " FROM CG86_AZIENDECOLL",                                 //
              links(of),                                                //
              " AND CG86_DITTA_CG18 = ", of.company);
}

std::string withMainCompany(const CompanyOfYear& of) {
  return join("SELECT CG86_DITTACOLL_CG18 AS DITTA, CG86_INDTIPOCONT",        //
              " FROM CG86_AZIENDECOLL",                                       //
              links(of),                                                      //
              " AND CG86_DITTA_CG18 = ", of.company,                          //
              " UNION ",                                                      //
              " SELECT DISTINCT CG86_DITTA_CG18 AS DITTA, CG86_INDTIPOCONT",  //
              " FROM CG86_AZIENDECOLL",                                       //
              links(of),                                                      //
              " AND CG86_DITTA_CG18 = ", of.company);
}

std::string mainCompanyFirst(const CompanyOfYear& of) {
  return join(markedGroup(of), " ORDER BY ORDINAMENTO DESC, DITTA");
}

std::string mainCompanyLast(const CompanyOfYear& of) {
  return join(markedGroup(of), " ORDER BY ORDINAMENTO, DITTA");
}

std::string withVatReturnData(const CompanyOfYear& of) {
  return join(
      "SELECT CG86_DITTACOLL_CG18 AS DITTA, CG86_INDTIPOCONT, 0 AS 'ORDINAMENTO',"
      " CG25_INDTIPODEN, CG25_FLGPOSTICIP, CG25_FLGGESBENZ, CG25_INDCATPART",  //
      " FROM CG86_AZIENDECOLL",                                                //
      " INNER JOIN CG25_ANADITTAGEST",                                         //
      " ON CG86_DITTACOLL_CG18 = CG25_DITTA_CG18",                             //
      links(of),                                                               //
      " AND CG86_DITTA_CG18 = ", of.company,                                   //
      " UNION ",                                                               //
      " SELECT DISTINCT CG86_DITTA_CG18 AS DITTA, CG86_INDTIPOCONT, 1 AS 'ORDINAMENTO',"
      " CG25_INDTIPODEN, CG25_FLGPOSTICIP, CG25_FLGGESBENZ, CG25_INDCATPART",  //
      " FROM CG86_AZIENDECOLL",                                                //
      " INNER JOIN CG25_ANADITTAGEST",                                         //
      " ON CG86_DITTA_CG18 = CG25_DITTA_CG18",                                 //
      links(of),                                                               //
      " AND CG86_DITTA_CG18 = ", of.company,                                   //
      " ORDER BY ORDINAMENTO DESC, DITTA");
}

std::string groupOfLinked(const CompanyOfYear& of) { return groupOfLinked(of, ""); }

std::string othersOfLinked(const CompanyOfYear& of) {
  return groupOfLinked(of, join(" AND CG86_DITTACOLL_CG18 <> ", of.company));
}

}  // namespace azcoll::linked
