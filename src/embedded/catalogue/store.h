#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "embedded/catalogue/catalogue.h"
#include "embedded/sqlite/handle.h"

namespace azcoll::embedded {

/// The catalogue as a table of the database file: one row per object with its definition as T-SQL,
/// in the order of creation. Two numbers in the file's header say that it is one of this system,
/// of which format, and how often the catalogue was changed. Every operation throws
/// `SqliteFailure`.
class CatalogueStore {
 public:
  /// What a file is.
  enum class FileKind { Empty, Ours, Foreign, Newer };

  explicit CatalogueStore(const SqliteDatabase& database) : database_(&database) {}

  /// What the open file is: without anything in it, of this system, of another one, or of a version
  /// of this system whose format is not known here.
  [[nodiscard]] FileKind inspect() const;
  /// Makes the catalogue of an empty file.
  void create() const;
  /// Reads everything into `catalogue`, in the place of what it held.
  void load(Catalogue& catalogue) const;
  /// The definitions as T-SQL, in the order of creation: routines as they were written, the others
  /// as the printer writes them.
  [[nodiscard]] std::vector<std::string> definitions() const;
  /// Counts the changes of the catalogue: another number means that it must be read again.
  [[nodiscard]] std::int64_t version() const;

  /// Part of every change of the catalogue.
  void countChange() const;

  /// `kind`: "TABLE", "INDEX" (its table in `parent`), "PROCEDURE", "FUNCTION".
  void add(std::string_view kind, std::string_view name, std::string_view parent,
           std::string_view definition) const;
  void remove(std::string_view kind, std::string_view name, std::string_view parent) const;
  /// Forgets the indexes of a table.
  void removeIndexesOf(std::string_view table) const;

 private:
  const SqliteDatabase* database_;
};

/// Name of the catalogue's own table. A table that is called so in T-SQL has another name in
/// SQLite.
inline constexpr std::string_view kCatalogueTable = "azcoll_catalogue";

}  // namespace azcoll::embedded
