#include "engines/same_order.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

#include "cursor/client_cursor.h"

namespace azcoll::test {
namespace {

struct Decision {
  std::string_view where;  ///< a piece of a statement that leaves a choice
  std::string_view then;   ///< what is put behind it
};

// Each follows the words of one statement, so that no other one is touched.
constexpr std::array kDecisions{
    // The latest year's rows, of which the first is copied or names the main activity.
    Decision{"ORDER BY CG86_ANNOIVA DESC", ", CG86_IDATTIVITA"},
    // The activity query.
    Decision{" ELSE -1 END DESC, CG86_AZIENDECOLL.CG86_CODATTIVITA",
             ", CG86_AZIENDECOLL.CG86_IDATTIVITA"},
    // A main company stands there once for each accounting type of its links.
    Decision{"ORDER BY ORDINAMENTO DESC, DITTA", ", CG86_INDTIPOCONT"},
    Decision{"ORDER BY ORDINAMENTO, DITTA", ", CG86_INDTIPOCONT"},
    // The row that becomes the main one of a duplicated year.
    Decision{"ORDER BY CG86_CODATTIVITA", ", CG86_IDATTIVITA"},
    // A register that names no activity.
    Decision{"AND A.CG86_INDTIPO = 0\r\n", " ORDER BY A.CG86_IDATTIVITA\r\n"}};

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

/// The statements of a text; none of them has a semicolon of its own, inputs of a caller excepted,
/// which then fail.
std::vector<std::string_view> statementsOf(std::string_view text) {
  std::vector<std::string_view> statements;
  for (std::size_t end = text.find(';'); end != std::string_view::npos; end = text.find(';')) {
    statements.push_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  statements.push_back(text);
  return statements;
}

/// Whether the rows of a statement come in an order: an ORDER BY that stands in no parentheses.
bool isOrdered(std::string_view statement) {
  int depth = 0;
  for (std::size_t at = 0; at < statement.size(); ++at) {
    depth += statement[at] == '(' ? 1 : statement[at] == ')' ? -1 : 0;
    if (depth == 0 && statement.substr(at).starts_with("ORDER BY ")) {
      return true;
    }
  }
  return false;
}

std::string sortKey(const Variant& value) { return value.isNull() ? "" : "=" + value.text(); }

void putInOrder(ResultSet& set) {
  const std::size_t columns = set.columns.size();
  std::vector<Variant> values = set.allValues();
  std::vector<std::vector<Variant>> rows;
  for (auto row = values.begin(); row != values.end();
       row += static_cast<std::ptrdiff_t>(columns)) {
    rows.emplace_back(std::make_move_iterator(row),
                      std::make_move_iterator(row + static_cast<std::ptrdiff_t>(columns)));
  }
  std::ranges::stable_sort(rows, [](const auto& left, const auto& right) {
    return std::ranges::lexicographical_compare(left, right, {}, sortKey, sortKey);
  });
  set.packed.reset();
  set.values.clear();
  for (std::vector<Variant>& row : rows) {
    std::ranges::move(row, std::back_inserter(set.values));
  }
}

}  // namespace

std::string decided(std::string text) {
  for (const Decision& each : kDecisions) {
    for (std::size_t at = text.find(each.where); at != std::string::npos;
         at = text.find(each.where, at)) {
      at += each.where.size();
      text.insert(at, each.then);
      at += each.then.size();
    }
  }
  // The order in which the rows of a year are copied is that of their identities.
  if (text.starts_with(" INSERT INTO CG86_AZIENDECOLL (") && contains(text, " SELECT ")) {
    text += "\r\n ORDER BY CG86_IDATTIVITA";
  }
  // Of several activities that write into their company the first one does.
  if (const std::size_t where = text.find(" WHERE CG86_INDTIPO = 0");
      text.starts_with(" UPDATE CG25_ANADITTAGEST") && where != std::string::npos) {
    text += " AND CG86_IDATTIVITA IN (SELECT MIN(CG86_IDATTIVITA) FROM CG86_AZIENDECOLL" +
            text.substr(where) + " GROUP BY CG86_DITTACOLL_CG18)";
  }
  return text;
}

std::shared_ptr<Recordset> SameOrderConnection::execute(std::string_view commandText,
                                                        std::int64_t& recordsAffected,
                                                        CommandOption /*options*/) {
  ExecutionResult result = run(commandText);
  recordsAffected = result.recordsAffected;
  return openClientCursor(std::move(result), shared_from_this());
}

ExecutionResult SameOrderConnection::run(std::string_view text) {
  ExecutionResult result = native_->run(decided(std::string{text}));
  const std::vector<std::string_view> statements = statementsOf(text);
  for (std::size_t index = 0; index < result.results.size(); ++index) {
    ResultSet& set = result.results[index];
    if (index >= statements.size() || !isOrdered(statements[index])) {
      putInOrder(set);
    }
  }
  return result;
}

}  // namespace azcoll::test
