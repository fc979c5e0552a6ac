#include <algorithm>
#include <array>
#include <charconv>

#include "support/another_server.h"
#include "unit/embedded_language/case_file.h"
#include "unit/embedded_language/support.h"

namespace azcoll::test {
namespace {

constexpr std::string_view kOutside = "Outside the supported T-SQL: ";

bool matches(std::string_view pattern, std::string_view text) {
  const std::size_t star = pattern.find('*');
  if (star == std::string_view::npos) {
    return pattern == text;
  }
  if (!text.starts_with(pattern.substr(0, star))) {
    return false;
  }
  const std::string_view rest = pattern.substr(star + 1);
  for (std::size_t at = star; at <= text.size(); ++at) {
    if (matches(rest, text.substr(at))) {
      return true;
    }
  }
  return false;
}

std::string doubleText(double number) {
  std::array<char, 40> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                 std::chars_format::scientific);
  return {digits.data(), end.ptr};
}

std::string dateText(const Date& date) {
  const std::string text = date.isoText();
  if (!date.hasTime() && date.millisecond == 0) {
    return text.substr(0, 10);
  }
  return date.millisecond == 0 ? text.substr(0, 19) : text;
}

std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) {
    switch (c) {
      case '\n':
        result += "\\n";
        break;
      case '\r':
        result += "\\r";
        break;
      case '\\':
        result += "\\\\";
        break;
      default:
        result += c;
    }
  }
  return result + "'";
}

bool cellMatches(const std::string& expected, const Variant& value) {
  if (expected == "*") {
    return !value.isNull();
  }
  if (expected.starts_with('~')) {
    const std::optional<Decimal> number = Decimal::parse(std::string_view{expected}.substr(1));
    return number && value.kind() != Variant::Kind::Text && !value.isNull() &&
           sameValue(Variant{*number}, Variant{value.toDecimal()});
  }
  return expected == cellText(value);
}

using Row = std::vector<Variant>;

std::string rowText(const Row& row) {
  std::string text;
  for (const Variant& value : row) {
    text += (text.empty() ? "" : " | ") + cellText(value);
  }
  return text;
}

bool rowMatches(const std::vector<std::string>& expected, const Row& row) {
  return std::equal(expected.begin(), expected.end(), row.begin(), row.end(), cellMatches);
}

/// Whether every row has its own line.
bool rowsMatch(const Expected& expected, const Expected::Result& result, std::vector<Row> rows) {
  if (rows.size() != result.rows.size()) {
    return false;
  }
  if (!expected.unordered) {
    return std::equal(result.rows.begin(), result.rows.end(), rows.begin(), rowMatches);
  }
  return std::all_of(result.rows.begin(), result.rows.end(), [&](const auto& line) {
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const Row& row) { return rowMatches(line, row); });
    if (found == rows.end()) {
      return false;
    }
    rows.erase(found);
    return true;
  });
}

/// One block on its way: collects what was not as expected.
class BlockRun {
 public:
  BlockRun(const Block& block, Connection& connection, bool onServer = false)
      : block_{block}, connection_{connection}, onServer_{onServer} {}

  std::vector<std::string> run() {
    std::shared_ptr<Recordset> rows;
    std::int64_t affected = 0;
    try {
      rows = connection_.execute(block_.statement, affected, CommandOption::Text);
    } catch (const Error& error) {
      checkError(error);
      return std::move(complaints_);
    }
    const Expected& expected = block_.expected;
    if (expected.kind == Expected::Kind::Error) {
      complain("no error; expected " + std::to_string(expected.number) + " " + expected.text);
    } else if (expected.kind == Expected::Kind::Outside) {
      complain("not refused");
    } else {
      if (expected.affected && *expected.affected != affected) {
        complain("rows changed: " + std::to_string(affected) + ", expected " +
                 std::to_string(*expected.affected));
      }
      checkResults(std::move(rows));
    }
    return std::move(complaints_);
  }

  [[nodiscard]] bool transactionLost() const { return transactionLost_; }

 private:
  void complain(const std::string& what) {
    complaints_.push_back("line " + std::to_string(block_.line) + ": " + what + "\n    " +
                          block_.statement.substr(0, 400));
  }

  void checkError(const Error& error) {
    const Expected& expected = block_.expected;
    const ErrorInfo& info = error.info();
    const std::string got = std::to_string(info.nativeNumber) + " " + info.description;
    if (onServer_) {
      transactionLost_ = info.transactionLost;
      if (expected.kind != Expected::Kind::Error || !isFailure(info, {expected.number})) {
        complain("error " + got);
      }
      return;
    }
    const bool isOutside = info.nativeNumber == 0 && info.description.starts_with(kOutside);
    if (expected.kind == Expected::Kind::Outside || (expected.outsideToo && isOutside)) {
      if (!isOutside) {
        complain("expected a refusal as outside the language, got " + got);
      }
      return;
    }
    if (expected.kind != Expected::Kind::Error) {
      complain("error " + got);
      return;
    }
    if (info.nativeNumber != expected.number || !matches(expected.text, info.description)) {
      complain("error " + got + "; expected " + std::to_string(expected.number) + " " +
               expected.text);
      return;
    }
    checkErrors(error);
  }

  void checkErrors(const Error& error) {
    const Errors& errors = connection_.errors();
    if (!error.fromProvider() || errors.count() == 0 ||
        errors.item(0).nativeNumber != block_.expected.number ||
        errors.item(0).description != error.description()) {
      complain("the Errors collection does not hold the error");
      return;
    }
    if (block_.expected.terminated &&
        (errors.count() != 2 || errors.item(1).nativeNumber != 3621 ||
         errors.item(1).description != "The statement has been terminated.")) {
      complain("the second entry of Errors is not 3621");
    }
  }

  void checkResults(std::shared_ptr<Recordset> rows) {
    for (const Expected::Result& result : block_.expected.results) {
      if (rows == nullptr) {
        complain("a result is missing");
        return;
      }
      checkResult(result, *rows);
      rows = rows->nextRecordset();
    }
    if (rows != nullptr) {
      complain("a result too many");
    }
  }

  void checkResult(const Expected::Result& result, Recordset& recordset) {
    Fields& fields = recordset.fields();
    std::vector<std::string> names;
    for (std::size_t i = 0; i < fields.count(); ++i) {
      const std::string name = fields.item(i).name();
      names.push_back(name.empty() ? "-" : name);
    }
    if (!result.names.empty() && !sameNames(result.names, names)) {
      complain("names of the columns: " + testing::PrintToString(names));
    }
    std::vector<Row> rows;
    for (; !recordset.atEnd(); recordset.moveNext()) {
      Row& row = rows.emplace_back();
      for (std::size_t i = 0; i < fields.count(); ++i) {
        row.push_back(fields.item(i).value());
      }
    }
    if (!result.kinds.empty()) {
      std::vector<std::string> kinds;
      if (!rows.empty()) {
        std::transform(rows[0].begin(), rows[0].end(), std::back_inserter(kinds), kindName);
      }
      if (kinds != result.kinds) {
        complain("kinds of the values: " + testing::PrintToString(kinds));
      }
    }
    if (!rowsMatch(block_.expected, result, rows)) {
      std::string text = "rows:";
      for (const Row& row : rows) {
        text += "\n      " + rowText(row);
      }
      complain(text);
    }
  }

  [[nodiscard]] bool sameNames(const std::vector<std::string>& expected,
                               const std::vector<std::string>& found) const {
    return onServer_
               ? std::equal(expected.begin(), expected.end(), found.begin(), found.end(),
                            [](const std::string& wanted, const std::string& name) {
                              return wanted == name || (wanted == "-" && isColumnName(name, ""));
                            })
               : expected == found;
  }

  const Block& block_;
  Connection& connection_;
  bool onServer_ = false;
  bool transactionLost_ = false;
  std::vector<std::string> complaints_;
};

}  // namespace

std::string cellText(const Variant& value) {
  switch (value.kind()) {
    case Variant::Kind::Empty:
      return "EMPTY";
    case Variant::Kind::Null:
      return "NULL";
    case Variant::Kind::Double:
      return doubleText(*value.get<double>());
    case Variant::Kind::Decimal: {
      const Decimal& number = *value.get<Decimal>();
      return number.text() + (number.scale() == 0 ? "." : "");
    }
    case Variant::Kind::Date:
      return dateText(*value.get<Date>());
    case Variant::Kind::Text:
      return quoted(*value.get<std::string>());
    default:
      return value.text();
  }
}

std::string kindName(const Variant& value) {
  static const std::array<const char*, 11> kNames = {"Empty", "Null",  "Boolean", "Int16",
                                                     "Int32", "Int64", "Double",  "Decimal",
                                                     "Date",  "Text",  "Object"};
  return kNames.at(static_cast<std::size_t>(value.kind()));
}

std::vector<std::string> runSection(const Section& section) {
  if (!section.problem.empty()) {
    return {section.problem};
  }
  std::vector<std::string> complaints;
  const std::shared_ptr<Connection> connection = openMemory();
  for (const std::vector<Block>* const blocks : {&section.setup, &section.blocks}) {
    for (const Block& block : *blocks) {
      for (std::string& complaint : BlockRun{block, *connection}.run()) {
        complaints.push_back(std::move(complaint));
      }
    }
  }
  return complaints;
}

ServerAnswer runOnServer(const Block& block, Connection& connection) {
  BlockRun blockRun{block, connection, true};
  std::vector<std::string> complaints = blockRun.run();
  return {std::move(complaints), blockRun.transactionLost()};
}

}  // namespace azcoll::test
