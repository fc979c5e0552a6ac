' Diffonde nel gruppo un cliente appena salvato.
' Uso: cscript //nologo duplica.vbs "stringa di connessione" azienda anno codice
Option Explicit
Dim argomenti, connessione, servizio
Set argomenti = WScript.Arguments
Set connessione = CreateObject("ADODB.Connection")
connessione.Open argomenti(0)
Set servizio = CreateObject("AZCOLLSRV.CLSCO_AZIENDECOLL")
Set servizio.CPInput.Connessione = connessione
servizio.CPInput.Pvar_Ditta = CLng(argomenti(1))
servizio.CPInput.AnnoSolare = CLng(argomenti(2))
servizio.CPInput.Pint_TipoCF = 0
servizio.CPInput.Pvar_CliFor = CLng(argomenti(3))
servizio.DuplicaCliFor
If servizio.Stato = 0 Then
  WScript.Echo "Stato 0: il codice e' diventato " & servizio.CPInput.Pvar_CliFor
Else
  WScript.Echo "Stato " & servizio.Stato & ": " & servizio.Errore
End If
connessione.Close
