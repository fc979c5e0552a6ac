# Diffonde nel gruppo un cliente appena salvato.
# Uso: .\duplica.ps1 "stringa di connessione" azienda anno codice
param([string]$Stringa, [int]$Azienda, [int]$Anno, [int]$Codice)
$connessione = New-Object -ComObject ADODB.Connection
$connessione.Open($Stringa)
$servizio = New-Object -ComObject AZCOLLSRV.CLSCO_AZIENDECOLL
$parametri = $servizio.CPInput
$parametri.Connessione = $connessione
$parametri.Pvar_Ditta = $Azienda
$parametri.AnnoSolare = $Anno
$parametri.Pint_TipoCF = 0
$parametri.Pvar_CliFor = $Codice
$servizio.DuplicaCliFor()
if ($servizio.Stato -eq 0) { "Stato 0: il codice e' diventato $($parametri.Pvar_CliFor)" }
else { "Stato $($servizio.Stato): $($servizio.Errore)" }
$connessione.Close()
