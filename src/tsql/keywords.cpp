#include "tsql/keywords.h"

#include <array>
#include <cstddef>
#include <utility>

#include "tsql/characters.h"

namespace azcoll::tsql {

namespace {

using K = Keyword;
using Entry = std::pair<std::string_view, Keyword>;

// Every reserved word of T-SQL: learn.microsoft.com/sql/t-sql/language-elements/
// reserved-keywords-transact-sql. A word missing here would be taken as a name.
constexpr std::array kEntries = {
    Entry{"ADD", K::Other},
    Entry{"ALL", K::All},
    Entry{"ALTER", K::OtherStatement},
    Entry{"AND", K::And},
    Entry{"ANY", K::Any},
    Entry{"AS", K::As},
    Entry{"ASC", K::Asc},
    Entry{"AUTHORIZATION", K::Other},
    Entry{"BACKUP", K::OtherStatement},
    Entry{"BEGIN", K::Begin},
    Entry{"BETWEEN", K::Between},
    Entry{"BREAK", K::Break},
    Entry{"BROWSE", K::Other},
    Entry{"BULK", K::OtherStatement},
    Entry{"BY", K::By},
    Entry{"CASCADE", K::Other},
    Entry{"CASE", K::Case},
    Entry{"CHECK", K::Check},
    Entry{"CHECKPOINT", K::OtherStatement},
    Entry{"CLOSE", K::OtherStatement},
    Entry{"CLUSTERED", K::Clustered},
    Entry{"COALESCE", K::Coalesce},
    Entry{"COLLATE", K::Collate},
    Entry{"COLUMN", K::Other},
    Entry{"COMMIT", K::Commit},
    Entry{"COMPUTE", K::Other},
    Entry{"CONSTRAINT", K::Constraint},
    Entry{"CONTAINS", K::OtherFunction},
    Entry{"CONTAINSTABLE", K::OtherFunction},
    Entry{"CONTINUE", K::Continue},
    Entry{"CONVERT", K::Convert},
    Entry{"CREATE", K::Create},
    Entry{"CROSS", K::Cross},
    Entry{"CURRENT", K::Current},
    Entry{"CURRENT_DATE", K::Other},
    Entry{"CURRENT_TIME", K::Other},
    Entry{"CURRENT_TIMESTAMP", K::Niladic},
    Entry{"CURRENT_USER", K::Niladic},
    Entry{"CURSOR", K::Cursor},
    Entry{"DATABASE", K::Other},
    Entry{"DBCC", K::OtherStatement},
    Entry{"DEALLOCATE", K::OtherStatement},
    Entry{"DECLARE", K::Declare},
    Entry{"DEFAULT", K::Default},
    Entry{"DELETE", K::Delete},
    Entry{"DENY", K::OtherStatement},
    Entry{"DESC", K::Desc},
    Entry{"DISK", K::Other},
    Entry{"DISTINCT", K::Distinct},
    Entry{"DISTRIBUTED", K::Other},
    Entry{"DOUBLE", K::Other},
    Entry{"DROP", K::Drop},
    Entry{"DUMP", K::OtherStatement},
    Entry{"ELSE", K::Else},
    Entry{"END", K::End},
    Entry{"ERRLVL", K::Other},
    Entry{"ESCAPE", K::Escape},
    Entry{"EXCEPT", K::Except},
    Entry{"EXEC", K::Exec},
    Entry{"EXECUTE", K::Exec},
    Entry{"EXISTS", K::Exists},
    Entry{"EXIT", K::Other},
    Entry{"EXTERNAL", K::Other},
    Entry{"FETCH", K::OtherStatement},
    Entry{"FILE", K::Other},
    Entry{"FILLFACTOR", K::Other},
    Entry{"FOR", K::For},
    Entry{"FOREIGN", K::Foreign},
    Entry{"FREETEXT", K::OtherFunction},
    Entry{"FREETEXTTABLE", K::OtherFunction},
    Entry{"FROM", K::From},
    Entry{"FULL", K::Full},
    Entry{"FUNCTION", K::Function},
    Entry{"GOTO", K::OtherStatement},
    Entry{"GRANT", K::OtherStatement},
    Entry{"GROUP", K::Group},
    Entry{"HAVING", K::Having},
    Entry{"HOLDLOCK", K::Holdlock},
    Entry{"IDENTITY", K::Identity},
    Entry{"IDENTITY_INSERT", K::Other},
    Entry{"IDENTITYCOL", K::Other},
    Entry{"IF", K::If},
    Entry{"IN", K::In},
    Entry{"INDEX", K::Index},
    Entry{"INNER", K::Inner},
    Entry{"INSERT", K::Insert},
    Entry{"INTERSECT", K::Intersect},
    Entry{"INTO", K::Into},
    Entry{"IS", K::Is},
    Entry{"JOIN", K::Join},
    Entry{"KEY", K::Key},
    Entry{"KILL", K::OtherStatement},
    Entry{"LEFT", K::Left},
    Entry{"LIKE", K::Like},
    Entry{"LINENO", K::OtherStatement},
    Entry{"LOAD", K::OtherStatement},
    Entry{"MERGE", K::Merge},
    Entry{"NATIONAL", K::Other},
    Entry{"NOCHECK", K::Other},
    Entry{"NONCLUSTERED", K::Nonclustered},
    Entry{"NOT", K::Not},
    Entry{"NULL", K::Null},
    Entry{"NULLIF", K::Nullif},
    Entry{"OF", K::Other},
    Entry{"OFF", K::Off},
    Entry{"OFFSETS", K::Other},
    Entry{"ON", K::On},
    Entry{"OPEN", K::OtherStatement},
    Entry{"OPENDATASOURCE", K::OtherFunction},
    Entry{"OPENQUERY", K::OtherFunction},
    Entry{"OPENROWSET", K::OtherFunction},
    Entry{"OPENXML", K::OtherFunction},
    Entry{"OPTION", K::Option},
    Entry{"OR", K::Or},
    Entry{"ORDER", K::Order},
    Entry{"OUTER", K::Outer},
    Entry{"OVER", K::Over},
    Entry{"PERCENT", K::Percent},
    Entry{"PIVOT", K::Pivot},
    Entry{"PLAN", K::Other},
    Entry{"PRECISION", K::Other},
    Entry{"PRIMARY", K::Primary},
    Entry{"PRINT", K::OtherStatement},
    Entry{"PROC", K::Procedure},
    Entry{"PROCEDURE", K::Procedure},
    Entry{"PUBLIC", K::Other},
    Entry{"RAISERROR", K::OtherStatement},
    Entry{"READ", K::Other},
    Entry{"READTEXT", K::OtherStatement},
    Entry{"RECONFIGURE", K::OtherStatement},
    Entry{"REFERENCES", K::References},
    Entry{"REPLICATION", K::Other},
    Entry{"RESTORE", K::OtherStatement},
    Entry{"RESTRICT", K::Other},
    Entry{"RETURN", K::Return},
    Entry{"REVERT", K::OtherStatement},
    Entry{"REVOKE", K::OtherStatement},
    Entry{"RIGHT", K::Right},
    Entry{"ROLLBACK", K::Rollback},
    Entry{"ROWCOUNT", K::Other},
    Entry{"ROWGUIDCOL", K::Other},
    Entry{"RULE", K::Other},
    Entry{"SAVE", K::OtherStatement},
    Entry{"SCHEMA", K::Other},
    Entry{"SECURITYAUDIT", K::Other},
    Entry{"SELECT", K::Select},
    Entry{"SEMANTICKEYPHRASETABLE", K::OtherFunction},
    Entry{"SEMANTICSIMILARITYDETAILSTABLE", K::OtherFunction},
    Entry{"SEMANTICSIMILARITYTABLE", K::OtherFunction},
    Entry{"SESSION_USER", K::Niladic},
    Entry{"SET", K::Set},
    Entry{"SETUSER", K::OtherStatement},
    Entry{"SHUTDOWN", K::OtherStatement},
    Entry{"SOME", K::Some},
    Entry{"STATISTICS", K::Statistics},
    Entry{"SYSTEM_USER", K::Niladic},
    Entry{"TABLE", K::Table},
    Entry{"TABLESAMPLE", K::Tablesample},
    Entry{"TEXTSIZE", K::Other},
    Entry{"THEN", K::Then},
    Entry{"TO", K::Other},
    Entry{"TOP", K::Top},
    Entry{"TRAN", K::Transaction},
    Entry{"TRANSACTION", K::Transaction},
    Entry{"TRIGGER", K::Other},
    Entry{"TRUNCATE", K::OtherStatement},
    Entry{"TRY_CONVERT", K::OtherFunction},
    Entry{"TSEQUAL", K::Other},
    Entry{"UNION", K::Union},
    Entry{"UNIQUE", K::Unique},
    Entry{"UNPIVOT", K::Unpivot},
    Entry{"UPDATE", K::Update},
    Entry{"UPDATETEXT", K::OtherStatement},
    Entry{"USE", K::OtherStatement},
    Entry{"USER", K::Niladic},
    Entry{"VALUES", K::Values},
    Entry{"VARYING", K::Varying},
    Entry{"VIEW", K::Other},
    Entry{"WAITFOR", K::OtherStatement},
    Entry{"WHEN", K::When},
    Entry{"WHERE", K::Where},
    Entry{"WHILE", K::While},
    Entry{"WITH", K::With},
    Entry{"WRITETEXT", K::OtherStatement},
};

constexpr std::size_t kSlots = 1024;  // a power of two, several times the number of words

constexpr std::size_t longestWord() {
  std::size_t longest = 0;
  for (const Entry& entry : kEntries) {
    longest = entry.first.size() > longest ? entry.first.size() : longest;
  }
  return longest;
}

constexpr std::size_t hashOf(std::string_view word) {
  std::uint32_t hash = 2166136261U;
  for (const char c : word) {
    hash = (hash ^ static_cast<unsigned char>(ascii::upper(c))) * 16777619U;
  }
  return (hash ^ (hash >> 15U)) & (kSlots - 1);
}

// Slot -> index into kEntries plus one; 0 is an empty place. Collisions go to the next place.
constexpr std::array<std::uint8_t, kSlots> makeSlots() {
  static_assert(kEntries.size() < 255);
  std::array<std::uint8_t, kSlots> places{};
  for (std::size_t i = 0; i < kEntries.size(); ++i) {
    std::size_t place = hashOf(kEntries[i].first);
    while (places[place] != 0) {
      place = (place + 1) & (kSlots - 1);
    }
    places[place] = static_cast<std::uint8_t>(i + 1);
  }
  return places;
}

constexpr std::array<std::uint8_t, kSlots> kSlotTable = makeSlots();
constexpr std::size_t kLongest = longestWord();

}  // namespace

Keyword findKeyword(std::string_view word) {
  if (word.size() < 2 || word.size() > kLongest) {
    return Keyword::None;
  }
  for (std::size_t place = hashOf(word); kSlotTable[place] != 0;
       place = (place + 1) & (kSlots - 1)) {
    const Entry& entry = kEntries[kSlotTable[place] - 1U];
    if (ascii::equalsIgnoringCase(word, entry.first)) {
      return entry.second;
    }
  }
  return Keyword::None;
}

}  // namespace azcoll::tsql
