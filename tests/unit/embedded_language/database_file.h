#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "support/scratch_folder.h"

namespace azcoll::test {

/// A folder of its own for the files of one test, gone with it.
class DatabaseFile {
 public:
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }
  [[nodiscard]] std::filesystem::path path() const { return folder() / "prova.db"; }
  [[nodiscard]] std::string source() const {
    return "Provider=embedded;Data Source=" + path().string();
  }
  [[nodiscard]] std::string creating() const { return source() + ";Create=True"; }

  void write(const std::string& content) const {
    std::ofstream file{path(), std::ios::binary};
    file << content;
  }

 private:
  ScratchFolder folder_;
};

}  // namespace azcoll::test
