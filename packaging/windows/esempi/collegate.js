// Cerca l'azienda principale del gruppo e usa un campo con l'accento nel nome.
// Uso: cscript //nologo collegate.js "stringa di connessione" azienda anno
var argomenti = WScript.Arguments;
var connessione = new ActiveXObject("ADODB.Connection");
connessione.Open(argomenti(0));
var servizio = new ActiveXObject("AZCOLLSRV.CLSCO_AZIENDECOLL");
servizio.CPInput.Connessione = connessione;
servizio.CPInput.Pvar_Ditta = Number(argomenti(1));
servizio.CPInput.AnnoSolare = Number(argomenti(2));
servizio.CPInput["CodiceAttivit\u00e0"] = "4711";
var principale = servizio.GetDittaPrincipale();
WScript.Echo("Ditta principale: " + principale);
WScript.Echo("Attivita': " + servizio.CPInput.CodiceAttività);
WScript.Echo("Stato " + servizio.Stato);
connessione.Close();
