Attribute VB_Name = "Duplica"
Option Explicit

' Excel VBA: diffonde nel gruppo un cliente appena salvato. Nessun riferimento da impostare.
Public Sub DuplicaCliente(Stringa As String, Azienda As Long, Anno As Long, Codice As Long)
    Dim Connessione As Object, Servizio As Object
    Set Connessione = CreateObject("ADODB.Connection")
    Connessione.Open Stringa
    Set Servizio = CreateObject("AZCOLLSRV.CLSCO_AZIENDECOLL")
    With Servizio.CPInput
        Set .Connessione = Connessione
        .Pvar_Ditta = Azienda
        .AnnoSolare = Anno
        .Pint_TipoCF = 0
        .Pvar_CliFor = Codice
    End With
    Servizio.DuplicaCliFor
    If Servizio.Stato = 0 Then
        MsgBox "Il codice del cliente: " & Servizio.CPInput.Pvar_CliFor
    Else
        MsgBox "Stato " & Servizio.Stato & ": " & Servizio.Errore
    End If
    Connessione.Close
End Sub
