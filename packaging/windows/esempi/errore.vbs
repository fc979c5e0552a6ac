' Mostra come si legge un errore: un codice che non e' un numero fa fallire la ricerca del cliente.
' Uso: cscript //nologo errore.vbs "stringa di connessione" azienda anno codice
Option Explicit
Dim argomenti, connessione, servizio
Set argomenti = WScript.Arguments
Set connessione = CreateObject("ADODB.Connection")
connessione.Open argomenti(0)
Set servizio = CreateObject("AZCOLLSRV.CLSCO_AZIENDECOLL")
Set servizio.CPInput.Connessione = connessione
servizio.CPInput.Pvar_Ditta = CLng(argomenti(1))
servizio.CPInput.AnnoSolare = CLng(argomenti(2))
servizio.CPInput.Pvar_CliFor = argomenti(3)
servizio.DuplicaCliFor
WScript.Echo "Stato " & servizio.Stato & ": " & servizio.Errore
connessione.Close
