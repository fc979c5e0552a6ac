"""Diffonde nel gruppo un cliente appena salvato (richiede pywin32).

Uso: python duplica.py "stringa di connessione" azienda anno codice
"""
import sys

import win32com.client

stringa, azienda, anno, codice = sys.argv[1:]
connessione = win32com.client.Dispatch("ADODB.Connection")
connessione.Open(stringa)
servizio = win32com.client.Dispatch("AZCOLLSRV.CLSCO_AZIENDECOLL")
parametri = servizio.CPInput
parametri.Connessione = connessione
parametri.Pvar_Ditta = int(azienda)
parametri.AnnoSolare = int(anno)
parametri.Pint_TipoCF = 0
parametri.Pvar_CliFor = int(codice)
servizio.DuplicaCliFor()
if servizio.Stato == 0:
    print(f"Stato 0: il codice è diventato {parametri.Pvar_CliFor}")
else:
    print(f"Stato {servizio.Stato}: {servizio.Errore}")
connessione.Close()
