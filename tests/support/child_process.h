#pragma once

#include <csignal>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace azcoll::test {

/// A process of its own that runs `work` and ends with its result. Connections to a database are to
/// be opened inside `work`: they do not survive a fork.
class ChildProcess {
 public:
  explicit ChildProcess(const std::function<int()>& work) : id_{fork()} {
    if (id_ < 0) {
      throw std::runtime_error{"cannot start a process"};
    }
    if (id_ == 0) {
      int result = 2;
      try {
        result = work();
      } catch (const std::exception& error) {
        std::cerr << error.what() << std::endl;
      }
      std::_Exit(result);
    }
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess(ChildProcess&& other) noexcept : id_{std::exchange(other.id_, 0)} {}
  ChildProcess& operator=(const ChildProcess&) = delete;
  ChildProcess& operator=(ChildProcess&&) = delete;
  ~ChildProcess() {
    if (id_ > 0) {
      kill();
      wait();
    }
  }

  void kill() const { ::kill(id_, SIGKILL); }

  /// Waits for the end. The result of `work`, or minus the signal that ended the process.
  int wait() {
    int status = 0;
    ::waitpid(id_, &status, 0);
    id_ = 0;
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
  }

 private:
  pid_t id_;
};

}  // namespace azcoll::test
