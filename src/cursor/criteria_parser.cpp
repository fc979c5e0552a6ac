#include <array>
#include <iterator>
#include <utility>

#include "cursor/criteria.h"
#include "data/error.h"
#include "data/messages.h"
#include "data/text.h"
#include "text/letter_case.h"
#include "text/trimming.h"
#include "text/utf8.h"

namespace azcoll::cursor {

namespace reasons = messages::criteria;

/// Reads criteria from left to right; a mistake is reported where it stands.
class CriteriaParser {
 public:
  CriteriaParser(std::string_view text, const ColumnFinder& columns)
      : text_{text}, columns_{columns} {}

  Criteria filter() {
    Criteria result;
    bool grouped = atGroup();
    result.groups_.push_back(group());
    if (grouped && atWord("OR")) {
      // Beside an OR every side is a group in parentheses.
      while (takeWord("OR")) {
        if (!atGroup()) {
          fail(reasons::kOrOutsideGroups);
        }
        result.groups_.push_back(group());
      }
      if (atWord("AND")) {
        fail(reasons::kAndBetweenOr);
      }
    } else {
      andGroups(result.groups_.front(), grouped);
    }
    expectEnd();
    return result;
  }

  Criteria search() {
    Criteria result;
    result.groups_.push_back({comparison()});
    if (atWord("AND") || atWord("OR")) {
      fail(reasons::kOneComparison);
    }
    expectEnd();
    return result;
  }

 private:
  /// The rest of a filter whose groups are all joined by AND: they are one group.
  void andGroups(Criteria::Group& target, bool grouped) {
    while (takeWord("AND")) {
      grouped = atGroup() && grouped;
      Criteria::Group next = group();
      std::move(next.begin(), next.end(), std::back_inserter(target));
    }
    if (atWord("OR")) {
      fail(grouped ? reasons::kAndBetweenOr : reasons::kOrOutsideGroups);
    }
  }

  /// Comparisons joined by AND in parentheses, or one comparison.
  Criteria::Group group() {
    Criteria::Group result;
    if (!takeCharacter('(')) {
      result.push_back(comparison());
      return result;
    }
    do {
      result.push_back(comparison());
    } while (takeWord("AND"));
    if (atWord("OR")) {
      fail(reasons::kOrOutsideGroups);
    }
    if (!takeCharacter(')')) {
      fail(reasons::kOpenGroup);
    }
    return result;
  }

  Comparison comparison() {
    Comparison result;
    result.columnName = columnName();
    result.column = columns_(result.columnName);
    result.comparator = comparator();
    skipBlanks();
    const std::size_t valueStart = position_;
    result.literal = literal();
    if (result.comparator == Comparator::Like && result.literal.kind != Literal::Kind::Text) {
      fail(reasons::kLikeNeedsText, valueStart);
    }
    if (result.literal.kind == Literal::Kind::Null && result.comparator != Comparator::Equal &&
        result.comparator != Comparator::NotEqual) {
      fail(reasons::kNullComparison, valueStart);
    }
    if (result.comparator == Comparator::Like) {
      result.literal.text = foldCase(result.literal.text);
    }
    return result;
  }

  std::string columnName() {
    skipBlanks();
    if (takeCharacter('[')) {
      return delimited(']', reasons::kOpenBracket);
    }
    const std::string_view name = nameAhead();
    const bool keyword = equalsIgnoringCase(name, "AND") || equalsIgnoringCase(name, "OR") ||
                         equalsIgnoringCase(name, "LIKE") || equalsIgnoringCase(name, "NULL");
    if (name.empty() || keyword || isDigit(name.front())) {
      fail(reasons::kNameExpected);
    }
    position_ += name.size();
    return std::string{name};
  }

  Comparator comparator() {
    static constexpr std::array<std::pair<std::string_view, Comparator>, 6> kSymbols{
        {{"<>", Comparator::NotEqual},
         {"<=", Comparator::LessOrEqual},
         {">=", Comparator::GreaterOrEqual},
         {"<", Comparator::Less},
         {">", Comparator::Greater},
         {"=", Comparator::Equal}}};
    skipBlanks();
    for (const auto& [symbol, comparator] : kSymbols) {
      if (rest().starts_with(symbol)) {
        position_ += symbol.size();
        return comparator;
      }
    }
    if (!takeWord("LIKE")) {
      fail(reasons::kOperatorExpected);
    }
    return Comparator::Like;
  }

  Literal literal() {
    if (takeCharacter('\'')) {
      return textLiteral();
    }
    if (takeCharacter('#')) {
      return dateLiteral();
    }
    if (takeWord("NULL")) {
      return Literal{};
    }
    return numberLiteral();
  }

  Literal textLiteral() {
    Literal result{.kind = Literal::Kind::Text, .text = delimited('\'', reasons::kOpenText)};
    // Read as everything that it can be; the kind of the column decides when rows are compared.
    result.number = Decimal::parse(result.text);
    result.date = Date::parse(trim(result.text));
    if (equalsIgnoringCase(result.text, "True") || equalsIgnoringCase(result.text, "False")) {
      result.truth = equalsIgnoringCase(result.text, "True");
    }
    return result;
  }

  Literal dateLiteral() {
    const std::size_t start = position_ - 1;
    Literal result{.kind = Literal::Kind::Date, .text = delimited('#', reasons::kInvalidDate)};
    result.date = Date::parse(trim(result.text));
    if (!result.date) {
      fail(reasons::kInvalidDate, start);
    }
    return result;
  }

  Literal numberLiteral() {
    const std::size_t length = rest().find_first_not_of("+-.0123456789");
    const std::string_view digits = rest().substr(0, length);
    if (digits.empty()) {
      fail(reasons::kValueExpected);
    }
    Literal result{.kind = Literal::Kind::Number, .text = std::string{digits}};
    result.number = Decimal::parse(digits);
    const bool wordFollows = digits.size() < rest().size() && isNamePart(rest()[digits.size()]);
    if (!result.number || wordFollows) {
      fail(reasons::kInvalidNumber);
    }
    result.truth = !result.number->isZero();
    position_ += digits.size();
    return result;
  }

  /// The text up to the closing delimiter, where a doubled one stands for itself.
  std::string delimited(char delimiter, std::string_view reason) {
    const std::size_t start = position_ - 1;
    std::string result;
    while (position_ < text_.size()) {
      const char character = text_[position_++];
      if (character == delimiter) {
        if (!rest().starts_with(delimiter)) {
          return result;
        }
        ++position_;
      }
      result += character;
    }
    fail(reason, start);
  }

  [[nodiscard]] std::string_view rest() const { return text_.substr(position_); }

  void skipBlanks() {
    const std::size_t next = rest().find_first_not_of(" \t\r\n");
    position_ = next == std::string_view::npos ? text_.size() : position_ + next;
  }

  static bool isDigit(char character) { return character >= '0' && character <= '9'; }

  static bool isNamePart(char character) {
    return isDigit(character) || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z') || character == '_' || character == '$' ||
           character == '@' || static_cast<unsigned char>(character) >= 0x80;
  }

  std::string_view nameAhead() {
    skipBlanks();
    std::size_t length = 0;
    while (length < rest().size() && isNamePart(rest()[length])) {
      ++length;
    }
    return rest().substr(0, length);
  }

  bool atWord(std::string_view word) { return equalsIgnoringCase(nameAhead(), word); }

  bool takeWord(std::string_view word) {
    const bool found = atWord(word);
    position_ += found ? word.size() : 0;
    return found;
  }

  bool atGroup() {
    skipBlanks();
    return rest().starts_with('(');
  }

  bool takeCharacter(char wanted) {
    skipBlanks();
    const bool found = rest().starts_with(wanted);
    position_ += found ? 1 : 0;
    return found;
  }

  void expectEnd() {
    skipBlanks();
    if (position_ != text_.size()) {
      fail(reasons::kEndExpected);
    }
  }

  [[noreturn]] void fail(std::string_view reason) {
    skipBlanks();
    fail(reason, position_);
  }

  [[noreturn]] void fail(std::string_view reason, std::size_t position) const {
    constexpr std::size_t kShownCharacters = 20;
    const std::string_view found = leftCharacters(text_.substr(position), kShownCharacters);
    throw Error(join(messages::kInvalidCriteria, ", carattere ",
                     characterCount(text_.substr(0, position)) + 1, ": ", reason, " («",
                     found.empty() ? reasons::kEndOfText : found, "»)"));
  }

  std::string_view text_;
  const ColumnFinder& columns_;
  std::size_t position_ = 0;
};

Criteria Criteria::filter(std::string_view text, const ColumnFinder& columns) {
  return CriteriaParser{text, columns}.filter();
}

Criteria Criteria::search(std::string_view text, const ColumnFinder& columns) {
  return CriteriaParser{text, columns}.search();
}

}  // namespace azcoll::cursor
