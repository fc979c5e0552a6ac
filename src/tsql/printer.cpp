#include "tsql/printer.h"

#include "text/letter_case.h"
#include "text/quoting.h"
#include "text/utf8.h"
#include "tsql/characters.h"
#include "tsql/keywords.h"
#include "tsql/letters.h"
#include "tsql/printer_core.h"

namespace azcoll::tsql {

namespace {

/// Whether a name may stand without brackets.
bool isBareName(std::string_view name) {
  if (name.empty() || !hasClass(name.front(), kWordStart) || wordEnd(name, 0) != name.size() ||
      findKeyword(name) != Keyword::None) {
    return false;
  }
  for (std::size_t at = 0; at < name.size();) {
    const CodePoint point = decodeUtf8(name, at);
    if (point.length == 0 || (point.value >= 0x80 && !isLetterBeyondAscii(point.value))) {
      return false;
    }
    at += point.length;
  }
  return true;
}

/// The words that the grammar takes as calls of their own kind when a parenthesis follows.
bool isSpecialCall(std::string_view name) {
  for (const std::string_view special : {"CAST", "IIF", "TRY_CAST", "PARSE", "TRY_PARSE"}) {
    if (ascii::equalsIgnoringCase(name, special)) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::string print(const Batch& batch) {
  Printer printer;
  printer.batch(batch);
  return printer.take();
}

std::string print(const Statement& statement) {
  Printer printer;
  printer.statement(statement);
  return printer.take();
}

std::string print(const Query& query) {
  Printer printer;
  printer.query(query);
  return printer.take();
}

std::string print(const Expression& expression) {
  Printer printer;
  printer.expression(expression);
  return printer.take();
}

void Printer::name(std::string_view name) {
  if (isBareName(name)) {
    out_ += name;
    return;
  }
  out_ += inQuotes(name, '[');
}

void Printer::objectName(const ObjectName& name) {
  list(
      name.parts, [this](const std::string& part) { this->name(part); }, ".");
}

/// A table variable keeps its `@` bare: in brackets it would be a table of that name.
void Printer::tableName(const ObjectName& name) {
  if (name.parts.size() == 1 && name.parts[0].substr(0, 1) == "@") {
    out_ += name.parts[0];
  } else {
    objectName(name);
  }
}

void Printer::functionName(const ObjectName& name) {
  if (name.parts.size() == 1) {
    const std::string& word = name.parts[0];
    switch (findKeyword(word)) {
      case Keyword::Coalesce:
      case Keyword::Nullif:
      case Keyword::Left:
      case Keyword::Right:
      case Keyword::Niladic:
        out_ += word;
        return;
      default:
        break;
    }
    // In brackets it stays the name of a plain call when it is read again.
    if (isSpecialCall(word)) {
      out_ += '[' + word + ']';
      return;
    }
  }
  objectName(name);
}

/// `(name, name …)`.
void Printer::nameList(const std::vector<std::string>& names) {
  out_ += '(';
  list(names, [this](const std::string& one) { name(one); });
  out_ += ')';
}

void Printer::type(const TypeName& type) {
  name(type.name);
  if (!type.length) {
    return;
  }
  out_ += '(';
  out_ += *type.length < 0 ? "MAX" : std::to_string(*type.length);
  if (type.scale) {
    out_ += ", " + std::to_string(*type.scale);
  }
  out_ += ')';
}

/// A quoted text.
void Printer::text(std::string_view value) { out_ += inQuotes(value, '\''); }

}  // namespace azcoll::tsql
