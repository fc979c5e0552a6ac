// Diffonde nel gruppo un cliente appena salvato.
// Uso: Duplica.exe "stringa di connessione" azienda anno codice
using System;

internal static class Duplica
{
    private static dynamic Crea(string progId)
    {
        return Activator.CreateInstance(Type.GetTypeFromProgID(progId, throwOnError: true));
    }

    [STAThread]
    private static void Main(string[] argomenti)
    {
        dynamic connessione = Crea("ADODB.Connection");
        connessione.Open(argomenti[0]);
        dynamic servizio = Crea("AZCOLLSRV.CLSCO_AZIENDECOLL");
        dynamic parametri = servizio.CPInput;
        parametri.Connessione = connessione;
        parametri.Pvar_Ditta = int.Parse(argomenti[1]);
        parametri.AnnoSolare = int.Parse(argomenti[2]);
        parametri.Pint_TipoCF = 0;
        parametri.Pvar_CliFor = int.Parse(argomenti[3]);
        servizio.DuplicaCliFor();
        Console.WriteLine(servizio.Stato == 0
            ? $"Stato 0: il codice è diventato {parametri.Pvar_CliFor}"
            : $"Stato {servizio.Stato}: {servizio.Errore}");
        connessione.Close();
    }
}
