#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace azcoll::test {

/// The two ways through a relay.
enum class Direction { ToServer, ToClient };

[[nodiscard]] std::string_view nameOf(Direction direction);

/// What a relay does at a packet.
enum class Trouble {
  CutAfter,   ///< passes it on, then closes both connections
  CutInside,  ///< passes half of it on, then closes both connections
  Hold,       ///< passes nothing on any more, in either direction; the connections stay open
  Delay,      ///< waits, then passes it on and goes on as ever
};

[[nodiscard]] std::string_view nameOf(Trouble trouble);

/// A TCP relay on a loopback port of its own, between one client at a time and a server that speaks
/// TDS. Its thread passes the bytes on; from `watch` on it takes them packet by packet and counts
/// them. Where nobody listens at the server's place, it hangs up on the client.
class Relay {
 public:
  /// `server` is a connection string that names a server in `Server` and `Port`. Throws
  /// `std::system_error`.
  explicit Relay(std::string_view server);
  Relay(const Relay&) = delete;
  Relay(Relay&&) = delete;
  Relay& operator=(const Relay&) = delete;
  Relay& operator=(Relay&&) = delete;
  ~Relay();

  /// The connection string with the relay in the server's place.
  [[nodiscard]] const std::string& connectionString() const { return connectionString_; }

  /// Counts packets from 1, in both directions, from here on; nothing must be under way.
  void watch();
  /// The same, and makes trouble at packet `number` of `direction`. `delay` is that of
  /// `Trouble::Delay`.
  void watch(Direction direction, std::size_t number, Trouble trouble,
             std::chrono::milliseconds delay = {});
  /// Of every connection from here on, closes both sides when the client has sent so many pieces
  /// and sends one more: from the login on, and whatever it is that they speak.
  void hangUpAfter(std::size_t pieces);
  /// Packets that have come since `watch`, the one of the trouble included.
  [[nodiscard]] std::size_t packets(Direction direction) const;
  /// How often the client has spoken after the server: once for each question and its answer.
  [[nodiscard]] std::size_t turns() const { return turns_; }
  /// Whether the trouble was made.
  [[nodiscard]] bool troubled() const { return troubled_; }
  /// Whether all bytes since `watch` were TDS packets: an encrypted connection has none to be seen.
  [[nodiscard]] bool understood() const { return understood_; }
  /// Closes both connections, as a held one needs in the end.
  void drop();

 private:
  struct Plan {
    Direction direction;
    std::size_t number;
    Trouble trouble;
    std::chrono::milliseconds delay;
  };
  struct Way {
    int from = -1;
    int to = -1;
    std::vector<std::uint8_t> pending;  ///< of a packet that is not whole yet
  };

  void serve();
  void accept();
  void pass(Direction direction);
  bool passPacket(Direction direction, std::size_t length);
  void close();

  std::string connectionString_;
  std::string host_;
  std::string port_;
  int listener_ = -1;
  int wakeRead_ = -1;
  int wakeWrite_ = -1;
  Way ways_[2];
  bool held_ = false;
  std::mutex mutex_;  ///< of the plan and the ways
  std::optional<Plan> plan_;
  std::optional<std::size_t> mostPieces_;
  std::size_t pieces_ = 0;  ///< of the client, on this connection
  std::atomic<bool> watching_ = false;
  std::atomic<bool> troubled_ = false;
  std::atomic<bool> understood_ = true;
  std::atomic<bool> ended_ = false;
  std::atomic<std::size_t> packets_[2]{};
  std::atomic<std::size_t> turns_ = 0;
  bool clientSpoke_ = false;  ///< last
  std::thread thread_;
};

}  // namespace azcoll::test
