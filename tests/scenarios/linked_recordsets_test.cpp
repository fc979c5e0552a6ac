// The lists and recordsets of the example groups.

#include "scenarios/company_database.h"

namespace azcoll::test {
namespace {

class LinkedRecordsets : public CompanyDatabase {
 protected:
  void ask(int company, int year) {
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->AnnoSolare = year;
  }
  /// The rows left in the output as "company|accounting type", from the current one.
  Lines found() {
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}}) << service.Errore.text();
    const auto& recordset = service.CPOutput->Grst_DitteCollegate;
    if (recordset == nullptr) {
      return {"none"};
    }
    Lines lines;
    for (; !recordset->atEnd(); recordset->moveNext()) {
      Fields& fields = recordset->fields();
      lines.push_back(
          join(fields.item("DITTA").value(), "|", fields.item("CG86_INDTIPOCONT").value()));
    }
    return lines;
  }
  Lines sorted() {
    Lines lines = found();
    std::ranges::sort(lines);
    return lines;
  }
  /// The list in its order without the company at its end, and that company.
  std::pair<Lines, std::string> list() {
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}}) << service.Errore.text();
    std::string rest = service.CPOutput->DitteCollegate.text();
    Lines companies;
    for (std::size_t comma = rest.find(", "); comma != std::string::npos; comma = rest.find(", ")) {
      companies.push_back(rest.substr(0, comma));
      rest = rest.substr(comma + 2);
    }
    std::ranges::sort(companies);
    return {companies, rest};
  }
  void addLink(int year, int main, int linked, int type) {
    run(
        join("INSERT INTO CG86_AZIENDECOLL (CG86_INDTIPO, CG86_ANNOIVA, CG86_INDTIPOCONT, "
             "CG86_DITTA_CG18, CG86_DITTACOLL_CG18) VALUES (0, ",
             year, ", ", type, ", ", main, ", ", linked, ")"));
  }
  bool typeIs(int type) { return sameValue(service.CPOutput->IndTipoCont, type); }
};

TEST_F(LinkedRecordsets, TheLinkedCompaniesOfAMainCompany) {
  ask(10, 2024);
  service.RecordsetDitteCollegate();
  EXPECT_EQ(sorted(), (Lines{"12|0", "15|0", "5|0"}));
  EXPECT_TRUE(typeIs(0));
  ask(10, 2025);
  service.RecordsetDitteCollegate();
  EXPECT_EQ(sorted(), (Lines{"12|2", "15|0", "5|0"}));
}

TEST_F(LinkedRecordsets, ALinkedCompanyHasNoLinkedCompanies) {
  ask(12, 2025);
  service.CPOutput->IndTipoCont = 77;
  service.RecordsetDitteCollegate();
  EXPECT_EQ(found(), Lines{});
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{77});
}

TEST_F(LinkedRecordsets, TheMainCompanyComesFirstThenTheOthersByCode) {
  ask(10, 2024);
  service.RecordsetDitteCollegatePiuPrincipale();
  EXPECT_EQ(found(), (Lines{"10|0", "5|0", "12|0", "15|0"}));
  ask(30, 2025);
  service.RecordsetDitteCollegatePiuPrincipale();
  EXPECT_EQ(found(), (Lines{"30|1", "31|1"}));
  EXPECT_TRUE(typeIs(1));
}

TEST_F(LinkedRecordsets, TheMainCompanyComesLastForTheYearsEnd) {
  ask(10, 2024);
  service.RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio();
  EXPECT_EQ(found(), (Lines{"5|0", "12|0", "15|0", "10|0"}));
  ask(10, 2025);
  service.RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio();
  Lines companies = found();
  ASSERT_EQ(companies.size(), 5U);
  EXPECT_EQ(Lines(companies.begin(), companies.begin() + 3), (Lines{"5|0", "12|2", "15|0"}));
}

TEST_F(LinkedRecordsets, TheMainCompanyStandsOnceForEachAccountingTypeOfItsLinks) {
  ask(10, 2025);
  service.RecordsetDitteCollegatePiuPrincipale();
  const Lines companies = found();
  ASSERT_EQ(companies.size(), 5U);
  Lines mains{companies[0], companies[1]};
  std::ranges::sort(mains);
  EXPECT_EQ(mains, (Lines{"10|0", "10|2"}));
  EXPECT_EQ(Lines(companies.begin() + 2, companies.end()), (Lines{"5|0", "12|2", "15|0"}));
}

TEST_F(LinkedRecordsets, TheWholeGroupIsFoundFromAnyOfItsCompanies) {
  for (const int company : {5, 10, 12, 15}) {
    ask(company, 2024);
    service.RecordsetDitteCollegatePiuPrincipaleNoPrinc();
    EXPECT_EQ(sorted(), (Lines{"10|0", "12|0", "15|0", "5|0"})) << company;
    EXPECT_TRUE(typeIs(0));
  }
  ask(31, 2025);
  service.RecordsetDitteCollegatePiuPrincipaleNoPrinc();
  EXPECT_EQ(sorted(), (Lines{"30|1", "31|1"}));
}

TEST_F(LinkedRecordsets, TheListEndsWithTheCurrentCompany) {
  using Expected = std::pair<Lines, std::string>;
  ask(10, 2024);
  service.DitteCollegatePiuPrincipale();
  EXPECT_EQ(list(), (Expected{{"12", "15", "5"}, "10"}));
  ask(12, 2024);
  service.DitteCollegatePiuPrincipale();
  EXPECT_EQ(list(), (Expected{{"10", "15", "5"}, "12"}));
  ask(31, 2024);
  service.DitteCollegatePiuPrincipale();
  EXPECT_EQ(list(), (Expected{{"30"}, "31"}));
  EXPECT_TRUE(typeIs(1));
  // One main company with two accounting types.
  ask(5, 2025);
  service.DitteCollegatePiuPrincipale();
  EXPECT_EQ(list(), (Expected{{"10", "10", "12", "15"}, "5"}));
}

TEST_F(LinkedRecordsets, TheVatReturnDataComeWithTheCompanies) {
  ask(10, 2024);
  service.RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva();
  ASSERT_EQ(service.Stato, Variant{std::int16_t{0}}) << service.Errore.text();
  const auto& recordset = service.CPOutput->Grst_DitteCollegate;
  Lines lines;
  for (; !recordset->atEnd(); recordset->moveNext()) {
    Fields& fields = recordset->fields();
    lines.push_back(join(fields.item("DITTA").value(), "|", fields.item("CG25_INDTIPODEN").value(),
                         "|", fields.item("CG25_FLGPOSTICIP").value(), "|",
                         fields.item("CG25_FLGGESBENZ").value(), "|",
                         fields.item("CG25_INDCATPART").value()));
  }
  EXPECT_EQ(lines, (Lines{"10|1|0|0|1", "5|2|0|1|2", "12|3|1|0|0", "15|1|0|0|3"}));
}

TEST_F(LinkedRecordsets, ACompanyWithoutVatDataIsMissingFromTheVatReturnOnly) {
  ask(30, 2024);
  service.RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva();
  EXPECT_EQ(found(), Lines{"30|1"});
  service.RecordsetDitteCollegatePiuPrincipale();
  EXPECT_EQ(found(), (Lines{"30|1", "31|1"}));
}

TEST_F(LinkedRecordsets, TheGroupSeenFromTheCurrentCompany) {
  const std::vector<std::pair<int, Lines>> expected{{5, {"10|0", "12|2", "15|0"}},
                                                    {10, {"5|0", "12|2", "15|0"}},
                                                    {12, {"10|2", "5|0", "15|0"}},
                                                    {31, {"30|1"}}};
  for (const auto& [company, companies] : expected) {
    ask(company, 2025);
    service.RecordsetDitteCollegateOPrincipale();
    const std::string& first = companies.front();
    EXPECT_EQ(service.CPOutput->IndTipoCont.text(), first.substr(first.find('|') + 1));
    EXPECT_EQ(found(), companies) << company;
  }
}

TEST_F(LinkedRecordsets, OnlyCompaniesThatHaveTheBranch) {
  ask(5, 2025);
  service.CPInput->CodiceSede = 1;
  service.RecordsetDitteCollegateOPrincipalePerSedi();
  EXPECT_EQ(found(), (Lines{"10|0", "12|2"}));
  service.CPInput->CodiceSede = 2;
  service.RecordsetDitteCollegateOPrincipalePerSedi();
  EXPECT_EQ(found(), Lines{"15|0"});
  // The branch 3 stands in the current company only.
  service.CPInput->CodiceSede = 3;
  service.RecordsetDitteCollegateOPrincipalePerSedi();
  EXPECT_EQ(found(), Lines{"none"});
}

TEST_F(LinkedRecordsets, OnlyCompaniesThatHaveTheIntermediaryOfThatKind) {
  ask(5, 2025);
  const auto having = [this](EnumTipoCF kind, int code) {
    service.CPInput->Pint_TipoCF = kind;
    service.CPInput->CodiceIntermedio = code;
    service.RecordsetDitteCollegateOPrincipalePerIntermedi();
    return found();
  };
  EXPECT_EQ(having(Cliente, 1), (Lines{"10|0", "12|2", "15|0"}));
  EXPECT_EQ(having(Cliente, 3), Lines{"10|0"});
  EXPECT_EQ(having(Fornitore, 4), (Lines{"10|0", "12|2"}));
  EXPECT_EQ(having(Cliente, 4), Lines{"none"});
  EXPECT_EQ(having(Cliente, 7), Lines{"none"});
}

TEST_F(LinkedRecordsets, ACompanyOrAYearWithoutLinksHasNoGroup) {
  for (const auto& [company, year] :
       std::vector<std::pair<int, int>>{{20, 2024}, {40, 2024}, {10, 2019}}) {
    ask(company, year);
    service.CPInput->CodiceSede = 1;
    service.CPInput->CodiceIntermedio = 1;
    for (const auto method :
         {&CLSCO_AZIENDECOLL::RecordsetDitteCollegate,
          &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipale,
          &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipaleNoPrinc,
          &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePiuDenunciaIva,
          &CLSCO_AZIENDECOLL::RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio}) {
      (service.*method)();
      EXPECT_EQ(found(), Lines{}) << company;
      EXPECT_NE(service.CPOutput->Grst_DitteCollegate, nullptr);
    }
    for (const auto method : {&CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipale,
                              &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerSedi,
                              &CLSCO_AZIENDECOLL::RecordsetDitteCollegateOPrincipalePerIntermedi}) {
      (service.*method)();
      EXPECT_EQ(found(), Lines{"none"}) << company;
    }
    service.DitteCollegatePiuPrincipale();
    EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{""});
  }
}

TEST_F(LinkedRecordsets, ALinkOfAnotherKindDoesNotCount) {
  // Company 20 has a customer/supplier link to company 10 in 2024.
  ask(10, 2024);
  service.RecordsetDitteCollegate();
  EXPECT_EQ(sorted(), (Lines{"12|0", "15|0", "5|0"}));
}

TEST_F(LinkedRecordsets, ACompanyLinkedToTwoMainCompaniesSeesBothGroups) {
  addLink(2024, 30, 15, 1);
  ask(15, 2024);
  service.RecordsetDitteCollegatePiuPrincipaleNoPrinc();
  EXPECT_EQ(sorted(), (Lines{"10|0", "12|0", "15|0", "15|1", "30|1", "31|1", "5|0"}));
  service.DitteCollegatePiuPrincipale();
  EXPECT_EQ(list(), (std::pair<Lines, std::string>{{"10", "12", "30", "31", "5"}, "15"}));
}

TEST_F(LinkedRecordsets, ARecordsetOutlivesTheServiceThatGaveIt) {
  std::shared_ptr<Recordset> kept;
  {
    CLSCO_AZIENDECOLL other;
    other.CPInput->Connessione = connection;
    other.CPInput->AnnoSolare = 2024;
    other.CPInput->Pvar_Ditta = 10;
    other.RecordsetDitteCollegatePiuPrincipale();
    kept = other.CPOutput->Grst_DitteCollegate;
  }
  ASSERT_NE(kept, nullptr);
  ASSERT_TRUE(kept->isOpen());
  EXPECT_EQ(kept->recordCount(), 4);
  EXPECT_EQ(kept->fields().item("DITTA").value().text(), "10");
}

TEST_F(LinkedRecordsets, ACompanyThatIsNoNumberIsTheDatabasesRefusal) {
  service.CPInput->Pvar_Ditta = "dieci";
  service.RecordsetDitteCollegatePiuPrincipalePerChiuApeEsercizio();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(service.Errore.text().ends_with(" in RecordsetDitteCollegatePiuPrincipale"))
      << service.Errore.text();
  service.RecordsetDitteCollegateOPrincipale();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(service.Errore.text().ends_with(" in RecordsetDitteCollegateOPrincipale"))
      << service.Errore.text();
}

}  // namespace
}  // namespace azcoll::test
