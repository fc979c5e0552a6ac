' Methods and results with an accent in their names, values handed over in variables.
Option Explicit
Dim connessione, servizio, azienda, anno
Set connessione = CreateObject("ADODB.Connection")
connessione.Open WScript.Arguments(0)
Set servizio = CreateObject("AZCOLLSRV.CLSCO_AZIENDECOLL")
azienda = CLng(WScript.Arguments(1))
anno = CLng(WScript.Arguments(2))
Set servizio.CPInput.Connessione = connessione
servizio.CPInput.Pvar_Ditta = azienda
servizio.CPInput.AnnoSolare = anno
servizio.CPInput.SelezionaAttivitàPrincipale = True
servizio.GetCodiceAttività
WScript.Echo servizio.CPOutput.CodiceAttività & " " & servizio.CPOutput.DescrAttività
servizio.STRINGASQLELIMINAZIONEATTIVITÀ
WScript.Echo servizio.Stato & " " & (InStr(servizio.CPOutput.GstrSQL_AttivitaCollegate, "CG86_AZIENDECOLL") > 0)
WScript.Echo servizio.VerificaEsistenzaAttivita() & " " & VarType(servizio.Errore)
servizio.RecordsetAttivitaCollegate
servizio.CPOutput.Grst_AttivitaCollegate.MoveFirst
WScript.Echo servizio.CPOutput.Grst_AttivitaCollegate.Fields("CG86_CODATTIVITA").Value
connessione.Close
