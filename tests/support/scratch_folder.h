#pragma once

#include <atomic>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace azcoll::test {

/// A folder of this process's own below the system's folder for such things, removed at the end.
class ScratchFolder {
 public:
  ScratchFolder() {
    static std::atomic<int> count = 0;
    path_ = std::filesystem::temp_directory_path() /
            ("azcoll-test-" + std::to_string(::getpid()) + "-" + std::to_string(++count));
    std::filesystem::create_directories(path_);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder(ScratchFolder&&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ScratchFolder& operator=(ScratchFolder&&) = delete;
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  [[nodiscard]] std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace azcoll::test
