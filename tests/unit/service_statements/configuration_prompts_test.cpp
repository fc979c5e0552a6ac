#include "configuration_fixture.h"

namespace azcoll::test {
namespace {

std::string countStatement(const std::string& regime, const std::string& activity = "") {
  return " SELECT COUNT(1) AS NUM FROM   CG25_ANADITTAGEST WHERE  CG25_DITTA_CG18 = 20    AND "
         "CG25_FLGIVAQUATER = " +
         regime +
         "    AND NOT EXISTS (SELECT 1                    FROM   CG86_AZIENDECOLL                "
         "    WHERE  CG86_INDTIPO = 0                       AND CG86_ANNOIVA = 2024              "
         "         AND CG86_DITTACOLL_CG18 = 20" +
         activity + "                    )";
}

const std::string kSeveral =
    "L'azienda corrente gestisce l'esercizio delle multi attività su più aziende, ma non esistono "
    "collegamenti per l'anno 2024.\r\n";
const std::string kSingle =
    "L'azienda corrente gestisce l'esercizio delle multi attività su singola azienda, ma non "
    "esiste la configurazione per l'anno 2024.\r\nSi vuole procedere alla configurazione?";

class PromptsTest : public ConfigurationTest {
 protected:
  PromptsTest() { missing(1); }
};

// ------------------------------------------------------------ several companies

TEST_F(PromptsTest, NothingIsAskedWhenNothingIsMissing) {
  missing(0);
  EXPECT_TRUE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(steps(), Lines{countStatement("1")});
  EXPECT_EQ(connection->operations.size(), 1U);
  EXPECT_EQ(connection->operations.front().options, Ints{1});
  EXPECT_TRUE(service.ControllaAttivitaNonCollegata());
  EXPECT_EQ(steps().back(), countStatement("2"));
  EXPECT_EQ(connection->operations.back().options, Ints{1});
  EXPECT_TRUE(platform->prompts.empty());
  expectSilentSuccess();
}

TEST_F(PromptsTest, ARefusalIsNoError) {
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(steps(), (Lines{countStatement("1"), "Prompt"}));
  EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
  EXPECT_EQ(steps(), (Lines{countStatement("1"), "Prompt", countStatement("2"), "Prompt"}));
  for (const Prompt& prompt : platform->prompts) {
    EXPECT_EQ(prompt.style, 36);  // Yes and No, question icon
    EXPECT_EQ(prompt.title, "Richiesta");
  }
  EXPECT_TRUE(platform->created.empty());
  expectSilentSuccess();
}

TEST_F(PromptsTest, FromTheFinancialYearsThePromptWarnsOfTheCustomersOrSuppliers) {
  const std::vector<std::pair<std::int32_t, std::string>> wordings{
      {0, "clienti"}, {1, "fornitori"}, {2, "clienti/fornitori"}, {-1, "clienti/fornitori"}};
  for (const auto& [kind, wording] : wordings) {
    input().Pint_TipoCF = static_cast<EnumTipoCF>(kind);
    EXPECT_FALSE(service.ControllaDittaNonCollegata());
    EXPECT_EQ(platform->prompts.back().text,
              kSeveral + "Questo potrebbe causare un disallineamento tra i " + wording +
                  ".\r\nSi vuole procedere al collegamento?");
  }
  input().Pint_TipoCF = Cliente;
  input().TipoMsgAziendeColl = static_cast<EnumTipoMsgAziendeColl>(2);
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_NE(platform->prompts.back().text.find("disallineamento"), std::string::npos);
}

TEST_F(PromptsTest, FromTheJournalThePromptDoesNotWarn) {
  input().TipoMsgAziendeColl = MsgProvenienzaPrimaNota;
  for (const EnumTipoCF kind : {Cliente, Fornitore}) {
    input().Pint_TipoCF = kind;
    EXPECT_FALSE(service.ControllaDittaNonCollegata());
    EXPECT_EQ(platform->prompts.back().text, kSeveral + "Si vuole procedere al collegamento?");
  }
}

TEST_F(PromptsTest, TheYearIsThatOfTheCall) {
  input().AnnoSolare = Variant{};
  input().DataInizioElaborazione = Date{.year = 2019, .month = 7, .day = 1};
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_NE(platform->prompts.back().text.find("per l'anno 2019."), std::string::npos);
  EXPECT_NE(steps().front().find("CG86_ANNOIVA = 2019 "), std::string::npos);
  EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
  EXPECT_NE(platform->prompts.back().text.find("per l'anno 2019."), std::string::npos);
  EXPECT_NE(steps()[2].find("CG86_ANNOIVA = 2019 "), std::string::npos);
}

// ------------------------------------------------------------ a single company

TEST_F(PromptsTest, TheActivityIsNamedAndLookedForWhenItIsGiven) {
  input().CodiceAttività = std::int32_t{4001};
  EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
  EXPECT_EQ(steps().front(), countStatement("2", " AND CG86_CODATTIVITA = 4001"));
  EXPECT_EQ(platform->prompts.back().text,
            "L'azienda corrente gestisce l'esercizio delle multi attività su singola azienda, ma "
            "non esiste la configurazione dell'attività 4001 per l'anno 2024.\r\nSi vuole "
            "procedere alla configurazione?");
}

TEST_F(PromptsTest, WithoutAnActivityAnyOneOfTheYearIsEnough) {
  for (const Variant& none : {Variant{}, Variant{kNull}, Variant{""}}) {
    connection->operations.clear();
    input().CodiceAttività = none;
    EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
    EXPECT_EQ(steps(), (Lines{countStatement("2"), "Prompt"}));
    EXPECT_EQ(platform->prompts.back().text, kSingle);
  }
}

TEST_F(PromptsTest, NeitherOriginNorKindChangesThePromptOfASingleCompany) {
  for (const EnumTipoMsgAziendeColl origin :
       {MsgProvenienzaEserciziAzienda, MsgProvenienzaPrimaNota}) {
    for (const EnumTipoCF kind : {Cliente, Fornitore}) {
      input().TipoMsgAziendeColl = origin;
      input().Pint_TipoCF = kind;
      EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
      EXPECT_EQ(platform->prompts.back().text, kSingle);
    }
  }
}

TEST_F(PromptsTest, TheActivityDoesNotMatterForSeveralCompanies) {
  input().CodiceAttività = std::int32_t{4001};
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(steps(), (Lines{countStatement("1"), "Prompt"}));
  EXPECT_EQ(platform->prompts.back().text.find("4001"), std::string::npos);
}

// ------------------------------------------------------------ the year that is being duplicated

TEST_F(PromptsTest, WithoutALinkInTheYearToDuplicateNothingIsCountedOrAsked) {
  input().AnnoSolareDaDuplicare = std::int32_t{2022};
  output().Gbol_DittaPrincipale = true;
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(steps(), Lines{linkStatement("2022")});
  EXPECT_EQ(input().AnnoSolare, Variant{std::int32_t{2024}});
  EXPECT_FALSE(output().Gbol_DittaPrincipale);
  expectSilentSuccess();
}

TEST_F(PromptsTest, WithALinkInTheYearToDuplicateTheCurrentYearIsChecked) {
  input().AnnoSolareDaDuplicare = std::int32_t{2022};
  linkedIn("2022");
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(steps(), (Lines{linkStatement("2022"), countStatement("1"), "Prompt"}));
  EXPECT_NE(platform->prompts.back().text.find("per l'anno 2024."), std::string::npos);
  EXPECT_EQ(input().AnnoSolare, Variant{std::int32_t{2024}});
  // What the look at that year found stands in the output.
  EXPECT_TRUE(output().Gbol_DittaPrincipale);
  EXPECT_EQ(output().Gvar_DittaPrincipale.text(), "10");
}

TEST_F(PromptsTest, AMissingYearOfTheCallIsMissingAgainAfterwards) {
  for (const Variant& none : {Variant{}, Variant{kNull}, Variant{""}}) {
    input().AnnoSolare = none;
    input().AnnoSolareDaDuplicare = "2022";
    linkedIn("2022");
    EXPECT_FALSE(service.ControllaDittaNonCollegata());
    EXPECT_EQ(input().AnnoSolare, none);
    EXPECT_NE(platform->prompts.back().text.find("per l'anno 2024."), std::string::npos);
  }
}

TEST_F(PromptsTest, AFailureOfThatLookEndsTheCheckUnderItsOwnName) {
  input().AnnoSolareDaDuplicare = std::int32_t{2022};
  connection->fail("SELECT * FROM CG86", Failure::Provider, "Timeout expired");
  output().Gbol_DittaPrincipale = true;  // from an earlier call
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  expectState(99, "Timeout expired in ControllaDittaCollegata");
  EXPECT_EQ(steps(), Lines{linkStatement("2022")});
  EXPECT_EQ(input().AnnoSolare, Variant{std::int32_t{2024}});
}

TEST_F(PromptsTest, ASingleCompanyDoesNotLookAtTheYearToDuplicate) {
  input().AnnoSolareDaDuplicare = std::int32_t{2022};
  EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
  EXPECT_EQ(steps(), (Lines{countStatement("2"), "Prompt"}));
}

// ------------------------------------------------------------ yes without a framework

TEST_F(PromptsTest, WithoutAFrameworkAYesOnlyAsksAgain) {
  platform->answers = {Answer::Yes, Answer::Yes, Answer::No};
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  EXPECT_EQ(steps(), (Lines{countStatement("1"), "Prompt", countStatement("1"), "Prompt",
                            countStatement("1"), "Prompt"}));
  EXPECT_EQ(platform->prompts[2].text, platform->prompts[0].text);
  EXPECT_TRUE(platform->created.empty());
  connection->operations.clear();
  platform->prompts.clear();
  EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
  EXPECT_EQ(steps().size(), 6U);
  EXPECT_TRUE(platform->created.empty());
  expectSilentSuccess();
}

// ------------------------------------------------------------ failures

TEST_F(PromptsTest, AFailingCountIsReportedUnderTheMethodsName) {
  for (const Failure failure : {Failure::Provider, Failure::Own, Failure::Foreign}) {
    connection->fail(" SELECT COUNT(1) AS NUM", failure, "Rotto");
    EXPECT_FALSE(service.ControllaDittaNonCollegata());
    expectState(99, "Rotto in ControllaDittaNonCollegata");
    EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
    expectState(99, "Rotto in ControllaAttivitaNonCollegata");
  }
  EXPECT_TRUE(platform->prompts.empty());
}

TEST_F(PromptsTest, ACallWithoutCompanyOrConnectionDoesNothing) {
  input().Pvar_Ditta = kNull;
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  expectState(1, "Codice azienda mancante!");
  service.Errore = Variant{};
  EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
  expectState(1, "Codice azienda mancante!");
  input().Connessione = nullptr;
  EXPECT_FALSE(service.ControllaDittaNonCollegata());
  expectState(1, "Stringa di connessione mancante!");
  service.Errore = Variant{};
  EXPECT_FALSE(service.ControllaAttivitaNonCollegata());
  expectState(1, "Stringa di connessione mancante!");
  EXPECT_TRUE(connection->operations.empty());
}

}  // namespace
}  // namespace azcoll::test
