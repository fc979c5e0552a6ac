#pragma once

#include <string>
#include <string_view>

#include "embedded/catalogue/catalogue.h"
#include "embedded/run/session.h"
#include "tsql/ast.h"

namespace azcoll::embedded {

/// Makes and drops the objects of the database.
class Definer {
 public:
  explicit Definer(const Surroundings& surroundings)
      : surroundings_(surroundings), session_(surroundings.session) {}

  /// Runs a definition; false if it is not a definition. All or nothing. Throws `SqlError`,
  /// `tsql::SyntaxError`.
  bool define(const tsql::Statement& statement, std::string_view text);

 private:
  template <typename Action>
  void atomically(Action action);
  void createTable(const tsql::ObjectName& name, const std::string& definition,
                   std::string_view text);
  void createIndex(const tsql::CreateIndexStatement& statement, const std::string& definition,
                   std::string_view text);
  void createRoutine(const std::string& source);
  void drop(const tsql::DropStatement& statement, std::string_view text);
  void dropTable(const std::string& name, bool ifExists);
  void dropIndex(const tsql::DropStatement& statement);
  void dropRoutine(const tsql::DropStatement& statement, const std::string& name);
  [[nodiscard]] std::string repeatedKey(const Table& table, const Index& index) const;
  void requireFreeName(const std::string& name) const;

  Surroundings surroundings_;
  Session& session_;
};

}  // namespace azcoll::embedded
