// The same from JScript: accented names as properties and as plain names.
var connessione = new ActiveXObject("ADODB.Connection");
connessione.Open(WScript.Arguments(0));
var servizio = new ActiveXObject("AZCOLLSRV.CLSCO_AZIENDECOLL");
servizio.CPInput.Connessione = connessione;
servizio.CPInput.Pvar_Ditta = Number(WScript.Arguments(1));
servizio.CPInput.AnnoSolare = Number(WScript.Arguments(2));
servizio.CPInput["SelezionaAttivit\u00e0Principale"] = true;
servizio["GetCodiceAttivit\u00e0"]();
WScript.Echo(servizio.CPOutput["CodiceAttivit\u00e0"] + " " + servizio.CPOutput.DescrAttività);
servizio.CPInput["CodiceAttivit\u00e0"] = null;
WScript.Echo(servizio.CPInput.CodiceAttività === null ? "Null" : "altro");
try {
  servizio.CPInput.Pint_TipoCF = "fornitore";
} catch (errore) {
  WScript.Echo(errore.description);
}
connessione.Close();
