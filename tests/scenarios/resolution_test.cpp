// Who is linked to whom in the example group.

#include "scenarios/company_database.h"

namespace azcoll::test {
namespace {

class Resolution : public CompanyDatabase {
 protected:
  void ask(int company, const Variant& year) {
    service.CPInput->Pvar_Ditta = company;
    service.CPInput->AnnoSolare = year;
  }
};

TEST_F(Resolution, TheMainCompanyOfAGroupIsTheSameForAllOfIt) {
  for (const int year : {2024, 2025}) {
    for (const int company : {5, 10, 12, 15}) {
      ask(company, year);
      EXPECT_EQ(service.GetDittaPrincipale(), "10") << company << " in " << year;
    }
  }
  ask(20, 2025);
  EXPECT_EQ(service.GetDittaPrincipale(), "");
  ask(5, 2019);
  EXPECT_EQ(service.GetDittaPrincipale(), "");
}

TEST_F(Resolution, TheAccountingTypeIsThatOfTheCompanysOwnLink) {
  ask(12, 2025);
  EXPECT_EQ(service.GetDittaPrincipale(), "10");
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{2}});
  ask(5, 2025);
  EXPECT_EQ(service.GetDittaPrincipale(), "10");
  EXPECT_EQ(service.CPOutput->IndTipoCont, Variant{std::int16_t{0}});
}

TEST_F(Resolution, OnlyTheMainCompanyIsTheMainCompany) {
  for (const int company : {5, 10, 12, 15, 20}) {
    ask(company, 2025);
    service.ControllaDittaPrincipale();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
    EXPECT_EQ(service.CPOutput->Gbol_DittaPrincipale, company == 10) << company;
  }
}

TEST_F(Resolution, AMainAndALinkedCompanyTakePartInALink) {
  for (const int company : {10, 12}) {
    ask(company, 2025);
    service.ControllaDittaCollegata();
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
    EXPECT_TRUE(service.CPOutput->Gbol_DittaPrincipale);
    EXPECT_TRUE(sameValue(service.CPOutput->Gvar_DittaPrincipale, 10));
  }
}

TEST_F(Resolution, ACompanyOutsideKeepsTheOtherFieldsOfTheCallBefore) {
  ask(31, 2025);
  service.ControllaDittaCollegata();
  ask(20, 2025);
  service.ControllaDittaCollegata();
  EXPECT_FALSE(service.CPOutput->Gbol_DittaPrincipale);
  EXPECT_TRUE(sameValue(service.CPOutput->Gvar_DittaPrincipale, 30));
  EXPECT_TRUE(sameValue(service.CPOutput->IndTipoCont, 1));
}

TEST_F(Resolution, RowsOfASingleCompanyAreNoLinks) {
  ask(40, 2025);
  service.ControllaDittaCollegata();
  EXPECT_FALSE(service.CPOutput->Gbol_DittaPrincipale);
  EXPECT_EQ(service.GetDittaPrincipale(), "");
  service.DitteCollegate();
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{""});
}

TEST_F(Resolution, TheListOfAMainCompanyEndsWithIt) {
  ask(10, 2025);
  service.DitteCollegate();
  // No order is imposed on the linked companies.
  std::string list = service.CPOutput->DitteCollegate.text();
  ASSERT_TRUE(list.ends_with(", 10")) << list;
  Lines companies;
  for (std::size_t comma = list.find(", "); comma != std::string::npos; comma = list.find(", ")) {
    companies.push_back(list.substr(0, comma));
    list = list.substr(comma + 2);
  }
  std::ranges::sort(companies);
  EXPECT_EQ(companies, (Lines{"12", "15", "5"}));
}

TEST_F(Resolution, TheListOfALinkedCompanyIsEmpty) {
  ask(12, 2025);
  service.DitteCollegate();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(service.CPOutput->DitteCollegate, Variant{""});
}

TEST_F(Resolution, TheYearComesFromTheStartDateWhenItIsNotGiven) {
  ask(5, {});
  service.CPInput->DataInizioElaborazione = Date::of(2024, 6, 30).value();
  EXPECT_EQ(service.GetDittaPrincipale(), "10");
  service.CPInput->DataInizioElaborazione = "30/06/2019";
  EXPECT_EQ(service.GetDittaPrincipale(), "");
}

TEST_F(Resolution, AYearThatIsNoNumberIsTheDatabasesRefusal) {
  ask(5, "duemila");
  service.ControllaDittaCollegata();
  EXPECT_EQ(service.Stato, Variant{std::int16_t{99}});
  EXPECT_TRUE(service.Errore.text().ends_with(" in ControllaDittaCollegata"));
  service.DitteCollegate();
  EXPECT_TRUE(service.Errore.text().ends_with(" in DitteCollegate"));
  EXPECT_EQ(service.GetDittaPrincipale(), "");
}

TEST_F(Resolution, AConnectionOfTheCallerStaysOpenWhenTheServiceEnds) {
  const auto input = std::make_shared<CLSCO_INPUTAZCOLL>();
  {
    CLSCO_AZIENDECOLL other;
    other.CPInput = input;
    input->Connessione = connection;
    input->Pvar_Ditta = 5;
    input->AnnoSolare = 2025;
    EXPECT_EQ(other.GetDittaPrincipale(), "10");
  }
  EXPECT_EQ(input->Connessione, nullptr);
  EXPECT_TRUE(connection->isOpen());
}

}  // namespace
}  // namespace azcoll::test
