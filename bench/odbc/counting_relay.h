#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

/// A server's port once more, on loopback, where what passes is counted.
namespace azcoll::bench {

class CountingRelay {
 public:
  /// Relays to the server of a connection string, which names it by `Server` and `Port`. Throws
  /// `std::runtime_error` when it does not, or when there is no port to listen on.
  explicit CountingRelay(const std::string& connectionString);
  CountingRelay(const CountingRelay&) = delete;
  CountingRelay(CountingRelay&&) = delete;
  CountingRelay& operator=(const CountingRelay&) = delete;
  CountingRelay& operator=(CountingRelay&&) = delete;
  /// Its connections are closed by then.
  ~CountingRelay();

  /// The connection string with this relay in the server's place.
  [[nodiscard]] const std::string& connectionString() const { return connectionString_; }
  /// How often a program has spoken after the server: once for each question and its answer.
  [[nodiscard]] std::int64_t turns() const { return turns_; }

 private:
  void accept();
  void pass(int program);
  [[nodiscard]] int connectToServer() const;

  std::string host_;
  std::string port_;
  std::string connectionString_;
  int listening_ = -1;
  std::atomic<std::int64_t> turns_{0};
  std::vector<std::jthread> passing_;
  std::jthread accepting_;
};

}  // namespace azcoll::bench
