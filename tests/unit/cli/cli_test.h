#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "cli/app.h"
#include "cli/console.h"

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
  void SetUp() override {
    const testing::TestInfo& info = *testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::temp_directory_path() /
              (std::string{"azcoll-"} + info.test_suite_name() + "-" + info.name() + "-" +
               std::to_string(getpid()));
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  [[nodiscard]] std::string path(const std::string& name) const {
    return (folder_ / name).string();
  }

  [[nodiscard]] std::vector<std::string> filesLeft() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  static std::string contents(const std::string& file) {
    std::ifstream in{file, std::ios::binary};
    return {std::istreambuf_iterator<char>{in}, {}};
  }

  std::filesystem::path folder_;
};

/// A test with a database of its own: tables, procedures and the example group.
class DatabaseTest : public FolderTest {
 protected:
  void SetUp() override {
    FolderTest::SetUp();
    db_ = path("prova.db");
    copyExample();
  }

  /// Made once for the whole program: making it takes longer than most tests.
  void copyExample() {
    static const std::string example = [] {
      static const struct Folder {
        std::filesystem::path path =
            std::filesystem::temp_directory_path() / ("azcoll-esempio-" + std::to_string(getpid()));
        Folder() { std::filesystem::create_directories(path); }
        ~Folder() { std::filesystem::remove_all(path); }
      } folder;
      const std::string file = (folder.path / "esempio.db").string();
      const Outcome made = azcoll("crea", "--db", file, "--esempio");
      return made.code == ExitCode::Ok ? file : "errore: " + made.err;
    }();
    ASSERT_THAT(example, testing::EndsWith("esempio.db"));
    std::filesystem::copy_file(example, db_);
  }

  std::string db_;
};

}  // namespace azcoll::cli
