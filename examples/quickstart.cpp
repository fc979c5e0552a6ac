#include <iostream>
#include "service/service.h"

int main() {
  azcoll::CLSCO_AZIENDECOLL servizio;
  servizio.CPInput->StringaConnessione = "Provider=embedded;Data Source=azienda.db";
  servizio.CPInput->Pvar_Ditta = 5;
  servizio.CPInput->Pvar_CliFor = 120;
  servizio.CPInput->AnnoSolare = 2025;
  servizio.DuplicaCliFor();
  std::cout << "Stato " << servizio.Stato.text() << ", codice " << servizio.CPInput->Pvar_CliFor.text() << '\n';
}
