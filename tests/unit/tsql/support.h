#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "gtest/gtest.h"

#include "tsql/parser.h"
#include "tsql/printer.h"
#include "tsql/syntax_error.h"

namespace azcoll::tsql::test {

/// A statement of the table of statements and the text it prints as.
struct Fixture {
  std::string statement;
  std::string canonical;
};

inline std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    ADD_FAILURE() << "cannot read " << path;
  }
  std::stringstream content;
  content << file.rdbuf();
  return content.str();
}

inline std::string withLineBreaks(std::string text) {
  for (const auto& [mark, lineBreak] : {std::pair("\\r", "\r"), std::pair("\\n", "\n")}) {
    for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at)) {
      text.replace(at, 2, lineBreak);
    }
  }
  return text;
}

/// The statements of tests/unit/tsql/statements.txt.
inline std::vector<Fixture> readFixtures() {
  std::vector<Fixture> fixtures;
  std::istringstream lines(readFile(AZCOLL_SOURCE_DIR "/tests/unit/tsql/statements.txt"));
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line.front() == '#') {
      continue;
    }
    if (line.substr(0, 3) == "=> ") {
      fixtures.back().canonical = line.substr(3);
    } else {
      fixtures.push_back({withLineBreaks(line), line});
    }
  }
  return fixtures;
}

/// The text of a batch printed.
inline std::string printed(std::string_view text) { return print(parse(text)); }

/// The error that a text is refused with; a failure when it is accepted.
inline SyntaxError refusal(std::string_view text) {
  try {
    const Batch batch = parse(text);
    ADD_FAILURE() << "accepted: " << text.substr(0, 200) << " as " << print(batch).substr(0, 200);
  } catch (const SyntaxError& error) {
    return error;
  }
  return {-1, "", {}, ""};
}

/// What a text is refused with, in the form `number line:column message`.
inline std::string refused(std::string_view text) {
  const SyntaxError error = refusal(text);
  return std::to_string(error.number()) + " " + std::to_string(error.position().line) + ":" +
         std::to_string(error.position().column) + " " + error.what();
}

}  // namespace azcoll::tsql::test
