#include "ado/hresult.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "ado/wide_text.h"
#include "data/text.h"

namespace azcoll::ado {
namespace {

struct Description {
  HRESULT code;
  std::string_view text;
};

constexpr std::array kDescriptions{
    Description{E_OUTOFMEMORY, "Memoria insufficiente"},
    Description{E_NOTIMPL, "Operazione non prevista dall'oggetto"},
    Description{E_NOINTERFACE, "Interfaccia non prevista dall'oggetto"},
    Description{E_ACCESSDENIED, "Accesso negato"},
    Description{E_FAIL, "Errore di automazione"},
    Description{REGDB_E_CLASSNOTREG, "Classe non registrata"},
    Description{CO_E_CLASSSTRING, "Nome di classe non registrato"},
    Description{CO_E_NOTINITIALIZED, "Automazione non inizializzata in questo thread"},
    Description{RPC_E_DISCONNECTED, "L'oggetto chiamato non esiste più"},
    Description{RPC_E_WRONG_THREAD, "Oggetto chiamato da un altro thread"},
    Description{DISP_E_UNKNOWNNAME, "Membro non previsto dall'oggetto"},
    Description{DISP_E_MEMBERNOTFOUND, "Membro non previsto dall'oggetto"},
    Description{DISP_E_TYPEMISMATCH, "Tipo non corrispondente"},
    Description{DISP_E_BADVARTYPE, "Tipo di dato non gestito"},
    Description{DISP_E_OVERFLOW, "Overflow"},
    Description{DISP_E_BADPARAMCOUNT, "Numero di argomenti non valido"},
    Description{DISP_E_PARAMNOTOPTIONAL, "Argomento obbligatorio mancante"},
    Description{DISP_E_PARAMNOTFOUND, "Argomento non trovato"},
};

std::string systemText(HRESULT code) {
  std::array<wchar_t, 512> buffer{};
  const DWORD length =
      FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                     static_cast<DWORD>(code), 0, buffer.data(), buffer.size(), nullptr);
  std::string text = narrowText({buffer.data(), length});
  text.erase(text.find_last_not_of(" \r\n") + 1);
  return text;
}

}  // namespace

std::string describe(HRESULT code) {
  std::array<char, 16> number{};
  std::snprintf(number.data(), number.size(), "0x%08lX", static_cast<unsigned long>(code));
  const auto* const known =
      std::find_if(kDescriptions.begin(), kDescriptions.end(),
                   [code](const Description& entry) { return entry.code == code; });
  std::string text = known != kDescriptions.end() ? std::string{known->text} : systemText(code);
  if (text.empty()) {
    text = "Errore di automazione";
  }
  return join(text, " (", number.data(), ")");
}

Error automationError(HRESULT code) { return Error{describe(code)}; }

void check(HRESULT code) {
  if (FAILED(code)) {
    throw automationError(code);
  }
}

}  // namespace azcoll::ado
