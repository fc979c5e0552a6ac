#include "odbc/sql_words.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

#include "text/letter_case.h"

namespace azcoll::odbc {
namespace {

bool startsName(char byte) {
  return std::isalpha(static_cast<unsigned char>(byte)) != 0 || byte == '_' || byte == '@' ||
         byte == '#' || (static_cast<unsigned char>(byte) & 0x80U) != 0;
}

bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }

bool continuesName(char byte) { return startsName(byte) || isDigit(byte) || byte == '$'; }

class WordReader {
 public:
  explicit WordReader(std::string_view text) : text_{text} {}

  std::vector<SqlWord> read() {
    while (at_ < text_.size()) {
      readOne();
    }
    return std::move(words_);
  }

 private:
  [[nodiscard]] char peek(std::size_t ahead) const {
    return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
  }

  void readOne() {
    const char byte = text_[at_];
    if (std::isspace(static_cast<unsigned char>(byte)) != 0) {
      ++at_;
    } else if (byte == '-' && peek(1) == '-') {
      at_ = std::min(text_.find('\n', at_), text_.size());
    } else if (byte == '/' && peek(1) == '*') {
      skipComment();
    } else if (byte == '\'') {
      readQuoted('\'', SqlWord::Kind::Literal);
    } else if ((byte == 'N' || byte == 'n') && peek(1) == '\'') {
      ++at_;
      readQuoted('\'', SqlWord::Kind::Literal);
    } else if (byte == '[' || byte == '"') {
      readQuoted(byte == '[' ? ']' : '"', SqlWord::Kind::QuotedName);
    } else if (startsName(byte)) {
      take(SqlWord::Kind::Name, [](char next) { return continuesName(next); });
    } else if (isDigit(byte)) {
      // Digits and point only: T-SQL lets a word follow a number without a blank.
      take(SqlWord::Kind::Literal, [](char next) { return isDigit(next) || next == '.'; });
    } else {
      readSign(byte);
    }
  }

  template <typename Test>
  void take(SqlWord::Kind kind, Test belongs) {
    const std::size_t start = at_;
    while (at_ < text_.size() && belongs(text_[at_])) {
      ++at_;
    }
    words_.push_back({kind, std::string{text_.substr(start, at_ - start)}, depth_});
  }

  void readSign(char byte) {
    depth_ -= byte == ')' ? 1 : 0;
    words_.push_back({SqlWord::Kind::Sign, std::string(1, byte), depth_});
    depth_ += byte == '(' ? 1 : 0;
    ++at_;
  }

  void readQuoted(char close, SqlWord::Kind kind) {
    SqlWord word{kind, {}, depth_};
    for (++at_; at_ < text_.size(); ++at_) {
      if (text_[at_] == close) {
        if (peek(1) != close) {
          break;
        }
        ++at_;
      }
      word.text += text_[at_];
    }
    ++at_;
    words_.push_back(std::move(word));
  }

  void skipComment() {
    int open = 0;
    while (at_ < text_.size()) {
      if (text_[at_] == '/' && peek(1) == '*') {
        ++open;
        at_ += 2;
      } else if (text_[at_] == '*' && peek(1) == '/') {
        at_ += 2;
        if (--open == 0) {
          return;
        }
      } else {
        ++at_;
      }
    }
  }

  std::string_view text_;
  std::size_t at_ = 0;
  int depth_ = 0;
  std::vector<SqlWord> words_;
};

}  // namespace

bool SqlWord::is(std::string_view keyword) const {
  return kind == Kind::Name && equalsIgnoringCase(text, keyword);
}

std::vector<SqlWord> wordsOf(std::string_view text) { return WordReader{text}.read(); }

}  // namespace azcoll::odbc
