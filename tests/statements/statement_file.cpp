#include "statements/statement_file.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace azcoll::statements {
namespace {

constexpr std::string_view kBlanks = " \t";

std::string trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return std::string{text.substr(first, text.find_last_not_of(kBlanks) - first + 1)};
}

class Reader {
 public:
  explicit Reader(std::string path) : path_{std::move(path)} {
    std::ifstream file{path_};
    if (!file) {
      throw std::runtime_error{"cannot read " + path_};
    }
    for (std::string line; std::getline(file, line);) {
      lines_.push_back(line);
    }
  }

  StatementFile read() {
    StatementFile file{path_, {}};
    while (next_ < lines_.size()) {
      const std::string line = trimmed(lines_[next_]);
      if (line.empty() || line.front() == '#') {
        ++next_;
      } else if (line.starts_with("== ")) {
        file.cases.push_back(Case{trimmed(line.substr(3)), {}});
        ++next_;
      } else if (file.cases.empty()) {
        fail("a step before the first case");
      } else {
        file.cases.back().steps.push_back(readStep(line));
      }
    }
    if (file.cases.empty()) {
      fail("no case");
    }
    for (const Case& entry : file.cases) {
      if (entry.steps.empty()) {
        fail("case without steps: " + entry.title);
      }
    }
    return file;
  }

 private:
  [[noreturn]] void fail(const std::string& message) const {
    throw std::runtime_error{path_ + ":" + std::to_string(next_ + 1) + ": " + message};
  }

  std::int64_t number(std::string_view text) const {
    std::int64_t value = 0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (code != std::errc{} || end != text.data() + text.size()) {
      fail("not a number: " + std::string{text});
    }
    return value;
  }

  // "2627", or "8152|2628" where the versions of a server differ.
  std::vector<std::int64_t> numbers(const std::string& text) const {
    std::vector<std::int64_t> result;
    for (const std::string& part : cells(text)) {
      result.push_back(number(part));
    }
    return result;
  }

  Step readStep(const std::string& directive) {
    Step step;
    step.line = next_ + 1;
    std::string eol = "\r\n";
    readDirective(directive, step, eol);
    ++next_;
    if (step.kind == StepKind::Call) {
      readParameters(step);
    } else {
      readText(step, eol);
    }
    if (next_ < lines_.size() && lines_[next_] == "----") {
      ++next_;
      readExpectation(step);
    } else if (step.kind == StepKind::Query || step.kind == StepKind::Call) {
      fail("no expectation");
    }
    return step;
  }

  void readDirective(const std::string& directive, Step& step, std::string& eol) {
    std::istringstream words{directive};
    std::string word;
    words >> word;
    if (word == "ok") {
      step.kind = StepKind::Ok;
    } else if (word == "count" || word == "error") {
      step.kind = word == "count" ? StepKind::Count : StepKind::Error;
      words >> word;
      step.numbers = numbers(word);
    } else if (word == "query") {
      step.kind = StepKind::Query;
    } else if (word == "call") {
      step.kind = StepKind::Call;
      words >> step.text;
    } else {
      fail("unknown directive " + word);
    }
    while (words >> word) {
      readOption(word, step, eol);
    }
  }

  void readOption(const std::string& word, Step& step, std::string& eol) const {
    if (word == "rowsort") {
      step.rowSort = true;
    } else if (word == "some") {
      step.someColumns = true;
    } else if (word.starts_with("fields=")) {
      step.fieldCount = static_cast<std::size_t>(number(word.substr(7)));
    } else if (word == "eol=cr") {
      eol = "\r";
    } else if (word == "eol=lf") {
      eol = "\n";
    } else {
      fail("unknown option " + word);
    }
  }

  [[nodiscard]] bool atStepEnd() const {
    return next_ >= lines_.size() || trimmed(lines_[next_]).empty();
  }

  void readText(Step& step, const std::string& eol) {
    bool joined = true;
    while (!atStepEnd() && lines_[next_] != "----") {
      if (!joined) {
        step.text += eol;
      }
      joined = appendLine(lines_[next_], step.text);
      ++next_;
    }
    if (step.text.empty()) {
      fail("no text");
    }
  }

  // True when the line goes on without a break.
  bool appendLine(const std::string& line, std::string& text) const {
    for (std::size_t i = 0; i < line.size(); ++i) {
      if (line[i] != '\\') {
        text += line[i];
        continue;
      }
      if (i + 1 == line.size()) {
        return true;
      }
      constexpr std::string_view kLetters = "srnt\\";
      constexpr std::string_view kMeanings = " \r\n\t\\";
      const std::size_t which = kLetters.find(line[++i]);
      if (which == std::string_view::npos) {
        fail("unknown escape");
      }
      text += kMeanings[which];
    }
    return false;
  }

  std::pair<std::string, std::string> assignment(const std::string& line) const {
    const std::size_t equals = line.find('=');
    if (line.empty() || line.front() != '@' || equals == std::string::npos) {
      fail("expected @Name = value");
    }
    return {trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1))};
  }

  void readParameters(Step& step) {
    while (!atStepEnd() && lines_[next_] != "----") {
      step.parameters.push_back(assignment(trimmed(lines_[next_])));
      ++next_;
    }
  }

  void readExpectation(Step& step) {
    const bool hasRows = step.kind == StepKind::Query || step.kind == StepKind::Call;
    if (hasRows) {
      step.results.emplace_back();
    }
    for (; !atStepEnd(); ++next_) {
      const std::string line = trimmed(lines_[next_]);
      if (step.kind == StepKind::Error) {
        step.messageParts.push_back(line);
      } else if (!hasRows) {
        fail("this step has no rows");
      } else if (line == "---- next") {
        step.results.emplace_back();
      } else if (line.front() == '@') {
        step.outputs.push_back(assignment(line));
      } else if (line.front() == ':') {
        step.results.back().columns = cells(line.substr(1));
      } else {
        step.results.back().rows.push_back(cells(line));
      }
    }
    checkWidths(step);
  }

  void checkWidths(const Step& step) const {
    for (const ExpectedResult& result : step.results) {
      for (const auto& row : result.rows) {
        if (!result.columns.empty() && row.size() != result.columns.size()) {
          fail("row and header differ in width");
        }
      }
      if (step.someColumns && result.columns.empty()) {
        fail("`some` needs a header line");
      }
    }
  }

  static std::vector<std::string> cells(const std::string& line) {
    std::vector<std::string> result;
    std::string cell;
    bool quoted = false;
    for (const char character : line) {
      quoted = (character == '"') ? !quoted : quoted;
      if (character == '|' && !quoted) {
        result.push_back(trimmed(cell));
        cell.clear();
      } else {
        cell += character;
      }
    }
    result.push_back(trimmed(cell));
    return result;
  }

  std::string path_;
  std::vector<std::string> lines_;
  std::size_t next_ = 0;
};

}  // namespace

StatementFile readStatementFile(const std::string& path) { return Reader{path}.read(); }

std::vector<std::string> statementFilePaths() {
  std::vector<std::string> paths;
  const std::string folder = std::string{AZCOLL_SOURCE_DIR} + "/tests/statements/cases";
  for (const auto& entry : std::filesystem::directory_iterator{folder}) {
    if (entry.path().string().ends_with(".sql.txt")) {
      paths.push_back(entry.path().string());
    }
  }
  std::ranges::sort(paths);
  return paths;
}

}  // namespace azcoll::statements
