' How many companies hold the registry entry of a customer, told by the database itself.
Option Explicit
Dim connessione
Set connessione = CreateObject("ADODB.Connection")
connessione.Open WScript.Arguments(0)
WScript.Echo conta("CG44_CLIFOR = 122 AND CG44_CODICE_CG16 = 3005") & " " & conta("CG44_CLIFOR = 122 AND CG44_CODICE_CG16 = 3005 AND CG44_FLGATTIVO = 0") & " " & conta("CG44_CLIFOR = 120 AND CG44_DITTA_CG18 = 5")
connessione.Close
Function conta(condizione)
  conta = connessione.Execute("SELECT COUNT(1) AS N FROM CG44_CLIFOR WHERE " & condizione).Fields("N").Value
End Function
