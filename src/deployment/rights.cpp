#include "deployment/rights.h"

#include <fmt/format.h>
#include <utility>

#include "data/error.h"
#include "deployment/schema.h"
#include "deployment/scripts.h"
#include "text/letter_case.h"
#include "tsql/lexer.h"
#include "tsql/script.h"

namespace azcoll::deployment {
namespace {

/// Reads the GRANT lines of a batch. The grammar of the T-SQL front end stops short of them, since
/// the embedded engine knows no users; its tokens do for their one form.
class GrantReader {
 public:
  explicit GrantReader(std::string_view batch) : lexer_{batch}, token_{lexer_.next()} {}

  void readInto(RoleRights& rights) {
    while (token_.kind != tsql::TokenKind::End) {
      if (acceptWord("GRANT")) {
        grant(rights);
      } else {
        token_ = lexer_.next();
      }
    }
  }

 private:
  [[nodiscard]] bool isWord(std::string_view word) const {
    return (token_.kind == tsql::TokenKind::Word || token_.kind == tsql::TokenKind::Reserved) &&
           equalsIgnoringCase(token_.raw, word);
  }
  bool acceptWord(std::string_view word) {
    const bool here = isWord(word);
    if (here) {
      token_ = lexer_.next();
    }
    return here;
  }
  bool accept(tsql::Symbol symbol) {
    const bool here = token_.kind == tsql::TokenKind::Symbol && token_.symbol == symbol;
    if (here) {
      token_ = lexer_.next();
    }
    return here;
  }
  void require(bool met) const {
    if (!met) {
      throw Error(fmt::format("GRANT in una forma non prevista alla riga {} del gruppo: «{}»",
                              token_.position.line, token_.raw));
    }
  }
  std::string takeName() {
    require(token_.kind == tsql::TokenKind::Word || token_.kind == tsql::TokenKind::Reserved ||
            token_.kind == tsql::TokenKind::QuotedName);
    std::string name = token_.value();
    token_ = lexer_.next();
    return name;
  }

  void grant(RoleRights& rights) {
    std::vector<std::string> verbs;
    do {
      verbs.push_back(ascii::upper(takeName()));
    } while (accept(tsql::Symbol::Comma));
    require(acceptWord("ON"));
    const std::string owner = takeName();
    require(accept(tsql::Symbol::Dot));
    const std::string object = takeName();
    require(acceptWord("TO"));
    const std::string role = takeName();
    require(rights.role.empty() || equalsIgnoringCase(rights.role, role));
    rights.role = role;
    for (std::string& verb : verbs) {
      rights.grants.push_back({std::move(verb), owner, object});
    }
  }

  tsql::Lexer lexer_;
  tsql::Token token_;
};

}  // namespace

RoleRights readGrants(std::string_view script) {
  RoleRights rights;
  for (const tsql::ScriptBatch& batch : tsql::splitScript(script)) {
    GrantReader{batch.text}.readInto(rights);
  }
  return rights;
}

const RoleRights& expectedRights() {
  static const RoleRights expected = readGrants(kPermessi.text);
  return expected;
}

}  // namespace azcoll::deployment
