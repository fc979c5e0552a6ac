// The code of a customer/supplier: free in the whole group, and recorded in the numbering.

#include <vector>

#include "component/service.h"
#include "component/values.h"
#include "data/error.h"
#include "data/text.h"

namespace azcoll {
namespace {

constexpr std::int16_t kCustomerNumbering = 901;
constexpr std::int16_t kSupplierNumbering = 902;
/// The companies of the group without the current one; ", " only between elements.
std::string companies(const Variant& elenco, const std::string& principale) {
  std::string list = join(elenco);
  if (!principale.empty()) {
    list += list.empty() ? "" : ", ";
    list += principale;
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

/// Finds the first code, counting up from `codice`, that no company of the list holds for the kind.
/// Returns true when `codice` itself was free, else false with the new code in it. The main company
/// joins the list on the first call. A failing statement counts as "not taken": the caller's next
/// statement then fails with the message that tells why.
bool CLSCO_AZIENDECOLL::CodiceCliForLibero(const std::string& ditta,
                                           const std::string& dittaPrincipale,
                                           const Variant& elenco, Variant& codice,
                                           bool primaChiamata) {
  // The source company is never in the list, not even when it is the main one: it holds the code.
  const std::string list =
      primaChiamata && dittaPrincipale != ditta ? companies(elenco, dittaPrincipale) : join(elenco);
  const int tipoCF = static_cast<int>(input().Pint_TipoCF);
  const auto taken = [&] {
    bool found = false;
    ignoreErrors([&] {
      const std::shared_ptr<Recordset> row = leggi(join("SELECT CG44_CLIFOR",                     //
                                                        " FROM CG44_CLIFOR",                      //
                                                        " WHERE CG44_DITTA_CG18 IN(", list, ")",  //
                                                        " AND CG44_TIPOCF = ", tipoCF,            //
                                                        " AND CG44_CLIFOR = ", codice));
      found = !row->atEnd() && !mancante(row->fields().item("CG44_CLIFOR").value());
    });
    return found;
  };
  if (!taken()) {
    return true;
  }
  if (primaChiamata) {
    ignoreErrors([&] {
      const std::shared_ptr<Recordset> last = leggi(
          join("SELECT MAX(CG70_ULTNUMDOC) AS CG70_ULTNUMDOC",        //
               " FROM CG70_NUMERDOC",                                 //
               " WHERE CG70_DITTA_CG18 IN(", list, ", ", ditta, ")",  //
               " AND CG70_SEZ_CG68 = '00'",                           //
               " AND CG70_ANNO = 0",
               // Callers rely on it: no blank before this AND.
               tipoCF == Cliente ? "AND CG70_TIPODOCINT = 901" : "AND CG70_TIPODOCINT = 902"));
      // Callers rely on it: the result has no field of this name, so that the search goes on from
      // the taken code and not from the last number.
      codice = ValoreDefault(last->fields().item("CG44_CLIFOR").value(), "");
    });
  }
  do {
    const Variant previous = codice;
    ignoreErrors([&] { codice = codice.plusOne(); });
    if (codice == previous) {
      break;  // it cannot be counted up: the caller's statements will tell
    }
  } while (taken());
  return false;
}

/// Records the code in the numbering of every company of the group but the current one.
void CLSCO_AZIENDECOLL::NumeraCliFor(const std::string& /*ditta*/,
                                     const std::string& dittaPrincipale, const Variant& elenco,
                                     const Variant& codice) {
  const CLSCO_INPUTAZCOLL& in = input();
  const Date today = platform_->today();  // one day for the whole group, and one look at the clock
  for (const std::string& element : split(companies(elenco, dittaPrincipale))) {
    const Variant company{trim(element)};
    if (mancante(company) || isNumber(company, 0)) {
      continue;
    }
    const std::unique_ptr<NumerazioneDocumenti> numbering = platform_->newNumbering();
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
    numbering->imposta(Codice, codice);
    numbering->imposta(Connessione, std::shared_ptr<Object>{in.Connessione});
    numbering->imposta(StringaConnessione, in.StringaConnessione);
    numbering->ElaboraNumerazione();
    if (numbering->Stato() != 0) {
      Stato = kTrapped;
      Errore = join("Errore in Pcls_NumDoc.ElaboraNumerazione - Stato: ", numbering->Stato());
    }
  }
}

}  // namespace azcoll
