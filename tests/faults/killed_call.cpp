#include "faults/killed_call.h"

#include <csignal>
#include <cstdint>

#include "data/text.h"
#include "data/tracing.h"
#include "support/child_process.h"

namespace azcoll::test {

std::string customerOfTheWholeGroup() {
  std::string sql;
  for (const std::string& company : kGroup) {
    sql += join(
        "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16, "
        "CG44_TIPOCF_CG40, CG44_INTERMEDIO_CG40, CG44_FLGATTIVO) VALUES (",
        company, ", 0, 777, 3005, 0, Null, 1) ");
    sql += join("IF NOT EXISTS (SELECT 1 FROM CG40_ANADITTAINTER WHERE CG40_DITTA_CG18 = ", company,
                " AND CG40_TIPOCF = 0 AND CG40_INTERMEDIO = 1) INSERT INTO CG40_ANADITTAINTER "
                "(CG40_DITTA_CG18, CG40_TIPOCF, CG40_INTERMEDIO) VALUES (",
                company, ", 0, 1) ");
  }
  return sql +
         "UPDATE CG44_CLIFOR SET CG44_INTERMEDIO_CG40 = 1 WHERE CG44_DITTA_CG18 = 5 AND "
         "CG44_CLIFOR = 777";
}

Variant callOn(const std::shared_ptr<Connection>& connection, Method method, int company,
               int code) {
  CLSCO_AZIENDECOLL service;
  service.CPInput->Connessione = connection;
  service.CPInput->AnnoSolare = 2025;
  service.CPInput->Pvar_Ditta = company;
  service.CPInput->Pint_TipoCF = Cliente;
  service.CPInput->Pvar_CliFor = code;
  (service.*method)();
  return service.Stato;
}

std::vector<std::string> operationsOf(const std::shared_ptr<Connection>& connection,
                                      const Job& job) {
  std::vector<std::string> names;
  const Variant stato =
      callOn(std::make_shared<ConnessioneTracciata>(
                 connection, [&](const TraceEntry& entry) { names.push_back(entry.operation); }),
             job.method, 5, job.code);
  return stato == Variant{std::int16_t{0}} ? names : std::vector<std::string>{};
}

int killedAt(const std::function<std::shared_ptr<Connection>()>& open, const Job& job,
             std::size_t step, bool done) {
  ChildProcess process{[&] {
    std::size_t count = 0;
    const auto dieWhen = [&](bool here) {
      if (here && count == step) {
        ::raise(SIGKILL);
      }
    };
    const TraceHooks hooks{.after =
                               [&](const TraceEntry& /*entry*/) {
                                 dieWhen(done);
                                 ++count;
                               },
                           .before = [&](const TraceEntry& /*entry*/) { dieWhen(!done); }};
    callOn(std::make_shared<ConnessioneTracciata>(open(), hooks), job.method, 5, job.code);
    return 0;
  }};
  return process.wait();
}

}  // namespace azcoll::test
