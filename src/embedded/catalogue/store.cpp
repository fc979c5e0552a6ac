#include "embedded/catalogue/store.h"

#include <memory>
#include <string>
#include <utility>
#include <variant>

#include "text/letter_case.h"
#include "tsql/parser.h"

namespace azcoll::embedded {

namespace {

// "AZCL": marks the file among all SQLite files.
constexpr std::int64_t kApplicationId = 0x415A434C;
constexpr std::int64_t kFormat = 1;
// user_version has 32 bits: the format stands above the count of changes, which wraps around.
constexpr std::int64_t kChanges = 1 << 24;

/// Objects come in the order in which they were made, so the table of an index is there already.
void loadObject(Catalogue& catalogue, const std::string& kind, std::string definition) {
  if (kind == "PROCEDURE" || kind == "FUNCTION") {
    catalogue.add(describeRoutine(std::move(definition)));
    return;
  }
  const tsql::Batch batch = tsql::parse(definition);
  auto& node = batch.statements.front()->node;
  if (auto* const table = std::get_if<tsql::CreateTableStatement>(&node)) {
    catalogue.add(describeTable(
        std::make_shared<const tsql::CreateTableStatement>(std::move(*table)), definition));
  } else {
    const auto& index = std::get<tsql::CreateIndexStatement>(node);
    const std::string& tableName = index.table.parts.back();
    catalogue.addIndex(tableName, describeIndex(index, *catalogue.findTable(tableName)));
  }
}

}  // namespace

CatalogueStore::FileKind CatalogueStore::inspect() const {
  const std::int64_t id = database_->queryInteger("PRAGMA application_id");
  const std::int64_t format = version() / kChanges;
  if (id == kApplicationId) {
    return format == kFormat ? FileKind::Ours : FileKind::Newer;
  }
  // A file of SQLite's own with tables in it is somebody else's; an empty one bears no marks yet.
  const bool empty = database_->queryInteger("SELECT count(*) FROM sqlite_schema") == 0;
  return id == 0 && format == 0 && empty ? FileKind::Empty : FileKind::Foreign;
}

void CatalogueStore::create() const {
  database_->execute("CREATE TABLE " + std::string(kCatalogueTable) +
                     " (position INTEGER PRIMARY KEY, kind TEXT NOT NULL, name TEXT NOT NULL,"
                     " parent TEXT NOT NULL, definition TEXT NOT NULL) STRICT;"
                     "PRAGMA application_id = " +
                     std::to_string(kApplicationId) +
                     ";PRAGMA user_version = " + std::to_string(kFormat * kChanges));
}

std::int64_t CatalogueStore::version() const {
  return database_->queryInteger("PRAGMA user_version");
}

void CatalogueStore::countChange() const {
  // Part of the file: a rollback takes the count back with the change.
  const std::int64_t changes = (version() + 1) % kChanges;
  database_->execute("PRAGMA user_version = " + std::to_string(kFormat * kChanges + changes));
}

void CatalogueStore::load(Catalogue& catalogue) const {
  // All anew: what changed is not recorded, only that something did.
  catalogue.clear();
  const SqliteStatement rows = database_->prepare(
      "SELECT kind, definition FROM " + std::string(kCatalogueTable) + " ORDER BY position");
  while (rows.step()) {
    loadObject(catalogue, std::string(rows.text(0)), std::string(rows.text(1)));
  }
}

std::vector<std::string> CatalogueStore::definitions() const {
  std::vector<std::string> texts;
  const SqliteStatement rows = database_->prepare(
      "SELECT definition FROM " + std::string(kCatalogueTable) + " ORDER BY position");
  while (rows.step()) {
    texts.emplace_back(rows.text(0));
  }
  return texts;
}

void CatalogueStore::add(std::string_view kind, std::string_view name, std::string_view parent,
                         std::string_view definition) const {
  // bind() copies nothing: these live until the statement has run.
  const std::string foldedName = foldCase(name);
  const std::string foldedParent = foldCase(parent);
  const SqliteStatement insert =
      database_->prepare("INSERT INTO " + std::string(kCatalogueTable) +
                         " (kind, name, parent, definition) VALUES (?1, ?2, ?3, ?4)");
  insert.bind(1, kind);
  insert.bind(2, foldedName);
  insert.bind(3, foldedParent);
  insert.bind(4, definition);
  insert.run();
}

void CatalogueStore::remove(std::string_view kind, std::string_view name,
                            std::string_view parent) const {
  const std::string foldedName = foldCase(name);
  const std::string foldedParent = foldCase(parent);
  const SqliteStatement removal =
      database_->prepare("DELETE FROM " + std::string(kCatalogueTable) +
                         " WHERE kind = ?1 AND name = ?2 AND parent = ?3");
  removal.bind(1, kind);
  removal.bind(2, foldedName);
  removal.bind(3, foldedParent);
  removal.run();
}

void CatalogueStore::removeIndexesOf(std::string_view table) const {
  const std::string folded = foldCase(table);
  const SqliteStatement removal = database_->prepare("DELETE FROM " + std::string(kCatalogueTable) +
                                                     " WHERE kind = 'INDEX' AND parent = ?1");
  removal.bind(1, folded);
  removal.run();
}

}  // namespace azcoll::embedded
