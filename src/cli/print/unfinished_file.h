#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace azcoll::cli {

/// Whether something stands under this name. A link that leads nowhere counts too: creating through
/// it would write somewhere else.
[[nodiscard]] bool isTaken(const std::filesystem::path& path);

/// A file under a name of its own, beside its target, while it is being made; whatever is left
/// under that name disappears at the end.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(const std::filesystem::path& target);
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile(UnfinishedFile&&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(UnfinishedFile&&) = delete;
  ~UnfinishedFile();

  [[nodiscard]] std::string path() const { return path_.string(); }

  /// Gives the finished file its name, unless another one has it. Returns what went wrong;
  /// `file_exists` for a name that is taken.
  [[nodiscard]] std::error_code publishNew() const;

  /// Gives the finished file its name; it replaces a file of that name in one step.
  [[nodiscard]] std::error_code publishOver() const;

 private:
  std::filesystem::path target_;
  std::filesystem::path path_;
};

}  // namespace azcoll::cli
