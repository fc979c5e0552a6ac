#pragma once

#include <string>
#include <string_view>

#include "data/variant.h"

/// The companies of a group as SQL text: one row a company, its code in `DITTA`, and the accounting
/// type of its link. Every text is complete and stands on its own.
namespace azcoll::linked {

/// What makes a row a link: a row of a company with itself is not one.
inline constexpr std::string_view kLinksOnly =
    " WHERE CG86_INDTIPO = 0"
    " AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18";

/// The company and the VAT year that a statement asks about; both are written as they stand.
struct CompanyOfYear {
  Variant company;
  Variant year;
};

/// The companies linked to this main company.
[[nodiscard]] std::string linkedCompanies(const CompanyOfYear& of);

/// The companies linked to this main company, and the company itself.
[[nodiscard]] std::string withMainCompany(const CompanyOfYear& of);
/// The same with the main company first, then the others by code.
[[nodiscard]] std::string mainCompanyFirst(const CompanyOfYear& of);
/// The same with the main company last.
[[nodiscard]] std::string mainCompanyLast(const CompanyOfYear& of);
/// Like `mainCompanyFirst`, with the companies' data for the VAT return; a company that has none is
/// left out.
[[nodiscard]] std::string withVatReturnData(const CompanyOfYear& of);

/// The group of this linked company: its main companies and every company linked to them, the
/// company itself included.
[[nodiscard]] std::string groupOfLinked(const CompanyOfYear& of);
/// The same without the company itself.
[[nodiscard]] std::string othersOfLinked(const CompanyOfYear& of);

}  // namespace azcoll::linked
