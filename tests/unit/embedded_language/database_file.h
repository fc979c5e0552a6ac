#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace azcoll::test {

/// A folder of its own for the files of one test, gone with it.
class DatabaseFile {
 public:
  DatabaseFile() {
    static std::atomic<int> counter{0};
    folder_ = std::filesystem::temp_directory_path() /
              ("azcoll-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    std::filesystem::create_directories(folder_);
  }
  DatabaseFile(const DatabaseFile&) = delete;
  DatabaseFile(DatabaseFile&&) = delete;
  DatabaseFile& operator=(const DatabaseFile&) = delete;
  DatabaseFile& operator=(DatabaseFile&&) = delete;
  ~DatabaseFile() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  [[nodiscard]] std::filesystem::path folder() const { return folder_; }
  [[nodiscard]] std::filesystem::path path() const { return folder_ / "prova.db"; }
  [[nodiscard]] std::string source() const {
    return "Provider=embedded;Data Source=" + path().string();
  }
  [[nodiscard]] std::string creating() const { return source() + ";Create=True"; }

  void write(const std::string& content) const {
    std::ofstream file{path(), std::ios::binary};
    file << content;
  }

 private:
  std::filesystem::path folder_;
};

}  // namespace azcoll::test
