#include "statements/composed_statements.h"

#include <array>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "component/members.h"
#include "component/service.h"
#include "embedded/embedded_connection.h"
#include "support/method.h"
#include "support/recording_connection.h"
#include "support/test_database.h"
#include "tsql/parser.h"

namespace azcoll::statements {
namespace {

/// An example database that tells each shape of a statement once.
class Recorder {
 public:
  Recorder(std::string_view method, const Listener& listener)
      : method_{method}, listener_{listener} {
    std::shared_ptr<Connection> inner = embedded::newConnection();
    inner->setConnectionString("Provider=embedded;Data Source=:memory:");
    inner->open("", "", CommandOption::Unspecified);
    test::fillExample(*inner);
    connection_ = std::make_shared<test::RecordingConnection>(
        std::move(inner), test::RecordingConnection::Listener{
                              [this](std::string_view text) { take(text); },
                              [this](std::string_view name) { listener_.procedure(name); }});
  }

  void take(std::string_view text) {
    tsql::scanShape(text, shape_);
    if (!shape_.cacheable || shapes_.insert(shape_.key).second) {
      listener_.statement(method_, text);
    }
  }

  [[nodiscard]] const std::shared_ptr<test::RecordingConnection>& connection() const {
    return connection_;
  }

 private:
  std::string_view method_;
  const Listener& listener_;
  std::shared_ptr<test::RecordingConnection> connection_;
  std::set<std::string> shapes_;
  tsql::Shape shape_;
};

using Setting = void (*)(CLSCO_INPUTAZCOLL&);

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

struct CustomerOrSupplier {
  EnumTipoCF kind;
  int code;
};
constexpr std::array<CustomerOrSupplier, 7> kCustomersAndSuppliers{{{Cliente, 110},
                                                                    {Cliente, 112},
                                                                    {Cliente, 120},
                                                                    {Cliente, 125},
                                                                    {Cliente, 150},
                                                                    {Fornitore, 205},
                                                                    {Fornitore, 210}}};

void callOn(Recorder& recorder, const MethodEntry& method, int company, int year, Setting setting,
            const CustomerOrSupplier& one) {
  CLSCO_AZIENDECOLL service;
  CLSCO_INPUTAZCOLL& in = *service.CPInput;
  in.Connessione = recorder.connection();
  in.Pvar_Ditta = company;
  in.AnnoSolare = year;
  in.AnnoSolareDaDuplicare = year - 1;
  in.Pint_TipoCF = one.kind;
  in.Pvar_CliFor = one.code;
  setting(in);
  test::callMethod(service, method);
  // A statement that a method hands out is the caller's to run; a condition alone is none.
  const std::string handedOut = service.CPOutput->GstrSQL_AttivitaCollegate;
  if (handedOut.starts_with(" SELECT") || handedOut.starts_with(" DELETE")) {
    recorder.take(handedOut);
  }
}

}  // namespace

void composeEverything(const Listener& listener) {
  for (const MethodEntry& method : kMethods) {
    Recorder recorder{method.name, listener};
    for (const int company : {5, 10, 12, 15, 20, 30, 31, 40}) {
      for (const int year : {2024, 2025, 2026}) {
        callOn(recorder, method, company, year, kSettings.front(), {Cliente, 120});
      }
      for (const Setting setting : kSettings) {
        callOn(recorder, method, company, 2025, setting, {Cliente, 110});
      }
    }
    for (const int company : {5, 10}) {
      for (const CustomerOrSupplier& one : kCustomersAndSuppliers) {
        callOn(recorder, method, company, 2025, kSettings.front(), one);
      }
    }
  }
}

}  // namespace azcoll::statements
