#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "cli/app.h"
#include "cli/console.h"
#include "support/scratch_folder.h"

namespace azcoll::cli {

/// What one run of the command gave.
struct Outcome {
  ExitCode code = ExitCode::Ok;
  std::string out;
  std::string err;

  [[nodiscard]] nlohmann::ordered_json json() const { return nlohmann::ordered_json::parse(out); }
};

inline Outcome azcollWith(const std::string& input, const std::vector<std::string>& args) {
  std::istringstream in{input};
  std::ostringstream out;
  std::ostringstream err;
  const int code = run(args, in, out, err);
  return {static_cast<ExitCode>(code), out.str(), err.str()};
}

template <typename... Args>
Outcome azcoll(const Args&... args) {
  return azcollWith("", {std::string{args}...});
}

/// A test with a folder of its own, gone at the end.
class FolderTest : public testing::Test {
 protected:
  [[nodiscard]] std::string path(const std::string& name) const { return folder_.file(name); }

  [[nodiscard]] std::vector<std::string> filesLeft() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  static std::string contents(const std::string& file) {
    std::ifstream in{file, std::ios::binary};
    return {std::istreambuf_iterator<char>{in}, {}};
  }

  azcoll::test::ScratchFolder folder_;
};

/// A test with a database of its own: tables, procedures and the example group.
class DatabaseTest : public FolderTest {
 protected:
  void SetUp() override { copyExample(); }

  /// Puts the example in the place of whatever the test made of it. Made once for the whole
  /// program: making it takes longer than most tests.
  void copyExample() {
    static const std::string example = [] {
      static const azcoll::test::ScratchFolder folder;
      const std::string file = folder.file("esempio.db");
      const Outcome made = azcoll("crea", "--db", file, "--esempio");
      return made.code == ExitCode::Ok ? file : "errore: " + made.err;
    }();
    ASSERT_THAT(example, testing::EndsWith("esempio.db"));
    std::filesystem::copy_file(example, db_, std::filesystem::copy_options::overwrite_existing);
  }

  std::string db_ = path("prova.db");
};

}  // namespace azcoll::cli
