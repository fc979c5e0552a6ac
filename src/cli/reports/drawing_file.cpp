#include "cli/reports/drawing_file.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <fmt/format.h>
#include <memory>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

#include "cli/console.h"
#include "cli/print/names.h"
#include "cli/print/terminal_text.h"
#include "cli/print/unfinished_file.h"

namespace azcoll::cli {
namespace {

constexpr const char* kNoProgram =
    "Per --svg serve il programma dot, che qui non c'è: si installa con il pacchetto graphviz "
    "(apt-get install graphviz). Senza, --dot stampa il testo del disegno.";

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// A file without a name, gone when it is closed.
File nameless() {
  File file{std::tmpfile()};
  if (!file) {
    throw std::runtime_error(fmt::format("Impossibile creare un file temporaneo: {}",
                                         std::generic_category().message(errno)));
  }
  return file;
}

/// What the child process reads, writes and complains to.
struct Streams {
  int in;
  int out;
  int err;
};

class FileActions {
 public:
  explicit FileActions(const Streams& streams) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_adddup2(&actions_, streams.in, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions_, streams.out, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions_, streams.err, STDERR_FILENO);
  }
  FileActions(const FileActions&) = delete;
  FileActions(FileActions&&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  FileActions& operator=(FileActions&&) = delete;
  ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

pid_t startDot(const Streams& streams) {
  // The words are the program's own: nothing typed by a person reaches its command line.
  std::string name = "dot";
  std::string format = "-Tsvg";
  std::vector<char*> words{name.data(), format.data(), nullptr};
  const FileActions actions{streams};
  pid_t child = 0;
  const int failure = posix_spawnp(&child, "dot", actions.get(), nullptr, words.data(), environ);
  if (failure == ENOENT) {
    throw std::runtime_error(kNoProgram);
  }
  if (failure != 0) {
    throw std::runtime_error(fmt::format("Impossibile avviare il programma dot: {}",
                                         std::generic_category().message(failure)));
  }
  return child;
}

/// The child's wait status; a child that takes too long is ended.
int waitFor(pid_t child, std::chrono::milliseconds longest) {
  const auto end = std::chrono::steady_clock::now() + longest;
  int status = 0;
  std::chrono::milliseconds pause{1};
  for (pid_t ended = 0; ended != child; ended = waitpid(child, &status, WNOHANG)) {
    if (ended < 0) {
      throw std::runtime_error("L'esito del programma dot non si può sapere.");
    }
    if (std::chrono::steady_clock::now() >= end) {
      kill(child, SIGKILL);
      waitpid(child, &status, 0);
      throw std::runtime_error(
          fmt::format("Il programma dot non ha finito entro {} secondi.",
                      std::chrono::ceil<std::chrono::seconds>(longest).count()));
    }
    std::this_thread::sleep_for(pause);
    pause = std::min(pause * 2, std::chrono::milliseconds{50});
  }
  return status;
}

/// The first line that the program complained with.
std::string firstLine(std::FILE* file) {
  std::rewind(file);
  std::string line;
  constexpr std::size_t longest = 300;
  for (int c = std::fgetc(file); c != EOF && c != '\n' && line.size() < longest;
       c = std::fgetc(file)) {
    line += static_cast<char>(c);
  }
  return visible(line);
}

}  // namespace

void requireSvgName(const std::string& file) {
  if (!foldName(file).ends_with(".svg")) {
    throw UsageError(fmt::format(
        "--svg scrive solo SVG: il nome del file deve finire con .svg, non «{}».", file));
  }
  if (file.find('\0') != std::string::npos) {
    throw UsageError("Il nome di un file non può contenere un carattere nullo.");
  }
}

void writeSvg(const std::string& dot, const std::string& file, std::chrono::milliseconds longest) {
  const auto refuse = [&file](const std::string& reason) {
    throw UsageError(
        fmt::format("Impossibile scrivere il disegno nel file «{}»: {}", file, reason));
  };
  const UnfinishedFile unfinished{file};
  const File out{std::fopen(unfinished.path().c_str(), "wxe")};
  if (!out) {
    refuse(std::generic_category().message(errno));
  }
  // Files instead of pipes: neither process ever waits for the other.
  const File in = nameless();
  const File err = nameless();
  if (std::fwrite(dot.data(), 1, dot.size(), in.get()) != dot.size() ||
      std::fflush(in.get()) != 0) {
    throw std::runtime_error("Impossibile scrivere un file temporaneo.");
  }
  std::rewind(in.get());
  const pid_t child = startDot({fileno(in.get()), fileno(out.get()), fileno(err.get())});
  const int status = waitFor(child, longest);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    throw std::runtime_error(
        fmt::format("Il programma dot non ha fatto il disegno: {}", firstLine(err.get())));
  }
  if (fsync(fileno(out.get())) != 0) {
    refuse(std::generic_category().message(errno));
  }
  if (const std::error_code failure = unfinished.publishOver()) {
    refuse(failure.message());
  }
}

}  // namespace azcoll::cli
