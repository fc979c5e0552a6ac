// The code of a customer/supplier: free in the whole group, and recorded in the numbering.

#include "clifor/free_code.h"

#include <utility>
#include <vector>

#include "component/values.h"
#include "data/error.h"
#include "data/text.h"
#include "text/trimming.h"

namespace azcoll::clifor {
namespace {

constexpr std::int16_t kCustomerNumbering = 901;
constexpr std::int16_t kSupplierNumbering = 902;

/// The companies of the group without the current one; ", " only between elements.
std::string withMain(std::string list, const std::string& main) {
  if (!main.empty()) {
    list += list.empty() ? "" : ", ";
    list += main;
  }
  return list;
}

std::vector<std::string> split(const std::string& list) {
  std::vector<std::string> elements;
  std::size_t start = 0;
  for (std::size_t comma = list.find(','); comma != std::string::npos;
       comma = list.find(',', start)) {
    elements.push_back(list.substr(start, comma - start));
    start = comma + 1;
  }
  elements.push_back(list.substr(start));
  return elements;
}

}  // namespace

bool CodiceCliForLibero(Call& call, const Group& group, Variant& code) {
  // The source company is never in the list, not even when it is the main one: it holds the code.
  const std::string list =
      group.main != group.company ? withMain(group.others, group.main) : group.others;
  const int kind = static_cast<int>(call.input().Pint_TipoCF);
  const auto taken = [&] {
    bool found = false;
    ignoreErrors([&] {
      const std::shared_ptr<Recordset> row =
          call.read(join("SELECT CG44_CLIFOR",                     //
                         " FROM CG44_CLIFOR",                      //
                         " WHERE CG44_DITTA_CG18 IN(", list, ")",  //
                         " AND CG44_TIPOCF = ", kind,              //
                         " AND CG44_CLIFOR = ", code));
      found = !row->atEnd() && !call.isMissing(row->fields().item("CG44_CLIFOR").value());
    });
    return found;
  };
  if (!taken()) {
    return true;
  }
  ignoreErrors([&] {
    const std::shared_ptr<Recordset> last = call.read(
        join("SELECT MAX(CG70_ULTNUMDOC) AS CG70_ULTNUMDOC",                //
             " FROM CG70_NUMERDOC",                                         //
             " WHERE CG70_DITTA_CG18 IN(", list, ", ", group.company, ")",  //
             " AND CG70_SEZ_CG68 = '00'",                                   //
             " AND CG70_ANNO = 0",
             // Callers rely on it: no blank before this AND.
             kind == Cliente ? "AND CG70_TIPODOCINT = 901" : "AND CG70_TIPODOCINT = 902"));
    // Callers rely on it: the result has no field of this name, so that the search goes on from
    // the taken code and not from the last number.
    code = call.ValoreDefault(last->fields().item("CG44_CLIFOR").value(), "");
  });
  do {
    const Variant previous = code;
    ignoreErrors([&] { code = code.plusOne(); });
    if (code == previous) {
      break;  // it cannot be counted up: the caller's statements will report it
    }
  } while (taken());
  return false;
}

void NumeraCliFor(Call& call, const Group& group, const Variant& code) {
  const CLSCO_INPUTAZCOLL& in = call.input();
  // One day for the whole group, and one look at the clock.
  const Date today = call.platform().today();
  for (const std::string& element : split(withMain(group.others, group.main))) {
    const Variant company{trim(element)};
    if (call.isMissing(company) || equalsNumber(company, 0)) {
      continue;
    }
    const std::unique_ptr<NumerazioneDocumenti> numbering = call.platform().newNumbering();
    if (!numbering) {
      throw Error("Oggetto non impostato: numerazione dei documenti");
    }
    using enum NumerazioneDocumenti::Ingresso;
    numbering->imposta(TipoDocumento,
                       in.Pint_TipoCF == Cliente ? kCustomerNumbering : kSupplierNumbering);
    numbering->imposta(Ditta, company);
    numbering->imposta(Modo, NumerazioneDocumenti::kRecordUsedNumber);
    numbering->imposta(Sezione, "00");
    numbering->imposta(Anno, std::int16_t{0});
    numbering->imposta(Data, today);
    numbering->imposta(Codice, code);
    numbering->imposta(Connessione, std::shared_ptr<Object>{in.Connessione});
    numbering->imposta(StringaConnessione, in.StringaConnessione);
    numbering->ElaboraNumerazione();
    if (numbering->Stato() != 0) {
      call.Stato = kTrapped;
      call.Errore = join("Errore in Pcls_NumDoc.ElaboraNumerazione - Stato: ", numbering->Stato());
    }
  }
}

}  // namespace azcoll::clifor
