#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "unit/embedded_language/case_file.h"

namespace azcoll::test {
namespace {

constexpr std::string_view kRowsMark = "----";
constexpr std::string_view kResultMark = "====";
constexpr std::string_view kTitleMark = "== ";
constexpr std::string_view kServerMark = "server: ";

std::vector<std::string> cellsOf(std::string_view line) {
  constexpr std::string_view kSeparator = " | ";
  std::vector<std::string> cells;
  std::size_t at = 0;
  while (true) {
    const std::size_t end = line.find(kSeparator, at);
    cells.emplace_back(line.substr(at, end - at));
    if (end == std::string_view::npos) {
      return cells;
    }
    at = end + kSeparator.size();
  }
}

void replaceAll(std::string& text, std::string_view mark, std::string_view by) {
  for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at)) {
    text.replace(at, mark.size(), by);
    at += by.size();
  }
}

bool takeWord(std::string_view& line, std::string_view word) {
  if (!line.starts_with(word) || (line.size() > word.size() && line[word.size()] != ' ')) {
    return false;
  }
  line.remove_prefix(std::min(line.size(), word.size() + 1));
  return true;
}

long long takeNumber(std::string_view& line) {
  long long number = 0;
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
  if (error != std::errc()) {
    throw std::runtime_error{"a number is missing"};
  }
  line.remove_prefix(static_cast<std::size_t>(end - line.data()));
  takeWord(line, "");
  return number;
}

/// The first line of a block.
Expected readExpectation(std::string_view line) {
  Expected expected;
  if (takeWord(line, "ok")) {
    if (!line.empty()) {
      expected.affected = takeNumber(line);
    }
  } else if (takeWord(line, "rows")) {
    expected.kind = Expected::Kind::Rows;
    expected.outsideToo = takeWord(line, "or outside");
    expected.unordered = takeWord(line, "unordered");
  } else if (takeWord(line, "outside")) {
    expected.kind = Expected::Kind::Outside;
  } else if (line.starts_with("error ") || line.starts_with("terminated ")) {
    expected.kind = Expected::Kind::Error;
    expected.terminated = takeWord(line, "terminated");
    takeWord(line, "error");
    expected.outsideToo = takeWord(line, "or outside");
    expected.number = static_cast<int>(takeNumber(line));
    expected.text = line;
    return expected;
  } else {
    throw std::runtime_error{"unknown expectation: " + std::string{line}};
  }
  if (!line.empty()) {
    throw std::runtime_error{"not understood: " + std::string{line}};
  }
  return expected;
}

void readResultLine(Expected& expected, std::string_view line) {
  constexpr std::string_view kNames = "names: ";
  constexpr std::string_view kKinds = "kinds: ";
  if (line == kResultMark) {
    expected.results.emplace_back();
  } else if (line.starts_with(kNames)) {
    expected.results.back().names = cellsOf(line.substr(kNames.size()));
  } else if (line.starts_with(kKinds)) {
    expected.results.back().kinds = cellsOf(line.substr(kKinds.size()));
  } else {
    expected.results.back().rows.push_back(cellsOf(line));
  }
}

Block readBlock(const std::vector<std::string>& lines, std::size_t firstLine) {
  Block block{readExpectation(lines.front()), {}, firstLine, {}};
  bool inRows = false;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    if (inRows) {
      readResultLine(block.expected, lines[i]);
    } else if (lines[i] == kRowsMark && block.expected.kind == Expected::Kind::Rows) {
      inRows = true;
      block.expected.results.emplace_back();
    } else {
      block.statement += (block.statement.empty() ? "" : "\n") + lines[i];
    }
  }
  if (block.statement.empty()) {
    throw std::runtime_error{"a statement is missing"};
  }
  if (block.expected.kind == Expected::Kind::Rows && !inRows) {
    throw std::runtime_error{"the rows are missing"};
  }
  for (const auto& [mark, by] :
       {std::pair{"\\r", "\r"}, std::pair{"\\n", "\n"}, std::pair{"\\e", ""}}) {
    replaceAll(block.statement, mark, by);
  }
  return block;
}

/// Collects the sections line by line.
class SectionReader {
 public:
  explicit SectionReader(std::string file) : file_{std::move(file)} {}

  void take(const std::string& line) {
    ++number_;
    if (line.starts_with(kTitleMark)) {
      endBlock();
      sections_.push_back({file_, line.substr(kTitleMark.size()), {}, {}, {}, {}});
    } else if (line.empty()) {
      endBlock();
    } else if (!line.starts_with('#') || !lines_.empty()) {
      if (lines_.empty()) {
        blockLine_ = number_;
      }
      lines_.push_back(line);
    }
  }

  std::vector<Section> finish() {
    endBlock();
    std::vector<Block> setup;
    std::vector<Section> result;
    for (Section& section : sections_) {
      if (section.title == "setup") {
        setup = section.blocks;
        if (section.problem.empty()) {
          continue;
        }
      }
      section.setup = setup;
      if (section.blocks.empty() && section.problem.empty()) {
        section.problem = "the section is empty";
      }
      result.push_back(std::move(section));
    }
    return result;
  }

 private:
  void addBlock(Section& section) {
    std::string serverWay;
    if (lines_.front().starts_with(kServerMark)) {
      serverWay = lines_.front().substr(kServerMark.size());
      lines_.erase(lines_.begin());
      ++blockLine_;
    }
    if (!lines_.empty()) {
      section.blocks.push_back(readBlock(lines_, blockLine_));
      section.blocks.back().serverWay = serverWay;
    } else if (section.blocks.empty() && section.serverWay.empty()) {
      section.serverWay = serverWay;
    } else {
      throw std::runtime_error{"a mark of a whole section stands at its beginning"};
    }
  }

  void endBlock() {
    if (lines_.empty()) {
      return;
    }
    if (sections_.empty()) {
      sections_.push_back(
          {file_, "start", "a block stands in front of the first title", {}, {}, {}});
    }
    try {
      addBlock(sections_.back());
    } catch (const std::runtime_error& error) {
      sections_.back().problem = "line " + std::to_string(blockLine_) + ": " + error.what();
    }
    lines_.clear();
  }

  std::string file_;
  std::vector<Section> sections_;
  std::vector<std::string> lines_;
  std::size_t number_ = 0;
  std::size_t blockLine_ = 0;
};

}  // namespace

std::vector<Section> readSections(const std::string& file, const std::string& text) {
  SectionReader reader{file};
  std::istringstream stream{text};
  for (std::string line; std::getline(stream, line);) {
    reader.take(line);
  }
  return reader.finish();
}

std::vector<Section> allSections() {
  std::vector<std::filesystem::path> paths;
  const std::filesystem::path folder{AZCOLL_SOURCE_DIR "/tests/unit/embedded_language/cases"};
  for (const auto& entry : std::filesystem::directory_iterator{folder}) {
    if (entry.path().extension() == ".txt") {
      paths.push_back(entry.path());
    }
  }
  std::sort(paths.begin(), paths.end());
  std::vector<Section> result;
  for (const std::filesystem::path& path : paths) {
    std::ifstream stream{path, std::ios::binary};
    std::stringstream text;
    text << stream.rdbuf();
    for (Section& section : readSections(path.stem().string(), text.str())) {
      result.push_back(std::move(section));
    }
  }
  return result;
}

}  // namespace azcoll::test
