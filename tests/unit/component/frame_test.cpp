#include "unit/component/fixture.h"

namespace azcoll::testing {
namespace {

Variant anObject() { return std::shared_ptr<Object>{std::make_shared<Object>()}; }

class Frame : public ComponentTest {};

TEST_F(Frame, EveryMethodRefusesACallWithoutACompany) {
  for (const Variant& missing : {Variant{kNull}, Variant{}, Variant{""}}) {
    for (const auto method :
         {&CLSCO_AZIENDECOLL::DuplicaCliFor, &CLSCO_AZIENDECOLL::ControllaDittaPrincipale,
          &CLSCO_AZIENDECOLL::ControllaDittaCollegata, &CLSCO_AZIENDECOLL::DitteCollegate}) {
      service->Stato = std::int16_t{0};
      in().Pvar_Ditta = missing;
      out().DitteCollegate = "vecchio";
      ((*service).*method)();
      expectOutcome(1, "Codice azienda mancante!");
      EXPECT_EQ(shown(out().DitteCollegate), "''");
    }
    EXPECT_EQ(service->GetDittaPrincipale(), "");
    expectOutcome(1, "Codice azienda mancante!");
  }
  EXPECT_TRUE(log().empty());
}

TEST_F(Frame, AMissingConnectionIsReportedBeforeAMissingCompany) {
  in().Connessione = nullptr;
  in().Pvar_Ditta = kNull;
  service->DitteCollegate();
  expectOutcome(1, "Stringa di connessione mancante!");
  EXPECT_TRUE(platform->requested.empty());
}

TEST_F(Frame, ItsOwnConnectionIsSetUpThenOpenedOnce) {
  in().Connessione = nullptr;
  in().StringaConnessione = "Provider=x;Data Source=y";
  service->DitteCollegate();
  service->DitteCollegate();
  EXPECT_EQ(
      log({"ConnectionString", "CommandTimeout", "ConnectionCursorLocation", "ConnectionOpen"}),
      (Lines{"ConnectionString: Provider=x;Data Source=y", "CommandTimeout 100",
             "ConnectionCursorLocation 3", "ConnectionOpen -1"}));
  EXPECT_EQ(platform->requested, (Lines{"Provider=x;Data Source=y"}));
  EXPECT_EQ(in().Connessione, connection);
  EXPECT_TRUE(ServiceProbe::connessioneAperta(*service));
}

TEST_F(Frame, AGivenConnectionIsNeitherSetUpNorOpened) {
  in().StringaConnessione = "Provider=x";
  service->DitteCollegate();
  EXPECT_TRUE(log({"Connection", "CommandTimeout"}).empty());
  EXPECT_FALSE(ServiceProbe::connessioneAperta(*service));
}

TEST_F(Frame, OpeningFailuresAreReportedByTheFirstStatementOnly) {
  in().Connessione = nullptr;
  in().StringaConnessione = "Provider=x";
  connection->fail("ConnectionOpen", Failure::Provider, "Server assente");
  connection->fail("SELECT", Failure::Own, "Connessione chiusa");
  service->ControllaDittaCollegata();
  expectOutcome(99, "Connessione chiusa in ControllaDittaCollegata");
}

TEST_F(Frame, AConnectionThatCannotBeCreatedEndsInATrap) {
  in().Connessione = nullptr;
  in().StringaConnessione = "Provider=sconosciuto";
  platform->fails = [](std::string_view which) {
    if (which == "connection") {
      throw Error{"Fornitore sconosciuto"};
    }
  };
  service->ControllaDittaCollegata();
  EXPECT_EQ(shown(service->Stato), "Int16 99");
  EXPECT_TRUE(service->Errore.text().ends_with(" in ControllaDittaCollegata"));
}

TEST_F(Frame, TheServiceClosesOnlyWhatItOpened) {
  const std::shared_ptr<CLSCO_INPUTAZCOLL> given = service->CPInput;
  service.reset();
  EXPECT_TRUE(log().empty());
  EXPECT_TRUE(connection->isOpen());
  EXPECT_EQ(given->Connessione, nullptr);

  service = std::make_unique<CLSCO_AZIENDECOLL>(platform);
  in().StringaConnessione = "Provider=x";
  in().Pvar_Ditta = std::int32_t{5};
  service->DitteCollegate();
  const std::shared_ptr<CLSCO_INPUTAZCOLL> own = service->CPInput;
  service.reset();
  EXPECT_EQ(log({"ConnectionClose"}).size(), 1U);
  EXPECT_EQ(own->Connessione, nullptr);
}

TEST_F(Frame, AServiceWithoutItsObjectsEndsQuietly) {
  service->CPInput = nullptr;
  service->CPOutput = nullptr;
  EXPECT_NO_FATAL_FAILURE(service.reset());
}

TEST_F(Frame, MissingObjectsGiveACodeAndNoCrash) {
  for (const bool input : {true, false}) {
    auto other = std::make_unique<CLSCO_AZIENDECOLL>(platform);
    other->CPInput->Connessione = connection;
    other->CPInput->Pvar_Ditta = std::int32_t{5};
    (input ? void(other->CPInput.reset()) : void(other->CPOutput.reset()));
    for (const auto method :
         {&CLSCO_AZIENDECOLL::ControllaDittaPrincipale, &CLSCO_AZIENDECOLL::ControllaDittaCollegata,
          &CLSCO_AZIENDECOLL::DitteCollegate}) {
      other->Stato = std::int16_t{0};
      connection->answerPrefix("SELECT", rowSet({"DITTA", "CG86_DITTA_CG18", "CG86_INDTIPOCONT"},
                                                {kNull, kNull, kNull}));
      ((*other).*method)();
      EXPECT_EQ(shown(other->Stato), "Int16 99");
    }
    EXPECT_EQ(other->GetDittaPrincipale(), "");
  }
}

TEST_F(Frame, ObjectsOfTheCallerAreUsed) {
  auto mine = std::make_shared<CLSCO_INPUTAZCOLL>();
  mine->Connessione = connection;
  mine->Pvar_Ditta = std::int32_t{77};
  mine->AnnoSolare = std::int32_t{2020};
  auto results = std::make_shared<CLSCO_OUTPUTAZCOLL>();
  results->Gbol_DittaPrincipale = true;
  service->CPInput = mine;
  service->CPOutput = results;
  service->ControllaDittaCollegata();
  EXPECT_FALSE(results->Gbol_DittaPrincipale);
  EXPECT_TRUE(log({"Open "}).at(0).ends_with("= 77)"));
}

TEST_F(Frame, ThePreambleClearsTheTransactionFlagAndTheListOnly) {
  ServiceProbe::transazioneAperta(*service) = true;
  ServiceProbe::gestioneDuplicazione(*service) = true;
  out().DitteCollegate = "x";
  out().IndTipoCont = "y";
  EXPECT_TRUE(ServiceProbe::InizializzaMetodo(*service, true));
  EXPECT_FALSE(ServiceProbe::transazioneAperta(*service));
  EXPECT_TRUE(ServiceProbe::gestioneDuplicazione(*service));
  EXPECT_EQ(shown(out().DitteCollegate), "''");
  EXPECT_EQ(shown(out().IndTipoCont), "'y'");
}

TEST_F(Frame, WithoutOpeningThePreambleKeepsTheOutcome) {
  in().Connessione = nullptr;
  service->Stato = std::int16_t{99};
  EXPECT_TRUE(ServiceProbe::InizializzaMetodo(*service, false));
  EXPECT_EQ(shown(service->Stato), "Int16 99");
  in().Pvar_Ditta = "";
  EXPECT_FALSE(ServiceProbe::InizializzaMetodo(*service, false));
  expectOutcome(1, "Codice azienda mancante!");
}

TEST_F(Frame, TheDefaultStandsForNullEmptyAndBlankTextOnly) {
  for (const Variant& missing : {Variant{kNull}, Variant{}, Variant{""}}) {
    EXPECT_EQ(shown(ServiceProbe::ValoreDefault(*service, missing, "Null")), "'Null'");
    EXPECT_EQ(shown(ServiceProbe::ValoreDefault(*service, missing, std::int16_t{-1})), "Int16 -1");
  }
  for (const Variant& given : {Variant{" "}, Variant{std::int16_t{0}}, Variant{false},
                               Variant{*Decimal::parse("0.00")}, Variant{*Date::of(1900, 1, 1)}}) {
    EXPECT_EQ(shown(ServiceProbe::ValoreDefault(*service, given, "x")), shown(given));
  }
  expectSuccess();
}

TEST_F(Frame, AValueWithoutTextGivesEmptyAndACode) {
  service->Errore = "di prima";
  EXPECT_TRUE(ServiceProbe::ValoreDefault(*service, anObject(), "x").isEmpty());
  expectOutcome(99, "di prima");
}

TEST_F(Frame, TheReferenceYearFollowsItsThreeSources) {
  EXPECT_EQ(shown(ServiceProbe::AnnoRiferimento(*service, true)), "Int16 2024");
  in().AnnoSolare = "2023";
  EXPECT_EQ(shown(ServiceProbe::AnnoRiferimento(*service, true)), "'2023'");
  EXPECT_EQ(shown(ServiceProbe::AnnoRiferimento(*service, false)), "'2023'");
  in().AnnoSolare = std::int32_t{0};
  in().DataInizioElaborazione = *Date::of(2021, 12, 31, 23, 59, 59);
  EXPECT_TRUE(sameValue(ServiceProbe::AnnoRiferimento(*service, true), std::int16_t{2021}));
  EXPECT_TRUE(sameValue(ServiceProbe::AnnoRiferimento(*service, false), std::int16_t{0}));
  for (const Variant& missing : {Variant{kNull}, Variant{}, Variant{""}}) {
    in().AnnoSolare = missing;
    EXPECT_TRUE(sameValue(ServiceProbe::AnnoRiferimento(*service, false), std::int16_t{2021}));
  }
  for (const Variant& missing : {Variant{kNull}, Variant{}, Variant{""}}) {
    in().DataInizioElaborazione = missing;
    EXPECT_TRUE(sameValue(ServiceProbe::AnnoRiferimento(*service, true), std::int16_t{2024}));
  }
  expectSuccess();
}

TEST_F(Frame, FixedWidthTextsAreTrimmedPaddedAndCut) {
  const auto format = &ServiceProbe::FormattaCampo;
  EXPECT_EQ(format("  AB ", 4), "AB  ");
  EXPECT_EQ(format(kNull, 3), "   ");
  EXPECT_EQ(format(Variant{}, 3), "   ");
  EXPECT_EQ(format("ABCDEF", 4), "ABCD");
  EXPECT_EQ(format("", 2), "  ");
  EXPECT_EQ(format(std::int32_t{-12}, 5), "-12  ");
  EXPECT_EQ(format("A B", 3), "A B");
  EXPECT_EQ(format("è", 2), "è ");
  EXPECT_EQ(format("x", 0), "");
}

TEST_F(Frame, TheDuplicationFlagIsGivenOrTheServicesOwn) {
  for (const bool own : {true, false}) {
    ServiceProbe::gestioneDuplicazione(*service) = own;
    for (const Variant& missing : {Variant{kNull}, Variant{}, Variant{""}}) {
      in().AttivaGestioneDuplicazioneCliFor = missing;
      EXPECT_EQ(ServiceProbe::ValoreGestioneDuplicazioneCliFor(*service), own ? 1 : 0);
    }
    in().AttivaGestioneDuplicazioneCliFor = true;
    EXPECT_EQ(ServiceProbe::ValoreGestioneDuplicazioneCliFor(*service), 1);
    in().AttivaGestioneDuplicazioneCliFor = false;
    EXPECT_EQ(ServiceProbe::ValoreGestioneDuplicazioneCliFor(*service), 0);
    in().AttivaGestioneDuplicazioneCliFor = std::int32_t{-1};
    EXPECT_EQ(ServiceProbe::ValoreGestioneDuplicazioneCliFor(*service), 1);
  }
}

TEST_F(Frame, AnEmptyRecordsetIsNoneOrOneWithoutRows) {
  EXPECT_TRUE(ServiceProbe::RecordsetVuoto(nullptr));
  EXPECT_TRUE(ServiceProbe::RecordsetVuoto(newClientCursor()));  // closed: asking it fails
  ExecutionResult none;
  none.results.push_back(rowSet({"X"}, {}));
  EXPECT_TRUE(ServiceProbe::RecordsetVuoto(openClientCursor(none, nullptr)));
  ExecutionResult one;
  one.results.push_back(rowSet({"X"}, {std::int16_t{1}}));
  const std::shared_ptr<Recordset> row = openClientCursor(one, nullptr);
  EXPECT_FALSE(ServiceProbe::RecordsetVuoto(row));
  row->moveNext();
  EXPECT_FALSE(ServiceProbe::RecordsetVuoto(row));  // behind the last row, not before the first
}

}  // namespace
}  // namespace azcoll::testing
