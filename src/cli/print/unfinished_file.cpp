#include "cli/print/unfinished_file.h"

#include <fmt/format.h>
#include <random>

namespace azcoll::cli {

namespace fs = std::filesystem;

bool isTaken(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(fs::symlink_status(path, ignored));
}

UnfinishedFile::UnfinishedFile(const fs::path& target)
    : target_{target},
      path_{fmt::format("{}.{:08x}.tmp", target.string(), std::random_device{}())} {}

UnfinishedFile::~UnfinishedFile() {
  // A database has files beside it.
  for (const char* ending : {"", "-wal", "-shm", "-journal"}) {
    std::error_code ignored;
    fs::remove(path_.string() + ending, ignored);
  }
}

std::error_code UnfinishedFile::publishNew() const {
  std::error_code failure;
  // A second name for the file, unlike a renaming, never replaces what is there.
  fs::create_hard_link(path_, target_, failure);
  if (!failure) {
    return {};
  }
  return isTaken(target_) ? std::make_error_code(std::errc::file_exists) : publishOver();
}

std::error_code UnfinishedFile::publishOver() const {
  std::error_code failure;
  fs::rename(path_, target_, failure);
  return failure;
}

}  // namespace azcoll::cli
