#pragma once

#include <string_view>

/// Descriptions of the failures that the data layer and the client-side cursor find themselves.
/// Callers see them in `Errore`, so their wording does not change.
namespace azcoll::messages {

// Values.
inline constexpr std::string_view kTypeMismatch = "Tipo non corrispondente";
inline constexpr std::string_view kInvalidNull = "Uso non valido di Null";
inline constexpr std::string_view kOverflow = "Overflow";

// Collections; followed by the name or the position asked for.
inline constexpr std::string_view kItemNotFound = "Elemento non trovato nella raccolta: ";

// Connections and recordsets.
inline constexpr std::string_view kNoConnection = "Connessione mancante";
inline constexpr std::string_view kWrongConnection = "Connessione di un altro fornitore";
inline constexpr std::string_view kConnectionClosed = "La connessione è chiusa.";
inline constexpr std::string_view kConnectionOpen = "La connessione è già aperta.";
inline constexpr std::string_view kRecordsetClosed = "Recordset chiuso";
inline constexpr std::string_view kRecordsetOpen = "Recordset già aperto";
inline constexpr std::string_view kNoSource = "Testo del comando mancante";
inline constexpr std::string_view kUnsupportedLock =
    "Tipo di blocco non gestito: usare sola lettura o batch ottimistico";
inline constexpr std::string_view kUnsupportedOption =
    "Opzione di apertura non gestita: usare il testo di un comando";
inline constexpr std::string_view kNoCurrentRow = "Nessuna riga corrente";
inline constexpr std::string_view kMoveBeyondEnd = "Spostamento oltre la fine del recordset";

// Criteria of Filter and Find: this, the position of the character, one of the reasons below and
// the text found there.
inline constexpr std::string_view kInvalidCriteria = "Criterio non valido";
namespace criteria {
inline constexpr std::string_view kNameExpected = "atteso il nome di una colonna";
inline constexpr std::string_view kOpenBracket = "manca la parentesi quadra finale";
inline constexpr std::string_view kOperatorExpected = "atteso un confronto (= <> < <= > >= LIKE)";
inline constexpr std::string_view kValueExpected = "atteso un valore";
inline constexpr std::string_view kOpenText = "manca l'apostrofo finale";
inline constexpr std::string_view kInvalidDate = "data non valida";
inline constexpr std::string_view kInvalidNumber = "numero non valido";
inline constexpr std::string_view kNullComparison = "NULL ammette solo = e <>";
inline constexpr std::string_view kLikeNeedsText = "LIKE richiede un testo";
inline constexpr std::string_view kOpenGroup = "manca la parentesi finale";
inline constexpr std::string_view kOrOutsideGroups = "OR è ammesso solo fra gruppi tra parentesi";
inline constexpr std::string_view kAndBetweenOr = "AND non è ammesso fra gruppi uniti da OR";
inline constexpr std::string_view kOneComparison = "è ammesso un solo confronto";
inline constexpr std::string_view kEndExpected = "attesa la fine del criterio";
inline constexpr std::string_view kEndOfText = "fine del testo";
}  // namespace criteria
// Followed by the column.
inline constexpr std::string_view kCriteriaType =
    "Criterio non valido: tipo non corrispondente per la colonna ";

// Changes; some are followed by the column or table concerned.
inline constexpr std::string_view kReadOnly = "Recordset di sola lettura";
inline constexpr std::string_view kDetached =
    "Aggiornamento non possibile: il recordset non ha una connessione";
inline constexpr std::string_view kNoValueToInsert = "Nessun valore nella riga da inserire";
inline constexpr std::string_view kColumnNotUpdatable = "Colonna non aggiornabile: ";
inline constexpr std::string_view kSeveralTables = "Aggiornamento di più tabelle insieme: ";
inline constexpr std::string_view kNoKey = "Chiave non presente nel recordset per la tabella ";
inline constexpr std::string_view kAmbiguousTable = "La tabella compare più volte nel recordset: ";
inline constexpr std::string_view kSeveralRowsChanged =
    "La chiave non individua una sola riga della tabella ";
// Worded as callers know it from the database's own client.
inline constexpr std::string_view kRowConflict =
    "Row cannot be located for updating. Some values may have been changed since it was last read.";

}  // namespace azcoll::messages
