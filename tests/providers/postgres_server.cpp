#include "providers/postgres_server.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace azcoll::test {
namespace {

std::string readAll(int file, bool oneLine) {
  std::string text;
  std::array<char, 256> buffer{};
  while (true) {
    const ssize_t count = ::read(file, buffer.data(), oneLine ? 1 : buffer.size());
    if (count <= 0 || (oneLine && buffer[0] == '\n')) {
      return text;
    }
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

[[noreturn]] void runScript(int input, int output, int errors) {
  ::dup2(input, STDIN_FILENO);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(errors, STDERR_FILENO);
  const std::string path = std::string{AZCOLL_SOURCE_DIR} + "/tests/providers/postgres.sh";
  ::execl("/bin/bash", "bash", path.c_str(), static_cast<char*>(nullptr));
  std::_Exit(127);
}

/// Runs `work` in a process that is no descendant of this one: whoever kills a test with all its
/// children must not kill the script that takes the server away.
template <typename Work>
void startApart(const Work& work) {
  const pid_t between = ::fork();
  if (between == 0) {
    ::setsid();
    if (::fork() == 0) {
      work();
    }
    std::_Exit(0);
  }
  ::waitpid(between, nullptr, 0);
}

}  // namespace

PostgresServer::PostgresServer() {
  std::array<int, 2> input{};
  std::array<int, 2> output{};
  std::array<int, 2> errors{};
  if (::pipe2(input.data(), O_CLOEXEC) != 0 || ::pipe2(output.data(), O_CLOEXEC) != 0 ||
      ::pipe2(errors.data(), O_CLOEXEC) != 0) {
    failure_ = "no pipes";
    return;
  }
  startApart([&] { runScript(input[0], output[1], errors[1]); });
  ::close(input[0]);
  ::close(output[1]);
  ::close(errors[1]);
  lifeline_ = input[1];
  output_ = output[0];
  connectionString_ = readAll(output[0], true);
  if (connectionString_.empty()) {
    failure_ = readAll(errors[0], false);
    failure_ = failure_.substr(0, failure_.find('\n'));
  }
  ::close(errors[0]);
}

PostgresServer::~PostgresServer() {
  if (lifeline_ >= 0) {
    ::close(lifeline_);
  }
  if (output_ >= 0) {
    readAll(output_, false);  // until the server is gone
    ::close(output_);
  }
}

}  // namespace azcoll::test
