Option Explicit
Dim parametri
Set parametri = CreateObject("AZCOLLSRV.CLSCO_INPUTAZCOLL")
parametri.CodiceAttività = "4711"
parametri.SelezionaAttivitàPrincipale = True
parametri.Pvar_Ditta = Null
WScript.Echo parametri.CODICEATTIVITÀ & " " & CStr(parametri.selezionaattivitàprincipale) & " " & CStr(IsNull(parametri.Pvar_Ditta)) & " " & CStr(IsEmpty(parametri.Pvar_CliFor)) & " " & CStr(parametri.Connessione Is Nothing)
