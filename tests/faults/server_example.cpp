#include "faults/server_example.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <utility>

#include "data/text.h"
#include "support/test_database.h"

namespace azcoll::test {
namespace {

constexpr int kTimeoutSeconds = 30;

std::string lower(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char byte) {
    return static_cast<char>(std::tolower(byte));
  });
  return text;
}

/// The columns of a table, as it declares them.
std::vector<std::string> columnsOf(Connection& connection, const std::string& table) {
  std::int64_t affected = 0;
  const std::shared_ptr<Recordset> found = connection.execute(
      join("SELECT * FROM ", table, " WHERE 1 = 0"), affected, CommandOption::Text);
  std::vector<std::string> names;
  for (std::size_t column = 0; column < found->fields().count(); ++column) {
    names.push_back(found->fields().item(column).name());
  }
  return names;
}

std::string listed(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) {
    list += list.empty() ? name : ", " + name;
  }
  return list;
}

}  // namespace

ServerExample* ServerExample::find() {
  static const std::unique_ptr<ServerExample> only = [] {
    const char* const server = std::getenv("AZCOLL_TEST_CONNESSIONE");
    return std::unique_ptr<ServerExample>{
        server == nullptr || *server == '\0' ? nullptr : new ServerExample{server}};
  }();
  return only.get();
}

ServerExample::ServerExample(std::string server) : database_{std::move(server)}, own_{connect()} {
  fillExample(*own_);
  copyTables();
}

std::shared_ptr<Connection> ServerExample::connect(const std::string& more) const {
  std::shared_ptr<Connection> connection = newConnectionFor(connectionString() + more);
  connection->setCommandTimeout(kTimeoutSeconds);
  connection->setCursorLocation(CursorLocation::Client);
  connection->open("", "", CommandOption::Unspecified);
  return connection;
}

/// Keeps a copy of every table, and makes the batches that work on all of them.
void ServerExample::copyTables() {
  std::map<std::string, std::string> identityOf;
  for (const std::string& line :
       rows("SELECT OBJECT_NAME(object_id) AS T, name FROM sys.columns WHERE is_identity = 1")) {
    const std::size_t bar = line.find('|');
    identityOf[lower(line.substr(0, bar))] = line.substr(bar + 1);
  }
  std::string empty;
  std::string fill;
  for (const std::string& table : testTables()) {
    const std::string copy = "COPIA_" + table;
    const std::vector<std::string> columns = columnsOf(*own_, table);
    const std::string list = listed(columns);
    run(join("SELECT ", list, " INTO ", copy, " FROM ", table));
    empty.insert(0, join("DELETE FROM ", table, " "));
    const std::string refill =
        join("INSERT INTO ", table, " (", list, ") SELECT ", list, " FROM ", copy, " ");
    if (const auto found = identityOf.find(lower(table)); found != identityOf.end()) {
      fill += join("SET IDENTITY_INSERT ", table, " ON ", refill, "SET IDENTITY_INSERT ", table,
                   " OFF ");
      identities_.emplace_back(table, join("SELECT MAX(", found->second, ") AS N FROM ", table));
    } else {
      fill += refill;
    }
    touch_ += join("UPDATE ", table, " SET ", columns.back(), " = ", columns.back(), " ");
    read_ += join("SELECT * FROM ", table, " ");
  }
  restore_ = join("BEGIN TRANSACTION ", empty, fill, "COMMIT TRANSACTION");
}

void ServerExample::restore(const std::string& prepare) {
  run(restore_);
  resetIdentities();
  if (!prepare.empty()) {
    run(prepare);
  }
}

void ServerExample::resetIdentities() {
  for (const auto& [table, largest] : identities_) {
    run(join("DBCC CHECKIDENT ('", table, "', RESEED, ", rows(largest).at(0), ")"));
  }
}

Lines ServerExample::picture() {
  std::int64_t affected = 0;
  std::shared_ptr<Recordset> found = own_->execute(read_, affected, CommandOption::Text);
  Lines all;
  for (const std::string& table : testTables()) {
    for (const std::string& line : linesOf(*found)) {
      all.push_back(join(table, "|", line));
    }
    found = found->nextRecordset();
  }
  std::ranges::sort(all);
  return all;
}

void ServerExample::writeEveryRow() {
  run(join("BEGIN TRANSACTION ", touch_, "ROLLBACK TRANSACTION"));
}

void ServerExample::run(const std::string& text) {
  std::int64_t affected = 0;
  own_->execute(text, affected, CommandOption::Text);
}

Lines ServerExample::rows(const std::string& text) { return rowsOf(*own_, text); }

}  // namespace azcoll::test
