#include <iostream>

#include "component/service.h"

int main(int argc, char** argv) {
  azcoll::CLSCO_AZIENDECOLL servizio;
  servizio.CPInput->StringaConnessione =
      std::string("Provider=embedded;Data Source=") + argv[argc - 1];
  servizio.CPInput->Pvar_Ditta = 5;
  servizio.CPInput->Pvar_CliFor = 120;
  servizio.CPInput->AnnoSolare = 2025;
  servizio.DuplicaCliFor();
  std::cout << "Stato " << servizio.Stato.text() << ", codice "
            << servizio.CPInput->Pvar_CliFor.text() << "\n";
}
