#include "statements/method_calls.h"

#include <array>

#include "support/method.h"

namespace azcoll::statements {
namespace {

/// What a caller may set beside company and year, one at a time.
constexpr std::array<Setting, 15> kSettings{
    [](CLSCO_INPUTAZCOLL&) {},
    [](CLSCO_INPUTAZCOLL& in) { in.CodiceSede = 1; },
    [](CLSCO_INPUTAZCOLL& in) { in.CodiceIntermedio = 1; },
    [](CLSCO_INPUTAZCOLL& in) { in.CodiceAttività = 1001; },
    [](CLSCO_INPUTAZCOLL& in) { in.CodiceAttività = 9999; },
    [](CLSCO_INPUTAZCOLL& in) { in.IdAttività = 5; },
    [](CLSCO_INPUTAZCOLL& in) { in.Sezionale = "01"; },
    [](CLSCO_INPUTAZCOLL& in) { in.Pbol_AggiungiCampiDecodificheAttività = true; },
    [](CLSCO_INPUTAZCOLL& in) { in.IndProvenienzaMultiAziende = true; },
    [](CLSCO_INPUTAZCOLL& in) { in.SelezionaAttivitàSingolaAzienda = true; },
    [](CLSCO_INPUTAZCOLL& in) { in.InserisciAttivitàDaPeriodoPrecedente = true; },
    [](CLSCO_INPUTAZCOLL& in) { in.SelezionaSoloAnagraficheAttività = true; },
    [](CLSCO_INPUTAZCOLL& in) { in.SelezionaAttivitàPrincipale = true; },
    [](CLSCO_INPUTAZCOLL& in) { in.Pbol_ValorizzaRecordsetSezionali = true; },
    [](CLSCO_INPUTAZCOLL& in) { in.MultiAziendaEscludiCollegate = true; },
};

constexpr std::array<CustomerOrSupplier, 7> kCustomersAndSuppliers{{{Cliente, 110},
                                                                    {Cliente, 112},
                                                                    {Cliente, 120},
                                                                    {Cliente, 125},
                                                                    {Cliente, 150},
                                                                    {Fornitore, 205},
                                                                    {Fornitore, 210}}};

}  // namespace

std::vector<MethodCall> callsOf(const MethodEntry& method) {
  std::vector<MethodCall> calls;
  for (const int company : {5, 10, 12, 15, 20, 30, 31, 40}) {
    for (const int year : {2024, 2025, 2026}) {
      calls.push_back({&method, company, year, kSettings.front(), {Cliente, 120}});
    }
    for (const Setting setting : kSettings) {
      calls.push_back({&method, company, 2025, setting, {Cliente, 110}});
    }
  }
  for (const int company : {5, 10}) {
    for (const CustomerOrSupplier& one : kCustomersAndSuppliers) {
      calls.push_back({&method, company, 2025, kSettings.front(), one});
    }
  }
  return calls;
}

std::string make(const MethodCall& call, const std::shared_ptr<Connection>& connection) {
  CLSCO_AZIENDECOLL service;
  CLSCO_INPUTAZCOLL& in = *service.CPInput;
  in.Connessione = connection;
  in.Pvar_Ditta = call.company;
  in.AnnoSolare = call.year;
  in.AnnoSolareDaDuplicare = call.year - 1;
  in.Pint_TipoCF = call.one.kind;
  in.Pvar_CliFor = call.one.code;
  call.setting(in);
  test::callMethod(service, *call.method);
  const std::string handedOut = service.CPOutput->GstrSQL_AttivitaCollegate;
  const bool isStatement = handedOut.starts_with(" SELECT") || handedOut.starts_with(" DELETE");
  return isStatement ? handedOut : std::string{};
}

}  // namespace azcoll::statements
